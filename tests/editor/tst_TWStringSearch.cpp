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
    char32_t c = text[i].unicode();
    if (text[i].isHighSurrogate() && i + 1 < end && text[i + 1].isLowSurrogate())
        c = QChar::surrogateToUcs4(text[i], text[i + 1]);
    UErrorCode error = U_ZERO_ERROR;
    return unorm2_hasBoundaryBefore(unorm2_getNFDInstance(&error), UChar32(c));
}

TWRange plainSearch(QStringView text, QStringView pattern, bool ignoreCase, bool backwards, qsizetype start,
                    qsizetype end)
{
    const QString wanted = comparisonForm(pattern, ignoreCase);
    if (wanted.isEmpty())
        return {TWRange::notFound, 0};
    const qsizetype count = end - start;
    for (qsizetype n = 0; n < count; ++n) {
        const qsizetype s = backwards ? end - 1 - n : start + n;
        if (!startsCharacter(text, s, start, end))
            continue;
        for (qsizetype e = s + 1; e <= end; ++e) {
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
    void findsWhatReadersCallTheSame_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("pattern");
        QTest::addColumn<unsigned>("options");
        QTest::addColumn<qsizetype>("location");
        QTest::addColumn<qsizetype>("length");
        const qsizetype none = TWRange::notFound;
        QTest::newRow("composed finds decomposed") << QStringLiteral("caf\u00E9") << QStringLiteral("e\u0301") << 0u << qsizetype(3) << qsizetype(1);
        QTest::newRow("decomposed finds composed") << QStringLiteral("cafe\u0301!") << QStringLiteral("\u00E9") << 0u << qsizetype(3) << qsizetype(2);
        QTest::newRow("a letter is not found inside its accented form") << QStringLiteral("cafe\u0301") << QStringLiteral("e") << 0u << none << qsizetype(0);
        QTest::newRow("Angstrom sign is A with ring") << QStringLiteral("1\u212B") << QStringLiteral("\u00C5") << 0u << qsizetype(1) << qsizetype(1);
        QTest::newRow("ignore case: umlaut") << QStringLiteral("x\u00C4") << QStringLiteral("\u00E4") << TWFindOption::ignoreCase << qsizetype(1) << qsizetype(1);
        QTest::newRow("ignore case: final sigma") << QStringLiteral("\u03BB\u03CC\u03B3\u03BF\u03C2") << QStringLiteral("\u039F\u03A3") << TWFindOption::ignoreCase << qsizetype(3) << qsizetype(2);
        QTest::newRow("ignore case: sharp s is ss") << QStringLiteral("Stra\u00DFe") << QStringLiteral("SS") << TWFindOption::ignoreCase << qsizetype(4) << qsizetype(1);
        QTest::newRow("longer than the text") << QStringLiteral("ab") << QStringLiteral("abc") << 0u << none << qsizetype(0);
        QTest::newRow("empty search text") << QStringLiteral("ab") << QString() << 0u << none << qsizetype(0);
    }
    void findsWhatReadersCallTheSame()
    {
        QFETCH(QString, text);
        QFETCH(QString, pattern);
        QFETCH(unsigned, options);
        QFETCH(qsizetype, location);
        QFETCH(qsizetype, length);
        const TWRange found = TWStringSearch::rangeOfString(text, pattern, options, {0, text.size()});
        QCOMPARE(found.location, location);
        QCOMPARE(found.length, length);
    }

    // Thousands of random texts, search texts and ranges: the search answers what trying
    // every stretch answers, forward and backward, with and without case.
    void agreesWithTryingEveryStretch()
    {
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
            const bool ignoreCase = random.bounded(2);
            const bool backwards = random.bounded(2);
            const TWRange expected = plainSearch(text, pattern, ignoreCase, backwards, start, end);
            const TWRange found = TWStringSearch(pattern, ignoreCase).find(text, {start, end - start}, backwards);
            if (found != expected) {
                const auto shown = [](const QString &t) { return QString::fromLatin1(t.toUtf8().toPercentEncoding()); };
                const QString message = QStringLiteral("text ") + shown(text) + QStringLiteral(" pattern ") + shown(pattern)
                    + QStringLiteral(" range %1..%2 ignore case %3 backwards %4: found %5+%6, expected %7+%8")
                          .arg(start).arg(end).arg(ignoreCase).arg(backwards)
                          .arg(found.location).arg(found.length).arg(expected.location).arg(expected.length);
                QFAIL(qPrintable(message));
            }
        }
    }
};

QTEST_GUILESS_MAIN(tst_TWStringSearch)
#include "tst_TWStringSearch.moc"
