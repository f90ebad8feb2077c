// How the previewed page is composed: the combined page, the temporary page file, base URLs
// and link paths relative to the base URL.
#include "preview/TWPageComposer.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <unistd.h>

class tst_TWPageComposer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void combinedPage_data()
    {
        QTest::addColumn<QString>("top");
        QTest::addColumn<QString>("html");
        QTest::addColumn<QString>("bottom");
        QTest::addColumn<bool>("lineBreaks");
        QTest::addColumn<QString>("page");
        QTest::newRow("wrapped") << QStringLiteral("<body>\n") << QStringLiteral("a\nb") << QStringLiteral("\n</body>")
                                 << false << QStringLiteral("<body>\na\nb\n</body>");
        QTest::newRow("template off: the HTML alone") << QString() << QStringLiteral("<p>x</p>") << QString() << false
                                                      << QStringLiteral("<p>x</p>");
        QTest::newRow("line feeds become <br> in the HTML only")
            << QStringLiteral("<body>\n") << QStringLiteral("a\nb\n") << QStringLiteral("\n</body>") << true
            << QStringLiteral("<body>\na<br>b<br>\n</body>");
        QTest::newRow("CR LF keeps its CR") << QString() << QStringLiteral("a\r\nb") << QString() << true
                                            << QStringLiteral("a\r<br>b");
        QTest::newRow("inside tags and comments too") << QString() << QStringLiteral("<pre>\n</pre><!--\n-->")
                                                      << QString() << true
                                                      << QStringLiteral("<pre><br></pre><!--<br>-->");
        QTest::newRow("empty everything") << QString() << QString() << QString() << true << QString();
    }

    void combinedPage()
    {
        QFETCH(QString, top);
        QFETCH(QString, html);
        QFETCH(QString, bottom);
        QFETCH(bool, lineBreaks);
        QFETCH(QString, page);
        QCOMPARE(TWPageComposer::combinedPage(top, html, bottom, lineBreaks), page);
    }

    void reloadingFileStartsWithBaseAndLinkLines()
    {
        const QString combined = QStringLiteral("<!DOCTYPE html>\n<html>x</html>");
        QCOMPARE(TWPageComposer::reloadingFileText(QStringLiteral("http://localhost/"), QString(), combined),
                 QStringLiteral("<base href=\"http://localhost/\">\r<!DOCTYPE html>\n<html>x</html>"));
        QCOMPARE(TWPageComposer::reloadingFileText(QStringLiteral("file://localhost/site/a.html"),
                                                   QStringLiteral("/site/my style.css"), combined),
                 QStringLiteral("<base href=\"file://localhost/site/a.html\">\r"
                                "<link rel=stylesheet href=\"/site/my style.css\" type=\"text/css\">\r"
                                "<!DOCTYPE html>\n<html>x</html>"));
    }

    void reloadingFileIsWrittenWholeAsUTF8()
    {
        QTemporaryDir dir;
        const QString folder = dir.filePath(QStringLiteral("data/Tagwright"));
        const QString path = TWPageComposer::writeReloadingFile(folder, QString::fromUtf8("<p>日本</p>"));
        QCOMPARE(path, folder + QStringLiteral("/Tagwright_tmp.html"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("<p>\xe6\x97\xa5\xe6\x9c\xac</p>"));

        // Something else in the folder's place: nothing is written, the path still comes back.
        const QString blocked = dir.filePath(QStringLiteral("blocked"));
        QFile blocker(blocked);
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        const QString failed = TWPageComposer::writeReloadingFile(blocked, QStringLiteral("x"));
        QCOMPARE(failed, blocked + QStringLiteral("/Tagwright_tmp.html"));
        QVERIFY(!QFile::exists(failed));
    }

    void baseURLsFromText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("absolute");
        QTest::newRow("http") << QStringLiteral("http://localhost/") << QStringLiteral("http://localhost/");
        QTest::newRow("file") << QStringLiteral("file://localhost/site/a.html")
                              << QStringLiteral("file://localhost/site/a.html");
        QTest::newRow("empty is none") << QString() << QString();
        QTest::newRow("words are none") << QStringLiteral("my site") << QString();
        QTest::newRow("relative is none") << QStringLiteral("index.html") << QString();
        QTest::newRow("broken is none") << QStringLiteral("http://exa mple.com/") << QString();
    }

    void baseURLsFromText()
    {
        QFETCH(QString, text);
        QFETCH(QString, absolute);
        const std::optional<QUrl> url = TWPageComposer::baseURLFromString(text);
        QCOMPARE(url.has_value(), !absolute.isEmpty());
        if (url)
            QCOMPARE(TWPageComposer::absoluteString(*url), absolute);
    }

    void fileURLsNameTheLocalHost()
    {
        QCOMPARE(TWPageComposer::absoluteString(TWPageComposer::fileURL(QStringLiteral("/site/my page.html"))),
                 QStringLiteral("file://localhost/site/my%20page.html"));
    }

    void relativePaths_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("relative");
        const QString site = QStringLiteral("file://localhost/Users/someone/site/index.html");
        QTest::newRow("below the base") << site << QStringLiteral("/Users/someone/site/img/logo.gif")
                                        << QStringLiteral("img/logo.gif");
        QTest::newRow("beside the base") << site << QStringLiteral("/Users/someone/site/a.html")
                                         << QStringLiteral("a.html");
        QTest::newRow("elsewhere: the bare name") << site << QStringLiteral("/Users/someone/other/b.gif")
                                                  << QStringLiteral("b.gif");
        QTest::newRow("http base: the bare name") << QStringLiteral("http://localhost/site/")
                                                  << QStringLiteral("/site/c.png") << QStringLiteral("c.png");
        QTest::newRow("no base: the bare name") << QString() << QStringLiteral("/x/y.png") << QStringLiteral("y.png");
        QTest::newRow("escaped folder never matches")
            << QStringLiteral("file://localhost/my%20site/index.html") << QStringLiteral("/my site/img.png")
            << QStringLiteral("img.png");
        QTest::newRow("folder base") << QStringLiteral("file://localhost/site/") << QStringLiteral("/site/img/a.png")
                                     << QStringLiteral("img/a.png");
        QTest::newRow("case matters") << site << QStringLiteral("/users/someone/site/a.html") << QStringLiteral("a.html");
        QTest::newRow("plain file URL") << QStringLiteral("file:///site/index.html") << QStringLiteral("/site/a.png")
                                        << QStringLiteral("a.png");
    }

    void relativePaths()
    {
        QFETCH(QString, base);
        QFETCH(QString, path);
        QFETCH(QString, relative);
        const std::optional<QUrl> url = base.isEmpty() ? std::nullopt : std::optional<QUrl>(QUrl(base));
        QCOMPARE(TWPageComposer::relativePathToBaseURL(url, path), relative);
    }
};

QTEST_GUILESS_MAIN(tst_TWPageComposer)
#include "tst_TWPageComposer.moc"
