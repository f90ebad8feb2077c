#include "editor/TWTemplateTextView.h"

#include "editor/TWReplaceAll.h"
#include "editor/TWReplaceAllStep.h"
#include "editor/TWStringSearch.h"
#include "editor/TWUndoHistory.h"
#include "platform/TWBeep.h"
#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"

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

void TWTemplateTextView::resignFirstResponder()
{
    setSelectedRange({0, 0});
}

void TWTemplateTextView::focusOutEvent(QFocusEvent *event)
{
    // Switching to another window or opening a menu is not leaving the half.
    if (event->reason() != Qt::ActiveWindowFocusReason && event->reason() != Qt::PopupFocusReason)
        resignFirstResponder();
    TWEditorTextView::focusOutEvent(event);
}

void TWTemplateTextView::showFoundRange(TWRange range)
{
    // The other half lets go of its selection. It is told rather than left to its focus
    // events: while the find panel has the keyboard it hears of nothing, and a Replace All
    // that changed it has moved its cursor.
    if (partner)
        partner->resignFirstResponder();
    setFocus(Qt::OtherFocusReason);
    TWEditorTextView::showFoundRange(range);
}

TWRange TWTemplateTextView::searchFullText(const TWStringSearch &search, unsigned options)
{
    const QString &text = searchableText();
    return search.find(text, {0, text.size()}, options & TWFindOption::searchUpward);
}

TWRange TWTemplateTextView::searchFullTextForString(const QString &search, unsigned options)
{
    return searchFullText(TWStringSearch(search, options & TWFindOption::ignoreCase), options);
}

TWRange TWTemplateTextView::findString(const QString &search, unsigned options)
{
    if (!partner)
        return TWEditorTextView::findString(search, options);
    const TWStringSearch searching(search, options & TWFindOption::ignoreCase);
    const bool upward = options & TWFindOption::searchUpward;
    // Downward from the top, or upward from the bottom, the search goes on into the other half.
    const bool goesOnIntoPartner = upward ? this == bottomView : this == topView;
    const TWRange selection = selectedRange();
    TWTemplateTextView *target = this;
    TWRange found = searchPastSelection(searchableText(), searching, selection, options);
    if (!found.found() && goesOnIntoPartner) {
        found = partner->searchFullText(searching, options);
        target = partner;
    }
    if (!found.found()) {
        if (!(options & TWFindOption::wrapAround))
            return {TWRange::notFound, 0};
        if (!goesOnIntoPartner) {
            found = partner->searchFullText(searching, options);
            target = partner;
        }
        if (!found.found()) {
            found = searchWrappedAround(searchableText(), searching, selection, search.size(), options);
            target = this;
        }
    }
    if (found.found())
        target->showFoundRange(found);
    return found;
}

void TWTemplateTextView::doReplaceAllString(const QString &search, const QString &replacement, unsigned options)
{
    if (!partner) {
        TWEditorTextView::doReplaceAllString(search, replacement, options);
        return;
    }
    const QString text = searchableText();
    const QString partnerText = partner->searchableText();
    const TWStringSearch searching(search, options & TWFindOption::ignoreCase);
    const TWReplaceAll::Result result = TWReplaceAll::acrossPair(text, partnerText, this == topView, selectedRange(),
                                                                 searching, replacement.size(), options);
    if (result.count() > 0) {
        const auto viewOf = [this](TWReplaceAll::Text text) -> TWTemplateTextView * {
            return text == TWReplaceAll::receiver ? this : partner;
        };
        const QList<TWRange> places = result.placesIn(TWReplaceAll::receiver);
        const QList<TWRange> partnerPlaces = result.placesIn(TWReplaceAll::partner);
        QList<TWEditorTextView *> changed;
        if (!places.isEmpty())
            changed << this;
        if (!partnerPlaces.isEmpty())
            changed << partner;
        const TWRange last{result.lastLocation(), replacement.size()};
        auto *step = new TWReplaceAllStep(TWLocalizedString(TWTextKey::replaceAll), changed,
                                          {viewOf(result.firstText()), {result.firstLocation(), replacement.size()}},
                                          {viewOf(result.lastText()), last});
        undoHistory()->pushCombinedStep(step, [&] {
            if (!places.isEmpty())
                replacePlaces(text, places, replacement);
            if (!partnerPlaces.isEmpty())
                partner->replacePlaces(partnerText, partnerPlaces, replacement);
        });
        viewOf(result.lastText())->showFoundRange(last);
        renderIfAutorender();
    } else {
        TWBeep();
    }
    // Both halves show their colours at once, as a single text view does after Replace All.
    colorText();
    partner->colorText();
    showReplaceAllCount(result.count());
}
