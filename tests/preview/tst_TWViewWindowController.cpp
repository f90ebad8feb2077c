// The viewer with the real browser engine, launched as the application launches it: what it
// shows and keeps, its window, its flags and base URL, and the external browsers.
#include "preview/TWViewWindowController.h"

#include "TWTestEnvironment.h"
#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWLocalization.h"
#include "platform/TWPaths.h"
#include "platform/TWUserDefaults.h"
#include "platform/TWWindowOrder.h"
#include "preview/TWExternalBrowser.h"
#include "preview/TWPageComposer.h"

#include <QAction>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QWebEnginePage>
#include <QWebEngineView>

namespace {

constexpr int loadTimeout = 30000;
enum Route { RenderNow, ClearCache, SaveCSSAndClearCache };

TWViewWindowController *viewer()
{
    return TWViewWindowController::sharedViewWindowController();
}

// Runs a script in the page and waits for its answer.
QVariant evaluate(const QString &script)
{
    std::optional<QVariant> answer;
    viewer()->webView()->page()->runJavaScript(script, [&answer](const QVariant &value) { answer = value; });
    return TWTestEnvironment::waitFor([&answer] { return answer.has_value(); }, loadTimeout) ? *answer : QVariant();
}

// Starts a load once the viewer is idle and waits until the engine has finished; answers
// whether it succeeded.
bool loadAndWait(const std::function<void()> &load)
{
    if (!TWTestEnvironment::waitFor([] { return !viewer()->isLoading(); }, loadTimeout))
        return false;
    QSignalSpy ended(viewer(), &TWViewWindowController::loadEnded);
    load();
    return TWTestEnvironment::waitFor([&ended] { return !ended.isEmpty(); }, loadTimeout) && ended.last().first().toBool();
}

bool show(const QString &html, Route route = RenderNow)
{
    TWEditWindowController::sharedEditWindowController()->textView()->setString(html);
    return loadAndWait([route] {
        if (route == RenderNow)
            viewer()->renderNow();
        else if (route == ClearCache)
            viewer()->clearCache();
        for (QAction *action : TWAppDelegate::sharedAppDelegate()->findChildren<QAction *>())
            if (route == SaveCSSAndClearCache && action->text() == QLatin1String("Save CSS and Clear Cache"))
                action->trigger();
    });
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
    int launchRenders = 0;

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        TWPreview::setFactory([] { return TWViewWindowController::sharedViewWindowController(); });
        TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
        delegate->applicationWillFinishLaunching();
        QSignalSpy requested(viewer(), &TWViewWindowController::pageRequested);
        delegate->applicationDidFinishLaunching();
        // Every render timer started meanwhile has fired.
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->timerCount(), 0, loadTimeout);
        launchRenders = requested.count();
        // From here on only the tests' own requests render.
        viewer()->setAutoRender(false);
        viewer()->resize(800, 600);
        QVERIFY(QTest::qWaitForWindowExposed(viewer()));
    }

    void init()
    {
        TWTemplateWindowController::sharedTemplateController()->loadTemplate(
            QStringLiteral("<html><head></head><body>\n<<TAGWRIGHTTEMPLATEDIVIDER>>\n</body></html>"));
        viewer()->setBaseURL(TWPageComposer::fileURL(site.filePath(QStringLiteral("index.html"))));
    }

    void launchRendersOnce()
    {
        QCOMPARE(launchRenders, 1);
    }

    void relativeImagesResolveAgainstTheBaseURL()
    {
        QVERIFY(QDir().mkpath(site.filePath(QStringLiteral("img"))));
        writeFile(site.filePath(QStringLiteral("img/logo.svg")), "<svg xmlns='http://www.w3.org/2000/svg' width='33' height='17'/>");
        viewer()->setBaseURL(TWPageComposer::fileURL(site.filePath(QStringLiteral("index.html"))));
        QVERIFY(show(QStringLiteral("<img id=logo src=\"img/logo.svg\">")));
        TW_TRY_COMPARE_WITH_TIMEOUT(evaluate(QStringLiteral("logo.naturalWidth + 'x' + logo.naturalHeight")).toString(),
                                  QStringLiteral("33x17"), loadTimeout);
    }

    void windowTitleIsThePageTitle_data()
    {
        QTest::addColumn<QString>("head");
        QTest::addColumn<QString>("html");
        QTest::addColumn<int>("route");
        QTest::addColumn<QString>("title");
        const auto row = [](const char *name, const char *head, const char *html, Route route, const char *title) {
            QTest::newRow(name) << QString::fromUtf8(head) << QString::fromUtf8(html) << int(route) << QString::fromUtf8(title);
        };
        row("a title", "", "<title>My Page</title>", RenderNow, "My Page");
        row("like a host name", "", "<title>localhost</title>", RenderNow, "localhost");
        row("none", "", "<p>x</p>", RenderNow, "(No Title)");
        row("empty", "", "<title> </title>", RenderNow, "(No Title)");
        row("none, Clear Cache", "", "<p>x</p>", ClearCache, "(No Title)");
        // The temporary page file reads as the rendered page whatever the template declares.
        const char *shiftJIS = "<meta http-equiv=\"Content-Type\" content=\"text/html; charset=Shift_JIS\">";
        row("Shift_JIS declared, Clear Cache", shiftJIS, "<title>日本語 ©</title>", ClearCache, "日本語 ©");
        row("EUC-JP declared, Clear Cache", "<meta charset=EUC-JP>", "<title>日本語 ©</title>", ClearCache, "日本語 ©");
        row("none declared, Clear Cache", "", "<title>日本語 ©</title>", ClearCache, "日本語 ©");
    }

    void windowTitleIsThePageTitle()
    {
        QFETCH(QString, head);
        QFETCH(QString, html);
        QFETCH(int, route);
        QFETCH(QString, title);
        TWTemplateWindowController::sharedTemplateController()->loadTemplate(
            QStringLiteral("<html><head>%1</head><body>\n<<TAGWRIGHTTEMPLATEDIVIDER>>\n</body></html>").arg(head));
        viewer()->setWindowTitle(QString());
        QVERIFY(show(html, Route(route)));
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->windowTitle(), title, loadTimeout);
    }

    void styleSheetIsTheFileAsSavedAtEachLoad_data()
    {
        QTest::addColumn<QString>("html");
        QTest::addColumn<int>("route");
        QTest::addColumn<bool>("apply");
        QTest::addColumn<bool>("saved");
        QTest::addColumn<QString>("color");
        const auto row = [](const char *name, const char *html, Route route, bool apply, bool saved, const char *color) {
            QTest::newRow(name) << QString::fromUtf8(html) << int(route) << apply << saved << QString::fromUtf8(color);
        };
        row("Render Now", "<p id=t>x</p>", RenderNow, true, true, "rgb(0, 128, 0)");
        row("Clear Cache", "<p id=t>x</p>", ClearCache, true, true, "rgb(0, 128, 0)");
        row("Save CSS and Clear Cache", "<p id=t>x</p>", SaveCSSAndClearCache, true, true, "rgb(0, 128, 0)");
        row("in a frame", "<iframe srcdoc=\"<p id=t>x</p>\"></iframe>", RenderNow, true, true, "rgb(0, 128, 0)");
        row("the page's own rules win", "<style>p { color: rgb(1, 2, 3) }</style><p id=t>x</p>", RenderNow, true, true,
            "rgb(1, 2, 3)");
        row("not applied", "<p id=t>x</p>", RenderNow, false, true, "rgb(0, 0, 0)");
        row("file gone", "<p id=t>x</p>", RenderNow, true, false, "rgb(0, 0, 0)");
    }

    void styleSheetIsTheFileAsSavedAtEachLoad()
    {
        QFETCH(QString, html);
        QFETCH(int, route);
        QFETCH(bool, apply);
        QFETCH(bool, saved);
        QFETCH(QString, color);
        const QString path = site.filePath(QStringLiteral("style.css"));
        const QByteArray css = "p { color: rgb(0, 128, 0); }\n";
        writeFile(path, "p { color: red; }\n");
        TWCSSWindowController *styleSheet = TWCSSWindowController::sharedCSSController();
        styleSheet->setCSSFilename(path);
        viewer()->setApplyCSS(apply);
        QCOMPARE(TWAppDelegate::sharedAppDelegate()->applyCSSMenu->isChecked(), apply);
        // Changed after it was switched on.
        if (route == SaveCSSAndClearCache)
            styleSheet->loadCSS(QString::fromUtf8(css));
        else if (saved)
            writeFile(path, css);
        else
            QFile::remove(path);
        QVERIFY(show(html, Route(route)));
        const QString element = QStringLiteral("document.getElementById('t') || "
                                               "document.querySelector('iframe').contentDocument.getElementById('t')");
        TW_TRY_COMPARE_WITH_TIMEOUT(evaluate(QStringLiteral("getComputedStyle(%1).color").arg(element)).toString(), color, loadTimeout);
        viewer()->setApplyCSS(false);
    }

    void rerenderKeepsTheScrollPosition()
    {
        QString page;
        for (int i = 0; i < 400; ++i)
            page += QStringLiteral("<p>line %1</p>\n").arg(i);
        QVERIFY(show(page));
        evaluate(QStringLiteral("window.scrollTo(0, 3000)"));
        TW_TRY_VERIFY_WITH_TIMEOUT(viewer()->webView()->page()->scrollPosition().y() > 2900, loadTimeout);
        QVERIFY(show(page + QStringLiteral("<p>one more</p>")));
        TW_TRY_COMPARE_WITH_TIMEOUT(evaluate(QStringLiteral("window.scrollY")).toInt(), 3000, loadTimeout);
    }

    void pagesOverTheHandOverLimitRenderWhole()
    {
        QString page = QStringLiteral("<title>Large</title>\n");
        int count = 0;
        while (page.size() < 2600000)
            page += QStringLiteral("<p>%1 & more text to make the page large</p>\n").arg(count++);
        QVERIFY(show(page + QStringLiteral("<p id=last>the end</p>")));
        QCOMPARE(evaluate(QStringLiteral("document.getElementById('last').textContent")).toString(),
                 QStringLiteral("the end"));
        QCOMPARE(evaluate(QStringLiteral("document.getElementsByTagName('p').length")).toInt(), count + 1);
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->windowTitle(), QStringLiteral("Large"), loadTimeout);
        QCOMPARE(viewer()->webView()->page()->url(), *viewer()->baseURL());
    }

    void stopRenderingEndsARunawayPage()
    {
        TWEditWindowController::sharedEditWindowController()->textView()->setString(
            QStringLiteral("<script>document.title = 'spinning'; for (;;) {}</script>"));
        viewer()->renderNow();
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->webView()->page()->title(), QStringLiteral("spinning"), loadTimeout);
        viewer()->stopRendering();
        // The next render works, in a fresh page process.
        QVERIFY(show(QStringLiteral("<p id=after>after</p>")));
        QCOMPARE(evaluate(QStringLiteral("after.textContent")).toString(), QStringLiteral("after"));
    }

    void loadErrorsAreDescribed_data()
    {
        QTest::addColumn<QUrl>("url");
        QTest::addColumn<QString>("status");
        QTest::newRow("missing file") << QUrl::fromLocalFile(site.filePath(QStringLiteral("missing.html")))
                                      << QStringLiteral("The file was not found.");
        QTest::newRow("any other error") << QUrl(QStringLiteral("http://127.0.0.1:1/"))
                                         << QStringLiteral("The page could not be loaded (unsafe port).");
    }

    void loadErrorsAreDescribed()
    {
        QFETCH(QUrl, url);
        QFETCH(QString, status);
        QVERIFY(!loadAndWait([url] { viewer()->webView()->page()->load(url); }));
        QCOMPARE(viewer()->statusText(), status);
        // The next good load empties it.
        QVERIFY(show(QStringLiteral("<p>fine</p>")));
        QCOMPARE(viewer()->statusText(), QString());
    }

    void renderNowBringsBackAMinimisedViewer()
    {
        viewer()->showMinimized();
        TW_TRY_VERIFY_WITH_TIMEOUT(viewer()->isMinimized(), loadTimeout);
        QVERIFY(show(QStringLiteral("<p>back</p>")));
        QVERIFY(TWWindowOrder::isWindowVisible(viewer()));
    }

    void buttonsAndMenusFollowTheFlags()
    {
        // A button pressed means off, a menu check mark means on; either one switches the flag.
        TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
        const QList<std::pair<const char *, QAction *>> pairs = {
            {"autoRenderButton", delegate->autoRenderingMenu},
            {"cssButton", delegate->applyCSSMenu},
            {"lineBreakValidationButton", delegate->lineBreakValidationMenuItem},
            {"templateButton", delegate->applyTemplateMenu},
        };
        for (const auto &[name, menu] : pairs) {
            auto *button = viewer()->findChild<QToolButton *>(QLatin1String(name));
            for (int click = 0; click < 4; ++click) {
                const bool wasOn = menu->isChecked();
                click % 2 ? menu->trigger() : button->click();
                QVERIFY2(menu->isChecked() != wasOn && button->isChecked() == wasOn, name);
            }
        }
        QVERIFY(!viewer()->autoRender());
        QVERIFY(TWTemplateWindowController::sharedTemplateController()->applyTemplate());
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
        viewer()->choseBaseURLFiles({QStringLiteral("/site/page one.html")});
        QCOMPARE(field->text(), QStringLiteral("file://localhost/site/page%20one.html"));
    }

    void windowStateIsSavedAndTheTemporaryFileRemoved()
    {
        viewer()->setBaseURLWithString(QStringLiteral("http://localhost/kept/"));
        viewer()->setApplyCSS(true);
        const QString path = viewer()->generateReloadingFile();
        QVERIFY(QFile::exists(path));
        viewer()->saveWindowProperties();
        viewer()->setApplyCSS(false);
        QVERIFY(!QFile::exists(path));
        const QVariantMap saved
            = *TWUserDefaults::standardUserDefaults()->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::viewerWindow));
        const QVariantMap expected = {{QLatin1String(TWStateEntry::baseURL), QStringLiteral("http://localhost/kept/")},
                                      {QLatin1String(TWStateEntry::autoRendering), QStringLiteral("NO")},
                                      {QLatin1String(TWStateEntry::applyCSS), QStringLiteral("YES")},
                                      {QLatin1String(TWStateEntry::validateLineBreak), QStringLiteral("NO")}};
        QCOMPARE(saved, expected);
    }

    void externalBrowsersGetTheTemporaryFile()
    {
        // A stand-in browser that writes down what it was asked to open.
        const QString record = site.filePath(QStringLiteral("opened.txt"));
        const QString browser = site.filePath(QStringLiteral("fake-browser"));
        writeFile(browser, QStringLiteral("#!/bin/sh\nprintf '%s' \"$1\" > '%1'\n").arg(record).toUtf8());
        QFile::setPermissions(browser, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        viewer()->viewOnApp(browser);
        TW_TRY_VERIFY_WITH_TIMEOUT(QFile::exists(record), loadTimeout);
        QFile opened(record);
        QVERIFY(opened.open(QIODevice::ReadOnly));
        QCOMPARE(QString::fromUtf8(opened.readAll()), TWApplicationDataFolder() + QStringLiteral("/Tagwright_tmp.html"));

        // A browser given by its .desktop file starts through its Exec line.
        const QString desktop = site.filePath(QStringLiteral("fake.desktop"));
        writeFile(desktop, QStringLiteral("[Desktop Entry]\nExec=\"%1\" --new-window %U\n[Desktop Action x]\nExec=wrong\n")
                               .arg(browser)
                               .toUtf8());
        QCOMPARE(TWExternalBrowser::commandFor(desktop, QStringLiteral("/tmp/p.html")),
                 (QStringList{browser, QStringLiteral("--new-window"), QStringLiteral("file:///tmp/p.html")}));
        // One that does not exist, or cannot run, opens nothing and breaks nothing.
        QVERIFY(TWExternalBrowser::commandFor(site.filePath(QStringLiteral("missing")), QStringLiteral("/p")).isEmpty());
        QVERIFY(TWExternalBrowser::commandFor(record, QStringLiteral("/p")).isEmpty());
        viewer()->viewOnApp(site.filePath(QStringLiteral("missing")));
    }
};

QTEST_MAIN(tst_TWViewWindowController)
#include "tst_TWViewWindowController.moc"
