// Reading and writing text files: line ends, the four encodings, strict decoding, lossy
// encoding, the codes a save chooses, and atomic writes.
#include "editor/TWTextFile.h"

#include "TWTestEnvironment.h"

#include <QFile>
#include <QStringDecoder>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>

namespace {

const QByteArray isoToKanji("\x1b$B");
const QByteArray isoToKatakana("\x1b(I");
const QByteArray isoToASCII("\x1b(B");
constexpr int singleShift3 = 0x8f; // EUC-JP's lead byte of three-byte codes
constexpr int japaneseEncodings[] = {TWTextEncoding::shiftJIS, TWTextEncoding::eucJP, TWTextEncoding::iso2022JP};

// A file of every code of a Japanese encoding in code order, as the converter alone reads them:
// each byte (but CR, a line end), each pair after a byte that is no code alone, EUC-JP's triples;
// in ISO-2022-JP, every code of JIS X 0208 and of JIS X 0201 katakana after their escapes.
QByteArray everyCode(int encoding)
{
    QByteArray file;
    const auto add = [&](const QByteArray &code, const QByteArray &context = {}) {
        QStringDecoder decoder(TWTextFile::encodingName(encoding), QStringConverter::Flag::Stateless);
        const QString text = decoder.decode(context + code + (context.isEmpty() ? "" : isoToASCII));
        const bool oneCharacter = !decoder.hasError() && text.toUcs4().size() == 1;
        file += oneCharacter ? code : QByteArray();
        return oneCharacter;
    };
    if (encoding == TWTextEncoding::iso2022JP) {
        for (char first = 0x21; first < 0x7f; ++first) {
            for (char second = 0x21; second < 0x7f; ++second)
                add(QByteArray(1, first) + second, isoToKanji);
        }
        file.prepend(isoToKanji).append(isoToKatakana);
        for (char code = 0x21; code < 0x7f; ++code)
            add(QByteArray(1, code), isoToKatakana);
        return file + isoToASCII;
    }
    for (int lead = 0; lead < 256; ++lead) {
        if (lead == '\r' || add(QByteArray(1, char(lead))))
            continue;
        for (int second = 0; second < 256; ++second) {
            add(QByteArray(1, char(lead)) + char(second));
            for (int third = 0xa1; third < 0xff && lead == singleShift3 && second >= 0xa1; ++third)
                add(QByteArray(1, char(lead)) + char(second) + char(third));
        }
    }
    return file;
}

// A file (none: a new one) read in an encoding (no sample: it reads as nothing; else its text
// holds the sample, so it was read in that encoding), saved over with the text read (or
// another text) and a return code, and the bytes written.
struct SaveCase { QByteArray old; int encoding; int returnCode; QString sample; QString text; QByteArray saved; };

// Japanese text that every one of the four encodings can carry.
const QString japanese = QString::fromUtf8("日本語のテキスト、かな・カナ・漢字。\n二行目です。");

} // namespace

class tst_TWTextFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readAndSaveOverAFile_data()
    {
        QTest::addColumn<SaveCase>("row");
        constexpr int utf8 = TWTextEncoding::utf8, shiftJIS = TWTextEncoding::shiftJIS, lf = TWReturnCode::lf;
        const auto read = [](const char *file) { return TWTestEnvironment::readFile(TW_TESTDATA_DIR "/encodings/" + QLatin1String(file)); };
        const auto unchanged = [](const char *row, int encoding, const QByteArray &file, const char *sample,
                                  int returnCode = TWReturnCode::lf) {
            QTest::newRow(row) << SaveCase{file, encoding, returnCode, QString::fromUtf8(sample), {}, file};
        };
        // An unchanged file saves back byte for byte, whatever codes it uses.
        unchanged("Shift_JIS page", shiftJIS, read("shift_jis-page.html"), "衆院議院運営委員会");
        unchanged("unknown code means Shift_JIS", 7, read("shift_jis-page.html"), "衆院議院運営委員会");
        unchanged("Shift_JIS, CR lines", shiftJIS, read("shift_jis-cr-lines.txt"), "\n芥川龍之介\n", TWReturnCode::cr);
        unchanged("EUC-JP text", TWTextEncoding::eucJP, read("euc-jp.txt"), "コンソール アプリケーション");
        unchanged("UTF-8 text", utf8, read("utf-8.txt"), "역사적 예수");
        unchanged("UTF-8 byte-order mark", utf8, "\xef\xbb\xbfhi\n", "\uFEFFhi");
        unchanged("NUL bytes", shiftJIS, QByteArray("ab\0\0cd\n", 7), "b");
        for (const int encoding : japaneseEncodings)
            unchanged(QByteArray("every ") + TWTextFile::encodingName(encoding) + " code", encoding, everyCode(encoding), "纊");
        // The file returns from kanji with ESC ( J (JIS X 0201 Roman), the writer always with the
        // equivalent ESC ( B (ASCII): the same text, in the writer's own escapes.
        QTest::newRow("ISO-2022-JP text")
            << SaveCase{read("iso-2022-jp.txt"), TWTextEncoding::iso2022JP, lf, QString::fromUtf8("コンソール"), {},
                        read("iso-2022-jp.txt").replace("\x1b(J", isoToASCII)};
        // Reading gives LF for a CR LF and a lone CR; writing gives the return code's line ends
        // (any other code: CR), never doubling a CR LF.
        QTest::newRow("CR LF, lone CR, LF") << SaveCase{"a\r\nb\rc\n", utf8, lf, "", {}, "a\nb\nc\n"};
        QTest::newRow("CR CR LF gives two") << SaveCase{"a\r\r\nb", utf8, lf, "", {}, "a\n\nb"};
        QTest::newRow("trailing CR") << SaveCase{"a\r", utf8, lf, "", {}, "a\n"};
        QTest::newRow("DOS") << SaveCase{{}, utf8, TWReturnCode::dos, {}, "a\nb\r\nc", "a\r\nb\r\nc"};
        QTest::newRow("CR") << SaveCase{{}, utf8, TWReturnCode::cr, {}, "a\nb\r\n", "a\rb\r"};
        QTest::newRow("unknown code writes CR") << SaveCase{{}, utf8, 9, {}, "a\nb", "a\rb"};
        QTest::newRow("empty text empties the file") << SaveCase{"old", utf8, lf, {}, "", {}};
        // Bytes not valid in the encoding read as nothing.
        const auto invalid = [](const char *row, int encoding, const QByteArray &file) {
            QTest::newRow(row) << SaveCase{file, encoding, lf, {}, {}, {}};
        };
        invalid("truncated UTF-8 sequence", utf8, "ab\xe6\x97");
        invalid("Shift_JIS lead byte without trail", shiftJIS, "ab\x82");
        invalid("ISO-2022-JP eight-bit byte", TWTextEncoding::iso2022JP, "abc\xa4\xa2");
        invalid("UTF-8 read as EUC-JP", TWTextEncoding::eucJP, japanese.toUtf8()); // real UTF-8 Japanese
        // Each pair is one JIS X 0208 character in two Unicode forms, the JIS mapping's and that of
        // the Windows code page: typed here or pasted from Windows, both save as the character
        // shown, its JIS code (or Shift_JIS code), which reads as the JIS form. UTF-8 keeps each.
        const struct { const char *name; char16_t jis, windows; quint16 code, shiftJIS; } pairs[] = {
            {"wave dash", u'\u301C', u'\uFF5E', 0x2141, 0x8160}, {"minus", u'\u2212', u'\uFF0D', 0x215d, 0x817c},
            {"double bar", u'\u2016', u'\u2225', 0x2142, 0x8161}, {"cent", u'\u00A2', u'\uFFE0', 0x2171, 0x8191},
            {"pound", u'\u00A3', u'\uFFE1', 0x2172, 0x8192}, {"not", u'\u00AC', u'\uFFE2', 0x224c, 0x81ca},
            {"em dash", u'\u2014', u'\u2015', 0x213d, 0x815c}};
        const auto bytes = [](quint16 code) { return QByteArray(1, char(code >> 8)) + char(code); };
        for (const auto &pair : pairs) {
            const QString jis(QChar(pair.jis)), windows(QChar(pair.windows));
            const QByteArray codes[] = {bytes(pair.shiftJIS), bytes(pair.code | 0x8080), isoToKanji + bytes(pair.code) + isoToASCII};
            for (const int encoding : japaneseEncodings) {
                const char *name = TWTextFile::encodingName(encoding);
                QTest::addRow("%s read, %s", pair.name, name) << SaveCase{codes[encoding], encoding, lf, jis, {}, codes[encoding]};
                for (const QString &form : {jis, windows})
                    QTest::addRow("%s %s, %s", pair.name, form == jis ? "JIS" : "Windows", name)
                        << SaveCase{{}, encoding, lf, {}, form, codes[encoding]};
            }
            QTest::addRow("%s read, UTF-8", pair.name) << SaveCase{windows.toUtf8(), utf8, lf, windows, {}, windows.toUtf8()};
        }
        // Only characters the encoding lacks become "?", one each, also deep inside a large text:
        // the same bytes as the text with "?" in their place.
        const QString large(200000, QLatin1Char('x'));
        for (const int encoding : japaneseEncodings)
            QTest::addRow("lacking, %s", TWTextFile::encodingName(encoding))
                << SaveCase{{}, encoding, lf, {}, large + QString::fromUtf8("A€日😀本\U0001F600〜Z") + japanese,
                            TWTextFile::encode(large + QString::fromUtf8("A?日?本?〜Z") + japanese, encoding)};
        // A changed text is written in the codes the file used where a character has several.
        const QString nearlyEqual = QString::fromUtf8("≒"); // JIS 0x2262, again in NEC's row 13
        QTest::newRow("new file: the JIS code") << SaveCase{{}, shiftJIS, lf, {}, nearlyEqual, "\x81\xe0"};
        QTest::newRow("NEC code kept, and used again")
            << SaveCase{"a\x87\x90", shiftJIS, lf, {}, nearlyEqual + nearlyEqual, "\x87\x90\x87\x90"};
        QTest::newRow("NEC code kept in EUC-JP") << SaveCase{"\xad\xf0", TWTextEncoding::eucJP, lf, {}, "x" + nearlyEqual, "x\xad\xf0"};
    }

    // A save over a file also keeps the file's permissions.
    void readAndSaveOverAFile()
    {
        QFETCH(SaveCase, row);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("page.html"));
        const QFileDevice::Permissions mode = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup;
        QVERIFY(row.old.isEmpty() || (TWTestEnvironment::writeFile(path, row.old) && QFile::setPermissions(path, mode)));
        if (row.text.isNull()) {
            const std::optional<QString> loaded = TWTextFile::load(path, row.encoding);
            QCOMPARE(loaded.has_value(), !row.sample.isNull());
            if (!loaded)
                return;
            QVERIFY(loaded->contains(row.sample));
            row.text = *loaded;
        }
        QVERIFY(TWTextFile::save(row.text, path, row.encoding, row.returnCode));
        const QByteArray written = TWTestEnvironment::readFile(path);
        // From the first difference on, which tells the code that went wrong.
        const qsizetype same = std::mismatch(written.begin(), written.end(), row.saved.begin(), row.saved.end()).first - written.begin();
        QCOMPARE(written.mid(same, 8).toHex(' '), row.saved.mid(same, 8).toHex(' '));
        const QFileDevice::Permissions ofThisUser = QFileDevice::ReadUser | QFileDevice::WriteUser | QFileDevice::ExeUser;
        QVERIFY(row.old.isEmpty() || (QFile::permissions(path) & ~ofThisUser) == mode);
    }

    // A path that cannot be read loads as nothing; a write that cannot complete answers false and
    // never damages the file that was there.
    void failedLoadsAndSavesLoseNothing()
    {
        // The last file opens, but reading it fails: its first page is not mapped.
        for (const char *unreadable : {"/nonexistent/nothing.html", TW_TESTDATA_DIR, "/proc/self/mem"})
            QVERIFY2(!TWTextFile::load(QString::fromLatin1(unreadable), TWTextEncoding::utf8), unreadable);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("page.html"));
        QVERIFY(TWTestEnvironment::writeFile(path, "the old page"));
        // Paths nobody can write, root included: a directory, in a regular file, in a missing folder.
        for (const QString &target : {dir.path(), path + QStringLiteral("/new.html"), dir.filePath(QStringLiteral("no/page.html"))})
            QVERIFY2(!TWTextFile::save(QStringLiteral("new"), target, TWTextEncoding::utf8, TWReturnCode::lf), qPrintable(target));

        // A disk that fills up part-way: here a limit on the file size, which binds root as well.
        rlimit unlimited = {};
        QVERIFY(getrlimit(RLIMIT_FSIZE, &unlimited) == 0);
        const rlimit limited = {1024, unlimited.rlim_max};
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        const bool limitSet = setrlimit(RLIMIT_FSIZE, &limited) == 0;
        const bool written = TWTextFile::save(QString(100000, QLatin1Char('x')), path, TWTextEncoding::utf8, TWReturnCode::lf);
        setrlimit(RLIMIT_FSIZE, &unlimited);
        std::signal(SIGXFSZ, handler);
        QVERIFY(limitSet && !written);
        QCOMPARE(TWTestEnvironment::readFile(path), QByteArray("the old page"));
    }
};

QTEST_GUILESS_MAIN(tst_TWTextFile)
#include "tst_TWTextFile.moc"
