#pragma once

#include <QString>

// The text of an editor view as Tagwright means it, and as Qt's text document holds it. Only
// LF ends a line in Tagwright; a Qt document, though, breaks its lines at U+2029 PARAGRAPH
// SEPARATOR too and lays out U+2028 LINE SEPARATOR as a line break, and its plain text turns
// both into LF. So inside a document the two are held as two noncharacters, which Unicode sets
// aside for a program's internal use and which no text meant for exchange holds.
class TWDocumentText
{
public:
    static constexpr char16_t lineSeparator = 0x2028;
    static constexpr char16_t paragraphSeparator = 0x2029;
    static constexpr char16_t heldLineSeparator = 0xFDEE;
    static constexpr char16_t heldParagraphSeparator = 0xFDEF;

    // What goes into a document: the two separators as their stand-ins. A stand-in already in
    // the text (it has no meaning outside a program) becomes U+FFFD, so that it can never come
    // back out as a separator nobody wrote.
    static QString toDocument(const QString &text);
    // What comes out of a document's raw text: its block breaks as LF, the stand-ins as the
    // separators they stand for.
    static QString fromDocument(QString raw);
};
