#include "editor/TWEditorTextLayout.h"

#include <algorithm>

TWEditorTextLayout::TWEditorTextLayout(QTextDocument *document)
    : QPlainTextDocumentLayout(document)
{
}

void TWEditorTextLayout::documentChanged(int from, int charsRemoved, int charsAdded)
{
    Q_UNUSED(charsRemoved);
    // What changed in the new text is the added characters; where only characters went, the
    // line that closed up around them. Lines and line counts are worked out as before.
    QPlainTextDocumentLayout::documentChanged(from, 0, std::max(charsAdded, 1));
}
