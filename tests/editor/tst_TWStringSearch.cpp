// The search that finds and replaces: canonically equivalent texts and, ignoring case, case
// folded texts match, never splitting a character from its marks; compared with a plain
// search that tries every stretch of the text.
#include "editor/TWStringSearch.h"

#include <QRandomGenerator>
#include <QTest>

#include <unicode/unorm2.h>
#include <unicode/ustring.h>

namespace {

QString icu(QStringView text, bool decompose)
{
    std::u16string out(text.size() * 4 + 16, u'\0');
    UErrorCode error = U_ZERO_ERROR;
    const auto *source = reinterpret_cast<const UChar *>(text.utf16());
    const int32_t length = decompose
        ? unorm2_normalize(unorm2_getNFDInstance(&error), source, int32_t(text.size()), out.data(), int32_t(out.size()), &error)
        : u_strFoldCase(out.data(), int32_t(out.size()), source, int32_t(text.size()), U_FOLD_CASE_DEFAULT, &error);
    return U_SUCCESS(error) ? QString::fromUtf16(out.data(), length) : QString();
}

// The Unicode definition: decomposed; ignoring case, decomposed, folded and decomposed again.
QString comparisonForm(QStringView text, bool ignoreCase)
{
    return ignoreCase ? icu(icu(icu(text, true), false), true) : icu(text, true);
}

// A character may start at i: not inside a surrogate pair, and nothing that combines with
// what comes before.
bool startsCharacter(QStringView text, qsizetype i, qsizetype start, qsizetype end)
{
    if (i == start || i == end)
        return true;
    if (text[i].isLowSurrogate() && text[i - 1].isHighSurrogate())
        return false;
    const bool pair = text[i].isHighSurrogate() && i + 1 < end && text[i + 1].isLowSurrogate();
    UErrorCode error = U_ZERO_ERROR;
    return unorm2_hasBoundaryBefore(unorm2_getNFDInstance(&error), pair ? QChar::surrogateToUcs4(text[i], text[i + 1]) : text[i].unicode());
}

// The first (backwards: the last starting) stretch of [start, end) with the search text's
// comparison form. An empty search text is found nowhere: every stretch tried has a character.
TWRange plainSearch(QStringView text, QStringView pattern, bool ignoreCase, bool backwards, qsizetype start, qsizetype end)
{
    const QString wanted = comparisonForm(pattern, ignoreCase);
    for (qsizetype n = 0; n < end - start; ++n) {
        const qsizetype s = backwards ? end - 1 - n : start + n;
        for (qsizetype e = s + 1; e <= end && startsCharacter(text, s, start, end); ++e) {
            if (startsCharacter(text, e, start, end) && comparisonForm(text.sliced(s, e - s), ignoreCase) == wanted)
                return {s, e - s};
        }
    }
    return {TWRange::notFound, 0};
}

// Pieces that exercise every rule: composed and decomposed letters, a lone mark, case pairs
// that fold alike (and one that folds to two letters), an Ångström sign, a ligature, a kana
// with its voicing mark apart, a Hangul syllable and its letters, a surrogate pair and its
// halves alone, and line breaks.
const QStringList pieces = QStringLiteral("a|A|e|\u00E9|e\u0301|\u0301|\u0323|s|S|\u00DF|\u03A3|\u03C3|\u03C2|\u00C5|"
                                          "\u212B|A\u030A|\uFB03|f|\u304C|\u304B\u3099|\uAC00|\u1100\u1161|"
                                          "\U0001D400|<|\n| ").split(u'|')
    + QStringList{QString(QChar(0xD835))};

QString randomText(QRandomGenerator &random, int most)
{
    QString text;
    for (int n = int(random.bounded(most + 1)); n > 0; --n)
        text += pieces.at(random.bounded(int(pieces.size())));
    return text;
}

} // namespace

class tst_TWStringSearch : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Thousands of random texts, search texts and ranges: the search answers what trying
    // every stretch answers, forward and backward, with and without case; and the stretch found
    // (else the range) is taken for the search text, as Replace does, just when the two have
    // one comparison form.
    void agreesWithTryingEveryStretch()
    {
        const auto shown = [](const QString &text) { return QString::fromLatin1(text.toUtf8().toPercentEncoding()); };
        QRandomGenerator random(20261123);
        for (int round = 0; round < 3000; ++round) {
            const QString text = randomText(random, 12);
            QString pattern = randomText(random, 3);
            if (random.bounded(2) && !text.isEmpty()) {
                const qsizetype at = random.bounded(text.size());
                pattern = text.mid(at, 1 + random.bounded(text.size() - at));
            }
            const qsizetype start = random.bounded(text.size() + 1);
            const qsizetype end = start + random.bounded(text.size() - start + 1);
            const bool ignoreCase = random.bounded(2), backwards = random.bounded(2);
            const TWRange expected = plainSearch(text, pattern, ignoreCase, backwards, start, end);
            const TWRange found = TWStringSearch(pattern, ignoreCase).find(text, {start, end - start}, backwards);
            const QString message = QStringLiteral("text %1 pattern %2 range %3..%4 ignore case %5 backwards %6: found %7+%8, expected %9+%10")
                .arg(shown(text), shown(pattern)).arg(start).arg(end).arg(ignoreCase).arg(backwards)
                .arg(found.location).arg(found.length).arg(expected.location).arg(expected.length);
            QVERIFY2(found == expected, qPrintable(message));
            const QStringView stretch = QStringView(text).sliced(expected.found() ? expected.location : start, expected.found() ? expected.length : end - start);
            QVERIFY2(TWStringSearch::isEquivalent(stretch, pattern, ignoreCase) == (comparisonForm(stretch, ignoreCase) == comparisonForm(pattern, ignoreCase)), qPrintable(message));
        }
    }
};

QTEST_GUILESS_MAIN(tst_TWStringSearch)
#include "tst_TWStringSearch.moc"
