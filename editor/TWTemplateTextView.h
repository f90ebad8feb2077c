#pragma once

#include "editor/TWEditorTextView.h"

// One half of the template. Each half knows the top half, the bottom half and its partner,
// so that searches and replacements can go on from one half into the other.
class TWTemplateTextView : public TWEditorTextView
{
    Q_OBJECT
public:
    explicit TWTemplateTextView(QWidget *parent = nullptr);

    TWTemplateTextView *topTextView() const { return topView; }
    TWTemplateTextView *bottomTextView() const { return bottomView; }
    TWTemplateTextView *pairedView() const { return partner; }
    void setTopTextView(TWTemplateTextView *view);
    void setBottomTextView(TWTemplateTextView *view);

protected:
    // A half that loses the keyboard focus to the other collapses its selection to its
    // start, so that its next search starts from the beginning.
    void focusOutEvent(QFocusEvent *event) override;

private:
    TWTemplateTextView *topView = nullptr;
    TWTemplateTextView *bottomView = nullptr;
    TWTemplateTextView *partner = nullptr;
};
