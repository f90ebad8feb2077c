#pragma once

#include "platform/TWRange.h"

#include <QList>
#include <QStringView>

class TWStringSearch;

// What one Replace All does, worked out on the texts as they are before it: which places it
// replaces, in which order, and where the selection goes afterwards. Downward it covers the
// text from the selection's start to the end, upward from the selection's end back to the
// start, and with wrap around the rest as well; the replacement text is never searched
// again. Across the two template halves the search goes on into the other half as if the two
// were one text.
class TWReplaceAll
{
public:
    // The text that the search started in, and the other template half.
    enum Text { receiver = 0, partner = 1 };

    struct Place
    {
        Text text;
        // In that text before the replacement.
        TWRange range;
    };

    struct Result
    {
        // In order of replacement.
        QList<Place> places;
        qsizetype replacementLength = 0;

        qsizetype count() const { return places.size(); }
        // One text's places, from its start to its end.
        QList<TWRange> placesIn(Text text) const;
        // The last place replaced: its text, and where the replacement starts in it afterwards.
        Text lastText() const { return places.constLast().text; }
        qsizetype lastLocation() const;
        // The first place replaced, where undoing puts the selection back.
        Text firstText() const { return places.constFirst().text; }
        qsizetype firstLocation() const { return places.constFirst().range.location; }
    };

    static Result inOneText(QStringView text, TWRange selection, const TWStringSearch &search,
                            qsizetype replacementLength, unsigned options);
    static Result acrossPair(QStringView receiverText, QStringView partnerText, bool receiverIsTop,
                             TWRange selection, const TWStringSearch &search, qsizetype replacementLength,
                             unsigned options);

private:
    static Result replace(QStringView text, const QStringView *partnerText, bool receiverIsTop, TWRange selection,
                          const TWStringSearch &search, qsizetype replacementLength, unsigned options);
};
