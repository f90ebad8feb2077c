// The preferences panel through its controls: the values it refuses, the rules of the external
// browsers list, each control reaching its preference and the window that shows it, and
// closing, which keeps what was typed.
#include "preferences/TWPreferencesPanelController.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "app/TWAppDelegate.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTemplateTextView.h"
#include "platform/TWBeep.h"
#include "platform/TWColorWell.h"
#include "platform/TWPanels.h"
#include "platform/TWUserDefaults.h"
#include "platform/TWXMLPropertyList.h"
#include "preferences/TWExBrowserTableModel.h"
#include "preferences/TWPreferences.h"
#include "preview/TWExternalBrowser.h"

#include <QAction>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QFontDialog>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QSlider>
#include <QTableView>
#include <QTemporaryDir>
#include <QTest>

namespace {

TWPreferencesPanelController *panel() { return TWPreferencesPanelController::sharedPreferencesPanel(); }
TWPreferences *preferences() { return TWPreferences::sharedPref(); }
template <class Control> Control *control(const char *name) { return panel()->findChild<Control *>(QLatin1String(name)); }

// Types the text into the field and presses Return, as the user does.
void enter(QLineEdit *field, const QString &text)
{
    field->selectAll();
    QTest::keyClicks(field, text);
    QTest::keyClick(field, Qt::Key_Return);
}

QStringList titles(const QStringList &browsers)
{
    QStringList names;
    for (const QString &browser : browsers)
        names << TWExternalBrowser::title(browser);
    return names;
}

} // namespace

class tst_TWPreferencesPanelController : public QObject
{
    Q_OBJECT

    TWRecordingPreview viewer;
    QTemporaryDir dir;

private Q_SLOTS:
    void initTestCase() { viewer.install(); }

    // A font size is a whole number of points from 1 to the largest, a suspend time a positive
    // number; anything else shows the value in force again. What is taken reaches the editor.
    void refusedValuesRevert_data()
    {
        QTest::addColumn<QString>("field");
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QString>("shown");
        for (const char *typed : {"0", "-3", "99999", "abc", ""})
            QTest::addRow("font size %s", typed) << "editorFontSizeMenu" << typed << "12";
        QTest::newRow("font size 20") << "editorFontSizeMenu" << "20" << "20";
        QTest::newRow("font size 12.5") << "editorFontSizeMenu" << "12.5" << "12";
        for (const char *typed : {"0", "-1", "abc", "1e309"})
            QTest::addRow("suspend time %s", typed) << "suspendTimeField" << typed << "0.3";
        QTest::newRow("suspend time 0.5") << "suspendTimeField" << "0.5" << "0.5";
    }

    void refusedValuesRevert()
    {
        QFETCH(QString, field);
        QFETCH(QString, typed);
        QFETCH(QString, shown);
        const bool fontSize = field.endsWith(QLatin1String("Menu"));
        auto *edit = fontSize ? control<QComboBox>(field.toLatin1())->lineEdit() : control<QLineEdit>(field.toLatin1());
        enter(edit, fontSize ? QStringLiteral("12") : QStringLiteral("0.3"));
        enter(edit, typed);
        QCOMPARE(edit->text(), shown);
        if (fontSize) {
            QCOMPARE(TWPreferences::fontSize(preferences()->editorFont()), shown.toInt());
            QCOMPARE(TWEditWindowController::sharedEditWindowController()->textView()->font().pointSize(), shown.toInt());
        } else {
            QCOMPARE(preferences()->suspendTime(), shown.toFloat());
            QCOMPARE(TWEditorTextView::tagColoringSuspendTime(), shown.toFloat());
            QCOMPARE(viewer.suspensionTimes.last(), double(shown.toFloat()));
        }
    }

    // At most ten browsers, an application that cannot open a page is not taken, removing needs
    // a row, and rows dragged together land together. The View menu lists what the panel does.
    void browsersListRules_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("action");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<bool>("beep");
        const auto first = [](int count) {
            QStringList names;
            for (int index = 0; index < count; ++index)
                names << QStringLiteral("b%1").arg(index);
            return names;
        };
        QTest::newRow("no eleventh") << 10 << "add b" << first(10) << true;
        QTest::newRow("a tenth") << 9 << "add b" << first(9) + QStringList{"b"} << false;
        QTest::newRow("a desktop entry") << 0 << "add viewer.desktop" << QStringList{"viewer"} << false;
        QTest::newRow("a desktop entry without Exec") << 1 << "add broken.desktop" << first(1) << true;
        QTest::newRow("remove with none selected") << 2 << "remove" << first(2) << true;
        QTest::newRow("remove from an empty list") << 0 << "remove" << first(0) << true;
        QTest::newRow("remove the only one") << 1 << "remove 0" << first(0) << false;
        QTest::newRow("remove two") << 4 << "remove 1 3" << QStringList{"b0", "b2"} << false;
        QTest::newRow("third above first") << 3 << "drag 2 0" << QStringList{"b2", "b0", "b1"} << false;
        QTest::newRow("first and third to the end") << 3 << "drag 0 2 3" << QStringList{"b1", "b0", "b2"} << false;
        QTest::newRow("onto itself") << 3 << "drag 1 1" << first(3) << false;
    }

    void browsersListRules()
    {
        QFETCH(int, count);
        QFETCH(QString, action);
        QFETCH(QStringList, after);
        QFETCH(bool, beep);
        QStringList browsers;
        for (int index = 0; index < count; ++index)
            browsers << TWTestEnvironment::writeScript(dir.filePath(QStringLiteral("b%1").arg(index)), "exit 0");
        TWTestEnvironment::writeScript(dir.filePath(QStringLiteral("b")), "exit 0");
        TWTestEnvironment::writeFile(dir.filePath(QStringLiteral("viewer.desktop")), "[Desktop Entry]\nName=Viewer\nExec=true %u\n");
        TWTestEnvironment::writeFile(dir.filePath(QStringLiteral("broken.desktop")), "[Desktop Entry]\nName=Broken\n");
        preferences()->setExBrowsers(browsers);
        TWAppDelegate::sharedAppDelegate()->setViewOnExBrowserMenu();
        delete panel();
        QStringList words = action.split(QLatin1Char(' '));
        const QString verb = words.takeFirst();
        QList<int> rows;
        for (const QString &word : words)
            rows << word.toInt();
        TWPanels::setOpenPanelHandler([&](const QStringList &) { return QStringList{dir.filePath(words.value(0))}; });
        TWResetBeepCount();
        if (verb == QLatin1String("add")) {
            panel()->addExBrowser();
        } else if (verb == QLatin1String("remove")) {
            auto *table = control<QTableView>("exBrowsersTableView");
            for (const int row : rows)
                table->selectionModel()->select(table->model()->index(row, 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
            panel()->removeExBrowser();
        } else {
            auto *model = control<QTableView>("exBrowsersTableView")->model();
            QModelIndexList dragged;
            for (const int row : rows.first(rows.size() - 1))
                dragged << model->index(row, 1);
            std::unique_ptr<QMimeData> data(model->mimeData(dragged));
            QVERIFY(model->dropMimeData(data.get(), Qt::MoveAction, rows.last(), 0, {}));
        }
        TWPanels::setOpenPanelHandler({});
        QCOMPARE(titles(preferences()->exBrowsers()), after);
        QCOMPARE(TWBeepCount(), beep ? 1 : 0);
        QCOMPARE(control<QPushButton>("addEBButton")->isEnabled(), after.size() < 10);
        QCOMPARE(control<QPushButton>("removeEBButton")->isEnabled(), !after.isEmpty());
        QStringList menu;
        for (const QAction *item : TWAppDelegate::sharedAppDelegate()->viewOnExBrowserMenu()->actions())
            menu << item->text();
        QCOMPARE(menu, after);
    }

    // Each control writes its preference at once and pushes it to the window that shows it:
    // fonts chosen in the font dialog, colours in the colour dialog, the opacity, the pop-ups
    // and the suspension switches, which also enable the suspend time.
    void controlsReachTheirPreferenceAndWindow()
    {
        TWEditorTextView *html = TWEditWindowController::sharedEditWindowController()->textView();
        TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
        const struct { const char *button; int size; QWidget *shownIn; const QFont &(TWPreferences::*font)() const; } fonts[] = {
            {"editorFontButton", 17, html, &TWPreferences::editorFont},
            {"templateFontButton", 15, templateWindow->bottomTextView(), &TWPreferences::templateFont},
            {"cssFontButton", 13, TWCSSWindowController::sharedCSSController()->findChild<QPlainTextEdit *>(), &TWPreferences::cssFont}};
        for (const auto &font : fonts) {
            control<QPushButton>(font.button)->click();
            auto *dialog = panel()->findChild<QFontDialog *>();
            QFont chosen = dialog->currentFont();
            chosen.setPointSize(font.size);
            dialog->setCurrentFont(chosen);
            dialog->accept();
            QCOMPARE(TWPreferences::fontSize((preferences()->*font.font)()), font.size);
            QCOMPARE(font.shownIn->font().pointSize(), font.size);
        }
        QCOMPARE(control<QComboBox>("editorFontSizeMenu")->currentText(), QStringLiteral("17"));

        const auto chooseColor = [](const char *well, const QColor &color) {
            control<TWColorWell>(well)->click();
            auto *dialog = control<TWColorWell>(well)->findChild<QColorDialog *>();
            dialog->setCurrentColor(color);
            dialog->accept();
        };
        chooseColor("editorTextColorWell", QColor(0, 0, 200));
        QCOMPARE(preferences()->editorTextColor(), QColor(0, 0, 200));
        QCOMPARE(html->palette().color(QPalette::Text), QColor(0, 0, 200));
        chooseColor("editorBGColorWell", QColor(255, 0, 0));
        control<QSlider>("editorOpacitySlider")->setValue(50);
        QCOMPARE(preferences()->editorBGColorWithAlpha(), QColor::fromRgbF(1.0f, 0.0f, 0.0f, 0.5f));
        QCOMPARE(html->palette().color(QPalette::Base).rgb(), QColor(Qt::red).rgb());

        for (const auto &[menu, index] : {std::pair{"textEncodingMenu", 3}, std::pair{"returnCodeMenu", 2}}) {
            control<QComboBox>(menu)->setCurrentIndex(index);
            Q_EMIT control<QComboBox>(menu)->activated(index);
        }
        QCOMPARE(preferences()->textEncoding(), 3);
        QCOMPARE(preferences()->returnCode(), 2);

        // Each step: the two flags the editor holds, and whether the suspend time can be typed.
        auto *render = control<QCheckBox>("suspendRenderButton"), *coloring = control<QCheckBox>("suspendTagColoringButton");
        QStringList steps;
        for (QCheckBox *box : {render, coloring, render, coloring}) {
            box->click();
            steps << QStringLiteral("%1%2%3").arg(TWEditorTextView::renderSuspendFlag()).arg(TWEditorTextView::tagColoringSuspendFlag())
                         .arg(control<QLineEdit>("suspendTimeField")->isEnabled());
        }
        QCOMPARE(steps, (QStringList{"011", "000", "101", "111"}));
    }

    // Closing keeps texts typed without Return, as typed, and saves the preferences and the
    // frame to the disk.
    void closingKeepsWhatWasTyped()
    {
        panel()->runPreferencesPanel();
        for (const char *field : {"htmlCheckerPathField", "defaultBaseURLField"}) {
            control<QLineEdit>(field)->clear();
            QTest::keyClicks(control<QLineEdit>(field), QStringLiteral("/opt/lint not a url"));
        }
        panel()->close();
        const QVariantMap stored
            = TWXMLPropertyList::read(TWTestEnvironment::readFile(TWUserDefaults::standardUserDefaults()->fileName())).value_or(QVariant()).toMap();
        QCOMPARE(stored.value(QStringLiteral("HTML Checker Path")).toString(), QStringLiteral("/opt/lint not a url"));
        QCOMPARE(stored.value(QStringLiteral("Default Base URL")).toString(), QStringLiteral("/opt/lint not a url"));
        QVERIFY(stored.contains(QStringLiteral("Window Frame Preferences Panel")));
    }
};

QTEST_MAIN(tst_TWPreferencesPanelController)
#include "tst_TWPreferencesPanelController.moc"
