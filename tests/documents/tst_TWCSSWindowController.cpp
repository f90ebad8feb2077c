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

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        viewer.install();
        TWPreferences::sharedPref()->setTextEncoding(3);
        TWPreferences::sharedPref()->setReturnCode(2);
    }

    void filesTypingAndNew()
    {
        TWCSSWindowController *window = TWCSSWindowController::sharedCSSController();
        QFile file(dir.filePath(QStringLiteral("site.CSS")));
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write("/* \xe6\x97\xa5 */\r\nbody {}\r\n") > 0 && file.flush());
        const int renders = viewer.directRenderRequests + viewer.renderTimersFired;
        QVERIFY(window->openCSSFile(file.fileName()));
        QCOMPARE(window->textView()->string(), QString::fromUtf8("/* 日 */\nbody {}\n"));
        QCOMPARE(viewer.directRenderRequests + viewer.renderTimersFired, renders + 1);

        QVERIFY(!window->textView()->tagColoring());
        QTest::keyClicks(window->textView(), QStringLiteral("p { color: red }"));
        QCOMPARE(viewer.directRenderRequests + viewer.renderTimersFired, renders + 1);

        // Save As proposes the file's own name; the copy goes where that name leads.
        TWPanels::setSavePanelHandler([this](const QString &name, const QStringList &) {
            return std::optional(dir.filePath(QStringLiteral("copy of ") + name));
        });
        window->saveDocumentAs();
        QFile saved(dir.filePath(QStringLiteral("copy of site.CSS")));
        QVERIFY(saved.open(QIODevice::ReadOnly));
        QCOMPARE(saved.readAll(), QByteArray("p { color: red }/* \xe6\x97\xa5 */\r\nbody {}\r\n"));
        QCOMPARE(window->cssFilename(), saved.fileName());

        window->newDocument();
        QCOMPARE(window->textView()->string(), QString());
        QCOMPARE(window->cssFilename(), QString());
        QCOMPARE(viewer.directRenderRequests + viewer.renderTimersFired, renders + 2);
    }

    // The window is hidden only when stored as "NO"; at a first launch it is empty.
    void stateComesBackAtNextLaunch_data()
    {
        QTest::addColumn<QVariant>("showWindow");
        QTest::addColumn<bool>("shown");
        QTest::newRow("first launch: empty, shown") << QVariant() << true;
        QTest::newRow("NO hides") << QVariant(QStringLiteral("NO")) << false;
        QTest::newRow("lower-case no shows") << QVariant(QStringLiteral("no")) << true;
    }

    void stateComesBackAtNextLaunch()
    {
        QFETCH(QVariant, showWindow);
        QFETCH(bool, shown);
        const bool stored = showWindow.isValid();
        const QString text = stored ? QStringLiteral("h1 { margin: 0 }\n") : QString();
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->removeObjectForKey(QLatin1String(TWWindowDefaultsKey::cssWindow));
        if (stored)
            store->setObject(QVariantMap{{QLatin1String(TWStateEntry::cssText), text},
                                         {QLatin1String(TWStateEntry::cssFilename), QStringLiteral("/site/style.css")},
                                         {QLatin1String(TWStateEntry::showWindow), showWindow}},
                             QLatin1String(TWWindowDefaultsKey::cssWindow));
        delete TWCSSWindowController::sharedCSSController();
        TWUserDefaults::resetStandardUserDefaults();

        TWCSSWindowController *window = TWCSSWindowController::sharedCSSController();
        QCOMPARE(window->textView()->string(), text);
        QCOMPARE(window->windowTitle(), stored ? QStringLiteral("CSS:style.css") : QStringLiteral("CSS:> Untitled <"));
        window->loadCSSAtAppLaunch();
        QCOMPARE(window->isVisible(), shown);
        window->saveWindowProperties();
        const QVariantMap saved = *store->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::cssWindow));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::showWindow)).toString(), shown ? QStringLiteral("YES") : QStringLiteral("NO"));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::cssText)).toString(), text);
    }
};

QTEST_MAIN(tst_TWCSSWindowController)
#include "tst_TWCSSWindowController.moc"
