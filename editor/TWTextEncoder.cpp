#include "editor/TWTextEncoder.h"

#include "editor/TWTextFile.h"

#include <QStringEncoder>

namespace {

// JIS X 0201 Roman differs from ASCII in two codes only, so a file may end in it as well.
constexpr char romanEscape[] = "\x1b(J";
constexpr char firstIntermediate = 0x20;
constexpr char lastIntermediate = 0x2f;
constexpr char firstFinal = 0x30;
constexpr char lastFinal = 0x7e;
constexpr char twoByteSetIntermediate = '$';

} // namespace

TWTextEncoder::TWTextEncoder(const char *encodingName)
    : encodingName(encodingName)
    , switchesSets(qstrcmp(encodingName, TWTextFile::encodingName(TWTextEncoding::iso2022JP)) == 0)
    , characterSet(asciiEscape)
{
}

// A piece that does not encode is halved until each failing piece is one character, which is
// replaced. Pieces that encode cleanly are taken whole, so the cost grows with the number of
// such characters, not with the text size.
void TWTextEncoder::appendText(QStringView text)
{
    if (text.isEmpty())
        return;
    // A fresh converter each time: its error flag is not cleared between calls.
    QStringEncoder encoder(encodingName, QStringConverter::Flag::Stateless);
    QByteArray encoded = encoder.encode(text);
    if (!encoder.hasError() && bytes.isEmpty()) {
        // The first piece starts in ASCII, as the file does: taken whole, not copied.
        bytes = std::move(encoded);
        noteCharacterSet(bytes);
        return;
    }
    if (!encoder.hasError()) {
        append(encoded);
        return;
    }
    const bool surrogatePair = text.size() == 2 && text.at(0).isHighSurrogate() && text.at(1).isLowSurrogate();
    if (text.size() <= 1 || surrogatePair) {
        append(QByteArrayView(&TWTextFile::replacementCharacter, 1));
        return;
    }
    qsizetype half = text.size() / 2;
    if (text.at(half).isLowSurrogate() && text.at(half - 1).isHighSurrogate())
        ++half;
    appendText(text.first(half));
    appendText(text.sliced(half));
}

void TWTextEncoder::appendCode(QByteArrayView code)
{
    append(code);
}

// ISO-2022-JP must end in ASCII: a file (or a piece followed by a replacement "?") that stops
// in kanji mode would be read wrongly. The converter does not switch back by itself.
QByteArray TWTextEncoder::finish()
{
    if (switchesSets && characterSet != QByteArrayView(asciiEscape) && characterSet != QByteArrayView(romanEscape))
        bytes.append(asciiEscape);
    return std::move(bytes);
}

// Every piece starts in ASCII, as the converter's output does: its first escape is dropped when
// that set is already in force, and ASCII is restored before a piece that starts without one.
void TWTextEncoder::append(QByteArrayView piece)
{
    if (!switchesSets || piece.isEmpty()) {
        bytes.append(piece);
        return;
    }
    if (piece.front() == escape) {
        const qsizetype length = escapeLength(piece);
        if (length > 0 && piece.first(length) == QByteArrayView(characterSet))
            piece = piece.sliced(length);
    } else if (characterSet != QByteArrayView(asciiEscape)) {
        bytes.append(asciiEscape);
        characterSet = asciiEscape;
    }
    bytes.append(piece);
    noteCharacterSet(piece);
}

void TWTextEncoder::noteCharacterSet(QByteArrayView piece)
{
    const qsizetype lastEscape = switchesSets ? piece.lastIndexOf(escape) : -1;
    if (lastEscape >= 0) {
        const QByteArrayView sequence = piece.sliced(lastEscape);
        characterSet = sequence.first(qMax<qsizetype>(1, escapeLength(sequence))).toByteArray();
    }
}

qsizetype TWTextEncoder::escapeLength(QByteArrayView bytes)
{
    if (bytes.isEmpty() || bytes.front() != escape)
        return 0;
    qsizetype at = 1;
    while (at < bytes.size() && bytes.at(at) >= firstIntermediate && bytes.at(at) <= lastIntermediate)
        ++at;
    if (at == 1 || at == bytes.size() || bytes.at(at) < firstFinal || bytes.at(at) > lastFinal)
        return 0;
    return at + 1;
}

bool TWTextEncoder::designatesTwoByteSet(QByteArrayView escapeSequence)
{
    return escapeSequence.size() > 1 && escapeSequence.at(1) == twoByteSetIntermediate;
}
