// Reading and writing text files: line ends, the four encodings, strict decoding, lossy
// encoding and atomic writes.
#include "editor/TWTextFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

namespace {

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QString testData(const char *name)
{
    return QStringLiteral(TW_TESTDATA_DIR "/encodings/") + QLatin1String(name);
}

// Japanese text that every one of the four encodings can carry.
const QString japanese = QString::fromUtf8("日本語のテキスト、かな・カナ・漢字。\n二行目です。");

} // namespace

class tst_TWTextFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lineEndsBecomeLineFeeds_data();
    void lineEndsBecomeLineFeeds();
    void lineEndsAreWrittenByReturnCode_data();
    void lineEndsAreWrittenByReturnCode();
    void nullTextStaysNull();

    void realFilesDecodeInTheirOwnEncoding_data();
    void realFilesDecodeInTheirOwnEncoding();
    void multiByteTextRoundTripsInEveryEncoding_data();
    void multiByteTextRoundTripsInEveryEncoding();
    void invalidBytesFailToDecode_data();
    void invalidBytesFailToDecode();
    void unrepresentableCharactersAreReplaced_data();
    void unrepresentableCharactersAreReplaced();
    void unknownCodesMeanShiftJISAndCR();
    void byteOrderMarkIsKept();

    void savedFileHasPreferredEncodingAndLineEnds();
    void emptyTextWritesEmptyFile();
    void unreadablePathsLoadNothing_data();
    void unreadablePathsLoadNothing();
    void failedSaveLeavesOldFileUntouched();
    void saveKeepsPermissionsOfExistingFile();
    void binaryFileWithNulBytesLoads();
};

void tst_TWTextFile::lineEndsBecomeLineFeeds_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<QString>("expected");
    QTest::newRow("CR LF, lone CR, LF") << QStringLiteral("a\r\nb\rc\n") << QStringLiteral("a\nb\nc\n");
    QTest::newRow("CR CR LF gives two") << QStringLiteral("a\r\r\nb") << QStringLiteral("a\n\nb");
    QTest::newRow("LF CR gives two") << QStringLiteral("a\n\rb") << QStringLiteral("a\n\nb");
    QTest::newRow("trailing CR") << QStringLiteral("a\r") << QStringLiteral("a\n");
    QTest::newRow("only CRs") << QStringLiteral("\r\r\r") << QStringLiteral("\n\n\n");
    QTest::newRow("no line ends") << QStringLiteral("abc") << QStringLiteral("abc");
    QTest::newRow("empty") << QStringLiteral("") << QStringLiteral("");
}

void tst_TWTextFile::lineEndsBecomeLineFeeds()
{
    QFETCH(QString, text);
    QFETCH(QString, expected);
    QCOMPARE(TWTextFile::convertReturnCodeOfTextToLF(text), expected);
}

void tst_TWTextFile::lineEndsAreWrittenByReturnCode_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("expected");
    QTest::newRow("DOS") << QStringLiteral("a\nb\n") << TWReturnCode::dos << QStringLiteral("a\r\nb\r\n");
    QTest::newRow("CR") << QStringLiteral("a\nb\n") << TWReturnCode::cr << QStringLiteral("a\rb\r");
    QTest::newRow("LF unchanged") << QStringLiteral("a\nb\n") << TWReturnCode::lf << QStringLiteral("a\nb\n");
    QTest::newRow("CR LF never doubles") << QStringLiteral("x\r\ny") << TWReturnCode::dos << QStringLiteral("x\r\ny");
    QTest::newRow("lone CR to DOS") << QStringLiteral("x\ry") << TWReturnCode::dos << QStringLiteral("x\r\ny");
    QTest::newRow("mixed to LF") << QStringLiteral("a\r\nb\rc") << TWReturnCode::lf << QStringLiteral("a\nb\nc");
    QTest::newRow("unknown code writes CR") << QStringLiteral("a\nb") << 9 << QStringLiteral("a\rb");
    QTest::newRow("negative code writes CR") << QStringLiteral("a\nb") << -1 << QStringLiteral("a\rb");
}

void tst_TWTextFile::lineEndsAreWrittenByReturnCode()
{
    QFETCH(QString, text);
    QFETCH(int, code);
    QFETCH(QString, expected);
    QCOMPARE(TWTextFile::convertReturnCodeOfText(text, code), expected);
}

void tst_TWTextFile::nullTextStaysNull()
{
    QVERIFY(TWTextFile::convertReturnCodeOfTextToLF(QString()).isNull());
    QVERIFY(TWTextFile::convertReturnCodeOfText(QString(), TWReturnCode::dos).isNull());
    QVERIFY(!TWTextFile::convertReturnCodeOfTextToLF(QStringLiteral("")).isNull());
}

void tst_TWTextFile::realFilesDecodeInTheirOwnEncoding_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<int>("encoding");
    QTest::addColumn<int>("returnCode");
    QTest::addColumn<QString>("sample");
    QTest::newRow("Shift_JIS page") << testData("shift_jis-page.html") << TWTextEncoding::shiftJIS << TWReturnCode::lf
                                    << QString();
    QTest::newRow("Shift_JIS text with CR lines")
        << testData("shift_jis-cr-lines.txt") << TWTextEncoding::shiftJIS << TWReturnCode::cr << QString();
    QTest::newRow("EUC-JP text") << testData("euc-jp.txt") << TWTextEncoding::eucJP << TWReturnCode::lf << QString();
    QTest::newRow("EUC-JP feed") << testData("euc-jp-feed.xml") << TWTextEncoding::eucJP << TWReturnCode::lf
                                 << QString::fromUtf8("<?xml version=\"1.0\" encoding=\"EUC-JP\"?>");
    QTest::newRow("ISO-2022-JP text") << testData("iso-2022-jp.txt") << TWTextEncoding::iso2022JP << TWReturnCode::lf
                                      << QString();
    QTest::newRow("UTF-8 text") << testData("utf-8.txt") << TWTextEncoding::utf8 << TWReturnCode::lf << QString();
    QTest::newRow("UTF-8 page") << testData("utf-8-page.html") << TWTextEncoding::utf8 << TWReturnCode::lf
                                << QString();
}

// Each real file decodes in its own encoding into Japanese text with LF line ends, and
// writing that text back with the file's line end gives the same bytes.
void tst_TWTextFile::realFilesDecodeInTheirOwnEncoding()
{
    QFETCH(QString, file);
    QFETCH(int, encoding);
    QFETCH(int, returnCode);
    QFETCH(QString, sample);

    const QByteArray original = readBytes(file);
    QVERIFY2(!original.isEmpty(), qPrintable(file));
    const std::optional<QString> text = TWTextFile::load(file, encoding);
    QVERIFY(text);
    QVERIFY(!text->contains(QLatin1Char('\r')));
    if (!sample.isEmpty())
        QVERIFY(text->startsWith(sample));
    // Real East Asian text came out (kana, Han, Hangul), not Latin-1 look-alikes.
    const auto isEastAsian = [](QChar c) { return c.unicode() >= 0x3040; };
    QVERIFY(std::count_if(text->cbegin(), text->cend(), isEastAsian) > 10);

    QTemporaryDir dir;
    const QString copy = dir.filePath(QStringLiteral("copy"));
    QVERIFY(TWTextFile::save(*text, copy, encoding, returnCode));
    if (encoding == TWTextEncoding::iso2022JP) {
        // The file switches back from kanji with ESC ( J (JIS Roman); the writer uses the
        // equivalent ESC ( B (ASCII). Both carry the same text, which is what must survive.
        QVERIFY(original.contains("\x1b(J"));
        QCOMPARE(TWTextFile::load(copy, encoding), text);
        QCOMPARE(readBytes(copy), QByteArray(original).replace("\x1b(J", "\x1b(B"));
    } else {
        QCOMPARE(readBytes(copy), original);
    }
}

void tst_TWTextFile::multiByteTextRoundTripsInEveryEncoding_data()
{
    QTest::addColumn<int>("encoding");
    QTest::newRow("Shift_JIS") << TWTextEncoding::shiftJIS;
    QTest::newRow("EUC-JP") << TWTextEncoding::eucJP;
    QTest::newRow("ISO-2022-JP") << TWTextEncoding::iso2022JP;
    QTest::newRow("UTF-8") << TWTextEncoding::utf8;
}

void tst_TWTextFile::multiByteTextRoundTripsInEveryEncoding()
{
    QFETCH(int, encoding);
    const QByteArray bytes = TWTextFile::encode(japanese, encoding);
    QVERIFY(bytes.size() > japanese.size());
    QVERIFY(!bytes.contains('?'));
    // A JIS text that ends in kanji still ends the file in ASCII mode.
    if (encoding == TWTextEncoding::iso2022JP)
        QVERIFY(bytes.endsWith("\x1b(B"));
    const std::optional<QString> decoded = TWTextFile::decode(bytes, encoding);
    QVERIFY(decoded);
    QCOMPARE(*decoded, japanese);
}

void tst_TWTextFile::invalidBytesFailToDecode_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<int>("encoding");
    QTest::newRow("lone UTF-8 continuation byte") << QByteArray("ab\x80" "cd") << TWTextEncoding::utf8;
    QTest::newRow("truncated UTF-8 sequence") << QByteArray("ab\xe6\x97") << TWTextEncoding::utf8;
    QTest::newRow("Shift_JIS lead byte without trail") << QByteArray("ab\x82") << TWTextEncoding::shiftJIS;
    QTest::newRow("Shift_JIS invalid trail byte") << QByteArray("\x81\x20") << TWTextEncoding::shiftJIS;
    QTest::newRow("EUC-JP half a character") << QByteArray("x\xa4") << TWTextEncoding::eucJP;
    QTest::newRow("ISO-2022-JP eight-bit byte") << QByteArray("abc\xa4\xa2") << TWTextEncoding::iso2022JP;
    // Real UTF-8 Japanese is not valid EUC-JP.
    QTest::newRow("UTF-8 read as EUC-JP") << japanese.toUtf8() << TWTextEncoding::eucJP;
}

void tst_TWTextFile::invalidBytesFailToDecode()
{
    QFETCH(QByteArray, bytes);
    QFETCH(int, encoding);
    QVERIFY(!TWTextFile::decode(bytes, encoding).has_value());
}

void tst_TWTextFile::unrepresentableCharactersAreReplaced_data()
{
    QTest::addColumn<int>("encoding");
    QTest::newRow("Shift_JIS") << TWTextEncoding::shiftJIS;
    QTest::newRow("EUC-JP") << TWTextEncoding::eucJP;
    QTest::newRow("ISO-2022-JP") << TWTextEncoding::iso2022JP;
}

// Characters the encoding has no code for become "?", one each; everything else is kept.
void tst_TWTextFile::unrepresentableCharactersAreReplaced()
{
    QFETCH(int, encoding);
    const QString text = QString::fromUtf8("A€日😀本\U0001F600Z");
    const QByteArray bytes = TWTextFile::encode(text, encoding);
    const std::optional<QString> back = TWTextFile::decode(bytes, encoding);
    QVERIFY(back);
    QCOMPARE(*back, QString::fromUtf8("A?日?本?Z"));

    // The same holds deep inside a large text: only the one character is lost.
    QString large = QString(200000, QLatin1Char('x')) + QString::fromUtf8("😀") + japanese;
    const std::optional<QString> largeBack = TWTextFile::decode(TWTextFile::encode(large, encoding), encoding);
    QVERIFY(largeBack);
    QCOMPARE(*largeBack, QString(200000, QLatin1Char('x')) + QLatin1Char('?') + japanese);
}

void tst_TWTextFile::unknownCodesMeanShiftJISAndCR()
{
    QCOMPARE(TWTextFile::encode(japanese, 7), TWTextFile::encode(japanese, TWTextEncoding::shiftJIS));
    QCOMPARE(QByteArray(TWTextFile::encodingName(-3)), QByteArray("Shift_JIS"));
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("f.html"));
    QVERIFY(TWTextFile::save(QStringLiteral("a\nb"), path, 7, 7));
    QCOMPARE(readBytes(path), QByteArray("a\rb"));
}

// A UTF-8 file that starts with a byte-order mark keeps it, so that saving writes it back.
void tst_TWTextFile::byteOrderMarkIsKept()
{
    const QByteArray bytes("\xef\xbb\xbfhello");
    const std::optional<QString> text = TWTextFile::decode(bytes, TWTextEncoding::utf8);
    QVERIFY(text);
    QCOMPARE(text->size(), 6);
    QCOMPARE(TWTextFile::encode(*text, TWTextEncoding::utf8), bytes);
}

void tst_TWTextFile::savedFileHasPreferredEncodingAndLineEnds()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("page.html"));
    QVERIFY(TWTextFile::save(QString::fromUtf8("日本\n語"), path, TWTextEncoding::eucJP, TWReturnCode::dos));
    QCOMPARE(readBytes(path), QByteArray("\xc6\xfc\xcb\xdc\r\n\xb8\xec"));
    const std::optional<QString> back = TWTextFile::load(path, TWTextEncoding::eucJP);
    QVERIFY(back);
    QCOMPARE(*back, QString::fromUtf8("日本\n語"));
}

void tst_TWTextFile::emptyTextWritesEmptyFile()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("empty.html"));
    QVERIFY(writeBytes(path, "old contents"));
    QVERIFY(TWTextFile::save(QString(), path, TWTextEncoding::shiftJIS, TWReturnCode::cr));
    QVERIFY(QFile::exists(path));
    QCOMPARE(QFileInfo(path).size(), 0);
}

void tst_TWTextFile::unreadablePathsLoadNothing_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("missing file") << QStringLiteral("missing");
    QTest::newRow("directory") << QStringLiteral("directory");
    QTest::newRow("no permission") << QStringLiteral("unreadable");
}

void tst_TWTextFile::unreadablePathsLoadNothing()
{
    QFETCH(QString, kind);
    QTemporaryDir dir;
    QString path = dir.filePath(QStringLiteral("nothing.html"));
    if (kind == QLatin1String("directory")) {
        path = dir.path();
    } else if (kind == QLatin1String("unreadable")) {
        if (geteuid() == 0)
            QSKIP("root reads every file");
        QVERIFY(writeBytes(path, "secret"));
        QVERIFY(QFile::setPermissions(path, QFileDevice::WriteOwner));
    }
    QVERIFY(!TWTextFile::load(path, TWTextEncoding::utf8).has_value());
}

// A write that cannot complete never damages the file that was there.
void tst_TWTextFile::failedSaveLeavesOldFileUntouched()
{
    QTemporaryDir dir;
    const QString folder = dir.filePath(QStringLiteral("site"));
    QVERIFY(QDir().mkpath(folder));
    const QString path = folder + QStringLiteral("/page.html");
    QVERIFY(writeBytes(path, "the old page"));

    // A target that is a directory cannot be replaced by a file.
    QVERIFY(!TWTextFile::save(QStringLiteral("new"), folder, TWTextEncoding::utf8, TWReturnCode::lf));
    // A folder the user may not write into.
    QVERIFY(QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::ExeOwner));
    const bool written = TWTextFile::save(QStringLiteral("the new page"), path, TWTextEncoding::utf8, TWReturnCode::lf);
    QFile::setPermissions(folder, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
    if (geteuid() != 0) {
        QVERIFY(!written);
        QCOMPARE(readBytes(path), QByteArray("the old page"));
    }
    // A folder that does not exist.
    QVERIFY(!TWTextFile::save(QStringLiteral("x"), dir.filePath(QStringLiteral("no/such/page.html")),
                              TWTextEncoding::utf8, TWReturnCode::lf));
}

void tst_TWTextFile::saveKeepsPermissionsOfExistingFile()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("page.html"));
    QVERIFY(writeBytes(path, "old"));
    QVERIFY(::chmod(QFile::encodeName(path).constData(), 0640) == 0);
    QVERIFY(TWTextFile::save(QStringLiteral("new"), path, TWTextEncoding::utf8, TWReturnCode::lf));
    struct stat info = {};
    QVERIFY(::stat(QFile::encodeName(path).constData(), &info) == 0);
    QCOMPARE(info.st_mode & 0777, mode_t(0640));
    QCOMPARE(readBytes(path), QByteArray("new"));
}

void tst_TWTextFile::binaryFileWithNulBytesLoads()
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("binary"));
    QVERIFY(writeBytes(path, QByteArray("ab\0\0cd\n", 7)));
    const std::optional<QString> text = TWTextFile::load(path, TWTextEncoding::shiftJIS);
    QVERIFY(text);
    QCOMPARE(text->size(), 7);
}

QTEST_GUILESS_MAIN(tst_TWTextFile)
#include "tst_TWTextFile.moc"
