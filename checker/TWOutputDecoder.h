#pragma once

#include <QByteArray>
#include <QString>

// Turns the bytes of one output stream of a checker into text as they arrive, in UTF-8. A
// character split between two reads is held back until its last byte comes; a byte that can
// never be part of a character becomes U+FFFD and the text goes on after it, so that one bad
// byte does not hide the rest of the output.
class TWOutputDecoder
{
public:
    QString decode(const QByteArray &chunk);
    // Bytes held back for a character not yet complete (dropped when the run ends).
    const QByteArray &heldBack() const { return pending; }
    void clear() { pending.clear(); }
    // Whether the last chunk held bytes that are no UTF-8.
    bool lastChunkHadInvalidBytes() const { return invalid; }

    // The platform's number for UTF-8, the encoding the checkers' output is read in.
    static constexpr int utf8EncodingCode = 4;

private:
    QByteArray pending;
    bool invalid = false;
};
