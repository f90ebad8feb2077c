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

QByteArray testData(const char *name)
{
    return TWTestEnvironment::readFile(QStringLiteral(TW_TESTDATA_DIR "/encodings/") + QLatin1String(name));
}

const QByteArray isoToKanji("\x1b$B");
const QByteArray isoToKatakana("\x1b(I");
const QByteArray isoToASCII("\x1b(B");
constexpr int singleShift3 = 0x8f; // EUC-JP's lead byte of three-byte codes

// A file of every code of a Japanese encoding in code order, as the converter alone reads them:
// each byte (but CR, a line end), each pair after a byte that is no code alone, EUC-JP's triples;
// in ISO-2022-JP, every code of JIS X 0208 and of JIS X 0201 katakana after their escapes.
QByteArray everyCode(int encoding)
{
    const char *name = TWTextFile::encodingName(encoding);
    QByteArray file;
    const auto add = [&](const QByteArray &code, const QByteArray &context = {}) {
        QStringDecoder decoder(name, QStringConverter::Flag::Stateless);
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

// Japanese text that every one of the four encodings can carry.
const QString japanese = QString::fromUtf8("日本語のテキスト、かな・カナ・漢字。\n二行目です。");

} // namespace

class tst_TWTextFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineEnds_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("code");
        QTest::addColumn<QString>("expected");
        QTest::newRow("CR LF, lone CR, LF") << QStringLiteral("a\r\nb\rc\n") << TWReturnCode::lf << QStringLiteral("a\nb\nc\n");
        QTest::newRow("CR CR LF gives two") << QStringLiteral("a\r\r\nb") << TWReturnCode::lf << QStringLiteral("a\n\nb");
        QTest::newRow("LF CR gives two") << QStringLiteral("a\n\rb") << TWReturnCode::lf << QStringLiteral("a\n\nb");
        QTest::newRow("trailing CR") << QStringLiteral("a\r") << TWReturnCode::lf << QStringLiteral("a\n");
        QTest::newRow("empty stays empty") << QStringLiteral("") << TWReturnCode::lf << QStringLiteral("");
        QTest::newRow("null stays null") << QString() << TWReturnCode::lf << QString();
        QTest::newRow("DOS") << QStringLiteral("a\nb\n") << TWReturnCode::dos << QStringLiteral("a\r\nb\r\n");
        QTest::newRow("CR") << QStringLiteral("a\nb\n") << TWReturnCode::cr << QStringLiteral("a\rb\r");
        QTest::newRow("CR LF never doubles") << QStringLiteral("x\r\ny") << TWReturnCode::dos << QStringLiteral("x\r\ny");
        QTest::newRow("unknown code writes CR") << QStringLiteral("a\nb") << 9 << QStringLiteral("a\rb");
    }

    // Writing gives the line ends of the return code; reading gives LF, as writing with LF does.
    void lineEnds()
    {
        QFETCH(QString, text);
        QFETCH(int, code);
        QFETCH(QString, expected);
        for (const QString &converted : {TWTextFile::convertReturnCodeOfText(text, code),
                                         code == TWReturnCode::lf ? TWTextFile::convertReturnCodeOfTextToLF(text) : expected}) {
            QCOMPARE(converted, expected);
            QCOMPARE(converted.isNull(), expected.isNull());
        }
    }

    void unchangedFilesSaveBackByteForByte_data()
    {
        QTest::addColumn<QByteArray>("original");
        QTest::addColumn<int>("encoding");
        QTest::addColumn<int>("returnCode");
        QTest::addColumn<QString>("sample"); // text the file holds, so it was read in its encoding
        QTest::addColumn<QByteArray>("saved");
        const auto sample = [](const char *row, const char *file, int encoding, int returnCode, const char *text) {
            QTest::newRow(row) << testData(file) << encoding << returnCode << QString::fromUtf8(text) << testData(file);
        };
        sample("Shift_JIS page", "shift_jis-page.html", TWTextEncoding::shiftJIS, TWReturnCode::lf, "衆院議院運営委員会");
        sample("unknown code means Shift_JIS", "shift_jis-page.html", 7, TWReturnCode::lf, "衆院議院運営委員会");
        sample("Shift_JIS, CR lines", "shift_jis-cr-lines.txt", TWTextEncoding::shiftJIS, TWReturnCode::cr, "\n芥川龍之介\n");
        sample("EUC-JP text", "euc-jp.txt", TWTextEncoding::eucJP, TWReturnCode::lf, "コンソール アプリケーション");
        sample("EUC-JP feed", "euc-jp-feed.xml", TWTextEncoding::eucJP, TWReturnCode::lf, "ぷろじぇくと、みすじら。");
        sample("UTF-8 text", "utf-8.txt", TWTextEncoding::utf8, TWReturnCode::lf, "역사적 예수");
        sample("UTF-8 page", "utf-8-page.html", TWTextEncoding::utf8, TWReturnCode::lf, "麦蒂的天赋极高");
        // The file returns from kanji with ESC ( J (JIS X 0201 Roman), the writer always with the
        // equivalent ESC ( B (ASCII): the same text, in the writer's own escapes.
        const QByteArray iso = testData("iso-2022-jp.txt");
        QTest::newRow("ISO-2022-JP text") << iso << TWTextEncoding::iso2022JP << TWReturnCode::lf
                                          << QString::fromUtf8("コンソール アプリケーション")
                                          << QByteArray(iso).replace("\x1b(J", isoToASCII);
        const QByteArray bom("\xef\xbb\xbfhi\n"), nul("ab\0\0cd\n", 7);
        QTest::newRow("UTF-8 byte-order mark") << bom << TWTextEncoding::utf8 << TWReturnCode::lf << QStringLiteral("\uFEFFhi") << bom;
        QTest::newRow("NUL bytes") << nul << TWTextEncoding::shiftJIS << TWReturnCode::lf << QString::fromLatin1("b\0\0c", 4) << nul;
        for (const int encoding : {TWTextEncoding::shiftJIS, TWTextEncoding::eucJP, TWTextEncoding::iso2022JP}) {
            const QByteArray file = everyCode(encoding);
            QTest::addRow("every %s code", TWTextFile::encodingName(encoding))
                << file << encoding << TWReturnCode::lf << QString::fromUtf8("纊") << file;
        }
    }

    // A file read and saved over itself keeps its bytes, whatever codes it uses.
    void unchangedFilesSaveBackByteForByte()
    {
        QFETCH(QByteArray, original);
        QFETCH(int, encoding);
        QFETCH(int, returnCode);
        QFETCH(QString, sample);
        QFETCH(QByteArray, saved);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("page.html"));
        QVERIFY(!original.isEmpty() && TWTestEnvironment::writeFile(path, original));
        const std::optional<QString> text = TWTextFile::load(path, encoding);
        QVERIFY(text && text->contains(sample));
        QVERIFY(TWTextFile::save(*text, path, encoding, returnCode));
        const QByteArray written = TWTestEnvironment::readFile(path);
        qsizetype same = 0; // the first difference tells which code went wrong
        while (same < written.size() && same < saved.size() && written.at(same) == saved.at(same))
            ++same;
        QCOMPARE(written.mid(same, 8).toHex(' '), saved.mid(same, 8).toHex(' '));
    }

    void variantPairsWriteTheJISCode_data()
    {
        QTest::addColumn<int>("encoding");
        QTest::addColumn<QString>("jisForm");
        QTest::addColumn<QString>("windowsForm");
        QTest::addColumn<QByteArray>("code");
        // Each pair is one JIS X 0208 character in two Unicode forms, the JIS mapping's and that of
        // the Windows code page: its JIS code, and its Shift_JIS code.
        const struct { const char *name; char16_t jis, windows; quint16 code, shiftJIS; } pairs[] = {
            {"wave dash", u'\u301C', u'\uFF5E', 0x2141, 0x8160}, {"minus", u'\u2212', u'\uFF0D', 0x215d, 0x817c},
            {"double bar", u'\u2016', u'\u2225', 0x2142, 0x8161}, {"cent", u'\u00A2', u'\uFFE0', 0x2171, 0x8191},
            {"pound", u'\u00A3', u'\uFFE1', 0x2172, 0x8192}, {"not", u'\u00AC', u'\uFFE2', 0x224c, 0x81ca},
            {"em dash", u'\u2014', u'\u2015', 0x213d, 0x815c}};
        const auto bytes = [](quint16 code) { return QByteArray(1, char(code >> 8)) + char(code); };
        for (const auto &pair : pairs) {
            const QString jis(QChar(pair.jis)), windows(QChar(pair.windows));
            QTest::addRow("%s, Shift_JIS", pair.name) << TWTextEncoding::shiftJIS << jis << windows << bytes(pair.shiftJIS);
            QTest::addRow("%s, EUC-JP", pair.name) << TWTextEncoding::eucJP << jis << windows << bytes(pair.code | 0x8080);
            QTest::addRow("%s, ISO-2022-JP", pair.name) << TWTextEncoding::iso2022JP << jis << windows
                                                       << isoToKanji + bytes(pair.code) + isoToASCII;
        }
    }

    // Text typed here (JIS forms) and text pasted from Windows both save as the character shown;
    // reading gives the JIS form. UTF-8 keeps each form as it is.
    void variantPairsWriteTheJISCode()
    {
        QFETCH(int, encoding);
        QFETCH(QString, jisForm);
        QFETCH(QString, windowsForm);
        QFETCH(QByteArray, code);
        QCOMPARE(TWTextFile::encode(jisForm, encoding).toHex(' '), code.toHex(' '));
        QCOMPARE(TWTextFile::encode(windowsForm, encoding).toHex(' '), code.toHex(' '));
        QCOMPARE(TWTextFile::decode(code, encoding).value_or(QString()), jisForm);
        QCOMPARE(TWTextFile::decode(windowsForm.toUtf8(), TWTextEncoding::utf8).value_or(QString()), windowsForm);
    }

    void saveOverAFileKeepsItsCodesAndMode_data()
    {
        QTest::addColumn<int>("encoding");
        QTest::addColumn<QByteArray>("old"); // nothing: a new file
        QTest::addColumn<QString>("text");
        QTest::addColumn<QByteArray>("saved");
        const QString nearlyEqual = QString::fromUtf8("≒"); // JIS 0x2262, again in NEC's row 13
        QTest::newRow("new file: the JIS code") << TWTextEncoding::shiftJIS << QByteArray() << nearlyEqual << QByteArray("\x81\xe0");
        QTest::newRow("NEC code kept, and used again") << TWTextEncoding::shiftJIS << QByteArray("a\x87\x90")
                                                       << nearlyEqual + nearlyEqual << QByteArray("\x87\x90\x87\x90");
        QTest::newRow("NEC code kept in EUC-JP") << TWTextEncoding::eucJP << QByteArray("\xad\xf0")
                                                 << QString::fromUtf8("x≒") << QByteArray("x\xad\xf0");
        QTest::newRow("empty text empties the file") << TWTextEncoding::utf8 << QByteArray("old") << QString() << QByteArray();
    }

    // A save over a file writes the codes that file used where a character has several, and
    // keeps the file's permissions.
    void saveOverAFileKeepsItsCodesAndMode()
    {
        QFETCH(int, encoding);
        QFETCH(QByteArray, old);
        QFETCH(QString, text);
        QFETCH(QByteArray, saved);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("page.html"));
        const QFileDevice::Permissions mode = QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup;
        QVERIFY(old.isEmpty() || (TWTestEnvironment::writeFile(path, old) && QFile::setPermissions(path, mode)));
        QVERIFY(TWTextFile::save(text, path, encoding, TWReturnCode::lf));
        QCOMPARE(TWTestEnvironment::readFile(path).toHex(' '), saved.toHex(' '));
        const QFileDevice::Permissions ofThisUser = QFileDevice::ReadUser | QFileDevice::WriteUser | QFileDevice::ExeUser;
        QVERIFY(old.isEmpty() || (QFile::permissions(path) & ~ofThisUser) == mode);
    }

    void invalidBytesFailToDecode_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("encoding");
        QTest::newRow("lone UTF-8 continuation byte") << QByteArray("ab\x80" "cd") << TWTextEncoding::utf8;
        QTest::newRow("truncated UTF-8 sequence") << QByteArray("ab\xe6\x97") << TWTextEncoding::utf8;
        QTest::newRow("Shift_JIS lead byte without trail") << QByteArray("ab\x82") << TWTextEncoding::shiftJIS;
        QTest::newRow("Shift_JIS invalid trail byte") << QByteArray("\x81\x20") << TWTextEncoding::shiftJIS;
        QTest::newRow("ISO-2022-JP eight-bit byte") << QByteArray("abc\xa4\xa2") << TWTextEncoding::iso2022JP;
        // Real UTF-8 Japanese is not valid EUC-JP.
        QTest::newRow("UTF-8 read as EUC-JP") << japanese.toUtf8() << TWTextEncoding::eucJP;
    }

    void invalidBytesFailToDecode()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, encoding);
        QVERIFY(!TWTextFile::decode(bytes, encoding).has_value());
    }

    void unrepresentableCharactersAreReplaced_data()
    {
        QTest::addColumn<int>("encoding");
        QTest::newRow("Shift_JIS") << TWTextEncoding::shiftJIS;
        QTest::newRow("EUC-JP") << TWTextEncoding::eucJP;
        QTest::newRow("ISO-2022-JP") << TWTextEncoding::iso2022JP;
    }

    // Only characters the encoding lacks become "?", one each; everything else is kept.
    void unrepresentableCharactersAreReplaced()
    {
        QFETCH(int, encoding);
        const QString text = QString::fromUtf8("A€日😀本\U0001F600〜Z");
        const QByteArray bytes = TWTextFile::encode(text, encoding);
        QCOMPARE(TWTextFile::decode(bytes, encoding).value_or(QString()), QString::fromUtf8("A?日?本?〜Z"));

        // The same holds deep inside a large text: only the one character is lost.
        const QString large = QString(200000, QLatin1Char('x')) + QString::fromUtf8("😀") + japanese;
        QCOMPARE(TWTextFile::decode(TWTextFile::encode(large, encoding), encoding).value_or(QString()),
                 QString(200000, QLatin1Char('x')) + QLatin1Char('?') + japanese);
    }

    void unreadablePathsLoadNothing_data()
    {
        QTest::addColumn<QString>("path");
        QTest::newRow("missing file") << QStringLiteral("/nonexistent/nothing.html");
        QTest::newRow("directory") << QStringLiteral(TW_TESTDATA_DIR);
        // The file opens, but reading it fails: its first page is not mapped.
        QTest::newRow("read error") << QStringLiteral("/proc/self/mem");
    }

    void unreadablePathsLoadNothing()
    {
        QFETCH(QString, path);
        QVERIFY(!TWTextFile::load(path, TWTextEncoding::utf8).has_value());
    }

    // A write that cannot complete answers false and never damages the file that was there.
    void failedSaveLeavesOldFileUntouched()
    {
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
        QVERIFY(limitSet);
        QVERIFY(!written);
        QCOMPARE(TWTestEnvironment::readFile(path), QByteArray("the old page"));
    }
};

QTEST_GUILESS_MAIN(tst_TWTextFile)
#include "tst_TWTextFile.moc"
