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

using namespace Qt::StringLiterals;

namespace {
// Built-in rows: a paired record without a colour of its own, holding a key, and one out of the
// menus.
constexpr int boldRow = 3;
constexpr int imageRow = 6;
const QString ownKey = u"k"_s, takenKey = u"t"_s; // the latter the italic record's
// The controls that show a record's fields, in the order of contents().
enum Control { Type, Tag, Name, FirstTag, SecondTag, OwnColor, Well, Key, Menu, MenuTitle };
const QStringList controls = {"typeButton", "tagField", "nameField", "firstTagField", "secondTagField",
    "specificColorButton", "specificColorWell", "shortcutKeyField", "menuButton", "menuTitleField"};

QVariantList contents(const TWHTMLTag &tag)
{
    return {tag.type(), tag.tag(), tag.name(), tag.firstTag(), tag.secondTag(), tag.useSpecificColor(),
            tag.tagColor(), tag.shortcutKey(), tag.includeInMenu(), tag.title()};
}

// A row of the library, the control the user changes and what is typed into it (a space clicks a
// button), what the sheet then holds for it, how the sheet ends, and per control at the end
// whether it is enabled (w) or not (-); the beeps.
enum class Ending { OK, Cancel, Escape };
struct Edit { int row; Control control; QString typed; QVariant held; Ending ending; QString enabled; int beeps = 0; };
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
        QTest::addColumn<Edit>("edit");
        using enum Ending;
        QTest::newRow("comment renamed") << Edit{0, Name, "Remark", "Remark", OK, "--w--wwwww"};
        QTest::newRow("generic, cancel") << Edit{1, Name, "Any", "Any", Cancel, "--w---wwww"};
        QTest::newRow("quotation, escape") << Edit{2, Name, "Say", "Say", Escape, "--w----www"};
        QTest::newRow("own colour on") << Edit{boldRow, OwnColor, " ", true, OK, "wwwwwwwwww"};
        QTest::newRow("made single") << Edit{boldRow, Type, "S", TWHTMLTag::singleType, OK, "wwww-w-www"};
        QTest::newRow("taken key, escape") << Edit{boldRow, Key, takenKey, ownKey, Escape, "wwwwww-www", 1};
        QTest::newRow("menu off, key in field") << Edit{boldRow, Menu, " ", false, OK, "wwwwww--w-"};
        QTest::newRow("single, free key, first character") << Edit{5, Key, "zq", "z", OK, "wwww-wwwww"};
        QTest::newRow("out of the menus, recoloured") << Edit{imageRow, Well, " ", QColor(0x336699), OK, "wwww-ww-w-"};
    }

    void sheetChangesTheRecordOnlyWithOK()
    {
        QFETCH(Edit, edit);
        TWTagLibraryWindowController *window = TWTagLibraryWindowController::sharedTagLibraryController();
        window->tableView()->selectRow(edit.row);
        window->editButtonPressed();
        TWHTMLTagEditPanelController *panel = window->editPanelController();
        QVERIFY(panel->isVisible());
        const TWHTMLTag *record = TWHTMLTagLibrary::sharedTagLibrary()->tagAtIndex(edit.row);
        const QVariantList before = contents(*record);
        QWidget *widget = panel->findChild<QWidget *>(controls[edit.control]);
        if (auto *field = qobject_cast<QLineEdit *>(widget))
            field->clear();
        QTest::keyClicks(widget, edit.typed);
        if (auto *colors = panel->findChild<QColorDialog *>(); colors && colors->isVisible()) { // the well opened it
            colors->setCurrentColor(edit.held.value<QColor>());
            colors->accept();
        }
        // The sheet works on a copy.
        QCOMPARE(contents(*record), before);
        if (edit.ending == Ending::Escape)
            QTest::keyClick(panel, Qt::Key_Escape);
        else
            panel->findChild<QDialogButtonBox *>()->button(edit.ending == Ending::OK ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel)->click();

        QVERIFY(!panel->isVisible() && !panel->editedTag());
        QVariantList sheet = before;
        sheet[edit.control] = edit.held;
        QCOMPARE(contents(*record), edit.ending == Ending::OK ? sheet : before);
        QCOMPARE(TWBeepCount(), edit.beeps);
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
        QCOMPARE(enabled, edit.enabled);
    }
};

QTEST_MAIN(tst_TWHTMLTagEditPanelController)
#include "tst_TWHTMLTagEditPanelController.moc"
