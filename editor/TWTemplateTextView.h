#pragma once

#include "editor/TWEditorTextView.h"

// One half of the template. Each half knows the top half, the bottom half and its partner,
// so that searches and replacements go on from one half into the other as if the two were
// one text: downward from the top into the bottom, upward from the bottom into the top, and
// with wrap around from either half through the other and back.
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

    // Collapses the selection to the start of the half, where its next search starts.
    void resignFirstResponder();
    // The first occurrence in the whole half (upward: the last), selecting nothing.
    TWRange searchFullTextForString(const QString &search, unsigned options);

    TWRange findString(const QString &search, unsigned options) override;
    void doReplaceAllString(const QString &search, const QString &replacement, unsigned options) override;
    // The half that shows a match takes the keyboard focus; the other half lets go of its
    // selection.
    void showFoundRange(TWRange range) override;

protected:
    void focusOutEvent(QFocusEvent *event) override;

private:
    TWRange searchFullText(const TWStringSearch &search, unsigned options);

    TWTemplateTextView *topView = nullptr;
    TWTemplateTextView *bottomView = nullptr;
    TWTemplateTextView *partner = nullptr;
};
