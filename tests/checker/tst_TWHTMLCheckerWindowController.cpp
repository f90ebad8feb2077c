// The checker window through its controls: the command line it builds, what it says when it
// cannot run, a run from start to stop, an output that never ends, and its state at the next
// launch.
#include "checker/TWHTMLCheckerWindowController.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "app/TWStateKeys.h"
#include "checker/TWOutputLimit.h"
#include "documents/TWCSSWindowController.h"
#include "editor/TWEditWindowController.h"
#include "platform/TWLocalization.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferences.h"

#include <QComboBox>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int runTimeout = 60000;

TWHTMLCheckerWindowController *window()
{
    return TWHTMLCheckerWindowController::sharedCheckerController();
}

QPushButton *button()
{
    return window()->findChild<QPushButton *>(QStringLiteral("checkerButton"));
}

QComboBox *popUp()
{
    return window()->findChild<QComboBox *>(QStringLiteral("checkerPopUpButton"));
}

// Status text, button title and whether the code type can be changed.
QString state()
{
    return window()->findChild<QLabel *>(QStringLiteral("checkerStatusText"))->text() + u'|' + button()->text() + u'|'
           + (popUp()->isEnabled() ? u'E' : u'-');
}

} // namespace

class tst_TWHTMLCheckerWindowController : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QTemporaryDir dir;

    QString script(const QString &name, const QByteArray &body)
    {
        return TWTestEnvironment::writeScript(dir.filePath(name), body);
    }

    void waitUntilIdle()
    {
        QVERIFY(TWTestEnvironment::waitFor([] { return !window()->isRunning(); }, runTimeout));
    }

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        viewer.install();
        TWEditWindowController::sharedEditWindowController()->setHTMLFilename(dir.filePath(QStringLiteral("my page.html")));
        TWCSSWindowController::sharedCSSController()->setCSSFilename(dir.filePath(QStringLiteral("site.css")));
    }

    // Options split at single spaces, empty pieces left out, no quoting; a leading "~" of the
    // path is the home folder; the file is last; each code type has its own checker.
    void commandLine_data()
    {
        QTest::addColumn<int>("codeType");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("options");
        QTest::addColumn<QStringList>("arguments");
        const QString page = dir.filePath(QStringLiteral("my page.html"));
        QTest::newRow("spaces around and between") << 0 << "/bin/lint" << "  -w   short " << QStringList{"/bin/lint", "-w", "short", page};
        QTest::newRow("no options") << 0 << "/bin/lint" << "" << QStringList{"/bin/lint", page};
        QTest::newRow("quotes and tabs are kept") << 0 << "/bin/lint" << "\"a b\" c\td"
                                                  << QStringList{"/bin/lint", "\"a", "b\"", "c\td", page};
        QTest::newRow("home folder") << 0 << "~/bin/lint" << "-q" << QStringList{QDir::homePath() + "/bin/lint", "-q", page};
        QTest::newRow("style sheet") << 1 << "/bin/css" << "--x" << QStringList{"/bin/css", "--x", dir.filePath("site.css")};
    }

    void commandLine()
    {
        QFETCH(int, codeType);
        QFETCH(QString, path);
        QFETCH(QString, options);
        QFETCH(QStringList, arguments);
        TWPreferences *preferences = TWPreferences::sharedPref();
        // The other code type's settings must not leak in.
        preferences->setHTMLCheckerPath(codeType ? QStringLiteral("/other") : path);
        preferences->setHTMLCheckerOptions(codeType ? QStringLiteral("-other") : options);
        preferences->setCSSCheckerPath(codeType ? path : QStringLiteral("/other"));
        preferences->setCSSCheckerOptions(codeType ? options : QStringLiteral("-other"));
        window()->setCodeType(codeType);
        window()->setCheckerFilename(arguments.last());
        QCOMPARE(window()->checkerCommand(), arguments);
    }

    // What the window says when it cannot run a checker; a missing checker is said first.
    void runsThatCannotBe_data()
    {
        QTest::addColumn<QString>("checker");
        QTest::addColumn<bool>("saved");
        QTest::addColumn<QString>("said");
        QTest::newRow("no checker, no file") << "missing" << false << "htmlCheckerNotFound";
        QTest::newRow("no file") << "checker" << false << "htmlFileNotSpecified";
        QTest::newRow("a folder for a checker") << "folder" << true << "cantExecuteChecker";
    }

    void runsThatCannotBe()
    {
        QFETCH(QString, checker);
        QFETCH(bool, saved);
        QFETCH(QString, said);
        script(QStringLiteral("checker"), "echo checked");
        QDir(dir.path()).mkdir(QStringLiteral("folder"));
        TWPreferences::sharedPref()->setHTMLCheckerPath(dir.filePath(checker));
        TWPreferences::sharedPref()->setHTMLCheckerOptions(QString());
        TWEditWindowController *html = TWEditWindowController::sharedEditWindowController();
        const QString filename = html->htmlFilename();
        html->setHTMLFilename(saved ? filename : QString());
        window()->setCodeType(0);
        button()->click();
        waitUntilIdle();
        html->setHTMLFilename(filename);
        // The reason a program could not start follows its message; the others stand alone.
        const QString message = TWLocalizedString(said.toLatin1().constData());
        const QString text = window()->text();
        QVERIFY2(said == QLatin1String("cantExecuteChecker") ? text.startsWith(message) && text.size() > message.size()
                                                             : text == message,
                 qPrintable(text));
        QVERIFY(state().endsWith(TWLocalizedString("start") + QStringLiteral("|E")));
    }

    // Start runs the checker on the saved file and shows what it prints as it comes; the same
    // button stops it, and the window is idle again.
    void startAndStop()
    {
        TWPreferences::sharedPref()->setCSSCheckerPath(script(QStringLiteral("slow"), "echo \"checking $1\"; exec sleep 1000"));
        TWPreferences::sharedPref()->setCSSCheckerOptions(QString());
        window()->setCodeType(1);
        button()->click();
        QCOMPARE(state(), TWLocalizedString("running") + QStringLiteral("...|") + TWLocalizedString("stop") + QStringLiteral("|-"));
        QVERIFY(TWTestEnvironment::waitFor([this] { return window()->text() == "checking " + dir.filePath("site.css") + '\n'; },
                                           runTimeout));
        button()->click();
        waitUntilIdle();
        QCOMPARE(state(), TWLocalizedString("done") + QStringLiteral("|") + TWLocalizedString("start") + QStringLiteral("|E"));
    }

    // A checker that prints without end, or lines without end, fills no memory: the window keeps
    // the first part of the output, cuts long lines, and says so.
    void endlessOutputIsCut()
    {
        TWPreferences::sharedPref()->setHTMLCheckerPath(
            script(QStringLiteral("flood"), "head -c 300000 /dev/zero | tr '\\0' x; echo; yes 'a message' | head -c 30000000"));
        window()->setCodeType(0);
        button()->click();
        waitUntilIdle();
        const QString text = window()->text();
        QVERIFY(text.startsWith(QString(TWOutputLimit::maxLineLength, u'x') + QStringLiteral(" [...]\na message\n")));
        QVERIFY(text.size() < TWOutputLimit::maxCharacters + 1000);
        QVERIFY(text.contains(QStringLiteral("more characters were not shown")));
    }

    // The code type and whether the window is shown come back at the next launch; only "CSS"
    // selects the style sheet and only "YES" shows the window.
    void stateComesBackAtNextLaunch_data()
    {
        QTest::addColumn<QVariantMap>("stored");
        QTest::addColumn<int>("codeType");
        QTest::addColumn<bool>("shown");
        QTest::newRow("none") << QVariantMap() << 0 << false;
        QTest::newRow("CSS, shown") << QVariantMap{{"Code Type", "CSS"}, {"Show Window", "YES"}} << 1 << true;
        QTest::newRow("lower case") << QVariantMap{{"Code Type", "css"}, {"Show Window", "yes"}} << 0 << false;
    }

    void stateComesBackAtNextLaunch()
    {
        QFETCH(QVariantMap, stored);
        QFETCH(int, codeType);
        QFETCH(bool, shown);
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->removeObjectForKey(QLatin1String(TWWindowDefaultsKey::htmlCheckerWindow));
        if (!stored.isEmpty())
            store->setObject(stored, QLatin1String(TWWindowDefaultsKey::htmlCheckerWindow));
        delete window();
        window()->setupAtAppLaunch();
        QCOMPARE(state(), TWLocalizedString("ready") + QStringLiteral("|") + TWLocalizedString("start") + QStringLiteral("|E"));
        QCOMPARE(window()->codeType(), codeType);
        QCOMPARE(window()->isVisible(), shown);
        window()->saveWindowProperties();
        const QVariantMap saved = *store->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::htmlCheckerWindow));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::codeType)).toString(), QLatin1String(codeType ? "CSS" : "HTML"));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::showWindow)).toString(), QLatin1String(shown ? "YES" : "NO"));
    }
};

QTEST_MAIN(tst_TWHTMLCheckerWindowController)
#include "tst_TWHTMLCheckerWindowController.moc"
