#include "editor/TWDocumentText.h"

#include <algorithm>

namespace {
constexpr char16_t replacementCharacter = 0xFFFD;
constexpr char16_t lineFeed = u'\n';
} // namespace

QString TWDocumentText::toDocument(const QString &text)
{
    const auto needsChange = [](QChar c) {
        const char16_t u = c.unicode();
        return u == lineSeparator || u == paragraphSeparator || u == heldLineSeparator
            || u == heldParagraphSeparator;
    };
    if (std::none_of(text.cbegin(), text.cend(), needsChange))
        return text;
    QString result = text;
    for (QChar &c : result) {
        switch (c.unicode()) {
        case lineSeparator: c = QChar(heldLineSeparator); break;
        case paragraphSeparator: c = QChar(heldParagraphSeparator); break;
        case heldLineSeparator:
        case heldParagraphSeparator: c = QChar(replacementCharacter); break;
        default: break;
        }
    }
    return result;
}

QString TWDocumentText::fromDocument(QString raw)
{
    // In place: a long document's text is not copied once more.
    QString text = std::move(raw);
    for (QChar &c : text) {
        switch (c.unicode()) {
        // A document's raw text separates its blocks with U+2029 (and never holds U+2028).
        case paragraphSeparator:
        case lineSeparator: c = QChar(lineFeed); break;
        case heldLineSeparator: c = QChar(lineSeparator); break;
        case heldParagraphSeparator: c = QChar(paragraphSeparator); break;
        default: break;
        }
    }
    return text;
}
