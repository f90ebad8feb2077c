// The template window: halves and their copies, the apply flag, one undo history for both
// halves, the active half, files, and state across launches (the default template at first).
#include "documents/TWTemplateWindowController.h"

#include "TWRecordingPreview.h"
#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "documents/TWTemplateText.h"
#include "editor/TWSharedUndoHistory.h"
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

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

} // namespace

class tst_TWTemplateWindowController : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QTemporaryDir dir;

    TWTemplateWindowController *relaunch()
    {
        delete TWTemplateWindowController::sharedTemplateController();
        TWUserDefaults::resetStandardUserDefaults();
        return TWTemplateWindowController::sharedTemplateController();
    }

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        viewer.install();
        TWPreferences::sharedPref()->setTextEncoding(3);
        TWPreferences::sharedPref()->setReturnCode(1);
    }

    void init()
    {
        TWResetBeepCount();
        TWPanels::setSavePanelHandler({});
    }

    void switchedOffTemplateGivesEmptyHalvesButKeepsThem()
    {
        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        window->loadTemplate(QStringLiteral("top<<TAGWRIGHTTEMPLATEDIVIDER>>bottom"));
        const int renders = viewer.directRenderRequests;
        window->toggleApplyTemplate();
        QVERIFY(!window->applyTemplate());
        QCOMPARE(viewer.directRenderRequests, renders + 1);
        QCOMPARE(viewer.templateButtonStates.last(), false);
        QCOMPARE(window->topTemplateText(), QString());
        QCOMPARE(window->bottomTemplateText(), QString());
        QCOMPARE(window->getCombinedText(), QStringLiteral("top<<TAGWRIGHTTEMPLATEDIVIDER>>bottom"));
        window->toggleApplyTemplate();
        QCOMPARE(window->topTemplateText(), QStringLiteral("top"));
    }

    void copiesFollowTyping()
    {
        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        window->loadTemplate(QStringLiteral("<body><<TAGWRIGHTTEMPLATEDIVIDER>></body>"));
        window->bottomTextView()->setSelectedRange({0, 0});
        const int timers = viewer.renderTimersFired;
        QTest::keyClicks(window->bottomTextView(), QStringLiteral("<hr>"));
        QCOMPARE(window->bottomTemplateText(), QStringLiteral("<hr></body>"));
        QCOMPARE(viewer.renderTimersFired, timers + 4); // each key asks for a render
        QCOMPARE(window->getCombinedText(), QStringLiteral("<body><<TAGWRIGHTTEMPLATEDIVIDER>><hr></body>"));
    }

    void bothHalvesShareOneUndoHistory()
    {
        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        window->loadTemplate(QStringLiteral("T<<TAGWRIGHTTEMPLATEDIVIDER>>B"));
        QVERIFY(!window->undoHistory()->canUndo());
        TWTemplateTextView *top = window->topTextView();
        TWTemplateTextView *bottom = window->bottomTextView();
        top->setSelectedRange({1, 0});
        top->insertText(QStringLiteral("1"));
        bottom->setSelectedRange({1, 0});
        bottom->insertText(QStringLiteral("2"));
        top->setSelectedRange({2, 0});
        top->insertText(QStringLiteral("3"));
        QCOMPARE(window->undoHistory()->count(), 3);

        // Undo from either half walks back through both, newest first; the copies follow.
        bottom->performUndo();
        QCOMPARE(top->string(), QStringLiteral("T1"));
        bottom->performUndo();
        QCOMPARE(bottom->string(), QStringLiteral("B"));
        QCOMPARE(window->bottomTemplateText(), QStringLiteral("B"));
        top->performRedo();
        QCOMPARE(bottom->string(), QStringLiteral("B2"));
        QCOMPARE(top->string(), QStringLiteral("T1"));

        // Ctrl+Z typed in a half goes to the shared history too.
        top->setFocus();
        QTest::keyClick(top, Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(bottom->string(), QStringLiteral("B"));
    }

    void activeHalfIsTheOneLastFocused()
    {
        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QApplication::setActiveWindow(window);
        window->loadTemplate(QStringLiteral("abcdef<<TAGWRIGHTTEMPLATEDIVIDER>>ghi"));
        QCOMPARE(window->topTextView()->pairedView(), window->bottomTextView());
        QCOMPARE(window->bottomTextView()->pairedView(), window->topTextView());
        window->topTextView()->setFocus();
        QTRY_VERIFY(window->topTextView()->hasFocus());
        QCOMPARE(window->activeTextView(), window->topTextView());
        window->topTextView()->setSelectedRange({2, 3});
        window->bottomTextView()->setFocus();
        QTRY_VERIFY(window->bottomTextView()->hasFocus());
        QCOMPARE(window->activeTextView(), window->bottomTextView());
        // The half that lost the focus starts its next search from the beginning.
        QCOMPARE(window->topTextView()->selectedRange(), (TWRange{0, 0}));
        window->hide();
    }

    void filesInPreferredEncodingAndTitle()
    {
        TWTemplateWindowController *window = TWTemplateWindowController::sharedTemplateController();
        const QString path = dir.filePath(QStringLiteral("site.twtemp"));
        QVERIFY(writeBytes(path, "<p>\xe6\x97\xa5</p>\r\n<<TAGWRIGHTTEMPLATEDIVIDER>>\r\n<!-- end -->"));
        QVERIFY(window->openTemplateFile(path));
        QCOMPARE(window->topTextView()->string(), QString::fromUtf8("<p>日</p>\n"));
        QCOMPARE(window->bottomTextView()->string(), QStringLiteral("\n<!-- end -->"));

        // A text without divider is saved followed by the divider.
        window->loadTemplate(QStringLiteral("<head>\n"));
        QStringList offered;
        QString proposed;
        const QString copy = dir.filePath(QStringLiteral("copy.twtemp"));
        TWPanels::setSavePanelHandler([&](const QString &name, const QStringList &extensions) {
            proposed = name;
            offered = extensions;
            return std::optional<QString>(copy);
        });
        window->saveDocumentAs();
        QCOMPARE(proposed, QStringLiteral("site.twtemp"));
        QCOMPARE(offered, QStringList{QStringLiteral("twtemp")});
        QCOMPARE(readBytes(copy), QByteArray("<head>\n<<TAGWRIGHTTEMPLATEDIVIDER>>"));

        // An undecodable file beeps and changes nothing.
        const QString bad = dir.filePath(QStringLiteral("bad.twtemp"));
        QVERIFY(writeBytes(bad, "\xff\xfe"));
        QVERIFY(window->openTemplateFile(bad));
        QCOMPARE(TWBeepCount(), 1);
        QCOMPARE(window->templateFilename(), copy);
        QCOMPARE(window->topTextView()->string(), QStringLiteral("<head>\n"));

        window->newDocument();
        QCOMPARE(window->getCombinedText(), QStringLiteral("<<TAGWRIGHTTEMPLATEDIVIDER>>"));
        QCOMPARE(window->templateFilename(), QString());
    }

    void stateComesBackAtNextLaunch_data()
    {
        QTest::addColumn<QVariant>("defaults");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("title");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<bool>("applied");
        const auto defaults = [](const QVariant &show, const QVariant &apply) {
            QVariantMap map{{QLatin1String(TWStateEntry::templateText), QStringLiteral("a<<TAGWRIGHTTEMPLATEDIVIDER>>b")},
                            {QLatin1String(TWStateEntry::templateFilename), QStringLiteral("/x/t.twtemp")}};
            if (show.isValid())
                map.insert(QLatin1String(TWStateEntry::showWindow), show);
            if (apply.isValid())
                map.insert(QLatin1String(TWStateEntry::applyTemplate), apply);
            return QVariant(map);
        };
        const QString text = QStringLiteral("a<<TAGWRIGHTTEMPLATEDIVIDER>>b");
        const QString title = QStringLiteral("Template:t.twtemp");
        QTest::newRow("none: the default template") << QVariant() << TWTemplateText::builtInDefault()
                                                    << QStringLiteral("Template:> Untitled <") << true << true;
        QTest::newRow("shown and applied") << defaults(QStringLiteral("YES"), QStringLiteral("YES")) << text << title << true << true;
        QTest::newRow("hidden, not applied") << defaults(QStringLiteral("NO"), QStringLiteral("NO")) << text << title << false << false;
        QTest::newRow("lower-case no shows") << defaults(QStringLiteral("no"), QStringLiteral("no")) << text << title << true << true;
        QTest::newRow("absent keys show and apply") << defaults(QVariant(), QVariant()) << text << title << true << true;
    }

    void stateComesBackAtNextLaunch()
    {
        QFETCH(QVariant, defaults);
        QFETCH(QString, text);
        QFETCH(QString, title);
        QFETCH(bool, shown);
        QFETCH(bool, applied);
        if (defaults.isValid())
            TWUserDefaults::standardUserDefaults()->setObject(defaults, QLatin1String(TWWindowDefaultsKey::templateWindow));
        else
            TWUserDefaults::standardUserDefaults()->removeObjectForKey(QLatin1String(TWWindowDefaultsKey::templateWindow));

        TWTemplateWindowController *window = relaunch();
        QCOMPARE(window->getCombinedText(), text);
        QCOMPARE(window->windowTitle(), title);
        QCOMPARE(window->bottomTemplateText().isEmpty(), !applied);
        QCOMPARE(TWAppDelegate::sharedAppDelegate()->applyTemplateMenu->isChecked(), applied);
        QCOMPARE(viewer.templateButtonStates.last(), applied);
        QVERIFY(!window->isVisible());
        window->loadTemplateAtAppLaunch();
        QCOMPARE(window->isVisible(), shown);

        // And what is saved is what the window holds now.
        window->saveWindowProperties();
        const QVariantMap saved = *TWUserDefaults::standardUserDefaults()->dictionaryForKey(
            QLatin1String(TWWindowDefaultsKey::templateWindow));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::showWindow)).toString(), shown ? QStringLiteral("YES") : QStringLiteral("NO"));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::applyTemplate)).toString(), applied ? QStringLiteral("YES") : QStringLiteral("NO"));
        QCOMPARE(saved.value(QLatin1String(TWStateEntry::templateText)).toString(), text);
        window->hide();
    }
};

QTEST_MAIN(tst_TWTemplateWindowController)
#include "tst_TWTemplateWindowController.moc"
