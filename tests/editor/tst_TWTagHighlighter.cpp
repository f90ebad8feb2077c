// Incremental tag colouring gives, after any edits, exactly the colours of a scan of the whole
// text from its start, on every character; the lines on screen show them, a long new text is
// coloured in slices without losing work to typing, and switching colouring off takes them off.
#include "editor/TWTagHighlighter.h"

#include "TWTestEnvironment.h"
#include "editor/TWTagScanner.h"

#include <QPlainTextEdit>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

namespace {

const QColor commentColor(255, 0, 0);

// Names that differ only in case share a colour, as library look-ups ignore case.
QColor nameColor(const QString &name) { return QColor::fromHsv(int(qHash(name.toCaseFolded()) % 360), 200, 200); }

// The colour of every character as the whole-text scan gives it (invalid: plain text).
QList<QColor> referenceColors(const QString &text)
{
    QList<QColor> colors(text.size());
    for (const TWTagScanner::Segment &segment : TWTagScanner::segments(text)) {
        const QColor color = segment.kind == TWTagScanner::tag ? nameColor(segment.name)
            : segment.kind == TWTagScanner::comment            ? commentColor : QColor();
        std::fill_n(colors.begin() + segment.range.location, segment.range.length, color);
    }
    return colors;
}

QList<QColor> colorsOf(const QList<QTextLayout::FormatRange> &runs, int length)
{
    QList<QColor> colors(length);
    for (const QTextLayout::FormatRange &run : runs)
        std::fill(colors.begin() + std::min(run.start, length), colors.begin() + std::min(run.start + run.length, length), run.format.foreground().color());
    return colors;
}

// A page of tags, comments and declarations, some over several lines, repeated.
QString samplePage(int copies)
{
    return QStringLiteral("<p class=\"x\">Some <b>bold</b> text and <a href=\"a.html\">a link</a>.</p>\n<!-- a comment that <b>hides</b> tags -->\n"
                          "<!DOCTYPE html>\n<div\n   id=\"main\">\nplain words a < b > c\n<ul><li>one</li><LI>two</LI></ul>\n<!--\n-->\n<H1>Heading</h1>\n")
        .repeated(copies);
}

} // namespace

class tst_TWTagHighlighter : public QObject
{
    Q_OBJECT

private:
    std::unique_ptr<QPlainTextEdit> view;
    TWTagHighlighter *highlighter = nullptr;

    // A text opened in a new view on screen; answers whether the view came on screen.
    bool open(const QString &text)
    {
        view = std::make_unique<QPlainTextEdit>();
        view->resize(500, 300);
        view->setLineWrapMode(QPlainTextEdit::NoWrap);
        highlighter = new TWTagHighlighter(view.get());
        highlighter->colorForTag = nameColor;
        highlighter->commentColor = [] { return commentColor; };
        view->show();
        const bool exposed = QTest::qWaitForWindowExposed(view.get());
        view->setPlainText(text);
        highlighter->recolorAll();
        highlighter->recolor();
        return exposed;
    }

    // Compares the colours of every line (or of the lines on screen) with the whole-text scan:
    // those worked out, and those shown. Neighbouring tags of one colour make one run, not one
    // per tag.
    QString mismatch(bool onScreenOnly = false)
    {
        const QList<QColor> reference = referenceColors(view->toPlainText());
        const int firstVisible = view->cursorForPosition(QPoint(0, 0)).block().blockNumber();
        const int lastVisible = view->cursorForPosition(QPoint(view->viewport()->width(), view->viewport()->height())).block().blockNumber();
        for (QTextBlock block = view->document()->begin(); block.isValid(); block = block.next()) {
            const int length = block.length() - 1;
            const QList<QColor> expected = reference.mid(block.position(), length);
            const QList<QTextLayout::FormatRange> runs = highlighter->runsOfBlock(block);
            const bool visible = block.blockNumber() >= firstVisible && block.blockNumber() <= lastVisible;
            qsizetype stretches = 0;
            for (qsizetype i = 0; i < length; ++i)
                stretches += expected[i].isValid() && (i == 0 || expected[i] != expected[i - 1]);
            const QString where = QStringLiteral("line %1 %2: %3").arg(block.blockNumber());
            if ((visible || !onScreenOnly) && (colorsOf(runs, length) != expected || runs.size() != stretches))
                return where.arg(QStringLiteral("worked out wrong"), block.text());
            if (visible && colorsOf(block.layout()->formats(), length) != expected)
                return where.arg(QStringLiteral("on screen wrong"), block.text());
        }
        return {};
    }

    // Brings other lines into view as a user would, without scrolling, and lets the view paint
    // as the window system would make it; answers what it did if a line then shows wrong.
    QString changeView(QRandomGenerator &random)
    {
        const int change = random.bounded(4);
        if (change == 0) {
            view->resize(200 + int(random.bounded(1000)), 60 + int(random.bounded(900)));
        } else if (change == 1) {
            // A new text loaded while the window is hidden, coloured in the background.
            view->hide();
            view->setPlainText(samplePage(2 + int(random.bounded(20))));
            highlighter->recolor();
            highlighter->completeNow();
            view->show();
        } else if (change == 2) {
            view->setFont(QFont(view->font().family(), 4 + int(random.bounded(14))));
        } else {
            view->setLineWrapMode(view->lineWrapMode() == QPlainTextEdit::NoWrap ? QPlainTextEdit::WidgetWidth : QPlainTextEdit::NoWrap);
        }
        QCoreApplication::processEvents();
        view->viewport()->repaint();
        const QString problem = mismatch();
        return problem.isEmpty() ? problem : QStringList{"a resize", "a text shown", "a font change", "a wrap change"}.at(change) + u' ' + problem;
    }

    // Scrolls as a user would: the view paints what comes into view->
    void scrollTo(int value)
    {
        view->verticalScrollBar()->setValue(value);
        view->viewport()->repaint();
    }

private Q_SLOTS:
    void randomEditsKeepTheWholeTextColours()
    {
        QVERIFY(open(samplePage(30)));
        const QStringList snippets = QStringLiteral("<|>|<!--|-->|<!|\n|abc|<b>|</p>|<!DOCTYPE| |-|<a\n|\n-->\n|<H|1|<!-->|<!---->|</\n|<!-\n").split(u'|');
        QRandomGenerator random(20261123);
        for (int step = 0; step < 3000; ++step) {
            QTextCursor cursor(view->document());
            const int size = view->document()->characterCount() - 1;
            // A third of the edits land near the top while the screen shows the end.
            const bool farAbove = random.bounded(3) == 0;
            if (farAbove)
                scrollTo(view->verticalScrollBar()->maximum());
            const int position = random.bounded(std::max(1, farAbove ? std::min(size, 200) : size));
            cursor.setPosition(position);
            if (random.bounded(150) == 0) {
                // Now and then a whole new text is opened.
                view->setPlainText(samplePage(5 + int(random.bounded(30))));
            } else if (random.bounded(3) == 0 && size > 10) {
                cursor.setPosition(std::min(size, position + 1 + int(random.bounded(6))), QTextCursor::KeepAnchor);
                cursor.removeSelectedText();
            } else {
                cursor.insertText(snippets.at(random.bounded(int(snippets.size()))));
            }
            // Sometimes edits pile up before colouring, as while typing with suspension on;
            // sometimes colouring is left half done, as between slices.
            const int mode = random.bounded(4);
            if (mode > 0)
                highlighter->recolor();
            if (mode < 2)
                continue;
            highlighter->completeNow();
            QString problem = mismatch();
            // Lines that come into view without a scroll show their colours too.
            if (problem.isEmpty() && random.bounded(6) == 0)
                problem = changeView(random);
            QVERIFY2(problem.isEmpty(), qPrintable(QStringLiteral("after edit %1: %2").arg(step).arg(problem)));
        }
        // Colouring switched off takes every colour off, and they stay off.
        highlighter->clear();
        highlighter->recolor();
        for (QTextBlock block = view->document()->begin(); block.isValid(); block = block.next())
            QVERIFY(block.layout()->formats().isEmpty());
    }

    // A new long text opened: the lines on screen are right at once. Scrolling to its middle
    // works out everything above it; a key typed near the top then does not send the work back
    // there, the lines after the typed one ending as they did. The rest is done in slices
    // between events, and any place scrolled to shows right.
    void aNewLongTextIsColouredAsAWhole()
    {
        QVERIFY(open(samplePage(1)));
        highlighter->completeNow();
        view->setPlainText(samplePage(2000));
        highlighter->recolor();
        QCOMPARE(mismatch(true), QString());
        scrollTo(view->verticalScrollBar()->maximum() / 2);
        const int workedOut = highlighter->workedOut();
        QVERIFY(workedOut > view->document()->characterCount() / 3);
        scrollTo(0);
        QTextCursor(view->document()->findBlockByNumber(5)).insertText(QStringLiteral("x"));
        highlighter->recolor();
        QVERIFY(highlighter->workedOut() > workedOut);
        QVERIFY(!highlighter->isComplete());
        TW_TRY_VERIFY_WITH_TIMEOUT(highlighter->isComplete(), 30000);
        scrollTo(view->verticalScrollBar()->maximum() / 3);
        QCOMPARE(mismatch(), QString());
    }
};

QTEST_MAIN(tst_TWTagHighlighter)
#include "tst_TWTagHighlighter.moc"
