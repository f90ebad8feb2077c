#include "editor/TWTemplateTextView.h"

#include <QFocusEvent>

TWTemplateTextView::TWTemplateTextView(QWidget *parent)
    : TWEditorTextView(parent)
{
    // The template's markup is shown in black, not in the editor text colour.
    setEditorTextColor(Qt::black);
}

void TWTemplateTextView::setTopTextView(TWTemplateTextView *view)
{
    topView = view;
    partner = view == this ? bottomView : view;
}

void TWTemplateTextView::setBottomTextView(TWTemplateTextView *view)
{
    bottomView = view;
    partner = view == this ? topView : view;
}

void TWTemplateTextView::focusOutEvent(QFocusEvent *event)
{
    // Switching to another window or opening a menu is not leaving the half.
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        setSelectedRange({0, 0});
    TWEditorTextView::focusOutEvent(event);
}
