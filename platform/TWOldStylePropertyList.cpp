#include "platform/TWOldStylePropertyList.h"

#include <QByteArray>
#include <QVariantList>
#include <QVariantMap>

namespace {

constexpr int indentWidth = 4;

// The characters of a bare (unquoted) string, in writing and in reading.
bool isBareCharacter(char16_t c)
{
    return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') || c == u'_'
        || c == u'$' || c == u'+' || c == u'/' || c == u':' || c == u'.' || c == u'-';
}

int hexValue(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    return -1;
}

bool canBeBare(const QString &text)
{
    if (text.isEmpty())
        return false;
    // A bare "//x" would be read back as a comment. ("/*" cannot occur: '*' is not bare.)
    if (text.startsWith(QLatin1String("//")))
        return false;
    for (const QChar c : text) {
        if (!isBareCharacter(c.unicode()))
            return false;
    }
    return true;
}

void appendString(QString &out, const QString &text)
{
    if (canBeBare(text)) {
        out += text;
        return;
    }
    static constexpr char hexDigits[] = "0123456789abcdef";
    out += u'"';
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        switch (u) {
        case u'"': out += QLatin1String("\\\""); break;
        case u'\\': out += QLatin1String("\\\\"); break;
        case u'\n': out += QLatin1String("\\n"); break;
        case u'\t': out += QLatin1String("\\t"); break;
        case u'\r': out += QLatin1String("\\r"); break;
        default:
            if (u >= 0x20 && u < 0x7f) {
                out += c;
            } else {
                // One escape per UTF-16 unit, so a character beyond the BMP takes two.
                const char escape[] = {'\\', 'U', hexDigits[u >> 12], hexDigits[(u >> 8) & 0xf],
                                       hexDigits[(u >> 4) & 0xf], hexDigits[u & 0xf]};
                out += QLatin1String(escape, sizeof escape);
            }
        }
    }
    out += u'"';
}

void appendIndent(QString &out, int level)
{
    out.append(QString(indentWidth * level, u' '));
}

// level is the nesting of the value (0 for the root), for the indentation.
bool appendValue(QString &out, const QVariant &value, int level)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        appendString(out, value.toString());
        return true;
    case QMetaType::QByteArray:
        out += u'<';
        out += QLatin1String(value.toByteArray().toHex());
        out += u'>';
        return true;
    case QMetaType::QVariantList: {
        const QVariantList list = value.toList();
        if (list.isEmpty()) {
            out += QLatin1String("()");
            return true;
        }
        out += QLatin1String("(\n");
        for (qsizetype i = 0; i < list.size(); ++i) {
            appendIndent(out, level + 1);
            if (!appendValue(out, list.at(i), level + 1))
                return false;
            out += i + 1 < list.size() ? QLatin1String(",\n") : QLatin1String("\n");
        }
        appendIndent(out, level);
        out += u')';
        return true;
    }
    case QMetaType::QVariantMap: {
        const QVariantMap map = value.toMap();
        if (map.isEmpty()) {
            out += QLatin1String("{}");
            return true;
        }
        out += QLatin1String("{\n");
        for (auto it = map.cbegin(); it != map.cend(); ++it) {
            appendIndent(out, level + 1);
            appendString(out, it.key());
            out += QLatin1String(" = ");
            if (!appendValue(out, it.value(), level + 1))
                return false;
            out += QLatin1String(";\n");
        }
        appendIndent(out, level);
        out += u'}';
        return true;
    }
    default:
        return false;
    }
}

// A recursive-descent parser over the text; every loop advances, and recursion stops at
// maxDepth, so no input can make it hang or overflow the stack.
class Parser
{
public:
    explicit Parser(const QString &text)
        : data(text.constData())
        , size(text.size())
    {
    }

    std::optional<QVariant> parseDocument()
    {
        if (!skipSpace())
            return std::nullopt;
        if (pos >= size)
            return fail(QStringLiteral("empty text"));
        std::optional<QVariant> value = parseValue(1);
        if (!value)
            return std::nullopt;
        if (!skipSpace())
            return std::nullopt;
        if (pos < size)
            return fail(QStringLiteral("unexpected text after the value"));
        return value;
    }

    QString error;

private:
    // Records the first reason with the line and column where it was found: the tag library
    // text is edited by hand.
    std::nullopt_t fail(const QString &why)
    {
        if (!error.isEmpty())
            return std::nullopt;
        qsizetype line = 1;
        qsizetype lineStart = 0;
        for (qsizetype i = 0; i < pos && i < size; ++i) {
            if (at(i) == u'\n') {
                ++line;
                lineStart = i + 1;
            }
        }
        error = QStringLiteral("%1 at line %2, column %3").arg(why).arg(line).arg(pos - lineStart + 1);
        return std::nullopt;
    }

    char16_t at(qsizetype i) const { return data[i].unicode(); }

    // Skips white space and comments; false for an unterminated block comment.
    bool skipSpace()
    {
        while (pos < size) {
            const char16_t c = at(pos);
            if (c == u' ' || c == u'\t' || c == u'\n' || c == u'\r' || c == u'\f' || c == u'\v') {
                ++pos;
            } else if (c == u'/' && pos + 1 < size && at(pos + 1) == u'/') {
                while (pos < size && at(pos) != u'\n' && at(pos) != u'\r')
                    ++pos;
            } else if (c == u'/' && pos + 1 < size && at(pos + 1) == u'*') {
                const qsizetype start = pos;
                pos += 2;
                while (pos + 1 < size && !(at(pos) == u'*' && at(pos + 1) == u'/'))
                    ++pos;
                if (pos + 1 >= size) {
                    pos = start;
                    fail(QStringLiteral("unterminated comment"));
                    return false;
                }
                pos += 2;
            } else {
                break;
            }
        }
        return true;
    }

    std::optional<QVariant> parseValue(int depth)
    {
        if (depth > TWOldStylePropertyList::maxDepth)
            return fail(QStringLiteral("nesting deeper than %1 levels").arg(TWOldStylePropertyList::maxDepth));
        if (pos >= size)
            return fail(QStringLiteral("value expected"));
        const char16_t c = at(pos);
        if (c == u'(')
            return parseArray(depth);
        if (c == u'{')
            return parseDictionary(depth);
        if (c == u'<')
            return parseData();
        if (c == u'"')
            return parseQuoted();
        if (isBareCharacter(c))
            return QVariant(parseBare());
        return fail(QStringLiteral("unexpected character"));
    }

    QString parseBare()
    {
        const qsizetype start = pos;
        while (pos < size && isBareCharacter(at(pos)))
            ++pos;
        return QString(data + start, pos - start);
    }

    std::optional<QString> parseString()
    {
        if (pos < size && at(pos) == u'"')
            return parseQuoted();
        if (pos < size && isBareCharacter(at(pos)))
            return parseBare();
        return fail(QStringLiteral("string expected"));
    }

    std::optional<QString> parseQuoted()
    {
        const qsizetype start = pos;
        ++pos; // opening quote
        QString out;
        qsizetype runStart = pos;
        while (pos < size) {
            const char16_t c = at(pos);
            if (c == u'"') {
                out.append(data + runStart, pos - runStart);
                ++pos;
                return out;
            }
            if (c != u'\\') {
                ++pos;
                continue;
            }
            out.append(data + runStart, pos - runStart);
            ++pos;
            if (pos >= size)
                break;
            const char16_t e = at(pos++);
            switch (e) {
            case u'"': out += QLatin1Char('"'); break;
            case u'\\': out += QLatin1Char('\\'); break;
            case u'\'': out += QLatin1Char('\''); break;
            case u'/': out += QLatin1Char('/'); break;
            case u'a': out += QChar(u'\a'); break;
            case u'b': out += QChar(u'\b'); break;
            case u'f': out += QChar(u'\f'); break;
            case u'n': out += QChar(u'\n'); break;
            case u'r': out += QChar(u'\r'); break;
            case u't': out += QChar(u'\t'); break;
            case u'v': out += QChar(u'\v'); break;
            case u'U': {
                uint code = 0;
                int digits = 0;
                while (digits < 4 && pos < size && hexValue(at(pos)) >= 0) {
                    code = code * 16 + uint(hexValue(at(pos++)));
                    ++digits;
                }
                if (digits == 0)
                    return fail(QStringLiteral("\\U without hex digits"));
                out += QChar(char16_t(code));
                break;
            }
            default:
                if (e >= u'0' && e <= u'7') {
                    // Taken as the character of that code (Latin-1 above 127); the writer
                    // never produces it.
                    uint code = e - u'0';
                    for (int digits = 1; digits < 3 && pos < size && at(pos) >= u'0' && at(pos) <= u'7'; ++digits)
                        code = code * 8 + (at(pos++) - u'0');
                    out += QChar(char16_t(code));
                } else {
                    --pos;
                    return fail(QStringLiteral("unknown escape"));
                }
            }
            runStart = pos;
        }
        pos = start;
        return fail(QStringLiteral("unterminated string"));
    }

    std::optional<QVariant> parseData()
    {
        const qsizetype start = pos;
        ++pos; // '<'
        QByteArray bytes;
        int high = -1;
        while (pos < size) {
            const char16_t c = at(pos);
            if (c == u'>') {
                if (high >= 0)
                    return fail(QStringLiteral("odd number of hex digits in data"));
                ++pos;
                return QVariant(bytes);
            }
            if (c == u' ' || c == u'\t' || c == u'\n' || c == u'\r') {
                ++pos;
                continue;
            }
            const int value = hexValue(c);
            if (value < 0)
                return fail(QStringLiteral("bad character in data"));
            if (high < 0) {
                high = value;
            } else {
                bytes.append(char(high * 16 + value));
                high = -1;
            }
            ++pos;
        }
        pos = start;
        return fail(QStringLiteral("unterminated data"));
    }

    std::optional<QVariant> parseArray(int depth)
    {
        const qsizetype start = pos;
        ++pos; // '('
        QVariantList list;
        if (!skipSpace())
            return std::nullopt;
        while (pos < size && at(pos) != u')') {
            std::optional<QVariant> element = parseValue(depth + 1);
            if (!element)
                return std::nullopt;
            list << *element;
            if (!skipSpace())
                return std::nullopt;
            if (pos < size && at(pos) == u',') {
                ++pos;
                if (!skipSpace())
                    return std::nullopt;
            } else if (pos < size && at(pos) != u')') {
                return fail(QStringLiteral("',' or ')' expected in array"));
            }
        }
        if (pos >= size) {
            pos = start;
            return fail(QStringLiteral("unterminated array"));
        }
        ++pos; // ')'
        return QVariant(list);
    }

    std::optional<QVariant> parseDictionary(int depth)
    {
        const qsizetype start = pos;
        ++pos; // '{'
        QVariantMap map;
        if (!skipSpace())
            return std::nullopt;
        while (pos < size && at(pos) != u'}') {
            std::optional<QString> key = parseString();
            if (!key)
                return std::nullopt;
            if (!skipSpace())
                return std::nullopt;
            if (pos >= size || at(pos) != u'=')
                return fail(QStringLiteral("'=' expected in dictionary"));
            ++pos;
            if (!skipSpace())
                return std::nullopt;
            std::optional<QVariant> value = parseValue(depth + 1);
            if (!value)
                return std::nullopt;
            if (!skipSpace())
                return std::nullopt;
            if (pos >= size || at(pos) != u';')
                return fail(QStringLiteral("';' expected in dictionary"));
            ++pos;
            map.insert(*key, *value);
            if (!skipSpace())
                return std::nullopt;
        }
        if (pos >= size) {
            pos = start;
            return fail(QStringLiteral("unterminated dictionary"));
        }
        ++pos; // '}'
        return QVariant(map);
    }

    const QChar *data;
    qsizetype size;
    qsizetype pos = 0;
};

} // namespace

std::optional<QString> TWOldStylePropertyList::write(const QVariant &value)
{
    QString out;
    if (!appendValue(out, value, 0))
        return std::nullopt;
    return out;
}

std::optional<QVariant> TWOldStylePropertyList::read(const QString &text, QString *error)
{
    Parser parser(text);
    std::optional<QVariant> value = parser.parseDocument();
    if (!value && error)
        *error = parser.error;
    return value;
}
