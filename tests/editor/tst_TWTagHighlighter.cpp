// Incremental tag colouring gives, after any edits, exactly the colours of a scan of the whole
// text from its start, on every character; the lines on screen show them.
#include "editor/TWTagHighlighter.h"

#include "TWTestEnvironment.h"
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
    return folded.isEmpty() ? QColor(150, 100, 50) : QColor::fromHsv(int(qHash(folded) % 360), 200, 200);
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
    for (const QTextLayout::FormatRange &run : runs)
        for (int i = run.start; i < run.start + run.length && i < length; ++i)
            colors[i] = run.format.foreground().color();
    return colors;
}

QString samplePage(int lines)
{
    const QStringList pieces = {
        QStringLiteral("<p class=\"x\">Some <b>bold</b> text and <a href=\"a.html\">a link</a>.</p>"),
        QStringLiteral("<!-- a comment that <b>hides</b> tags -->"),
        QStringLiteral("<!DOCTYPE html>"), QStringLiteral("<div"), QStringLiteral("   id=\"main\">"),
        QStringLiteral("plain words a < b > c"), QStringLiteral("<ul><li>one</li><LI>two</LI></ul>"),
        QStringLiteral("<!--"), QStringLiteral("-->"), QStringLiteral("<H1>Heading</h1>")};
    QString text;
    for (int i = 0; i < lines; ++i)
        text += pieces.at(i % pieces.size()) + QLatin1Char('\n');
    return text;
}

struct Fixture
{
    Fixture()
    {
        view.resize(500, 300);
        view.setLineWrapMode(QPlainTextEdit::NoWrap);
        highlighter->colorForTag = nameColor;
        highlighter->commentColor = [] { return commentColor; };
        highlighter->colorsGeneration = [] { return 1; };
        view.show();
        exposed = QTest::qWaitForWindowExposed(&view);
    }

    void load(const QString &text)
    {
        view.setPlainText(text);
        highlighter->recolorAll();
        highlighter->recolor();
    }

    // Compares the colours of every line with the whole-text scan; a line on screen must also
    // show them.
    QString mismatch()
    {
        const QList<QColor> reference = referenceColors(view.toPlainText());
        const QPoint bottom(view.viewport()->width(), view.viewport()->height());
        const int lastVisible = view.cursorForPosition(bottom).block().blockNumber();
        const int firstVisible = view.cursorForPosition(QPoint(0, 0)).block().blockNumber();
        for (QTextBlock block = view.document()->begin(); block.isValid(); block = block.next()) {
            const int length = block.length() - 1;
            const QList<QColor> expected = reference.mid(block.position(), length);
            const QString where = QStringLiteral("line %1 %2: %3").arg(block.blockNumber());
            if (colorsOf(highlighter->runsOfBlock(block), length) != expected)
                return where.arg(QStringLiteral("computed wrong"), block.text());
            const bool visible = block.blockNumber() >= firstVisible && block.blockNumber() <= lastVisible;
            if (visible && colorsOf(block.layout()->formats(), length) != expected)
                return where.arg(QStringLiteral("on screen wrong"), block.text());
        }
        return {};
    }

    // Brings other lines into view as a user would, without scrolling, and lets the view paint
    // as the window system would make it; answers what it did.
    QString changeView(QRandomGenerator &random)
    {
        const int change = random.bounded(4);
        if (change == 0) {
            view.resize(200 + int(random.bounded(1000)), 60 + int(random.bounded(900)));
        } else if (change == 1) {
            // A new text loaded while the window is hidden, coloured in the background.
            view.hide();
            view.setPlainText(samplePage(20 + int(random.bounded(200))));
            highlighter->recolor();
            highlighter->completeNow();
            view.show();
        } else if (change == 2) {
            QFont font = view.font();
            font.setPointSize(4 + int(random.bounded(14)));
            view.setFont(font);
        } else {
            view.setLineWrapMode(view.lineWrapMode() == QPlainTextEdit::NoWrap ? QPlainTextEdit::WidgetWidth
                                                                                : QPlainTextEdit::NoWrap);
        }
        QCoreApplication::processEvents();
        view.viewport()->repaint();
        return QStringList{"a resize", "a text shown", "a font change", "a wrap change"}.at(change);
    }

    // Scrolls as a user would: the view paints what comes into view.
    void scrollTo(int value)
    {
        view.verticalScrollBar()->setValue(value);
        view.viewport()->repaint();
    }

    QPlainTextEdit view;
    TWTagHighlighter *highlighter = new TWTagHighlighter(&view);
    bool exposed = false;
};

} // namespace

class tst_TWTagHighlighter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newTextIsColouredAsAWhole_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<bool>("bySlices");
        QTest::newRow("page") << samplePage(400) << false;
        QTest::newRow("long page, finished between events") << samplePage(20000) << true;
        QTest::newRow("less-than everywhere") << QString(200, QLatin1Char('<')).append(u'\n').repeated(200) << false;
    }

    void newTextIsColouredAsAWhole()
    {
        QFETCH(QString, text);
        QFETCH(bool, bySlices);
        Fixture fixture;
        QVERIFY(fixture.exposed);
        fixture.load(text);
        // The lines on screen are right at once, before any slice of background work, and
        // neighbouring tags of one colour make one run, not one per tag.
        const QTextBlock first = fixture.view.document()->begin();
        const QList<QColor> expected = referenceColors(text).mid(0, first.length() - 1);
        QCOMPARE(colorsOf(first.layout()->formats(), first.length() - 1), expected);
        int stretches = 0;
        for (int i = 0; i < expected.size(); ++i)
            stretches += expected[i].isValid() && (i == 0 || expected[i] != expected[i - 1]);
        QCOMPARE(first.layout()->formats().size(), stretches);
        if (bySlices) {
            QVERIFY(!fixture.highlighter->isComplete());
            TW_TRY_VERIFY_WITH_TIMEOUT(fixture.highlighter->isComplete(), 30000);
            // Scrolling to any place shows it right.
            fixture.scrollTo(fixture.view.verticalScrollBar()->maximum() / 3);
        }
        fixture.highlighter->completeNow();
        QCOMPARE(fixture.mismatch(), QString());
    }

    void randomEditsKeepTheWholeTextColours()
    {
        Fixture fixture;
        QVERIFY(fixture.exposed);
        fixture.load(samplePage(300));
        fixture.highlighter->completeNow();
        QCOMPARE(fixture.mismatch(), QString());

        const QStringList snippets
            = QStringLiteral("<|>|<!--|-->|<!|\n|abc|<b>|</p>|<!DOCTYPE| |-|<a\n|\n-->\n|<H|1|<!-->|<!---->|</\n|<!-\n")
                  .split(QLatin1Char('|'));
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

    void typingBeforeTheFirstColouringIsDoneKeepsTheWork()
    {
        Fixture fixture;
        QVERIFY(fixture.exposed);
        fixture.load(samplePage(10));
        fixture.highlighter->completeNow();
        // A new text is opened; scrolling to the middle works out everything above it.
        fixture.view.setPlainText(samplePage(20000));
        fixture.highlighter->recolor();
        fixture.scrollTo(fixture.view.verticalScrollBar()->maximum() / 2);
        const int workedOut = fixture.highlighter->workedOut();
        QVERIFY(workedOut > fixture.view.document()->characterCount() / 3);
        QVERIFY(!fixture.highlighter->isComplete());
        // A key typed near the top does not send the work back there: the lines after the
        // typed one end as they did.
        fixture.scrollTo(0);
        QTextCursor(fixture.view.document()->findBlockByNumber(5)).insertText(QStringLiteral("x"));
        fixture.highlighter->recolor();
        QVERIFY(fixture.highlighter->workedOut() > workedOut);
        fixture.highlighter->completeNow();
        QCOMPARE(fixture.mismatch(), QString());
    }

    void clearTakesAllColoursOff()
    {
        Fixture fixture;
        QVERIFY(fixture.exposed);
        fixture.load(samplePage(50));
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
