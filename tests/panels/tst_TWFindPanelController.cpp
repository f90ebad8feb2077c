// The find panel and the Find menu: the texts and switches restored at start and kept at
// closing only, and the keys and commands reaching the text being edited.
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

#include <QApplication>
#include <QMessageBox>
#include <QTest>
#include <QTimer>

namespace {

// A defaults dictionary: search text, replacement text and the three switches (an invalid
// value is left out).
QVariantMap defaults(const QVariantList &values)
{
    const char *const entries[] = {TWStateEntry::searchText, TWStateEntry::replaceText, TWStateEntry::searchUpward,
                                   TWStateEntry::ignoreCase, TWStateEntry::wrapAround};
    QVariantMap dictionary;
    for (int index = 0; index < values.size(); ++index)
        if (values.at(index).isValid())
            dictionary.insert(entries[index], values.at(index));
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

    void restoresTextsAndSwitchesFromDefaults_data()
    {
        QTest::addColumn<QVariant>("dictionary");
        QTest::addColumn<QString>("texts");    // search|replace
        QTest::addColumn<QString>("switches"); // Y on, N off, - as laid out
        const QVariant none;
        QTest::newRow("no dictionary") << none << "|" << "---";
        QTest::newRow("empty dictionary") << QVariant(QVariantMap()) << "|" << "---";
        QTest::newRow("YES") << QVariant(defaults({"<p a=\"1\">", "é", "YES", "YES", "YES"})) << "<p a=\"1\">|é" << "YYY";
        QTest::newRow("NO") << QVariant(defaults({none, none, "NO", "NO", "NO"})) << "|" << "NNN";
        QTest::newRow("other values") << QVariant(defaults({42, true, "", 1, true})) << "|" << "NNN";
        QTest::newRow("one switch only") << QVariant(defaults({"a", none, none, "YES"})) << "a|" << "-Y-";
    }

    void restoresTextsAndSwitchesFromDefaults()
    {
        QFETCH(QVariant, dictionary);
        QFETCH(QString, switches);
        const unsigned laidOut = relaunchedPanel(QVariant())->options();
        QVERIFY2(laidOut != 0 && laidOut != 7, "the rows need a switch laid out on and one off");
        unsigned expected = 0;
        for (int bit = 0; bit < 3; ++bit)
            expected |= (switches.at(bit) == u'-' ? laidOut : switches.at(bit) == u'Y' ? 7 : 0) & (1u << bit);
        TWFindPanelController *panel = relaunchedPanel(dictionary);
        QTEST(panel->searchText() + u'|' + panel->replaceText(), "texts");
        QCOMPARE(panel->options(), expected);
    }

    // Closing keeps the texts, switches and frame; quitting with the panel open does not, so the
    // next launch has those of the last closing.
    void stateIsKeptAtClosingOnly()
    {
        const QVariantMap closing = defaults({"alpha", "beta", "YES", "YES", "NO"});
        TWFindPanelController *panel = relaunchedPanel(defaults({QVariant(), QVariant(), "YES", "YES", "NO"}));
        panel->openFindPanel();
        panel->move(123, 145);
        panel->setSearchText(QStringLiteral("alpha"));
        panel->setReplaceText(QStringLiteral("beta"));
        panel->close();
        QCOMPARE(TWWindowState::readDefaults(TWWindowDefaultsKey::findPanel).value_or(QVariantMap()), closing);
        const QRect closedFrame = panel->geometry();
        panel->openFindPanel();
        panel->setSearchText(QStringLiteral("gamma"));
        panel->move(234, 256);
        // A real quit: every window closes, then the application saves its state.
        QTimer::singleShot(0, qApp, &QCoreApplication::quit);
        QCoreApplication::exec();
        TWUserDefaults::resetStandardUserDefaults();
        QCOMPARE(TWWindowState::readDefaults(TWWindowDefaultsKey::findPanel).value_or(QVariantMap()), closing);
        delete panel;
        QCOMPARE(TWFindPanelController::sharedFindPanel()->geometry(), closedFrame);
    }

    // Each key of the Find menu, from the text or from the panel's field, and Return in the field,
    // with the texts and switches of the last closing (ignore case: "foo" finds "FOO").
    void keysReachTheTextBeingEdited_data()
    {
        QTest::addColumn<QKeySequence>("key");
        QTest::addColumn<QString>("where"); // the HTML text, or the panel with or without the HTML window
        QTest::addColumn<QString>("search");
        QTest::addColumn<int>("beeps");
        QTest::addColumn<QString>("text");
        QTest::addColumn<TWRange>("selection");
        const QKeySequence replace(Qt::CTRL | Qt::Key_E), findInPanel(Qt::Key_Return);
        const QString text = QStringLiteral("Foo FOO");
        QTest::newRow("Find...") << QKeySequence(Qt::CTRL | Qt::Key_F) << "text" << "foo" << 0 << text << TWRange{0, 3};
        QTest::newRow("Find Next") << QKeySequence(Qt::CTRL | Qt::Key_G) << "text" << "foo" << 0 << text << TWRange{4, 3};
        QTest::newRow("Replace") << replace << "text" << "foo" << 0 << "bar FOO" << TWRange{0, 3};
        QTest::newRow("Replace from the panel") << replace << "panel" << "foo" << 0 << "bar FOO" << TWRange{0, 3};
        QTest::newRow("Replace & Find") << QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E) << "text" << "foo" << 0 << "bar FOO" << TWRange{4, 3};
        QTest::newRow("Replace All") << QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_H) << "text" << "foo" << 0 << "bar bar" << TWRange{4, 3};
        QTest::newRow("Return in the panel") << findInPanel << "panel" << "foo" << 0 << text << TWRange{4, 3};
        // An empty search would match the empty selection, and replace there.
        QTest::newRow("empty search text") << replace << "text" << "" << 1 << text << TWRange{0, 0};
        QTest::newRow("no document window") << findInPanel << "panel only" << "foo" << 1 << text << TWRange{0, 3};
    }

    void keysReachTheTextBeingEdited()
    {
        QFETCH(QKeySequence, key);
        QFETCH(QString, where);
        QFETCH(QString, search);
        TWFindPanelController *panel = relaunchedPanel(defaults({search, "bar", "NO", "YES", "NO"}));
        TWResetBeepCount();
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        window->show();
        QApplication::setActiveWindow(window);
        TWEditorTextView *view = window->textView();
        view->setString(QStringLiteral("Foo FOO"));
        view->setSelectedRange({0, search.isEmpty() ? 0 : 3});
        view->setFocus();
        window->setVisible(where != QLatin1String("panel only"));
        if (where != QLatin1String("text")) {
            panel->openFindPanel();
            QApplication::setActiveWindow(panel);
        }
        QWidget *target = where == QLatin1String("text") ? view : panel->focusWidget();
        TW_TRY_COMPARE_WITH_TIMEOUT(QApplication::focusWidget(), target, 5000);
        QTest::keySequence(target, key);
        QTEST(TWBeepCount(), "beeps");
        QTEST(view->string(), "text");
        QTEST(view->selectedRange(), "selection");
        QCOMPARE(panel->isVisible(), target != view || key == QKeySequence(Qt::CTRL | Qt::Key_F));
        panel->hide();
        // The window-modal report of a Replace All.
        qDeleteAll(window->findChildren<QMessageBox *>());
    }
};

QTEST_MAIN(tst_TWFindPanelController)
#include "tst_TWFindPanelController.moc"
