#include "editor/TWReplaceAllStep.h"

#include "editor/TWEditorTextView.h"
#include "preview/TWPreview.h"

TWReplaceAllStep::TWReplaceAllStep(const QString &actionName, const QList<TWEditorTextView *> &changedViews,
                                   Selection afterUndo, Selection afterRedo)
    : undoView(afterUndo.view)
    , undoRange(afterUndo.range)
    , redoView(afterRedo.view)
    , redoRange(afterRedo.range)
{
    setText(actionName);
    for (TWEditorTextView *view : changedViews)
        views << view;
}

void TWReplaceAllStep::undo()
{
    for (auto view = views.crbegin(); view != views.crend(); ++view) {
        if (*view)
            (*view)->stepDocument(true);
    }
    finish({undoView, undoRange});
}

void TWReplaceAllStep::redo()
{
    if (firstRedo) {
        firstRedo = false;
        return;
    }
    for (const QPointer<TWEditorTextView> &view : std::as_const(views)) {
        if (view)
            view->stepDocument(false);
    }
    finish({redoView, redoRange});
}

void TWReplaceAllStep::finish(const Selection &selection)
{
    if (selection.view)
        selection.view->showFoundRange(selection.range);
    for (const QPointer<TWEditorTextView> &view : std::as_const(views)) {
        if (view)
            view->colorText();
    }
    if (TWPreview *viewer = TWPreview::shared())
        viewer->renderIfAutorender();
}
