// The shipped checkers: installing them beside what the user has, and what they report when
// run as the checker window runs them, on files saved as Tagwright saves them.
#include "checker/TWCheckerScripts.h"
#include "editor/TWTextFile.h"

#include "TWTestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int checkerTimeout = 120000;
// Debian's programs only, in English: a Nu Html Checker or another node installed elsewhere, or
// Tidy's messages in another language, would change what the checkers print.
const QStringList systemFolders = {QStringLiteral("/usr/bin"), QStringLiteral("/bin")};
constexpr char messageLocale[] = "C.UTF-8";
constexpr char cssTreeFolder[] = "/usr/share/nodejs/css-tree";
const char *const shippedFiles[] = {TWCheckerScripts::htmlCheckerRelativePath, TWCheckerScripts::cssCheckerRelativePath,
                                    TWCheckerScripts::cssCheckerScriptRelativePath};

// Japanese text with a NEC special character and half-width katakana, which only the vendor
// forms of the encodings have; an unknown element, an unclosed one and an image without alt.
const QString faultyPage = QStringLiteral("<!DOCTYPE html>\n<html lang=\"ja\">\n<head><title>日本語のページ①</title></head>\n"
                                          "<body>\n<p>こんにちは、<b>世界ｶﾀｶﾅ\n<img src=\"photo.png\">\n"
                                          "<centre>中央</centre>\n</body>\n</html>\n");
const QString cleanPage = QStringLiteral("<!DOCTYPE html>\n<html lang=\"ja\">\n<head><title>日本語</title></head>\n"
                                         "<body>\n<p>こんにちは</p>\n</body>\n</html>\n");
const QString unknownElement = QStringLiteral("line 7 column 1 - Error: <centre> is not recognized!");
const QStringList pageMessages = {unknownElement, QStringLiteral("line 7 column 1 - Warning: discarding unexpected <centre>"),
                                  QStringLiteral("line 7 column 11 - Warning: discarding unexpected </centre>"),
                                  QStringLiteral("line 5 column 10 - Warning: missing </b> before </body>"),
                                  QStringLiteral("line 6 column 1 - Warning: <img> lacks \"alt\" attribute")};
const QString faultyStyle = QStringLiteral("/* 日本語の説明 */\nbody {\n  colr: red;\n  margin: 0;\n}\np { color: reed; }\n");
const QString cleanStyle = QStringLiteral("/* 日本語 */\nbody { color: #333; margin: 0 auto; }\n");

} // namespace

class tst_TWCheckerScripts : public QObject
{
    Q_OBJECT

    QTemporaryDir dataFolder;

private Q_SLOTS:
    void installKeepsWhatIsThere_data()
    {
        QTest::addColumn<QString>("usersFile"); // the relative path of a file the user had there
        QTest::newRow("empty data folder") << QString();
        QTest::newRow("user's own HTML checker") << QString::fromLatin1(TWCheckerScripts::htmlCheckerRelativePath);
    }

    void installKeepsWhatIsThere()
    {
        QFETCH(QString, usersFile);
        QTemporaryDir folder;
        const QByteArray usersText = "#!/bin/sh\necho mine\n";
        QFile users(folder.path() + usersFile);
        QVERIFY(usersFile.isEmpty()
                || (QDir().mkpath(QFileInfo(users).path()) && users.open(QIODevice::WriteOnly) && users.write(usersText) > 0));
        users.close();
        TWCheckerScripts::installIfMissing(folder.path());
        for (const char *relativePath : shippedFiles) {
            const QString path = folder.path() + QLatin1String(relativePath);
            const bool usersOwn = usersFile == QLatin1String(relativePath);
            const QString shipped = QStringLiteral(TW_SOURCE_DIR "/resources/checkers/") + QFileInfo(path).fileName();
            QCOMPARE(TWTestEnvironment::readFile(path), usersOwn ? usersText : TWTestEnvironment::readFile(shipped));
            QCOMPARE(QFileInfo(path).isExecutable(), !usersOwn && qstrcmp(relativePath, TWCheckerScripts::cssCheckerScriptRelativePath));
        }
    }

    void checkersReport_data()
    {
        QTest::addColumn<QStringList>("command"); // the checker's path in the data folder, and its options
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("encoding");
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QStringList>("output");
        QTest::addColumn<int>("status");
        const QString html = QString::fromLatin1(TWCheckerScripts::htmlCheckerRelativePath);
        const QStringList errorsAndWarnings = {html, QStringLiteral("-w"), QStringLiteral("short")};
        const QStringList css = {QString::fromLatin1(TWCheckerScripts::cssCheckerRelativePath)};
        for (int encoding : {TWTextEncoding::shiftJIS, TWTextEncoding::eucJP, TWTextEncoding::iso2022JP, TWTextEncoding::utf8})
            QTest::addRow("faulty page in %s", TWTextFile::encodingName(encoding))
                << errorsAndWarnings << faultyPage << encoding << QStringLiteral("page.html") << pageMessages << 2;
        QTest::newRow("faulty page, errors only") << QStringList{html, QStringLiteral("-w"), QStringLiteral("none")} << faultyPage
                                                  << TWTextEncoding::shiftJIS << QStringLiteral("page.html") << QStringList{unknownElement} << 2;
        const QString oddName = QStringLiteral("my \"first\" 'page' ページ.html");
        QTest::newRow("clean page, odd file name") << errorsAndWarnings << cleanPage << TWTextEncoding::eucJP << oddName
                                                   << QStringList{QStringLiteral("No errors or warnings found in %1.").arg(oddName)} << 0;
        QTest::newRow("faulty style sheet")
            << css << faultyStyle << TWTextEncoding::shiftJIS << QStringLiteral("style.css")
            << QStringList{QStringLiteral("line 3 column 3 - Error: Unknown property `colr` (colr: red)"),
                           QStringLiteral("line 6 column 12 - Error: Invalid value for color (color: reed)")}
            << 1;
        QTest::newRow("clean style sheet") << css << cleanStyle << TWTextEncoding::iso2022JP << QStringLiteral("style.css")
                                           << QStringList{QStringLiteral("No errors found in style.css.")} << 0;
    }

    void checkersReport()
    {
        QFETCH(QStringList, command);
        QFETCH(QString, text);
        QFETCH(int, encoding);
        QFETCH(QString, fileName);
        const auto installed = [](const char *name) { return !QStandardPaths::findExecutable(QLatin1String(name), systemFolders).isEmpty(); };
        if (command.first() == QLatin1String(TWCheckerScripts::htmlCheckerRelativePath)
                ? !installed("tidy") : !(installed("node") && QFileInfo::exists(QLatin1String(cssTreeFolder))))
            QSKIP("HTML Tidy, Node.js or css-tree is not installed: sudo apt install tidy nodejs node-css-tree");
        TWCheckerScripts::installIfMissing(dataFolder.path());
        const QString file = dataFolder.path() + QLatin1Char('/') + fileName;
        QVERIFY(TWTextFile::save(text, file, encoding, TWReturnCode::cr));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("PATH"), systemFolders.join(QLatin1Char(':')));
        environment.insert(QStringLiteral("LC_ALL"), QLatin1String(messageLocale));
        environment.insert(QLatin1String(TWCheckerScripts::encodingVariable), QLatin1String(TWTextFile::encodingName(encoding)));
        QProcess checker;
        checker.setProcessEnvironment(environment);
        checker.setWorkingDirectory(TWTestEnvironment::home());
        checker.setProcessChannelMode(QProcess::MergedChannels);
        checker.start(dataFolder.path() + command.takeFirst(), command << file);
        QVERIFY(TWTestEnvironment::waitFor([&] { return checker.state() == QProcess::NotRunning; }, checkerTimeout));
        QTEST(QString::fromUtf8(checker.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts), "output");
        QTEST(checker.exitCode(), "status");
    }
};

QTEST_GUILESS_MAIN(tst_TWCheckerScripts)
#include "tst_TWCheckerScripts.moc"
