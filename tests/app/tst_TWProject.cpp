// Projects and the application's file commands, on the real windows and the real viewer: a
// project saved and opened again gives every window back; files open by their kind; project
// files that are not what they claim change only what the rules allow, and lose nothing; the
// combined page exported.
#include "app/TWAppDelegate.h"

#include "TWTestEnvironment.h"
#include "app/TWStateKeys.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTemplateTextView.h"
#include "editor/TWTextFile.h"
#include "platform/TWBeep.h"
#include "platform/TWMessageBar.h"
#include "platform/TWPanels.h"
#include "platform/TWXMLPropertyList.h"
#include "preferences/TWPreferences.h"
#include "preview/TWPageComposer.h"
#include "preview/TWViewWindowController.h"

#include <QAction>
#include <QFile>
#include <QPushButton>
#include <QSignalSpy>
#include <QStringEncoder>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr char divider[] = "<<TAGWRIGHTTEMPLATEDIVIDER>>";

TWEditWindowController *htmlWindow()
{
    return TWEditWindowController::sharedEditWindowController();
}
TWViewWindowController *viewer()
{
    return TWViewWindowController::sharedViewWindowController();
}
TWTemplateWindowController *templateWindow()
{
    return TWTemplateWindowController::sharedTemplateController();
}
TWCSSWindowController *cssWindow()
{
    return TWCSSWindowController::sharedCSSController();
}

// Everything a project holds, as the windows show it, with the menu check marks that must
// follow the flags.
QVariantMap snapshot()
{
    const TWAppDelegate *app = TWAppDelegate::sharedAppDelegate();
    const std::optional<QUrl> base = viewer()->baseURL();
    return {
        {QStringLiteral("HTML Text"), htmlWindow()->getText()},
        {QStringLiteral("HTML Filename"), htmlWindow()->htmlFilename()},
        {QStringLiteral("Auto Indentation"), htmlWindow()->textView()->autoIndentation()},
        {QStringLiteral("Auto Indentation menu"), app->autoIndentMenu->isChecked()},
        {QStringLiteral("Base URL"), base ? TWPageComposer::absoluteString(*base) : QString()},
        {QStringLiteral("Auto Rendering"), viewer()->autoRender()},
        {QStringLiteral("Auto Rendering menu"), app->autoRenderingMenu->isChecked()},
        {QStringLiteral("Apply CSS"), viewer()->applyCSS()},
        {QStringLiteral("Apply CSS menu"), app->applyCSSMenu->isChecked()},
        {QStringLiteral("Validate Line Break"), viewer()->lineBreakValidation()},
        {QStringLiteral("Validate Line Break menu"), app->lineBreakValidationMenuItem->isChecked()},
        {QStringLiteral("Template Filename"), templateWindow()->templateFilename()},
        {QStringLiteral("Template Top"), templateWindow()->topTextView()->string()},
        {QStringLiteral("Template Bottom"), templateWindow()->bottomTextView()->string()},
        {QStringLiteral("Apply Template"), templateWindow()->applyTemplate()},
        {QStringLiteral("Apply Template menu"), app->applyTemplateMenu->isChecked()},
        {QStringLiteral("CSS Filename"), cssWindow()->cssFilename()},
        {QStringLiteral("CSS Text"), cssWindow()->activeTextView()->string()},
    };
}

// Puts every window into a known state, each value unlike its default.
void setUpWindows()
{
    htmlWindow()->loadHTML(QStringLiteral("<p>mine</p>\n"));
    htmlWindow()->setHTMLFilename(QStringLiteral("/site/mine.html"));
    htmlWindow()->textView()->setAutoIndentation(true);
    viewer()->setBaseURLWithString(QStringLiteral("http://example.org/mine/"));
    viewer()->setAutoRender(true);
    viewer()->setApplyCSS(true);
    viewer()->setLineBreakValidation(true);
    templateWindow()->setTemplateFilename(QStringLiteral("/site/mine.twtemp"));
    templateWindow()->loadTemplate(QStringLiteral("<body>\n%1\n</body>\n").arg(QLatin1String(divider)));
    templateWindow()->setApplyTemplate(false);
    cssWindow()->setCSSFilename(QStringLiteral("/site/mine.css"));
    cssWindow()->loadCSS(QStringLiteral("p { color: red }\n"));
    htmlWindow()->messageBar()->dismiss();
}

QVariantMap withChanges(QVariantMap state, const QVariantMap &changes)
{
    for (auto it = changes.cbegin(); it != changes.cend(); ++it)
        state.insert(it.key(), it.value());
    return state;
}

QByteArray plist(const QVariant &root)
{
    return TWXMLPropertyList::write(root).value_or(QByteArray());
}

void trigger(const QString &title)
{
    for (QAction *action : TWAppDelegate::sharedAppDelegate()->findChildren<QAction *>())
        if (action->text() == title)
            return action->trigger();
    QFAIL(qPrintable(QStringLiteral("no command ") + title));
}

QString defaultPage()
{
    QFile page(QStringLiteral(":/defaultPage.txt"));
    return page.open(QIODevice::ReadOnly) ? QString::fromLatin1(page.readAll()) : QString();
}

} // namespace

class tst_TWProject : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir dir;
    // What the save panel is asked to propose, and the path it answers with.
    QString proposed;
    std::optional<QString> chosen;

private Q_SLOTS:
    void initTestCase()
    {
        TWPreview::setFactory([] { return TWViewWindowController::sharedViewWindowController(); });
        TWAppDelegate::sharedAppDelegate()->applicationWillFinishLaunching();
        TWAppDelegate::sharedAppDelegate()->applicationDidFinishLaunching();
        TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->timerCount(), 0, 30000);
        TWPanels::setSavePanelHandler([this](const QString &name, const QStringList &) {
            proposed = name;
            return chosen;
        });
    }

    void init()
    {
        setUpWindows();
    }

    // Saved, changed, opened: every value comes back, and the flags' menus follow. The next
    // save proposes the name of the project saved last, also after a new project or the
    // opening of another one.
    void projectRoundTrip()
    {
        htmlWindow()->loadHTML(QStringLiteral("<p>日本語 &amp; \"quotes\"</p>\n\n<p>\t</p>\n"));
        templateWindow()->loadTemplate(
            QStringLiteral("<html>\n%1\n</html>%1 kept\n").arg(QLatin1String(divider)));
        const QVariantMap saved = snapshot();
        chosen = dir.filePath(QStringLiteral("site.twproj"));
        trigger(QStringLiteral("Save P&roject As..."));
        QCOMPARE(TWAppDelegate::sharedAppDelegate()->projectFilename(), *chosen);


        // Everything changes: a new project empties the documents and their file names and
        // resets the base URL, then every flag goes the other way. A new or an opened project
        // changes every window, and the page renders once.
        const auto rendersOnce = [](const std::function<void()> &change) {
            TW_TRY_VERIFY_WITH_TIMEOUT(viewer()->timerCount() == 0 && !viewer()->isLoading(), 30000);
            QSignalSpy requested(viewer(), &TWViewWindowController::pageRequested);
            change();
            TW_TRY_COMPARE_WITH_TIMEOUT(viewer()->timerCount(), 0, 30000);
            QCOMPARE(requested.count(), 1);
        };
        rendersOnce([] { trigger(QStringLiteral("New &Project")); });
        QCOMPARE(snapshot(), withChanges(saved, {{QStringLiteral("HTML Text"), QString()},
                                                 {QStringLiteral("HTML Filename"), QString()},
                                                 {QStringLiteral("Base URL"), TWPreferences::sharedPref()->defaultBaseURL()},
                                                 {QStringLiteral("Template Filename"), QString()},
                                                 {QStringLiteral("Template Top"), QString()},
                                                 {QStringLiteral("Template Bottom"), QString()},
                                                 {QStringLiteral("CSS Filename"), QString()},
                                                 {QStringLiteral("CSS Text"), QString()}}));
        viewer()->toggleAutoRender();
        viewer()->toggleApplyCSS();
        viewer()->toggleLineBreakValidation();
        templateWindow()->toggleApplyTemplate();
        htmlWindow()->toggleAutoIndentation();
        for (const QString &key : saved.keys())
            QVERIFY2(snapshot().value(key) != saved.value(key), qPrintable(key));

        // Auto-rendering is off until the project turns it on.
        rendersOnce([this] { TWAppDelegate::sharedAppDelegate()->openFile(*chosen); });
        QCOMPARE(snapshot(), saved);

        const QString other = dir.filePath(QStringLiteral("other.twproj"));
        QVERIFY(QFile::copy(*chosen, other));
        TWAppDelegate::sharedAppDelegate()->openFile(other);
        chosen.reset();
        TWAppDelegate::sharedAppDelegate()->saveProjectAs();
        QCOMPARE(proposed, QStringLiteral("site.twproj"));
        QCOMPARE(TWAppDelegate::sharedAppDelegate()->projectFilename(), dir.filePath(QStringLiteral("site.twproj")));
    }

    // Files open by the extension of their name, in any letter case; everything else is HTML.
    void filesOpenByTheirKind_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("opensIn");
        QTest::newRow("project, upper case") << "page.TWPROJ" << "project";
        QTest::newRow("style sheet, upper case") << "site.CSS" << "CSS Filename";
        QTest::newRow("template, mixed case") << "top.TwTemp" << "Template Filename";
        QTest::newRow("text file") << "notes.txt" << "HTML Filename";
        QTest::newRow("no extension") << "README" << "HTML Filename";
        QTest::newRow("folder with a dot") << "v1.css/page" << "HTML Filename";
        QTest::newRow("project name inside") << "page.twproj.html" << "HTML Filename";
        QTest::newRow("hidden project") << ".twproj" << "project";
    }

    void filesOpenByTheirKind()
    {
        QFETCH(QString, name);
        QFETCH(QString, opensIn);
        const QString path = dir.filePath(QStringLiteral("kinds/") + name);
        QVERIFY(QDir().mkpath(QFileInfo(path).absolutePath()));
        // A project file whose page is the same text as the other files.
        htmlWindow()->loadHTML(QStringLiteral("<p>opened</p>\n"));
        TWAppDelegate::sharedAppDelegate()->saveProjectWithFilename(path);
        if (opensIn != QLatin1String("project"))
            QVERIFY(TWTestEnvironment::writeFile(path, "<p>opened</p>\n"));
        setUpWindows();
        const QVariantMap before = snapshot();
        QVERIFY(TWAppDelegate::sharedAppDelegate()->openFile(path));
        QVariantMap changes;
        if (opensIn == QLatin1String("project"))
            changes = {{QStringLiteral("HTML Text"), QStringLiteral("<p>opened</p>\n")}};
        else if (opensIn == QLatin1String("CSS Filename"))
            changes = {{opensIn, path}, {QStringLiteral("CSS Text"), QStringLiteral("<p>opened</p>\n")}};
        else if (opensIn == QLatin1String("Template Filename"))
            changes = {{opensIn, path}, {QStringLiteral("Template Top"), QStringLiteral("<p>opened</p>\n")},
                       {QStringLiteral("Template Bottom"), QString()}};
        else
            changes = {{opensIn, path},
                       {QStringLiteral("HTML Text"), QStringLiteral("<p>opened</p>\n")},
                       {QStringLiteral("Base URL"), TWPageComposer::absoluteString(TWPageComposer::fileURL(path))}};
        QCOMPARE(snapshot(), withChanges(before, changes));
    }

    // Whatever a project file holds, each window takes only the entries it can use; a window
    // without a usable entry keeps everything, except the HTML window, which shows the
    // default page and offers the user's page back.
    void hostileProjectFiles_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QVariantMap>("changes");
        QTest::addColumn<bool>("pageReplaced");
        QTest::addColumn<bool>("beeps");
        const auto window = [](const char *key, const QVariantMap &entries) { return QVariantMap{{QLatin1String(key), entries}}; };
        const QByteArray whole = plist(window(TWProjectKey::editorWindow, {{QStringLiteral("HTML Text"), QStringLiteral("<p>whole</p>")}}));

        QTest::newRow("empty file") << QByteArray() << QVariantMap() << true << true;
        QTest::newRow("not a property list") << QByteArray("<p>a page</p>\n") << QVariantMap() << true << true;
        QTest::newRow("truncated") << whole.left(whole.size() / 2) << QVariantMap() << true << true;
        QTest::newRow("root is an array") << plist(QVariantList{QStringLiteral("HTML Text")}) << QVariantMap() << true << true;
        QTest::newRow("root is a string") << plist(QStringLiteral("a page")) << QVariantMap() << true << true;
        QTest::newRow("no windows") << plist(QVariantMap()) << QVariantMap() << true << false;
        QTest::newRow("window entries of other types")
            << plist(QVariantMap{{QLatin1String(TWProjectKey::editorWindow), QStringLiteral("<p>x</p>")},
                                 {QLatin1String(TWProjectKey::viewerWindow), QVariantList{QStringLiteral("NO")}},
                                 {QLatin1String(TWProjectKey::templateWindow), 42},
                                 {QLatin1String(TWProjectKey::cssWindow), QByteArray("p {}")}})
            << QVariantMap() << true << false;
        // Texts and names of other types are as good as missing; a flag of another type is not
        // "YES", nor "NO".
        QVariantMap others = window(TWProjectKey::editorWindow, {{QStringLiteral("HTML Text"), 7},
                                                                 {QStringLiteral("HTML Filename"), QVariantList()},
                                                                 {QStringLiteral("Auto Indentation"), true}});
        others.insert(window(TWProjectKey::viewerWindow, {{QStringLiteral("Base URL"), 1.5},
                                                          {QStringLiteral("Auto Rendering"), 0},
                                                          {QStringLiteral("Apply CSS"), true},
                                                          {QStringLiteral("Validate Line Break"), QStringLiteral("yes")}}));
        others.insert(window(TWProjectKey::templateWindow, {{QStringLiteral("Template Text"), QByteArray("<html>")},
                                                            {QStringLiteral("Template Filename"), QVariantMap()},
                                                            {QStringLiteral("Apply Template"), 1}}));
        others.insert(window(TWProjectKey::cssWindow, {{QStringLiteral("CSS Text"), QDateTime::currentDateTimeUtc()}}));
        QTest::newRow("values of other types")
            << plist(others)
            << QVariantMap{{QStringLiteral("Auto Indentation"), false}, {QStringLiteral("Auto Indentation menu"), false},
                           {QStringLiteral("Apply CSS"), false}, {QStringLiteral("Apply CSS menu"), false},
                           {QStringLiteral("Validate Line Break"), false}, {QStringLiteral("Validate Line Break menu"), false}}
            << false << false;
        // Only the entries that are there change something.
        QVariantMap some = window(TWProjectKey::templateWindow, {{QStringLiteral("Template Text"), QStringLiteral("top only")}});
        some.insert(window(TWProjectKey::editorWindow, {{QStringLiteral("HTML Filename"), QStringLiteral("/gone/away.html")}}));
        some.insert(window(TWProjectKey::viewerWindow, {{QStringLiteral("Auto Rendering"), QStringLiteral("NO")},
                                                        {QStringLiteral("Base URL"), QString()}}));
        QTest::newRow("some entries, files that no longer exist")
            << plist(some)
            << QVariantMap{{QStringLiteral("HTML Filename"), QStringLiteral("/gone/away.html")},
                           {QStringLiteral("Auto Rendering"), false}, {QStringLiteral("Auto Rendering menu"), false},
                           {QStringLiteral("Base URL"), QString()},
                           {QStringLiteral("Template Top"), QStringLiteral("top only")},
                           {QStringLiteral("Template Bottom"), QString()}}
            << false << false;
        // A page of 100 MB that never ends.
        QByteArray huge = whole.left(whole.indexOf("<p>whole"));
        huge.append(QByteArray(100 << 20, 'x'));
        QTest::newRow("100 MB, unfinished") << huge << QVariantMap() << true << true;
    }

    void hostileProjectFiles()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(QVariantMap, changes);
        QFETCH(bool, pageReplaced);
        QFETCH(bool, beeps);
        const QString path = dir.filePath(QStringLiteral("hostile.twproj"));
        QVERIFY(TWTestEnvironment::writeFile(path, bytes));
        const QVariantMap before = snapshot();
        const int beepsBefore = TWBeepCount();
        QVERIFY(TWAppDelegate::sharedAppDelegate()->openFile(path));
        if (pageReplaced)
            changes.insert(QStringLiteral("HTML Text"), defaultPage());
        QCOMPARE(snapshot(), withChanges(before, changes));
        // A file that is no project at all beeps; one without a page says so too.
        TWMessageBar *bar = htmlWindow()->messageBar();
        QCOMPARE(bar->text().isEmpty(), !pageReplaced);
        QCOMPARE(TWBeepCount() > beepsBefore, beeps);
        if (pageReplaced) {
            const QList<QPushButton *> buttons = bar->findChildren<QPushButton *>();
            const auto back = std::find_if(buttons.begin(), buttons.end(),
                                           [](QPushButton *button) { return button->text() == QLatin1String("Bring Back My Page"); });
            QVERIFY(back != buttons.end());
            (*back)->click();
            QCOMPARE(snapshot(), withChanges(before, withChanges(changes, {{QStringLiteral("HTML Text"), before.value(QStringLiteral("HTML Text"))}})));
        }
    }

    // The export is the template's top half, the HTML (its line feeds as "<br>" while line
    // breaks are validated) and the bottom half, in the preferred encoding and line end, with
    // no base and no style sheet; a save that fails beeps and changes nothing.
    void exportCombinedPage_data()
    {
        QTest::addColumn<bool>("applyTemplate");
        QTest::addColumn<bool>("lineBreaks");
        QTest::addColumn<QString>("expected");
        QTest::newRow("template, lines") << true << false << "<head>\n</head>\n<p>一</p>\n<p>二</p>\n</html>\n";
        QTest::newRow("template, <br>") << true << true << "<head>\n</head>\n<p>一</p><br><p>二</p><br></html>\n";
        QTest::newRow("no template, <br>") << false << true << "<p>一</p><br><p>二</p><br>";
    }

    void exportCombinedPage()
    {
        QFETCH(bool, applyTemplate);
        QFETCH(bool, lineBreaks);
        QFETCH(QString, expected);
        TWPreferences *preferences = TWPreferences::sharedPref();
        preferences->setTextEncoding(0);
        preferences->setReturnCode(2);
        templateWindow()->loadTemplate(QStringLiteral("<head>\n</head>\n%1</html>\n").arg(QLatin1String(divider)));
        templateWindow()->setApplyTemplate(applyTemplate);
        viewer()->setLineBreakValidation(lineBreaks);
        htmlWindow()->loadHTML(QStringLiteral("<p>一</p>\n<p>二</p>\n"));
        chosen = dir.filePath(QStringLiteral("export.html"));
        trigger(QStringLiteral("&Export Combined HTML As..."));
        QCOMPARE(proposed, QString());
        QFile file(*chosen);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), QByteArray(QStringEncoder("Shift_JIS").encode(QString(expected).replace(u'\n', QLatin1String("\r\n")))));

        const QVariantMap before = snapshot();
        const int beeps = TWBeepCount();
        chosen = dir.filePath(QStringLiteral("export.html/in-a-file.html"));
        TWAppDelegate::sharedAppDelegate()->exportCombinedHTMLAs();
        chosen = dir.filePath(QStringLiteral("export.html/in-a-file.twproj"));
        TWAppDelegate::sharedAppDelegate()->saveProjectAs();
        QCOMPARE(TWBeepCount(), beeps + 2);
        QCOMPARE(TWAppDelegate::sharedAppDelegate()->projectFilename(), *chosen);
        QCOMPARE(snapshot(), before);
    }
};

QTEST_MAIN(tst_TWProject)
#include "tst_TWProject.moc"
