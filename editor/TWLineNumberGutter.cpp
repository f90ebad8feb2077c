#include "editor/TWLineNumberGutter.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QPainter>
#include <QPlainTextEdit>
#include <QTextBlock>
#include <QTextLayout>

namespace {

// Room for a few digits even in a short text, so typing the tenth line does not shift the text.
constexpr int minimumDigits = 3;
constexpr int padding = 4;
// Between the numbers and the text.
constexpr int gap = 8;

// Another class's editors, told of a change of the setting.
template <class Action> void forEachGutter(Action action)
{
    for (QWidget *widget : QApplication::allWidgets())
        if (auto *gutter = qobject_cast<TWLineNumberGutter *>(widget))
            action(gutter);
}

} // namespace

TWLineNumberGutter::TWLineNumberGutter(QPlainTextEdit *editor)
    : QWidget(editor)
    , editor(editor)
{
    // Scrolling moves the numbers with the text; an edit or a caret blink repaints their band.
    connect(editor, &QPlainTextEdit::updateRequest, this, [this](const QRect &rect, int dy) {
        if (dy != 0)
            scroll(0, dy);
        else
            update(0, rect.y(), width(), rect.height());
    });
    connect(editor, &QPlainTextEdit::blockCountChanged, this, &TWLineNumberGutter::lineCountChanged);
    // Only the numbers of the line left and the line entered change their look.
    connect(editor, &QPlainTextEdit::cursorPositionChanged, this, [this] {
        const int line = this->editor->textCursor().blockNumber();
        if (line == currentLine)
            return;
        for (const int changed : {currentLine, line}) {
            const QTextBlock block = this->editor->document()->findBlockByNumber(changed);
            if (block.isValid())
                update(0, this->editor->cursorRect(QTextCursor(block)).top(), width(), this->editor->fontMetrics().height());
        }
        currentLine = line;
    });
    digits = digitsNeeded();
}

void TWLineNumberGutter::setLineNumbersShown(bool flag)
{
    shown = flag;
    forEachGutter([](TWLineNumberGutter *gutter) { Q_EMIT gutter->widthChanged(); });
}

int TWLineNumberGutter::digitsNeeded() const
{
    return int(QString::number(editor->blockCount()).size());
}

int TWLineNumberGutter::gutterWidth() const
{
    if (!shown)
        return 0;
    return padding + gap + std::max(minimumDigits, digits) * editor->fontMetrics().horizontalAdvance(QLatin1Char('9'));
}

void TWLineNumberGutter::lineCountChanged()
{
    // Only a change of width lays the text out again: a new line within the same number of
    // digits costs nothing here.
    const int needed = digitsNeeded();
    if (needed == digits)
        return;
    digits = needed;
    Q_EMIT widthChanged();
}

template <class Visit> void TWLineNumberGutter::forEachVisibleLine(int bottom, Visit visit) const
{
    // Each line's number stands by its first row, where the editor would put a caret at its
    // start; the lines below follow at the heights the layout already knows.
    QTextBlock block = editor->cursorForPosition(QPoint(0, 0)).block();
    if (!block.isValid())
        return;
    const QAbstractTextDocumentLayout *layout = editor->document()->documentLayout();
    qreal top = editor->cursorRect(QTextCursor(block)).top() - block.layout()->lineAt(0).y();
    for (; block.isValid() && top <= bottom; block = block.next()) {
        if (block.isVisible()) {
            visit(block.blockNumber(), int(top + block.layout()->lineAt(0).y()));
            top += layout->blockBoundingRect(block).height();
        }
    }
}

QList<int> TWLineNumberGutter::visibleLineNumbers() const
{
    QList<int> numbers;
    forEachVisibleLine(editor->viewport()->height(), [&numbers](int line, int) { numbers << line + 1; });
    return numbers;
}

void TWLineNumberGutter::paintEvent(QPaintEvent *event)
{
    QPainter painter(this);
    const QPalette colors = editor->palette();
    painter.fillRect(event->rect(), colors.window());
    const int current = editor->textCursor().blockNumber();
    const int lineHeight = editor->fontMetrics().height();
    forEachVisibleLine(event->rect().bottom(), [&](int line, int top) {
        if (top + lineHeight < event->rect().top())
            return;
        const bool isCurrent = line == current;
        painter.setPen(isCurrent ? colors.color(QPalette::WindowText) : colors.color(QPalette::PlaceholderText));
        QFont font = editor->font();
        font.setBold(isCurrent);
        painter.setFont(font);
        painter.drawText(0, top, width() - gap, lineHeight, Qt::AlignRight | Qt::AlignVCenter, QString::number(line + 1));
    });
}
