// Every command of the menu bar's Edit, View and Window menus, triggered as the user does,
// reaches what its title says. (The File menu: tst_TWProject; the find commands:
// tst_TWFindPanelController; tag colouring and the insert-tag menus: tst_TWInsertTagMenus; Stop Rendering:
// tst_TWViewWindowController.)
#include "TWTestEnvironment.h"
#include "app/TWAppDelegate.h"
#include "checker/TWHTMLCheckerWindowController.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWLineNumberGutter.h"
#include "editor/TWTemplateTextView.h"
#include "panels/TWColorPanelController.h"
#include "panels/TWFindPanelController.h"
#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"
#include "preferences/TWPreferences.h"
#include "preferences/TWPreferencesPanelController.h"
#include "preview/TWViewWindowController.h"
#include "taglib/TWInsertTagPaletteController.h"
#include "taglib/TWTagLibraryWindowController.h"

#include <QAction>
#include <QMenu>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int timeout = 30000;

// What a command needs beforehand, and what shows that it reached its target.
struct Command
{
    std::function<void()> prepare;
    std::function<QString()> state;
};

TWViewWindowController *viewer() { return TWViewWindowController::sharedViewWindowController(); }
TWEditorTextView *html() { return TWEditWindowController::sharedEditWindowController()->textView(); }
QString flag(bool on) { return on ? QStringLiteral("1") : QStringLiteral("0"); }

// A window hidden first, shown by its command.
Command shows(QWidget *window)
{
    return {[window] { window->hide(); }, [window] { return flag(window->isVisible()); }};
}

} // namespace

Q_DECLARE_METATYPE(Command)

class tst_TWMenuCommands : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;
    int pagesRequested = 0;

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        TWPreview::setFactory([] { return TWViewWindowController::sharedViewWindowController(); });
        TWAppDelegate::sharedAppDelegate()->applicationWillFinishLaunching();
        TWAppDelegate::sharedAppDelegate()->applicationDidFinishLaunching();
        connect(viewer(), &TWViewWindowController::pageRequested, this, [this] { ++pagesRequested; });
    }

    void everyCommandReachesItsTarget_data()
    {
        QTest::addColumn<QString>("title");
        QTest::addColumn<Command>("command");
        QTest::addColumn<QString>("reached");
        TWPreferences *preferences = TWPreferences::sharedPref();
        TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
        const auto requests = Command{[this] { pagesRequested = 0; }, [this] { return flag(pagesRequested > 0); }};
        const QString styleSheet = dir.filePath(QStringLiteral("site.css"));
        const QString opened = dir.filePath(QStringLiteral("opened"));
        QTest::newRow("preferences") << "Pre&ferences..." << shows(TWPreferencesPanelController::sharedPreferencesPanel()) << "1";
        QTest::newRow("auto indent") << "Auto &Indent" << Command{[] { html()->setAutoIndentation(false); }, [] {
            return flag(html()->autoIndentation());
        }} << "1";
        QTest::newRow("find") << "&Find..." << shows(TWFindPanelController::sharedFindPanel()) << "1";
        QTest::newRow("render now") << "&Render Now" << requests << "1";
        QTest::newRow("clear cache") << "C&lear Cache" << requests << "1";
        QTest::newRow("save CSS and clear cache") << "Save CSS and Clear Cache" << Command{[this, styleSheet] {
            TWCSSWindowController::sharedCSSController()->setCSSFilename(styleSheet);
            TWCSSWindowController::sharedCSSController()->loadCSS(QStringLiteral("p {}"));
            pagesRequested = 0;
        }, [this, styleSheet] { return TWTestEnvironment::readFile(styleSheet) + flag(pagesRequested > 0); }} << "p {}1";
        QTest::newRow("auto rendering") << "&Auto Rendering" << Command{[] { viewer()->setAutoRender(true); }, [] {
            return flag(viewer()->autoRender());
        }} << "0";
        QTest::newRow("apply template") << "Apply &Template" << Command{[templateWindow] { templateWindow->setApplyTemplate(true); },
                                                                        [templateWindow] { return flag(templateWindow->applyTemplate()); }} << "0";
        QTest::newRow("apply CSS") << "Apply &CSS" << Command{[] { viewer()->setApplyCSS(false); }, [] {
            return flag(viewer()->applyCSS());
        }} << "1";
        QTest::newRow("line breaks") << "&Line Breaks as <br>" << Command{[] { viewer()->setLineBreakValidation(false); }, [] {
            return flag(viewer()->lineBreakValidation());
        }} << "1";
        QTest::newRow("line numbers") << "Line &Numbers" << Command{[] { TWLineNumberGutter::setLineNumbersShown(true); }, [] {
            return flag(TWLineNumberGutter::lineNumbersShown() || !html()->lineNumberGutter()->isHidden());
        }} << "0";
        QTest::newRow("browser") << "opener" << Command{[preferences, this, opened] {
            preferences->setExBrowsers({TWTestEnvironment::writeScript(dir.filePath(QStringLiteral("opener")),
                                                                       "printf %s \"$1\" > '" + opened.toUtf8() + "'")});
            TWAppDelegate::sharedAppDelegate()->setViewOnExBrowserMenu();
        }, [opened] {
            TWTestEnvironment::waitFor([opened] { return !TWTestEnvironment::readFile(opened).isEmpty(); }, timeout);
            return flag(TWTestEnvironment::readFile(opened).endsWith(".html"));
        }} << "1";
        QTest::newRow("HTML window") << "&HTML" << shows(TWEditWindowController::sharedEditWindowController()) << "1";
        QTest::newRow("template window") << "&Template" << shows(templateWindow) << "1";
        QTest::newRow("style sheet window") << "&Style Sheet" << shows(TWCSSWindowController::sharedCSSController()) << "1";
        QTest::newRow("viewer") << "&Viewer" << shows(viewer()) << "1";
        QTest::newRow("checker") << "&Checker" << shows(TWHTMLCheckerWindowController::sharedCheckerController()) << "1";
        QTest::newRow("tag library") << "Tag &Library" << shows(TWTagLibraryWindowController::sharedTagLibraryController()) << "1";
        QTest::newRow("insert-tag palette") << TWLocalizedString(TWTextKey::showInsertTagPalette)
                                            << Command{[] { TWInsertTagPaletteController::sharedInsertTagPalette()->setShowWindow(false); },
                                                       [] { return flag(TWInsertTagPaletteController::sharedInsertTagPalette()->isVisible()); }}
                                            << "1";
        QTest::newRow("colour panel") << TWLocalizedString(TWTextKey::showColorPanel)
                                      << Command{[] { TWColorPanelController::sharedColorPanel()->setShowWindow(false); },
                                                 [] { return flag(TWColorPanelController::sharedColorPanel()->isVisible()); }}
                                      << "1";
    }

    void everyCommandReachesItsTarget()
    {
        QFETCH(QString, title);
        QFETCH(Command, command);
        QFETCH(QString, reached);
        command.prepare();
        QList<QAction *> actions = TWAppDelegate::sharedAppDelegate()->findChildren<QAction *>();
        actions += TWAppDelegate::sharedAppDelegate()->viewOnExBrowserMenu()->actions();
        const auto action = std::find_if(actions.cbegin(), actions.cend(), [&title](QAction *item) { return item->text() == title; });
        QVERIFY2(action != actions.cend(), qPrintable(title));
        (*action)->trigger();
        TW_TRY_COMPARE_WITH_TIMEOUT(command.state(), reached, timeout);
    }
};

QTEST_MAIN(tst_TWMenuCommands)
#include "tst_TWMenuCommands.moc"
