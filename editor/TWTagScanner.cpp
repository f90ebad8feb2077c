#include "editor/TWTagScanner.h"

namespace {

bool isASCIILetter(QChar c)
{
    const char16_t u = c.unicode();
    return (u >= u'A' && u <= u'Z') || (u >= u'a' && u <= u'z');
}

TWRange between(qsizetype from, qsizetype to)
{
    return {from, to - from};
}

} // namespace

int TWTagScanner::typeOfText(QStringView text, qsizetype i)
{
    if (i >= text.size())
        return endOfText;
    if (text[i] != QLatin1Char('<'))
        return plainText;
    if (i == text.size() - 1)
        return tag;
    return text[i + 1] == QLatin1Char('!') ? comment : tag;
}

TWRange TWTagScanner::rangeOfCommentInText(QStringView text, qsizetype i)
{
    const qsizetype size = text.size();
    if (i + 3 < size && text[i + 2] == QLatin1Char('-') && text[i + 3] == QLatin1Char('-')) {
        // The dashes of the opener never count towards the closer.
        const qsizetype at = text.indexOf(QLatin1String("-->"), i + 4);
        return at < 0 ? between(i, size) : between(i, at + 3);
    }
    for (qsizetype j = i + 2; j < size; ++j) {
        if (text[j] == QLatin1Char('>'))
            return between(i, j + 1);
        if (text[j] == QLatin1Char('<'))
            return between(i, j);
    }
    return between(i, size);
}

TWRange TWTagScanner::rangeOfTagInText(QStringView text, QString &name, qsizetype i)
{
    name.clear();
    const qsizetype size = text.size();
    qsizetype start = i + 1;
    if (start < size && text[start] == QLatin1Char('/'))
        start = i + 2;
    bool nameOpen = true;
    for (qsizetype j = start; j < size; ++j) {
        const QChar c = text[j];
        if (nameOpen && !isASCIILetter(c)) {
            nameOpen = false;
            if (start < j)
                name = text.sliced(start, j - start).toString();
        }
        if (c == QLatin1Char('>'))
            return between(i, j + 1);
        if (c == QLatin1Char('<'))
            return between(i, j);
    }
    if (nameOpen && start < size)
        name = text.sliced(start).toString();
    return between(i, size);
}

TWRange TWTagScanner::rangeOfPlainText(QStringView text, qsizetype i)
{
    const qsizetype at = text.indexOf(QLatin1Char('<'), i);
    return between(i, at < 0 ? text.size() : at);
}

QList<TWTagScanner::Segment> TWTagScanner::segments(QStringView text)
{
    QList<Segment> result;
    QString name;
    qsizetype i = 0;
    while (i < text.size()) {
        const int kind = typeOfText(text, i);
        Segment segment{{}, kind, {}};
        if (kind == tag) {
            segment.range = rangeOfTagInText(text, name, i);
            segment.name = name;
        } else if (kind == comment) {
            segment.range = rangeOfCommentInText(text, i);
        } else {
            segment.range = rangeOfPlainText(text, i);
        }
        result << segment;
        i = segment.range.end();
    }
    return result;
}
