#pragma once

class TWEditorTextView;

// A window that holds a document (HTML, template, style sheet). The File menu's New, Save
// and Save As go to the document window the user works in, and insertions go to its
// active text view.
class TWDocumentWindow
{
public:
    virtual ~TWDocumentWindow() = default;
    virtual void newDocument() = 0;
    virtual void saveDocument() = 0;
    virtual void saveDocumentAs() = 0;
    virtual TWEditorTextView *activeTextView() const = 0;
};
