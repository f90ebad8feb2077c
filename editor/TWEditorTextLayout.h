#pragma once

#include <QPlainTextDocumentLayout>

// The line layout of the editor views. It tells the editor exactly which lines a change
// touched: the standard layout counts the removed characters into the changed range of the new
// text too, so that a change inside one line (a typed key, new colours for the line) often
// reaches into the lines after it and repaints the whole view.
class TWEditorTextLayout : public QPlainTextDocumentLayout
{
    Q_OBJECT
public:
    explicit TWEditorTextLayout(QTextDocument *document);

    void documentChanged(int from, int charsRemoved, int charsAdded) override;
};
