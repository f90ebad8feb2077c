// The tag library window through its table and its buttons, offscreen: which cells each kind of
// record lets the user change, the buttons' selection rules, dragging rows, library files
// imported and exported, and the columns' layout kept. The edit sheet is in its own test.
#include "taglib/TWTagLibraryWindowController.h"

#include "TWTestEnvironment.h"
#include "editor/TWTextFile.h"
#include "platform/TWBeep.h"
#include "platform/TWMessageBar.h"
#include "platform/TWPanels.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWHTMLTagLibrary.h"
#include "taglib/TWHTMLTagLibraryTableModel.h"
#include "taglib/TWHTMLTagLibraryTableView.h"

#include <QHeaderView>
#include <QMimeData>
#include <QPushButton>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

TWHTMLTagLibrary *library() { return TWHTMLTagLibrary::sharedTagLibrary(); }
TWTagLibraryWindowController *window() { return TWTagLibraryWindowController::sharedTagLibraryController(); }
TWHTMLTagLibraryTableView *table() { return window()->tableView(); }
QAbstractItemModel *model() { return table()->model(); }
void press(const QString &button) { window()->findChild<QPushButton *>(button + u"Button"_s)->click(); }

// The records in order, by element name ("-" for none), "*" marking a shortcut key.
QString listed()
{
    QStringList list;
    for (const auto &tag : library()->tagList())
        list << (tag->tag().isEmpty() ? u"-"_s : tag->tag()) + (tag->hasShortcutKey() ? "*" : "");
    return list.join(u' ');
}

// A record (by row), what its cells allow, a value typed into one of them, what it then shows, the beeps.
struct Cell { int row; QString allowed, identifier; QVariant value; QString shown; int beeps = 0; };
// A button pressed with rows selected (by number): the records after, the rows then selected, the beeps.
struct Press { QString button, selected, after, selectedAfter; int beeps = 0; };
// The bytes of an imported file: the records then, and part of the message (none: imported).
struct Import { QByteArray bytes; int records = 8; QString said = {}; };

} // namespace

class tst_TWTagLibraryWindowController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The built-in eight: comment, generic tag, quotation, b, i (paired), br, img (single), a;
    // b and i with keys, img out of the menus.
    void init()
    {
        QVERIFY(library()->loadFromPropertyListDictionary(u"()"_s));
        library()->setBuiltInTags();
        library()->tagAtIndex(3)->setShortcutKey(u"b"_s);
        library()->tagAtIndex(4)->setShortcutKey(u"i"_s);
        library()->tagAtIndex(6)->setIncludeInMenu(false);
        window()->openTagLibraryWindow();
        TWResetBeepCount();
    }

    // What each cell of a record allows, per column (type, menu, colour check box, tag, name,
    // first tag, second tag, sample, key, menu title): w changeable, e shown enabled only, -
    // disabled. What a cell then shows of a value typed into it: a disabled cell takes nothing;
    // every change, a refused one too, brings the menus and the colours up to date at once.
    void cellsFollowTheKindOfRecord_data()
    {
        QTest::addColumn<Cell>("cell");
        const QString paired = u"wwwwwwweww"_s, longTag = u"b\t\n"_s + QString(5000, u'n');
        QTest::newRow("comment, tag disabled") << Cell{0, u"-ww-we-eww"_s, u"tag"_s, u"b"_s, u"!--"_s};
        QTest::newRow("generic tag") << Cell{1, u"-w--we-eww"_s, u"name"_s, u"Any"_s, u"Any"_s};
        QTest::newRow("quotation, type disabled") << Cell{2, u"-w--we-eww"_s, u"tagNum"_s, 0, u"2"_s};
        QTest::newRow("paired, free key, first character") << Cell{3, paired, u"sKey"_s, u"zq"_s, u"z"_s};
        QTest::newRow("paired, key of another record") << Cell{3, paired, u"sKey"_s, u"i"_s, u"b"_s, 1};
        QTest::newRow("paired, a tab, a line feed, 5 000 characters") << Cell{3, paired, u"tag"_s, longTag, longTag};
        QTest::newRow("single, made paired") << Cell{5, u"wwwwww-eww"_s, u"tagNum"_s, 1, u"2"_s};
        QTest::newRow("single, not in the menus") << Cell{6, u"wwwwww-ew-"_s, u"secondTag"_s, u"</img>"_s, QString()};
    }

    void cellsFollowTheKindOfRecord()
    {
        QFETCH(Cell, cell);
        QString allowed;
        for (int column = 0; column < model()->columnCount(); ++column) {
            const Qt::ItemFlags flags = model()->index(cell.row, column).flags();
            allowed += !(flags & Qt::ItemIsEnabled) ? u'-' : flags & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable) ? u'w' : u'e';
        }
        QCOMPARE(allowed, cell.allowed);
        const int generation = library()->colorsGeneration();
        const int column = int(TWHTMLTagLibraryTableModel::columnIdentifiers().indexOf(cell.identifier));
        const QModelIndex index = model()->index(cell.row, column);
        model()->setData(index, cell.value, Qt::EditRole);
        QCOMPARE(index.data().toString(), cell.shown);
        QCOMPARE(TWBeepCount(), cell.beeps);
        QCOMPARE(library()->colorsGeneration() != generation, allowed[column] == u'w');
    }

    // Copies, without the key, right after their records and selected; the three special records
    // refuse, one beep each; no selection beeps, and so do two rows to edit.
    void buttonsWorkOnTheSelection_data()
    {
        QTest::addColumn<Press>("press");
        const QString eight = u"!-- - - b* i* br img a"_s;
        QTest::newRow("duplicate 3 and 5") << Press{u"duplicate"_s, u"35"_s, u"!-- - - b* b i* br br img a"_s, u"47"_s};
        QTest::newRow("duplicate the comment and 4") << Press{u"duplicate"_s, u"04"_s, u"!-- - - b* i* i br img a"_s, u"5"_s, 1};
        QTest::newRow("duplicate the last") << Press{u"duplicate"_s, u"7"_s, eight + u" a"_s, u"8"_s};
        QTest::newRow("delete every row") << Press{u"delete"_s, u"01234567"_s, u"!-- - -"_s, {}, 3};
        QTest::newRow("new") << Press{u"new"_s, u"2"_s, eight + u' ' + TWHTMLTag().tag(), u"8"_s};
        QTest::newRow("duplicate nothing") << Press{u"duplicate"_s, {}, eight, {}, 1};
        QTest::newRow("delete nothing") << Press{u"delete"_s, {}, eight, {}, 1};
        QTest::newRow("edit two") << Press{u"edit"_s, u"34"_s, eight, u"34"_s, 1};
    }

    void buttonsWorkOnTheSelection()
    {
        QFETCH(Press, press);
        QItemSelectionModel *selection = table()->selectionModel();
        selection->clear();
        for (const QChar row : press.selected)
            selection->select(model()->index(row.digitValue(), 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        ::press(press.button);
        QCOMPARE(listed(), press.after);
        QCOMPARE(table()->verticalHeader()->count(), library()->numberOfTags());
        QString rows;
        for (const QModelIndex &index : selection->selectedRows())
            rows += QString::number(index.row());
        std::sort(rows.begin(), rows.end());
        QCOMPARE(rows, press.selectedAfter);
        QCOMPARE(TWBeepCount(), press.beeps);
    }

    // Rows dragged above a row below them arrive there together, in their order; the menus are
    // not rebuilt.
    void draggedRowsMoveTogether()
    {
        const int generation = library()->colorsGeneration();
        std::unique_ptr<QMimeData> data(model()->mimeData({model()->index(5, 0), model()->index(3, 4), model()->index(5, 2)}));
        QVERIFY(model()->dropMimeData(data.get(), Qt::MoveAction, 7, 0, QModelIndex()));
        QCOMPARE(listed(), u"!-- - - i* img b* br a"_s);
        QCOMPARE(library()->colorsGeneration(), generation);
    }

    // A file that is not a tag library leaves the library as it was and says why; one that is
    // replaces it. What is exported comes back.
    void libraryFiles_data()
    {
        QTest::addColumn<Import>("file");
        QTest::newRow("not a property list") << Import{"<p>a page</p>", 8, u"line 1"_s};
        QTest::newRow("a dictionary, not a list") << Import{"{ heading = h1; }", 8, u"not a list"_s};
        QTest::newRow("a record that cannot be read") << Import{"(\"{type = 2;\", 5)", 8, u"record 1"_s};
        QTest::newRow("a record that is a list") << Import{"(\"{type = 2;}\", \"(1, 2)\")", 8, u"record 2"_s};
        QTest::newRow("a record that is no text") << Import{"((a, b))", 8, u"record 1"_s};
        QTest::newRow("a key twice, out of the menus")
            << Import{"(\"{\\\"shortcut key\\\" = q;}\", \"{\\\"shortcut key\\\" = q; \\\"include in menu\\\" = NO;}\")", 2};
        QTest::newRow("Shift_JIS") << Import{TWTextFile::encode(u"(\"{name = \\\"日本語\\\";}\")"_s, TWTextEncoding::shiftJIS), 1};
    }

    void libraryFiles()
    {
        QFETCH(Import, file);
        const QString path = TWTestEnvironment::home() + u"/library.tlib"_s;
        QVERIFY(TWTestEnvironment::writeFile(path, file.bytes));
        TWPanels::setOpenPanelHandler([&path](const QStringList &types) { return types.contains(u"tlib") ? QStringList{path} : QStringList(); });
        press(u"import"_s);
        QCOMPARE(library()->numberOfTags(), file.records);
        QCOMPARE(table()->verticalHeader()->count(), file.records);
        QCOMPARE(TWBeepCount(), int(!file.said.isEmpty()));
        const QString message = window()->findChild<TWMessageBar *>()->text();
        QVERIFY2(message.contains(file.said) && message.contains("library.tlib"_L1) != file.said.isEmpty(), qPrintable(message));

        // Exported over the file, changed, imported: the library is back.
        TWPanels::setSavePanelHandler([&path](const QString &, const QStringList &) { return std::optional(path); });
        press(u"export"_s);
        const QString text = library()->propertyListString();
        library()->deleteTagAtIndex(library()->numberOfTags() - 1);
        press(u"import"_s);
        QCOMPARE(library()->propertyListString(), text);
    }

    // The columns' order and widths come back in a new window, also when the window was not
    // closed before the quit.
    void columnLayoutIsKept()
    {
        table()->horizontalHeader()->moveSection(0, 5);
        table()->horizontalHeader()->resizeSection(4, 222);
        delete window();
        QCOMPARE(table()->horizontalHeader()->visualIndex(0), 5);
        QCOMPARE(table()->horizontalHeader()->sectionSize(4), 222);
    }
};

QTEST_MAIN(tst_TWTagLibraryWindowController)
#include "tst_TWTagLibraryWindowController.moc"
