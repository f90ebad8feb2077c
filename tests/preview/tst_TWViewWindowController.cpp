// The viewer with the real browser engine, launched as the application launches it: what it
// shows and keeps, how it fails, its buttons and menus, and the external browsers.
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
#include "preferences/TWPreferencesPanelController.h"
#include "preview/TWExternalBrowser.h"
#include "preview/TWPageComposer.h"

#include <QAction>
#include <QComboBox>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>
#include <QWebEnginePage>
#include <QWebEngineView>

using namespace Qt::StringLiterals;

namespace {

constexpr int loadTimeout = 30000;
// The menu commands that load the page.
const QString renderNow = u"&Render Now"_s, clearCache = u"C&lear Cache"_s, saveCSSAndClearCache = u"Save CSS and Clear Cache"_s;

TWViewWindowController *viewer() { return TWViewWindowController::sharedViewWindowController(); }

// A page's title, its paragraphs of text, the command that loads it, and what became of the
// style sheet before.
struct Load { QString title; int paragraphs; QString command; QString styleSheet; };

// Runs a script in the page and waits for its answer.
QVariant evaluate(const QString &script)
{
    std::optional<QVariant> answer;
    viewer()->webView()->page()->runJavaScript(script, [&answer](const QVariant &value) { answer = value; });
    return TWTestEnvironment::waitFor([&answer] { return answer.has_value(); }, loadTimeout) ? *answer : QVariant();
}

// Once the viewer is idle, puts the page into the HTML window and loads it with the menu
// command of that title, and waits until the engine has finished; answers whether the load
// succeeded.
bool show(const QString &html, const QString &command = renderNow)
{
    TWEditWindowController::sharedEditWindowController()->textView()->setString(html);
    if (!TWTestEnvironment::waitFor([] { return !viewer()->isLoading(); }, loadTimeout))
        return false;
    QSignalSpy ended(viewer(), &TWViewWindowController::loadEnded);
    for (QAction *action : TWAppDelegate::sharedAppDelegate()->findChildren<QAction *>())
        if (action->text() == command)
            action->trigger();
    return TWTestEnvironment::waitFor([&ended] { return !ended.isEmpty(); }, loadTimeout) && ended.last().first().toBool();
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
        TWAppDelegate::sharedAppDelegate()->applicationDidFinishLaunching();
        // Every render timer started meanwhile has fired; from here on only the tests' own
        // requests render.
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->timerCount(), 0, loadTimeout);
        viewer()->setAutoRender(false);
        QVERIFY(QTest::qWaitForWindowExposed(viewer()));
    }

    void init()
    {
        // The template declares Shift_JIS, which only the page file's byte-order mark outweighs.
        TWTemplateWindowController::sharedTemplateController()->loadTemplate(
            u"<html><head><meta http-equiv=\"Content-Type\" content=\"text/html; charset=Shift_JIS\"></head><body>\n<<TAGWRIGHTTEMPLATEDIVIDER>>\n"_s);
        viewer()->setBaseURL(TWPageComposer::fileURL(site.filePath(u"index.html"_s)));
        viewer()->setWindowTitle(QString());
    }

    // Every way a page loads: handed over, too large to hand over (over the engine's own limit
    // of 2 MB), or as the temporary page file, which reads as the rendered page whatever the
    // template declares. The page is whole, against the base URL, titles the window, and has the
    // style sheet as saved at that moment (in a frame too, below the page's own rules) or none.
    void pagesLoadWholeWithTitleAndStyleSheet_data()
    {
        QTest::addColumn<Load>("row");
        const QString japanese = u"日本語 ©"_s;
        QTest::newRow("small, sheet saved") << Load{japanese, 1, renderNow, u"saved"_s};
        QTest::newRow("over the hand-over limit, sheet saved") << Load{japanese, 60000, renderNow, u"saved"_s};
        QTest::newRow("untitled, sheet switched off") << Load{QString(), 1, renderNow, u"off"_s};
        QTest::newRow("untitled, Clear Cache, sheet gone") << Load{QString(), 1, clearCache, u"removed"_s};
        QTest::newRow("sheet saved in its window, Save CSS and Clear Cache") << Load{japanese, 1, saveCSSAndClearCache, u"in its window"_s};
    }

    void pagesLoadWholeWithTitleAndStyleSheet()
    {
        QFETCH(Load, row);
        const auto &[title, paragraphs, command, styleSheet] = row;
        const QString path = site.filePath(u"style.css"_s);
        const QByteArray css = "p, b { color: rgb(0, 128, 0); }\n";
        QVERIFY(TWTestEnvironment::writeFile(path, "p, b { color: red; }\n"));
        QVERIFY(TWTestEnvironment::writeFile(site.filePath(u"logo.svg"_s), "<svg xmlns='http://www.w3.org/2000/svg' width='33' height='17'/>"));
        TWCSSWindowController::sharedCSSController()->setCSSFilename(path);
        viewer()->setApplyCSS(styleSheet != "off"_L1);
        if (styleSheet == "in its window"_L1)
            TWCSSWindowController::sharedCSSController()->loadCSS(QString::fromUtf8(css));
        else if (styleSheet == "saved"_L1)
            QVERIFY(TWTestEnvironment::writeFile(path, css));
        else if (styleSheet == "removed"_L1)
            QFile::remove(path);
        QVERIFY(show(u"<title>%1</title><img id=logo src=\"logo.svg\"><style>b { color: rgb(1, 2, 3) }</style>"
                     "<p id=t>x <b id=own>y</b></p><iframe srcdoc=\"<p id=t>x</p>\"></iframe>\n"_s.arg(title)
                         + u"<p>more & more text to make it large</p>\n"_s.repeated(paragraphs),
                     command));
        QCOMPARE(evaluate(u"document.getElementsByTagName('p').length"_s).toInt(), paragraphs + 1);
        TW_TRY_COMPARE_WITH_TIMEOUT(evaluate(u"logo.naturalWidth + 'x' + logo.naturalHeight"_s).toString(), u"33x17"_s, loadTimeout);
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->windowTitle(), title.isEmpty() ? u"(No Title)"_s : title, loadTimeout);
        const QString color = styleSheet == "saved"_L1 || styleSheet == "in its window"_L1 ? u"rgb(0, 128, 0)"_s : u"rgb(0, 0, 0)"_s;
        TW_TRY_COMPARE_WITH_TIMEOUT(evaluate(u"[t, frames[0].t, own].map(e => getComputedStyle(e).color).join(' ')"_s).toString(),
                                    color + u' ' + color + u" rgb(1, 2, 3)"_s, loadTimeout);
    }

    void rerenderKeepsTheScrollPosition()
    {
        QVERIFY(show(u"<p>line</p>\n"_s.repeated(400)));
        evaluate(u"window.scrollTo(0, 3000)"_s);
        TW_TRY_VERIFY_WITH_TIMEOUT(viewer()->webView()->page()->scrollPosition().y() > 2900, loadTimeout);
        QVERIFY(show(u"<p>line</p>\n"_s.repeated(401)));
        TW_TRY_COMPARE_WITH_TIMEOUT(evaluate(u"window.scrollY"_s).toInt(), 3000, loadTimeout);
    }

    // The menu's Stop Rendering ends a page that never finishes.
    void stopRenderingEndsARunawayPage()
    {
        TWEditWindowController::sharedEditWindowController()->textView()->setString(u"<script>document.title = 'spinning'; for (;;) {}</script>"_s);
        viewer()->renderNow();
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->webView()->page()->title(), u"spinning"_s, loadTimeout);
        for (QAction *action : TWAppDelegate::sharedAppDelegate()->findChildren<QAction *>())
            if (action->text() == u"&Stop Rendering"_s)
                action->trigger();
        // The next render works, in a fresh page process.
        QVERIFY(show(u"<p>after</p>"_s));
    }

    // A load that fails says why, until the next good load.
    void loadErrorsAreDescribed_data()
    {
        QTest::addColumn<QUrl>("url");
        QTest::addColumn<QString>("status");
        QTest::newRow("no file") << QUrl::fromLocalFile(site.filePath(u"gone"_s)) << u"The file was not found."_s;
        QTest::newRow("other error") << QUrl(u"http://127.0.0.1:1/"_s) << u"The page could not be loaded (unsafe port)."_s;
    }

    void loadErrorsAreDescribed()
    {
        QFETCH(QUrl, url);
        QFETCH(QString, status);
        QSignalSpy ended(viewer(), &TWViewWindowController::loadEnded);
        viewer()->webView()->page()->load(url);
        QVERIFY(ended.wait(loadTimeout) && !ended.last().first().toBool());
        QCOMPARE(viewer()->statusText(), status);
        QVERIFY(show(u"<p>fine</p>"_s));
        QCOMPARE(viewer()->statusText(), QString());
    }

    // The viewer fonts typed in the preferences reach the page on show, without a new load.
    void viewerFontSizesReachThePage()
    {
        QVERIFY(show(u"<p id=t>x</p><pre id=f>y</pre>"_s));
        TWPreferencesPanelController *panel = TWPreferencesPanelController::sharedPreferencesPanel();
        for (const auto &[menu, size] : {std::pair{"viewerFontSizeMenu", "23"}, std::pair{"viewerFixedFontSizeMenu", "17"}}) {
            QLineEdit *field = panel->findChild<QComboBox *>(QLatin1String(menu))->lineEdit();
            field->selectAll();
            QTest::keyClicks(field, QLatin1String(size));
            QTest::keyClick(field, Qt::Key_Return);
        }
        TW_TRY_COMPARE_WITH_TIMEOUT(evaluate(u"getComputedStyle(t).fontSize + ' ' + getComputedStyle(f).fontSize"_s).toString(),
                                    u"23px 17px"_s, loadTimeout);
    }

    // A button pressed means off, a menu check mark means on; either one switches the flag,
    // and the flags with the base URL are what the window keeps for the next launch.
    void buttonsAndMenusFollowTheFlagsWhichAreKept()
    {
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
        viewer()->setBaseURLWithString(u"http://localhost/kept/"_s);
        viewer()->setApplyCSS(true);
        viewer()->setAutoRender(false);
        viewer()->saveWindowProperties();
        using namespace TWStateEntry;
        const QVariantMap expected = {{QLatin1String(baseURL), u"http://localhost/kept/"_s}, {QLatin1String(autoRendering), "NO"},
                                      {QLatin1String(applyCSS), "YES"}, {QLatin1String(validateLineBreak), "NO"}};
        QCOMPARE(*TWUserDefaults::standardUserDefaults()->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::viewerWindow)), expected);
    }

    void externalBrowsersGetTheTemporaryFile()
    {
        // A stand-in browser that writes down what it was asked to open.
        const QString record = site.filePath(u"opened.txt"_s), browser = site.filePath(u"browser"_s);
        viewer()->viewOnApp(TWTestEnvironment::writeScript(browser, "printf '%s' \"$1\" > '" + record.toUtf8() + '\''));
        TW_TRY_COMPARE_WITH_TIMEOUT(TWTestEnvironment::readFile(record), (TWApplicationDataFolder() + u"/Tagwright_tmp.html"_s).toUtf8(), loadTimeout);
        // A browser given by its .desktop file starts through its Exec line.
        QVERIFY(TWTestEnvironment::writeFile(browser + u".desktop"_s, "[Desktop Entry]\nExec=\"my web\" --new %U\n[Desktop Action x]\nExec=no\n"));
        QCOMPARE(TWExternalBrowser::commandFor(browser + u".desktop"_s, u"/p"_s), (QStringList{u"my web"_s, u"--new"_s, u"file:///p"_s}));
        // One that does not exist, or cannot run, opens nothing.
        for (const QString &unusable : {site.filePath(u"missing"_s), record})
            QVERIFY(TWExternalBrowser::commandFor(unusable, u"/p"_s).isEmpty());
    }
};

QTEST_MAIN(tst_TWViewWindowController)
#include "tst_TWViewWindowController.moc"
