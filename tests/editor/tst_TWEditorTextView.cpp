// The editor view: counted colouring timers, render requests and repaints after user edits,
// auto indentation, separators kept as characters, file drops, the view that commands go to and
// jump to line.
#include "editor/TWEditorTextView.h"
#include "editor/TWLineNumberGutter.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "app/TWAppDelegate.h"
#include "documents/TWCSSWindowController.h"
#include "editor/TWEditWindowController.h"
#include "platform/TWBeep.h"
#include "taglib/TWHTMLTag.h"

#include <QApplication>
#include <QClipboard>
#include <QImage>
#include <QMimeData>
#include <QPaintEvent>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>

namespace {

// A view wired as a window wires it, counting its repaints of the tag colours and collecting
// what it repaints on screen.
class RecordingView : public TWEditorTextView
{
public:
    RecordingView() { connect(this, &TWEditorTextView::userEdited, this, &TWEditorTextView::textDidChange); }
    void paintTagColors() override { ++paints; TWEditorTextView::paintTagColors(); }
    void paintEvent(QPaintEvent *event) override { painted += event->region(); TWEditorTextView::paintEvent(event); }
    int paints = 0;
    QRegion painted;
};

bool shown(QWidget &widget)
{
    widget.resize(600, 400);
    widget.show();
    return QTest::qWaitForWindowExposed(&widget);
}

// Drags data over the view to a character index, then drops it there or leaves again; answers
// whether the view took every step.
bool drag(TWEditorTextView &view, const QMimeData *data, int index, Qt::KeyboardModifiers modifiers = {}, bool drop = true)
{
    QTextCursor cursor(view.document());
    cursor.setPosition(index);
    const QPoint at = view.cursorRect(cursor).center();
    const Qt::DropActions actions = Qt::CopyAction | Qt::LinkAction | Qt::MoveAction;
    QDragEnterEvent enter(at, actions, data, Qt::LeftButton, modifiers);
    QDragMoveEvent move(at, actions, data, Qt::LeftButton, modifiers);
    QDropEvent release(QPointF(at), actions, data, Qt::LeftButton, modifiers);
    QDragLeaveEvent leave;
    for (QEvent *event : std::initializer_list<QEvent *>{&enter, &move, drop ? static_cast<QEvent *>(&release) : &leave}) {
        QApplication::sendEvent(view.viewport(), event);
        if (!event->isAccepted())
            return false;
    }
    return true;
}

// A press of Return at a place in a text, and the text it gives.
struct ReturnCase { QString text; int at; bool autoIndentation; Qt::KeyboardModifiers modifiers; QString expected; };
// A drag of files (dropped, or dragged away again) and the text it gives.
struct DropCase { QStringList files; Qt::KeyboardModifiers modifiers; bool drop; QString expected; };

} // namespace

class tst_TWEditorTextView : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QTemporaryDir dir;

private Q_SLOTS:
    void initTestCase()
    {
        // Only an image is read; links are made to any name.
        QImage image(4, 3, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(dir.filePath(QStringLiteral("pic.png"))));
    }

    void init()
    {
        viewer = TWRecordingPreview();
        viewer.install();
        TWResetBeepCount();
    }

    void editsScheduleColouringRenderingAndRepaints_data()
    {
        QTest::addColumn<bool>("suspended");
        QTest::addColumn<QList<int>>("counts"); // paints, colouring timers, render timers, direct renders
        // Three keys typed into a loaded text: with suspension one paint and one render follow
        // the last key's timer; without it, every key paints and asks for a render at once.
        QTest::newRow("suspended") << true << QList<int>{0, 3, 3, 0};
        QTest::newRow("not suspended") << false << QList<int>{3, 0, 0, 3};
    }

    void editsScheduleColouringRenderingAndRepaints()
    {
        QFETCH(bool, suspended);
        TWEditorTextView::setTagColoringSuspendFlag(suspended);
        TWEditorTextView::setRenderSuspendFlag(suspended);
        RecordingView view;
        view.setTagColoring(true);
        QVERIFY(shown(view));
        view.setString(QStringLiteral("<p>a line</p>\n").repeated(60));
        view.colorText(); // as a window does after loading a text
        const auto lineCenter = [&view](int line) {
            return view.cursorRect(QTextCursor(view.document()->findBlockByNumber(line))).center();
        };
        view.setSelectedRange({view.document()->findBlockByNumber(6).position() - 1, 0});
        QCoreApplication::processEvents();
        view.paints = 0;
        view.painted = QRegion();
        QTest::keyClicks(&view, QStringLiteral("abc"));
        QTEST((QList<int>{view.paints, view.timerCount(), viewer.renderTimersFired, viewer.directRenderRequests}), "counts");
        // However busy the machine, the timers of a burst paint once, with the last of them.
        TW_TRY_COMPARE_WITH_TIMEOUT(view.timerCount(), 0, 30000);
        QCOMPARE(view.paints, suspended ? 1 : 3);
        // Keys typed inside a line repaint that line, not the whole view.
        QCoreApplication::processEvents();
        QVERIFY(view.painted.contains(lineCenter(5)));
        QVERIFY(view.painted.boundingRect().height() <= 3 * view.fontMetrics().lineSpacing());
        // A direct request paints at once when no timer is pending, and waits for one that is.
        view.colorText();
        QCOMPARE(view.paints, suspended ? 2 : 4);
        view.textDidChange();
        view.colorText();
        QCOMPARE(view.paints, suspended ? 2 : 6);
        TW_TRY_COMPARE_WITH_TIMEOUT(view.paints, suspended ? 3 : 6, 30000);
        // A comment opened at the top recolours, and so repaints, every line after it.
        view.painted = QRegion();
        view.setSelectedRange({0, 0});
        QTest::keyClicks(&view, QStringLiteral("<!--"));
        TW_TRY_COMPARE_WITH_TIMEOUT(view.timerCount(), 0, 30000);
        QCoreApplication::processEvents();
        for (const int line : {1, 10, 15})
            QVERIFY2(view.painted.contains(lineCenter(line)), qPrintable(QString::number(line)));
    }

    void returnKey_data()
    {
        QTest::addColumn<ReturnCase>("row");
        QTest::newRow("tab and space") << ReturnCase{"\t x", 3, true, {}, "\t x\n\t "};
        QTest::newRow("split an indented line") << ReturnCase{"    ab", 5, true, {}, "    a\n    b"};
        QTest::newRow("after an empty first line") << ReturnCase{"\n  x", 4, true, {}, "\n  x\n  "};
        QTest::newRow("switched off") << ReturnCase{"  abc", 5, false, {}, "  abc\n"};
        // Shift+Return is an ordinary line break, not a line separator.
        QTest::newRow("shift") << ReturnCase{"  a", 3, true, Qt::ShiftModifier, "  a\n  "};
    }

    void returnKey()
    {
        QFETCH(ReturnCase, row);
        TWEditorTextView view;
        view.setString(row.text);
        view.setAutoIndentation(row.autoIndentation);
        view.setSelectedRange({row.at, 0});
        QTest::keyClick(&view, Qt::Key_Return, row.modifiers);
        QCOMPARE(view.string(), row.expected);
        // Only LF makes a line.
        QCOMPARE(view.document()->blockCount(), row.expected.count(u'\n') + 1);
    }

    void separatorsAreCharacters_data()
    {
        // U+2028 and U+2029 are characters of the text, never line ends, whichever way they
        // come in or go out; so are the no-break space and the two characters held for them.
        QTest::addColumn<QString>("how");
        for (const char *how : {"load", "insert", "paste", "typed", "wrapped in a tag"})
            QTest::newRow(how) << QString::fromLatin1(how);
    }

    void separatorsAreCharacters()
    {
        QFETCH(QString, how);
        QString text = QStringLiteral("a\u2028b\u2029c\u00a0d\ne");
        TWEditorTextView view;
        if (how == QLatin1String("paste")) {
            QApplication::clipboard()->setText(text);
            view.paste();
        } else if (how == QLatin1String("typed")) {
            for (const QChar c : text) {
                QKeyEvent press(QEvent::KeyPress, c == u'\n' ? Qt::Key_Return : 0, Qt::NoModifier, QString(c));
                QApplication::sendEvent(&view, &press);
            }
        } else {
            how == QLatin1String("insert") ? view.insertText(text) : view.setString(text);
        }
        if (how == QLatin1String("wrapped in a tag")) {
            view.selectAll();
            // A record of another type than single or paired leaves the text and selection alone.
            view.insertTag(TWHTMLTag(7, "x", {}, "<x>", {}, true, false, Qt::blue, {}));
            view.insertTag(TWHTMLTag(TWHTMLTag::pairedType, "p", {}, "<p>", "</p>", true, false, Qt::blue, {}));
            text = "<p>" + text + "</p>";
        }
        QCOMPARE(view.string(), text);
        QCOMPARE(view.document()->blockCount(), 2);
        // Copied, the text is as written.
        view.selectAll();
        view.copy();
        QCOMPARE(QApplication::clipboard()->text(), text);
        // The characters held inside the view for the separators never come out as separators.
        view.setString(QStringLiteral("x\uFDEE\uFDEFy"));
        QCOMPARE(view.string(), QStringLiteral("x\uFFFD\uFFFDy"));
    }

    // The gutter numbers the lines in view that line feeds end (the lines Jump to Line counts),
    // after edits too, and makes room for the digits; hidden, it takes no room.
    void lineNumbers_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("typed"); // at the start of the last line
        QTest::addColumn<int>("jumpTo");
        QTest::addColumn<int>("first"); // the first and the last number drawn; 0: as many as fit
        QTest::addColumn<int>("last");
        QTest::newRow("LF lines") << "a\nb\nc" << "" << 2 << 1 << 3;
        QTest::newRow("separators inside a line") << "a\u2028b\u2029c\nd" << "" << 2 << 1 << 2;
        QTest::newRow("lines typed") << "a\nb" << "x\ny\n" << 4 << 1 << 4;
        QTest::newRow("a line joined") << "a\nb\nc" << "\b" << 2 << 1 << 2;
        QTest::newRow("only the lines in view") << QStringLiteral("x\n").repeated(1999) << "" << 1 << 1 << 0;
        QTest::newRow("scrolled to the end") << QStringLiteral("x\n").repeated(1999) << "" << 2000 << 0 << 2000;
    }

    void lineNumbers()
    {
        QFETCH(QString, text);
        QFETCH(QString, typed);
        QFETCH(int, jumpTo);
        QFETCH(int, first);
        QFETCH(int, last);
        TWEditorTextView view;
        view.setFont(QFont(QStringLiteral("monospace"), 10));
        view.setLineWrapMode(QPlainTextEdit::NoWrap);
        QVERIFY(shown(view));
        view.resize(300, 300);
        view.setString(text);
        view.setSelectedRange({int(text.lastIndexOf(u'\n') + 1), 0});
        for (const QChar c : typed)
            c == u'\n' ? QTest::keyClick(&view, Qt::Key_Return) : c == u'\b' ? QTest::keyClick(&view, Qt::Key_Backspace) : QTest::keyClick(&view, c.toLatin1());
        view.jumptoLineNumber(jumpTo);
        TWLineNumberGutter *gutter = view.lineNumberGutter();
        const QList<int> numbers = gutter->visibleLineNumbers();
        QVERIFY(!numbers.isEmpty() && numbers.size() < 40);
        QCOMPARE(numbers.last() - numbers.first() + 1, numbers.size());
        QCOMPARE(first ? numbers.first() : numbers.last(), first ? first : last);
        if (first && last)
            QCOMPARE(numbers.last(), last);
        QCOMPARE(view.textCursor().blockNumber() + 1, jumpTo);
        QVERIFY(gutter->gutterWidth() > QString::number(view.blockCount()).size() * view.fontMetrics().horizontalAdvance(u'9'));
        QCOMPARE(view.viewport()->x() - gutter->x(), gutter->gutterWidth());
        TWLineNumberGutter::setLineNumbersShown(false);
        QCOMPARE(view.viewport()->x(), gutter->x());
        TWLineNumberGutter::setLineNumbersShown(true);
    }

    void fileDrops_data()
    {
        QTest::addColumn<DropCase>("row");
        const QStringList png{QStringLiteral("pic.png")}, notes{QStringLiteral("notes.txt")};
        const QString text = QStringLiteral("0123456789");
        // Before the drag, characters 2 to 4 are selected; the drop lands at index 7.
        QTest::newRow("image") << DropCase{png, {}, true, "0123456<img src=\"pic.png\" width=\"4\" height=\"3\" alt=\"pic.png\">789"};
        QTest::newRow("image with Shift is a link") << DropCase{png, Qt::ShiftModifier, true, "0123456<a href=\"pic.png\"></a>789"};
        QTest::newRow("file with Ctrl wraps the selection")
            << DropCase{notes, Qt::ControlModifier, true, "01<a href=\"notes.txt\">234</a>56789"};
        QTest::newRow("two files are refused") << DropCase{png + notes, {}, true, text};
        QTest::newRow("file dragged away again") << DropCase{notes, {}, false, text};
        QTest::newRow("a missing image inserts nothing") << DropCase{{"gone.jpg"}, {}, true, text};
        // The name goes in as it is, only what would end the attribute escaped.
        QTest::newRow("odd name") << DropCase{{QString::fromUtf8("ページ \"b\" & c.html")}, {}, true,
                                              QString::fromUtf8("0123456<a href=\"ページ &quot;b&quot; &amp; c.html\"></a>789")};
    }

    // However a file drag ended, a text dragged afterwards goes in as text. (The drag state is
    // shared by all views.)
    void fileDrops()
    {
        QFETCH(DropCase, row);
        TWEditorTextView view;
        QVERIFY(shown(view));
        view.setString(QStringLiteral("0123456789"));
        view.setSelectedRange({2, 3});
        QMimeData files;
        QList<QUrl> urls;
        for (const QString &name : row.files)
            urls << QUrl::fromLocalFile(dir.filePath(name));
        files.setUrls(urls);
        drag(view, &files, 7, row.modifiers, row.drop);
        QCOMPARE(view.string(), row.expected);
        QCOMPARE(TWBeepCount(), 0);
        QMimeData text;
        text.setText(QStringLiteral("XY"));
        view.setString(QStringLiteral("ab"));
        QVERIFY(drag(view, &text, 1));
        QCOMPARE(view.string(), QStringLiteral("aXYb"));
    }

    // Commands go to the active text view of the frontmost visible document window. Jump to
    // Line puts the insertion point at the start of a line (1-based; below 1 the first line,
    // beyond the last the end of the text) and brings the window to the front.
    void commandsGoToTheFrontmostDocumentWindow()
    {
        QWidget panel;
        TWEditWindowController *first = TWEditWindowController::sharedEditWindowController();
        TWCSSWindowController *second = TWCSSWindowController::sharedCSSController();
        // Asked before any window shows, which also starts the tracking of the window order.
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), nullptr);
        for (QWidget *window : std::initializer_list<QWidget *>{first, second, &panel}) {
            QVERIFY(shown(*window));
            QApplication::setActiveWindow(window);
            TW_TRY_COMPARE_WITH_TIMEOUT(QApplication::activeWindow(), window, 5000);
        }
        // The panel is in front, but it is no document window: the one behind it is chosen.
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), second->textView());
        second->textView()->setString(QStringLiteral("one\ntwo\nxy"));
        for (const auto &[line, position] : std::initializer_list<std::pair<int, int>>{{0, 0}, {2, 4}, {4, 10}}) {
            second->textView()->setSelectedRange({2, 3});
            TWAppDelegate::sharedAppDelegate()->jumpToLineNumber(line);
            QCOMPARE(second->textView()->selectedRange(), (TWRange{position, 0}));
        }
        TW_TRY_COMPARE_WITH_TIMEOUT(QApplication::activeWindow(), second, 5000);
        QApplication::setActiveWindow(first);
        TW_TRY_COMPARE_WITH_TIMEOUT(TWEditorTextView::textViewToBeEdited(), first->textView(), 5000);
        first->hide();
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), second->textView());
        second->hide();
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), nullptr);
    }
};

QTEST_MAIN(tst_TWEditorTextView)
#include "tst_TWEditorTextView.moc"
