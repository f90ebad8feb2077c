#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QStringView>

// Builds the bytes of a file piece by piece: text through the converter, where a character the
// encoding cannot represent becomes TWTextFile::replacementCharacter, and codes given as bytes.
// In ISO-2022-JP the pieces are joined with only the escapes that change the character set, and
// the file ends in ASCII.
class TWTextEncoder
{
public:
    explicit TWTextEncoder(const char *encodingName);

    void appendText(QStringView text);
    // A code as it stands after the escape of its character set (the escape included in ISO-2022-JP).
    void appendCode(QByteArrayView code);
    QByteArray finish();

    // The length of the ISO 2022 escape sequence that the bytes start with (ESC, intermediate
    // bytes, one final byte); 0 when they do not start with one.
    static qsizetype escapeLength(QByteArrayView bytes);
    // An escape whose first intermediate byte is "$" designates a set of two-byte codes.
    static bool designatesTwoByteSet(QByteArrayView escapeSequence);
    static constexpr char escape = '\x1b';
    static constexpr char asciiEscape[] = "\x1b(B";

private:
    void append(QByteArrayView piece);
    void noteCharacterSet(QByteArrayView piece);

    const char *encodingName;
    const bool switchesSets;
    QByteArray bytes;
    QByteArray characterSet;
};
