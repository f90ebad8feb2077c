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
        // The shared library back to the built-in set, and everything that depends on it rebuilt.
        library()->loadFromPropertyListDictionary(QStringLiteral("()"));
        library()->setBuiltInTags();
        library()->validateTagListChange();
        TWResetBeepCount();
    }

    void titlesAreShownAsTheyAre_data()
    {
        QTest::addColumn<QString>("title");
        QTest::newRow("entity") << QStringLiteral("Space  &nbsp;");
        QTest::newRow("two ampersands") << QStringLiteral("Fish && Chips");
        QTest::newRow("ampersand at the end") << QStringLiteral("Rock &");
    }

    void titlesAreShownAsTheyAre()
    {
        QFETCH(QString, title);
        library()->tagAtIndex(3)->setTitle(title);
        library()->validateTagListChange();
        // A menu shows "&&" as "&" and takes a lone "&" for the mark of an accelerator key.
        QAction *item = TWAppDelegate::sharedAppDelegate()->insertDoubleTagMenu()->actions().at(2);
        QCOMPARE(item->iconText(), title);
        QCOMPARE(QKeySequence::mnemonic(item->text()), QKeySequence());
        QCOMPARE(TWInsertTagPaletteController::sharedInsertTagPalette()->pairedTitles().at(2), title);
    }

    void listingRules()
    {
        TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
        TWInsertTagPaletteController *palette = TWInsertTagPaletteController::sharedInsertTagPalette();
        const QStringList single{"Generic Tag  <>", "Line Break  <br>", "Image  <img =...>"};
        QCOMPARE(titles(delegate->insertSingleTagMenu()), single);
        QCOMPARE(palette->singleTitles(), single);

        library()->tagAtIndex(3)->setShortcutKey(QStringLiteral("b"));
        library()->tagAtIndex(4)->setTitle(library()->tagAtIndex(3)->title()); // italic titled like bold
        library()->tagAtIndex(7)->setIncludeInMenu(false);                       // the link
        library()->tagAtIndex(library()->addNewTag())->setType(7);
        library()->tagAtIndex(library()->addNewTag())->setTitle(QStringLiteral("Paired Tags"));
        library()->validateTagListChange();
        // One beep for the odd record in each of the two places that list it.
        QCOMPARE(TWBeepCount(), 2);
        const QStringList paired{"Comment  <!--...-->", "Quotation  \"\"", "Bold Face  <b>"};
        // The palette's header counts as a title taken.
        QCOMPARE(palette->pairedTitles(), paired);
        QCOMPARE(titles(delegate->insertDoubleTagMenu()), paired + QStringList{"Paired Tags"});
        QCOMPARE(delegate->insertDoubleTagMenu()->actions().at(2)->shortcut(), QKeySequence(Qt::CTRL | Qt::ALT | Qt::Key_B));
    }

    void menusAndPaletteInsertIntoTheDocumentBeingEdited()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        QMenu *paired = TWAppDelegate::sharedAppDelegate()->insertDoubleTagMenu();
        TWInsertTagPaletteController *palette = TWInsertTagPaletteController::sharedInsertTagPalette();
        auto *pairedPopUp = palette->findChild<QComboBox *>(QStringLiteral("insertDoubleTagMenu"));
        // No document window on screen: a beep and nothing else.
        window->hide();
        TWTemplateWindowController::sharedTemplateController()->hide();
        paired->actions().at(2)->trigger();
        pairedPopUp->setCurrentIndex(3);
        palette->selectInsertDoubleTag(3);
        QCOMPARE(TWBeepCount(), 2);

        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QApplication::setActiveWindow(window);
        QTRY_COMPARE(QApplication::activeWindow(), window);
        window->textView()->setString(QStringLiteral("make this bold"));
        window->textView()->setSelectedRange({10, 4});
        paired->actions().at(2)->trigger();
        TWAppDelegate::sharedAppDelegate()->insertSingleTagMenu()->actions().at(1)->trigger();
        palette->selectInsertDoubleTag(0); // the header
        pairedPopUp->setCurrentIndex(4);
        palette->selectInsertDoubleTag(4);
        QCOMPARE(window->textView()->string(), QStringLiteral("make this <b>bold</b><br><i></i>"));
        QCOMPARE(pairedPopUp->currentIndex(), 0); // back to its header

        // Records reordered after the menus were built: an item still inserts its own record.
        library()->moveRowsOfArray({3}, 8);
        paired->actions().at(2)->trigger();
        QVERIFY(window->textView()->string().endsWith(QLatin1String("<b></b>")));
    }

    void tagColoringToggleTwiceComesBack()
    {
        TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
        QAction *toggle = TWAppDelegate::sharedAppDelegate()->tagColoringMenuItem;
        for (const bool on : {!TWPreferences::sharedPref()->tagColoring(), TWPreferences::sharedPref()->tagColoring()}) {
            toggle->trigger();
            QCOMPARE((QList<bool>{TWPreferences::sharedPref()->tagColoring(), toggle->isChecked(),
                                  TWEditWindowController::sharedEditWindowController()->textView()->tagColoring(),
                                  templateWindow->topTextView()->tagColoring(), templateWindow->bottomTextView()->tagColoring()}),
                     QList<bool>(5, on));
        }
    }

    // The menu item says what it will do, and a hidden palette stays hidden at the next start.
    void paletteTitleAndVisibility()
    {
        TWInsertTagPaletteController *palette = TWInsertTagPaletteController::sharedInsertTagPalette();
        QAction *item = TWAppDelegate::sharedAppDelegate()->showTagPaletteMenu;
        palette->setShowWindow(true);
        QCOMPARE(item->text(), QStringLiteral("Hide Insert Tag Palette"));
        palette->close();
        QCOMPARE(item->text(), QStringLiteral("Show Insert Tag Palette"));
        palette->saveWindowProperties();
        QCOMPARE(TWUserDefaults::standardUserDefaults()->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::insertTagPalette))
                     ->value(QLatin1String(TWStateEntry::showWindow)).toString(), QStringLiteral("NO"));
    }

    void shortcutOfAKey_data()
    {
        QTest::addColumn<QString>("key");
        QTest::addColumn<QKeySequence>("shortcut");
        QTest::newRow("none") << QString() << QKeySequence();
        QTest::newRow("upper-case letter takes Shift") << "K" << QKeySequence(Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::Key_K);
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
