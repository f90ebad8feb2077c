#include "platform/TWXMLPropertyList.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

#include <charconv>
#include <cmath>

namespace {

constexpr char dateFormat[] = "yyyy-MM-ddTHH:mm:ssZ";
constexpr char doctype[]
    = "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">";

// XML 1.0 cannot carry most control characters, not even escaped: a string holding one has
// no property-list form, and writing it would give a file no reader accepts.
bool isXMLText(const QString &text)
{
    for (const QChar c : text) {
        const char16_t u = c.unicode();
        if (u < 0x20 && u != u'\t' && u != u'\n' && u != u'\r')
            return false;
        if (u == 0xFFFE || u == 0xFFFF)
            return false;
    }
    return true;
}

class Writer
{
public:
    explicit Writer(QByteArray *out)
        : xml(out)
    {
        xml.setAutoFormatting(true);
        xml.setAutoFormattingIndent(-1); // one tab per level
    }

    bool writeDocument(const QVariant &root)
    {
        xml.writeStartDocument();
        xml.writeDTD(QLatin1String(doctype));
        xml.writeStartElement(QStringLiteral("plist"));
        xml.writeAttribute(QStringLiteral("version"), QStringLiteral("1.0"));
        if (!writeValue(root))
            return false;
        xml.writeEndElement();
        xml.writeEndDocument();
        return !xml.hasError();
    }

private:
    bool writeText(const QString &element, const QString &text)
    {
        if (!isXMLText(text))
            return false;
        if (!text.contains(QLatin1Char('\r'))) {
            xml.writeTextElement(element, text);
            return true;
        }
        // A reader turns a raw CR (and CR LF) into LF; written as a character reference it
        // survives.
        xml.writeStartElement(element);
        const QStringList pieces = text.split(QLatin1Char('\r'));
        for (qsizetype i = 0; i < pieces.size(); ++i) {
            if (i > 0)
                xml.writeEntityReference(QStringLiteral("#13"));
            if (!pieces.at(i).isEmpty())
                xml.writeCharacters(pieces.at(i));
        }
        xml.writeEndElement();
        return true;
    }

    bool writeValue(const QVariant &value)
    {
        switch (value.typeId()) {
        case QMetaType::QVariantMap: {
            const QVariantMap map = value.toMap();
            xml.writeStartElement(QStringLiteral("dict"));
            for (auto it = map.cbegin(); it != map.cend(); ++it) {
                if (!writeText(QStringLiteral("key"), it.key()) || !writeValue(it.value()))
                    return false;
            }
            xml.writeEndElement();
            return true;
        }
        case QMetaType::QVariantList:
        case QMetaType::QStringList: {
            const QVariantList list = value.toList();
            xml.writeStartElement(QStringLiteral("array"));
            for (const QVariant &element : list) {
                if (!writeValue(element))
                    return false;
            }
            xml.writeEndElement();
            return true;
        }
        case QMetaType::QString:
            return writeText(QStringLiteral("string"), value.toString());
        case QMetaType::QByteArray:
            xml.writeTextElement(QStringLiteral("data"), QString::fromLatin1(value.toByteArray().toBase64()));
            return true;
        case QMetaType::Bool:
            xml.writeEmptyElement(value.toBool() ? QStringLiteral("true") : QStringLiteral("false"));
            return true;
        case QMetaType::Int:
        case QMetaType::LongLong:
        case QMetaType::Short:
        case QMetaType::Long:
            xml.writeTextElement(QStringLiteral("integer"), QString::number(value.toLongLong()));
            return true;
        case QMetaType::UInt:
        case QMetaType::ULongLong:
        case QMetaType::UShort:
        case QMetaType::ULong:
            xml.writeTextElement(QStringLiteral("integer"), QString::number(value.toULongLong()));
            return true;
        case QMetaType::Float: {
            const float number = value.toFloat();
            if (!std::isfinite(number))
                return false;
            // The shortest text that reads back as the same float: 0.3, not 0.30000001192092896.
            char text[32];
            const auto result = std::to_chars(text, text + sizeof text, number);
            xml.writeTextElement(QStringLiteral("real"), QString::fromLatin1(text, result.ptr - text));
            return true;
        }
        case QMetaType::Double: {
            const double number = value.toDouble();
            if (!std::isfinite(number))
                return false;
            xml.writeTextElement(QStringLiteral("real"), QString::number(number, 'g', QLocale::FloatingPointShortest));
            return true;
        }
        case QMetaType::QDateTime:
            xml.writeTextElement(QStringLiteral("date"),
                                 value.toDateTime().toUTC().toString(QLatin1String(dateFormat)));
            return true;
        default:
            return false;
        }
    }

    QXmlStreamWriter xml;
};

class Reader
{
public:
    explicit Reader(const QByteArray &document)
        : xml(document)
    {
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
                    return fail(xml.errorString());
                // An empty <plist/> holds nothing: it is not a property list of any value.
                return fail(QStringLiteral("empty plist"));
            }
            root = readValue(1);
            if (!root)
                return std::nullopt;
            if (nextElement())
                return fail(QStringLiteral("more than one value in plist"));
            if (xml.hasError())
                return fail(xml.errorString());
            if (!xml.isEndElement() || xml.name() != QLatin1String("plist"))
                return fail(QStringLiteral("plist not closed"));
        } else {
            root = readValue(1);
            if (!root)
                return std::nullopt;
        }
        // Nothing but comments and white space may follow the root element.
        while (!xml.atEnd()) {
            const QXmlStreamReader::TokenType token = xml.readNext();
            if (token == QXmlStreamReader::Invalid)
                break;
            if (token == QXmlStreamReader::StartElement)
                return fail(QStringLiteral("content after the root element"));
        }
        if (xml.hasError())
            return fail(xml.errorString());
        return root;
    }

    QString error;

private:
    std::nullopt_t fail(const QString &why)
    {
        if (error.isEmpty())
            error = why;
        return std::nullopt;
    }

    // Advances to the next start element, answering false at an end element (left current)
    // or at the end of input. Text other than white space between elements is an error.
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
            case QXmlStreamReader::Invalid:
                return false;
            default:
                break;
            }
        }
        return false;
    }

    // The text of a simple element; the reader ends on its end element. Elements inside it
    // and entities that cannot be resolved are errors: the text would silently lose a part.
    std::optional<QString> elementText()
    {
        QString text;
        while (!xml.atEnd()) {
            switch (xml.readNext()) {
            case QXmlStreamReader::Characters:
                text += xml.text();
                break;
            case QXmlStreamReader::EndElement:
                return text;
            case QXmlStreamReader::Comment:
            case QXmlStreamReader::ProcessingInstruction:
                break;
            case QXmlStreamReader::EntityReference:
                return fail(QStringLiteral("unknown entity &%1;").arg(xml.name().toString()));
            case QXmlStreamReader::Invalid:
                return fail(xml.errorString());
            default:
                return fail(QStringLiteral("element inside a simple value"));
            }
        }
        return fail(xml.hasError() ? xml.errorString() : QStringLiteral("value not closed"));
    }

    // Reads the value whose start element is current; ends on its end element.
    std::optional<QVariant> readValue(int depth)
    {
        if (depth > TWXMLPropertyList::maxDepth)
            return fail(QStringLiteral("nesting too deep"));
        const QStringView name = xml.name();
        if (name == QLatin1String("dict"))
            return readDict(depth);
        if (name == QLatin1String("array"))
            return readArray(depth);
        if (name == QLatin1String("string")) {
            std::optional<QString> text = elementText();
            return text ? std::optional<QVariant>(*text) : std::nullopt;
        }
        if (name == QLatin1String("data")) {
            std::optional<QString> text = elementText();
            if (!text)
                return std::nullopt;
            QByteArray compact = text->toLatin1();
            compact.replace(' ', "").replace('\n', "").replace('\t', "").replace('\r', "");
            const QByteArray::FromBase64Result decoded
                = QByteArray::fromBase64Encoding(compact, QByteArray::AbortOnBase64DecodingErrors);
            if (!decoded)
                return fail(QStringLiteral("bad base64 data"));
            return QVariant(*decoded);
        }
        if (name == QLatin1String("integer")) {
            std::optional<QString> text = elementText();
            if (!text)
                return std::nullopt;
            bool ok = false;
            const qlonglong number = text->trimmed().toLongLong(&ok);
            if (ok)
                return QVariant(number);
            const qulonglong unsignedNumber = text->trimmed().toULongLong(&ok);
            if (ok)
                return QVariant(unsignedNumber);
            return fail(QStringLiteral("bad integer"));
        }
        if (name == QLatin1String("real")) {
            std::optional<QString> text = elementText();
            if (!text)
                return std::nullopt;
            bool ok = false;
            const double number = text->trimmed().toDouble(&ok);
            if (!ok)
                return fail(QStringLiteral("bad real"));
            return QVariant(number);
        }
        if (name == QLatin1String("true") || name == QLatin1String("false")) {
            const bool value = name == QLatin1String("true");
            std::optional<QString> text = elementText();
            if (!text)
                return std::nullopt;
            if (!text->trimmed().isEmpty())
                return fail(QStringLiteral("text in a boolean"));
            return QVariant(value);
        }
        if (name == QLatin1String("date")) {
            std::optional<QString> text = elementText();
            if (!text)
                return std::nullopt;
            QDateTime date = QDateTime::fromString(text->trimmed(), Qt::ISODate);
            if (!date.isValid())
                return fail(QStringLiteral("bad date"));
            return QVariant(date.toUTC());
        }
        return fail(QStringLiteral("unknown element <%1>").arg(name.toString()));
    }

    std::optional<QVariant> readDict(int depth)
    {
        QVariantMap map;
        while (nextElement()) {
            if (xml.name() != QLatin1String("key"))
                return fail(QStringLiteral("a dict value without a key"));
            std::optional<QString> key = elementText();
            if (!key)
                return std::nullopt;
            if (!nextElement())
                return fail(xml.hasError() ? xml.errorString() : QStringLiteral("a key without a value"));
            std::optional<QVariant> value = readValue(depth + 1);
            if (!value)
                return std::nullopt;
            map.insert(*key, *value);
        }
        if (xml.hasError())
            return fail(xml.errorString());
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
        if (xml.hasError())
            return fail(xml.errorString());
        if (!xml.isEndElement())
            return fail(QStringLiteral("array not closed"));
        return QVariant(list);
    }

    QXmlStreamReader xml;
};

} // namespace

std::optional<QByteArray> TWXMLPropertyList::write(const QVariant &root)
{
    QByteArray out;
    Writer writer(&out);
    if (!writer.writeDocument(root))
        return std::nullopt;
    out.append('\n');
    return out;
}

std::optional<QVariant> TWXMLPropertyList::read(const QByteArray &document, QString *error)
{
    Reader reader(document);
    std::optional<QVariant> value = reader.readDocument();
    if (!value && error)
        *error = reader.error;
    return value;
}
