// The insert-tag submenus and palette, through their actions: what they list, their keys,
// insertion into the document being edited, and the beep when there is none.
#include "taglib/TWInsertTagPaletteController.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
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

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QMenuBar>
#include <QTest>

namespace {

TWHTMLTagLibrary *library() { return TWHTMLTagLibrary::sharedTagLibrary(); }
TWAppDelegate *delegate() { return TWAppDelegate::sharedAppDelegate(); }
TWInsertTagPaletteController *palette() { return TWInsertTagPaletteController::sharedInsertTagPalette(); }

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

    void listingRules()
    {
        // What a menu shows: "&&" as "&" (a lone "&" marks an accelerator key instead).
        const auto titles = [](QMenu *menu) {
            QStringList list;
            for (QAction *action : menu->actions())
                list << QString(action->text()).replace(QLatin1String("&&"), QLatin1String("&"));
            return list;
        };
        QCOMPARE(palette()->singleTitles(), (QStringList{"Generic Tag  <>", "Line Break  <br>", "Image  <img =...>"}));
        QCOMPARE(titles(delegate()->insertSingleTagMenu()), palette()->singleTitles());

        // Titles are shown as they are, ampersands too.
        const QString title = QStringLiteral("Fish && Chips &nbsp; &");
        library()->tagAtIndex(3)->setTitle(title);
        library()->tagAtIndex(2)->setShortcutKey(QStringLiteral(","));
        library()->tagAtIndex(3)->setShortcutKey(QStringLiteral("b"));
        library()->tagAtIndex(5)->setShortcutKey(QStringLiteral("K"));
        library()->tagAtIndex(4)->setTitle(title); // italic titled like bold
        library()->tagAtIndex(7)->setIncludeInMenu(false);                       // the link
        library()->tagAtIndex(library()->addNewTag())->setType(7);
        library()->tagAtIndex(library()->addNewTag())->setTitle(QStringLiteral("Paired Tags"));
        library()->validateTagListChange();
        // One beep for the odd record in each of the two places that list it.
        QCOMPARE(TWBeepCount(), 2);
        const QStringList paired{"Comment  <!--...-->", "Quotation  \"\"", title};
        // The palette's header counts as a title taken.
        QCOMPARE(palette()->pairedTitles(), paired);
        QCOMPARE(titles(delegate()->insertDoubleTagMenu()), paired + QStringList{"Paired Tags"});
        QCOMPARE(QKeySequence::mnemonic(delegate()->insertDoubleTagMenu()->actions().at(2)->text()), QKeySequence());
        // A key is Ctrl+Alt and the character itself (a comma is no separator here), with Shift
        // for an upper-case letter.
        QList<QKeySequence> keys;
        for (const QAction *item : delegate()->insertDoubleTagMenu()->actions() + delegate()->insertSingleTagMenu()->actions())
            keys << item->shortcut();
        QCOMPARE(keys, (QList<QKeySequence>{{}, Qt::CTRL | Qt::ALT | Qt::Key_Comma, Qt::CTRL | Qt::ALT | Qt::Key_B, {}, {},
                                            Qt::CTRL | Qt::ALT | Qt::SHIFT | Qt::Key_K, {}}));
    }

    void menusAndPaletteInsertIntoTheDocumentBeingEdited()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        QMenu *paired = delegate()->insertDoubleTagMenu();
        auto *pairedPopUp = palette()->findChild<QComboBox *>(QStringLiteral("insertDoubleTagMenu"));
        // No document window on screen: a beep and nothing else.
        window->hide();
        TWTemplateWindowController::sharedTemplateController()->hide();
        paired->actions().at(2)->trigger();
        pairedPopUp->setCurrentIndex(3);
        palette()->selectInsertDoubleTag(3);
        QCOMPARE(TWBeepCount(), 2);

        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        QApplication::setActiveWindow(window);
        TW_TRY_COMPARE_WITH_TIMEOUT(QApplication::activeWindow(), window, 5000);
        // A single tag replaces the selection, a paired one wraps it.
        window->textView()->setString(QStringLiteral("make this bold"));
        window->textView()->setSelectedRange({5, 5});
        delegate()->insertSingleTagMenu()->actions().at(1)->trigger();
        window->textView()->setSelectedRange({9, 4});
        paired->actions().at(2)->trigger();
        palette()->selectInsertDoubleTag(0); // the header
        pairedPopUp->setCurrentIndex(4);
        palette()->selectInsertDoubleTag(4);
        QCOMPARE(window->textView()->string(), QStringLiteral("make <br><b>bold</b><i></i>"));
        QCOMPARE(pairedPopUp->currentIndex(), 0); // back to its header

        // Records reordered after the menus were built: an item still inserts its own record.
        library()->moveRowsOfArray({3}, 8);
        paired->actions().at(2)->trigger();
        QVERIFY(window->textView()->string().endsWith(QLatin1String("<b></b>")));
    }

    // Tag colouring, toggled twice, comes back everywhere; the palette's item says what it will
    // do, and a hidden palette stays hidden at the next start.
    void menuItemsFollowWhatTheyControl()
    {
        TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
        QAction *toggle = delegate()->tagColoringMenuItem;
        for (const bool on : {!TWPreferences::sharedPref()->tagColoring(), TWPreferences::sharedPref()->tagColoring()}) {
            toggle->trigger();
            QCOMPARE((QList<bool>{TWPreferences::sharedPref()->tagColoring(), toggle->isChecked(),
                                  TWEditWindowController::sharedEditWindowController()->textView()->tagColoring(),
                                  templateWindow->topTextView()->tagColoring(), templateWindow->bottomTextView()->tagColoring()}),
                     QList<bool>(5, on));
        }
        palette()->setShowWindow(true);
        QCOMPARE(delegate()->showTagPaletteMenu->text(), QStringLiteral("Hide Insert Tag Palette"));
        palette()->close();
        QCOMPARE(delegate()->showTagPaletteMenu->text(), QStringLiteral("Show Insert Tag Palette"));
        palette()->saveWindowProperties();
        QCOMPARE(TWUserDefaults::standardUserDefaults()->dictionaryForKey(QLatin1String(TWWindowDefaultsKey::insertTagPalette))
                     ->value(QLatin1String(TWStateEntry::showWindow)).toString(), QStringLiteral("NO"));
    }

    // No two items of the menu bar share a key, and Ctrl+Alt with a letter belongs to the tags.
    void menuKeysAreDistinct()
    {
        delegate()->setViewOnExBrowserMenu();
        QList<QMenu *> menus;
        for (QAction *action : TWEditWindowController::sharedEditWindowController()->menuBar()->actions())
            menus << action->menu();
        QHash<QKeySequence, QString> taken;
        for (qsizetype next = 0; next < menus.size(); ++next) {
            const bool tagMenu = menus[next] == delegate()->insertSingleTagMenu() || menus[next] == delegate()->insertDoubleTagMenu();
            for (QAction *action : menus[next]->actions()) {
                if (action->menu())
                    menus << action->menu();
                for (const QKeySequence &key : action->shortcuts()) {
                    QVERIFY2(!taken.contains(key), qPrintable(action->text() + " and " + taken.value(key)));
                    taken.insert(key, action->text());
                    const Qt::KeyboardModifiers tagKeys = Qt::ControlModifier | Qt::AltModifier;
                    QVERIFY2(tagMenu || key[0].key() < Qt::Key_A || key[0].key() > Qt::Key_Z
                                 || (key[0].keyboardModifiers() & tagKeys) != tagKeys,
                             qPrintable(action->text()));
                }
            }
        }
        QVERIFY(taken.size() > 30);
    }
};

QTEST_MAIN(tst_TWInsertTagMenus)
#include "tst_TWInsertTagMenus.moc"
