#pragma once

#include <QList>
#include <QPointer>
#include <QTextDocument>
#include <QUndoStack>

// One undo history for several text documents, as the two halves of the template have: each
// edit of a followed document becomes a step of this history, and undo and redo take the
// steps back in the order they were made, whichever document they belong to.
class TWSharedUndoHistory : public QUndoStack
{
    Q_OBJECT
public:
    explicit TWSharedUndoHistory(QObject *parent = nullptr);

    void follow(QTextDocument *document);
    // Forgets every step (after a whole text was replaced, its document's own history is gone).
    void forgetSteps() { clear(); }

private:
    QList<QPointer<QTextDocument>> documents;
};
