#pragma once

#include "platform/TWRange.h"

#include <QPlainTextEdit>
#include <QString>

#include <optional>

class TWHTMLTag;
class TWLineNumberGutter;
class TWStringSearch;
class TWTagHighlighter;
class TWUndoHistory;

// The editing view of every document window: a plain-text editor that defers colouring and
// preview rendering until the user stops typing (by counting timers), indents new lines like
// the line before, inserts tags, colour codes, links and images at the selection, takes one
// dropped file as a link or an image, jumps to a line, and reads and writes its files in the
// chosen encoding and line end.
class TWEditorTextView : public QPlainTextEdit
{
    Q_OBJECT
public:
    explicit TWEditorTextView(QWidget *parent = nullptr);

    // The text view that insertions and commands go to: the active text view of the frontmost
    // visible document window, or nullptr.
    static TWEditorTextView *textViewToBeEdited();

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
    bool tagColoring() const { return tagColoringFlag; }
    void setTagColoring(bool flag);
    const QColor &editorTextColor() const { return editorTextColorValue; }
    void setEditorTextColor(const QColor &color);

    // Colouring timers scheduled and not yet fired.
    int timerCount() const { return timerCountValue; }
    // A direct request to repaint the tag colours: done now unless a colouring timer is pending.
    void colorText();
    // Paints the tag colours so that the whole text shows them.
    virtual void paintTagColors();
    TWTagHighlighter *tagHighlighter() const { return highlighter; }
    TWLineNumberGutter *lineNumberGutter() const { return gutter; }

    // The scanners of tag colouring, on a text (the view's whole text).
    static int typeOfText(QStringView text, qsizetype index);
    static TWRange rangeOfCommentInText(QStringView text, qsizetype index);
    static TWRange rangeOfTagInText(QStringView text, QString &name, qsizetype index);
    static TWRange rangeOfPlainText(QStringView text, qsizetype index);

    // The handler run after every user edit (typing, paste, deletion, insertion; not a whole
    // text replaced by a load): schedules the colouring and asks the viewer to render.
    void textDidChange();

    // The whole text, every character as typed (line breaks as LF).
    QString string() const;
    // The selected text, as string() gives text.
    QString selectedString() const;
    // Replaces the whole text; this is a load, not an edit: no textDidChange, and the undo
    // history starts afresh.
    void setString(const QString &text);
    TWRange selectedRange() const;
    void setSelectedRange(TWRange range);
    // Replaces the selection as if typed: undoable, and followed by textDidChange.
    void insertText(const QString &text);

    void insertTag(const TWHTMLTag &tag);
    // Inserts the code and selects it, so that the next code chosen replaces it.
    void insertColorCode(const QString &code);
    void insertLinkForFile(const QString &path);
    // Nothing happens when the file cannot be read as an image.
    void insertImageOfFile(const QString &path);
    // Puts the insertion point at the start of a line (1-based; below 1 means 1, beyond the
    // last line means the end of the text), shows it and brings the window to the front.
    void jumptoLineNumber(int lineNumber);

    // Find and replace, as the find panel asks for them. `options` is the find options word
    // (TWFindOption). findString selects and shows the match; replaceString replaces the
    // selection when it holds the search text, as typing would, and selects the replacement.
    virtual TWRange findString(const QString &search, unsigned options);
    TWRange replaceString(const QString &search, const QString &replacement, unsigned options);
    // The commands: they beep when there is nothing to find or replace.
    virtual void doFindString(const QString &search, unsigned options);
    virtual void doReplaceString(const QString &search, const QString &replacement, unsigned options);
    virtual void doReplaceAndFind(const QString &search, const QString &replacement, unsigned options);
    // Replaces every place from the selection on in the search direction (with wrap around,
    // all of them) in one undoable step, and tells how many.
    virtual void doReplaceAllString(const QString &search, const QString &replacement, unsigned options);

    // Every view undoes through an undo history of its own; the two halves of the template
    // share their window's.
    TWUndoHistory *undoHistory() const { return history; }
    void setUndoHistory(TWUndoHistory *shared);
    void performUndo();
    void performRedo();
    // Takes back (or puts again) the document's own last edit, as a step of a Replace All.
    void stepDocument(bool back);
    // Selects a found or replaced range and scrolls it into view.
    virtual void showFoundRange(TWRange range);

    // The file's text with LF line ends in the preferred encoding. When the file cannot be
    // read or decoded: a beep, and the view's current text comes back (*ok false).
    QString loadTextFromFile(const QString &path, bool *ok = nullptr) const;
    // Writes the text with the preferred line end and encoding, atomically. A failed write
    // beeps and leaves the old file as it was; answers whether the file was written.
    bool saveText(const QString &text, const QString &path) const;
    static QString convertReturnCodeOfTextToLF(const QString &text);
    static QString convertReturnCodeOfText(const QString &text, int returnCode);

    // The text of an <a> opening tag and of an <img> tag for a file, as inserted.
    static QString linkOpeningText(const QString &relativePath);
    static QString imageText(const QString &relativePath, QSize pixels);

Q_SIGNALS:
    // After each user edit of the text (not after a load by setString).
    void userEdited();
    // After a Replace All (or its undo or redo) changed the text.
    void textReplaced();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragMoveEvent(QDragMoveEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    // Pasted and dropped text comes in with LF line breaks only.
    void insertFromMimeData(const QMimeData *source) override;
    QMimeData *createMimeDataFromSelection() const override;
    void inputMethodEvent(QInputMethodEvent *event) override;

    // During a file drag, whether the insertion point is drawn to show where the drop goes.
    bool shouldDrawInsertionPoint() const;

    // The text as string() gives it, kept until the next change, so that stepping through the
    // matches of a long text does not copy it at every step.
    const QString &searchableText() const;
    // The two passes of a find: from the selection on in the search direction, and, with wrap
    // around, from the other end up to and including the selection's start.
    static TWRange searchPastSelection(QStringView text, const TWStringSearch &search, TWRange selection,
                                       unsigned options);
    static TWRange searchWrappedAround(QStringView text, const TWStringSearch &search, TWRange selection,
                                       qsizetype searchLength, unsigned options);
    // Puts the replacement at every place (sorted ranges of `text`, the view's text) as one
    // edit of the document, without counting it as typing.
    void replacePlaces(const QString &text, const QList<TWRange> &places, const QString &replacement);
    // The window-modal report of a Replace All.
    void showReplaceAllCount(qsizetype count);
    static void renderIfAutorender();
    // Beyond this many unchanged characters between two places, the places are changed
    // one by one; closer places are changed together with the text between them.
    static constexpr qsizetype placesJoinedWithin = 64;

private:
    void colouringTimerFired();
    void autoIndentAfterReturn();
    // Places the selection for a file drag: kept as it was before the drag (Ctrl held) or at
    // the drop point.
    void placeDropSelection(const QPointF &position, Qt::KeyboardModifiers modifiers);
    static bool isKeepSelection(Qt::KeyboardModifiers modifiers);
    static void clearDragState();
    // Makes room for the line numbers beside the text and puts them there.
    void placeGutter();

    static inline bool tagColoringSuspended = true;
    static inline bool renderSuspended = true;
    // Negative until set: the first view to be made takes the preference.
    static inline float suspendTimeSeconds = -1.0f;
    // One file drag is tracked at a time for all views.
    static inline bool dropSign = false;
    static inline bool fileDrop = false;
    static inline bool keepSelection = false;
    static inline TWRange selectionBeforeDragging = {0, 0};

    bool autoIndentationFlag = false;
    bool tagColoringFlag = true;
    bool autoRenderEnabledFlag = true;
    int timerCountValue = 0;
    QColor editorTextColorValue;
    bool loadingText = false;
    TWUndoHistory *history;
    TWLineNumberGutter *gutter;
    // Nothing until asked for after a change.
    mutable std::optional<QString> searchableTextValue;
    TWTagHighlighter *highlighter;
};
