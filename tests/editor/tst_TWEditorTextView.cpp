// The editor view: counted colouring timers and render requests after user edits, auto
// indentation, insertions, separators kept as characters, jump to line, file drops and the
// view that commands go to.
#include "editor/TWEditorTextView.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "app/TWDocumentWindow.h"
#include "platform/TWBeep.h"
#include "preferences/TWPreferences.h"
#include "taglib/TWHTMLTag.h"

#include <QApplication>
#include <QClipboard>
#include <QFile>
#include <QImage>
#include <QMainWindow>
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

// A document window with one editor view, for the rule that picks the view to edit.
class DocumentWindow : public QMainWindow, public TWDocumentWindow
{
public:
    DocumentWindow() { setCentralWidget(view); }
    void newDocument() override {}
    void saveDocument() override {}
    void saveDocumentAs() override {}
    TWEditorTextView *activeTextView() const override { return view; }
    TWEditorTextView *view = new TWEditorTextView;
};

bool shown(QWidget &widget)
{
    widget.resize(600, 400);
    widget.show();
    return QTest::qWaitForWindowExposed(&widget);
}

// Drags data over the view to a character index, then drops it there or leaves again; answers
// whether the view took every step.
bool drag(TWEditorTextView &view, const QMimeData *data, int index, Qt::KeyboardModifiers modifiers = {},
          bool drop = true)
{
    QTextCursor cursor(view.document());
    cursor.setPosition(index);
    const QPoint at = view.cursorRect(cursor).center();
    const Qt::DropActions actions = Qt::CopyAction | Qt::LinkAction | Qt::MoveAction;
    QDragEnterEvent enter(at, actions, data, Qt::LeftButton, modifiers);
    QDragMoveEvent move(at, actions, data, Qt::LeftButton, modifiers);
    QDropEvent release(QPointF(at), actions, data, Qt::LeftButton, modifiers);
    QDragLeaveEvent leave;
    QEvent *last = drop ? static_cast<QEvent *>(&release) : &leave;
    for (QEvent *event : {static_cast<QEvent *>(&enter), static_cast<QEvent *>(&move), last}) {
        QApplication::sendEvent(view.viewport(), event);
        if (!event->isAccepted())
            return false;
    }
    return true;
}

TWHTMLTag tagOf(int type, const QString &first, const QString &second = QString())
{
    return TWHTMLTag(type, QStringLiteral("x"), QString(), first, second, true, false, Qt::blue, QString());
}

} // namespace

class tst_TWEditorTextView : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QTemporaryDir dir;
    const QString oddName = QString::fromUtf8("ページ \"b\" & c.html");

    std::unique_ptr<QMimeData> filesData(const QStringList &names) const
    {
        auto data = std::make_unique<QMimeData>();
        QList<QUrl> urls;
        for (const QString &name : names)
            urls << QUrl::fromLocalFile(dir.filePath(name));
        data->setUrls(urls);
        return data;
    }

private Q_SLOTS:
    void initTestCase()
    {
        TWPreferences::sharedPref();
        QImage image(4, 3, QImage::Format_RGB32);
        image.fill(Qt::red);
        QVERIFY(image.save(dir.filePath(QStringLiteral("pic.png"))));
        for (const QString &name : {QStringLiteral("notes.txt"), oddName})
            QVERIFY(QFile(dir.filePath(name)).open(QIODevice::WriteOnly));
    }

    void init()
    {
        TWEditorTextView::setTagColoringSuspendFlag(true);
        TWEditorTextView::setRenderSuspendFlag(true);
        TWEditorTextView::setSuspendTime(0.3f);
        viewer = TWRecordingPreview();
        viewer.install();
        TWResetBeepCount();
    }

    void editsScheduleColouringAndRendering_data()
    {
        QTest::addColumn<bool>("suspended");
        QTest::addColumn<bool>("autoRender");
        QTest::addColumn<int>("renderTimers");
        QTest::addColumn<int>("directRenders");
        // Three keys after a load (no edit): with suspension one paint and one render follow the
        // last key's timer; without it, every key paints and asks for a render at once.
        QTest::newRow("suspended") << true << true << 3 << 0;
        QTest::newRow("not suspended") << false << true << 0 << 3;
        QTest::newRow("view that never renders") << true << false << 0 << 0;
    }

    void editsScheduleColouringAndRendering()
    {
        QFETCH(bool, suspended);
        QFETCH(bool, autoRender);
        QFETCH(int, renderTimers);
        QFETCH(int, directRenders);
        TWEditorTextView::setTagColoringSuspendFlag(suspended);
        TWEditorTextView::setRenderSuspendFlag(suspended);
        RecordingView view;
        view.setAutoRenderEnabled(autoRender);
        view.setString(QStringLiteral("<p>loaded</p>\n"));
        QTest::keyClicks(&view, QStringLiteral("abc"));
        QCOMPARE(view.paints, suspended ? 0 : 3);
        QCOMPARE(view.timerCount(), suspended ? 3 : 0);
        QCOMPARE(viewer.renderTimersFired, renderTimers);
        QCOMPARE(viewer.directRenderRequests, directRenders);
        // However busy the machine, the timers of a burst paint once, with the last of them.
        TW_TRY_COMPARE_WITH_TIMEOUT(view.timerCount(), 0, 30000);
        QCOMPARE(view.paints, suspended ? 1 : 3);
        // A direct request paints at once when no timer is pending, and waits for one that is.
        view.colorText();
        QCOMPARE(view.paints, suspended ? 2 : 4);
        if (suspended) {
            view.textDidChange();
            view.colorText();
            QCOMPARE(view.paints, 2);
            TW_TRY_COMPARE_WITH_TIMEOUT(view.paints, 3, 30000);
        }
    }

    void editsRepaintTheLinesTheyChange()
    {
        TWEditorTextView::setTagColoringSuspendFlag(false);
        RecordingView view;
        view.setTagColoring(true);
        QVERIFY(shown(view));
        view.setString(QStringLiteral("<p>a line</p>\n").repeated(60));
        view.colorText(); // as a window does after loading a text
        const auto lineCenter = [&view](int line) {
            return view.cursorRect(QTextCursor(view.document()->findBlockByNumber(line))).center();
        };

        // A key typed inside a line repaints that line, not the whole view.
        view.setSelectedRange({view.document()->findBlockByNumber(6).position() - 1, 0});
        QCoreApplication::processEvents();
        view.painted = QRegion();
        QTest::keyClick(&view, 'x');
        QCoreApplication::processEvents();
        QVERIFY(view.painted.contains(lineCenter(5)));
        QVERIFY(view.painted.boundingRect().height() <= 3 * view.fontMetrics().lineSpacing());

        // A comment opened at the top recolours, and so repaints, every line after it.
        view.painted = QRegion();
        view.setSelectedRange({0, 0});
        QTest::keyClicks(&view, QStringLiteral("<!--"));
        QCoreApplication::processEvents();
        for (const int line : {1, 10, 15})
            QVERIFY2(view.painted.contains(lineCenter(line)), qPrintable(QString::number(line)));
    }

    void returnKey_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("cursor");
        QTest::addColumn<int>("selectionLength");
        QTest::addColumn<bool>("on");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("expected");
        const int none = Qt::NoModifier;
        QTest::newRow("two spaces") << "  abc" << 5 << 0 << true << none << "  abc\n  ";
        QTest::newRow("tab and space") << "\t x" << 3 << 0 << true << none << "\t x\n\t ";
        QTest::newRow("split an indented line") << "    ab" << 5 << 0 << true << none << "    a\n    b";
        QTest::newRow("blank line gives all") << "   " << 3 << 0 << true << none << "   \n   ";
        QTest::newRow("after an empty first line") << "\n  x" << 4 << 0 << true << none << "\n  x\n  ";
        QTest::newRow("no indentation") << "abc" << 3 << 0 << true << none << "abc\n";
        QTest::newRow("switched off") << "  abc" << 5 << 0 << false << none << "  abc\n";
        QTest::newRow("selection replaced") << "  abc" << 2 << 3 << true << none << "  \n  ";
        // Shift+Return is an ordinary line break, not a line separator.
        QTest::newRow("shift") << "  a" << 3 << 0 << true << int(Qt::ShiftModifier) << "  a\n  ";
    }

    void returnKey()
    {
        QFETCH(QString, text);
        QFETCH(int, cursor);
        QFETCH(int, selectionLength);
        QFETCH(bool, on);
        QFETCH(int, modifiers);
        QFETCH(QString, expected);
        TWEditorTextView view;
        view.setString(text);
        view.setAutoIndentation(on);
        view.setSelectedRange({cursor, selectionLength});
        QTest::keyClick(&view, Qt::Key_Return, Qt::KeyboardModifiers(modifiers));
        QCOMPARE(view.string(), expected);
        // Only LF makes a line.
        QCOMPARE(view.document()->blockCount(), expected.count(u'\n') + 1);
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
        if (how == QLatin1String("insert")) {
            view.insertText(text);
        } else if (how == QLatin1String("paste")) {
            QApplication::clipboard()->setText(text);
            view.paste();
        } else if (how == QLatin1String("typed")) {
            for (const QChar c : text) {
                QKeyEvent press(QEvent::KeyPress, c == u'\n' ? Qt::Key_Return : 0, Qt::NoModifier, QString(c));
                QApplication::sendEvent(&view, &press);
            }
        } else {
            view.setString(text);
        }
        if (how == QLatin1String("wrapped in a tag")) {
            view.selectAll();
            view.insertTag(tagOf(TWHTMLTag::pairedType, QStringLiteral("<p>"), QStringLiteral("</p>")));
            text = QStringLiteral("<p>") + text + QStringLiteral("</p>");
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

    void jumpToLine_data()
    {
        QTest::addColumn<int>("line");
        QTest::addColumn<int>("position");
        QTest::newRow("zero is the start") << 0 << 0;
        QTest::newRow("two") << 2 << 4;
        QTest::newRow("beyond is the end") << 4 << 10;
    }

    void jumpToLine()
    {
        QFETCH(int, line);
        QFETCH(int, position);
        TWEditorTextView view;
        view.setString(QStringLiteral("one\ntwo\nxy"));
        view.setSelectedRange({2, 3});
        view.jumptoLineNumber(line);
        QCOMPARE(view.selectedRange(), (TWRange{position, 0}));
        QVERIFY(view.isVisible());
    }

    void colourCodesAndRefusedTags()
    {
        TWEditorTextView view;
        view.setString(QStringLiteral("say hi"));
        // A record of another type leaves the text and selection alone.
        view.setSelectedRange({0, 4});
        view.insertTag(tagOf(7, QStringLiteral("<x>")));
        QCOMPARE(view.string(), QStringLiteral("say hi"));
        QCOMPARE(view.selectedRange(), (TWRange{0, 4}));
        // A second colour code replaces the first, which stays selected; each is one undo step.
        view.setSelectedRange({0, 0});
        view.insertColorCode(QStringLiteral("#ff0000"));
        QCOMPARE(view.selectedRange(), (TWRange{0, 7}));
        view.insertColorCode(QStringLiteral("#00ff00"));
        QCOMPARE(view.string(), QStringLiteral("#00ff00say hi"));
        view.undo();
        QCOMPARE(view.string(), QStringLiteral("#ff0000say hi"));
    }

    void fileDrops_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("expected");
        const QStringList png{QStringLiteral("pic.png")};
        const QString image = QStringLiteral("<img src=\"pic.png\" width=\"4\" height=\"3\" alt=\"pic.png\">");
        const QString text = QStringLiteral("0123456789");
        // Before the drag, characters 2 to 4 are selected; the drop lands at index 7.
        QTest::newRow("image") << png << int(Qt::NoModifier) << QString(text).insert(7, image);
        QTest::newRow("image with Shift is a link") << png << int(Qt::ShiftModifier)
                                                    << "0123456<a href=\"pic.png\"></a>789";
        QTest::newRow("file with Ctrl wraps the selection") << QStringList{"notes.txt"} << int(Qt::ControlModifier)
                                                            << "01<a href=\"notes.txt\">234</a>56789";
        QTest::newRow("two files are refused") << QStringList{"pic.png", "notes.txt"} << int(Qt::NoModifier) << text;
        QTest::newRow("a missing image inserts nothing") << QStringList{"gone.jpg"} << int(Qt::NoModifier) << text;
        // The name goes in as it is, only what would end the attribute escaped.
        QTest::newRow("odd name") << QStringList{oddName} << int(Qt::NoModifier)
                                  << QString::fromUtf8("0123456<a href=\"ページ &quot;b&quot; &amp; c.html\"></a>789");
    }

    void fileDrops()
    {
        QFETCH(QStringList, files);
        QFETCH(int, modifiers);
        QFETCH(QString, expected);
        TWEditorTextView view;
        QVERIFY(shown(view));
        view.setString(QStringLiteral("0123456789"));
        view.setSelectedRange({2, 3});
        drag(view, filesData(files).get(), 7, Qt::KeyboardModifiers(modifiers));
        QCOMPARE(view.string(), expected);
        QCOMPARE(TWBeepCount(), 0);
    }

    void dragsEndIdle_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::addColumn<bool>("drop");
        // However a file drag ended, a text dragged afterwards, into this view or another, goes
        // in as text.
        QTest::newRow("several files refused") << QStringList{"notes.txt", "notes.txt"} << true;
        QTest::newRow("file dragged away again") << QStringList{"notes.txt"} << false;
        QTest::newRow("file dropped") << QStringList{"notes.txt"} << true;
    }

    void dragsEndIdle()
    {
        QFETCH(QStringList, files);
        QFETCH(bool, drop);
        TWEditorTextView first, second;
        QVERIFY(shown(first) && shown(second));
        first.setString(QStringLiteral("ab"));
        drag(first, filesData(files).get(), 1, {}, drop);
        for (TWEditorTextView *view : {&first, &second}) {
            view->setString(QStringLiteral("ab"));
            QMimeData text;
            text.setText(QStringLiteral("XY"));
            QVERIFY(drag(*view, &text, 1));
            QCOMPARE(view->string(), QStringLiteral("aXYb"));
        }
    }

    void commandsGoToTheFrontmostDocumentWindow()
    {
        QWidget panel;
        DocumentWindow first, second;
        // Asked before any window shows, which also starts the tracking of the window order.
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), nullptr);
        for (QWidget *window : {static_cast<QWidget *>(&first), static_cast<QWidget *>(&second), &panel}) {
            QVERIFY(shown(*window));
            QApplication::setActiveWindow(window);
            TW_TRY_COMPARE_WITH_TIMEOUT(QApplication::activeWindow(), window, 5000);
        }
        // The panel is in front, but it is no document window: the one behind it is chosen.
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), second.view);
        QApplication::setActiveWindow(&first);
        TW_TRY_COMPARE_WITH_TIMEOUT(TWEditorTextView::textViewToBeEdited(), first.view, 5000);
        first.hide();
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), second.view);
        second.hide();
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), nullptr);
    }
};

QTEST_MAIN(tst_TWEditorTextView)
#include "tst_TWEditorTextView.moc"
