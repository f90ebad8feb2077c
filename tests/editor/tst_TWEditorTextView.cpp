// The editor view: counted colouring timers and render requests after user edits, auto
// indentation, insertions, separators kept as characters, jump to line, file drops and the
// view that commands go to.
#include "editor/TWEditorTextView.h"

#include "TWRecordingPreview.h"
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

const QString lineSeparator(QChar(0x2028));
const QString paragraphSeparator(QChar(0x2029));

// Counts the repaints of the tag colours.
class CountingView : public TWEditorTextView
{
public:
    CountingView() { connect(this, &TWEditorTextView::userEdited, this, &TWEditorTextView::textDidChange); }
    void paintTagColors() override { ++paints; }
    int paints = 0;
};

// Collects what a widget repaints.
class PaintedRegion : public QObject
{
public:
    explicit PaintedRegion(QWidget *widget) { widget->installEventFilter(this); }
    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            region += static_cast<QPaintEvent *>(event)->region();
        return false;
    }
    QRegion region;
};

// A document window with one editor view, for the rule that picks the view to edit.
class DocumentWindow : public QMainWindow, public TWDocumentWindow
{
public:
    DocumentWindow()
    {
        setCentralWidget(view);
        resize(300, 200);
    }
    void newDocument() override {}
    void saveDocument() override {}
    void saveDocumentAs() override {}
    TWEditorTextView *activeTextView() const override { return view; }
    TWEditorTextView *view = new TWEditorTextView;
};

QPoint pointOfIndex(TWEditorTextView &view, int index)
{
    QTextCursor cursor(view.document());
    cursor.setPosition(index);
    return view.cursorRect(cursor).center();
}

// One step of a drag over the view at a character index; answers whether the view took it.
enum class Step { enter, move, leave, drop };
bool dragStep(TWEditorTextView &view, Step step, QMimeData *data, int index, Qt::KeyboardModifiers modifiers = {})
{
    const QPoint at = pointOfIndex(view, index);
    const Qt::DropActions actions = Qt::CopyAction | Qt::LinkAction | Qt::MoveAction;
    if (step == Step::enter) {
        QDragEnterEvent event(at, actions, data, Qt::LeftButton, modifiers);
        QApplication::sendEvent(view.viewport(), &event);
        return event.isAccepted();
    }
    if (step == Step::move) {
        QDragMoveEvent event(at, actions, data, Qt::LeftButton, modifiers);
        QApplication::sendEvent(view.viewport(), &event);
        return event.isAccepted();
    }
    if (step == Step::leave) {
        QDragLeaveEvent event;
        QApplication::sendEvent(view.viewport(), &event);
        return true;
    }
    QDropEvent event(QPointF(at), actions, data, Qt::LeftButton, modifiers);
    QApplication::sendEvent(view.viewport(), &event);
    return event.isAccepted();
}

QMimeData *filesData(const QStringList &paths)
{
    auto *data = new QMimeData;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls << QUrl::fromLocalFile(path);
    data->setUrls(urls);
    return data;
}

QString makeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return path;
}

QString makeImage(const QTemporaryDir &dir, const QString &name, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QString path = dir.filePath(name);
    return image.save(path) ? path : QString();
}

TWHTMLTag pairedTag(const QString &first, const QString &second)
{
    return TWHTMLTag(TWHTMLTag::pairedType, QStringLiteral("x"), QString(), first, second, true, false, Qt::blue,
                     QString());
}

} // namespace

class tst_TWEditorTextView : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QTemporaryDir dir;

private Q_SLOTS:
    void initTestCase() { TWPreferences::sharedPref(); }

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
        QTest::addColumn<int>("paintsRightAway");
        QTest::addColumn<int>("renderTimers");
        QTest::addColumn<int>("directRenders");
        // Three keys: with suspension one paint and one render follow the last key's timer;
        // without it, every key paints and asks for a render at once.
        QTest::newRow("suspended") << true << true << 0 << 3 << 0;
        QTest::newRow("not suspended") << false << true << 3 << 0 << 3;
        QTest::newRow("view that never renders") << true << false << 0 << 0 << 0;
    }

    void editsScheduleColouringAndRendering()
    {
        QFETCH(bool, suspended);
        QFETCH(bool, autoRender);
        QFETCH(int, paintsRightAway);
        QFETCH(int, renderTimers);
        QFETCH(int, directRenders);
        TWEditorTextView::setTagColoringSuspendFlag(suspended);
        TWEditorTextView::setRenderSuspendFlag(suspended);
        CountingView view;
        view.setAutoRenderEnabled(autoRender);
        QTest::keyClicks(&view, QStringLiteral("abc"));
        QCOMPARE(view.paints, paintsRightAway);
        QCOMPARE(view.timerCount(), suspended ? 3 : 0);
        QCOMPARE(viewer.renderTimersFired, renderTimers);
        QCOMPARE(viewer.directRenderRequests, directRenders);
        // However busy the machine, the timers of a burst paint once, with the last of them.
        QTRY_COMPARE_WITH_TIMEOUT(view.timerCount(), 0, 30000);
        QCOMPARE(view.paints, suspended ? 1 : 3);
        // A direct request paints at once when no timer is pending, and waits for one that is.
        view.colorText();
        QCOMPARE(view.paints, suspended ? 2 : 4);
        if (suspended) {
            view.textDidChange();
            view.colorText();
            QCOMPARE(view.paints, 2);
            QTRY_COMPARE_WITH_TIMEOUT(view.paints, 3, 30000);
        }
    }

    void editsRepaintTheLinesTheyChange()
    {
        TWEditorTextView::setTagColoringSuspendFlag(false);
        TWEditorTextView view;
        view.resize(600, 400);
        view.setTagColoring(true);
        QObject::connect(&view, &TWEditorTextView::userEdited, &view, &TWEditorTextView::textDidChange);
        QStringList lines;
        for (int i = 0; i < 60; ++i)
            lines << QStringLiteral("<p>line %1</p>").arg(i);
        view.setString(lines.join(u'\n'));
        view.colorText(); // as a window does after loading a text
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        PaintedRegion painted(view.viewport());
        const auto lineCenter = [&view](int line) {
            return view.cursorRect(QTextCursor(view.document()->findBlockByNumber(line))).center();
        };

        // A key typed inside a line repaints that line, not the whole view.
        QTextCursor cursor(view.document()->findBlockByNumber(5));
        cursor.movePosition(QTextCursor::EndOfBlock);
        view.setTextCursor(cursor);
        QCoreApplication::processEvents();
        painted.region = QRegion();
        QTest::keyClick(&view, 'x');
        QCoreApplication::processEvents();
        QVERIFY(painted.region.contains(lineCenter(5)));
        QVERIFY2(painted.region.boundingRect().height() <= 3 * view.fontMetrics().lineSpacing(),
                 qPrintable(QStringLiteral("repainted %1 px").arg(painted.region.boundingRect().height())));

        // A comment opened at the top recolours, and so repaints, every line after it.
        painted.region = QRegion();
        view.setTextCursor(QTextCursor(view.document()));
        QTest::keyClicks(&view, QStringLiteral("<!--"));
        QCoreApplication::processEvents();
        for (const int line : {1, 10, 15})
            QVERIFY2(painted.region.contains(lineCenter(line)), qPrintable(QString::number(line)));
    }

    void loadsAreNotEdits()
    {
        CountingView view;
        int edits = 0;
        QObject::connect(&view, &TWEditorTextView::userEdited, [&edits] { ++edits; });
        view.setString(QStringLiteral("<p>loaded</p>\n"));
        QCOMPARE(edits, 0);
        QVERIFY(!view.document()->isUndoAvailable());
        view.insertText(QStringLiteral("x"));
        QCOMPARE(edits, 1);
        view.undo();
        QCOMPARE(edits, 2);
        QCOMPARE(view.string(), QStringLiteral("<p>loaded</p>\n"));
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
        QTest::addColumn<QString>("how");
        // U+2028 and U+2029 are characters of the text, never line ends, whichever way they
        // come in or go out; so are the no-break space and the two characters held for them.
        QTest::newRow("load") << "load";
        QTest::newRow("insert") << "insert";
        QTest::newRow("paste") << "paste";
        QTest::newRow("typed") << "typed";
        QTest::newRow("wrapped in a tag") << "tag";
    }

    void separatorsAreCharacters()
    {
        QFETCH(QString, how);
        const QString text = QStringLiteral("a") + lineSeparator + QStringLiteral("b") + paragraphSeparator
            + QStringLiteral("c\u00a0d\ne");
        TWEditorTextView view;
        if (how == QLatin1String("load")) {
            view.setString(text);
        } else if (how == QLatin1String("insert")) {
            view.insertText(text);
        } else if (how == QLatin1String("paste")) {
            QApplication::clipboard()->setText(text);
            view.paste();
        } else if (how == QLatin1String("typed")) {
            for (const QChar c : text) {
                if (c == u'\n') {
                    QTest::keyClick(&view, Qt::Key_Return);
                } else {
                    QKeyEvent press(QEvent::KeyPress, 0, Qt::NoModifier, QString(c));
                    QApplication::sendEvent(&view, &press);
                }
            }
        } else {
            view.setString(text);
            view.selectAll();
            view.insertTag(pairedTag(QStringLiteral("<p>"), QStringLiteral("</p>")));
            QCOMPARE(view.string(), QStringLiteral("<p>") + text + QStringLiteral("</p>"));
            return;
        }
        QCOMPARE(view.string(), text);
        QCOMPARE(view.document()->blockCount(), 2);
        // Line 2 starts after the LF, not after a separator.
        view.jumptoLineNumber(2);
        QCOMPARE(view.selectedRange().location, text.indexOf(u'\n') + 1);
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
        QTest::newRow("negative is the start") << -4 << 0;
        QTest::newRow("one") << 1 << 0;
        QTest::newRow("two") << 2 << 4;
        QTest::newRow("last") << 3 << 8;
        QTest::newRow("beyond is the end") << 4 << 10;
        QTest::newRow("far beyond") << 1000000 << 10;
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

    void insertions()
    {
        TWEditorTextView view;
        view.setString(QStringLiteral("say hi"));
        view.setSelectedRange({4, 2});
        view.insertTag(pairedTag(QStringLiteral("<b>"), QStringLiteral("</b>")));
        QCOMPARE(view.string(), QStringLiteral("say <b>hi</b>"));
        view.setSelectedRange({0, 3});
        view.insertTag(TWHTMLTag(TWHTMLTag::singleType, QStringLiteral("br"), QString(), QStringLiteral("<br>"),
                                 QString(), true, false, Qt::blue, QString()));
        QCOMPARE(view.string(), QStringLiteral("<br> <b>hi</b>"));

        // A record of another type beeps and leaves the text and selection alone.
        view.setSelectedRange({0, 4});
        view.insertTag(TWHTMLTag(7, QString(), QString(), QStringLiteral("<x>"), QString(), true, false, Qt::blue,
                                 QString()));
        QCOMPARE(TWBeepCount(), 1);
        QCOMPARE(view.string(), QStringLiteral("<br> <b>hi</b>"));
        QCOMPARE(view.selectedRange(), (TWRange{0, 4}));

        // A second colour code replaces the first, which stays selected; each is one undo step.
        view.setSelectedRange({0, 0});
        view.insertColorCode(QStringLiteral("#ff0000"));
        QCOMPARE(view.selectedRange(), (TWRange{0, 7}));
        view.insertColorCode(QStringLiteral("#00ff00"));
        QCOMPARE(view.string(), QStringLiteral("#00ff00<br> <b>hi</b>"));
        view.undo();
        QCOMPARE(view.string(), QStringLiteral("#ff0000<br> <b>hi</b>"));

        // Links escape what would end the attribute; an image gets its size and name, and a
        // file that is no image inserts nothing and says nothing.
        view.setString(QStringLiteral("see here"));
        view.setSelectedRange({4, 4});
        view.insertLinkForFile(QStringLiteral("/site/docs/a \"b\" & c.html"));
        QCOMPARE(view.string(), QStringLiteral("see <a href=\"a &quot;b&quot; &amp; c.html\">here</a>"));
        view.setString(QStringLiteral("[]"));
        view.setSelectedRange({1, 0});
        view.insertImageOfFile(makeFile(dir, QStringLiteral("fake.png"), "not an image"));
        view.insertImageOfFile(makeImage(dir, QStringLiteral("logo.png"), QSize(37, 21)));
        QCOMPARE(view.string(), QStringLiteral("[<img src=\"logo.png\" width=\"37\" height=\"21\" alt=\"logo.png\">]"));
        QCOMPARE(TWBeepCount(), 1);
    }

    void fileDrops_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("expected");
        const QString text = QStringLiteral("0123456789");
        // Before the drag, characters 2 to 4 are selected; the drop lands at index 7.
        QTest::newRow("image") << "png" << int(Qt::NoModifier)
                               << "0123456<img src=\"pic.png\" width=\"4\" height=\"3\" alt=\"pic.png\">789";
        QTest::newRow("image with Shift is a link") << "png" << int(Qt::ShiftModifier)
                                                    << "0123456<a href=\"pic.png\"></a>789";
        QTest::newRow("image with Ctrl replaces the selection")
            << "png" << int(Qt::ControlModifier) << "01<img src=\"pic.png\" width=\"4\" height=\"3\" alt=\"pic.png\">56789";
        QTest::newRow("text file with Ctrl wraps the selection") << "txt" << int(Qt::ControlModifier)
                                                                 << "01<a href=\"notes.txt\">234</a>56789";
        QTest::newRow("text file") << "txt" << int(Qt::NoModifier) << "0123456<a href=\"notes.txt\"></a>789";
        QTest::newRow("two files are refused") << "two" << int(Qt::NoModifier) << text;
        QTest::newRow("a folder becomes a link") << "folder" << int(Qt::NoModifier)
                                                 << "0123456<a href=\"site folder\"></a>789";
        QTest::newRow("a missing image inserts nothing") << "missing" << int(Qt::NoModifier) << text;
        QTest::newRow("non-ASCII name") << "japanese" << int(Qt::NoModifier)
                                        << QString::fromUtf8("0123456<a href=\"ページ.html\"></a>789");
    }

    void fileDrops()
    {
        QFETCH(QString, kind);
        QFETCH(int, modifiers);
        QFETCH(QString, expected);
        const QString png = makeImage(dir, QStringLiteral("pic.png"), QSize(4, 3));
        const QString txt = makeFile(dir, QStringLiteral("notes.txt"), "notes");
        QStringList files;
        if (kind == QLatin1String("png"))
            files << png;
        else if (kind == QLatin1String("txt"))
            files << txt;
        else if (kind == QLatin1String("two"))
            files << png << txt;
        else if (kind == QLatin1String("folder"))
            files << dir.filePath(QStringLiteral("site folder"));
        else if (kind == QLatin1String("missing"))
            files << dir.filePath(QStringLiteral("gone.jpg"));
        else if (kind == QLatin1String("japanese"))
            files << makeFile(dir, QString::fromUtf8("ページ.html"), "x");
        if (kind == QLatin1String("folder"))
            QDir().mkpath(files.first());

        TWEditorTextView view;
        view.resize(400, 300);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.setString(QStringLiteral("0123456789"));
        view.setSelectedRange({2, 3});
        const std::unique_ptr<QMimeData> data(filesData(files));
        const auto modifierKeys = Qt::KeyboardModifiers(modifiers);
        if (dragStep(view, Step::enter, data.get(), 7, modifierKeys)) {
            dragStep(view, Step::move, data.get(), 7, modifierKeys);
            dragStep(view, Step::drop, data.get(), 7, modifierKeys);
        }
        QCOMPARE(view.string(), expected);
    }

    void dragsEndIdle_data()
    {
        QTest::addColumn<QString>("before");
        // However a file drag ended, a text dragged afterwards, into this view or another, goes
        // in as text.
        QTest::newRow("several files refused") << "refused";
        QTest::newRow("file dragged away again") << "left";
        QTest::newRow("file dropped") << "dropped";
    }

    void dragsEndIdle()
    {
        QFETCH(QString, before);
        TWEditorTextView first, second;
        for (TWEditorTextView *view : {&first, &second}) {
            view->resize(400, 300);
            view->show();
            QVERIFY(QTest::qWaitForWindowExposed(view));
            view->setString(QStringLiteral("ab"));
        }
        const QString txt = makeFile(dir, QStringLiteral("notes.txt"), "notes");
        const std::unique_ptr<QMimeData> files(
            filesData(before == QLatin1String("refused") ? QStringList{txt, txt} : QStringList{txt}));
        dragStep(first, Step::enter, files.get(), 1);
        if (before == QLatin1String("left"))
            dragStep(first, Step::leave, files.get(), 1);
        else if (before == QLatin1String("dropped"))
            dragStep(first, Step::drop, files.get(), 1);
        for (TWEditorTextView *view : {&first, &second}) {
            view->setString(QStringLiteral("ab"));
            QMimeData text;
            text.setText(QStringLiteral("XY"));
            QVERIFY(dragStep(*view, Step::enter, &text, 1));
            QVERIFY(dragStep(*view, Step::move, &text, 1));
            QVERIFY(dragStep(*view, Step::drop, &text, 1));
            QCOMPARE(view->string(), QStringLiteral("aXYb"));
        }
    }

    void commandsGoToTheFrontmostDocumentWindow()
    {
        QWidget panel;
        panel.resize(100, 100);
        DocumentWindow first, second;
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), nullptr);
        for (QWidget *window : {static_cast<QWidget *>(&first), static_cast<QWidget *>(&second), &panel}) {
            window->show();
            QVERIFY(QTest::qWaitForWindowExposed(window));
            QApplication::setActiveWindow(window);
            QTRY_COMPARE(QApplication::activeWindow(), window);
        }
        // The panel is in front, but it is no document window: the one behind it is chosen.
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), second.view);
        QApplication::setActiveWindow(&first);
        QTRY_COMPARE(TWEditorTextView::textViewToBeEdited(), first.view);
        first.hide();
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), second.view);
        second.hide();
        QCOMPARE(TWEditorTextView::textViewToBeEdited(), nullptr);
    }
};

QTEST_MAIN(tst_TWEditorTextView)
#include "tst_TWEditorTextView.moc"
