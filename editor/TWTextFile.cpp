#include "editor/TWTextFile.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>
#include <QStringEncoder>

namespace {

constexpr char16_t lineFeed = u'\n';
constexpr char16_t carriageReturn = u'\r';

// The character sets, by code; the names are those the converters know them by.
constexpr const char *encodingNames[] = {"Shift_JIS", "EUC-JP", "ISO-2022-JP", "UTF-8"};

// ISO-2022-JP must end in ASCII: a file (or a piece followed by a replacement "?") that
// stops in kanji mode would be read wrongly. The converter does not switch back by itself.
constexpr char escape = '\x1b';
constexpr char backToASCII[] = "\x1b(B";
constexpr char backToRoman[] = "\x1b(J";

void endInASCII(QByteArray &bytes, const char *name)
{
    if (qstrcmp(name, encodingNames[TWTextEncoding::iso2022JP]) != 0)
        return;
    const qsizetype lastEscape = bytes.lastIndexOf(escape);
    if (lastEscape < 0)
        return;
    const QByteArrayView mode = QByteArrayView(bytes).sliced(lastEscape, qMin<qsizetype>(3, bytes.size() - lastEscape));
    if (mode != QByteArrayView(backToASCII) && mode != QByteArrayView(backToRoman))
        bytes.append(backToASCII);
}

// Encodes a text that holds characters the encoding cannot represent: the text is halved
// until each failing piece is one character, which is replaced. Pieces that encode cleanly
// are taken whole, so the cost grows with the number of such characters, not the text size.
void encodeReplacingUnmappable(QStringView text, const char *name, QByteArray &out)
{
    QStringEncoder encoder(name, QStringConverter::Flag::Stateless);
    QByteArray bytes = encoder.encode(text);
    if (!encoder.hasError()) {
        endInASCII(bytes, name);
        out.append(bytes);
        return;
    }
    const bool surrogatePair = text.size() == 2 && text.at(0).isHighSurrogate() && text.at(1).isLowSurrogate();
    if (text.size() <= 1 || surrogatePair) {
        out.append(TWTextFile::replacementCharacter);
        return;
    }
    qsizetype half = text.size() / 2;
    if (text.at(half).isLowSurrogate() && text.at(half - 1).isHighSurrogate())
        ++half;
    encodeReplacingUnmappable(text.first(half), name, out);
    encodeReplacingUnmappable(text.sliced(half), name, out);
}

} // namespace

QString TWTextFile::convertReturnCodeOfTextToLF(const QString &text)
{
    if (text.isNull())
        return {};
    if (!text.contains(carriageReturn))
        return text;
    QString result;
    result.reserve(text.size());
    const qsizetype size = text.size();
    const QChar *data = text.constData();
    for (qsizetype i = 0; i < size; ++i) {
        if (data[i] == carriageReturn) {
            result.append(QChar(lineFeed));
            if (i + 1 < size && data[i + 1] == lineFeed)
                ++i;
        } else {
            result.append(data[i]);
        }
    }
    return result;
}

QString TWTextFile::convertReturnCodeOfText(const QString &text, int returnCode)
{
    if (text.isNull())
        return {};
    QString result = convertReturnCodeOfTextToLF(text);
    if (returnCode == TWReturnCode::lf)
        return result;
    if (returnCode == TWReturnCode::dos)
        return result.replace(QChar(lineFeed), QLatin1String("\r\n"));
    return result.replace(QChar(lineFeed), QChar(carriageReturn));
}

const char *TWTextFile::encodingName(int textEncoding)
{
    if (textEncoding < TWTextEncoding::shiftJIS || textEncoding > TWTextEncoding::utf8)
        textEncoding = TWTextEncoding::shiftJIS;
    return encodingNames[textEncoding];
}

std::optional<QString> TWTextFile::decode(const QByteArray &bytes, int textEncoding)
{
    // Stateless: the bytes are the whole file, so a sequence cut off at the end is an error.
    QStringDecoder decoder(encodingName(textEncoding),
                           QStringConverter::Flag::ConvertInitialBom | QStringConverter::Flag::Stateless);
    if (!decoder.isValid())
        return std::nullopt;
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

QByteArray TWTextFile::encode(const QString &text, int textEncoding)
{
    const char *name = encodingName(textEncoding);
    QStringEncoder encoder(name, QStringConverter::Flag::Stateless);
    QByteArray bytes = encoder.encode(text);
    if (!encoder.hasError()) {
        endInASCII(bytes, name);
        return bytes;
    }
    QByteArray replaced;
    replaced.reserve(bytes.size());
    encodeReplacingUnmappable(text, name, replaced);
    return replaced;
}

std::optional<QString> TWTextFile::load(const QString &path, int textEncoding)
{
    QFile file(path);
    if (QFileInfo(path).isDir() || !file.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return std::nullopt;
    std::optional<QString> text = decode(bytes, textEncoding);
    if (!text)
        return std::nullopt;
    return convertReturnCodeOfTextToLF(*text);
}

bool TWTextFile::save(const QString &text, const QString &path, int textEncoding, int returnCode)
{
    const QByteArray bytes = encode(convertReturnCodeOfText(text, returnCode),
                                    textEncoding);
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    if (file.write(bytes) != bytes.size()) {
        file.cancelWriting();
        file.commit();
        return false;
    }
    return file.commit();
}
