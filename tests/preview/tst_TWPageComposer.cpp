// How the previewed page is composed: the combined page, the temporary page file, base URLs
// and link paths relative to the base URL.
#include "preview/TWPageComposer.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class tst_TWPageComposer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void combinedPage_data()
    {
        QTest::addColumn<QString>("html");
        QTest::addColumn<bool>("lineBreaks");
        QTest::addColumn<QString>("page");
        QTest::newRow("wrapped") << QStringLiteral("a\nb") << false << QStringLiteral("<body>\na\nb\n</body>");
        QTest::newRow("line feeds become <br> in the HTML only")
            << QStringLiteral("a\nb\n") << true << QStringLiteral("<body>\na<br>b<br>\n</body>");
        QTest::newRow("CR LF keeps its CR") << QStringLiteral("a\r\nb") << true << QStringLiteral("<body>\na\r<br>b\n</body>");
        QTest::newRow("inside tags and comments too")
            << QStringLiteral("<pre>\n</pre><!--\n-->") << true << QStringLiteral("<body>\n<pre><br></pre><!--<br>-->\n</body>");
    }

    void combinedPage()
    {
        QFETCH(QString, html);
        QFETCH(bool, lineBreaks);
        QFETCH(QString, page);
        QCOMPARE(TWPageComposer::combinedPage(QStringLiteral("<body>\n"), html, QStringLiteral("\n</body>"), lineBreaks),
                 page);
    }

    void reloadingFileIsUTF8WithAByteOrderMarkThenBaseAndLinkLines()
    {
        QCOMPARE(TWPageComposer::reloadingFileText(QStringLiteral("http://localhost/"), QString(), QStringLiteral("x")),
                 QStringLiteral("<base href=\"http://localhost/\">\rx"));
        QTemporaryDir dir;
        const QString folder = dir.filePath(QStringLiteral("data/Tagwright"));
        const QString path = TWPageComposer::writeReloadingFile(
            folder, TWPageComposer::reloadingFileText(QStringLiteral("file://localhost/site/a.html"),
                                                      QStringLiteral("/site/my style.css"),
                                                      QString::fromUtf8("<!DOCTYPE html>\n<p>日本</p>")));
        QCOMPARE(path, folder + QStringLiteral("/Tagwright_tmp.html"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray("\xef\xbb\xbf<base href=\"file://localhost/site/a.html\">\r"
                                            "<link rel=stylesheet href=\"/site/my style.css\" type=\"text/css\">\r"
                                            "<!DOCTYPE html>\n<p>\xe6\x97\xa5\xe6\x9c\xac</p>"));

        // Something else in the folder's place: nothing is written, the path still comes back.
        const QString blocked = dir.filePath(QStringLiteral("blocked"));
        QFile blocker(blocked);
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        QCOMPARE(TWPageComposer::writeReloadingFile(blocked, QStringLiteral("x")), blocked + QStringLiteral("/Tagwright_tmp.html"));
        QVERIFY(!QFile::exists(blocked + QStringLiteral("/Tagwright_tmp.html")));
    }

    void baseURLsFromText_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("absolute");
        QTest::newRow("http") << QStringLiteral("http://localhost/") << QStringLiteral("http://localhost/");
        QTest::newRow("empty is none") << QString() << QString();
        QTest::newRow("relative is none") << QStringLiteral("index.html") << QString();
        QTest::newRow("broken is none") << QStringLiteral("http://exa mple.com/") << QString();
    }

    void baseURLsFromText()
    {
        QFETCH(QString, text);
        QFETCH(QString, absolute);
        const std::optional<QUrl> url = TWPageComposer::baseURLFromString(text);
        QCOMPARE(url ? TWPageComposer::absoluteString(*url) : QString(), absolute);
    }

    void relativePaths_data()
    {
        QTest::addColumn<QString>("base");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("relative");
        const auto row = [](const char *name, const char *base, const char *path, const char *relative) {
            QTest::newRow(name) << QString::fromUtf8(base) << QString::fromUtf8(path) << QString::fromUtf8(relative);
        };
        const char *site = "file://localhost/Users/someone/site/index.html";
        row("below the base", site, "/Users/someone/site/img/logo.gif", "img/logo.gif");
        row("beside the base", site, "/Users/someone/site/a.html", "a.html");
        row("elsewhere: the bare name", site, "/Users/someone/other/b.gif", "b.gif");
        row("case matters", site, "/users/someone/site/a.html", "a.html");
        row("http base: the bare name", "http://localhost/site/", "/site/c.png", "c.png");
        row("no base: the bare name", "", "/x/y.png", "y.png");
        row("escaped folder never matches", "file://localhost/my%20site/index.html", "/my site/img.png", "img.png");
        row("folder base", "file://localhost/site/", "/site/img/a.png", "img/a.png");
        row("plain file URL", "file:///site/index.html", "/site/a.png", "a.png");
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
