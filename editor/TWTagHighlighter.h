#pragma once

#include <QColor>
#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QString>
#include <QTextLayout>

#include <functional>

class QPlainTextEdit;
class QTextBlock;

// Paints the tag colours of an editor view, incrementally. The colours on screen are always
// those that a scan of the whole text from its start gives, but the work after an edit does
// not grow with the document: the scanner's state at a line break is small (plain text,
// inside a tag of some colour, inside a comment, inside a declaration), so each line keeps the
// state it ends in, repainting starts at the first changed line and stops where a line ends in
// the same state as before. Lines that are not on screen only have their state worked out (in
// slices, between events); they are painted when they are shown.
class TWTagHighlighter : public QObject
{
    Q_OBJECT
public:
    explicit TWTagHighlighter(QPlainTextEdit *view);

    // Where colours come from: an element name's colour, and the comment colour.
    std::function<QColor(const QString &name)> colorForTag;
    std::function<QColor()> commentColor;
    // Changes whenever the colours change, so that every line is painted again.
    std::function<int()> colorsGeneration;

    // Brings the colours up to date: the lines on screen at once, the rest in slices.
    void recolor();
    // Forgets every line's colours (the colours or the rules changed) and recolours.
    void recolorAll();
    // Takes all colours off (colouring switched off).
    void clear();
    bool isEnabled() const { return enabled; }
    // Colours the lines on screen that are worked out and not yet coloured; cheap when none is.
    void paintVisibleLines();
    // Finishes all pending work now (tests and benchmarks).
    void completeNow();
    bool isComplete() const;
    // How far from the start the lines' colours are worked out (a text position).
    int workedOut() const { return frontier; }

    // The colour runs of a line as the whole-text scan gives them, from the state its line
    // before ends in (plain colour: no run). Only valid for lines the work has reached.
    QList<QTextLayout::FormatRange> runsOfBlock(const QTextBlock &block) const;

    // Time that one slice of background work may take.
    static constexpr int sliceMilliseconds = 4;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    struct LineResult
    {
        QList<QTextLayout::FormatRange> runs;
        int endState;
    };
    LineResult scanLine(QStringView line, int startState) const;
    int startStateOf(const QTextBlock &block) const;
    int colorIndex(const QColor &color) const;
    void documentChanged(int position, int removed, int added);
    void shiftFormatsForEdit(const QTextBlock &block, int offset, int removed, int added);
    // Works from the frontier; stops when done, past `until` (a position) and the budget.
    void work(int until, qint64 budgetNanoseconds);
    void workInSlices();
    void applyRuns(QTextBlock &block, const QList<QTextLayout::FormatRange> &runs);
    int lastVisiblePosition() const;

    QPlainTextEdit *view;
    bool enabled = true;
    // Recolouring asked for and not finished: scrolling then works through what is shown.
    bool active = false;
    bool sliceScheduled = false;
    bool applyingFormats = false;
    bool paintingLines = false;
    // Lines starting before the frontier have their right end state; from the frontier on they
    // need work. Lines starting at or after validEnd have never been worked out since the last
    // reset; lines before editEnd may have been edited.
    int frontier = 0;
    int validEnd = 0;
    int editEnd = 0;
    // The colours of tags that run on into the next line, by the index kept in line states.
    mutable QList<QColor> colors;
    QColor comment;
    int generation = -1;
};
