#pragma once

#include "platform/TWRange.h"

#include <QString>
#include <QStringView>

// The find options word: the find panel's three switches as bits.
namespace TWFindOption {
inline constexpr unsigned searchUpward = 1;
inline constexpr unsigned ignoreCase = 2;
inline constexpr unsigned wrapAround = 4;
} // namespace TWFindOption

// Substring search as a reader means it: texts that Unicode holds to be the same match (é
// typed as one character or as e and a combining accent; the Ångström sign and Å), and
// ignoring case follows Unicode case folding (Σ, σ and ς; ß and ss). A match never splits a
// character from the marks that combine with it, nor a surrogate pair. Ranges are in the
// searched text's own units, so a match may be longer or shorter than the search text.
class TWStringSearch
{
public:
    TWStringSearch(QStringView pattern, bool ignoreCase);

    // The first match lying within `within` (or, backwards, the one that starts last), the
    // range being searched as if it were the whole text. Not found when there is none or the
    // search text is empty.
    TWRange find(QStringView text, TWRange within, bool backwards) const;

    // The search of the find options word (upward and ignore case; wrap around is not the
    // search's business).
    static TWRange rangeOfString(QStringView text, QStringView pattern, unsigned options, TWRange within);
    // Whether two texts are the same text in the sense of the search.
    static bool isEquivalent(QStringView a, QStringView b, bool ignoreCase);

private:
    // The end of a match that starts at `start`, or -1.
    qsizetype matchAt(QStringView text, qsizetype start, qsizetype end) const;
    bool couldStartMatch(char16_t unit) const;
    qsizetype nextCandidate(QStringView text, qsizetype from, qsizetype end) const;
    qsizetype previousCandidate(QStringView text, qsizetype from, qsizetype start) const;

    // The search text as compared: decomposed, and case-folded when case is ignored.
    QString key;
    bool ignoreCase;
    // The first unit of the key, and the ASCII letter that folds to it.
    char16_t first = 0;
    char16_t firstOtherCase = 0;
};
