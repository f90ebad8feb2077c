// The viewer with the real browser engine: relative images and links resolve against the base
// URL, the style sheet applies, titles, scroll position, load errors, large pages, the option
// flags with their buttons and menu check marks, the base URL field, the window state and the
// external browsers.
#include "preview/TWViewWindowController.h"

#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWLocalization.h"
#include "platform/TWPaths.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferences.h"
#include "preview/TWExternalBrowser.h"
#include "preview/TWPageComposer.h"

#include <QAction>
#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QMenu>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QWebEnginePage>
#include <QWebEngineView>

namespace {

TWViewWindowController *viewer()
{
    return TWViewWindowController::sharedViewWindowController();
}

// Runs a script in the page and waits for its answer.
QVariant evaluate(const QString &script)
{
    QVariant answer;
    bool done = false;
    viewer()->webView()->page()->runJavaScript(script, [&](const QVariant &value) {
        answer = value;
        done = true;
    });
    QElapsedTimer timer;
    timer.start();
    while (!done && timer.elapsed() < 10000)
        QTest::qWait(10);
    return answer;
}

// Renders the HTML (wrapped in the template) and waits until the load has ended.
bool renderAndWait(const QString &html)
{
    TWEditWindowController::sharedEditWindowController()->textView()->setString(html);
    QSignalSpy ended(viewer(), &TWViewWindowController::loadEnded);
    viewer()->renderNow();
    return ended.wait(20000) && ended.last().first().toBool();
}

void writeFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

class tst_TWViewWindowController : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir site;

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        TWPreview::setFactory([] { return TWViewWindowController::sharedViewWindowController(); });
        TWTemplateWindowController::sharedTemplateController()->loadTemplate(
            QStringLiteral("<html><head></head><body>\n<<TAGWRIGHTTEMPLATEDIVIDER>>\n</body></html>"));
        viewer()->resize(800, 600);
        viewer()->show();
        QVERIFY(QTest::qWaitForWindowExposed(viewer()));
    }

    void relativeImagesResolveAgainstTheBaseURL()
    {
        QImage image(33, 17, QImage::Format_RGB32);
        image.fill(Qt::blue);
        QVERIFY(QDir().mkpath(site.filePath(QStringLiteral("img"))));
        QVERIFY(image.save(site.filePath(QStringLiteral("img/logo.png"))));
        viewer()->setBaseURL(TWPageComposer::fileURL(site.filePath(QStringLiteral("index.html"))));
        QVERIFY(renderAndWait(QStringLiteral("<img id=logo src=\"img/logo.png\">")));
        QTRY_COMPARE_WITH_TIMEOUT(evaluate(QStringLiteral("document.getElementById('logo').naturalWidth")).toInt(), 33,
                                  10000);
        QCOMPARE(evaluate(QStringLiteral("document.getElementById('logo').naturalHeight")).toInt(), 17);
        // The template wraps the HTML.
        QVERIFY(evaluate(QStringLiteral("document.body.innerHTML")).toString().contains(QLatin1String("logo.png")));
    }

    void titleReachesTheWindow()
    {
        QVERIFY(renderAndWait(QStringLiteral("<title>My Page</title><p>x</p>")));
        QTRY_COMPARE(viewer()->windowTitle(), QStringLiteral("My Page"));
        QVERIFY(renderAndWait(QStringLiteral("<p>no title here</p>")));
        QTRY_COMPARE(viewer()->windowTitle(), QStringLiteral("(No Title)"));
    }

    void styleSheetAppliesWhenSwitchedOn()
    {
        const QString css = site.filePath(QStringLiteral("style.css"));
        writeFile(css, "p { color: rgb(0, 128, 0); }\n");
        TWCSSWindowController::sharedCSSController()->setCSSFilename(css);
        viewer()->setApplyCSS(true);
        QVERIFY(TWAppDelegate::sharedAppDelegate()->applyCSSMenu->isChecked());
        QVERIFY(renderAndWait(QStringLiteral("<p id=t>styled</p>")));
        QTRY_COMPARE(evaluate(QStringLiteral("getComputedStyle(document.getElementById('t')).color")).toString(),
                     QStringLiteral("rgb(0, 128, 0)"));
        // The page's own rules still win, as over a user style sheet.
        QVERIFY(renderAndWait(QStringLiteral("<style>p { color: rgb(1, 2, 3) }</style><p id=t>own</p>")));
        QCOMPARE(evaluate(QStringLiteral("getComputedStyle(document.getElementById('t')).color")).toString(),
                 QStringLiteral("rgb(1, 2, 3)"));

        viewer()->setApplyCSS(false);
        QVERIFY(renderAndWait(QStringLiteral("<p id=t>plain</p>")));
        QCOMPARE(evaluate(QStringLiteral("getComputedStyle(document.getElementById('t')).color")).toString(),
                 QStringLiteral("rgb(0, 0, 0)"));

        // A style sheet file that is gone: the page renders without it.
        TWCSSWindowController::sharedCSSController()->setCSSFilename(site.filePath(QStringLiteral("gone.css")));
        viewer()->setApplyCSS(true);
        QVERIFY(renderAndWait(QStringLiteral("<p id=t>still here</p>")));
        QCOMPARE(evaluate(QStringLiteral("document.getElementById('t').textContent")).toString(),
                 QStringLiteral("still here"));
        viewer()->setApplyCSS(false);
        TWCSSWindowController::sharedCSSController()->setCSSFilename(QString());
    }

    void rerenderKeepsTheScrollPosition()
    {
        QString page;
        for (int i = 0; i < 400; ++i)
            page += QStringLiteral("<p>line %1</p>\n").arg(i);
        QVERIFY(renderAndWait(page));
        evaluate(QStringLiteral("window.scrollTo(0, 3000)"));
        QTRY_VERIFY(viewer()->webView()->page()->scrollPosition().y() > 2900);
        QVERIFY(renderAndWait(page + QStringLiteral("<p>one more</p>")));
        QTRY_COMPARE(evaluate(QStringLiteral("window.scrollY")).toInt(), 3000);
    }

    void pagesOverTheHandOverLimitRenderWhole()
    {
        QString page = QStringLiteral("<title>Large</title>\n");
        const QString paragraph = QStringLiteral("<p>%1 & more text to make the page large</p>\n");
        int count = 0;
        while (page.size() < 2600000)
            page += paragraph.arg(count++);
        page += QStringLiteral("<p id=last>the end</p>");
        QVERIFY(renderAndWait(page));
        QCOMPARE(evaluate(QStringLiteral("document.getElementById('last').textContent")).toString(),
                 QStringLiteral("the end"));
        QCOMPARE(evaluate(QStringLiteral("document.getElementsByTagName('p').length")).toInt(), count + 1);
        QTRY_COMPARE(viewer()->windowTitle(), QStringLiteral("Large"));
        QCOMPARE(TWPageComposer::absoluteString(viewer()->webView()->page()->url()),
                 TWPageComposer::absoluteString(*viewer()->baseURL()));
    }

    void stopRenderingEndsARunawayPage()
    {
        TWEditWindowController::sharedEditWindowController()->textView()->setString(
            QStringLiteral("<p>spinning</p><script>for (;;) {}</script>"));
        viewer()->renderNow();
        QTest::qWait(500);
        // The editor is not held up by the page: this test's event loop keeps running.
        QElapsedTimer stopped;
        stopped.start();
        viewer()->stopRendering();
        QTest::qWait(800);
        QVERIFY(stopped.elapsed() < 3000);
        // The next render works in a fresh page process.
        QVERIFY(renderAndWait(QStringLiteral("<p id=after>after</p>")));
        QCOMPARE(evaluate(QStringLiteral("document.getElementById('after').textContent")).toString(),
                 QStringLiteral("after"));
    }

    void loadErrorReachesTheStatusText()
    {
        // The data folder cannot be made: the temporary page file is never written.
        const QString folder = TWApplicationDataFolder();
        QDir(folder).removeRecursively();
        QDir().mkpath(QFileInfo(folder).absolutePath());
        writeFile(folder, "not a folder");
        QSignalSpy ended(viewer(), &TWViewWindowController::loadEnded);
        viewer()->clearCache();
        QVERIFY(ended.wait(20000));
        QCOMPARE(ended.last().first().toBool(), false);
        QVERIFY(!viewer()->statusText().isEmpty());
        QFile::remove(folder);
        // The next good load empties it.
        QVERIFY(renderAndWait(QStringLiteral("<p>fine</p>")));
        QCOMPARE(viewer()->statusText(), QString());
    }

    void clearCacheShowsTheTemporaryPageFile()
    {
        TWEditWindowController::sharedEditWindowController()->textView()->setString(QStringLiteral("<p id=c>cached</p>"));
        QSignalSpy ended(viewer(), &TWViewWindowController::loadEnded);
        viewer()->clearCache();
        QVERIFY(ended.wait(20000));
        QVERIFY(ended.last().first().toBool());
        const QString path = TWApplicationDataFolder() + QStringLiteral("/Tagwright_tmp.html");
        QCOMPARE(viewer()->webView()->page()->url(), QUrl::fromLocalFile(path));
        QCOMPARE(evaluate(QStringLiteral("document.getElementById('c').textContent")).toString(), QStringLiteral("cached"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().startsWith("<base href=\""));
    }

    void flagsDriveButtonsAndMenus()
    {
        TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
        auto *autoButton = viewer()->findChild<QToolButton *>(QStringLiteral("autoRenderButton"));
        auto *lineBreakButton = viewer()->findChild<QToolButton *>(QStringLiteral("lineBreakValidationButton"));
        auto *templateButton = viewer()->findChild<QToolButton *>(QStringLiteral("templateButton"));
        viewer()->setAutoRender(true);
        QVERIFY(!autoButton->isChecked());
        QVERIFY(delegate->autoRenderingMenu->isChecked());
        autoButton->click();
        QVERIFY(!viewer()->autoRender());
        QVERIFY(autoButton->isChecked());
        QVERIFY(!delegate->autoRenderingMenu->isChecked());
        delegate->autoRenderingMenu->trigger();
        QVERIFY(viewer()->autoRender());
        QVERIFY(!autoButton->isChecked());

        delegate->lineBreakValidationMenuItem->trigger();
        QVERIFY(viewer()->lineBreakValidation());
        QVERIFY(!lineBreakButton->isChecked());
        lineBreakButton->click();
        QVERIFY(!viewer()->lineBreakValidation());
        QVERIFY(!delegate->lineBreakValidationMenuItem->isChecked());

        TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
        const bool applied = templateWindow->applyTemplate();
        templateButton->click();
        QCOMPARE(templateWindow->applyTemplate(), !applied);
        QCOMPARE(templateButton->isChecked(), applied);
        QCOMPARE(delegate->applyTemplateMenu->isChecked(), !applied);
        templateButton->click();
        QCOMPARE(templateWindow->applyTemplate(), applied);
    }

    void baseURLFieldAndChooser()
    {
        auto *field = viewer()->findChild<QLineEdit *>(QStringLiteral("baseURLField"));
        field->setText(QStringLiteral("no url at all"));
        viewer()->inputBaseURL();
        QVERIFY(!viewer()->baseURL());
        QCOMPARE(field->text(), QString());
        field->setText(QStringLiteral("http://localhost/site/"));
        viewer()->inputBaseURL();
        QCOMPARE(viewer()->baseURL(), std::optional<QUrl>(QUrl(QStringLiteral("http://localhost/site/"))));

        viewer()->choseBaseURLFiles({QStringLiteral("/a.html"), QStringLiteral("/b.html")});
        QCOMPARE(field->text(), QStringLiteral("Choose exactly one file."));
        QCOMPARE(viewer()->baseURL(), std::optional<QUrl>(QUrl(QStringLiteral("http://localhost/site/"))));
        viewer()->choseBaseURLFiles({});
        QCOMPARE(field->text(), QStringLiteral("Choose exactly one file."));
        viewer()->choseBaseURLFiles({QStringLiteral("/site/page one.html")});
        QCOMPARE(field->text(), QStringLiteral("file://localhost/site/page%20one.html"));
        QCOMPARE(viewer()->relativePathToBaseURL(QStringLiteral("/site/img/a.gif")), QStringLiteral("img/a.gif"));
    }

    void windowStateIsSavedAndTheTemporaryFileRemoved()
    {
        viewer()->setBaseURLWithString(QStringLiteral("http://localhost/kept/"));
        viewer()->setApplyCSS(true);
        viewer()->setLineBreakValidation(true);
        viewer()->setAutoRender(false);
        const QString path = viewer()->generateReloadingFile();
        QVERIFY(QFile::exists(path));
        viewer()->saveWindowProperties();
        QVERIFY(!QFile::exists(path));
        const QVariantMap saved
            = *TWUserDefaults::standardUserDefaults()->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::viewerWindow));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::baseURL)).toString(), QStringLiteral("http://localhost/kept/"));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::autoRendering)).toString(), QStringLiteral("NO"));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::applyCSS)).toString(), QStringLiteral("YES"));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::validateLineBreak)).toString(), QStringLiteral("YES"));
        viewer()->setApplyCSS(false);
        viewer()->setLineBreakValidation(false);
        viewer()->setAutoRender(true);
    }

    void externalBrowsersGetTheTemporaryFile()
    {
        // A stand-in browser that writes down what it was asked to open.
        const QString record = site.filePath(QStringLiteral("opened.txt"));
        const QString browser = site.filePath(QStringLiteral("fake-browser"));
        writeFile(browser, QStringLiteral("#!/bin/sh\nprintf '%s' \"$1\" > '%1'\n").arg(record).toUtf8());
        QFile::setPermissions(browser, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        viewer()->viewOnApp(browser);
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(record), 10000);
        QFile opened(record);
        QVERIFY(opened.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(opened.readAll()), TWApplicationDataFolder() + QStringLiteral("/Tagwright_tmp.html"));

        // A browser given by its .desktop file starts through its Exec line.
        const QString desktop = site.filePath(QStringLiteral("fake.desktop"));
        writeFile(desktop, QStringLiteral("[Desktop Entry]\nName=Fake\nExec=\"%1\" --new-window %U\n[Desktop Action x]\nExec=wrong\n")
                               .arg(browser)
                               .toUtf8());
        QCOMPARE(TWExternalBrowser::commandFor(desktop, QStringLiteral("/tmp/p.html")),
                 (QStringList{browser, QStringLiteral("--new-window"), QStringLiteral("file:///tmp/p.html")}));
        // One that does not exist, or cannot run, opens nothing and breaks nothing.
        QVERIFY(TWExternalBrowser::commandFor(site.filePath(QStringLiteral("missing")), QStringLiteral("/p")).isEmpty());
        QVERIFY(TWExternalBrowser::commandFor(record, QStringLiteral("/p")).isEmpty());
        viewer()->viewOnApp(site.filePath(QStringLiteral("missing")));
    }

    void browserSubmenu_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<int>("items");
        QTest::newRow("twelve") << 12 << 10;
        QTest::newRow("none") << 0 << 0;
        QTest::newRow("three") << 3 << 3;
    }

    void browserSubmenu()
    {
        QFETCH(int, count);
        QFETCH(int, items);
        QStringList browsers;
        for (int i = 0; i < count; ++i)
            browsers << QStringLiteral("/opt/browser%1/bin/Browser%1.app").arg(i);
        TWPreferences::sharedPref()->setExBrowsers(browsers);
        TWAppDelegate::sharedAppDelegate()->setViewOnExBrowserMenu();
        const QList<QAction *> actions = TWAppDelegate::sharedAppDelegate()->viewOnExBrowserMenu()->actions();
        QCOMPARE(actions.size(), items);
        for (int i = 0; i < items; ++i) {
            QCOMPARE(actions.at(i)->text(), QStringLiteral("Browser%1").arg(i));
            QCOMPARE(actions.at(i)->shortcut(), QKeySequence(Qt::CTRL | Qt::META | Qt::Key(Qt::Key_0 + (i + 1) % 10)));
        }
        QCOMPARE(TWExternalBrowser::title(QStringLiteral("/usr/bin/google-chrome")), QStringLiteral("google-chrome"));
    }
};

QTEST_MAIN(tst_TWViewWindowController)
#include "tst_TWViewWindowController.moc"
