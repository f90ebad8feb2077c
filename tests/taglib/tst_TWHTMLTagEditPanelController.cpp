// The tag edit sheet: which controls a record lets the user change, and what the working copy
// holds when the sheet ends, the record itself left alone.
#include "taglib/TWHTMLTagEditPanelController.h"

#include "platform/TWBeep.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWHTMLTagLibrary.h"

#include <QColorDialog>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QMetaProperty>
#include <QPushButton>
#include <QTest>
#include <QToolButton>

namespace {
// Built-in rows: a paired record without a colour of its own, and one holding the key it may not take.
constexpr int boldRow = 3;
constexpr int italicRow = 4;
const QString ownKey = QStringLiteral("k");
const QString takenKey = QStringLiteral("t");
// The controls that show a record's fields, in the order of contents().
const QStringList controls = {"typeButton", "tagField", "nameField", "firstTagField", "secondTagField",
    "specificColorButton", "specificColorWell", "shortcutKeyField", "menuButton", "menuTitleField"};

QVariantList contents(const TWHTMLTag &tag)
{
    return {tag.type(), tag.tag(), tag.name(), tag.firstTag(), tag.secondTag(), tag.useSpecificColor(),
            tag.tagColor(), tag.shortcutKey(), tag.includeInMenu(), tag.title()};
}

// A control by name, what it shows (text, check mark, type code or colour) and whether it is enabled.
std::tuple<QString, QVariant, bool> shown(QWidget &panel, const QString &name)
{
    QWidget *widget = panel.findChild<QWidget *>(name);
    QVariant value = widget->metaObject()->userProperty().read(widget);
    if (auto *popUp = qobject_cast<QComboBox *>(widget))
        value = popUp->currentIndex() + TWHTMLTag::singleType;
    if (auto *well = qobject_cast<QToolButton *>(widget)) {
        const QImage swatch = well->icon().pixmap(well->iconSize()).toImage();
        value = swatch.pixelColor(swatch.rect().center());
    }
    return {name, value, widget->isEnabled()};
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
        library->tagAtIndex(italicRow)->setShortcutKey(takenKey);
        TWResetBeepCount();
    }

    void controlsFollowTheRecord_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("inMenu");
        QTest::addColumn<QStringList>("disabled");
        const QStringList fixed = {"tagField", "typeButton", "firstTagField", "secondTagField"};
        QTest::newRow("comment") << 0 << true << fixed;
        QTest::newRow("generic") << 1 << true << fixed + QStringList{"specificColorButton"};
        QTest::newRow("quotation") << 2 << true << fixed + QStringList{"specificColorButton", "specificColorWell"};
        QTest::newRow("single") << 5 << true << QStringList{"secondTagField"};
        QTest::newRow("paired") << 7 << true << QStringList{};
        QTest::newRow("not in menu")
            << boldRow << false << QStringList{"menuTitleField", "shortcutKeyField", "specificColorWell"};
        QTest::newRow("no own colour") << boldRow << true << QStringList{"specificColorWell"};
    }

    void controlsFollowTheRecord()
    {
        QFETCH(int, row);
        QFETCH(bool, inMenu);
        QFETCH(QStringList, disabled);
        const TWHTMLTagLibrary::Tag record = TWHTMLTagLibrary::sharedTagLibrary()->tagList().at(row);
        record->setIncludeInMenu(inMenu);
        TWHTMLTagEditPanelController panel;
        panel.setupPanelWithTag(record);
        const QVariantList filled = contents(*record);
        for (qsizetype i = 0; i < controls.size(); ++i)
            QCOMPARE(shown(panel, controls[i]), std::tuple(controls[i], filled[i], !disabled.contains(controls[i])));
        QVERIFY(panel.editedTag() != record.get());
        QCOMPARE(contents(*panel.editedTag()), filled);
    }

    void sheetEndsWithTheCopyEdited_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("control"); // the one the user changes
        QTest::addColumn<QString>("typed");
        QTest::addColumn<QVariant>("kept"); // what the copy then holds for it
        QTest::addColumn<QString>("ending"); // "ok", "cancel", "escape" or the window's "close" box
        QTest::addColumn<int>("beeps");
        const QString key = QStringLiteral("shortcutKeyField");
        QTest::newRow("comment renamed") << 0 << "nameField" << "Remark" << QVariant("Remark") << "ok" << 0;
        QTest::newRow("comment recoloured")
            << 0 << "specificColorWell" << "" << QVariant(QColor(0x336699)) << "ok" << 0;
        QTest::newRow("own colour on") << boldRow << "specificColorButton" << "" << QVariant(true) << "ok" << 0;
        QTest::newRow("made single") << boldRow << "typeButton" << "" << QVariant(TWHTMLTag::singleType) << "ok" << 0;
        QTest::newRow("free key, first character") << boldRow << key << "zq" << QVariant("z") << "ok" << 0;
        QTest::newRow("taken key") << boldRow << key << takenKey << QVariant(ownKey) << "ok" << 1;
        QTest::newRow("menu off, key in field") << boldRow << "menuButton" << "" << QVariant(false) << "ok" << 0;
        QTest::newRow("cancel") << boldRow << "nameField" << "Strong" << QVariant("Strong") << "cancel" << 0;
        QTest::newRow("escape") << boldRow << key << takenKey << QVariant(ownKey) << "escape" << 1;
        QTest::newRow("close box") << 0 << "nameField" << "Note" << QVariant("Note") << "close" << 0;
    }

    void sheetEndsWithTheCopyEdited()
    {
        QFETCH(int, row);
        QFETCH(QString, control);
        QFETCH(QString, typed);
        QFETCH(QVariant, kept);
        QFETCH(QString, ending);
        const TWHTMLTagLibrary::Tag record = TWHTMLTagLibrary::sharedTagLibrary()->tagList().at(row);
        const QVariantList before = contents(*record);
        TWHTMLTagEditPanelController panel;
        panel.setupPanelWithTag(record);
        panel.open();
        QWidget *widget = panel.findChild<QWidget *>(control);
        if (auto *field = qobject_cast<QLineEdit *>(widget)) {
            field->clear();
            QTest::keyClicks(field, typed);
        } else if (qobject_cast<QComboBox *>(widget)) {
            QTest::keyClick(widget, Qt::Key_Up);
        } else {
            qobject_cast<QAbstractButton *>(widget)->click();
        }
        if (auto *colors = panel.findChild<QColorDialog *>()) { // the well opened it
            QVERIFY(!colors->testOption(QColorDialog::ShowAlphaChannel));
            colors->setCurrentColor(kept.value<QColor>());
            colors->accept();
        }
        QCOMPARE(contents(*record), before);
        // Out of the menus the copy has no key; the field keeps it for the end of the sheet.
        const TWHTMLTag *copy = panel.editedTag();
        QCOMPARE(copy->shortcutKey(), copy->includeInMenu() ? record->shortcutKey() : QString());
        if (ending == u"escape")
            QTest::keyClick(&panel, Qt::Key_Escape);
        else if (ending == u"close")
            panel.close();
        else
            panel.findChild<QDialogButtonBox *>()
                ->button(ending == u"ok" ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel)
                ->click();

        QVERIFY(!panel.isVisible());
        QCOMPARE(panel.result(), ending == u"ok" ? QDialog::Accepted : QDialog::Rejected);
        QCOMPARE(contents(*record), before);
        QVariantList expected = before;
        expected[controls.indexOf(control)] = kept;
        QCOMPARE(contents(*copy), expected);
        QTEST(TWBeepCount(), "beeps");
        // The sheet shows what is kept, and what the changes leave open to change.
        for (qsizetype i = 0; i < controls.size(); ++i)
            QCOMPARE(std::get<1>(shown(panel, controls[i])), expected[i]);
        const bool paired = !record->isCommentTag() && copy->type() == TWHTMLTag::pairedType;
        QCOMPARE(std::get<2>(shown(panel, "secondTagField")), paired);
        QCOMPARE(std::get<2>(shown(panel, "menuTitleField")), copy->includeInMenu());
        QCOMPARE(std::get<2>(shown(panel, "shortcutKeyField")), copy->includeInMenu());
        QCOMPARE(std::get<2>(shown(panel, "specificColorWell")), copy->useSpecificColor());
    }
};

QTEST_MAIN(tst_TWHTMLTagEditPanelController)
#include "tst_TWHTMLTagEditPanelController.moc"
