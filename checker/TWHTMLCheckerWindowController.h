#pragma once

#include "checker/TWCheckerController.h"
#include "checker/TWOutputLimit.h"

#include <QMainWindow>
#include <QPointer>
#include <QStringList>

namespace Ui {
class TWHTMLCheckerWindow;
}
class TWChecker;

// The checker window: runs the HTML checker on the HTML document's file, or the CSS checker
// on the style sheet's file, as last saved, and shows what it prints as it prints it. One
// button starts a run and, while it runs, stops it.
class TWHTMLCheckerWindowController : public QMainWindow, public TWCheckerController
{
    Q_OBJECT
public:
    static TWHTMLCheckerWindowController *sharedCheckerController();
    ~TWHTMLCheckerWindowController() override;

    enum CodeType { html = 0, css = 1 };
    int codeType() const;
    void setCodeType(int type);

    const QString &checkerFilename() const { return checkerFilenameValue; }
    void setCheckerFilename(const QString &path);
    // The program and its arguments: the checker's path (a leading "~" expanded), its options
    // split at single spaces with the empty pieces left out, and the file last. No quoting.
    QStringList checkerCommand() const;

    void checkerButtonClicked();
    bool isRunning() const { return running; }
    QString text() const;

    void setupAtAppLaunch();
    void showWindow();
    void saveWindowProperties() const;

    // The checker's side of a run.
    void processFinished(TWChecker *checker, int terminationStatus) override;
    void processStarted(TWChecker *checker) override;
    void appendError(const QString &text) override;
    void appendOutput(const QString &text) override;
    void processCouldNotStart(TWChecker *checker, const QString &reason) override;

private:
    TWHTMLCheckerWindowController();
    void awakeFromNib();
    void setChecker(TWChecker *newChecker);
    void append(const QString &text);

    Ui::TWHTMLCheckerWindow *ui;
    QString checkerFilenameValue;
    bool filenameSpecified = false;
    bool running = false;
    QPointer<TWChecker> checker;
    TWOutputLimit outputLimit;
    // "Show Window" as read from the window defaults at creation.
    bool showAtLaunch = false;
};
