#pragma once

#include <QList>
#include <QObject>
#include <QString>

class QAction;
class QMenuBar;
class TWDocumentWindow;

// The spine of the application: creates the shared controllers in a fixed order at launch,
// opens the files handed over by the desktop, tells whether the application is still
// launching, owns the menu commands (shared by every window's menu bar) and saves the
// application's state at quit.
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

    // Routes a path to the controller that opens its kind of file.
    bool openFile(const QString &path);

    // Menu state.
    void setAutoIndentationMenu(bool flag);

    // Adds the application's menus to a window's menu bar.
    void populateMenuBar(QMenuBar *menuBar);

    // The document window the user works in: the active one, else the frontmost visible one.
    TWDocumentWindow *keyDocumentWindow() const;

    QAction *autoIndentMenu = nullptr;

private:
    TWAppDelegate();
    void createActions();

    // Commands
    void newDocument();
    void open();
    void saveDocument();
    void saveDocumentAs();
    void toggleAutoIndentation();

    QAction *newAction = nullptr;
    QAction *openAction = nullptr;
    QAction *saveAction = nullptr;
    QAction *saveAsAction = nullptr;
    QAction *quitAction = nullptr;
    QAction *undoAction = nullptr;
    QAction *redoAction = nullptr;
    QAction *cutAction = nullptr;
    QAction *copyAction = nullptr;
    QAction *pasteAction = nullptr;
    QAction *selectAllAction = nullptr;

    QString projectFilenameValue;
    // Set from process start to the end of applicationDidFinishLaunching, never again.
    static inline bool launching = true;
};
