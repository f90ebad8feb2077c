#include "editor/TWSharedUndoHistory.h"

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

TWSharedUndoHistory::TWSharedUndoHistory(QObject *parent)
    : QUndoStack(parent)
{
}

void TWSharedUndoHistory::follow(QTextDocument *document)
{
    documents << document;
    connect(document, &QTextDocument::undoCommandAdded, this, [this, document] {
        push(new DocumentStep(document));
        // A document merges a new insertion into its last undo step while it counts as
        // modified. Once another document has taken a step, that would put two steps into
        // one out of order: the others start afresh.
        for (const QPointer<QTextDocument> &other : std::as_const(documents)) {
            if (other && other != document)
                other->setModified(false);
        }
    });
}
