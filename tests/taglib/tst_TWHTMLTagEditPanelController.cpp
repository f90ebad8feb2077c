// The tag edit sheet, opened from the library window: the controls show the record, enabled as
// the kind of record and the user's changes allow, and the record takes what the sheet holds
// only when it ends with OK.
#include "taglib/TWHTMLTagEditPanelController.h"

#include "platform/TWBeep.h"
#include "platform/TWColorWell.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWHTMLTagLibrary.h"
#include "taglib/TWHTMLTagLibraryTableView.h"
#include "taglib/TWTagLibraryWindowController.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMetaProperty>
#include <QPushButton>
#include <QTest>

namespace {
// Built-in rows: a paired record without a colour of its own, holding a key, and one out of the
// menus.
constexpr int boldRow = 3;
constexpr int imageRow = 6;
const QString ownKey = QStringLiteral("k");
const QString takenKey = QStringLiteral("t"); // the italic record's
// The controls that show a record's fields, in the order of contents().
const QStringList controls = {"typeButton", "tagField", "nameField", "firstTagField", "secondTagField",
    "specificColorButton", "specificColorWell", "shortcutKeyField", "menuButton", "menuTitleField"};

QVariantList contents(const TWHTMLTag &tag)
{
    return {tag.type(), tag.tag(), tag.name(), tag.firstTag(), tag.secondTag(), tag.useSpecificColor(),
            tag.tagColor(), tag.shortcutKey(), tag.includeInMenu(), tag.title()};
}
} // namespace

class tst_TWHTMLTagEditPanelController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TWHTMLTagLibrary *library = TWHTMLTagLibrary::sharedTagLibrary();
        library->loadFromPropertyListDictionary(QStringLiteral("()"));
        library->setBuiltInTags();
        library->tagAtIndex(boldRow)->setShortcutKey(ownKey);
        library->tagAtIndex(boldRow + 1)->setShortcutKey(takenKey);
        library->tagAtIndex(imageRow)->setIncludeInMenu(false);
        TWResetBeepCount();
    }

    void sheetChangesTheRecordOnlyWithOK_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("control"); // the one the user changes
        QTest::addColumn<QString>("typed"); // a space clicks a button
        QTest::addColumn<QVariant>("held"); // what the sheet then holds for it
        QTest::addColumn<QString>("ending"); // "ok", "cancel" or "escape"
        QTest::addColumn<int>("beeps");
        QTest::addColumn<QString>("enabled"); // per control at the end: w enabled, - disabled
        const QString key = QStringLiteral("shortcutKeyField"), name = QStringLiteral("nameField");
        const QString well = QStringLiteral("specificColorWell"), own = QStringLiteral("specificColorButton");
        const QColor blue(0x336699);
        QTest::newRow("comment renamed") << 0 << name << "Remark" << QVariant("Remark") << "ok" << 0 << "--w--wwwww";
        QTest::newRow("generic, cancel") << 1 << name << "Any" << QVariant("Any") << "cancel" << 0 << "--w---wwww";
        QTest::newRow("quotation, escape") << 2 << name << "Say" << QVariant("Say") << "escape" << 0 << "--w----www";
        QTest::newRow("own colour on") << boldRow << own << " " << QVariant(true) << "ok" << 0 << "wwwwwwwwww";
        QTest::newRow("made single") << boldRow << "typeButton" << "S" << QVariant(TWHTMLTag::singleType) << "ok" << 0 << "wwww-w-www";
        QTest::newRow("taken key, escape") << boldRow << key << takenKey << QVariant(ownKey) << "escape" << 1 << "wwwwww-www";
        QTest::newRow("menu off, key in field") << boldRow << "menuButton" << " " << QVariant(false) << "ok" << 0 << "wwwwww--w-";
        QTest::newRow("single, free key, first character") << 5 << key << "zq" << QVariant("z") << "ok" << 0 << "wwww-wwwww";
        QTest::newRow("out of the menus, recoloured") << imageRow << well << " " << QVariant(blue) << "ok" << 0 << "wwww-ww-w-";
    }

    void sheetChangesTheRecordOnlyWithOK()
    {
        QFETCH(int, row);
        QFETCH(QString, control);
        QFETCH(QString, typed);
        QFETCH(QVariant, held);
        QFETCH(QString, ending);
        TWTagLibraryWindowController *window = TWTagLibraryWindowController::sharedTagLibraryController();
        window->tableView()->selectRow(row);
        window->editButtonPressed();
        TWHTMLTagEditPanelController *panel = window->editPanelController();
        QVERIFY(panel->isVisible());
        const TWHTMLTag *record = TWHTMLTagLibrary::sharedTagLibrary()->tagAtIndex(row);
        const QVariantList before = contents(*record);
        QWidget *widget = panel->findChild<QWidget *>(control);
        if (auto *field = qobject_cast<QLineEdit *>(widget))
            field->clear();
        QTest::keyClicks(widget, typed);
        if (auto *colors = panel->findChild<QColorDialog *>(); colors && colors->isVisible()) { // the well opened it
            colors->setCurrentColor(held.value<QColor>());
            colors->accept();
        }
        // The sheet works on a copy.
        QCOMPARE(contents(*record), before);
        if (ending == u"escape")
            QTest::keyClick(panel, Qt::Key_Escape);
        else
            panel->findChild<QDialogButtonBox *>()->button(ending == u"ok" ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel)->click();

        QVERIFY(!panel->isVisible() && !panel->editedTag());
        QVariantList sheet = before;
        sheet[controls.indexOf(control)] = held;
        QCOMPARE(contents(*record), ending == u"ok" ? sheet : before);
        QTEST(TWBeepCount(), "beeps");
        // Each control shows what the sheet holds (the pop-up as a type code).
        QString enabled;
        for (qsizetype i = 0; i < controls.size(); ++i) {
            QWidget *shown = panel->findChild<QWidget *>(controls[i]);
            QVariant value = shown->metaObject()->userProperty().read(shown);
            if (auto *popUp = qobject_cast<QComboBox *>(shown))
                value = popUp->currentIndex() + TWHTMLTag::singleType;
            if (auto *well = qobject_cast<TWColorWell *>(shown))
                value = well->color();
            QCOMPARE(std::pair(controls[i], value), std::pair(controls[i], sheet[i]));
            enabled += shown->isEnabled() ? u'w' : u'-';
        }
        QTEST(enabled, "enabled");
    }
};

QTEST_MAIN(tst_TWHTMLTagEditPanelController)
#include "tst_TWHTMLTagEditPanelController.moc"
