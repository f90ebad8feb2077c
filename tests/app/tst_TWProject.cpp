// The launch, projects and the application's file commands, on the real windows and the real
// viewer: a file handed over at launch; a project saved and opened again gives every window
// back; the combined page exported; files open by their kind; project files that are not what
// they claim change only what the rules allow, and lose nothing.
#include "app/TWAppDelegate.h"

#include "TWTestEnvironment.h"
#include "app/TWStateKeys.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTemplateTextView.h"
#include "platform/TWBeep.h"
#include "platform/TWMessageBar.h"
#include "platform/TWPanels.h"
#include "platform/TWXMLPropertyList.h"
#include "preferences/TWPreferences.h"
#include "preview/TWPageComposer.h"
#include "preview/TWViewWindowController.h"

#include <QAction>
#include <QPushButton>
#include <QSignalSpy>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr char divider[] = "<<TAGWRIGHTTEMPLATEDIVIDER>>";
constexpr int patience = 30000;

TWEditWindowController *htmlWindow() { return TWEditWindowController::sharedEditWindowController(); }
TWViewWindowController *viewer() { return TWViewWindowController::sharedViewWindowController(); }
TWTemplateWindowController *templateWindow() { return TWTemplateWindowController::sharedTemplateController(); }
TWCSSWindowController *cssWindow() { return TWCSSWindowController::sharedCSSController(); }

// A flag as a snapshot shows it: a mismatch when its menu's check mark does not follow it.
QVariant flag(bool value, const QAction *menu) { return menu->isChecked() == value ? QVariant(value) : QVariant(u"menu mismatch"_s); }

QVariantMap withChanges(QVariantMap state, const QVariantMap &changes) { return state.insert(changes), state; }
QByteArray plist(const QVariant &root) { return TWXMLPropertyList::write(root).value_or(QByteArray()); }
// The windows' entries of a project file.
const QString editorEntry = QLatin1String(TWProjectKey::editorWindow), viewerEntry = QLatin1String(TWProjectKey::viewerWindow);
const QString templateEntry = QLatin1String(TWProjectKey::templateWindow), cssEntry = QLatin1String(TWProjectKey::cssWindow);

// A file opened by its name: where its text and its file name show (none for a project).
struct Route { QString name; QString textEntry; QString fileEntry; };
// A project file, what it changes besides the page, whether the page gives way to the default
// one, and whether it beeps.
struct Hostile { QByteArray bytes; QVariantMap changes; bool pageReplaced; bool beeps; };

} // namespace

class tst_TWProject : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir dir;
    TWAppDelegate *app = nullptr;
    // What the save panel is asked to propose, and the path it answers with.
    QString proposed;
    std::optional<QString> chosen;

    // Everything a project holds, as the windows show it.
    QVariantMap snapshot() const
    {
        const std::optional<QUrl> base = viewer()->baseURL();
        return {{u"HTML Text"_s, htmlWindow()->getText()}, {u"HTML Filename"_s, htmlWindow()->htmlFilename()},
                {u"Auto Indentation"_s, flag(htmlWindow()->textView()->autoIndentation(), app->autoIndentMenu)},
                {u"Base URL"_s, base ? TWPageComposer::absoluteString(*base) : QString()},
                {u"Auto Rendering"_s, flag(viewer()->autoRender(), app->autoRenderingMenu)},
                {u"Apply CSS"_s, flag(viewer()->applyCSS(), app->applyCSSMenu)},
                {u"Validate Line Break"_s, flag(viewer()->lineBreakValidation(), app->lineBreakValidationMenuItem)},
                {u"Template Filename"_s, templateWindow()->templateFilename()},
                {u"Template Top"_s, templateWindow()->topTextView()->string()},
                {u"Template Bottom"_s, templateWindow()->bottomTextView()->string()},
                {u"Apply Template"_s, flag(templateWindow()->applyTemplate(), app->applyTemplateMenu)},
                {u"CSS Filename"_s, cssWindow()->cssFilename()}, {u"CSS Text"_s, cssWindow()->activeTextView()->string()}};
    }

private Q_SLOTS:
    // The launch itself: a file handed over at launch opens before the windows show, and stays;
    // the page renders once, when the launch ends.
    void initTestCase()
    {
        TWPreview::setFactory([] { return TWViewWindowController::sharedViewWindowController(); });
        TWPanels::setSavePanelHandler([this](const QString &name, const QStringList &) { return proposed = name, chosen; });
        app = TWAppDelegate::sharedAppDelegate();
        app->applicationWillFinishLaunching();
        const QString page = dir.filePath(u"handed over.html"_s);
        QVERIFY(TWTestEnvironment::writeFile(page, "<p>handed over</p>\n"));
        QSignalSpy requested(viewer(), &TWViewWindowController::pageRequested);
        QVERIFY(app->applicationOpenFile(page));
        QVERIFY(app->isLaunching() && !htmlWindow()->isVisible());
        app->applicationDidFinishLaunching();
        QVERIFY(!app->isLaunching() && htmlWindow()->isVisible());
        QCOMPARE(htmlWindow()->getText(), u"<p>handed over</p>\n"_s);
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->timerCount(), 0, patience);
        QCOMPARE(requested.count(), 1);
    }

    // Puts every window into a known state, each value unlike its default.
    void init()
    {
        htmlWindow()->loadHTML(u"<p>mine</p>\n"_s);
        htmlWindow()->setHTMLFilename(u"/site/mine.html"_s);
        htmlWindow()->textView()->setAutoIndentation(true);
        viewer()->setBaseURLWithString(u"http://example.org/mine/"_s);
        viewer()->setAutoRender(true);
        viewer()->setApplyCSS(true);
        viewer()->setLineBreakValidation(true);
        templateWindow()->setTemplateFilename(u"/site/mine.twtemp"_s);
        templateWindow()->loadTemplate(u"<body>\n%1\n</body>\n"_s.arg(QLatin1String(divider)));
        templateWindow()->setApplyTemplate(false);
        cssWindow()->setCSSFilename(u"/site/mine.css"_s);
        cssWindow()->loadCSS(u"p { color: red }\n"_s);
        htmlWindow()->messageBar()->dismiss();
    }

    // Saved, exported, changed, opened: every value comes back, and the flags' menus follow.
    // The next save proposes the name of the project saved last, also after a new project or
    // the opening of another one.
    void projectRoundTrip()
    {
        htmlWindow()->loadHTML(u"<p>日本語 &amp; \"quotes\"</p>\n\n<p>\t</p>\n"_s);
        templateWindow()->loadTemplate(u"<html>\n%1\n</html>%1 kept\n"_s.arg(QLatin1String(divider)));
        templateWindow()->setApplyTemplate(true);
        const QVariantMap saved = snapshot();
        const QString site = dir.filePath(u"site.twproj"_s);
        chosen = site;
        app->saveProjectAs();

        // The export: the template's top half, the HTML (its line feeds as "<br>" while line
        // breaks are validated) and the bottom half, in the preferred encoding and line end,
        // with no base and no style sheet; no name is proposed for it.
        TWPreferences::sharedPref()->setReturnCode(2);
        chosen = dir.filePath(u"site.html"_s);
        app->exportCombinedHTMLAs();
        QCOMPARE(proposed, QString());
        QCOMPARE(TWTestEnvironment::readFile(*chosen), QStringEncoder("Shift_JIS").encode(
            u"<html>\r\n<p>日本語 &amp; \"quotes\"</p><br><br><p>\t</p><br>\r\n</html>%1 kept\r\n"_s.arg(QLatin1String(divider))));

        // Everything changes: a new project empties the documents and their file names and
        // resets the base URL, then every flag goes the other way. A new or an opened project
        // changes every window, and the page renders once.
        const auto rendersOnce = [](const std::function<void()> &change) {
            TW_TRY_VERIFY_WITH_TIMEOUT(viewer()->timerCount() == 0 && !viewer()->isLoading(), patience);
            QSignalSpy requested(viewer(), &TWViewWindowController::pageRequested);
            change();
            TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->timerCount(), 0, patience);
            QCOMPARE(requested.count(), 1);
        };
        rendersOnce([this] { app->newProject(); });
        QVariantMap emptied = withChanges(saved, {{u"Base URL"_s, TWPreferences::sharedPref()->defaultBaseURL()}});
        for (const char *key : {"HTML Text", "HTML Filename", "Template Filename", "Template Top", "Template Bottom", "CSS Filename", "CSS Text"})
            emptied.insert(QLatin1String(key), QString());
        QCOMPARE(snapshot(), emptied);
        for (QAction *menu : {app->autoIndentMenu, app->autoRenderingMenu, app->applyCSSMenu, app->lineBreakValidationMenuItem, app->applyTemplateMenu})
            menu->trigger();
        for (const QString &key : saved.keys())
            QVERIFY2(snapshot().value(key) != saved.value(key), qPrintable(key));

        // Auto-rendering is off until the project turns it on.
        rendersOnce([&] { app->openFile(site); });
        QCOMPARE(snapshot(), saved);

        const QString other = dir.filePath(u"other.twproj"_s);
        QVERIFY(TWTestEnvironment::writeFile(other, TWTestEnvironment::readFile(site)) && app->openFile(other));
        chosen.reset();
        app->saveProjectAs();
        QCOMPARE(proposed, u"site.twproj"_s);

        // A project that cannot be written beeps and changes nothing.
        chosen = dir.filePath(u"site.html/in-a-file.twproj"_s);
        const int beeps = TWBeepCount();
        app->saveProjectAs();
        QCOMPARE(TWBeepCount(), beeps + 1);
        QCOMPARE(snapshot(), saved);
    }

    // Files open by the extension of their name, in any letter case; everything else is HTML.
    // A project here holds only its page, the text every other file holds.
    void filesOpenByTheirKind_data()
    {
        QTest::addColumn<Route>("row");
        QTest::newRow("project, upper case") << Route{"page.TWPROJ", "HTML Text", ""};
        QTest::newRow("style sheet, upper case") << Route{"site.CSS", "CSS Text", "CSS Filename"};
        QTest::newRow("template, mixed case") << Route{"top.TwTemp", "Template Top", "Template Filename"};
        QTest::newRow("no extension") << Route{"README", "HTML Text", "HTML Filename"};
        QTest::newRow("folder with a dot") << Route{"v1.css/page", "HTML Text", "HTML Filename"};
        QTest::newRow("project name inside") << Route{"page.twproj.html", "HTML Text", "HTML Filename"};
        QTest::newRow("hidden project") << Route{".twproj", "HTML Text", ""};
    }

    void filesOpenByTheirKind()
    {
        QFETCH(Route, row);
        const QString path = dir.filePath(u"kinds/"_s + row.name), text = u"<p>opened</p>\n"_s;
        const QByteArray project = plist(QVariantMap{{editorEntry, QVariantMap{{row.textEntry, text}}}});
        QVERIFY(TWTestEnvironment::writeFile(path, row.fileEntry.isEmpty() ? project : text.toUtf8()));
        QVERIFY(app->openFile(path));
        // Opened in the wrong window, the text and the name would be elsewhere.
        QCOMPARE(snapshot().value(row.textEntry).toString(), text);
        QCOMPARE(snapshot().value(row.fileEntry).toString(), row.fileEntry.isEmpty() ? QString() : path);
    }

    // Whatever a project file holds, each window takes only the entries it can use; a window
    // without a usable entry keeps everything, except the HTML window, which shows the
    // default page and offers the user's page back.
    void hostileProjectFiles_data()
    {
        QTest::addColumn<Hostile>("row");
        QTest::newRow("not a property list") << Hostile{"<p>a page</p>\n", {}, true, true};
        QTest::newRow("root is an array") << Hostile{plist(QVariantList{u"HTML Text"_s}), {}, true, true};
        // A page of 100 MB that never ends.
        const QByteArray whole = plist(QVariantMap{{editorEntry, QVariantMap{{u"HTML Text"_s, u"<p>whole</p>"_s}}}});
        QTest::newRow("100 MB, unfinished") << Hostile{whole.left(whole.indexOf("<p>whole")) + QByteArray(100 << 20, 'x'), {}, true, true};
        QTest::newRow("window entries of other types")
            << Hostile{plist(QVariantMap{{editorEntry, u"<p>x</p>"_s}, {viewerEntry, QVariantList{u"NO"_s}}, {templateEntry, 42},
                                         {cssEntry, QByteArray("p {}")}}),
                       {}, true, false};
        // Texts and names of other types are as good as missing; a flag of another type is not
        // "YES", nor "NO".
        QTest::newRow("values of other types")
            << Hostile{plist(QVariantMap{
                           {editorEntry, QVariantMap{{u"HTML Text"_s, 7}, {u"HTML Filename"_s, QVariantList()}, {u"Auto Indentation"_s, true}}},
                           {viewerEntry, QVariantMap{{u"Base URL"_s, 1.5}, {u"Auto Rendering"_s, 0}, {u"Apply CSS"_s, true},
                                                     {u"Validate Line Break"_s, u"yes"_s}}},
                           {templateEntry, QVariantMap{{u"Template Text"_s, QByteArray("<html>")}, {u"Template Filename"_s, QVariantMap()},
                                                       {u"Apply Template"_s, 1}}},
                           {cssEntry, QVariantMap{{u"CSS Text"_s, QDateTime::currentDateTimeUtc()}}}}),
                       {{u"Auto Indentation"_s, false}, {u"Apply CSS"_s, false}, {u"Validate Line Break"_s, false}}, false, false};
        // Only the entries that are there change something.
        QTest::newRow("some entries, files that no longer exist")
            << Hostile{plist(QVariantMap{{editorEntry, QVariantMap{{u"HTML Filename"_s, u"/gone/away.html"_s}}},
                                         {viewerEntry, QVariantMap{{u"Auto Rendering"_s, u"NO"_s}, {u"Base URL"_s, QString()}}},
                                         {templateEntry, QVariantMap{{u"Template Text"_s, u"top only"_s}}}}),
                       {{u"HTML Filename"_s, u"/gone/away.html"_s}, {u"Auto Rendering"_s, false}, {u"Base URL"_s, QString()},
                        {u"Template Top"_s, u"top only"_s}, {u"Template Bottom"_s, QString()}}, false, false};
    }

    void hostileProjectFiles()
    {
        QFETCH(Hostile, row);
        const QString path = dir.filePath(u"hostile.twproj"_s);
        QVERIFY(TWTestEnvironment::writeFile(path, row.bytes));
        const QVariantMap after = withChanges(snapshot(), row.changes);
        const int beepsBefore = TWBeepCount();
        QVERIFY(app->openFile(path));
        const QString defaultPage = QString::fromLatin1(TWTestEnvironment::readFile(u":/defaultPage.txt"_s));
        QCOMPARE(snapshot(), withChanges(after, row.pageReplaced ? QVariantMap{{u"HTML Text"_s, defaultPage}} : QVariantMap()));
        // A file that is no project at all beeps; one without a page says so too.
        QCOMPARE(htmlWindow()->messageBar()->text().isEmpty(), !row.pageReplaced);
        QCOMPARE(TWBeepCount() > beepsBefore, row.beeps);
        for (QPushButton *button : htmlWindow()->messageBar()->findChildren<QPushButton *>())
            if (button->text() == "Bring Back My Page"_L1)
                button->click();
        QCOMPARE(snapshot(), after);
    }
};

QTEST_MAIN(tst_TWProject)
#include "tst_TWProject.moc"
