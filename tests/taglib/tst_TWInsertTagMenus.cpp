// The insert-tag submenus and palette, through their actions: what they list, their keys,
// insertion into the document being edited, and the beep when there is none.
#include "taglib/TWInsertTagPaletteController.h"

#include "TWRecordingPreview.h"
#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTemplateTextView.h"
#include "platform/TWBeep.h"
#include "platform/TWLocalization.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferences.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWHTMLTagLibrary.h"
#include "taglib/TWTagMenuListing.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

namespace {

QStringList titles(QMenu *menu)
{
    QStringList list;
    for (QAction *action : menu->actions())
        list << action->text();
    return list;
}

TWHTMLTagLibrary *library()
{
    return TWHTMLTagLibrary::sharedTagLibrary();
}

// The shared library back to the built-in set, and everything that depends on it rebuilt.
void builtInLibrary()
{
    library()->loadFromPropertyListDictionary(QStringLiteral("()"));
    library()->setBuiltInTags();
    library()->validateTagListChange();
}

} // namespace

class tst_TWInsertTagMenus : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        viewer.install();
        TWAppDelegate::sharedAppDelegate();
    }

    void init()
    {
        builtInLibrary();
        TWResetBeepCount();
    }

    void builtInLibraryIsListed()
    {
        TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
        const QStringList single{"Generic Tag  <>", "Line Break  <br>", "Image  <img =...>"};
        const QStringList paired{"Comment  <!--...-->", "Quotation  \"\"", "Bold Face  <b>", "Italic  <i>",
                                 "Link  <a href=..."};
        QCOMPARE(titles(delegate->insertSingleTagMenu()), single);
        QCOMPARE(titles(delegate->insertDoubleTagMenu()), paired);
        TWInsertTagPaletteController *palette = TWInsertTagPaletteController::sharedInsertTagPalette();
        QCOMPARE(palette->singleTitles(), single);
        QCOMPARE(palette->pairedTitles(), paired);
        QCOMPARE(palette->findChild<QComboBox *>(QStringLiteral("insertSingleTagMenu"))->itemText(0),
                 QStringLiteral("Single Tags"));
        QCOMPARE(palette->findChild<QComboBox *>(QStringLiteral("insertDoubleTagMenu"))->itemText(0),
                 QStringLiteral("Paired Tags"));
    }

    void listingRules()
    {
        library()->tagAtIndex(3)->setShortcutKey(QStringLiteral("b"));
        library()->tagAtIndex(4)->setTitle(library()->tagAtIndex(3)->title()); // italic titled like bold
        library()->tagAtIndex(7)->setIncludeInMenu(false);                       // the link
        const int odd = library()->addNewTag();
        library()->tagAtIndex(odd)->setType(7);
        const int headerTwin = library()->addNewTag();
        library()->tagAtIndex(headerTwin)->setTitle(QStringLiteral("Paired Tags"));
        library()->validateTagListChange();
        // One beep for the odd record in each of the two places that list it.
        QCOMPARE(TWBeepCount(), 2);

        TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
        QCOMPARE(titles(delegate->insertDoubleTagMenu()),
                 (QStringList{"Comment  <!--...-->", "Quotation  \"\"", "Bold Face  <b>", "Paired Tags"}));
        QCOMPARE(delegate->insertDoubleTagMenu()->actions().at(2)->shortcut(),
                 QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_B));
        QCOMPARE(delegate->insertDoubleTagMenu()->actions().at(0)->shortcut(), QKeySequence());
        // The palette's header counts as a title taken.
        QCOMPARE(TWInsertTagPaletteController::sharedInsertTagPalette()->pairedTitles(),
                 (QStringList{"Comment  <!--...-->", "Quotation  \"\"", "Bold Face  <b>"}));
    }

    void menusInsertIntoTheDocumentBeingEdited()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
        // No document window on screen: a beep and nothing else.
        window->hide();
        TWTemplateWindowController::sharedTemplateController()->hide();
        delegate->insertDoubleTagMenu()->actions().at(2)->trigger();
        QCOMPARE(TWBeepCount(), 1);

        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QApplication::setActiveWindow(window);
        QTRY_COMPARE(QApplication::activeWindow(), window);
        window->textView()->setString(QStringLiteral("make this bold"));
        window->textView()->setSelectedRange({10, 4});
        delegate->insertDoubleTagMenu()->actions().at(2)->trigger();
        QCOMPARE(window->textView()->string(), QStringLiteral("make this <b>bold</b>"));
        delegate->insertSingleTagMenu()->actions().at(1)->trigger();
        QCOMPARE(window->textView()->string(), QStringLiteral("make this <b>bold</b><br>"));

        // Records reordered after the menus were built: an item still inserts its own record.
        library()->moveRowsOfArray({3}, 8);
        delegate->insertDoubleTagMenu()->actions().at(2)->trigger();
        QVERIFY(window->textView()->string().endsWith(QLatin1String("<b></b>")));
        QCOMPARE(TWBeepCount(), 1);
    }

    void paletteInsertsAndReturnsToItsHeader()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        TWInsertTagPaletteController *palette = TWInsertTagPaletteController::sharedInsertTagPalette();
        auto *paired = palette->findChild<QComboBox *>(QStringLiteral("insertDoubleTagMenu"));
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QApplication::setActiveWindow(window);
        QTRY_COMPARE(QApplication::activeWindow(), window);
        palette->setShowWindow(true);
        window->textView()->setString(QStringLiteral("say it"));
        window->textView()->setSelectedRange({4, 2});

        palette->selectInsertDoubleTag(0);
        QCOMPARE(window->textView()->string(), QStringLiteral("say it"));
        paired->setCurrentIndex(4);
        palette->selectInsertDoubleTag(4);
        QCOMPARE(window->textView()->string(), QStringLiteral("say <i>it</i>"));
        QCOMPARE(paired->currentIndex(), 0);
        QCOMPARE(TWBeepCount(), 0);

        window->hide();
        TWTemplateWindowController::sharedTemplateController()->hide();
        paired->setCurrentIndex(3);
        palette->selectInsertDoubleTag(3);
        QCOMPARE(TWBeepCount(), 1);
        QCOMPARE(paired->currentIndex(), 0);
    }

    void paletteTitleAndVisibility()
    {
        TWInsertTagPaletteController *palette = TWInsertTagPaletteController::sharedInsertTagPalette();
        const auto menuTitle = [] {
            QAction *item = nullptr;
            QMenuBar bar;
            TWAppDelegate::sharedAppDelegate()->populateMenuBar(&bar);
            for (QAction *menu : bar.actions()) {
                for (QAction *action : menu->menu()->actions()) {
                    if (action->text().contains(QLatin1String("Insert Tag Palette")))
                        item = action;
                }
            }
            return item ? item->text() : QString();
        };
        palette->setShowWindow(true);
        QCOMPARE(menuTitle(), QStringLiteral("Hide Insert Tag Palette"));
        palette->close();
        QCOMPARE(menuTitle(), QStringLiteral("Show Insert Tag Palette"));
        palette->saveWindowProperties();
        QCOMPARE(TWUserDefaults::standardUserDefaults()
                     ->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::insertTagPalette))
                     ->value(QLatin1String(TWStateEntry::showWindow))
                     .toString(),
                 QStringLiteral("NO"));
        palette->setShowWindow(true);
        QVERIFY(palette->isVisible());
    }

    void tagColoringToggleTwiceComesBack()
    {
        TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
        TWEditorTextView *html = TWEditWindowController::sharedEditWindowController()->textView();
        TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
        const bool before = TWPreferences::sharedPref()->tagColoring();
        QAction *toggle = nullptr;
        QMenuBar bar;
        delegate->populateMenuBar(&bar);
        for (QAction *menu : bar.actions())
            for (QAction *action : menu->menu()->actions())
                if (action->text() == QLatin1String("Tag &Coloring"))
                    toggle = action;
        QVERIFY(toggle);
        toggle->trigger();
        QCOMPARE(TWPreferences::sharedPref()->tagColoring(), !before);
        QCOMPARE(toggle->isChecked(), !before);
        QCOMPARE(html->tagColoring(), !before);
        QCOMPARE(templateWindow->bottomTextView()->tagColoring(), !before);
        toggle->trigger();
        QCOMPARE(TWPreferences::sharedPref()->tagColoring(), before);
        QCOMPARE(toggle->isChecked(), before);
        QCOMPARE(html->tagColoring(), before);
        QCOMPARE(templateWindow->topTextView()->tagColoring(), before);
    }

    void shortcutOfAKey_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QKeySequence>("shortcut");
        QTest::newRow("none") << QString() << QKeySequence();
        QTest::newRow("lower-case letter") << "k" << QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_K);
        QTest::newRow("upper-case letter takes Shift") << "K" << QKeySequence(Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::Key_K);
        QTest::newRow("digit") << "3" << QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_3);
        QTest::newRow("comma is the key") << "," << QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_Comma);
        QTest::newRow("plus is the key") << "+" << QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_Plus);
        QTest::newRow("accented letter") << QString::fromUtf8("é") << QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_Eacute);
    }

    void shortcutOfAKey()
    {
        QFETCH(QString, key);
        QFETCH(QKeySequence, shortcut);
        TWHTMLTag tag;
        tag.setShortcutKey(key);
        QCOMPARE(TWTagMenuListing::shortcut(tag), shortcut);
    }
};

QTEST_MAIN(tst_TWInsertTagMenus)
#include "tst_TWInsertTagMenus.moc"
