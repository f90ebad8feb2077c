#pragma once

#include "app/TWDocumentWindow.h"

#include <QMainWindow>
#include <QPointer>
#include <QString>
#include <QVariantMap>

#include <optional>

class TWMessageBar;
namespace Ui {
class TWTemplateWindow;
}
class TWUndoHistory;
class TWTemplateTextView;

// The template window: the markup around the HTML, edited as a top half and a bottom half,
// kept as one text with a divider between them, and switched on or off for the preview.
class TWTemplateWindowController : public QMainWindow, public TWDocumentWindow
{
    Q_OBJECT
public:
    static TWTemplateWindowController *sharedTemplateController();
    ~TWTemplateWindowController() override;

    TWTemplateTextView *topTextView() const { return topTemplateTextView; }
    TWTemplateTextView *bottomTextView() const { return bottomTemplateTextView; }
    // The half the user works in (the one that had the keyboard focus last).
    TWEditorTextView *activeTextView() const override;
    TWUndoHistory *undoHistory() const { return undoHistoryValue; }

    void loadTemplateAtAppLaunch();
    // Splits the text at the first divider into the two halves.
    void loadTemplate(const QString &text);
    QString getCombinedText() const;
    // The halves as the preview and the export use them: "" while the template is off.
    QString topTemplateText() const;
    QString bottomTemplateText() const;

    bool applyTemplate() const { return applyTemplateFlag; }
    void setApplyTemplate(bool flag);
    void toggleApplyTemplate();

    const QString &templateFilename() const { return templateFilenameValue; }
    void setTemplateFilename(const QString &path);
    static QString titleForFilename(const QString &path);

    void setDefaultTemplateText();
    void clearTemplate();
    // Always answers true; an unreadable or undecodable file beeps and changes nothing.
    bool openTemplateFile(const QString &path);
    void saveTemplate();
    void saveTemplateFileAs(const QString &path);

    void newDocument() override { clearTemplate(); }
    void saveDocument() override { saveTemplate(); }
    void saveDocumentAs() override;
    bool canInsertFiles() const override { return true; }
    void insertFileLink() override;
    void insertImage() override;

    void changeFont(const QFont &font);
    void showWindow();
    // Why a file did not open.
    TWMessageBar *messageBar() const;
    void saveWindowProperties() const;
    // The template's part of a project: its file name, its text and whether it is applied.
    void saveDataToDictionary(QVariantMap &project) const;
    void loadDataFromDictionary(const std::optional<QVariantMap> &project);

    // After each change of a half: the copy follows, then the half colours and renders.
    void topTextDidChange();
    void bottomTextDidChange();

Q_SIGNALS:
    // The document now belongs to another file (or to none).
    void templateFilenameChanged();

private:
    TWTemplateWindowController();
    void awakeFromNib();
    QVariantMap saveData() const;
    void rememberActiveHalf(QWidget *now);

    Ui::TWTemplateWindow *ui;
    TWTemplateTextView *bottomTemplateTextView;
    TWTemplateTextView *topTemplateTextView;
    bool applyTemplateFlag = true;
    QString topTemplateTextValue;
    QString bottomTemplateTextValue;
    QString templateFilenameValue;
    // "Show Window" as read from the window defaults at creation.
    bool showAtLaunch = true;
    TWTemplateTextView *lastActiveHalf;
    TWUndoHistory *undoHistoryValue;
};
