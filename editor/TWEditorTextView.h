#pragma once

#include <QPlainTextEdit>
#include <QString>

// The editing view of every document window: a plain-text editor that reads and writes its
// files in the chosen encoding and line end, keeps its own editing flags and shares the
// suspension settings of all editors.
class TWEditorTextView : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit TWEditorTextView(QWidget *parent = nullptr);

    // Shared by every editor text view: whether colouring and rendering wait until the user
    // stops typing, and for how long.
    static void setSuspendTime(float seconds);
    static void setRenderSuspendFlag(bool flag);
    static void setTagColoringSuspendFlag(bool flag);
    static float tagColoringSuspendTime() { return suspendTimeSeconds; }
    static bool renderSuspendFlag() { return renderSuspended; }
    static bool tagColoringSuspendFlag() { return tagColoringSuspended; }

    bool autoIndentation() const { return autoIndentationFlag; }
    // Also sets the check mark of the Auto Indent menu item.
    void setAutoIndentation(bool flag);
    void toggleAutoIndentation();
    bool autoRenderEnabled() const { return autoRenderEnabledFlag; }
    void setAutoRenderEnabled(bool flag) { autoRenderEnabledFlag = flag; }

    // The whole text.
    QString string() const { return toPlainText(); }
    // Replaces the whole text; this is a load, not an edit: the undo history starts afresh.
    void setString(const QString &text);

    // The file's text with LF line ends in the preferred encoding. When the file cannot be
    // read or decoded: a beep, and the view's current text comes back (*ok false).
    QString loadTextFromFile(const QString &path, bool *ok = nullptr) const;
    // Writes the text with the preferred line end and encoding, atomically. A failed write
    // beeps and leaves the old file as it was; answers whether the file was written.
    bool saveText(const QString &text, const QString &path) const;
    static QString convertReturnCodeOfTextToLF(const QString &text);
    static QString convertReturnCodeOfText(const QString &text, int returnCode);

private:
    static inline bool tagColoringSuspended = true;
    static inline bool renderSuspended = true;
    // Negative until set: the first view to wake takes the preference.
    static inline float suspendTimeSeconds = -1.0f;

    bool autoIndentationFlag = false;
    bool autoRenderEnabledFlag = true;
};
