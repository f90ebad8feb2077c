// The find panel and the Find menu: the options word, the texts and switches restored at
// start and kept at closing only, and the keys and commands reaching the text being edited.
#include "panels/TWFindPanelController.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "app/TWWindowState.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWBeep.h"
#include "platform/TWUserDefaults.h"
#include "taglib/TWHTMLTagLibrary.h"

#include <QApplication>
#include <QCheckBox>
#include <QMenuBar>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

namespace {

using Dictionary = QVariantMap;
const char *const switchNames[] = {"searchUpwardButton", "ignoreCaseButton", "wrapAroundButton"};

QCheckBox *switchOf(TWFindPanelController *panel, int index)
{
    return panel->findChild<QCheckBox *>(switchNames[index]);
}

// Switch states written as characters, upward first: x checked, . unchecked, ~ partly.
void setSwitches(TWFindPanelController *panel, const QString &states)
{
    for (int index = 0; index < 3; ++index) {
        const QChar state = states.at(index);
        switchOf(panel, index)->setCheckState(state == u'x' ? Qt::Checked : state == u'~' ? Qt::PartiallyChecked : Qt::Unchecked);
    }
}

// A defaults dictionary with the texts and the switch entries given (an invalid one is left out).
Dictionary defaults(const QVariant &search, const QVariant &replace, const QVariantList &switches)
{
    const QVariantList values = QVariantList{search, replace} + switches;
    const char *const entries[] = {TWStateEntry::searchText, TWStateEntry::replaceText, TWStateEntry::searchUpward,
                                   TWStateEntry::ignoreCase, TWStateEntry::wrapAround};
    Dictionary dictionary;
    for (int index = 0; index < values.size(); ++index) {
        if (values.at(index).isValid())
            dictionary.insert(entries[index], values.at(index));
    }
    return dictionary;
}

// The panel as a new launch makes it, from what the store holds.
TWFindPanelController *relaunchedPanel(const QVariant &dictionary)
{
    TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
    store->removeObjectForKey(QLatin1String(TWWindowDefaultsKey::findPanel));
    if (dictionary.isValid())
        store->setObject(dictionary, QLatin1String(TWWindowDefaultsKey::findPanel));
    delete TWFindPanelController::sharedFindPanel();
    return TWFindPanelController::sharedFindPanel();
}

} // namespace

class tst_TWFindPanelController : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;

private Q_SLOTS:
    void initTestCase()
    {
        viewer.install();
        TWAppDelegate::sharedAppDelegate();
    }

    void optionsWordCountsFullyCheckedSwitches_data()
    {
        QTest::addColumn<QString>("states");
        QTest::addColumn<unsigned>("word");
        const std::pair<const char *, unsigned> rows[] = {{"...", 0}, {"x..", 1}, {".x.", 2}, {"xx.", 3}, {"..x", 4},
                                                          {"x.x", 5}, {".xx", 6}, {"xxx", 7}, {"~x~", 2}};
        for (const auto &[states, word] : rows)
            QTest::newRow(states) << QString::fromLatin1(states) << word;
    }

    void optionsWordCountsFullyCheckedSwitches()
    {
        QFETCH(QString, states);
        QFETCH(unsigned, word);
        TWFindPanelController *panel = TWFindPanelController::sharedFindPanel();
        setSwitches(panel, states);
        QCOMPARE(panel->options(), word);
    }

    void restoresTextsAndSwitchesFromDefaults_data()
    {
        QTest::addColumn<QVariant>("dictionary");
        QTest::addColumn<QString>("search");
        QTest::addColumn<QString>("replace");
        QTest::addColumn<QString>("switches"); // Y on, N off, - as laid out
        const QVariant none;
        QTest::newRow("no dictionary") << none << "" << "" << "---";
        QTest::newRow("empty dictionary") << QVariant(Dictionary()) << "" << "" << "---";
        QTest::newRow("YES") << QVariant(defaults("<p a=\"1\">", "é", {"YES", "YES", "YES"})) << "<p a=\"1\">" << "é" << "YYY";
        QTest::newRow("NO") << QVariant(defaults(none, none, {"NO", "NO", "NO"})) << "" << "" << "NNN";
        QTest::newRow("lower-case yes") << QVariant(defaults(none, none, {"yes", "yes", "yes"})) << "" << "" << "NNN";
        QTest::newRow("other values") << QVariant(defaults(42, true, {"", 1, true})) << "" << "" << "NNN";
        QTest::newRow("one switch only") << QVariant(defaults("a", none, {none, "YES"})) << "a" << "" << "-Y-";
    }

    void restoresTextsAndSwitchesFromDefaults()
    {
        QFETCH(QVariant, dictionary);
        QFETCH(QString, search);
        QFETCH(QString, replace);
        QFETCH(QString, switches);
        const unsigned laidOut = relaunchedPanel(QVariant())->options();
        QVERIFY2(laidOut != 0 && laidOut != 7, "the rows need a switch laid out on and one off");
        unsigned expected = 0;
        for (int bit = 0; bit < 3; ++bit)
            expected |= (switches.at(bit) == u'-' ? laidOut : switches.at(bit) == u'Y' ? 7 : 0) & (1u << bit);
        TWFindPanelController *panel = relaunchedPanel(dictionary);
        QCOMPARE(panel->searchText(), search);
        QCOMPARE(panel->replaceText(), replace);
        QCOMPARE(panel->options(), expected);
    }

    // Closing keeps the texts, switches and frame; quitting with the panel open does not, so the
    // next launch has those of the last closing.
    void stateIsKeptAtClosingOnly()
    {
        TWFindPanelController *panel = relaunchedPanel(QVariant());
        panel->openFindPanel();
        panel->move(123, 145);
        panel->setSearchText(QStringLiteral("alpha"));
        panel->setReplaceText(QStringLiteral("beta"));
        setSwitches(panel, QStringLiteral("xx."));
        panel->close();
        QCOMPARE(TWWindowState::readDefaults(TWWindowDefaultsKey::findPanel).value_or(Dictionary()),
                 defaults("alpha", "beta", {"YES", "YES", "NO"}));
        const QRect closedFrame = panel->geometry();

        panel->openFindPanel();
        panel->setSearchText(QStringLiteral("gamma"));
        setSwitches(panel, QStringLiteral("..x"));
        panel->move(234, 256);
        // A real quit: every window closes, then the application saves its state.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec();
        TWUserDefaults::resetStandardUserDefaults();
        delete TWFindPanelController::sharedFindPanel();
        panel = TWFindPanelController::sharedFindPanel();
        QCOMPARE(panel->searchText(), QStringLiteral("alpha"));
        QCOMPARE(panel->options(), 3u);
        QCOMPARE(panel->geometry(), closedFrame);
    }

    // Each key of the Find menu, from the text or from the panel's field, and Return in the field.
    // The panel is made by the key when not open before, with the texts and switches of the last
    // closing (ignore case: "foo" finds "FOO").
    void keysReachTheTextBeingEdited_data()
    {
        QTest::addColumn<QKeySequence>("key");
        QTest::addColumn<QString>("where"); // the HTML text, or the panel with or without the HTML window
        QTest::addColumn<QString>("search");
        QTest::addColumn<int>("beeps");
        QTest::addColumn<QString>("expectedText");
        QTest::addColumn<TWRange>("expectedSelection");
        const QKeySequence find(Qt::CTRL | Qt::Key_F), findNext(Qt::CTRL | Qt::Key_G), replace(Qt::CTRL | Qt::Key_E),
            replaceAndFind(Qt::CTRL | Qt::SHIFT | Qt::Key_E), replaceAll(Qt::CTRL | Qt::SHIFT | Qt::Key_H);
        const QString text = QStringLiteral("Foo FOO");
        QTest::newRow("Find...") << find << "text" << "foo" << 0 << text << TWRange{0, 3};
        QTest::newRow("Find Next") << findNext << "text" << "foo" << 0 << text << TWRange{4, 3};
        QTest::newRow("Replace") << replace << "text" << "foo" << 0 << "bar FOO" << TWRange{0, 3};
        QTest::newRow("Replace from the panel") << replace << "panel" << "foo" << 0 << "bar FOO" << TWRange{0, 3};
        QTest::newRow("Replace & Find") << replaceAndFind << "text" << "foo" << 0 << "bar FOO" << TWRange{4, 3};
        QTest::newRow("Replace All") << replaceAll << "text" << "foo" << 0 << "bar bar" << TWRange{4, 3};
        QTest::newRow("Return in the panel") << QKeySequence(Qt::Key_Return) << "panel" << "foo" << 0 << text << TWRange{4, 3};
        // An empty search would match the empty selection, and replace there.
        QTest::newRow("empty search text") << replace << "text" << "" << 1 << text << TWRange{0, 0};
        QTest::newRow("no document window") << QKeySequence(Qt::Key_Return) << "panel only" << "foo" << 1 << text << TWRange{0, 3};
    }

    void keysReachTheTextBeingEdited()
    {
        QFETCH(QKeySequence, key);
        QFETCH(QString, where);
        QFETCH(QString, search);
        QFETCH(int, beeps);
        QFETCH(QString, expectedText);
        QFETCH(TWRange, expectedSelection);
        relaunchedPanel(defaults(search, "bar", {"NO", "YES", "NO"}));
        TWResetBeepCount();
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        window->show();
        QApplication::setActiveWindow(window);
        TWEditorTextView *view = window->textView();
        view->setString(QStringLiteral("Foo FOO"));
        view->setSelectedRange({0, search.isEmpty() ? 0 : 3});
        view->setFocus();
        if (where == QLatin1String("panel only"))
            window->hide();
        QWidget *target = view;
        if (where != QLatin1String("text")) {
            TWFindPanelController *panel = TWFindPanelController::sharedFindPanel();
            panel->openFindPanel();
            QApplication::setActiveWindow(panel);
            target = panel->focusWidget();
        }
        TW_TRY_COMPARE_WITH_TIMEOUT(QApplication::focusWidget(), target, 5000);
        QTest::keySequence(target, key);
        QCOMPARE(TWBeepCount(), beeps);
        QCOMPARE(view->string(), expectedText);
        QCOMPARE(view->selectedRange(), expectedSelection);
        QCOMPARE(TWFindPanelController::sharedFindPanel()->isVisible(), target != view || key == QKeySequence(Qt::CTRL | Qt::Key_F));
        TWFindPanelController::sharedFindPanel()->hide();
        // The window-modal report of a Replace All.
        for (QMessageBox *report : window->findChildren<QMessageBox *>())
            report->close();
    }

    // Tag keys are Ctrl+Alt+key; no command may take one, nor share a key with another item.
    void menuKeysAreDistinct()
    {
        TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
        // The menus as at the end of a launch: tags and browsers listed.
        TWHTMLTagLibrary::sharedTagLibrary()->validateTagListChange();
        delegate->setViewOnExBrowserMenu();
        QList<QMenu *> menus;
        for (QAction *action : TWEditWindowController::sharedEditWindowController()->menuBar()->actions())
            menus << action->menu();
        QHash<QKeySequence, QString> taken;
        for (qsizetype next = 0; next < menus.size(); ++next) {
            const bool tagMenu = menus[next] == delegate->insertSingleTagMenu() || menus[next] == delegate->insertDoubleTagMenu();
            for (QAction *action : menus[next]->actions()) {
                if (action->menu())
                    menus << action->menu();
                for (const QKeySequence &key : action->shortcuts()) {
                    QVERIFY2(!taken.contains(key), qPrintable(action->text() + " and " + taken.value(key)));
                    taken.insert(key, action->text());
                    const Qt::KeyboardModifiers tagModifiers = Qt::ControlModifier | Qt::AltModifier;
                    const bool tagKey = key[0].key() >= Qt::Key_A && key[0].key() <= Qt::Key_Z
                                        && (key[0].keyboardModifiers() & tagModifiers) == tagModifiers;
                    QVERIFY2(tagMenu || !tagKey, qPrintable(action->text()));
                }
            }
        }
        QVERIFY(taken.contains(QKeySequence(Qt::CTRL | Qt::Key_G)));
    }
};

QTEST_MAIN(tst_TWFindPanelController)
#include "tst_TWFindPanelController.moc"
