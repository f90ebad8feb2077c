#include "editor/TWUndoHistory.h"

#include <QPointer>
#include <QTextDocument>
#include <QUndoCommand>

namespace {

// Stands for one undo step of a document. The edit has already happened when the step is
// recorded, so its first redo does nothing.
class DocumentStep : public QUndoCommand
{
public:
    explicit DocumentStep(QTextDocument *document)
        : document(document)
    {
    }

    void undo() override
    {
        if (document)
            document->undo();
    }

    void redo() override
    {
        if (firstRedo) {
            firstRedo = false;
            return;
        }
        if (document)
            document->redo();
    }

private:
    QPointer<QTextDocument> document;
    bool firstRedo = true;
};

} // namespace

TWUndoHistory::TWUndoHistory(QObject *parent)
    : QUndoStack(parent)
{
}

void TWUndoHistory::follow(QTextDocument *document)
{
    documents << document;
    connect(document, &QTextDocument::undoCommandAdded, this, [this, document] {
        if (combining)
            return;
        push(new DocumentStep(document));
        closeStepsExcept(document);
    });
}

void TWUndoHistory::closeStepsExcept(const QTextDocument *document)
{
    // A document merges a new insertion into its last undo step while it counts as modified.
    // Once another step has been taken, that would put two steps into one out of order.
    for (const QPointer<QTextDocument> &other : std::as_const(documents)) {
        if (other && other != document)
            other->setModified(false);
    }
}

void TWUndoHistory::pushCombinedStep(QUndoCommand *step, const std::function<void()> &edits)
{
    combining = true;
    edits();
    combining = false;
    closeStepsExcept(nullptr);
    push(step);
}
