#include "editor/TWJapaneseCodes.h"

#include "editor/TWTextEncoder.h"
#include "editor/TWTextFile.h"

#include <QStringDecoder>
#include <QStringEncoder>

#include <algorithm>
#include <memory>

namespace {

// The characters of JIS X 0208 that the converters read and write in the form of the Windows
// code page, while text typed on this system holds the JIS form.
struct VariantPair
{
    char16_t jis;
    char16_t windows;
};
constexpr VariantPair variantPairs[] = {
    {u'\u301C', u'\uFF5E'}, // WAVE DASH, FULLWIDTH TILDE
    {u'\u2212', u'\uFF0D'}, // MINUS SIGN, FULLWIDTH HYPHEN-MINUS
    {u'\u2016', u'\u2225'}, // DOUBLE VERTICAL LINE, PARALLEL TO
    {u'\u00A2', u'\uFFE0'}, // CENT SIGN, FULLWIDTH CENT SIGN
    {u'\u00A3', u'\uFFE1'}, // POUND SIGN, FULLWIDTH POUND SIGN
    {u'\u00AC', u'\uFFE2'}, // NOT SIGN, FULLWIDTH NOT SIGN
    {u'\u2014', u'\u2015'}, // EM DASH, HORIZONTAL BAR
};

constexpr int japaneseEncodings = TWTextEncoding::iso2022JP + 1;
constexpr int byteValues = 256;
constexpr qsizetype unitValues = 0x10000;
// Never part of a multi-byte code: it keeps apart the codes tried together in one call.
constexpr char16_t separator = u'\n';
// What the converters put in place of a bad code when they do not stop at it.
constexpr char32_t substitutes[] = {U'\x1a', U'\xfffd'};
// ISO-2022-JP's character sets whose codes the converter does not all write back as read:
// JIS X 0208, its own two-byte set ("ESC $ @" designates the same codes), and JIS X 0201
// katakana, which only its decoder reads. Their codes are bytes from "!" to "~".
constexpr const char *iso2022Sets[] = {"\x1b$B", "\x1b(I"};
constexpr char firstSetByte = 0x21;
constexpr char lastSetByte = 0x7e;
constexpr char carriageReturn = '\r';
constexpr char lineFeed = '\n';

// Text is mostly below every variant form, so a scan can skip most units by one comparison.
constexpr char16_t lowestWindowsForm = [] {
    char16_t lowest = char16_t(unitValues - 1);
    for (const VariantPair &pair : variantPairs)
        lowest = std::min(lowest, pair.windows);
    return lowest;
}();

const std::bitset<unitValues> &windowsForms()
{
    static const std::bitset<unitValues> forms = [] {
        std::bitset<unitValues> bits;
        for (const VariantPair &pair : variantPairs)
            bits.set(pair.windows);
        return bits;
    }();
    return forms;
}

char32_t jisForm(char32_t character)
{
    for (const VariantPair &pair : variantPairs) {
        if (character == pair.windows)
            return pair.jis;
    }
    return character;
}

char16_t firstUnit(char32_t character)
{
    return QChar::requiresSurrogates(character) ? QChar::highSurrogate(character) : char16_t(character);
}

std::optional<char32_t> oneCharacter(QStringView text)
{
    if (text.size() == 1 && !text.front().isSurrogate())
        return text.front().unicode();
    if (text.size() == 2 && text.at(0).isHighSurrogate() && text.at(1).isLowSurrogate())
        return QChar::surrogateToUcs4(text.at(0), text.at(1));
    return std::nullopt;
}

// Fresh converters each time: their error flag is not cleared between calls.
std::optional<char32_t> decodeStrictly(const char *name, QByteArrayView bytes)
{
    QStringDecoder decoder(name, QStringConverter::Flag::Stateless);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return oneCharacter(text);
}

std::optional<QByteArray> encodeStrictly(const char *name, QStringView text)
{
    QStringEncoder encoder(name, QStringConverter::Flag::Stateless);
    QByteArray bytes = encoder.encode(text);
    if (encoder.hasError())
        return std::nullopt;
    return bytes;
}

// Whether the bytes may begin a longer code: a converter that keeps state waits for more.
bool beginsCode(const char *name, QByteArrayView bytes)
{
    QStringDecoder decoder(name);
    const QString text = decoder.decode(bytes);
    return !decoder.hasError() && text.isEmpty();
}

} // namespace

bool TWJapaneseCodes::isJapanese(int textEncoding)
{
    return textEncoding != TWTextEncoding::utf8;
}

const TWJapaneseCodes *TWJapaneseCodes::forEncoding(int textEncoding)
{
    if (!isJapanese(textEncoding))
        return nullptr;
    if (textEncoding < TWTextEncoding::shiftJIS || textEncoding >= japaneseEncodings)
        textEncoding = TWTextEncoding::shiftJIS;
    static std::array<std::unique_ptr<const TWJapaneseCodes>, japaneseEncodings> measured;
    if (!measured[textEncoding])
        measured[textEncoding].reset(new TWJapaneseCodes(textEncoding));
    return measured[textEncoding].get();
}

void TWJapaneseCodes::useJISForms(QString &text)
{
    const std::bitset<unitValues> &forms = windowsForms();
    const qsizetype size = text.size();
    const QChar *units = text.constData();
    for (qsizetype at = 0; at < size; ++at) {
        const char16_t unit = units[at].unicode();
        if (unit < lowestWindowsForm || !forms[unit])
            continue;
        text[at] = QChar(char16_t(jisForm(units[at].unicode())));
        units = text.constData();
    }
}

bool TWJapaneseCodes::needsChoices(QStringView text) const
{
    for (const QChar unit : text) {
        if (unit.unicode() >= lowestNeeded && needed[unit.unicode()])
            return true;
    }
    return false;
}

QString TWJapaneseCodes::inConverterForms(const QString &text) const
{
    QString result = text;
    for (qsizetype at = 0; at < text.size(); ++at) {
        const char16_t unit = text.at(at).unicode();
        if (needed[unit] && converterForm(unit) != unit)
            result[at] = QChar(converterForm(unit));
    }
    return result;
}

// Each pair is written in the form that the converter takes, when it takes only one.
void TWJapaneseCodes::chooseVariantForms()
{
    for (const VariantPair &pair : variantPairs) {
        const bool takesJIS = encodeStrictly(name, QStringView(&pair.jis, 1)).has_value();
        const bool takesWindows = encodeStrictly(name, QStringView(&pair.windows, 1)).has_value();
        if (takesWindows && !takesJIS)
            variantReplacements.append({pair.jis, pair.windows});
        else if (takesJIS && !takesWindows)
            variantReplacements.append({pair.windows, pair.jis});
    }
    for (const auto &[form, taken] : variantReplacements)
        needed.set(form);
}

char16_t TWJapaneseCodes::converterForm(char16_t unit) const
{
    for (const auto &[form, taken] : variantReplacements) {
        if (unit == form)
            return taken;
    }
    return unit;
}

// A code while measuring: up to three bytes, after the escape of its character set in ISO-2022-JP.
struct TWJapaneseCodes::Code
{
    Code(int set, QByteArrayView lead, int last = -1)
        : set(quint8(set))
    {
        for (const char byte : lead)
            bytes[length++] = byte;
        if (last >= 0)
            bytes[length++] = char(last);
    }
    QByteArrayView escape() const { return set ? QByteArrayView(iso2022Sets[set - 1]) : QByteArrayView(); }
    QByteArrayView view() const { return QByteArrayView(bytes.data(), length); }
    QByteArray toByteArray() const { return escape().toByteArray().append(view()); }
    // As decoded alone: followed by ASCII in ISO-2022-JP, and by a separator.
    void appendTry(QByteArray &out) const
    {
        out.append(escape()).append(view());
        if (set)
            out.append(TWTextEncoder::asciiEscape);
        out.append(char(separator));
    }
    bool operator==(QByteArrayView written) const
    {
        return written.size() == escape().size() + length && written.startsWith(escape()) && written.endsWith(view());
    }

    char32_t character = 0;
    quint8 set = 0; // 0, or 1 + the index of an ISO-2022-JP set
    quint8 length = 0;
    std::array<char, 3> bytes{};
};

TWJapaneseCodes::TWJapaneseCodes(int textEncoding)
    : name(TWTextFile::encodingName(textEncoding))
    , switchesSets(textEncoding == TWTextEncoding::iso2022JP)
{
    chooseVariantForms();
    std::vector<Code> differing;
    if (switchesSets)
        measureSetCodes(differing);
    else
        measureByteCodes(differing);
    classify(differing);
    while (lowestNeeded < unitValues - 1 && !needed[lowestNeeded])
        ++lowestNeeded;
}

// Every code of a multi-byte encoding, as its decoder reads them: single bytes, pairs after each
// byte that is no code alone, and triples after a byte that begins longer codes, made of the bytes
// that follow leads in pairs.
void TWJapaneseCodes::measureByteCodes(std::vector<Code> &differing)
{
    std::vector<Code> singles;
    for (int byte = 0; byte < byteValues; ++byte) {
        Code code(0, {}, byte);
        if (const std::optional<char32_t> character = decodeStrictly(name, code.view())) {
            code.character = jisForm(*character);
            singles.push_back(code);
            codeLength[byte] = 1;
        }
    }
    keepDiffering(singles, differing);
    std::bitset<byteValues> anyByte;
    anyByte.set().reset(separator);
    std::bitset<byteValues> trails;
    for (int lead = 0; lead < byteValues; ++lead) {
        if (codeLength[lead])
            continue;
        const std::bitset<byteValues> row = measureRow(Code(0, {}, lead), anyByte, differing);
        if (row.any())
            codeLength[lead] = 2;
        trails |= row;
    }
    int firstTrail = 0;
    while (firstTrail < byteValues && !trails[firstTrail])
        ++firstTrail;
    for (int lead = 0; lead < byteValues && firstTrail < byteValues; ++lead) {
        if (codeLength[lead] || !beginsCode(name, Code(0, Code(0, {}, lead).view(), firstTrail).view()))
            continue;
        for (int second = 0; second < byteValues; ++second) {
            if (trails[second] && measureRow(Code(0, Code(0, {}, lead).view(), second), trails, differing).any())
                codeLength[lead] = 3;
        }
    }
}

// Every code of the ISO-2022-JP character sets that need choices, each after its set's escape.
void TWJapaneseCodes::measureSetCodes(std::vector<Code> &differing) const
{
    std::bitset<byteValues> setBytes;
    for (int byte = firstSetByte; byte <= lastSetByte; ++byte)
        setBytes.set(byte);
    for (int set = 1; set <= int(std::size(iso2022Sets)); ++set) {
        if (!TWTextEncoder::designatesTwoByteSet(iso2022Sets[set - 1])) {
            measureRow(Code(set, {}), setBytes, differing);
            continue;
        }
        for (int first = firstSetByte; first <= lastSetByte; ++first)
            measureRow(Code(set, {}, first), setBytes, differing);
    }
}

// The codes made of the lead and each of the last bytes: all are decoded in one call with
// separators, and one more call confirms strictly the ones that gave one character. Answers the
// last bytes that make a code; the codes the converter does not write back go to differing.
std::bitset<byteValues> TWJapaneseCodes::measureRow(const Code &lead, const std::bitset<byteValues> &lastBytes,
                                                    std::vector<Code> &differing) const
{
    QByteArray batch;
    std::vector<Code> tries;
    for (int last = 0; last < byteValues; ++last) {
        if (lastBytes[last]) {
            tries.push_back(Code(lead.set, lead.view(), last));
            tries.back().appendTry(batch);
        }
    }
    QStringDecoder decoder(name, QStringConverter::Flag::Stateless);
    const QString text = decoder.decode(batch);
    std::vector<Code> found;
    QByteArray foundBytes;
    QString foundText;
    qsizetype start = 0;
    for (const Code &code : tries) {
        const qsizetype end = text.indexOf(QChar(separator), start);
        if (end < 0)
            break;
        const QStringView piece = QStringView(text).sliced(start, end - start + 1);
        start = end + 1;
        const std::optional<char32_t> character = oneCharacter(piece.chopped(1));
        if (!character || std::find(std::begin(substitutes), std::end(substitutes), *character) != std::end(substitutes))
            continue;
        found.push_back(code);
        found.back().character = jisForm(*character);
        code.appendTry(foundBytes);
        foundText.append(piece);
    }
    bool confirmed = start == text.size();
    if (confirmed && !found.empty()) {
        QStringDecoder strict(name, QStringConverter::Flag::Stateless);
        confirmed = strict.decode(foundBytes) == foundText && !strict.hasError();
    }
    if (!confirmed) {
        // The converter did not keep the codes apart: each is tried alone.
        found.clear();
        for (Code code : tries) {
            QByteArray bytes;
            code.appendTry(bytes);
            bytes.chop(1);
            if (const std::optional<char32_t> character = decodeStrictly(name, bytes)) {
                code.character = jisForm(*character);
                found.push_back(code);
            }
        }
    }
    keepDiffering(found, differing);
    std::bitset<byteValues> made;
    for (const Code &code : found)
        made.set(quint8(code.bytes[code.length - 1]));
    return made;
}

void TWJapaneseCodes::appendConverterForm(QString &text, char32_t character) const
{
    if (QChar::requiresSurrogates(character))
        text.append(QChar::fromUcs4(character));
    else
        text.append(QChar(converterForm(char16_t(character))));
}

// Keeps the codes whose character the converter does not write as that code. All are encoded in
// one call with separators; one more call confirms strictly the ones that came out as their code.
void TWJapaneseCodes::keepDiffering(const std::vector<Code> &codes, std::vector<Code> &differing) const
{
    if (codes.empty())
        return;
    QString text;
    for (const Code &code : codes) {
        appendConverterForm(text, code.character);
        text.append(QChar(separator));
    }
    QStringEncoder encoder(name, QStringConverter::Flag::Stateless);
    const QByteArray written = encoder.encode(text);
    const QByteArrayView asciiEscape(TWTextEncoder::asciiEscape);
    std::vector<bool> same(codes.size());
    QString confirmed;
    qsizetype start = 0;
    for (size_t at = 0; at < codes.size(); ++at) {
        const qsizetype end = written.indexOf(char(separator), start);
        if (end < 0)
            break;
        QByteArrayView piece = QByteArrayView(written).sliced(start, end - start);
        start = end + 1;
        // Before a line end the converter returns to ASCII; the code stops before that.
        if (switchesSets && piece.size() > asciiEscape.size() && piece.endsWith(asciiEscape))
            piece.chop(asciiEscape.size());
        same[at] = codes[at] == piece;
        if (same[at])
            appendConverterForm(confirmed, codes[at].character);
    }
    if (start != written.size() || !encodeStrictly(name, confirmed)) {
        // The converter did not keep the characters apart: each is encoded alone.
        for (size_t at = 0; at < codes.size(); ++at) {
            QString alone;
            appendConverterForm(alone, codes[at].character);
            const std::optional<QByteArray> bytes = encodeStrictly(name, alone);
            same[at] = bytes && codes[at] == *bytes;
        }
    }
    for (size_t at = 0; at < codes.size(); ++at) {
        if (!same[at])
            differing.push_back(codes[at]);
    }
}

// A character gets choices when one of its codes is not what the converter writes for it: that
// code (the usual one, first) and the others, in code order.
void TWJapaneseCodes::classify(const std::vector<Code> &differing)
{
    for (const Code &code : differing) {
        const bool first = !choices.contains(code.character);
        Choice &choice = choices[code.character];
        if (first) {
            QString alone;
            appendConverterForm(alone, code.character);
            if (const std::optional<QByteArray> usual = encodeStrictly(name, alone)) {
                choice.codes.append(*usual);
                choice.converterWritesFirst = true;
            }
            chosen.set(firstUnit(code.character));
            needed.set(firstUnit(code.character));
        }
        if (!choice.codes.contains(code.toByteArray()))
            choice.codes.append(code.toByteArray());
    }
    for (auto it = choices.cbegin(); it != choices.cend(); ++it) {
        for (qsizetype index = 0; it->codes.size() > 1 && index < it->codes.size(); ++index) {
            const QByteArray &bytes = it->codes.at(index);
            codeIndex.insert(bytes, {it.key(), index});
            codeStarts.set(quint8(bytes.at(switchesSets ? TWTextEncoder::escapeLength(bytes) : 0)));
        }
    }
}

TWJapaneseCodes::Chooser::Chooser(const TWJapaneseCodes &codes, std::function<QByteArray()> replacedFile)
    : codes(codes)
    , replacedFile(std::move(replacedFile))
{
}

QByteArray TWJapaneseCodes::Chooser::codeFor(char32_t character)
{
    const auto found = codes.choices.constFind(character);
    if (found == codes.choices.cend())
        return {};
    qsizetype index = 0;
    if (found->codes.size() > 1) {
        if (!scanned && replacedFile)
            scan(replacedFile());
        scanned = true;
        const auto inFile = used.constFind(character);
        if (inFile != used.cend()) {
            qsizetype &count = written[character];
            index = inFile->at(qMin(count, inFile->size() - 1));
            ++count;
        }
    }
    if (index == 0 && found->converterWritesFirst)
        return {};
    return found->codes.at(index);
}

// Reads the file code by code and notes, in order, each code of a character with several.
void TWJapaneseCodes::Chooser::scan(QByteArrayView file)
{
    if (!codes.switchesSets) {
        for (qsizetype at = 0; at < file.size();) {
            const quint8 first = quint8(file.at(at));
            const qsizetype length = qMax<qsizetype>(1, codes.codeLength[first]);
            if (codes.codeStarts[first] && at + length <= file.size())
                note(QByteArray::fromRawData(file.data() + at, length));
            at += length;
        }
        return;
    }
    // ISO-2022-JP: a code is its set's escape and its bytes. Controls stand alone, and a line
    // end returns to ASCII, as in the decoder.
    QByteArray code(TWTextEncoder::asciiEscape);
    qsizetype escapeLength = code.size();
    qsizetype length = 1;
    for (qsizetype at = 0; at < file.size();) {
        if (const qsizetype sequence = TWTextEncoder::escapeLength(file.sliced(at))) {
            code = file.sliced(at, sequence).toByteArray();
            escapeLength = sequence;
            length = TWTextEncoder::designatesTwoByteSet(code) ? 2 : 1;
            at += sequence;
            continue;
        }
        const char byte = file.at(at);
        if (quint8(byte) < quint8(firstSetByte)) {
            if (byte == carriageReturn || byte == lineFeed) {
                code = TWTextEncoder::asciiEscape;
                escapeLength = code.size();
                length = 1;
            }
            ++at;
            continue;
        }
        if (codes.codeStarts[quint8(byte)] && at + length <= file.size()) {
            code.truncate(escapeLength);
            code.append(file.sliced(at, length));
            note(code);
        }
        at += length;
    }
}

void TWJapaneseCodes::Chooser::note(const QByteArray &code)
{
    const auto found = codes.codeIndex.constFind(code);
    if (found != codes.codeIndex.cend())
        used[found->first].append(found->second);
}
