// The colour panel: the code of a colour, inserting into the text being edited, auto insert,
// and the panel's state and menu title from one launch to the next.
#include "panels/TWColorPanelController.h"

#include "TWTestEnvironment.h"
#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWBeep.h"
#include "platform/TWColorWell.h"
#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"
#include "platform/TWUserDefaults.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QPushButton>
#include <QTest>

namespace {

TWColorPanelController *panel()
{
    return TWColorPanelController::sharedColorPanel();
}

void chooseName(const QString &name)
{
    auto *menu = panel()->findChild<QComboBox *>(QStringLiteral("menu1"));
    menu->setCurrentIndex(menu->findText(name));
    Q_EMIT menu->activated(menu->currentIndex());
}

void chooseColor(const QColor &color)
{
    auto *well = panel()->findChild<TWColorWell *>(QStringLiteral("colorWell"));
    well->setColor(color);
    Q_EMIT well->colorChosen(color);
}

} // namespace

class tst_TWColorPanelController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
    }

    // Each component times 255, the fraction dropped; two upper-case digits each.
    void codeOfAColour_data()
    {
        QTest::addColumn<QColor>("color");
        QTest::addColumn<QString>("code");
        QTest::newRow("orange") << QColor::fromRgbF(1.0f, 0.5f, 0.0f) << "#FF7F00";
        QTest::newRow("0.999 is FE") << QColor::fromRgbF(0.999f, 0.0f, 1.0f) << "#FE00FF";
        QTest::newRow("from the chooser") << QColor(18, 171, 205) << "#12ABCD";
        QTest::newRow("grey scale") << QColor::fromHsvF(0.0f, 0.0f, 0.5f) << "#7F7F7F";
    }

    void codeOfAColour()
    {
        QFETCH(QColor, color);
        QFETCH(QString, code);
        QCOMPARE(TWColorPanelController::codeForColor(color), code);
    }

    // Names and codes go into the text being edited and stay selected, so that the next one
    // replaces them: at once with auto insert, with Insert without it. Nowhere to insert beeps.
    void insertingIntoTheTextBeingEdited()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        TWEditorTextView *text = window->textView();
        text->setString(QStringLiteral("<p>"));
        text->setSelectedRange({3, 0});
        auto *insertButton = panel()->findChild<QPushButton *>(QStringLiteral("insertButton"));
        if (panel()->autoInsert())
            panel()->toggleAutoInsert();
        QVERIFY(insertButton->isEnabled());

        TWResetBeepCount();
        chooseName(QStringLiteral("teal"));
        panel()->insert();
        QCOMPARE(TWBeepCount(), 1);
        QCOMPARE(panel()->colorCode(), QStringLiteral("teal"));

        window->show();
        QApplication::setActiveWindow(window);
        TW_TRY_COMPARE_WITH_TIMEOUT(TWEditorTextView::textViewToBeEdited(), text, 5000);
        panel()->toggleAutoInsert();
        QVERIFY(!insertButton->isEnabled());
        chooseName(QStringLiteral("red"));
        chooseColor(QColor(255, 128, 0));
        chooseName(QStringLiteral("navy"));
        QCOMPARE(text->string(), QStringLiteral("<p>navy"));
        QCOMPARE(text->selectedRange(), (TWRange{3, 4}));

        panel()->toggleAutoInsert();
        chooseColor(QColor(255, 128, 0));
        QCOMPARE(text->string(), QStringLiteral("<p>navy"));
        insertButton->click();
        QCOMPARE(text->string(), QStringLiteral("<p>#FF8000"));
        window->hide();
    }

    // Shown unless stored as "NO", auto insert only when stored as "YES"; the Window menu
    // offers what the panel is not; closing it offers to show it again.
    void stateComesBackAtNextLaunch_data()
    {
        QTest::addColumn<QVariantMap>("stored");
        QTest::addColumn<bool>("shown");
        QTest::addColumn<bool>("autoInsert");
        QTest::newRow("first start") << QVariantMap() << true << false;
        QTest::newRow("hidden, auto") << QVariantMap{{"Show Window", "NO"}, {"Auto Insert", "YES"}} << false << true;
        QTest::newRow("lower case") << QVariantMap{{"Show Window", "no"}, {"Auto Insert", "yes"}} << true << false;
    }

    void stateComesBackAtNextLaunch()
    {
        QFETCH(QVariantMap, stored);
        QFETCH(bool, shown);
        QFETCH(bool, autoInsert);
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->removeObjectForKey(QLatin1String(TWWindowDefaultsKey::colorPanel));
        if (!stored.isEmpty())
            store->setObject(stored, QLatin1String(TWWindowDefaultsKey::colorPanel));
        delete panel();
        QCOMPARE(panel()->isVisible(), shown);
        QCOMPARE(panel()->autoInsert(), autoInsert);
        const auto title = [] {
            for (const QAction *action : TWAppDelegate::sharedAppDelegate()->findChildren<QAction *>())
                if (action->shortcut() == QKeySequence(Qt::CTRL | Qt::Key_7))
                    return action->text();
            return QString();
        };
        QCOMPARE(title(), TWLocalizedString(shown ? TWTextKey::hideColorPanel : TWTextKey::showColorPanel));
        panel()->saveWindowProperties();
        QCOMPARE(store->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::colorPanel))->value("Auto Insert").toString(),
                 QLatin1String(autoInsert ? "YES" : "NO"));
        panel()->show();
        panel()->close();
        QCOMPARE(title(), TWLocalizedString(TWTextKey::showColorPanel));
    }
};

QTEST_MAIN(tst_TWColorPanelController)
#include "tst_TWColorPanelController.moc"
