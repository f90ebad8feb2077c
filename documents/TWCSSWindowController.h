#pragma once

#include "app/TWDocumentWindow.h"

#include <QMainWindow>
#include <QString>
#include <QVariantMap>

#include <optional>

class TWMessageBar;
namespace Ui {
class TWCSSWindow;
}

// The style-sheet window: one CSS text. The preview uses the style sheet's file, so its text
// reaches the preview once saved; typing in it is never coloured and never renders.
class TWCSSWindowController : public QMainWindow, public TWDocumentWindow
{
    Q_OBJECT
public:
    static TWCSSWindowController *sharedCSSController();
    ~TWCSSWindowController() override;

    TWEditorTextView *textView() const { return cssTextView; }
    TWEditorTextView *activeTextView() const override { return cssTextView; }

    void loadCSSAtAppLaunch();
    // Replaces the text; nothing else happens.
    void loadCSS(const QString &text);
    void setDefaultCSSText();
    void clearCSS();
    // Always answers true; an unreadable or undecodable file beeps and changes nothing.
    bool openCSSFile(const QString &path);
    void saveCSS();
    void saveCSSFileAs(const QString &path);

    void newDocument() override { clearCSS(); }
    void saveDocument() override { saveCSS(); }
    void saveDocumentAs() override;

    const QString &cssFilename() const { return cssFilenameValue; }
    void setCSSFilename(const QString &path);
    static QString titleForFilename(const QString &path);

    void changeFont(const QFont &font);
    void showWindow();
    // Why a file did not open.
    TWMessageBar *messageBar() const;
    void saveWindowProperties() const;
    // The style sheet's part of a project: its file name and its text.
    void saveDataToDictionary(QVariantMap &project) const;
    void loadDataFromDictionary(const std::optional<QVariantMap> &project);

Q_SIGNALS:
    // The document now belongs to another file (or to none).
    void cssFilenameChanged();

private:
    TWCSSWindowController();
    void awakeFromNib();
    QVariantMap saveData() const;

    Ui::TWCSSWindow *ui;
    TWEditorTextView *cssTextView;
    QString cssFilenameValue;
    bool showAtLaunch = true;
};
