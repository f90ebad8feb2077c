#include "editor/TWStringSearch.h"

#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>

#include <QtEndian>

#include <algorithm>
#include <array>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

const UNormalizer2 *decomposition()
{
    static const UNormalizer2 *normalizer = [] {
        UErrorCode error = U_ZERO_ERROR;
        return unorm2_getNFDInstance(&error);
    }();
    return normalizer;
}

// One ICU transformation of a text, growing the buffer when the result does not fit.
template<typename Transform>
QString transformed(QStringView text, Transform transform)
{
    QString out(text.size() + 4, Qt::Uninitialized);
    for (;;) {
        UErrorCode error = U_ZERO_ERROR;
        const int32_t length = transform(reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size()),
                                         reinterpret_cast<UChar *>(out.data()), int32_t(out.size()), &error);
        if (error == U_BUFFER_OVERFLOW_ERROR) {
            out.resize(length);
            continue;
        }
        if (U_FAILURE(error))
            return text.toString();
        out.resize(length);
        return out;
    }
}

QString decomposed(QStringView text)
{
    return transformed(text, [](const UChar *source, int32_t length, UChar *target, int32_t capacity, UErrorCode *error) {
        return unorm2_normalize(decomposition(), source, length, target, capacity, error);
    });
}

QString folded(QStringView text)
{
    return transformed(text, [](const UChar *source, int32_t length, UChar *target, int32_t capacity, UErrorCode *error) {
        return u_strFoldCase(target, capacity, source, length, U_FOLD_CASE_DEFAULT, error);
    });
}

bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

// The form in which texts are compared: canonically decomposed, and for a search that
// ignores case, case-folded and decomposed again (folding can undo a decomposition).
QString keyOf(QStringView text, bool ignoreCase)
{
    if (isAscii(text))
        return ignoreCase ? text.toString().toLower() : text.toString();
    const QString first = decomposed(text);
    return ignoreCase ? decomposed(folded(first)) : first;
}

// What the search needs to know of a UTF-16 unit standing alone, worked out once per process
// on first sight: whether a character may start there (nothing combines it with the unit
// before), and what its comparison form starts with.
enum Kind : quint8 {
    unknownKind = 0,
    // The comparison form is this one unit.
    singleUnit,
    // The comparison form is longer but starts with this unit, whatever marks follow.
    firstUnit,
    // Anything may come of it.
    anyUnit,
};

struct UnitFacts
{
    // 0 not known yet, 1 a character starts here, 2 it combines with what is before.
    std::array<quint8, 0x10000> boundary{};
    std::array<std::array<quint8, 0x10000>, 2> kind{};
    std::array<std::array<char16_t, 0x10000>, 2> unit{};

    UnitFacts()
    {
        for (char16_t c = 0; c < 0x80; ++c) {
            boundary[c] = 1;
            kind[0][c] = kind[1][c] = singleUnit;
            unit[0][c] = c;
            unit[1][c] = (c >= u'A' && c <= u'Z') ? char16_t(c + (u'a' - u'A')) : c;
        }
    }

    bool startsCharacter(char32_t codePoint)
    {
        if (codePoint > 0xFFFF)
            return unorm2_hasBoundaryBefore(decomposition(), UChar32(codePoint));
        if (boundary[codePoint] == 0)
            boundary[codePoint] = unorm2_hasBoundaryBefore(decomposition(), UChar32(codePoint)) ? 1 : 2;
        return boundary[codePoint] == 1;
    }

    Kind kindOf(char16_t c, int mode)
    {
        if (kind[mode][c] == unknownKind)
            learn(c, mode);
        return Kind(kind[mode][c]);
    }

    void learn(char16_t c, int mode)
    {
        kind[mode][c] = anyUnit;
        if (QChar::isSurrogate(c) || !startsCharacter(c))
            return;
        const QString key = keyOf(QStringView(&c, 1), mode == 1);
        if (key.isEmpty())
            return;
        const char32_t lead = QChar::isHighSurrogate(key.at(0).unicode()) && key.size() > 1
                                  ? QChar::surrogateToUcs4(key.at(0), key.at(1))
                                  : key.at(0).unicode();
        // Marks after the character are put in order behind its first part only when that
        // part does not combine itself.
        if (u_getCombiningClass(UChar32(lead)) != 0)
            return;
        kind[mode][c] = key.size() == 1 ? singleUnit : firstUnit;
        unit[mode][c] = key.at(0).unicode();
    }
};

UnitFacts &facts()
{
    static UnitFacts table;
    return table;
}

// Whether a character starts at `at` (after the start of the searched range, before `end`).
bool startsCharacterAt(const char16_t *data, qsizetype at, qsizetype end)
{
    const char16_t c = data[at];
    if (c < 0x300)
        return true;
    if (QChar::isLowSurrogate(c))
        return !QChar::isHighSurrogate(data[at - 1]);
    if (QChar::isHighSurrogate(c)) {
        if (at + 1 < end && QChar::isLowSurrogate(data[at + 1]))
            return facts().startsCharacter(QChar::surrogateToUcs4(c, data[at + 1]));
        return true;
    }
    return facts().startsCharacter(c);
}

} // namespace

TWStringSearch::TWStringSearch(QStringView pattern, bool ignoreCase)
    : key(keyOf(pattern, ignoreCase))
    , ignoreCase(ignoreCase)
{
    if (key.isEmpty())
        return;
    first = key.at(0).unicode();
    firstOtherCase = first;
    if (ignoreCase && first >= u'a' && first <= u'z')
        firstOtherCase = char16_t(first - (u'a' - u'A'));
}

TWRange TWStringSearch::rangeOfString(QStringView text, QStringView pattern, unsigned options, TWRange within)
{
    return TWStringSearch(pattern, options & TWFindOption::ignoreCase)
        .find(text, within, options & TWFindOption::searchUpward);
}

bool TWStringSearch::isEquivalent(QStringView a, QStringView b, bool ignoreCase)
{
    return keyOf(a, ignoreCase) == keyOf(b, ignoreCase);
}

TWRange TWStringSearch::find(QStringView text, TWRange within, bool backwards) const
{
    const TWRange notFound{TWRange::notFound, 0};
    if (key.isEmpty())
        return notFound;
    const qsizetype start = std::clamp<qsizetype>(within.location, 0, text.size());
    const qsizetype end = std::clamp<qsizetype>(within.end(), start, text.size());
    const char16_t *data = text.utf16();
    const char16_t second = key.size() > 1 ? key.at(1).unicode() : 0;
    const auto tryAt = [&](qsizetype at) -> TWRange {
        // Two plain ASCII letters are their own comparison forms: most candidates in a page
        // go at the second letter, without a closer look.
        if (second != 0 && at + 1 < end && data[at] < 0x80 && data[at + 1] < 0x80) {
            const char16_t next = data[at + 1];
            if ((ignoreCase && next >= u'A' && next <= u'Z' ? char16_t(next + (u'a' - u'A')) : next) != second)
                return notFound;
        }
        if (at != start && !startsCharacterAt(data, at, end))
            return notFound;
        const qsizetype matchEnd = matchAt(text, at, end);
        return matchEnd < 0 ? notFound : TWRange{at, matchEnd - at};
    };
    if (!backwards) {
        for (qsizetype at = nextCandidate(text, start, end); at < end; at = nextCandidate(text, at + 1, end)) {
            if (const TWRange found = tryAt(at); found.found())
                return found;
        }
    } else {
        for (qsizetype at = previousCandidate(text, end - 1, start); at >= start;
             at = previousCandidate(text, at - 1, start)) {
            if (const TWRange found = tryAt(at); found.found())
                return found;
        }
    }
    return notFound;
}

qsizetype TWStringSearch::matchAt(QStringView text, qsizetype start, qsizetype end) const
{
    UnitFacts &table = facts();
    const int mode = ignoreCase ? 1 : 0;
    const char16_t *data = text.utf16();
    qsizetype matched = 0;
    qsizetype at = start;
    while (matched < key.size()) {
        if (at >= end)
            return -1;
        // One character: a unit (or surrogate pair) and the marks that combine with it.
        qsizetype next = at + 1;
        if (QChar::isHighSurrogate(data[at]) && next < end && QChar::isLowSurrogate(data[next]))
            ++next;
        while (next < end && !startsCharacterAt(data, next, end))
            ++next;
        if (next == at + 1 && table.kindOf(data[at], mode) == singleUnit) {
            if (table.unit[mode][data[at]] != key.at(matched).unicode())
                return -1;
            ++matched;
        } else {
            const QString part = keyOf(text.sliced(at, next - at), ignoreCase);
            if (part.size() > key.size() - matched || QStringView(key).sliced(matched, part.size()) != part)
                return -1;
            matched += part.size();
        }
        at = next;
    }
    return at;
}

bool TWStringSearch::couldStartMatch(char16_t unit) const
{
    if (unit < 0x80)
        return unit == first || unit == firstOtherCase;
    UnitFacts &table = facts();
    const int mode = ignoreCase ? 1 : 0;
    const Kind kind = table.kindOf(unit, mode);
    return kind == anyUnit || table.unit[mode][unit] == first;
}

// The scans below pass over plain ASCII that cannot start a match eight units at a time;
// every other unit is asked about one by one.
qsizetype TWStringSearch::nextCandidate(QStringView text, qsizetype from, qsizetype end) const
{
    const char16_t *data = text.utf16();
    qsizetype at = from;
    while (at < end) {
#if defined(__SSE2__)
        const __m128i same = _mm_set1_epi16(short(first));
        const __m128i other = _mm_set1_epi16(short(firstOtherCase));
        const __m128i nonAscii = _mm_set1_epi16(short(0xFF80));
        const __m128i zero = _mm_setzero_si128();
        while (end - at >= 8) {
            const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(data + at));
            const __m128i ascii = _mm_cmpeq_epi16(_mm_and_si128(units, nonAscii), zero);
            const __m128i hits = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(units, same), _mm_cmpeq_epi16(units, other)),
                                              _mm_andnot_si128(ascii, _mm_set1_epi16(-1)));
            if (const int mask = _mm_movemask_epi8(hits)) {
                at += qCountTrailingZeroBits(quint32(mask)) / 2;
                break;
            }
            at += 8;
        }
        if (at >= end)
            break;
#endif
        if (couldStartMatch(data[at]))
            return at;
        ++at;
    }
    return end;
}

qsizetype TWStringSearch::previousCandidate(QStringView text, qsizetype from, qsizetype start) const
{
    const char16_t *data = text.utf16();
    qsizetype at = from;
    while (at >= start) {
#if defined(__SSE2__)
        const __m128i same = _mm_set1_epi16(short(first));
        const __m128i other = _mm_set1_epi16(short(firstOtherCase));
        const __m128i nonAscii = _mm_set1_epi16(short(0xFF80));
        const __m128i zero = _mm_setzero_si128();
        while (at - start + 1 >= 8) {
            const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(data + at - 7));
            const __m128i ascii = _mm_cmpeq_epi16(_mm_and_si128(units, nonAscii), zero);
            const __m128i hits = _mm_or_si128(_mm_or_si128(_mm_cmpeq_epi16(units, same), _mm_cmpeq_epi16(units, other)),
                                              _mm_andnot_si128(ascii, _mm_set1_epi16(-1)));
            if (const int mask = _mm_movemask_epi8(hits)) {
                at = at - 7 + (31 - qCountLeadingZeroBits(quint32(mask))) / 2;
                break;
            }
            at -= 8;
        }
        if (at < start)
            break;
#endif
        if (couldStartMatch(data[at]))
            return at;
        --at;
    }
    return start - 1;
}
