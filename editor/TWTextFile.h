#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// Text encoding codes, as kept in the preference "Text Encoding". Any other code is read and
// written as Shift_JIS.
namespace TWTextEncoding {
inline constexpr int shiftJIS = 0;
inline constexpr int eucJP = 1;
inline constexpr int iso2022JP = 2;
inline constexpr int utf8 = 3;
} // namespace TWTextEncoding

// Return codes, as kept in the preference "Return Code": the line end written to files.
// Any other code writes CR.
namespace TWReturnCode {
inline constexpr int cr = 0;
inline constexpr int lf = 1;
inline constexpr int dos = 2;
} // namespace TWReturnCode

// The boundary between files and texts: inside the application every text ends its lines
// with LF; files use the chosen encoding and line end.
class TWTextFile
{
public:
    // Every CR LF and every lone CR becomes LF (CR LF first, so a pair gives one LF).
    // A null string gives a null string.
    static QString convertReturnCodeOfTextToLF(const QString &text);
    // The text with the line ends of the return code (normalised first, so CR LF never
    // becomes CR CR LF). A null string gives a null string.
    static QString convertReturnCodeOfText(const QString &text, int returnCode);

    // The character-set name of an encoding code (unknown codes give Shift_JIS).
    static const char *encodingName(int textEncoding);

    // Strict decoding with exactly one encoding: nothing when a byte sequence is invalid.
    // A byte-order mark is kept as the character U+FEFF, so that it is written back. The
    // Japanese encodings give the JIS form of the variant pairs (U+301C WAVE DASH, not U+FF5E).
    static std::optional<QString> decode(const QByteArray &bytes, int textEncoding);
    // Lossy encoding: only a character the encoding lacks becomes replacementCharacter; both
    // forms of a variant pair get its JIS code. Where a character has several codes, the one
    // the file at replacedFile used for it is written (see TWJapaneseCodes::Chooser).
    static QByteArray encode(const QString &text, int textEncoding, const QString &replacedFile = QString());
    static constexpr char replacementCharacter = '?';

    // Reads a whole file and decodes it; the text comes back with LF line ends. Nothing when
    // the file cannot be read or its bytes are not valid in the encoding.
    static std::optional<QString> load(const QString &path, int textEncoding);
    // Converts the line ends, encodes and writes the file atomically: the old file stays
    // untouched unless the new one was written completely, and its codes are reused where a
    // character has several, so an unchanged text saves back byte for byte. Answers false when
    // nothing was written.
    static bool save(const QString &text, const QString &path, int textEncoding, int returnCode);
};
