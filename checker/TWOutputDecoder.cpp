#include "checker/TWOutputDecoder.h"

#include <QStringDecoder>

namespace {

// How many bytes a UTF-8 sequence that starts with this byte has; 0 for a byte that starts none.
int sequenceLength(unsigned char lead)
{
    if (lead < 0x80)
        return 1;
    if (lead >= 0xC2 && lead <= 0xDF)
        return 2;
    if (lead >= 0xE0 && lead <= 0xEF)
        return 3;
    if (lead >= 0xF0 && lead <= 0xF4)
        return 4;
    return 0;
}

// The number of bytes at the end that start a character whose last bytes have not come yet.
qsizetype incompleteTail(const QByteArray &bytes)
{
    const qsizetype size = bytes.size();
    for (qsizetype back = 1; back <= 3 && back <= size; ++back) {
        const auto byte = static_cast<unsigned char>(bytes.at(size - back));
        if ((byte & 0xC0) == 0x80)
            continue; // a continuation byte: the lead is further back
        const int length = sequenceLength(byte);
        return length > back ? back : 0;
    }
    return 0;
}

} // namespace

QString TWOutputDecoder::decode(const QByteArray &chunk)
{
    QByteArray bytes = pending + chunk;
    const qsizetype tail = incompleteTail(bytes);
    pending = bytes.right(tail);
    bytes.chop(tail);
    // A byte-order mark in the middle of the output is a character like any other.
    QStringDecoder decoder(QStringConverter::Utf8,
                           QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    QString text = decoder.decode(bytes);
    invalid = decoder.hasError();
    return text;
}
