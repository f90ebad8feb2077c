// The checker window through its controls: the command line it builds, what it says when it
// cannot run, a run from start to stop whose output never ends, and its state at the next launch.
#include "checker/TWHTMLCheckerWindowController.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "app/TWStateKeys.h"
#include "documents/TWCSSWindowController.h"
#include "editor/TWEditWindowController.h"
#include "platform/TWLocalization.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferences.h"

#include <QDir>
#include <QFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int runTimeout = 60000;

TWHTMLCheckerWindowController *window() { return TWHTMLCheckerWindowController::sharedCheckerController(); }
QPushButton *button() { return window()->findChild<QPushButton *>(QStringLiteral("checkerButton")); }

// Status text, button title and whether the code type can be changed.
QString state()
{
    return window()->findChild<QWidget *>(QStringLiteral("checkerStatusText"))->property("text").toString() + u'|' + button()->text()
           + u'|' + (window()->findChild<QWidget *>(QStringLiteral("checkerPopUpButton"))->isEnabled() ? u'E' : u'-');
}

} // namespace

class tst_TWHTMLCheckerWindowController : public QObject
{
    Q_OBJECT

    TWRecordingPreview viewer;
    QTemporaryDir dir;

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
        QTest::newRow("quotes and tabs are kept")
            << 0 << "/bin/lint" << "\"a b\" c\td" << QStringList{"/bin/lint", "\"a", "b\"", "c\td", page};
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

    // What the window says when it cannot run a checker; a missing checker is said first. The
    // reason a program could not start follows its message; the others stand alone.
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
        TWTestEnvironment::writeScript(dir.filePath(QStringLiteral("checker")), "echo checked");
        QDir(dir.path()).mkdir(QStringLiteral("folder"));
        TWEditWindowController *html = TWEditWindowController::sharedEditWindowController();
        const QString filename = html->htmlFilename();
        html->setHTMLFilename(saved ? filename : QString());
        TWPreferences::sharedPref()->setHTMLCheckerPath(dir.filePath(checker));
        TWPreferences::sharedPref()->setHTMLCheckerOptions(QString());
        window()->setCodeType(0);
        button()->click();
        TW_TRY_VERIFY_WITH_TIMEOUT(!window()->isRunning(), runTimeout);
        html->setHTMLFilename(filename);
        const QString message = TWLocalizedString(said.toLatin1().constData());
        const QString text = window()->text();
        QVERIFY2(saved ? text.startsWith(message) && text.size() > message.size() : text == message, qPrintable(text));
        QVERIFY(state().endsWith(TWLocalizedString("start") + QStringLiteral("|E")));
    }

    // Start runs the checker and shows what it prints as it comes; the same button stops it, and
    // the window is idle again. A checker that prints without end, or lines without end, fills
    // no memory: the window keeps the first part of the output, cuts long lines, and says so.
    void startFloodAndStop()
    {
        const QString flooded = dir.filePath(QStringLiteral("flooded"));
        const QByteArray flood = "head -c 300000 /dev/zero | tr '\\0' x; echo; yes 'a message' | head -c 30000000; : > ";
        TWPreferences::sharedPref()->setCSSCheckerPath(
            TWTestEnvironment::writeScript(dir.filePath(QStringLiteral("flood")), flood + flooded.toUtf8() + "; exec sleep 1000"));
        TWPreferences::sharedPref()->setCSSCheckerOptions(QString());
        window()->setCodeType(1);
        button()->click();
        QCOMPARE(state(), TWLocalizedString("running") + QStringLiteral("...|") + TWLocalizedString("stop") + QStringLiteral("|-"));
        TW_TRY_VERIFY_WITH_TIMEOUT(QFile::exists(flooded), runTimeout);
        QVERIFY(window()->text().startsWith(QString(TWOutputLimit::maxLineLength, u'x') + QStringLiteral(" [...]\na message\n")));
        button()->click();
        TW_TRY_VERIFY_WITH_TIMEOUT(!window()->isRunning(), runTimeout);
        QCOMPARE(state(), TWLocalizedString("done") + QStringLiteral("|") + TWLocalizedString("start") + QStringLiteral("|E"));
        QVERIFY(window()->text().size() < TWOutputLimit::maxCharacters + 1000);
        QVERIFY(window()->text().contains(QStringLiteral("more characters were not shown")));
    }

    // The code type comes back only when stored as exactly "CSS", the window only as "YES".
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
