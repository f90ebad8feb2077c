#include "editor/TWReplaceAll.h"

#include "editor/TWStringSearch.h"

#include <algorithm>

namespace {

using Place = TWReplaceAll::Place;

// The matches of one pass over [start, end) of a text, searched as a text of its own, in the
// order in which they are replaced. After each match the search goes on past it, so what
// was put in its place is never searched.
void forwardPass(QList<Place> &places, TWReplaceAll::Text text, QStringView string, qsizetype start, qsizetype end,
                 const TWStringSearch &search)
{
    qsizetype from = start;
    for (;;) {
        const TWRange match = search.find(string, {from, end - from}, false);
        if (!match.found())
            return;
        places.append({text, match});
        from = match.end();
    }
}

void backwardPass(QList<Place> &places, TWReplaceAll::Text text, QStringView string, qsizetype start, qsizetype end,
                  const TWStringSearch &search)
{
    qsizetype until = end;
    for (;;) {
        const TWRange match = search.find(string, {start, until - start}, true);
        if (!match.found())
            return;
        places.append({text, match});
        until = match.location;
    }
}

} // namespace

QList<TWRange> TWReplaceAll::Result::placesIn(Text text) const
{
    QList<TWRange> ranges;
    for (const Place &place : places) {
        if (place.text == text)
            ranges.append(place.range);
    }
    std::sort(ranges.begin(), ranges.end(),
              [](const TWRange &a, const TWRange &b) { return a.location < b.location; });
    return ranges;
}

qsizetype TWReplaceAll::Result::lastLocation() const
{
    const Place &last = places.constLast();
    qsizetype location = last.range.location;
    for (const Place &place : places) {
        if (place.text == last.text && place.range.location < last.range.location)
            location += replacementLength - place.range.length;
    }
    return location;
}

TWReplaceAll::Result TWReplaceAll::inOneText(QStringView text, TWRange selection, const TWStringSearch &search,
                                             qsizetype replacementLength, unsigned options)
{
    return replace(text, nullptr, false, selection, search, replacementLength, options);
}

TWReplaceAll::Result TWReplaceAll::acrossPair(QStringView receiverText, QStringView partnerText, bool receiverIsTop,
                                              TWRange selection, const TWStringSearch &search,
                                              qsizetype replacementLength, unsigned options)
{
    return replace(receiverText, &partnerText, receiverIsTop, selection, search, replacementLength, options);
}

TWReplaceAll::Result TWReplaceAll::replace(QStringView text, const QStringView *partnerText, bool receiverIsTop,
                                           TWRange selection, const TWStringSearch &search,
                                           qsizetype replacementLength, unsigned options)
{
    Result result{{}, replacementLength};
    const qsizetype size = text.size();
    const bool wrap = options & TWFindOption::wrapAround;
    const auto wholePartner = [&](bool backwards) {
        if (backwards)
            backwardPass(result.places, partner, *partnerText, 0, partnerText->size(), search);
        else
            forwardPass(result.places, partner, *partnerText, 0, partnerText->size(), search);
    };
    if (!(options & TWFindOption::searchUpward)) {
        // From the first occurrence at or after the selection's start to the end; then on
        // into the bottom half; with wrap around, the rest.
        const TWRange first = search.find(text, {selection.location, size - selection.location}, false);
        const qsizetype split = first.found() ? first.location : size;
        forwardPass(result.places, receiver, text, split, size, search);
        if (partnerText && receiverIsTop)
            wholePartner(false);
        if (wrap) {
            if (partnerText && !receiverIsTop)
                wholePartner(false);
            forwardPass(result.places, receiver, text, 0, split, search);
        }
    } else {
        // From the last occurrence that ends by the selection's end back to the start; then on
        // into the top half; with wrap around, the rest.
        const TWRange last = search.find(text, {0, selection.end()}, true);
        const qsizetype split = last.found() ? last.end() : 0;
        backwardPass(result.places, receiver, text, 0, split, search);
        if (partnerText && !receiverIsTop)
            wholePartner(true);
        if (wrap) {
            if (partnerText && receiverIsTop)
                wholePartner(true);
            backwardPass(result.places, receiver, text, split, size, search);
        }
    }
    return result;
}
