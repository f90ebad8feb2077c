#include "editor/TWTextFile.h"

#include "editor/TWJapaneseCodes.h"
#include "editor/TWTextEncoder.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStringDecoder>

namespace {

constexpr char16_t lineFeed = u'\n';
constexpr char16_t carriageReturn = u'\r';

// The character sets, by code; the names are those the converters know them by.
constexpr const char *encodingNames[] = {"Shift_JIS", "EUC-JP", "ISO-2022-JP", "UTF-8"};

QByteArray readAll(const QString &path)
{
    QFile file(path);
    if (path.isEmpty() || !file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
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
    if (TWJapaneseCodes::isJapanese(textEncoding))
        TWJapaneseCodes::useJISForms(text);
    return text;
}

// Runs of text go through the converter; a character whose code is chosen (one with several
// codes, or one only the decoder knows) is written as its chosen code between them.
QByteArray TWTextFile::encode(const QString &text, int textEncoding, const QString &replacedFile)
{
    TWTextEncoder encoder(encodingName(textEncoding));
    const TWJapaneseCodes *codes = TWJapaneseCodes::forEncoding(textEncoding);
    if (!codes || !codes->needsChoices(text)) {
        encoder.appendText(text);
        return encoder.finish();
    }
    const QString converterText = codes->inConverterForms(text);
    TWJapaneseCodes::Chooser chooser(*codes, [&replacedFile] { return readAll(replacedFile); });
    qsizetype runStart = 0;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (!codes->mayChooseCodeOf(text.at(at)))
            continue;
        const bool pair = at + 1 < text.size() && text.at(at).isHighSurrogate() && text.at(at + 1).isLowSurrogate();
        const char32_t character = pair ? QChar::surrogateToUcs4(text.at(at), text.at(at + 1)) : text.at(at).unicode();
        const QByteArray code = chooser.codeFor(character);
        if (code.isEmpty())
            continue;
        encoder.appendText(QStringView(converterText).sliced(runStart, at - runStart));
        encoder.appendCode(code);
        at += pair ? 1 : 0;
        runStart = at + 1;
    }
    encoder.appendText(QStringView(converterText).sliced(runStart));
    return encoder.finish();
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
    const QByteArray bytes = encode(convertReturnCodeOfText(text, returnCode), textEncoding, path);
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
