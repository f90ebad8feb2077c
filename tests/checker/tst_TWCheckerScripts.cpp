// The shipped checkers: what they report when run as the checker window runs them, on files
// saved as Tagwright saves them.
#include "checker/TWCheckerScripts.h"
#include "editor/TWTextFile.h"

#include "TWTestEnvironment.h"

#include <QFileInfo>
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

// Japanese text with a NEC special character and half-width katakana, which only the vendor
// forms of the encodings have; an unknown element, an unclosed one and an image without alt.
const QString faultyPage = QStringLiteral("<!DOCTYPE html>\n<html lang=\"ja\">\n<head><title>日本語のページ①</title></head>\n"
                                          "<body>\n<p>こんにちは、<b>世界ｶﾀｶﾅ\n<img src=\"photo.png\">\n"
                                          "<centre>中央</centre>\n</body>\n</html>\n");
const QStringList pageMessages = {QStringLiteral("line 7 column 1 - Error: <centre> is not recognized!"),
                                  QStringLiteral("line 7 column 1 - Warning: discarding unexpected <centre>"),
                                  QStringLiteral("line 7 column 11 - Warning: discarding unexpected </centre>"),
                                  QStringLiteral("line 5 column 10 - Warning: missing </b> before </body>"),
                                  QStringLiteral("line 6 column 1 - Warning: <img> lacks \"alt\" attribute")};
const QString faultyStyle = QStringLiteral("/* 日本語の説明 */\nbody {\n  colr: red;\n  margin: 0;\n}\np { color: reed; }\n");

} // namespace

class tst_TWCheckerScripts : public QObject
{
    Q_OBJECT

    QTemporaryDir dataFolder;

private Q_SLOTS:
    // A file name ending in ".css" goes to the CSS checker, any other to the HTML checker.
    void checkersReport_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("encoding");
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QStringList>("output");
        QTest::addColumn<int>("status");
        // A file name with quotes and spaces reaches the checker whole.
        for (int encoding : {TWTextEncoding::shiftJIS, TWTextEncoding::eucJP, TWTextEncoding::iso2022JP, TWTextEncoding::utf8})
            QTest::addRow("faulty page in %s", TWTextFile::encodingName(encoding))
                << faultyPage << encoding << QStringLiteral("my \"first\" 'page' ページ.html") << pageMessages << 2;
        QTest::newRow("faulty style sheet") << faultyStyle << TWTextEncoding::shiftJIS << QStringLiteral("style.css")
                                            << QStringList{QStringLiteral("line 3 column 3 - Error: Unknown property `colr` (colr: red)"),
                                                           QStringLiteral("line 6 column 12 - Error: Invalid value for color (color: reed)")}
                                            << 1;
    }

    void checkersReport()
    {
        QFETCH(QString, text);
        QFETCH(int, encoding);
        QFETCH(QString, fileName);
        const bool css = fileName.endsWith(QLatin1String(".css"));
        const auto installed = [](const char *name) { return !QStandardPaths::findExecutable(QLatin1String(name), systemFolders).isEmpty(); };
        if (css ? !(installed("node") && QFileInfo::exists(QLatin1String(cssTreeFolder))) : !installed("tidy"))
            QSKIP("HTML Tidy, Node.js or css-tree is not installed: sudo apt install tidy nodejs node-css-tree");
        TWCheckerScripts::installIfMissing(dataFolder.path());
        const QString file = dataFolder.filePath(fileName);
        QVERIFY(TWTextFile::save(text, file, encoding, TWReturnCode::cr));
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("PATH"), systemFolders.join(QLatin1Char(':')));
        environment.insert(QStringLiteral("LC_ALL"), QLatin1String(messageLocale));
        environment.insert(QLatin1String(TWCheckerScripts::encodingVariable), QLatin1String(TWTextFile::encodingName(encoding)));
        QProcess checker;
        checker.setProcessEnvironment(environment);
        checker.setWorkingDirectory(TWTestEnvironment::home());
        checker.setProcessChannelMode(QProcess::MergedChannels);
        const char *program = css ? TWCheckerScripts::cssCheckerRelativePath : TWCheckerScripts::htmlCheckerRelativePath;
        checker.start(dataFolder.path() + QLatin1String(program), {file});
        QVERIFY(TWTestEnvironment::waitFor([&] { return checker.state() == QProcess::NotRunning; }, checkerTimeout));
        QTEST(QString::fromUtf8(checker.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts), "output");
        QTEST(checker.exitCode(), "status");
    }
};

QTEST_GUILESS_MAIN(tst_TWCheckerScripts)
#include "tst_TWCheckerScripts.moc"
