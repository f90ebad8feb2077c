// The tag library window through its table and its buttons, offscreen: which cells can be
// changed, the buttons' selection rules, dragging rows, the edit sheet's OK and Cancel, and
// library files imported and exported.
#include "taglib/TWTagLibraryWindowController.h"

#include "TWTestEnvironment.h"
#include "app/TWAppDelegate.h"
#include "editor/TWTextFile.h"
#include "platform/TWBeep.h"
#include "platform/TWLocalization.h"
#include "platform/TWMessageBar.h"
#include "platform/TWTextKeys.h"
#include "platform/TWOldStylePropertyList.h"
#include "platform/TWPanels.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWHTMLTagEditPanelController.h"
#include "taglib/TWHTMLTagLibrary.h"
#include "taglib/TWHTMLTagLibraryTableModel.h"
#include "taglib/TWHTMLTagLibraryTableView.h"

#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QTemporaryDir>
#include <QTest>

namespace {

TWHTMLTagLibrary *library()
{
    return TWHTMLTagLibrary::sharedTagLibrary();
}

TWTagLibraryWindowController *window()
{
    return TWTagLibraryWindowController::sharedTagLibraryController();
}

QAbstractItemModel *model()
{
    return window()->tableView()->model();
}

// A library text of eight records: comment, generic tag, quotation, then b and i (paired), br
// and img (single) and a (paired), each in the menus under its own name.
QString eightRecords()
{
    QVariantList records;
    const auto add = [&records](int type, const QString &name) {
        const QVariantMap record{{QStringLiteral("type"), QString::number(type)}, {QStringLiteral("name"), name},
                                 {QStringLiteral("tag"), name}, {QStringLiteral("include in menu"), QStringLiteral("YES")},
                                 {QStringLiteral("menu title"), name},
                                 {QStringLiteral("tag color"), QByteArray::fromHex("0000ff")}};
        records << TWOldStylePropertyList::write(record).value_or(QString());
    };
    add(4, QStringLiteral("comment"));
    add(3, QStringLiteral("generic"));
    add(5, QStringLiteral("quotation"));
    for (const char *paired : {"b", "i"})
        add(TWHTMLTag::pairedType, QLatin1String(paired));
    for (const char *single : {"br", "img"})
        add(TWHTMLTag::singleType, QLatin1String(single));
    add(TWHTMLTag::pairedType, QStringLiteral("a"));
    return TWOldStylePropertyList::write(records).value_or(QString());
}

QStringList names()
{
    QStringList list;
    for (const auto &tag : library()->tagList())
        list << tag->name();
    return list;
}

QString column(const char *identifier)
{
    return QLatin1String(identifier);
}

QModelIndex cell(int row, const char *identifier)
{
    return model()->index(row, int(TWHTMLTagLibraryTableModel::columnIdentifiers().indexOf(column(identifier))));
}

void select(const QList<int> &rows)
{
    window()->tableView()->clearSelection();
    for (const int row : rows)
        window()->tableView()->selectionModel()->select(model()->index(row, 0),
                                                         QItemSelectionModel::Select | QItemSelectionModel::Rows);
}

QList<int> selectedRows()
{
    QList<int> rows;
    for (const QModelIndex &index : window()->tableView()->selectionModel()->selectedRows())
        rows << index.row();
    std::sort(rows.begin(), rows.end());
    return rows;
}

} // namespace

class tst_TWTagLibraryWindowController : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir dir;

private Q_SLOTS:
    void initTestCase()
    {
        TWAppDelegate::sharedAppDelegate();
    }

    void init()
    {
        QVERIFY(library()->loadFromPropertyListDictionary(eightRecords()));
        library()->validateTagListChange();
        window()->openTagLibraryWindow();
        TWResetBeepCount();
    }

    // Per column (type, menu, colour check box, tag, name, first tag, second tag, sample, key,
    // menu title): w changeable, e shown enabled only, - disabled.
    void cellsFollowTheKindOfRecord_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("inMenu");
        QTest::addColumn<QString>("cells");
        QTest::newRow("comment") << 0 << true << "-ww-we-eww";
        QTest::newRow("generic tag") << 1 << true << "-w--we-eww";
        QTest::newRow("quotation") << 2 << true << "-w--we-eww";
        QTest::newRow("paired") << 3 << true << "wwwwwwweww";
        QTest::newRow("single") << 5 << true << "wwwwww-eww";
        QTest::newRow("not in the menus") << 3 << false << "wwwwwwwew-";
    }

    void cellsFollowTheKindOfRecord()
    {
        QFETCH(int, row);
        QFETCH(bool, inMenu);
        QFETCH(QString, cells);
        library()->tagAtIndex(row)->setIncludeInMenu(inMenu);
        QString seen;
        for (int column = 0; column < model()->columnCount(); ++column) {
            const Qt::ItemFlags flags = model()->index(row, column).flags();
            seen += !(flags & Qt::ItemIsEnabled)                                ? u'-'
                    : flags & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable) ? u'w'
                                                                               : u'e';
        }
        QCOMPARE(seen, cells);
    }

    // What a cell takes, and that the menus follow every change at once.
    void cellsStoreBack_data()
    {
        QTest::addColumn<QString>("identifier");
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("shown");
        QTest::addColumn<int>("beeps");
        QTest::newRow("free key, first character") << "sKey" << QVariant("zq") << "z" << 0;
        QTest::newRow("key of another record") << "sKey" << QVariant("i") << "b" << 1;
        QTest::newRow("menu title") << "menuTitle" << QVariant("Bold Face") << "Bold Face" << 0;
        QTest::newRow("a tab and a line feed") << "tag" << QVariant("b\t\nx") << "b\t\nx" << 0;
        QTest::newRow("5 000 characters") << "name" << QVariant(QString(5000, u'n')) << QString(5000, u'n') << 0;
        QTest::newRow("type single") << "tagNum" << QVariant(0) << "1" << 0;
    }

    void cellsStoreBack()
    {
        QFETCH(QString, identifier);
        QFETCH(QVariant, value);
        QFETCH(QString, shown);
        QFETCH(int, beeps);
        TWHTMLTag *bold = library()->tagAtIndex(3);
        bold->setShortcutKey(QStringLiteral("b"));
        library()->tagAtIndex(4)->setShortcutKey(QStringLiteral("i"));
        const int generation = library()->colorsGeneration();
        const QModelIndex index = cell(3, identifier.toLatin1().constData());
        model()->setData(index, value, Qt::EditRole);
        QCOMPARE(index.data().toString(), shown);
        QCOMPARE(TWBeepCount(), beeps);
        QVERIFY(library()->colorsGeneration() != generation);
        QMenu *menu = bold->type() == TWHTMLTag::singleType ? TWAppDelegate::sharedAppDelegate()->insertSingleTagMenu()
                                                           : TWAppDelegate::sharedAppDelegate()->insertDoubleTagMenu();
        QStringList titles;
        for (const QAction *action : menu->actions())
            titles << action->text();
        QVERIFY2(titles.contains(bold->title()), qPrintable(titles.join(u',')));
        // The second tag of a single tag is closed to changes.
        QCOMPARE(bool(cell(3, "secondTag").flags() & Qt::ItemIsEnabled), bold->type() != TWHTMLTag::singleType);
    }

    // The buttons and the selection: copies right after their records and selected; the three
    // special records refuse, one beep each; no selection beeps.
    void buttonsWorkOnTheSelection_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QList<int>>("selected");
        QTest::addColumn<QStringList>("after");
        QTest::addColumn<QList<int>>("selectedAfter");
        QTest::addColumn<int>("beeps");
        const QStringList eight = {"comment", "generic", "quotation", "b", "i", "br", "img", "a"};
        QTest::newRow("duplicate 3 and 5") << "duplicate" << QList<int>{3, 5}
                                           << QStringList{"comment", "generic", "quotation", "b", "b", "i", "br", "br", "img", "a"}
                                           << QList<int>{4, 7} << 0;
        QTest::newRow("duplicate the comment and 4")
            << "duplicate" << QList<int>{0, 4}
            << QStringList{"comment", "generic", "quotation", "b", "i", "i", "br", "img", "a"} << QList<int>{5} << 1;
        QTest::newRow("delete every row") << "delete" << QList<int>{0, 1, 2, 3, 4, 5, 6, 7}
                                          << QStringList{"comment", "generic", "quotation"} << QList<int>() << 3;
        QTest::newRow("new") << "new" << QList<int>{2} << eight + QStringList{TWLocalizedString(TWTextKey::tagName)}
                             << QList<int>{8} << 0;
        QTest::newRow("duplicate nothing") << "duplicate" << QList<int>() << eight << QList<int>() << 1;
        QTest::newRow("delete nothing") << "delete" << QList<int>() << eight << QList<int>() << 1;
        QTest::newRow("edit two") << "edit" << QList<int>{3, 4} << eight << QList<int>{3, 4} << 1;
    }

    void buttonsWorkOnTheSelection()
    {
        QFETCH(QString, button);
        QFETCH(QList<int>, selected);
        QFETCH(QStringList, after);
        QFETCH(QList<int>, selectedAfter);
        QFETCH(int, beeps);
        select(selected);
        if (button == QLatin1String("duplicate"))
            window()->duplicateButtonPressed();
        else if (button == QLatin1String("delete"))
            window()->deleteButtonPressed();
        else if (button == QLatin1String("edit"))
            window()->editButtonPressed();
        else
            window()->newButtonPressed();
        QCOMPARE(names(), after);
        QCOMPARE(model()->rowCount(), after.size());
        QCOMPARE(selectedRows(), selectedAfter);
        QCOMPARE(TWBeepCount(), beeps);
    }

    // Rows dragged onto the top arrive there in their order; the menus are not rebuilt.
    void draggedRowsMoveTogether()
    {
        const int generation = library()->colorsGeneration();
        const QStringList before = names();
        QMimeData *data = model()->mimeData({model()->index(3, 0), model()->index(5, 4), model()->index(3, 2)});
        QVERIFY(model()->dropMimeData(data, Qt::MoveAction, 0, 0, QModelIndex()));
        delete data;
        QCOMPARE(names(), (QStringList{before[3], before[5], before[0], before[1], before[2], before[4], before[6], before[7]}));
        QCOMPARE(library()->colorsGeneration(), generation);
    }

    // The sheet changes the record only with OK; a special record keeps its fixed parts.
    void sheetOKAndCancel_data()
    {
        QTest::addColumn<bool>("ok");
        QTest::newRow("OK") << true;
        QTest::newRow("Cancel") << false;
    }

    void sheetOKAndCancel()
    {
        QFETCH(bool, ok);
        select({0});
        window()->editButtonPressed();
        TWHTMLTagEditPanelController *sheet = window()->editPanelController();
        QVERIFY(sheet->isVisible());
        const TWHTMLTag *comment = library()->tagAtIndex(0);
        const QString name = comment->name(), first = comment->firstTag();
        sheet->findChild<QLineEdit *>(QStringLiteral("nameField"))->setText(QStringLiteral("remark"));
        sheet->chooseColor(QColor(255, 128, 0));
        ok ? sheet->OKButton() : sheet->cancelButton();
        QCOMPARE(comment->name(), ok ? QStringLiteral("remark") : name);
        QCOMPARE(comment->tagColor() == QColor(255, 128, 0), ok);
        QCOMPARE(comment->firstTag(), first);
        QVERIFY(!sheet->editedTag());
    }

    // A file that is not a tag library leaves the library as it was and says why; one that is
    // replaces it. What is exported comes back.
    void libraryFiles_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("records");
        QTest::addColumn<QString>("said");
        QTest::newRow("not a property list") << QByteArray("<p>a page</p>") << 8 << "line 1";
        QTest::newRow("empty") << QByteArray() << 8 << "not imported";
        QTest::newRow("a record that is no record") << QByteArray("(\"{type = 2;\", 5)") << 8 << "record";
        QTest::newRow("keys repeated, special named twice")
            << QByteArray("(\"{type = 4; name = c1;}\", \"{type = 4; name = c2;}\", \"{\\\"shortcut key\\\" = q;}\","
                          " \"{\\\"shortcut key\\\" = q;}\")")
            << 3 << QString();
        QTest::newRow("Shift_JIS") << TWTextFile::encode(QStringLiteral("(\"{name = \\\"日本語\\\";}\")"), TWTextEncoding::shiftJIS)
                                   << 1 << QString();
        QByteArray many("(");
        for (int i = 0; i < 10000; ++i)
            many += "\"{name = n" + QByteArray::number(i) + ";}\",";
        many += ")";
        QTest::newRow("10 000 records") << many << 10000 << QString();
    }

    void libraryFiles()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, records);
        QFETCH(QString, said);
        const QString path = dir.filePath(QStringLiteral("import.tlib"));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
        file.close();
        TWPanels::setOpenPanelHandler([&path](const QStringList &types) {
            return types == QStringList{QStringLiteral("tlib")} ? QStringList{path} : QStringList();
        });
        window()->importTagLibrary();
        QCOMPARE(library()->numberOfTags(), records);
        QCOMPARE(model()->rowCount(), records);
        QCOMPARE(TWBeepCount(), said.isEmpty() ? 0 : 1);
        const QString message = window()->findChild<TWMessageBar *>()->text();
        QVERIFY2(said.isEmpty() ? !message.contains(QLatin1String("import.tlib"))
                                : message.contains(QLatin1String("import.tlib")) && message.contains(said),
                 qPrintable(message));

        // Exported, changed, imported: the library is back.
        const QString exported = dir.filePath(QStringLiteral("export.tlib"));
        TWPanels::setSavePanelHandler([&exported](const QString &, const QStringList &) { return std::optional(exported); });
        window()->exportTagLibrary();
        const QString text = library()->propertyListString();
        library()->deleteTagAtIndex(library()->numberOfTags() - 1);
        TWPanels::setOpenPanelHandler([&exported](const QStringList &) { return QStringList{exported}; });
        window()->importTagLibrary();
        QCOMPARE(library()->propertyListString(), text);
    }

    // The columns' order and widths come back in a new window, also when the window was not
    // closed before the quit.
    void columnLayoutIsKept()
    {
        QHeaderView *header = window()->tableView()->horizontalHeader();
        header->moveSection(0, 5);
        header->resizeSection(4, 222);
        delete window();
        header = window()->tableView()->horizontalHeader();
        QCOMPARE(header->visualIndex(0), 5);
        QCOMPARE(header->sectionSize(4), 222);
    }
};

QTEST_MAIN(tst_TWTagLibraryWindowController)
#include "tst_TWTagLibraryWindowController.moc"
