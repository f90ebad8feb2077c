#pragma once

#include <QList>
#include <QObject>
#include <QString>

#include <memory>

class QAction;
class QMenu;
class QMenuBar;
class TWDocumentWindow;
class TWHTMLTag;
class TWLineNumberDialog;

// The spine of the application: creates the shared controllers in a fixed order at launch,
// opens the files handed over by the desktop, tells whether the application is still
// launching, owns the menu commands (shared by every window's menu bar) with their check
// marks, and saves the application's state at quit.
class TWAppDelegate : public QObject
{
    Q_OBJECT
public:
    static TWAppDelegate *sharedAppDelegate();
    ~TWAppDelegate() override;

    void applicationWillFinishLaunching();
    // A file handed over by the desktop (the command line); answers whether it was opened.
    bool applicationOpenFile(const QString &path);
    void applicationDidFinishLaunching();
    void applicationWillTerminate();
    bool isLaunching() const { return launching; }

    void saveAppProperties();
    const QString &projectFilename() const { return projectFilenameValue; }

    // Routes a path by its extension, ignoring case, to the controller that opens its kind.
    bool openFile(const QString &path);

    // Projects: a snapshot of the HTML, viewer, template and style-sheet windows in one file.
    void newProject();
    // Puts the project's snapshot back into the windows; always answers true. A file that is
    // no project gives the HTML window the default page, and the other windows stay.
    bool openProjectFile(const QString &path);
    void saveProjectAs();
    // A project that cannot be written beeps.
    void saveProjectWithFilename(const QString &path);
    // Template top half, HTML and bottom half as one page, in the preferred encoding and line end.
    void exportCombinedHTMLAs();

    // Menu state.
    void setAutoIndentationMenu(bool flag);
    void setApplyTemplateMenuState(bool flag);
    void setAutoRenderMenu(bool flag);
    void setApplyCSSMenuState(bool flag);
    void setLineBreakValidationMenu(bool flag);
    void setTagColoringMenu(bool flag);
    // The show/hide title of the palette's Window menu item: "show" when flag is on.
    void setTagPaletteMenuEnabled(bool flag);
    // The show/hide title of the colour panel's Window menu item: "show" when flag is on.
    void setColorPanelMenuEnabled(bool flag);
    // Rebuilds the two insert-tag submenus from the tag library.
    void setUpInsertTagMenu();
    void insertSingleTagFromMenu(int index);
    void insertDoubleTagFromMenu(int index);
    QMenu *insertSingleTagMenu() const { return singleTagMenu; }
    QMenu *insertDoubleTagMenu() const { return doubleTagMenu; }
    // Rebuilds the In Browser submenu from the preference's browser list (ten at most).
    void setViewOnExBrowserMenu();
    QMenu *viewOnExBrowserMenu() const { return browserMenu; }

    // Commands.
    void jumpToLineNumber(int lineNumber);
    void showEditWindow();
    void showTemplateWindow();
    void showCSSWindow();
    void showViewWindow();
    void showHTMLCheckerWindow();
    void viewOnExBrowser(int index);

    // Adds the application's menus to a window's menu bar.
    void populateMenuBar(QMenuBar *menuBar);

    // The document window the user works in: the active one, else the frontmost visible one.
    TWDocumentWindow *keyDocumentWindow() const;

    QAction *autoIndentMenu = nullptr;
    QAction *applyTemplateMenu = nullptr;
    QAction *autoRenderingMenu = nullptr;
    QAction *applyCSSMenu = nullptr;
    QAction *lineBreakValidationMenuItem = nullptr;
    QAction *tagColoringMenuItem = nullptr;
    QAction *showTagPaletteMenu = nullptr;
    QAction *showColorPanelMenu = nullptr;

private:
    TWAppDelegate();
    void createActions();

    void newDocument();
    void open();
    void saveDocument();
    void saveDocumentAs();
    void insertFileLink();
    void insertImage();
    void updateInsertActions();
    void toggleAutoIndentation();
    void toggleApplyTemplate();
    void toggleTagColoring();
    void toggleTagPalette();
    void toggleColorPanel();
    void insertTagFromMenu(const std::shared_ptr<TWHTMLTag> &tag);
    void askForLineNumber();
    // Tells in the HTML window what happened to the user's data at start, if anything did.
    void showStartNotices();

    QAction *newAction = nullptr;
    QAction *openAction = nullptr;
    QAction *newProjectAction = nullptr;
    QAction *saveProjectAsAction = nullptr;
    QAction *exportCombinedHTMLAction = nullptr;
    QAction *saveAction = nullptr;
    QAction *saveAsAction = nullptr;
    QAction *insertFileLinkAction = nullptr;
    QAction *insertImageAction = nullptr;
    QAction *quitAction = nullptr;
    QAction *undoAction = nullptr;
    QAction *redoAction = nullptr;
    QAction *cutAction = nullptr;
    QAction *copyAction = nullptr;
    QAction *pasteAction = nullptr;
    QAction *selectAllAction = nullptr;
    QAction *jumpToLineAction = nullptr;
    QAction *preferencesAction = nullptr;
    QAction *lineNumbersMenu = nullptr;
    QAction *searchPanelAction = nullptr;
    QAction *findNextAction = nullptr;
    QAction *replaceAction = nullptr;
    QAction *replaceAndFindNextAction = nullptr;
    QAction *replaceAllAction = nullptr;
    QAction *showEditWindowAction = nullptr;
    QAction *showTemplateWindowAction = nullptr;
    QAction *showCSSWindowAction = nullptr;
    QAction *showViewWindowAction = nullptr;
    QAction *showHTMLCheckerWindowAction = nullptr;
    QAction *showTagLibraryWindowAction = nullptr;
    QAction *renderNowAction = nullptr;
    QAction *stopRenderingAction = nullptr;
    QAction *clearCacheAction = nullptr;
    QAction *saveCSSAndClearCacheAction = nullptr;
    QMenu *browserMenu = nullptr;
    QMenu *singleTagMenu = nullptr;
    QMenu *doubleTagMenu = nullptr;
    QList<std::shared_ptr<TWHTMLTag>> singleObjectList;
    QList<std::shared_ptr<TWHTMLTag>> doubleObjectList;
    TWLineNumberDialog *lineNumberDialog = nullptr;

    QString projectFilenameValue;
    bool recoveredTexts = false;
    // Set from process start to the end of applicationDidFinishLaunching, never again.
    static inline bool launching = true;
};
