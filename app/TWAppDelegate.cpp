#include "app/TWAppDelegate.h"

#include "app/TWDocumentWindow.h"
#include "app/TWFileExtensions.h"
#include "app/TWLineNumberDialog.h"
#include "app/TWProjectFile.h"
#include "app/TWRecoveryCopy.h"
#include "app/TWStateKeys.h"
#include "checker/TWCheckerScripts.h"
#include "checker/TWHTMLCheckerWindowController.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWLineNumberGutter.h"
#include "editor/TWTemplateTextView.h"
#include "panels/TWColorPanelController.h"
#include "panels/TWFindPanelController.h"
#include "platform/TWPanels.h"
#include "platform/TWPaths.h"
#include "platform/TWUserDefaults.h"
#include "platform/TWWindowOrder.h"
#include "preferences/TWPreferences.h"
#include "preferences/TWPreferencesPanelController.h"
#include "preview/TWExternalBrowser.h"
#include "preview/TWPageComposer.h"
#include "preview/TWViewWindowController.h"
#include "platform/TWBeep.h"
#include "platform/TWFlag.h"
#include "platform/TWLocalization.h"
#include "platform/TWMessageBar.h"
#include "platform/TWTextKeys.h"
#include "taglib/TWHTMLTag.h"
#include "taglib/TWHTMLTagLibrary.h"
#include "taglib/TWInsertTagPaletteController.h"
#include "taglib/TWTagLibraryWindowController.h"
#include "taglib/TWTagMenuListing.h"

#include <QAction>
#include <QApplication>
#include <QFileInfo>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>

#include <cstdio>
#include <functional>

namespace {

TWAppDelegate *sharedInstance = nullptr;

// The In Browser submenu lists at most this many browsers.
constexpr int maxBrowserItems = 10;

// What the File > Open panel offers: every kind of document, and text files without an
// extension.
const QStringList &openableExtensions()
{
    static const QStringList extensions = {
        QLatin1String(TWExtension::html),         QLatin1String(TWExtension::htm),
        QLatin1String(TWExtension::shtml),        QLatin1String(TWExtension::css),
        QLatin1String(TWExtension::templateFile), QLatin1String(TWExtension::project),
    };
    return extensions;
}

} // namespace

TWAppDelegate *TWAppDelegate::sharedAppDelegate()
{
    if (!sharedInstance)
        new TWAppDelegate(); // registers itself
    return sharedInstance;
}

TWAppDelegate::TWAppDelegate()
    : QObject(QCoreApplication::instance())
{
    if (!sharedInstance)
        sharedInstance = this;

    // The older record wins when both exist, even without a project file name.
    TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
    std::optional<QVariantMap> record = store->dictionaryForKey(QLatin1String(TWAppDefaultsKey::legacyRecord));
    if (!record)
        record = store->dictionaryForKey(QLatin1String(TWAppDefaultsKey::record));
    if (record) {
        const QVariant name = record->value(QLatin1String(TWAppDefaultsKey::projectFilename));
        if (name.typeId() == QMetaType::QString)
            projectFilenameValue = name.toString();
        TWLineNumberGutter::setLineNumbersShown(TWFlag::isNotNo(record->value(QLatin1String(TWAppDefaultsKey::lineNumbers))));
    }

    createActions();
    TWWindowOrder::shared();
    // What a change of the tag library reaches.
    TWHTMLTagLibrary::setDependants(
        [this] {
            TWInsertTagPaletteController::sharedInsertTagPalette()->setUpInsertTagMenu();
            setUpInsertTagMenu();
        },
        [] {
            TWEditWindowController::sharedEditWindowController()->textView()->colorText();
            TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
            templateWindow->topTextView()->colorText();
            templateWindow->bottomTextView()->colorText();
        });
    connect(qApp, &QCoreApplication::aboutToQuit, this, &TWAppDelegate::applicationWillTerminate);
}

TWAppDelegate::~TWAppDelegate()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
    delete browserMenu;
    delete singleTagMenu;
    delete doubleTagMenu;
}

void TWAppDelegate::createActions()
{
    const auto make = [this](const QString &title, QKeySequence shortcut, auto slot) {
        auto *action = new QAction(title, this);
        action->setShortcut(shortcut);
        // The same action sits in every window's menu bar; its shortcut works from panels too.
        action->setShortcutContext(Qt::ApplicationShortcut);
        connect(action, &QAction::triggered, this, slot);
        return action;
    };
    newAction = make(tr("&New"), QKeySequence::New, &TWAppDelegate::newDocument);
    openAction = make(tr("&Open..."), QKeySequence::Open, &TWAppDelegate::open);
    newProjectAction = make(tr("New &Project"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_N), &TWAppDelegate::newProject);
    saveProjectAsAction
        = make(tr("Save P&roject As..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_P), &TWAppDelegate::saveProjectAs);
    exportCombinedHTMLAction = make(tr("&Export Combined HTML As..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_X),
                                    &TWAppDelegate::exportCombinedHTMLAs);
    saveAction = make(tr("&Save"), QKeySequence::Save, &TWAppDelegate::saveDocument);
    saveAsAction = make(tr("Save &As..."), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_S), &TWAppDelegate::saveDocumentAs);
    insertFileLinkAction = make(tr("Insert &Link to File..."), QKeySequence(), &TWAppDelegate::insertFileLink);
    insertImageAction = make(tr("Insert &Image..."), QKeySequence(), &TWAppDelegate::insertImage);
    quitAction = make(tr("&Quit"), QKeySequence::Quit, [] { QCoreApplication::exit(0); });
    quitAction->setMenuRole(QAction::QuitRole);

    // Editing commands go to the text view or field that has the keyboard focus; an editor
    // text view undoes through its own history (the template halves share one).
    const auto editAction = [&make](const QString &title, QKeySequence::StandardKey key, auto onText, auto onLine) {
        return make(title, key, [onText, onLine] {
            QWidget *focus = QApplication::focusWidget();
            if (auto *text = qobject_cast<QPlainTextEdit *>(focus))
                std::invoke(onText, text);
            else if (auto *line = qobject_cast<QLineEdit *>(focus))
                std::invoke(onLine, line);
        });
    };
    const auto undoText = [](QPlainTextEdit *text) {
        if (auto *editor = qobject_cast<TWEditorTextView *>(text))
            editor->performUndo();
        else
            text->undo();
    };
    const auto redoText = [](QPlainTextEdit *text) {
        if (auto *editor = qobject_cast<TWEditorTextView *>(text))
            editor->performRedo();
        else
            text->redo();
    };
    undoAction = editAction(tr("&Undo"), QKeySequence::Undo, undoText, &QLineEdit::undo);
    redoAction = editAction(tr("&Redo"), QKeySequence::Redo, redoText, &QLineEdit::redo);
    cutAction = editAction(tr("Cu&t"), QKeySequence::Cut, &QPlainTextEdit::cut, &QLineEdit::cut);
    copyAction = editAction(tr("&Copy"), QKeySequence::Copy, &QPlainTextEdit::copy, &QLineEdit::copy);
    pasteAction = editAction(tr("&Paste"), QKeySequence::Paste, &QPlainTextEdit::paste, &QLineEdit::paste);
    selectAllAction = editAction(tr("Select &All"), QKeySequence::SelectAll, &QPlainTextEdit::selectAll,
                                 &QLineEdit::selectAll);

    preferencesAction = make(tr("Pre&ferences..."), QKeySequence(Qt::CTRL | Qt::Key_Comma),
                             [] { TWPreferencesPanelController::sharedPreferencesPanel()->runPreferencesPanel(); });
    preferencesAction->setMenuRole(QAction::PreferencesRole);
    autoIndentMenu = make(tr("Auto &Indent"), QKeySequence(), &TWAppDelegate::toggleAutoIndentation);
    autoIndentMenu->setCheckable(true);
    jumpToLineAction = make(tr("&Jump to Line..."), QKeySequence(Qt::CTRL | Qt::Key_L), &TWAppDelegate::askForLineNumber);

    // The find commands work through the find panel, opened or not. Replace and Replace &
    // Find sit beside F and G; Ctrl+Shift+G stays free for finding backwards.
    const auto findPanel = [] { return TWFindPanelController::sharedFindPanel(); };
    searchPanelAction = make(tr("&Find..."), QKeySequence(Qt::CTRL | Qt::Key_F), [findPanel] { findPanel()->openFindPanel(); });
    findNextAction = make(tr("Find &Next"), QKeySequence(Qt::CTRL | Qt::Key_G), [findPanel] { findPanel()->doFind(); });
    replaceAction = make(tr("&Replace"), QKeySequence(Qt::CTRL | Qt::Key_E), [findPanel] { findPanel()->doReplace(); });
    replaceAndFindNextAction = make(tr("Replace && F&ind"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_E),
                                    [findPanel] { findPanel()->doReplaceAndFind(); });
    replaceAllAction = make(tr("Replace &All"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_H),
                            [findPanel] { findPanel()->doReplaceAll(); });

    applyTemplateMenu = make(tr("Apply &Template"), QKeySequence(), &TWAppDelegate::toggleApplyTemplate);
    applyTemplateMenu->setCheckable(true);

    showEditWindowAction = make(tr("&HTML"), QKeySequence(Qt::CTRL | Qt::Key_1), &TWAppDelegate::showEditWindow);
    showTemplateWindowAction
        = make(tr("&Template"), QKeySequence(Qt::CTRL | Qt::Key_2), &TWAppDelegate::showTemplateWindow);
    showCSSWindowAction = make(tr("&Style Sheet"), QKeySequence(Qt::CTRL | Qt::Key_3), &TWAppDelegate::showCSSWindow);
    showViewWindowAction = make(tr("&Viewer"), QKeySequence(Qt::CTRL | Qt::Key_4), &TWAppDelegate::showViewWindow);
    showHTMLCheckerWindowAction
        = make(tr("&Checker"), QKeySequence(Qt::CTRL | Qt::Key_6), &TWAppDelegate::showHTMLCheckerWindow);
    showTagLibraryWindowAction = make(tr("Tag &Library"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_L),
                                      [] { TWTagLibraryWindowController::sharedTagLibraryController()->openTagLibraryWindow(); });

    const auto viewer = [] { return TWViewWindowController::sharedViewWindowController(); };
    renderNowAction = make(tr("&Render Now"), QKeySequence(Qt::CTRL | Qt::Key_R), [viewer] { viewer()->renderNow(); });
    autoRenderingMenu = make(tr("&Auto Rendering"), QKeySequence(), [viewer] { viewer()->toggleAutoRender(); });
    autoRenderingMenu->setCheckable(true);
    autoRenderingMenu->setChecked(true);
    stopRenderingAction = make(tr("&Stop Rendering"), QKeySequence(Qt::CTRL | Qt::Key_Period),
                               [viewer] { viewer()->stopRendering(); });
    applyCSSMenu = make(tr("Apply &CSS"), QKeySequence(), [viewer] { viewer()->toggleApplyCSS(); });
    applyCSSMenu->setCheckable(true);
    lineBreakValidationMenuItem = make(tr("&Line Breaks as <br>"), QKeySequence(),
                                       [viewer] { viewer()->toggleLineBreakValidation(); });
    lineBreakValidationMenuItem->setCheckable(true);
    clearCacheAction = make(tr("C&lear Cache"), QKeySequence(Qt::CTRL | Qt::SHIFT | Qt::Key_R),
                            [viewer] { viewer()->clearCache(); });
    saveCSSAndClearCacheAction = make(tr("Save CSS and Clear Cache"), QKeySequence(), [viewer] {
        TWCSSWindowController::sharedCSSController()->saveCSS();
        viewer()->clearCache();
    });
    lineNumbersMenu = make(tr("Line &Numbers"), QKeySequence(), [] {
        TWLineNumberGutter::setLineNumbersShown(!TWLineNumberGutter::lineNumbersShown());
    });
    lineNumbersMenu->setCheckable(true);
    lineNumbersMenu->setChecked(TWLineNumberGutter::lineNumbersShown());
    // One submenu, shown in every window's View menu.
    browserMenu = new QMenu(tr("In &Browser"));

    tagColoringMenuItem = make(tr("Tag &Coloring"), QKeySequence(), &TWAppDelegate::toggleTagColoring);
    tagColoringMenuItem->setCheckable(true);
    showTagPaletteMenu = make(TWLocalizedString(TWTextKey::showInsertTagPalette), QKeySequence(Qt::CTRL | Qt::Key_5),
                              &TWAppDelegate::toggleTagPalette);
    showColorPanelMenu = make(TWLocalizedString(TWTextKey::showColorPanel), QKeySequence(Qt::CTRL | Qt::Key_7),
                              &TWAppDelegate::toggleColorPanel);
    singleTagMenu = new QMenu(tr("&Single Tag"));
    doubleTagMenu = new QMenu(tr("&Paired Tag"));
}

void TWAppDelegate::populateMenuBar(QMenuBar *menuBar)
{
    QMenu *file = menuBar->addMenu(tr("&File"));
    file->addAction(newAction);
    file->addAction(newProjectAction);
    file->addAction(openAction);
    file->addSeparator();
    file->addAction(saveAction);
    file->addAction(saveAsAction);
    file->addAction(saveProjectAsAction);
    file->addAction(exportCombinedHTMLAction);
    file->addSeparator();
    file->addAction(insertFileLinkAction);
    file->addAction(insertImageAction);
    file->addSeparator();
    file->addAction(quitAction);
    connect(file, &QMenu::aboutToShow, this, &TWAppDelegate::updateInsertActions);

    QMenu *edit = menuBar->addMenu(tr("&Edit"));
    edit->addAction(undoAction);
    edit->addAction(redoAction);
    edit->addSeparator();
    edit->addAction(cutAction);
    edit->addAction(copyAction);
    edit->addAction(pasteAction);
    edit->addAction(selectAllAction);
    edit->addSeparator();
    edit->addAction(autoIndentMenu);
    edit->addAction(tagColoringMenuItem);
    edit->addAction(jumpToLineAction);
    edit->addSeparator();
    edit->addAction(preferencesAction);

    QMenu *find = menuBar->addMenu(tr("Fin&d"));
    find->addAction(searchPanelAction);
    find->addAction(findNextAction);
    find->addSeparator();
    find->addAction(replaceAction);
    find->addAction(replaceAndFindNextAction);
    find->addAction(replaceAllAction);

    QMenu *insert = menuBar->addMenu(tr("&Insert"));
    insert->addMenu(singleTagMenu);
    insert->addMenu(doubleTagMenu);

    QMenu *view = menuBar->addMenu(tr("&View"));
    view->addAction(renderNowAction);
    view->addAction(autoRenderingMenu);
    view->addAction(stopRenderingAction);
    view->addSeparator();
    view->addAction(applyTemplateMenu);
    view->addAction(applyCSSMenu);
    view->addAction(lineBreakValidationMenuItem);
    view->addAction(lineNumbersMenu);
    view->addSeparator();
    view->addAction(clearCacheAction);
    view->addAction(saveCSSAndClearCacheAction);
    view->addSeparator();
    view->addMenu(browserMenu);

    QMenu *window = menuBar->addMenu(tr("&Window"));
    window->addAction(showEditWindowAction);
    window->addAction(showTemplateWindowAction);
    window->addAction(showCSSWindowAction);
    window->addAction(showViewWindowAction);
    window->addAction(showHTMLCheckerWindowAction);
    window->addSeparator();
    window->addAction(showTagPaletteMenu);
    window->addAction(showColorPanelMenu);
    window->addAction(showTagLibraryWindowAction);
}

void TWAppDelegate::applicationWillFinishLaunching()
{
    TWPreferences::sharedPref();
    TWHTMLTagLibrary::sharedTagLibrary()->validateTagListChange();
    TWTemplateWindowController::sharedTemplateController();
    TWCSSWindowController::sharedCSSController();
    TWPreview::shared();
    TWEditWindowController::sharedEditWindowController();
    // The shipped checkers go where the preferences look for them first, unless something is there.
    TWCheckerScripts::installIfMissing(TWApplicationDataFolder());
    TWHTMLCheckerWindowController::sharedCheckerController();
    // A run that did not end cleanly left its texts: they are newer than the store's. Files
    // handed over at launch still open after them.
    recoveredTexts = TWRecoveryCopy::shared()->restore();
}

bool TWAppDelegate::applicationOpenFile(const QString &path)
{
    return openFile(path);
}

void TWAppDelegate::applicationDidFinishLaunching()
{
    setTagColoringMenu(TWPreferences::sharedPref()->tagColoring());
    setViewOnExBrowserMenu();
    TWTemplateWindowController::sharedTemplateController()->loadTemplateAtAppLaunch();
    TWCSSWindowController::sharedCSSController()->loadCSSAtAppLaunch();
    TWColorPanelController::sharedColorPanel();
    TWHTMLCheckerWindowController::sharedCheckerController()->setupAtAppLaunch();
    if (TWPreview *viewer = TWPreview::shared())
        viewer->setupAtAppLaunch();
    TWEditWindowController::sharedEditWindowController()->loadTextAtAppLaunch();
    launching = false;
    showStartNotices();
    TWRecoveryCopy::shared()->start();
}

void TWAppDelegate::showStartNotices()
{
    QStringList notices;
    const TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
    if (!store->setAsideFileName().isEmpty())
        notices << tr("Your settings file could not be read. It was kept as %1, and Tagwright started with its defaults.")
                       .arg(store->setAsideFileName());
    if (!store->restoredFileName().isEmpty())
        notices << tr("When Tagwright last quit, your settings and texts could not be saved in %1. They were kept "
                      "in %2 and are back now.")
                       .arg(store->fileName(), store->restoredFileName());
    const TWHTMLTagLibrary *library = TWHTMLTagLibrary::sharedTagLibrary();
    if (!library->setAsideFileName().isEmpty())
        notices << tr("Your tag library could not be read (%1). It was kept in %2; the standard library is used "
                      "meanwhile.")
                       .arg(library->setAsideReason(), library->setAsideFileName());
    if (recoveredTexts)
        notices << tr("Tagwright did not quit properly last time. The texts you were working on have been recovered.");
    if (!notices.isEmpty())
        TWEditWindowController::sharedEditWindowController()->messageBar()->showMessage(notices.join(u'\n'));
}

void TWAppDelegate::applicationWillTerminate()
{
    TWPreferences::sharedPref()->savePrefs();
    saveAppProperties();
    TWEditWindowController::sharedEditWindowController()->saveWindowProperties();
    if (TWPreview *viewer = TWPreview::shared())
        viewer->saveWindowProperties();
    TWInsertTagPaletteController::sharedInsertTagPalette()->saveWindowProperties();
    TWColorPanelController::sharedColorPanel()->saveWindowProperties();
    TWTemplateWindowController::sharedTemplateController()->saveWindowProperties();
    TWCSSWindowController::sharedCSSController()->saveWindowProperties();
    TWHTMLCheckerWindowController::sharedCheckerController()->saveWindowProperties();
    // The preferences flushed the store already; the window state written since must
    // reach the disk too. A store that cannot be written loses nothing: the state goes to a
    // file of its own that the next start takes back, and failing that the recovery copy stays.
    TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
    bool kept = store->synchronize();
    if (!kept) {
        const QString copy = store->keepUnsavedState();
        kept = !copy.isEmpty();
        if (kept)
            std::fprintf(stderr, "Tagwright could not save its state in %s; it was kept in %s.\n",
                         qPrintable(store->fileName()), qPrintable(copy));
        else
            std::fprintf(stderr, "Tagwright could not save its state in %s, nor anywhere else.\n",
                         qPrintable(store->fileName()));
    }
    if (kept)
        TWRecoveryCopy::shared()->discard();
    else
        TWRecoveryCopy::shared()->writeNow();
}

void TWAppDelegate::saveAppProperties()
{
    QVariantMap record;
    record.insert(QLatin1String(TWAppDefaultsKey::projectFilename), projectFilenameValue);
    record.insert(QLatin1String(TWAppDefaultsKey::lineNumbers), TWFlag::string(TWLineNumberGutter::lineNumbersShown()));
    TWUserDefaults::standardUserDefaults()->setObject(record, QLatin1String(TWAppDefaultsKey::record));
}

bool TWAppDelegate::openFile(const QString &path)
{
    switch (TWFileKindOfPath(path)) {
    case TWFileKind::project:
        return openProjectFile(path);
    case TWFileKind::templateFile:
        return TWTemplateWindowController::sharedTemplateController()->openTemplateFile(path);
    case TWFileKind::styleSheet:
        return TWCSSWindowController::sharedCSSController()->openCSSFile(path);
    case TWFileKind::html:
        break;
    }
    return TWEditWindowController::sharedEditWindowController()->openHTMLFile(path);
}

void TWAppDelegate::newProject()
{
    TWViewWindowController *viewer = TWViewWindowController::sharedViewWindowController();
    viewer->holdRenders();
    TWEditWindowController::sharedEditWindowController()->clearHTML();
    viewer->clearWithProject();
    TWTemplateWindowController::sharedTemplateController()->clearTemplate();
    TWCSSWindowController::sharedCSSController()->clearCSS();
    viewer->releaseRenders();
}

bool TWAppDelegate::openProjectFile(const QString &path)
{
    QString why;
    const std::optional<QVariantMap> project = TWProjectFile::read(path, &why);
    TWEditWindowController *htmlWindow = TWEditWindowController::sharedEditWindowController();
    const bool coversPage = TWProjectFile::windowEntry(project, TWProjectKey::editorWindow).has_value();
    // The default page takes the place of the user's page: it is kept, to be brought back.
    const QString previousPage = coversPage ? QString() : htmlWindow->getText();

    TWViewWindowController *viewer = TWViewWindowController::sharedViewWindowController();
    viewer->holdRenders();
    htmlWindow->loadDataFromDictionary(project);
    viewer->loadDataFromDictionary(project);
    TWTemplateWindowController::sharedTemplateController()->loadDataFromDictionary(project);
    TWCSSWindowController::sharedCSSController()->loadDataFromDictionary(project);
    viewer->releaseRenders();

    if (!coversPage) {
        if (!project)
            TWBeep();
        else
            why = tr("It holds no HTML page.");
        TWMessageBar *bar = htmlWindow->messageBar();
        bar->showMessage(tr("%1: %2 The HTML window shows the default page in place of yours.")
                             .arg(QFileInfo(path).fileName(), why));
        bar->addAction(tr("Bring Back My Page"), [htmlWindow, previousPage] { htmlWindow->loadHTML(previousPage); });
    }
    return true;
}

void TWAppDelegate::saveProjectAs()
{
    const QString proposed = projectFilenameValue.isEmpty() ? QString() : QFileInfo(projectFilenameValue).fileName();
    const std::optional<QString> path
        = TWPanels::runSavePanel(QApplication::activeWindow(), proposed, {QLatin1String(TWExtension::project)});
    if (!path)
        return;
    saveProjectWithFilename(*path);
    projectFilenameValue = *path;
}

void TWAppDelegate::saveProjectWithFilename(const QString &path)
{
    QVariantMap project;
    TWEditWindowController::sharedEditWindowController()->saveDataToDictionary(project);
    TWViewWindowController::sharedViewWindowController()->saveDataToDictionary(project);
    TWTemplateWindowController::sharedTemplateController()->saveDataToDictionary(project);
    TWCSSWindowController::sharedCSSController()->saveDataToDictionary(project);
    if (!TWProjectFile::write(path, project))
        TWBeep();
}

void TWAppDelegate::exportCombinedHTMLAs()
{
    const std::optional<QString> path = TWPanels::runSavePanel(
        QApplication::activeWindow(), QString(), {QLatin1String(TWExtension::html), QLatin1String(TWExtension::htm)});
    if (!path)
        return;
    // The page the viewer shows, less the base and the style sheet; a failed write beeps.
    const TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
    TWEditWindowController *htmlWindow = TWEditWindowController::sharedEditWindowController();
    const QString page = TWPageComposer::combinedPage(
        templateWindow->topTemplateText(), htmlWindow->getText(), templateWindow->bottomTemplateText(),
        TWViewWindowController::sharedViewWindowController()->lineBreakValidation());
    htmlWindow->textView()->saveText(page, *path);
}

void TWAppDelegate::setAutoIndentationMenu(bool flag)
{
    autoIndentMenu->setChecked(flag);
}

void TWAppDelegate::setApplyTemplateMenuState(bool flag)
{
    applyTemplateMenu->setChecked(flag);
}

void TWAppDelegate::setAutoRenderMenu(bool flag)
{
    autoRenderingMenu->setChecked(flag);
}

void TWAppDelegate::setApplyCSSMenuState(bool flag)
{
    applyCSSMenu->setChecked(flag);
}

void TWAppDelegate::setLineBreakValidationMenu(bool flag)
{
    lineBreakValidationMenuItem->setChecked(flag);
}

void TWAppDelegate::setTagColoringMenu(bool flag)
{
    tagColoringMenuItem->setChecked(flag);
}

void TWAppDelegate::setTagPaletteMenuEnabled(bool flag)
{
    showTagPaletteMenu->setText(
        TWLocalizedString(flag ? TWTextKey::showInsertTagPalette : TWTextKey::hideInsertTagPalette));
}

void TWAppDelegate::toggleTagColoring()
{
    TWPreferences *preferences = TWPreferences::sharedPref();
    const bool coloring = !preferences->tagColoring();
    preferences->setTagColoring(coloring);
    setTagColoringMenu(coloring);
    TWEditWindowController::sharedEditWindowController()->setTagColoring(coloring);
    TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
    templateWindow->topTextView()->setTagColoring(coloring);
    templateWindow->bottomTextView()->setTagColoring(coloring);
}

void TWAppDelegate::setColorPanelMenuEnabled(bool flag)
{
    showColorPanelMenu->setText(TWLocalizedString(flag ? TWTextKey::showColorPanel : TWTextKey::hideColorPanel));
}

void TWAppDelegate::toggleColorPanel()
{
    TWColorPanelController *panel = TWColorPanelController::sharedColorPanel();
    panel->setShowWindow(!TWWindowOrder::isWindowVisible(panel));
}

void TWAppDelegate::toggleTagPalette()
{
    TWInsertTagPaletteController *palette = TWInsertTagPaletteController::sharedInsertTagPalette();
    palette->setShowWindow(!TWWindowOrder::isWindowVisible(palette));
}

void TWAppDelegate::setUpInsertTagMenu()
{
    singleTagMenu->clear();
    doubleTagMenu->clear();
    const TWTagMenuListing listing = TWTagMenuListing::list(TWHTMLTagLibrary::sharedTagLibrary()->tagList());
    singleObjectList = listing.single;
    doubleObjectList = listing.paired;
    const auto fill = [this](QMenu *menu, const QList<std::shared_ptr<TWHTMLTag>> &tags, bool single) {
        for (int index = 0; index < tags.size(); ++index) {
            const std::shared_ptr<TWHTMLTag> &tag = tags.at(index);
            QAction *item = menu->addAction(TWTagMenuListing::menuText(tag->title()));
            if (tag->hasShortcutKey()) {
                item->setShortcut(TWTagMenuListing::shortcut(*tag));
                item->setShortcutContext(Qt::ApplicationShortcut);
            }
            connect(item, &QAction::triggered, this, [this, index, single] {
                single ? insertSingleTagFromMenu(index) : insertDoubleTagFromMenu(index);
            });
        }
    };
    fill(singleTagMenu, singleObjectList, true);
    fill(doubleTagMenu, doubleObjectList, false);
}

void TWAppDelegate::insertTagFromMenu(const std::shared_ptr<TWHTMLTag> &tag)
{
    TWEditorTextView *view = TWEditorTextView::textViewToBeEdited();
    if (!view) {
        TWBeep();
        return;
    }
    view->insertTag(*tag);
}

void TWAppDelegate::insertSingleTagFromMenu(int index)
{
    if (index >= 0 && index < singleObjectList.size())
        insertTagFromMenu(singleObjectList.at(index));
}

void TWAppDelegate::insertDoubleTagFromMenu(int index)
{
    if (index >= 0 && index < doubleObjectList.size())
        insertTagFromMenu(doubleObjectList.at(index));
}

void TWAppDelegate::setViewOnExBrowserMenu()
{
    browserMenu->clear();
    const QStringList browsers = TWPreferences::sharedPref()->exBrowsers();
    for (int index = 0; index < std::min<int>(int(browsers.size()), maxBrowserItems); ++index) {
        QAction *item = browserMenu->addAction(TWExternalBrowser::title(browsers.at(index)));
        // Keys 1 to 9, then 0 for the tenth.
        const Qt::Key digit = Qt::Key(Qt::Key_0 + (index + 1) % 10);
        item->setShortcut(QKeySequence(Qt::CTRL | Qt::META | digit));
        item->setShortcutContext(Qt::ApplicationShortcut);
        connect(item, &QAction::triggered, this, [this, index] { viewOnExBrowser(index); });
    }
}

void TWAppDelegate::viewOnExBrowser(int index)
{
    // The list is read afresh: the submenu is rebuilt whenever it changes, so the places agree.
    const QStringList browsers = TWPreferences::sharedPref()->exBrowsers();
    if (index >= 0 && index < browsers.size())
        TWViewWindowController::sharedViewWindowController()->viewOnApp(browsers.at(index));
}

TWDocumentWindow *TWAppDelegate::keyDocumentWindow() const
{
    if (auto *active = dynamic_cast<TWDocumentWindow *>(QApplication::activeWindow()))
        return active;
    for (QWidget *window : TWWindowOrder::shared()->orderedWindows()) {
        if (!TWWindowOrder::isWindowVisible(window))
            continue;
        if (auto *document = dynamic_cast<TWDocumentWindow *>(window))
            return document;
    }
    return nullptr;
}

void TWAppDelegate::newDocument()
{
    if (TWDocumentWindow *window = keyDocumentWindow())
        window->newDocument();
}

void TWAppDelegate::open()
{
    const QStringList paths = TWPanels::runOpenPanel(QApplication::activeWindow(), openableExtensions(), true);
    if (!paths.isEmpty())
        openFile(paths.first());
}

void TWAppDelegate::saveDocument()
{
    if (TWDocumentWindow *window = keyDocumentWindow())
        window->saveDocument();
}

void TWAppDelegate::saveDocumentAs()
{
    if (TWDocumentWindow *window = keyDocumentWindow())
        window->saveDocumentAs();
}

void TWAppDelegate::updateInsertActions()
{
    const TWDocumentWindow *window = keyDocumentWindow();
    const bool enabled = window && window->canInsertFiles();
    insertFileLinkAction->setEnabled(enabled);
    insertImageAction->setEnabled(enabled);
}

void TWAppDelegate::insertFileLink()
{
    if (TWDocumentWindow *window = keyDocumentWindow(); window && window->canInsertFiles())
        window->insertFileLink();
}

void TWAppDelegate::insertImage()
{
    if (TWDocumentWindow *window = keyDocumentWindow(); window && window->canInsertFiles())
        window->insertImage();
}

void TWAppDelegate::toggleAutoIndentation()
{
    TWEditWindowController::sharedEditWindowController()->toggleAutoIndentation();
}

void TWAppDelegate::toggleApplyTemplate()
{
    TWTemplateWindowController::sharedTemplateController()->toggleApplyTemplate();
}

void TWAppDelegate::askForLineNumber()
{
    if (!lineNumberDialog)
        lineNumberDialog = new TWLineNumberDialog(QApplication::activeWindow());
    lineNumberDialog->lineNumberTextField()->selectAll();
    if (lineNumberDialog->exec() == QDialog::Accepted)
        jumpToLineNumber(lineNumberDialog->lineNumber());
}

void TWAppDelegate::jumpToLineNumber(int lineNumber)
{
    if (TWEditorTextView *view = TWEditorTextView::textViewToBeEdited())
        view->jumptoLineNumber(lineNumber);
}

void TWAppDelegate::showEditWindow()
{
    TWEditWindowController::sharedEditWindowController()->showWindow();
}

void TWAppDelegate::showTemplateWindow()
{
    TWTemplateWindowController::sharedTemplateController()->showWindow();
}

void TWAppDelegate::showCSSWindow()
{
    TWCSSWindowController::sharedCSSController()->showWindow();
}

void TWAppDelegate::showViewWindow()
{
    TWViewWindowController::sharedViewWindowController()->showWindow();
}

void TWAppDelegate::showHTMLCheckerWindow()
{
    TWHTMLCheckerWindowController::sharedCheckerController()->showWindow();
}
