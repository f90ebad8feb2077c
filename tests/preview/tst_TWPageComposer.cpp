// How the previewed page is composed: the combined page, the temporary page file, base URLs
// and link paths relative to the base URL.
#include "preview/TWPageComposer.h"

#include <QTest>

using namespace Qt::StringLiterals;

// A base URL (none when empty), a file's path, and the path a link to it takes.
struct Link { QString base; QString path; QString relative; };

class tst_TWPageComposer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // While line breaks are validated every line feed of the HTML becomes <br>: after a CR,
    // inside tags and comments too, but never one of the template's.
    void combinedPage()
    {
        const QString html = u"a\r\nb<pre>\n</pre><!--\n-->"_s;
        QCOMPARE(TWPageComposer::combinedPage(u"<body>\n"_s, html, u"\n</body>"_s, false), u"<body>\n"_s + html + u"\n</body>"_s);
        QCOMPARE(TWPageComposer::combinedPage(u"<body>\n"_s, html, u"\n</body>"_s, true),
                 u"<body>\na\r<br>b<pre><br></pre><!--<br>-->\n</body>"_s);
    }

    // The temporary page file: a base line, the style sheet's link line (for the external
    // browsers), then the page. (Its byte-order mark and the base line at work: the Clear Cache
    // of tst_TWViewWindowController.)
    void reloadingFile()
    {
        QCOMPARE(TWPageComposer::reloadingFileText(u"http://localhost/"_s, u"/site/my style.css"_s, u"x"_s),
                 u"<base href=\"http://localhost/\">\r<link rel=stylesheet href=\"/site/my style.css\" type=\"text/css\">\rx"_s);
    }

    // Only an absolute URL is a base; a chosen file is one as a file URL on localhost.
    void baseURLs()
    {
        QCOMPARE(TWPageComposer::absoluteString(*TWPageComposer::baseURLFromString(u"http://localhost/"_s)), u"http://localhost/"_s);
        for (const QString &text : {QString(), u"index.html"_s, u"http://exa mple.com/"_s})
            QVERIFY2(!TWPageComposer::baseURLFromString(text), qPrintable(text));
        QCOMPARE(TWPageComposer::absoluteString(TWPageComposer::fileURL(u"/site/page one.html"_s)), u"file://localhost/site/page%20one.html"_s);
    }

    void relativePaths_data()
    {
        QTest::addColumn<Link>("row");
        // Each path not below the base is in a folder under the base's name, so that only the
        // bare name shows that the base was not taken.
        const QString site = u"file://localhost/Users/someone/site/index.html"_s;
        QTest::newRow("below the base") << Link{site, u"/Users/someone/site/img/logo.gif"_s, u"img/logo.gif"_s};
        QTest::newRow("elsewhere: the bare name") << Link{site, u"/Users/someone/other/b.gif"_s, u"b.gif"_s};
        QTest::newRow("case matters") << Link{site, u"/users/someone/site/img/a.html"_s, u"a.html"_s};
        QTest::newRow("http base: the bare name") << Link{u"http://localhost/site/"_s, u"/site/img/c.png"_s, u"c.png"_s};
        QTest::newRow("no base: the bare name") << Link{QString(), u"/x/y.png"_s, u"y.png"_s};
        QTest::newRow("escaped folder never matches") << Link{u"file://localhost/my%20site/index.html"_s, u"/my site/img/a.png"_s, u"a.png"_s};
        QTest::newRow("folder base") << Link{u"file://localhost/site/"_s, u"/site/img/a.png"_s, u"img/a.png"_s};
    }

    void relativePaths()
    {
        QFETCH(Link, row);
        QCOMPARE(TWPageComposer::relativePathToBaseURL(row.base.isEmpty() ? std::nullopt : std::optional(QUrl(row.base)), row.path), row.relative);
    }
};

QTEST_GUILESS_MAIN(tst_TWPageComposer)
#include "tst_TWPageComposer.moc"
