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
// The menu commands that load the page.
const QString renderNow = QStringLiteral("&Render Now"), clearCache = QStringLiteral("C&lear Cache");
const QString saveCSSAndClearCache = QStringLiteral("Save CSS and Clear Cache");

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

// Puts the page into the HTML window and loads it with the menu command of that title.
bool show(const QString &html, const QString &command = renderNow)
{
    TWEditWindowController::sharedEditWindowController()->textView()->setString(html);
    return loadAndWait([&command] {
        for (QAction *action : TWAppDelegate::sharedAppDelegate()->findChildren<QAction *>())
            if (action->text() == command)
                action->trigger();
    });
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
        TWAppDelegate::sharedAppDelegate()->applicationWillFinishLaunching();
        QSignalSpy requested(viewer(), &TWViewWindowController::pageRequested);
        TWAppDelegate::sharedAppDelegate()->applicationDidFinishLaunching();
        // Every render timer started meanwhile has fired, and the launch rendered once.
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->timerCount(), 0, loadTimeout);
        QCOMPARE(requested.count(), 1);
        // From here on only the tests' own requests render.
        viewer()->setAutoRender(false);
        QVERIFY(QTest::qWaitForWindowExposed(viewer()));
    }

    void init()
    {
        TWTemplateWindowController::sharedTemplateController()->loadTemplate(
            QStringLiteral("<html><head></head><body>\n<<TAGWRIGHTTEMPLATEDIVIDER>>\n</body></html>"));
        viewer()->setBaseURL(TWPageComposer::fileURL(site.filePath(QStringLiteral("index.html"))));
        viewer()->setApplyCSS(false);
        viewer()->setWindowTitle(QString());
    }

    void pagesRenderWholeAgainstTheBaseURL_data()
    {
        QTest::addColumn<int>("paragraphs");
        QTest::newRow("small") << 1;
        // Over the engine's own limit of 2 MB for a page handed over directly.
        QTest::newRow("over the hand-over limit") << 60000;
    }

    void pagesRenderWholeAgainstTheBaseURL()
    {
        QFETCH(int, paragraphs);
        QVERIFY(TWTestEnvironment::writeFile(site.filePath(QStringLiteral("logo.svg")), "<svg xmlns='http://www.w3.org/2000/svg' width='33' height='17'/>"));
        QVERIFY(show(QStringLiteral("<title>Whole</title><img id=logo src=\"logo.svg\">\n")
                     + QStringLiteral("<p>more & more text to make it large</p>\n").repeated(paragraphs)));
        QCOMPARE(evaluate(QStringLiteral("document.getElementsByTagName('p').length")).toInt(), paragraphs);
        TW_TRY_COMPARE_WITH_TIMEOUT(evaluate(QStringLiteral("logo.naturalWidth + 'x' + logo.naturalHeight")).toString(),
                                  QStringLiteral("33x17"), loadTimeout);
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->windowTitle(), QStringLiteral("Whole"), loadTimeout);
    }

    void windowTitleIsThePageTitle_data()
    {
        QTest::addColumn<QString>("head");
        QTest::addColumn<QString>("html");
        QTest::addColumn<QString>("command");
        QTest::addColumn<QString>("title");
        QTest::newRow("none") << QString() << QStringLiteral("<p>x</p>") << renderNow << QStringLiteral("(No Title)");
        QTest::newRow("none, Clear Cache") << QString() << QStringLiteral("<p>x</p>") << clearCache << QStringLiteral("(No Title)");
        // The temporary page file reads as the rendered page whatever the template declares.
        const QString japanese = QStringLiteral("<title>日本語 ©</title>"), title = QStringLiteral("日本語 ©");
        const QString declared = QStringLiteral("<meta http-equiv=\"Content-Type\" content=\"text/html; charset=%1\">");
        QTest::newRow("Shift_JIS declared, Clear Cache") << declared.arg(QStringLiteral("Shift_JIS")) << japanese << clearCache << title;
        QTest::newRow("EUC-JP declared, Clear Cache") << declared.arg(QStringLiteral("EUC-JP")) << japanese << clearCache << title;
    }

    void windowTitleIsThePageTitle()
    {
        QFETCH(QString, head);
        QFETCH(QString, html);
        QFETCH(QString, command);
        QFETCH(QString, title);
        TWTemplateWindowController::sharedTemplateController()->loadTemplate(
            QStringLiteral("<html><head>%1</head><body>\n<<TAGWRIGHTTEMPLATEDIVIDER>>\n</body></html>").arg(head));
        QVERIFY(show(html, command));
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->windowTitle(), title, loadTimeout);
    }

    void styleSheetIsTheFileAsSavedAtEachLoad_data()
    {
        // What becomes of the style sheet after it was switched on, and the colours it leaves in
        // the page, in a frame, and where the page has a rule of its own.
        QTest::addColumn<QString>("change");
        QTest::addColumn<QString>("colors");
        const QString green = QStringLiteral("rgb(0, 128, 0) rgb(0, 128, 0) rgb(1, 2, 3)");
        QTest::newRow("saved, Render Now") << QStringLiteral("saved") << green;
        QTest::newRow("saved in its window, Save CSS and Clear Cache") << saveCSSAndClearCache << green;
        QTest::newRow("switched off") << QStringLiteral("off") << QStringLiteral("rgb(0, 0, 0) rgb(0, 0, 0) rgb(1, 2, 3)");
        QTest::newRow("file gone") << QStringLiteral("removed") << QStringLiteral("rgb(0, 0, 0) rgb(0, 0, 0) rgb(1, 2, 3)");
    }

    void styleSheetIsTheFileAsSavedAtEachLoad()
    {
        QFETCH(QString, change);
        QFETCH(QString, colors);
        const QString path = site.filePath(QStringLiteral("style.css"));
        const QByteArray css = "p, b { color: rgb(0, 128, 0); }\n";
        TWTestEnvironment::writeFile(path, "p, b { color: red; }\n");
        TWCSSWindowController *styleSheet = TWCSSWindowController::sharedCSSController();
        styleSheet->setCSSFilename(path);
        viewer()->setApplyCSS(true);
        if (change == saveCSSAndClearCache)
            styleSheet->loadCSS(QString::fromUtf8(css));
        else if (change == QLatin1String("saved"))
            QVERIFY(TWTestEnvironment::writeFile(path, css));
        else if (change == QLatin1String("removed"))
            QFile::remove(path);
        else
            viewer()->setApplyCSS(false);
        QVERIFY(show(QStringLiteral("<style>b { color: rgb(1, 2, 3) }</style><p id=t>x <b id=own>y</b></p>"
                                    "<iframe srcdoc=\"<p id=t>x</p>\"></iframe>"),
                     change == saveCSSAndClearCache ? change : renderNow));
        const QString script = QStringLiteral("[t, frames[0].t, own].map(e => getComputedStyle(e).color).join(' ')");
        TW_TRY_COMPARE_WITH_TIMEOUT(evaluate(script).toString(), colors, loadTimeout);
    }

    void rerenderKeepsTheScrollPosition()
    {
        QVERIFY(show(QStringLiteral("<p>line</p>\n").repeated(400)));
        evaluate(QStringLiteral("window.scrollTo(0, 3000)"));
        TW_TRY_VERIFY_WITH_TIMEOUT(viewer()->webView()->page()->scrollPosition().y() > 2900, loadTimeout);
        QVERIFY(show(QStringLiteral("<p>line</p>\n").repeated(401)));
        TW_TRY_COMPARE_WITH_TIMEOUT(evaluate(QStringLiteral("window.scrollY")).toInt(), 3000, loadTimeout);
    }

    void stopRenderingEndsARunawayPage()
    {
        TWEditWindowController::sharedEditWindowController()->textView()->setString(
            QStringLiteral("<script>document.title = 'spinning'; for (;;) {}</script>"));
        viewer()->renderNow();
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->webView()->page()->title(), QStringLiteral("spinning"), loadTimeout);
        viewer()->stopRendering();
        // The next render works, in a fresh page process.
        QVERIFY(show(QStringLiteral("<p>after</p>")));
    }

    void loadErrorsAreDescribed_data()
    {
        QTest::addColumn<QUrl>("url");
        QTest::addColumn<QString>("status");
        QTest::newRow("no file") << QUrl::fromLocalFile(site.filePath(QStringLiteral("gone"))) << QStringLiteral("The file was not found.");
        QTest::newRow("other error") << QUrl("http://127.0.0.1:1/") << QStringLiteral("The page could not be loaded (unsafe port).");
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
        const TWAppDelegate *app = TWAppDelegate::sharedAppDelegate();
        for (const auto &[name, menu] : {std::pair{"autoRenderButton", app->autoRenderingMenu}, std::pair{"cssButton", app->applyCSSMenu},
                                         std::pair{"lineBreakValidationButton", app->lineBreakValidationMenuItem},
                                         std::pair{"templateButton", app->applyTemplateMenu}}) {
            auto *button = viewer()->findChild<QToolButton *>(QLatin1String(name));
            for (const bool byMenu : {false, true}) {
                const bool wasOn = menu->isChecked();
                byMenu ? menu->trigger() : button->click();
                QVERIFY2(menu->isChecked() != wasOn && button->isChecked() == wasOn, name);
            }
        }
    }

    void baseURLFieldAndChooser()
    {
        auto *field = viewer()->findChild<QLineEdit *>(QStringLiteral("baseURLField"));
        viewer()->choseBaseURLFiles({QStringLiteral("/a.html"), QStringLiteral("/b.html")});
        QCOMPARE(field->text(), QStringLiteral("Choose exactly one file."));
        viewer()->choseBaseURLFiles({QStringLiteral("/site/page one.html")});
        QCOMPARE(field->text(), QStringLiteral("file://localhost/site/page%20one.html"));
        field->setText(QStringLiteral("no url at all"));
        viewer()->inputBaseURL();
        QVERIFY(!viewer()->baseURL() && field->text().isEmpty());
    }

    void windowStateIsSaved()
    {
        viewer()->setBaseURLWithString(QStringLiteral("http://localhost/kept/"));
        viewer()->setApplyCSS(true);
        viewer()->saveWindowProperties();
        using namespace TWStateEntry;
        const QVariantMap expected = {{QLatin1String(baseURL), QStringLiteral("http://localhost/kept/")},
                                      {QLatin1String(autoRendering), "NO"}, {QLatin1String(applyCSS), "YES"},
                                      {QLatin1String(validateLineBreak), "NO"}};
        QCOMPARE(*TWUserDefaults::standardUserDefaults()->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::viewerWindow)),
                 expected);
    }

    void externalBrowsersGetTheTemporaryFile()
    {
        // A stand-in browser that writes down what it was asked to open.
        const QString record = site.filePath(QStringLiteral("opened.txt")), browser = site.filePath(QStringLiteral("browser"));
        QVERIFY(TWTestEnvironment::writeFile(browser, QStringLiteral("#!/bin/sh\nprintf '%s' \"$1\" > '%1'\n").arg(record).toUtf8()));
        QFile::setPermissions(browser, QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner);
        viewer()->viewOnApp(browser);
        const auto opened = [&record] { QFile file(record); return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray(); };
        TW_TRY_COMPARE_WITH_TIMEOUT(opened(), (TWApplicationDataFolder() + QStringLiteral("/Tagwright_tmp.html")).toUtf8(), loadTimeout);

        // A browser given by its .desktop file starts through its Exec line.
        const QString desktop = site.filePath(QStringLiteral("fake.desktop"));
        QVERIFY(TWTestEnvironment::writeFile(desktop, "[Desktop Entry]\nExec=\"my browser\" --new %U\n[Desktop Action x]\nExec=wrong\n"));
        QCOMPARE(TWExternalBrowser::commandFor(desktop, QStringLiteral("/p")), (QStringList{"my browser", "--new", "file:///p"}));
        // One that does not exist, or cannot run, opens nothing.
        for (const QString &unusable : {site.filePath(QStringLiteral("missing")), record})
            QVERIFY(TWExternalBrowser::commandFor(unusable, QStringLiteral("/p")).isEmpty());
    }
};

QTEST_MAIN(tst_TWViewWindowController)
#include "tst_TWViewWindowController.moc"
