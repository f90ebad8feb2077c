// Incremental tag colouring gives, after any edits, exactly the colours of a scan of the whole
// text from its start, on every character; the lines on screen show them.
#include "editor/TWTagHighlighter.h"

#include "editor/TWTagScanner.h"

#include <QPlainTextEdit>
#include <QRandomGenerator>
#include <QScrollBar>
#include <QTest>
#include <QTextBlock>

namespace {

QColor nameColor(const QString &name)
{
    // Names that differ only in case share a colour, as library look-ups ignore case.
    const QString folded = name.toCaseFolded();
    if (folded.isEmpty())
        return QColor(150, 100, 50);
    return QColor::fromHsv(int(qHash(folded) % 360), 200, 200);
}

const QColor commentColor(255, 0, 0);

// The colour of every character as the whole-text scan gives it (invalid: plain text).
QList<QColor> referenceColors(const QString &text)
{
    QList<QColor> colors(text.size());
    for (const TWTagScanner::Segment &segment : TWTagScanner::segments(text)) {
        const QColor color = segment.kind == TWTagScanner::tag ? nameColor(segment.name)
            : segment.kind == TWTagScanner::comment            ? commentColor
                                                               : QColor();
        for (qsizetype i = segment.range.location; i < segment.range.end(); ++i)
            colors[i] = color;
    }
    return colors;
}

QList<QColor> colorsOf(const QList<QTextLayout::FormatRange> &runs, int length)
{
    QList<QColor> colors(length);
    for (const QTextLayout::FormatRange &run : runs) {
        for (int i = run.start; i < run.start + run.length && i < length; ++i)
            colors[i] = run.format.foreground().color();
    }
    return colors;
}

QString samplePage(int lines);

class Fixture
{
public:
    Fixture()
    {
        view.resize(500, 300);
        view.setLineWrapMode(QPlainTextEdit::NoWrap);
        highlighter = new TWTagHighlighter(&view);
        highlighter->colorForTag = nameColor;
        highlighter->commentColor = [] { return commentColor; };
        highlighter->colorsGeneration = [] { return 1; };
        view.show();
        exposed = QTest::qWaitForWindowExposed(&view);
    }

    // Compares the colours of every line with the whole-text scan; a line on screen must also
    // show them.
    QString mismatch()
    {
        const QString text = view.toPlainText();
        const QList<QColor> reference = referenceColors(text);
        const int lastVisible = view.cursorForPosition(QPoint(view.viewport()->width(), view.viewport()->height()))
                                    .block()
                                    .blockNumber();
        const int firstVisible = view.cursorForPosition(QPoint(0, 0)).block().blockNumber();
        for (QTextBlock block = view.document()->begin(); block.isValid(); block = block.next()) {
            const int length = block.length() - 1;
            const QList<QColor> expected = reference.mid(block.position(), length);
            if (colorsOf(highlighter->runsOfBlock(block), length) != expected)
                return QStringLiteral("line %1 computed wrong: %2").arg(block.blockNumber()).arg(block.text());
            const bool visible = block.blockNumber() >= firstVisible && block.blockNumber() <= lastVisible;
            if (visible && colorsOf(block.layout()->formats(), length) != expected)
                return QStringLiteral("line %1 on screen wrong: %2").arg(block.blockNumber()).arg(block.text());
        }
        return {};
    }

    // Brings other lines into view as a user would, without scrolling, and lets the view paint
    // as the window system would make it; answers what it did.
    QString changeView(QRandomGenerator &random)
    {
        QString what;
        switch (random.bounded(4)) {
        case 0:
            view.resize(200 + int(random.bounded(1000)), 60 + int(random.bounded(900)));
            what = QStringLiteral("a resize");
            break;
        case 1: {
            // A new text loaded while the window is hidden, coloured in the background.
            view.hide();
            view.setPlainText(samplePage(20 + int(random.bounded(200))));
            highlighter->recolor();
            highlighter->completeNow();
            view.show();
            what = QStringLiteral("a text shown");
            break;
        }
        case 2: {
            QFont font = view.font();
            font.setPointSize(4 + int(random.bounded(14)));
            view.setFont(font);
            what = QStringLiteral("a font change");
            break;
        }
        default:
            view.setLineWrapMode(view.lineWrapMode() == QPlainTextEdit::NoWrap ? QPlainTextEdit::WidgetWidth
                                                                                : QPlainTextEdit::NoWrap);
            what = QStringLiteral("a wrap change");
            break;
        }
        QCoreApplication::processEvents();
        view.viewport()->repaint();
        return what;
    }

    // Scrolls as a user would: the view paints what comes into view.
    void scrollTo(int value)
    {
        view.verticalScrollBar()->setValue(value);
        view.viewport()->repaint();
    }

    QPlainTextEdit view;
    TWTagHighlighter *highlighter;
    bool exposed = false;
};

QString samplePage(int lines)
{
    QString text;
    const QStringList pieces = {
        QStringLiteral("<p class=\"x\">Some <b>bold</b> text and <a href=\"a.html\">a link</a>.</p>"),
        QStringLiteral("<!-- a comment that <b>hides</b> tags -->"),
        QStringLiteral("<!DOCTYPE html>"),
        QStringLiteral("<div"),
        QStringLiteral("   id=\"main\">"),
        QStringLiteral("plain words a < b > c"),
        QStringLiteral("<ul><li>one</li><LI>two</LI></ul>"),
        QStringLiteral("<!--"),
        QStringLiteral("-->"),
        QStringLiteral("<H1>Heading</h1>"),
    };
    for (int i = 0; i < lines; ++i)
        text += pieces.at(i % pieces.size()) + QLatin1Char('\n');
    return text;
}

} // namespace

class tst_TWTagHighlighter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void wholeTextColoursOnFirstPaint()
    {
        Fixture fixture;
        QVERIFY(fixture.exposed);
        fixture.view.setPlainText(samplePage(400));
        fixture.highlighter->recolorAll();
        fixture.highlighter->recolor();
        // The lines on screen are right at once, before any slice of background work.
        const QTextBlock first = fixture.view.document()->begin();
        QCOMPARE(colorsOf(first.layout()->formats(), first.length() - 1),
                 referenceColors(fixture.view.toPlainText()).mid(0, first.length() - 1));
        fixture.highlighter->completeNow();
        QVERIFY(fixture.highlighter->isComplete());
        QCOMPARE(fixture.mismatch(), QString());
    }

    void randomEditsKeepTheWholeTextColours()
    {
        Fixture fixture;
        QVERIFY(fixture.exposed);
        fixture.view.setPlainText(samplePage(300));
        fixture.highlighter->recolorAll();
        fixture.highlighter->completeNow();
        QCOMPARE(fixture.mismatch(), QString());

        const QStringList snippets = {
            QStringLiteral("<"),     QStringLiteral(">"),    QStringLiteral("<!--"),   QStringLiteral("-->"),
            QStringLiteral("<!"),    QStringLiteral("\n"),   QStringLiteral("abc"),    QStringLiteral("<b>"),
            QStringLiteral("</p>"),  QStringLiteral("<!DOCTYPE"), QStringLiteral(" "), QStringLiteral("-"),
            QStringLiteral("<a\n"),  QStringLiteral("\n-->\n"), QStringLiteral("<H"),  QStringLiteral("1"),
            QStringLiteral("<!-->"), QStringLiteral("<!---->"), QStringLiteral("</\n"), QStringLiteral("<!-\n"),
        };
        QRandomGenerator random(20261123);
        for (int step = 0; step < 3000; ++step) {
            QTextCursor cursor(fixture.view.document());
            const int size = fixture.view.document()->characterCount() - 1;
            // A third of the edits land near the top while the screen shows the end.
            const bool farAbove = random.bounded(3) == 0;
            if (farAbove)
                fixture.scrollTo(fixture.view.verticalScrollBar()->maximum());
            const int position = farAbove ? random.bounded(std::max(1, std::min(size, 200)))
                                          : random.bounded(std::max(1, size));
            cursor.setPosition(std::min(position, size));
            if (random.bounded(150) == 0) {
                // Now and then a whole new text is opened.
                fixture.view.setPlainText(samplePage(50 + int(random.bounded(300))));
            } else if (random.bounded(3) == 0 && size > 10) {
                cursor.setPosition(std::min(size, position + 1 + int(random.bounded(6))), QTextCursor::KeepAnchor);
                cursor.removeSelectedText();
            } else {
                cursor.insertText(snippets.at(random.bounded(int(snippets.size()))));
            }
            // Sometimes edits pile up before colouring, as while typing with suspension on;
            // sometimes colouring is left half done, as between slices.
            const int mode = random.bounded(4);
            if (mode == 0)
                continue;
            fixture.highlighter->recolor();
            if (mode == 1)
                continue;
            fixture.highlighter->completeNow();
            QString problem = fixture.mismatch();
            QVERIFY2(problem.isEmpty(), qPrintable(QStringLiteral("after edit %1: %2").arg(step).arg(problem)));
            // Lines that come into view without a scroll show their colours too.
            if (random.bounded(6) == 0) {
                const QString change = fixture.changeView(random);
                problem = fixture.mismatch();
                QVERIFY2(problem.isEmpty(),
                         qPrintable(QStringLiteral("after edit %1 and %2: %3").arg(step).arg(change, problem)));
            }
        }
        fixture.highlighter->recolor();
        fixture.highlighter->completeNow();
        QCOMPARE(fixture.mismatch(), QString());
    }

    void openingACommentAtTheTopRecoloursWhatFollows()
    {
        Fixture fixture;
        QVERIFY(fixture.exposed);
        fixture.view.setPlainText(samplePage(2000));
        fixture.highlighter->recolorAll();
        fixture.highlighter->completeNow();
        fixture.scrollTo(fixture.view.verticalScrollBar()->maximum() / 2);
        QTextCursor cursor(fixture.view.document());
        cursor.insertText(QStringLiteral("<!-- never closed"));
        fixture.highlighter->recolor();
        // What is on screen is right before the rest of the work is done.
        QApplication::processEvents();
        fixture.highlighter->completeNow();
        QCOMPARE(fixture.mismatch(), QString());
        cursor.setPosition(0);
        cursor.setPosition(17, QTextCursor::KeepAnchor);
        cursor.removeSelectedText();
        fixture.highlighter->recolor();
        fixture.highlighter->completeNow();
        QCOMPARE(fixture.mismatch(), QString());
    }

    void typingBeforeTheFirstColouringIsDoneKeepsTheWork()
    {
        Fixture fixture;
        QVERIFY(fixture.exposed);
        fixture.view.setPlainText(samplePage(10));
        fixture.highlighter->recolorAll();
        fixture.highlighter->completeNow();
        // A new text is opened.
        fixture.view.setPlainText(samplePage(20000));
        fixture.highlighter->recolor();
        // Scrolling to the middle works out everything above it.
        fixture.scrollTo(fixture.view.verticalScrollBar()->maximum() / 2);
        const int workedOut = fixture.highlighter->workedOut();
        QVERIFY(workedOut > fixture.view.document()->characterCount() / 3);
        QVERIFY(!fixture.highlighter->isComplete());
        // A key typed near the top does not send the work back there: the lines after the
        // typed one end as they did.
        fixture.scrollTo(0);
        QTextCursor cursor(fixture.view.document()->findBlockByNumber(5));
        cursor.insertText(QStringLiteral("x"));
        fixture.highlighter->recolor();
        QVERIFY2(fixture.highlighter->workedOut() > workedOut,
                 qPrintable(QStringLiteral("%1 of %2").arg(fixture.highlighter->workedOut()).arg(workedOut)));
        fixture.highlighter->completeNow();
        QCOMPARE(fixture.mismatch(), QString());
    }

    void backgroundWorkFinishesBySlices()
    {
        Fixture fixture;
        QVERIFY(fixture.exposed);
        fixture.view.setPlainText(samplePage(20000));
        fixture.highlighter->recolorAll();
        fixture.highlighter->recolor();
        QVERIFY(!fixture.highlighter->isComplete());
        QTRY_VERIFY_WITH_TIMEOUT(fixture.highlighter->isComplete(), 30000);
        // Scrolling to any place shows it right.
        fixture.scrollTo(fixture.view.verticalScrollBar()->maximum() / 3);
        QCOMPARE(fixture.mismatch(), QString());
    }

    void lessThanEverywhere()
    {
        Fixture fixture;
        QVERIFY(fixture.exposed);
        QString text;
        for (int line = 0; line < 200; ++line)
            text += QString(200, QLatin1Char('<')) + QLatin1Char('\n');
        fixture.view.setPlainText(text);
        fixture.highlighter->recolorAll();
        fixture.highlighter->completeNow();
        QCOMPARE(fixture.mismatch(), QString());
        // Neighbouring tags of one colour make one run per line, not one per tag.
        QCOMPARE(fixture.view.document()->begin().layout()->formats().size(), 1);
    }

    void clearTakesAllColoursOff()
    {
        Fixture fixture;
        QVERIFY(fixture.exposed);
        fixture.view.setPlainText(samplePage(50));
        fixture.highlighter->recolorAll();
        fixture.highlighter->completeNow();
        QVERIFY(!fixture.view.document()->begin().layout()->formats().isEmpty());
        fixture.highlighter->clear();
        for (QTextBlock block = fixture.view.document()->begin(); block.isValid(); block = block.next())
            QVERIFY(block.layout()->formats().isEmpty());
        QVERIFY(!fixture.highlighter->isEnabled());
    }
};

QTEST_MAIN(tst_TWTagHighlighter)
#include "tst_TWTagHighlighter.moc"
