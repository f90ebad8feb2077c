#pragma once

#include <QByteArray>
#include <QHash>
#include <QList>
#include <QString>

#include <array>
#include <bitset>
#include <functional>
#include <optional>
#include <utility>
#include <vector>

// The codes of one Japanese encoding (Shift_JIS, EUC-JP, ISO-2022-JP) that its converter does not
// carry through decoding and encoding unchanged, measured from the converter itself the first time
// they are needed: characters with several codes (the NEC and IBM duplicates), characters that only
// the decoder knows (such as ISO-2022-JP's IBM rows and half-width katakana), and the JIS/Windows
// variant pairs, of which the converter takes only one form.
class TWJapaneseCodes
{
public:
    // Whether an encoding code means one of the Japanese encodings (any unknown code does).
    static bool isJapanese(int textEncoding);
    // The codes of a Japanese encoding, measured once per encoding; nullptr for UTF-8.
    static const TWJapaneseCodes *forEncoding(int textEncoding);

    // Gives a decoded text the JIS form of each variant pair (U+301C for U+FF5E, ...): the
    // characters typed and shown on this system.
    static void useJISForms(QString &text);

    // Whether the text holds a character that the converter alone would not write as its file
    // had it, or not at all. One pass, no allocation.
    bool needsChoices(QStringView text) const;
    // The text with each variant pair in the form the converter takes (each unit replaced by one).
    QString inConverterForms(const QString &text) const;
    // A cheap filter: whether the UTF-16 unit may start a character whose code is chosen here.
    bool mayChooseCodeOf(QChar unit) const { return chosen[unit.unicode()]; }

    // Chooses codes for one save. A character with several codes gets the code that the file
    // being replaced used for it, occurrence by occurrence (the last one used for any further
    // occurrence), so that an unchanged text saves back byte for byte; a character that file
    // lacks gets the converter's code. A character only the decoder knows gets its decoder's code.
    class Chooser
    {
    public:
        // replacedFile gives the bytes of the file being replaced; it is called at most once,
        // and only when the text holds a character with several codes.
        Chooser(const TWJapaneseCodes &codes, std::function<QByteArray()> replacedFile);
        // The code to write for the character; empty when the converter writes the right one.
        QByteArray codeFor(char32_t character);

    private:
        void scan(QByteArrayView file);
        void note(const QByteArray &code);

        const TWJapaneseCodes &codes;
        std::function<QByteArray()> replacedFile;
        bool scanned = false;
        QHash<char32_t, QList<qsizetype>> used; // indexes into a character's codes, in file order
        QHash<char32_t, qsizetype> written;
    };

private:
    struct Code; // a code while measuring
    struct Choice
    {
        QList<QByteArray> codes;           // the usual code first
        bool converterWritesFirst = false; // false for a character only the decoder knows
    };

    explicit TWJapaneseCodes(int textEncoding);
    void chooseVariantForms();
    void measureByteCodes(std::vector<Code> &differing);
    void measureSetCodes(std::vector<Code> &differing) const;
    std::bitset<256> measureRow(const Code &lead, const std::bitset<256> &lastBytes, std::vector<Code> &differing) const;
    void keepDiffering(const std::vector<Code> &codes, std::vector<Code> &differing) const;
    void classify(const std::vector<Code> &differing);
    char16_t converterForm(char16_t unit) const;
    void appendConverterForm(QString &text, char32_t character) const;

    const char *name;
    const bool switchesSets; // ISO-2022-JP: codes follow the escape of their character set
    QList<std::pair<char16_t, char16_t>> variantReplacements; // form in a text -> form taken
    std::bitset<0x10000> needed;                              // first units of characters needing more
    char16_t lowestNeeded = 0;                                // no unit below it is needed
    std::bitset<0x10000> chosen;                              // first units of characters in choices
    QHash<char32_t, Choice> choices;
    QHash<QByteArray, std::pair<char32_t, qsizetype>> codeIndex; // codes of characters with several
    std::bitset<256> codeStarts;                                   // first bytes of those (after the escape)
    std::array<qsizetype, 256> codeLength{};                      // by first byte; 0 for no known code
};
