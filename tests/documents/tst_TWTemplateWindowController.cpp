// The template window: halves and their copies, the apply flag, one undo history for both
// halves, the active half, files, and state across launches (the default template at first).
#include "documents/TWTemplateWindowController.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "documents/TWTemplateText.h"
#include "editor/TWUndoHistory.h"
#include "editor/TWTemplateTextView.h"
#include "platform/TWBeep.h"
#include "platform/TWLocalization.h"
#include "platform/TWPanels.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferences.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

namespace {

constexpr int focusTimeout = 5000;
constexpr char storedText[] = "a<<TAGWRIGHTTEMPLATEDIVIDER>>b";

} // namespace

class tst_TWTemplateWindowController : public QObject
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
        TWPreferences::sharedPref()->setReturnCode(1);
    }

    // Edits of either half reach its copy and ask for a render; undo from either half walks
    // back through both, newest first.
    void bothHalvesShareOneUndoHistory()
    {
        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        window->loadTemplate(QStringLiteral("T<<TAGWRIGHTTEMPLATEDIVIDER>>B"));
        TWTemplateTextView *top = window->topTextView();
        TWTemplateTextView *bottom = window->bottomTextView();
        const int timers = viewer.renderTimersFired;
        top->setSelectedRange({1, 0});
        QTest::keyClicks(top, QStringLiteral("1"));
        bottom->setSelectedRange({1, 0});
        QTest::keyClicks(bottom, QStringLiteral("2"));
        top->setSelectedRange({2, 0});
        QTest::keyClicks(top, QStringLiteral("3"));
        QCOMPARE(window->getCombinedText(), QStringLiteral("T13<<TAGWRIGHTTEMPLATEDIVIDER>>B2"));
        QCOMPARE(viewer.renderTimersFired, timers + 3);

        bottom->performUndo();
        QCOMPARE(window->getCombinedText(), QStringLiteral("T1<<TAGWRIGHTTEMPLATEDIVIDER>>B2"));
        bottom->performUndo();
        QCOMPARE(window->getCombinedText(), QStringLiteral("T1<<TAGWRIGHTTEMPLATEDIVIDER>>B"));
        top->performRedo();
        QCOMPARE(window->getCombinedText(), QStringLiteral("T1<<TAGWRIGHTTEMPLATEDIVIDER>>B2"));
        // Ctrl+Z typed in a half goes to the shared history too.
        top->setFocus();
        QTest::keyClick(top, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(window->getCombinedText(), QStringLiteral("T1<<TAGWRIGHTTEMPLATEDIVIDER>>B"));
        // A template loaded afterwards starts a history of its own.
        window->loadTemplate(QString());
        QVERIFY(!window->undoHistory()->canUndo());
    }

    void activeHalfIsTheOneLastFocused()
    {
        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QApplication::setActiveWindow(window);
        window->loadTemplate(QStringLiteral("abcdef<<TAGWRIGHTTEMPLATEDIVIDER>>ghi"));
        window->topTextView()->setFocus();
        TW_TRY_VERIFY_WITH_TIMEOUT(window->topTextView()->hasFocus(), focusTimeout);
        window->topTextView()->setSelectedRange({2, 3});
        window->bottomTextView()->setFocus();
        TW_TRY_VERIFY_WITH_TIMEOUT(window->bottomTextView()->hasFocus(), focusTimeout);
        QCOMPARE(window->activeTextView(), window->bottomTextView());
        // The half that lost the focus starts its next search from the beginning.
        QCOMPARE(window->topTextView()->selectedRange(), (TWRange{0, 0}));
    }

    void filesInPreferredEncoding()
    {
        TWResetBeepCount();
        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        const QString path = dir.filePath(QStringLiteral("site.twtemp"));
        QVERIFY(TWTestEnvironment::writeFile(path, "<p>\xe6\x97\xa5</p>\r\n<<TAGWRIGHTTEMPLATEDIVIDER>>\r\n<!-- end -->"));
        QVERIFY(window->openTemplateFile(path));
        QCOMPARE(window->getCombinedText(), QString::fromUtf8("<p>日</p>\n<<TAGWRIGHTTEMPLATEDIVIDER>>\n<!-- end -->"));

        // Save As proposes the file's own name; the copy goes where that name leads.
        TWPanels::setSavePanelHandler([this](const QString &name, const QStringList &) {
            return std::optional(dir.filePath(QStringLiteral("copy of ") + name));
        });
        window->saveDocumentAs();
        const QString copy = dir.filePath(QStringLiteral("copy of site.twtemp"));
        QFile saved(copy);
        QVERIFY(saved.open(QIODevice::ReadOnly));
        QCOMPARE(saved.readAll(), QByteArray("<p>\xe6\x97\xa5</p>\n<<TAGWRIGHTTEMPLATEDIVIDER>>\n<!-- end -->"));

        // An undecodable file beeps and changes nothing.
        QVERIFY(TWTestEnvironment::writeFile(path, "\xff\xfe"));
        QVERIFY(window->openTemplateFile(path));
        QCOMPARE(TWBeepCount(), 1);
        QCOMPARE(window->templateFilename(), copy);
        QCOMPARE(window->topTextView()->string(), QString::fromUtf8("<p>日</p>\n"));

        window->newDocument();
        QCOMPARE(window->getCombinedText(), QStringLiteral("<<TAGWRIGHTTEMPLATEDIVIDER>>"));
        QCOMPARE(window->templateFilename(), QString());
    }

    // A flag is NO only when stored as "NO". Switching the template off empties the
    // halves the page gets, never the window's.
    void stateComesBackAtNextLaunch_data()
    {
        QTest::addColumn<QVariant>("defaults");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<bool>("applied");
        const QVariantMap stored{{QLatin1String(TWStateEntry::templateText), QLatin1String(storedText)},
                                 {QLatin1String(TWStateEntry::templateFilename), QStringLiteral("/x/t.twtemp")}};
        QVariantMap hidden = stored, notApplied = stored;
        hidden.insert(QLatin1String(TWStateEntry::showWindow), QStringLiteral("NO"));
        notApplied.insert(QLatin1String(TWStateEntry::applyTemplate), QStringLiteral("NO"));
        QTest::newRow("none: the default template") << QVariant() << true << true;
        QTest::newRow("hidden") << QVariant(hidden) << false << true;
        QTest::newRow("not applied") << QVariant(notApplied) << true << false;
        QTest::newRow("absent flags show and apply") << QVariant(stored) << true << true;
    }

    void stateComesBackAtNextLaunch()
    {
        QFETCH(QVariant, defaults);
        QFETCH(bool, shown);
        QFETCH(bool, applied);
        const bool first = !defaults.isValid();
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->removeObjectForKey(QLatin1String(TWWindowDefaultsKey::templateWindow));
        if (!first)
            store->setObject(defaults, QLatin1String(TWWindowDefaultsKey::templateWindow));
        delete TWTemplateWindowController::sharedTemplateController();
        TWUserDefaults::resetStandardUserDefaults();

        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        const QString text = first ? TWTemplateText::builtInDefault() : QLatin1String(storedText);
        QCOMPARE(window->getCombinedText(), text);
        QCOMPARE(window->windowTitle(), first ? QStringLiteral("Template:> Untitled <") : QStringLiteral("Template:t.twtemp"));
        QCOMPARE(window->bottomTemplateText().isEmpty(), !applied);
        QCOMPARE(TWAppDelegate::sharedAppDelegate()->applyTemplateMenu->isChecked(), applied);
        QCOMPARE(viewer.templateButtonStates.last(), applied);
        window->loadTemplateAtAppLaunch();
        QCOMPARE(window->isVisible(), shown);

        const int renders = viewer.directRenderRequests;
        window->toggleApplyTemplate();
        QCOMPARE(viewer.directRenderRequests, renders + 1);
        QCOMPARE(window->topTemplateText().isEmpty(), applied);
        QCOMPARE(window->getCombinedText(), text);

        // What is saved is what the window holds now.
        window->saveWindowProperties();
        const QVariantMap saved = *store->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::templateWindow));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::showWindow)).toString(), shown ? QStringLiteral("YES") : QStringLiteral("NO"));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::applyTemplate)).toString(), applied ? QStringLiteral("NO") : QStringLiteral("YES"));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::templateText)).toString(), text);
    }
};

QTEST_MAIN(tst_TWTemplateWindowController)
#include "tst_TWTemplateWindowController.moc"
