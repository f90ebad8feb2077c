#pragma once

#include <QList>
#include <QPointer>
#include <QTextDocument>
#include <QUndoStack>

#include <functional>

// The undo history of an editor view, over the text documents it follows: one for most
// views, both halves for the template. Each edit of a followed document becomes a step of
// this history, and undo and redo take the steps back in the order they were made,
// whichever document they belong to. A step of its own (a Replace All) may stand for the
// edits of several documents at once.
class TWUndoHistory : public QUndoStack
{
    Q_OBJECT
public:
    explicit TWUndoHistory(QObject *parent = nullptr);

    void follow(QTextDocument *document);
    // Runs `edits` and records what they do to the followed documents as the one step
    // `step`, which takes those documents' edits back and puts them again
    // (QTextDocument::undo and redo) and is pushed without being done again.
    void pushCombinedStep(QUndoCommand *step, const std::function<void()> &edits);

private:
    // The next edit of a document must start a step of its own, not join the last one.
    void closeStepsExcept(const QTextDocument *document);

    QList<QPointer<QTextDocument>> documents;
    bool combining = false;
};
