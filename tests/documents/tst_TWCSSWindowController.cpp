// The style-sheet window: never coloured, never renders while typing, files and title, and
// state across launches.
#include "documents/TWCSSWindowController.h"

#include "TWRecordingPreview.h"
#include "app/TWStateKeys.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWLocalization.h"
#include "platform/TWPanels.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferences.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

class tst_TWCSSWindowController : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QTemporaryDir dir;

    TWCSSWindowController *relaunch()
    {
        delete TWCSSWindowController::sharedCSSController();
        TWUserDefaults::resetStandardUserDefaults();
        return TWCSSWindowController::sharedCSSController();
    }

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        viewer.install();
        TWPreferences::sharedPref()->setTextEncoding(3);
        TWPreferences::sharedPref()->setReturnCode(2);
    }

    void firstLaunchIsEmptyAndTypingNeverColoursNorRenders()
    {
        TWUserDefaults::standardUserDefaults()->removeObjectForKey(QLatin1String(TWWindowDefaultsKey::cssWindow));
        TWCSSWindowController *window = relaunch();
        QCOMPARE(window->textView()->string(), QString());
        QCOMPARE(window->windowTitle(), QStringLiteral("CSS:> Untitled <"));
        QVERIFY(!window->textView()->tagColoring());
        const int renders = viewer.renderTimersFired + viewer.directRenderRequests;
        QTest::keyClicks(window->textView(), QStringLiteral("p { color: red }"));
        QCOMPARE(viewer.renderTimersFired + viewer.directRenderRequests, renders);
        QCOMPARE(window->textView()->timerCount(), 0);
        QCOMPARE(window->cssFilename(), QString());
    }

    void filesAndNew()
    {
        TWCSSWindowController *window = TWCSSWindowController::sharedCSSController();
        const QString path = dir.filePath(QStringLiteral("site.CSS"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("body {\r\n}\r\n");
        file.close();
        const int renders = viewer.directRenderRequests;
        QVERIFY(window->openCSSFile(path));
        QCOMPARE(window->textView()->string(), QStringLiteral("body {\n}\n"));
        QCOMPARE(window->windowTitle(), QStringLiteral("CSS:site.CSS"));
        QCOMPARE(viewer.directRenderRequests, renders + 1);

        QString proposed;
        QStringList offered;
        const QString copy = dir.filePath(QStringLiteral("copy.css"));
        TWPanels::setSavePanelHandler([&](const QString &name, const QStringList &extensions) {
            proposed = name;
            offered = extensions;
            return std::optional<QString>(copy);
        });
        window->saveDocumentAs();
        QCOMPARE(proposed, QStringLiteral("site.CSS"));
        QCOMPARE(offered, QStringList{QStringLiteral("css")});
        QFile saved(copy);
        QVERIFY(saved.open(QIODevice::ReadOnly));
        QCOMPARE(saved.readAll(), QByteArray("body {\r\n}\r\n"));
        QCOMPARE(window->cssFilename(), copy);

        window->newDocument();
        QCOMPARE(window->textView()->string(), QString());
        QCOMPARE(window->cssFilename(), QString());
        QCOMPARE(viewer.directRenderRequests, renders + 2);
    }

    void stateComesBackAtNextLaunch_data()
    {
        QTest::addColumn<QVariant>("showWindow");
        QTest::addColumn<bool>("shown");
        QTest::newRow("YES") << QVariant(QStringLiteral("YES")) << true;
        QTest::newRow("NO hides") << QVariant(QStringLiteral("NO")) << false;
        QTest::newRow("lower-case no shows") << QVariant(QStringLiteral("no")) << true;
        QTest::newRow("absent shows") << QVariant() << true;
    }

    void stateComesBackAtNextLaunch()
    {
        QFETCH(QVariant, showWindow);
        QFETCH(bool, shown);
        QVariantMap defaults;
        defaults.insert(QLatin1String(TWStateEntry::cssText), QStringLiteral("h1 { margin: 0 }\n"));
        defaults.insert(QLatin1String(TWStateEntry::cssFilename), QStringLiteral("/site/style.css"));
        if (showWindow.isValid())
            defaults.insert(QLatin1String(TWStateEntry::showWindow), showWindow);
        TWUserDefaults::standardUserDefaults()->setObject(defaults, QLatin1String(TWWindowDefaultsKey::cssWindow));
        TWUserDefaults::standardUserDefaults()->synchronize();

        TWCSSWindowController *window = relaunch();
        QCOMPARE(window->textView()->string(), QStringLiteral("h1 { margin: 0 }\n"));
        QCOMPARE(window->cssFilename(), QStringLiteral("/site/style.css"));
        QCOMPARE(window->windowTitle(), QStringLiteral("CSS:style.css"));
        window->loadCSSAtAppLaunch();
        QCOMPARE(window->isVisible(), shown);
        window->saveWindowProperties();
        const QVariantMap saved
            = *TWUserDefaults::standardUserDefaults()->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::cssWindow));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::showWindow)).toString(),
                 shown ? QStringLiteral("YES") : QStringLiteral("NO"));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::cssText)).toString(), QStringLiteral("h1 { margin: 0 }\n"));
        window->hide();
    }
};

QTEST_MAIN(tst_TWCSSWindowController)
#include "tst_TWCSSWindowController.moc"
