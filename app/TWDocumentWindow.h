#pragma once

class TWEditorTextView;

// A window that holds a document (HTML, template, style sheet). The File menu's commands go
// to the document window the user works in, and insertions go to its active text view.
class TWDocumentWindow
{
public:
    virtual ~TWDocumentWindow() = default;
    virtual void newDocument() = 0;
    virtual void saveDocument() = 0;
    virtual void saveDocumentAs() = 0;
    virtual TWEditorTextView *activeTextView() const = 0;
    // Inserting a link to a file or an image through an open panel; windows that do not
    // offer it (the style sheet) answer false and leave the menu items disabled.
    virtual bool canInsertFiles() const { return false; }
    virtual void insertFileLink() {}
    virtual void insertImage() {}
};
