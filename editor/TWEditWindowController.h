#pragma once

#include "app/TWDocumentWindow.h"

#include <QMainWindow>
#include <QString>
#include <QVariantMap>

#include <optional>

namespace Ui {
class TWEditWindow;
}
class TWEditorTextView;
class TWHTMLTag;
class TWMessageBar;

// The HTML document window: the one HTML document the user is writing, with the name of
// its file. New and open replace the text without asking; the text survives a restart
// through the window defaults.
class TWEditWindowController : public QMainWindow, public TWDocumentWindow
{
    Q_OBJECT
public:
    static TWEditWindowController *sharedEditWindowController();
    ~TWEditWindowController() override;

    TWEditorTextView *textView() const { return htmlText; }
    TWEditorTextView *activeTextView() const override { return htmlText; }
    // Messages that must not interrupt the user: why a file did not open, what happened at start.
    TWMessageBar *messageBar() const;

    const QString &htmlFilename() const { return htmlFilenameValue; }
    void setHTMLFilename(const QString &path);
    QString getText() const;

    // Replaces the whole text, recolours it and renders when due.
    void loadHTML(const QString &text);
    void loadDefaultPage();
    void clearHTML();
    // Always answers true; an unreadable or undecodable file beeps and changes nothing.
    bool openHTMLFile(const QString &path);
    void saveHTML();
    void saveHTMLFileAs(const QString &path);

    void newDocument() override { clearHTML(); }
    void saveDocument() override { saveHTML(); }
    void saveDocumentAs() override;
    bool canInsertFiles() const override { return true; }
    void insertFileLink() override;
    void insertImage() override;

    void insertTag(const TWHTMLTag &tag);
    void insertColorCode(const QString &code);
    void setTagColoring(bool flag);

    void toggleAutoIndentation();
    void changeFont(const QFont &font);
    void changeBGColor(const QColor &color);

    void showWindow();
    void openWindowAtAppLaunch();
    void loadTextAtAppLaunch();
    void saveWindowProperties() const;
    // The document's part of a project: its text, file name and auto-indentation. A project
    // without it (or none at all) gets the default page.
    void saveDataToDictionary(QVariantMap &project) const;
    void loadDataFromDictionary(const std::optional<QVariantMap> &project);

    // The window title for a file name ("" for a document without a file).
    static QString titleForFilename(const QString &path);

Q_SIGNALS:
    // The document now belongs to another file (or to none).
    void htmlFilenameChanged();

private:
    TWEditWindowController();
    void awakeFromNib();
    QVariantMap saveData() const;

    Ui::TWEditWindow *ui;
    TWEditorTextView *htmlText;
    QString htmlFilenameValue;
};
