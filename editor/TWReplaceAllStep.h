#pragma once

#include "platform/TWRange.h"

#include <QList>
#include <QPointer>
#include <QUndoCommand>

class TWEditorTextView;

// A Replace All in the undo history: one step, whichever views it changed. Undo puts back
// the replaced texts, last place first, and selects where the first place replaced starts;
// redo replaces them again and selects the last place replaced.
class TWReplaceAllStep : public QUndoCommand
{
public:
    struct Selection
    {
        TWEditorTextView *view;
        TWRange range;
    };

    // `views`: the views changed, in the order their texts were changed.
    TWReplaceAllStep(const QString &actionName, const QList<TWEditorTextView *> &views, Selection afterUndo,
                     Selection afterRedo);

    void undo() override;
    void redo() override;

private:
    void finish(const Selection &selection);

    QList<QPointer<TWEditorTextView>> views;
    QPointer<TWEditorTextView> undoView;
    TWRange undoRange;
    QPointer<TWEditorTextView> redoView;
    TWRange redoRange;
    // The step is recorded after the texts were changed.
    bool firstRedo = true;
};
