#pragma once

#include <QWidget>

class QPlainTextEdit;

// The line numbers beside an editor's text: one per line ended by a line feed (the lines Jump
// to Line counts), in the editor's font, the line of the insertion point marked. Only the
// lines in view are drawn, so a long page costs no more than a short one.
class TWLineNumberGutter : public QWidget
{
    Q_OBJECT
public:
    explicit TWLineNumberGutter(QPlainTextEdit *editor);

    // Shown or not, in every editor; on at first.
    static bool lineNumbersShown() { return shown; }
    static void setLineNumbersShown(bool flag);

    // The width the numbers need (0 while hidden); the editor gives its text that much less room.
    int gutterWidth() const;
    // The line numbers (1-based) drawn at the moment, from the top.
    QList<int> visibleLineNumbers() const;

Q_SIGNALS:
    // The numbers need another width: the editor makes room and places the gutter again.
    void widthChanged();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    template <class Visit> void forEachVisibleLine(int bottom, Visit visit) const;
    void lineCountChanged();
    int digitsNeeded() const;

    static inline bool shown = true;
    QPlainTextEdit *editor;
    int digits = 0;
    int currentLine = -1;
};
