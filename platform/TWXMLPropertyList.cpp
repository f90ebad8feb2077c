#include "platform/TWXMLPropertyList.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>
#include <QXmlStreamReader>

#include <charconv>
#include <cmath>

namespace {

constexpr char dateFormat[] = "yyyy-MM-ddTHH:mm:ssZ";
constexpr int firstDateYear = 1;
constexpr int lastDateYear = 9999;
// The processing instruction that carries one UTF-16 unit XML cannot carry: <?tw-char 000C?>.
constexpr char characterTarget[] = "tw-char";
constexpr int characterDigits = 4;
constexpr char header[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                          "<plist version=\"1.0\">\n";

// XML 1.0 cannot carry C0 controls other than tab, LF and CR, nor U+FFFE, U+FFFF or a
// surrogate on its own: not raw, not as a character reference (parsers refuse &#12;).
bool isUnitWithoutXMLForm(char16_t u)
{
    return (u < 0x20 && u != u'\t' && u != u'\n' && u != u'\r') || u == 0xFFFE || u == 0xFFFF
        || QChar::isSurrogate(u);
}

bool isAsciiHexDigit(char16_t c)
{
    return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f') || (c >= u'A' && c <= u'F');
}

// What the writer can write back; the reader refuses any other date, as the store writes
// again everything it has read.
bool hasDateForm(const QDateTime &utc)
{
    return utc.isValid() && utc.date().year() >= firstDateYear && utc.date().year() <= lastDateYear;
}

// Writes the standard layout: the root value at the left margin inside <plist>, one tab more
// for each level of nesting, empty containers as <dict/> and <array/>, data on one line.
class Writer
{
public:
    std::optional<QByteArray> document(const QVariant &root)
    {
        out = header;
        if (!value(root, 1))
            return std::nullopt;
        out += "</plist>\n";
        return out;
    }

private:
    // Element text in UTF-8 with & < > escaped. A unit XML cannot carry (see
    // isUnitWithoutXMLForm) is written as <?tw-char XXXX?>, so that every text survives.
    static QByteArray escaped(const QString &text)
    {
        QString result;
        result.reserve(text.size());
        const qsizetype size = text.size();
        for (qsizetype i = 0; i < size; ++i) {
            const QChar c = text.at(i);
            const char16_t u = c.unicode();
            switch (u) {
            case u'&': result += QLatin1String("&amp;"); continue;
            case u'<': result += QLatin1String("&lt;"); continue;
            case u'>': result += QLatin1String("&gt;"); continue;
            // A reader turns a raw CR (and CR LF) into LF; as a character reference it survives.
            case u'\r': result += QLatin1String("&#13;"); continue;
            default: break;
            }
            // A valid surrogate pair is one character, written as its UTF-8.
            if (c.isHighSurrogate() && i + 1 < size && text.at(i + 1).isLowSurrogate()) {
                result += c;
                result += text.at(++i);
            } else if (isUnitWithoutXMLForm(u)) {
                result += QStringLiteral("<?%1 %2?>")
                              .arg(QLatin1String(characterTarget),
                                   QString::number(uint(u), 16).toUpper().rightJustified(characterDigits, u'0'));
            } else {
                result += c;
            }
        }
        return result.toUtf8();
    }

    void indent(int depth) { out.append(depth - 1, '\t'); }

    void element(int depth, const char *name, const QByteArray &text)
    {
        indent(depth);
        out += '<';
        out += name;
        out += '>';
        out += text;
        out += "</";
        out += name;
        out += ">\n";
    }

    void text(int depth, const char *name, const QString &content) { element(depth, name, escaped(content)); }

    // depth counts the root value as 1, as the reader does, so nothing is written that the
    // reader would refuse as too deep (and the recursion here stays bounded too).
    bool value(const QVariant &value, int depth)
    {
        if (depth > TWXMLPropertyList::maxDepth)
            return false;
        switch (value.typeId()) {
        case QMetaType::QVariantMap: {
            const QVariantMap map = value.toMap();
            indent(depth);
            if (map.isEmpty()) {
                out += "<dict/>\n";
                return true;
            }
            out += "<dict>\n";
            for (auto it = map.cbegin(); it != map.cend(); ++it) {
                text(depth + 1, "key", it.key());
                if (!this->value(it.value(), depth + 1))
                    return false;
            }
            indent(depth);
            out += "</dict>\n";
            return true;
        }
        case QMetaType::QVariantList:
        case QMetaType::QStringList: {
            const QVariantList list = value.toList();
            indent(depth);
            if (list.isEmpty()) {
                out += "<array/>\n";
                return true;
            }
            out += "<array>\n";
            for (const QVariant &item : list) {
                if (!this->value(item, depth + 1))
                    return false;
            }
            indent(depth);
            out += "</array>\n";
            return true;
        }
        case QMetaType::QString:
            text(depth, "string", value.toString());
            return true;
        case QMetaType::QByteArray:
            element(depth, "data", value.toByteArray().toBase64());
            return true;
        case QMetaType::Bool:
            indent(depth);
            out += value.toBool() ? "<true/>\n" : "<false/>\n";
            return true;
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::Short:
        case QMetaType::Long:
            element(depth, "integer", QByteArray::number(value.toLongLong()));
            return true;
        case QMetaType::UInt:
        case QMetaType::ULongLong:
        case QMetaType::UShort:
        case QMetaType::ULong:
            element(depth, "integer", QByteArray::number(value.toULongLong()));
            return true;
        case QMetaType::Float: {
            // Non-finite reals are refused: the reader takes a real to be a number.
            const float number = value.toFloat();
            if (!std::isfinite(number))
                return false;
            // The shortest text that reads back as the same float: 0.3, not 0.30000001192092896.
            char digits[32];
            const auto result = std::to_chars(digits, digits + sizeof digits, number);
            element(depth, "real", QByteArray(digits, result.ptr - digits));
            return true;
        }
        case QMetaType::Double: {
            const double number = value.toDouble();
            if (!std::isfinite(number))
                return false;
            element(depth, "real", QByteArray::number(number, 'g', QLocale::FloatingPointShortest));
            return true;
        }
        case QMetaType::QDateTime: {
            // Kept to the second, in UTC; a date the four-digit form cannot hold is refused.
            const QDateTime date = value.toDateTime().toUTC();
            if (!hasDateForm(date))
                return false;
            element(depth, "date", date.toString(QLatin1String(dateFormat)).toLatin1());
            return true;
        }
        default:
            return false;
        }
    }

    QByteArray out;
};

class Reader
{
public:
    explicit Reader(const QByteArray &document)
        : xml(document)
    {
        // External entities are never fetched by QXmlStreamReader, and its default limit on
        // entity expansion stays in force against expansion bombs.
    }

    std::optional<QVariant> readDocument()
    {
        // Prolog: declaration, DOCTYPE, comments; then the root element.
        if (!nextElement())
            return fail(QStringLiteral("no root element"));
        std::optional<QVariant> root;
        if (xml.name() == QLatin1String("plist")) {
            if (!nextElement()) {
                if (xml.hasError())
                    return fail(QString());
                // An empty <plist/> holds no value at all; there is nothing to hand back, so it
                // is refused like any other document that is not a property list.
                return fail(QStringLiteral("plist holds no value"));
            }
            root = readValue(1);
            if (!root)
                return std::nullopt;
            if (nextElement())
                return fail(QStringLiteral("more than one value in plist"));
            if (!xml.isEndElement())
                return fail(QStringLiteral("plist not closed"));
        } else {
            // A bare root value without the <plist> wrapper is read as well.
            root = readValue(1);
            if (!root)
                return std::nullopt;
        }
        // Only comments, processing instructions and white space may follow the root element;
        // QXmlStreamReader itself refuses a second element or text there.
        while (!xml.atEnd()) {
            if (xml.readNext() == QXmlStreamReader::StartElement)
                return fail(QStringLiteral("content after the root element"));
        }
        if (xml.hasError())
            return fail(QString());
        return root;
    }

    QString error;

private:
    // Records the first reason (or the XML error when why is empty), with the line it is on.
    std::nullopt_t fail(const QString &why)
    {
        if (!error.isEmpty())
            return std::nullopt;
        QString reason = why.isEmpty() ? QStringLiteral("unreadable XML") : why;
        if (xml.hasError()) {
            QString xmlReason = xml.errorString();
            if (xmlReason.endsWith(u'.'))
                xmlReason.chop(1);
            // A reason raised here is more precise than the one the caller gives up with.
            if (why.isEmpty() || xml.error() == QXmlStreamReader::CustomError)
                reason = xmlReason;
            else
                reason += QStringLiteral(" (%1)").arg(xmlReason);
        }
        error = QStringLiteral("%1 at line %2").arg(reason).arg(xml.lineNumber());
        return std::nullopt;
    }

    // Advances to the next start element, answering false at an end element (left current),
    // at an error or at the end of input. Text other than white space between elements is an
    // error.
    bool nextElement()
    {
        while (!xml.atEnd()) {
            switch (xml.readNext()) {
            case QXmlStreamReader::StartElement:
                return true;
            case QXmlStreamReader::EndElement:
                return false;
            case QXmlStreamReader::Characters:
                if (!xml.isWhitespace()) {
                    xml.raiseError(QStringLiteral("text outside a value"));
                    return false;
                }
                break;
            case QXmlStreamReader::EntityReference:
                xml.raiseError(QStringLiteral("unknown entity &%1; outside a value").arg(xml.name()));
                return false;
            case QXmlStreamReader::DTD:
                // QXmlStreamReader never fetches an external entity and drops its references
                // without a word: the text would silently lose a part, so such a document is
                // refused.
                for (const QXmlStreamEntityDeclaration &entity : xml.entityDeclarations()) {
                    if (!entity.systemId().isEmpty() || !entity.publicId().isEmpty()) {
                        xml.raiseError(QStringLiteral("external entity &%1; is not read").arg(entity.name()));
                        return false;
                    }
                }
                break;
            case QXmlStreamReader::Invalid:
                return false;
            default:
                break;
            }
        }
        return false;
    }

    // The unit of a <?tw-char XXXX?> instruction: one to four hex digits naming a unit that
    // XML cannot carry; anything else is not what the writer wrote, and is refused.
    std::optional<QChar> characterUnit()
    {
        const QStringView digits = xml.processingInstructionData();
        bool ok = digits.size() <= characterDigits;
        for (const QChar c : digits)
            ok = ok && isAsciiHexDigit(c.unicode());
        const uint unit = ok ? digits.toUInt(&ok, 16) : 0;
        if (!ok || !isUnitWithoutXMLForm(char16_t(unit)))
            return fail(QStringLiteral("bad <?%1 %2?>").arg(QLatin1String(characterTarget), digits.left(40)));
        return QChar(char16_t(unit));
    }

    // The text of a simple element; the reader ends on its end element. Elements inside it
    // and entities that cannot be resolved are errors: the text would silently lose a part.
    // In string and key text (withCharacters) a tw-char instruction stands for its unit.
    std::optional<QString> elementText(bool withCharacters = false)
    {
        QString text;
        while (!xml.atEnd()) {
            switch (xml.readNext()) {
            case QXmlStreamReader::Characters:
                text += xml.text();
                break;
            case QXmlStreamReader::EndElement:
                return text;
            case QXmlStreamReader::ProcessingInstruction:
                if (withCharacters && xml.processingInstructionTarget() == QLatin1String(characterTarget)) {
                    const std::optional<QChar> unit = characterUnit();
                    if (!unit)
                        return std::nullopt;
                    text += *unit;
                }
                break;
            case QXmlStreamReader::Comment:
                break;
            case QXmlStreamReader::EntityReference:
                return fail(QStringLiteral("unknown entity &%1;").arg(xml.name()));
            case QXmlStreamReader::Invalid:
                return fail(QString());
            default:
                return fail(QStringLiteral("element inside a simple value"));
            }
        }
        return fail(QStringLiteral("value not closed"));
    }

    // An integer that fits in 64 bits: signed, or unsigned above the signed range (both forms
    // occur in property lists); anything else, an overflow included, is refused.
    std::optional<QVariant> integer(const QString &text)
    {
        bool ok = false;
        const qlonglong number = text.toLongLong(&ok);
        if (ok)
            return QVariant(number);
        const qulonglong unsignedNumber = text.toULongLong(&ok);
        if (ok)
            return QVariant(unsignedNumber);
        return fail(QStringLiteral("bad integer \"%1\"").arg(text.left(40)));
    }

    // A finite number a double can hold; "nan", "inf" and out-of-range values are refused, as
    // the writer refuses non-finite reals.
    std::optional<QVariant> real(const QString &text)
    {
        bool ok = false;
        const double number = text.toDouble(&ok);
        if (!ok || !std::isfinite(number))
            return fail(QStringLiteral("bad real \"%1\"").arg(text.left(40)));
        return QVariant(number);
    }

    // ISO 8601. A date that names no time zone is taken as UTC, never as the machine's local
    // time, so that a file reads the same everywhere.
    std::optional<QVariant> date(const QString &text)
    {
        QDateTime date = QDateTime::fromString(text.trimmed(), Qt::ISODate);
        if (date.timeSpec() == Qt::LocalTime)
            date.setTimeSpec(Qt::UTC);
        // To the second, as it is written; a date the writer could not write back is refused.
        date = date.toUTC();
        date = date.addMSecs(-date.time().msec());
        if (!hasDateForm(date))
            return fail(QStringLiteral("bad date \"%1\"").arg(text.left(40)));
        return QVariant(date);
    }

    std::optional<QVariant> data(const QString &text)
    {
        // Base64 may be broken into lines and indented; anything else is a decoding error
        // (a character outside Latin-1 becomes '?', which is not base64 either).
        QByteArray compact = text.toLatin1();
        compact.removeIf([](char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; });
        const QByteArray::FromBase64Result decoded
            = QByteArray::fromBase64Encoding(compact, QByteArray::AbortOnBase64DecodingErrors);
        if (!decoded)
            return fail(QStringLiteral("bad base64 data"));
        return QVariant(*decoded);
    }

    // Reads the value whose start element is current; ends on its end element.
    std::optional<QVariant> readValue(int depth)
    {
        if (depth > TWXMLPropertyList::maxDepth)
            return fail(QStringLiteral("nesting deeper than %1 levels").arg(TWXMLPropertyList::maxDepth));
        const QString name = xml.name().toString();
        if (name == QLatin1String("dict"))
            return readDict(depth);
        if (name == QLatin1String("array"))
            return readArray(depth);
        if (name == QLatin1String("true") || name == QLatin1String("false")) {
            const std::optional<QString> text = elementText();
            if (!text)
                return std::nullopt;
            if (!text->trimmed().isEmpty())
                return fail(QStringLiteral("text in <%1/>").arg(name));
            return QVariant(name == QLatin1String("true"));
        }
        const bool known = name == QLatin1String("string") || name == QLatin1String("data")
            || name == QLatin1String("integer") || name == QLatin1String("real") || name == QLatin1String("date");
        if (!known)
            return fail(QStringLiteral("unknown element <%1>").arg(name));
        const bool isString = name == QLatin1String("string");
        const std::optional<QString> text = elementText(isString);
        if (!text)
            return std::nullopt;
        if (isString)
            return QVariant(*text);
        if (name == QLatin1String("data"))
            return data(*text);
        if (name == QLatin1String("integer"))
            return integer(*text);
        if (name == QLatin1String("real"))
            return real(*text);
        return date(*text);
    }

    std::optional<QVariant> readDict(int depth)
    {
        QVariantMap map;
        while (nextElement()) {
            if (xml.name() != QLatin1String("key"))
                return fail(QStringLiteral("<%1> in a dict without a key").arg(xml.name()));
            const std::optional<QString> key = elementText(true);
            if (!key)
                return std::nullopt;
            if (!nextElement())
                return fail(QStringLiteral("key \"%1\" without a value").arg(key->left(40)));
            std::optional<QVariant> value = readValue(depth + 1);
            if (!value)
                return std::nullopt;
            // A key that appears twice keeps its last value.
            map.insert(*key, *value);
        }
        if (!xml.isEndElement())
            return fail(QStringLiteral("dict not closed"));
        return QVariant(map);
    }

    std::optional<QVariant> readArray(int depth)
    {
        QVariantList list;
        while (nextElement()) {
            std::optional<QVariant> value = readValue(depth + 1);
            if (!value)
                return std::nullopt;
            list << *value;
        }
        if (!xml.isEndElement())
            return fail(QStringLiteral("array not closed"));
        return QVariant(list);
    }

    QXmlStreamReader xml;
};

} // namespace

std::optional<QByteArray> TWXMLPropertyList::write(const QVariant &root)
{
    return Writer().document(root);
}

std::optional<QVariant> TWXMLPropertyList::read(const QByteArray &document, QString *error)
{
    Reader reader(document);
    std::optional<QVariant> value = reader.readDocument();
    if (!value && error)
        *error = reader.error;
    return value;
}
