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

namespace {

TWHTMLTagLibrary *library() { return TWHTMLTagLibrary::sharedTagLibrary(); }
TWTagLibraryWindowController *window() { return TWTagLibraryWindowController::sharedTagLibraryController(); }
QAbstractItemModel *model() { return window()->tableView()->model(); }
void press(const QString &button) { window()->findChild<QPushButton *>(button + QStringLiteral("Button"))->click(); }

// The records in order, by element name ("-" for none), "*" marking a shortcut key.
QString listed()
{
    QStringList list;
    for (const auto &tag : library()->tagList())
        list << (tag->tag().isEmpty() ? QStringLiteral("-") : tag->tag()) + (tag->hasShortcutKey() ? "*" : "");
    return list.join(u' ');
}

} // namespace

class tst_TWTagLibraryWindowController : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // The built-in eight: comment, generic tag, quotation, b, i (paired), br, img (single), a;
    // b and i with keys, img out of the menus.
    void init()
    {
        QVERIFY(library()->loadFromPropertyListDictionary(QStringLiteral("()")));
        library()->setBuiltInTags();
        library()->tagAtIndex(3)->setShortcutKey(QStringLiteral("b"));
        library()->tagAtIndex(4)->setShortcutKey(QStringLiteral("i"));
        library()->tagAtIndex(6)->setIncludeInMenu(false);
        window()->openTagLibraryWindow();
        TWResetBeepCount();
    }

    // Per column (type, menu, colour check box, tag, name, first tag, second tag, sample, key,
    // menu title): w changeable, e shown enabled only, - disabled.
    void cellsFollowTheKindOfRecord_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<QString>("cells");
        QTest::newRow("comment") << 0 << "-ww-we-eww";
        QTest::newRow("generic tag") << 1 << "-w--we-eww";
        QTest::newRow("quotation") << 2 << "-w--we-eww";
        QTest::newRow("paired") << 3 << "wwwwwwweww";
        QTest::newRow("single") << 5 << "wwwwww-eww";
        QTest::newRow("single, not in the menus") << 6 << "wwwwww-ew-";
    }

    void cellsFollowTheKindOfRecord()
    {
        QFETCH(int, row);
        QString seen;
        for (int column = 0; column < model()->columnCount(); ++column) {
            const Qt::ItemFlags flags = model()->index(row, column).flags();
            seen += !(flags & Qt::ItemIsEnabled) ? u'-' : flags & (Qt::ItemIsEditable | Qt::ItemIsUserCheckable) ? u'w' : u'e';
        }
        QTEST(seen, "cells");
    }

    // What a cell of the bold record takes; every change, a refused one too, brings the menus and
    // the colours up to date at once (the colours worked out anew).
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
        const int generation = library()->colorsGeneration();
        const QModelIndex cell = model()->index(3, int(TWHTMLTagLibraryTableModel::columnIdentifiers().indexOf(identifier)));
        model()->setData(cell, value, Qt::EditRole);
        QTEST(cell.data().toString(), "shown");
        QTEST(TWBeepCount(), "beeps");
        QVERIFY(library()->colorsGeneration() != generation);
    }

    // The buttons and the selection (row numbers): copies, without the key, right after their
    // records and selected; the three special records refuse, one beep each; no selection
    // beeps, and so do two rows to edit.
    void buttonsWorkOnTheSelection_data()
    {
        QTest::addColumn<QString>("button");
        QTest::addColumn<QString>("selected");
        QTest::addColumn<QString>("after");
        QTest::addColumn<QString>("selectedAfter");
        QTest::addColumn<int>("beeps");
        const QString eight = QStringLiteral("!-- - - b* i* br img a");
        QTest::newRow("duplicate 3 and 5") << "duplicate" << "35" << "!-- - - b* b i* br br img a" << "47" << 0;
        QTest::newRow("duplicate the comment and 4") << "duplicate" << "04" << "!-- - - b* i* i br img a" << "5" << 1;
        QTest::newRow("duplicate the last") << "duplicate" << "7" << eight + QStringLiteral(" a") << "8" << 0;
        QTest::newRow("delete every row") << "delete" << "01234567" << "!-- - -" << "" << 3;
        QTest::newRow("new") << "new" << "2" << eight + u' ' + TWHTMLTag().tag() << "8" << 0;
        QTest::newRow("duplicate nothing") << "duplicate" << "" << eight << "" << 1;
        QTest::newRow("delete nothing") << "delete" << "" << eight << "" << 1;
        QTest::newRow("edit two") << "edit" << "34" << eight << "34" << 1;
    }

    void buttonsWorkOnTheSelection()
    {
        QFETCH(QString, button);
        QFETCH(QString, selected);
        QItemSelectionModel *selection = window()->tableView()->selectionModel();
        selection->clear();
        for (const QChar row : selected)
            selection->select(model()->index(row.digitValue(), 0), QItemSelectionModel::Select | QItemSelectionModel::Rows);
        press(button);
        QTEST(listed(), "after");
        QCOMPARE(window()->tableView()->verticalHeader()->count(), library()->numberOfTags());
        QString rows;
        for (const QModelIndex &index : selection->selectedRows())
            rows += QString::number(index.row());
        std::sort(rows.begin(), rows.end());
        QTEST(rows, "selectedAfter");
        QTEST(TWBeepCount(), "beeps");
    }

    // Rows dragged above a row below them arrive there together, in their order; the menus are
    // not rebuilt.
    void draggedRowsMoveTogether()
    {
        const int generation = library()->colorsGeneration();
        std::unique_ptr<QMimeData> data(model()->mimeData({model()->index(5, 0), model()->index(3, 4), model()->index(5, 2)}));
        QVERIFY(model()->dropMimeData(data.get(), Qt::MoveAction, 7, 0, QModelIndex()));
        QCOMPARE(listed(), QStringLiteral("!-- - - i* img b* br a"));
        QCOMPARE(library()->colorsGeneration(), generation);
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
        QTest::newRow("a dictionary, not a list") << QByteArray("{ heading = h1; }") << 8 << "not a list";
        QTest::newRow("a record that cannot be read") << QByteArray("(\"{type = 2;\", 5)") << 8 << "record 1";
        QTest::newRow("a record that is a list") << QByteArray("(\"{type = 2;}\", \"(1, 2)\")") << 8 << "record 2";
        QTest::newRow("a record that is no text") << QByteArray("((a, b))") << 8 << "record 1";
        QTest::newRow("a key twice, out of the menus")
            << QByteArray("(\"{\\\"shortcut key\\\" = q;}\", \"{\\\"shortcut key\\\" = q; \\\"include in menu\\\" = NO;}\")") << 2 << QString();
        QTest::newRow("Shift_JIS") << TWTextFile::encode(QStringLiteral("(\"{name = \\\"日本語\\\";}\")"), TWTextEncoding::shiftJIS)
                                   << 1 << QString();
        QByteArray many("(");
        for (int i = 0; i < 10000; ++i)
            many += "\"{name = n" + QByteArray::number(i) + ";}\",";
        QTest::newRow("10 000 records") << many + ')' << 10000 << QString();
    }

    void libraryFiles()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(int, records);
        QFETCH(QString, said);
        const QString path = TWTestEnvironment::home() + QStringLiteral("/library.tlib");
        QVERIFY(TWTestEnvironment::writeFile(path, bytes));
        TWPanels::setOpenPanelHandler([&path](const QStringList &types) { return types.contains(u"tlib") ? QStringList{path} : QStringList(); });
        press(QStringLiteral("import"));
        QCOMPARE(library()->numberOfTags(), records);
        QCOMPARE(window()->tableView()->verticalHeader()->count(), records);
        QCOMPARE(TWBeepCount(), int(!said.isEmpty()));
        const QString message = window()->findChild<TWMessageBar *>()->text();
        QVERIFY2(message.contains(said) && message.contains(QLatin1String("library.tlib")) != said.isEmpty(), qPrintable(message));

        // Exported over the file, changed, imported: the library is back.
        TWPanels::setSavePanelHandler([&path](const QString &, const QStringList &) { return std::optional(path); });
        press(QStringLiteral("export"));
        const QString text = library()->propertyListString();
        library()->deleteTagAtIndex(library()->numberOfTags() - 1);
        press(QStringLiteral("import"));
        QCOMPARE(library()->propertyListString(), text);
    }

    // The columns' order and widths come back in a new window, also when the window was not
    // closed before the quit.
    void columnLayoutIsKept()
    {
        window()->tableView()->horizontalHeader()->moveSection(0, 5);
        window()->tableView()->horizontalHeader()->resizeSection(4, 222);
        delete window();
        QCOMPARE(window()->tableView()->horizontalHeader()->visualIndex(0), 5);
        QCOMPARE(window()->tableView()->horizontalHeader()->sectionSize(4), 222);
    }
};

QTEST_MAIN(tst_TWTagLibraryWindowController)
#include "tst_TWTagLibraryWindowController.moc"
