#include "editor/TWTagHighlighter.h"

#include "editor/TWTagScanner.h"

#include <QPlainTextEdit>
#include <QEvent>
#include <QHash>
#include <QTextBlock>
#include <QTextDocument>
#include <QScopedValueRollback>
#include <QTimer>

namespace {

// A line's state is kept in its block's user state: the scanner state it ends in, shifted left
// by one, and in the lowest bit whether the line's colours on screen are current.
// Scanner states: plain text, inside a comment, inside a declaration, inside a tag (whose
// colour index is kept above the two kind bits).
enum : int { statePlain = 0, stateComment = 1, stateDeclaration = 2, stateTag = 3 };
constexpr int unknownState = -1;
constexpr int paintedBit = 1;

int kindOf(int state)
{
    return state & 3;
}

int tagState(int colorIndex)
{
    return stateTag | (colorIndex << 2);
}

int encode(int state, bool painted)
{
    return (state << 1) | (painted ? paintedBit : 0);
}

int stateOfUser(int user)
{
    return user >> 1;
}

bool isPainted(int user)
{
    return user >= 0 && (user & paintedBit);
}

// The end of a tag or declaration that runs on from an earlier line: after the first ">", or
// before the first "<"; -1 when the line holds neither.
qsizetype endOfOpenTag(QStringView line, bool &afterCloser)
{
    for (qsizetype j = 0; j < line.size(); ++j) {
        if (line[j] == QLatin1Char('>')) {
            afterCloser = true;
            return j + 1;
        }
        if (line[j] == QLatin1Char('<')) {
            afterCloser = false;
            return j;
        }
    }
    return -1;
}

// One format object per colour, shared by every run of that colour: the text layout compares
// and hashes formats for each run it lays out, which is fast for formats that share their data.
const QTextCharFormat &formatOf(const QColor &color)
{
    static QHash<QRgb, QTextCharFormat> formats;
    auto found = formats.find(color.rgba());
    if (found == formats.end()) {
        QTextCharFormat format;
        format.setForeground(color);
        found = formats.insert(color.rgba(), format);
    }
    return *found;
}

void addRun(QList<QTextLayout::FormatRange> &runs, qsizetype start, qsizetype length, const QColor &color)
{
    if (length <= 0)
        return;
    // Neighbouring runs of one colour become one, so "<<<<" costs one run, not one per tag.
    if (!runs.isEmpty()) {
        QTextLayout::FormatRange &last = runs.last();
        if (last.start + last.length == start && last.format.foreground().color() == color) {
            last.length += int(length);
            return;
        }
    }
    QTextLayout::FormatRange range;
    range.start = int(start);
    range.length = int(length);
    range.format = formatOf(color);
    runs << range;
}

} // namespace

TWTagHighlighter::TWTagHighlighter(QPlainTextEdit *view)
    : QObject(view)
    , view(view)
{
    connect(view->document(), &QTextDocument::contentsChange, this, &TWTagHighlighter::documentChanged);
    // A line can only come into view by being painted, whatever brought it there (a scroll, a
    // larger window, a window shown, a font or wrap change): lines are coloured as the paint
    // begins, so the first picture of them already shows their colours.
    view->viewport()->installEventFilter(this);
}

bool TWTagHighlighter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Paint && watched == view->viewport())
        paintVisibleLines();
    return QObject::eventFilter(watched, event);
}

int TWTagHighlighter::colorIndex(const QColor &color) const
{
    const qsizetype at = colors.indexOf(color);
    if (at >= 0)
        return int(at);
    colors << color;
    return int(colors.size() - 1);
}

TWTagHighlighter::LineResult TWTagHighlighter::scanLine(QStringView line, int startState) const
{
    LineResult result{{}, statePlain};
    qsizetype i = 0;
    const qsizetype size = line.size();
    switch (kindOf(startState)) {
    case stateComment: {
        const qsizetype at = line.indexOf(QLatin1String("-->"));
        if (at < 0) {
            addRun(result.runs, 0, size, comment);
            result.endState = stateComment;
            return result;
        }
        addRun(result.runs, 0, at + 3, comment);
        i = at + 3;
        break;
    }
    case stateDeclaration:
    case stateTag: {
        const QColor color = kindOf(startState) == stateTag ? colors.value(startState >> 2) : comment;
        bool afterCloser = false;
        const qsizetype end = endOfOpenTag(line, afterCloser);
        if (end < 0) {
            addRun(result.runs, 0, size, color);
            result.endState = startState;
            return result;
        }
        addRun(result.runs, 0, end, color);
        i = end;
        break;
    }
    default:
        break;
    }

    QString name;
    while (i < size) {
        const int kind = TWTagScanner::typeOfText(line, i);
        if (kind == TWTagScanner::tag) {
            const TWRange range = TWTagScanner::rangeOfTagInText(line, name, i);
            const QColor color = colorForTag ? colorForTag(name) : QColor(Qt::black);
            addRun(result.runs, i, range.length, color);
            // A tag that reaches the end of the line without ">" or "<" goes on in the next.
            if (range.end() == size && line[size - 1] != QLatin1Char('>'))
                result.endState = tagState(colorIndex(color));
            i = range.end();
        } else if (kind == TWTagScanner::comment) {
            const TWRange range = TWTagScanner::rangeOfCommentInText(line, i);
            addRun(result.runs, i, range.length, comment);
            if (range.end() == size) {
                const bool isComment
                    = i + 3 < size && line[i + 2] == QLatin1Char('-') && line[i + 3] == QLatin1Char('-');
                if (isComment) {
                    const QStringView closer = line.sliced(std::max<qsizetype>(i + 4, size - 3));
                    if (!(size - i >= 7 && closer == QLatin1String("-->")))
                        result.endState = stateComment;
                } else if (line[size - 1] != QLatin1Char('>')) {
                    result.endState = stateDeclaration;
                }
            }
            i = range.end();
        } else {
            i = TWTagScanner::rangeOfPlainText(line, i).end();
        }
    }
    return result;
}

int TWTagHighlighter::startStateOf(const QTextBlock &block) const
{
    const QTextBlock previous = block.previous();
    if (!previous.isValid())
        return statePlain;
    const int user = previous.userState();
    return user < 0 ? statePlain : stateOfUser(user);
}

QList<QTextLayout::FormatRange> TWTagHighlighter::runsOfBlock(const QTextBlock &block) const
{
    return scanLine(block.text(), startStateOf(block)).runs;
}

void TWTagHighlighter::applyRuns(QTextBlock &block, const QList<QTextLayout::FormatRange> &runs)
{
    QTextLayout *layout = block.layout();
    if (layout->formats() == runs)
        return;
    applyingFormats = true;
    layout->setFormats(runs);
    view->document()->markContentsDirty(block.position(), block.length());
    applyingFormats = false;
}

int TWTagHighlighter::lastVisiblePosition() const
{
    const QTextCursor cursor = view->cursorForPosition(QPoint(view->viewport()->width(), view->viewport()->height()));
    return cursor.block().position() + cursor.block().length();
}

void TWTagHighlighter::documentChanged(int position, int removed, int added)
{
    if (applyingFormats || (removed == 0 && added == 0))
        return;
    const int delta = added - removed;
    const QTextBlock block = view->document()->findBlock(position);
    const int blockStart = block.position();
    if (frontier > position)
        frontier = blockStart;
    if (validEnd > position)
        validEnd = std::max(position, validEnd + delta);
    if (editEnd > position)
        editEnd = std::max(position, editEnd + delta);
    if (position + added >= validEnd) {
        // The edit reaches past all that was worked out (a whole new text, or typing ahead of
        // the work): nothing after it can be taken over, the work goes on afresh.
        validEnd = std::min(validEnd, blockStart);
        editEnd = std::min(editEnd, validEnd);
    } else {
        editEnd = std::max(editEnd, position + added);
    }
    if (!enabled)
        return;
    // Until the next recolouring the edited line keeps its colours where its characters went,
    // new characters taking those of the character before them.
    QTextBlock last = view->document()->findBlock(position + added);
    if (last == block && block.isValid()) {
        shiftFormatsForEdit(block, position - blockStart, removed, added);
        return;
    }
    // Lines in between are new, or (a Replace All, an undo of one) recoloured right away; the
    // work finds any whose colours are no longer right. Going through each of them here would
    // cost as much as the change itself on a long text.
    QTextBlock first = block;
    applyRuns(first, {});
    if (last.isValid())
        applyRuns(last, {});
}

void TWTagHighlighter::shiftFormatsForEdit(const QTextBlock &constBlock, int offset, int removed, int added)
{
    QTextBlock block = constBlock;
    QList<QTextLayout::FormatRange> runs = block.layout()->formats();
    if (runs.isEmpty())
        return;
    const auto mapStart = [&](int p) {
        if (p < offset || (p == offset && offset == 0))
            return p;
        if (p >= offset + removed)
            return p + added - removed;
        return offset + added;
    };
    const auto mapEnd = [&](int p) {
        if (p < offset)
            return p;
        if (p >= offset + removed)
            return p + added - removed;
        return offset + added;
    };
    QList<QTextLayout::FormatRange> shifted;
    for (QTextLayout::FormatRange run : runs) {
        const int start = mapStart(run.start);
        const int end = mapEnd(run.start + run.length);
        if (end > start) {
            run.start = start;
            run.length = end - start;
            shifted << run;
        }
    }
    applyRuns(block, shifted);
}

void TWTagHighlighter::recolor()
{
    if (!enabled)
        return;
    if (colorsGeneration && colorsGeneration() != generation)
        recolorAll();
    active = true;
    // The lines on screen first, right away.
    work(lastVisiblePosition(), -1);
    paintVisibleLines();
    workInSlices();
}

void TWTagHighlighter::recolorAll()
{
    comment = commentColor ? commentColor() : QColor(Qt::red);
    generation = colorsGeneration ? colorsGeneration() : 0;
    colors.clear();
    for (QTextBlock block = view->document()->begin(); block.isValid(); block = block.next())
        block.setUserState(unknownState);
    frontier = 0;
    validEnd = 0;
    editEnd = 0;
    enabled = true;
}

void TWTagHighlighter::clear()
{
    enabled = false;
    active = false;
    for (QTextBlock block = view->document()->begin(); block.isValid(); block = block.next()) {
        if (!block.layout()->formats().isEmpty())
            applyRuns(block, {});
        block.setUserState(unknownState);
    }
    frontier = 0;
    validEnd = 0;
    editEnd = 0;
}

bool TWTagHighlighter::isComplete() const
{
    return frontier >= view->document()->characterCount();
}

void TWTagHighlighter::completeNow()
{
    if (!enabled)
        return;
    active = true;
    work(view->document()->characterCount(), -1);
    paintVisibleLines();
    active = false;
}

void TWTagHighlighter::work(int until, qsizetype budgetNanoseconds)
{
    QElapsedTimer clock;
    clock.start();
    QTextDocument *document = view->document();
    QTextBlock block = document->findBlock(frontier);
    if (frontier > 0 && block.isValid() && block.position() < frontier)
        block = block.next();
    while (block.isValid()) {
        if (block.position() >= until && budgetNanoseconds >= 0 && clock.nsecsElapsed() >= budgetNanoseconds)
            break;
        if (budgetNanoseconds < 0 && block.position() >= until)
            break;
        const int oldUser = block.userState();
        const LineResult line = scanLine(block.text(), startStateOf(block));
        const bool painted = isPainted(oldUser) && stateOfUser(oldUser) == line.endState
            && block.layout()->formats() == line.runs;
        block.setUserState(encode(line.endState, painted));
        const int next = block.position() + block.length();
        // Past the edits, a line that ends as it ended before leaves everything after it as
        // it was: the work jumps to where it had never been.
        if (block.position() >= editEnd && block.position() < validEnd && oldUser >= 0
            && stateOfUser(oldUser) == line.endState) {
            frontier = validEnd;
            editEnd = 0;
            block = document->findBlock(frontier);
            if (block.isValid() && block.position() < frontier)
                block = block.next();
            continue;
        }
        frontier = next;
        validEnd = std::max(validEnd, next);
        block = block.next();
    }
    if (!block.isValid()) {
        frontier = document->characterCount();
        validEnd = frontier;
        editEnd = 0;
    }
}

void TWTagHighlighter::workInSlices()
{
    if (isComplete()) {
        active = false;
        return;
    }
    if (sliceScheduled)
        return;
    sliceScheduled = true;
    QTimer::singleShot(0, this, [this] {
        sliceScheduled = false;
        if (!enabled || !active)
            return;
        work(0, qint64(sliceMilliseconds) * 1000000);
        paintVisibleLines();
        workInSlices();
    });
}

void TWTagHighlighter::paintVisibleLines()
{
    // Applying a line's colours asks for a repaint, which must not start this again.
    if (!enabled || paintingLines)
        return;
    const QScopedValueRollback guard(paintingLines, true);
    const int last = lastVisiblePosition();
    // Scrolled ahead of the work: work out what leads up to the lines now shown.
    if (active && frontier < last)
        work(last, -1);
    for (QTextBlock block = view->cursorForPosition(QPoint(0, 0)).block(); block.isValid() && block.position() < last;
         block = block.next()) {
        const int user = block.userState();
        if (block.position() >= frontier || isPainted(user))
            continue;
        const QList<QTextLayout::FormatRange> runs = runsOfBlock(block);
        applyRuns(block, runs);
        block.setUserState(encode(stateOfUser(user), true));
    }
}
