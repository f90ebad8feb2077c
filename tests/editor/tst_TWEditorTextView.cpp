// The editor view: counted colouring timers and render requests after user edits, auto
// indentation, insertions, jump to line, file drops and the view that commands go to.
#include "editor/TWEditorTextView.h"

#include "TWRecordingPreview.h"
#include "app/TWAppDelegate.h"
#include "app/TWDocumentWindow.h"
#include "platform/TWBeep.h"
#include "preferences/TWPreferences.h"
#include "taglib/TWHTMLTag.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QMainWindow>
#include <QMimeData>
#include <QPaintEvent>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBlock>

namespace {

// Counts the repaints of the tag colours, and when they happened.
class CountingView : public TWEditorTextView
{
public:
    void paintTagColors() override
    {
        ++paints;
        lastPaint.start();
    }
    int paints = 0;
    QElapsedTimer lastPaint;
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

QPointF pointOfIndex(TWEditorTextView &view, int index)
{
    QTextCursor cursor(view.document());
    cursor.setPosition(index);
    return QPointF(view.cursorRect(cursor).center());
}

// Drags the files over the view and drops them at a character index, holding the modifiers
// for the whole drag as a user holds a key.
void dropFiles(TWEditorTextView &view, const QStringList &paths, int index, Qt::KeyboardModifiers modifiers)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const QString &path : paths)
        urls << QUrl::fromLocalFile(path);
    data.setUrls(urls);
    const QPointF at = pointOfIndex(view, index);
    const Qt::DropActions actions = Qt::CopyAction | Qt::LinkAction | Qt::MoveAction;
    QDragEnterEvent enter(at.toPoint(), actions, &data, Qt::LeftButton, modifiers);
    QApplication::sendEvent(view.viewport(), &enter);
    QDragMoveEvent move(at.toPoint(), actions, &data, Qt::LeftButton, modifiers);
    QApplication::sendEvent(view.viewport(), &move);
    QDropEvent drop(at, actions, &data, Qt::LeftButton, modifiers);
    QApplication::sendEvent(view.viewport(), &drop);
}

QString makeImage(const QTemporaryDir &dir, const QString &name, QSize size)
{
    QImage image(size, QImage::Format_RGB32);
    image.fill(Qt::red);
    const QString path = dir.filePath(name);
    return image.save(path) ? path : QString();
}

QString makeFile(const QTemporaryDir &dir, const QString &name, const QByteArray &bytes)
{
    const QString path = dir.filePath(name);
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return path;
}

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
        viewer.install();
        TWPreferences::sharedPref();
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

    void burstOfTypingPaintsOnceAfterTheLastKey()
    {
        CountingView view;
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QObject::connect(&view, &TWEditorTextView::userEdited, &view, &TWEditorTextView::textDidChange);
        for (const char key : {'a', 'b', 'c'}) {
            QTest::keyClick(&view, key);
            QTest::qWait(100);
        }
        QCOMPARE(view.timerCount(), 3);
        QCOMPARE(view.paints, 0);
        QElapsedTimer sinceLastKey;
        sinceLastKey.start();
        QTRY_COMPARE_WITH_TIMEOUT(view.timerCount(), 0, 2000);
        QCOMPARE(view.paints, 1);
        // The one paint came with the last timer, one suspension time after the last key.
        QVERIFY(sinceLastKey.elapsed() >= 150);
        QCOMPARE(viewer.renderTimersFired, 3);
        QCOMPARE(viewer.directRenderRequests, 0);
    }

    void withoutSuspensionEveryKeyPaintsAndRenders()
    {
        TWEditorTextView::setTagColoringSuspendFlag(false);
        TWEditorTextView::setRenderSuspendFlag(false);
        CountingView view;
        QObject::connect(&view, &TWEditorTextView::userEdited, &view, &TWEditorTextView::textDidChange);
        QTest::keyClicks(&view, QStringLiteral("abcd"));
        QCOMPARE(view.paints, 4);
        QCOMPARE(view.timerCount(), 0);
        QCOMPARE(viewer.directRenderRequests, 4);
        QCOMPARE(viewer.renderTimersFired, 0);
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
        QTest::qWait(50);
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

    void viewsWithoutAutoRenderNeverRender()
    {
        CountingView view;
        view.setAutoRenderEnabled(false);
        QObject::connect(&view, &TWEditorTextView::userEdited, &view, &TWEditorTextView::textDidChange);
        QTest::keyClicks(&view, QStringLiteral("ab"));
        QCOMPARE(viewer.renderTimersFired + viewer.directRenderRequests, 0);
        QCOMPARE(view.timerCount(), 2);
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

    void directPaintWaitsForPendingTimers()
    {
        CountingView view;
        view.textDidChange();
        view.colorText();
        QCOMPARE(view.paints, 0);
        QTRY_COMPARE(view.paints, 1);
        view.colorText();
        QCOMPARE(view.paints, 2);
        view.setTagColoring(false);
        const int off = view.paints;
        view.colorText();
        QCOMPARE(view.paints, off);
    }

    void autoIndentation_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("cursor");
        QTest::addColumn<int>("selectionLength");
        QTest::addColumn<bool>("on");
        QTest::addColumn<QString>("expected");
        QTest::newRow("two spaces") << QStringLiteral("  abc") << 5 << 0 << true << QStringLiteral("  abc\n  ");
        QTest::newRow("tab and space") << QStringLiteral("\t x") << 3 << 0 << true << QStringLiteral("\t x\n\t ");
        QTest::newRow("split an indented line") << QStringLiteral("    ab") << 5 << 0 << true
                                                << QStringLiteral("    a\n    b");
        QTest::newRow("blank line gives all") << QStringLiteral("   ") << 3 << 0 << true << QStringLiteral("   \n   ");
        QTest::newRow("after an empty first line") << QStringLiteral("\n  x") << 4 << 0 << true
                                                   << QStringLiteral("\n  x\n  ");
        QTest::newRow("no indentation") << QStringLiteral("abc") << 3 << 0 << true << QStringLiteral("abc\n");
        QTest::newRow("switched off") << QStringLiteral("  abc") << 5 << 0 << false << QStringLiteral("  abc\n");
        QTest::newRow("selection replaced") << QStringLiteral("  abc") << 2 << 3 << true << QStringLiteral("  \n  ");
    }

    void autoIndentation()
    {
        QFETCH(QString, text);
        QFETCH(int, cursor);
        QFETCH(int, selectionLength);
        QFETCH(bool, on);
        QFETCH(QString, expected);
        TWEditorTextView view;
        view.setString(text);
        view.setAutoIndentation(on);
        view.setSelectedRange({cursor, selectionLength});
        QTest::keyClick(&view, Qt::Key_Return);
        QCOMPARE(view.string(), expected);
    }

    void shiftReturnIsALineBreak()
    {
        TWEditorTextView view;
        view.setAutoIndentation(true);
        view.setString(QStringLiteral("  a"));
        view.setSelectedRange({3, 0});
        QTest::keyClick(&view, Qt::Key_Return, Qt::ShiftModifier);
        QCOMPARE(view.string(), QStringLiteral("  a\n  "));
        QCOMPARE(view.document()->blockCount(), 2);
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
        view.insertTag(TWHTMLTag(TWHTMLTag::pairedType, QStringLiteral("b"), QString(), QStringLiteral("<b>"),
                                 QStringLiteral("</b>"), true, false, Qt::blue, QString()));
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

        // A second colour code replaces the first, which stays selected.
        view.setSelectedRange({0, 0});
        view.insertColorCode(QStringLiteral("#ff0000"));
        QCOMPARE(view.selectedRange(), (TWRange{0, 7}));
        view.insertColorCode(QStringLiteral("#00ff00"));
        QCOMPARE(view.string(), QStringLiteral("#00ff00<br> <b>hi</b>"));

        // Each insertion is one undo step.
        view.undo();
        QCOMPARE(view.string(), QStringLiteral("#ff0000<br> <b>hi</b>"));
    }

    void linksAndImages()
    {
        TWEditorTextView view;
        view.setString(QStringLiteral("see here"));
        view.setSelectedRange({4, 4});
        view.insertLinkForFile(QStringLiteral("/site/docs/a \"b\" & c.html"));
        QCOMPARE(view.string(), QStringLiteral("see <a href=\"a &quot;b&quot; &amp; c.html\">here</a>"));

        const QString png = makeImage(dir, QStringLiteral("logo.png"), QSize(37, 21));
        view.setString(QStringLiteral("[]"));
        view.setSelectedRange({1, 0});
        view.insertImageOfFile(png);
        QCOMPARE(view.string(), QStringLiteral("[<img src=\"logo.png\" width=\"37\" height=\"21\" alt=\"logo.png\">]"));

        // A file that is no image, or is missing, inserts nothing and says nothing.
        const QString fake = makeFile(dir, QStringLiteral("fake.png"), "not an image");
        view.setString(QStringLiteral("x"));
        view.insertImageOfFile(fake);
        view.insertImageOfFile(dir.filePath(QStringLiteral("missing.gif")));
        QCOMPARE(view.string(), QStringLiteral("x"));
        QCOMPARE(TWBeepCount(), 0);
    }

    void fileDrops_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("expected");
        const QString text = QStringLiteral("0123456789");
        // Before the drag, characters 2 to 4 are selected; the drop lands at index 7.
        QTest::newRow("image") << QStringLiteral("png") << int(Qt::NoModifier)
                               << QStringLiteral("0123456<img src=\"pic.png\" width=\"4\" height=\"3\" alt=\"pic.png\">789");
        QTest::newRow("image with Shift is a link") << QStringLiteral("png") << int(Qt::ShiftModifier)
                                                    << QStringLiteral("0123456<a href=\"pic.png\"></a>789");
        QTest::newRow("image with Ctrl replaces the selection")
            << QStringLiteral("png") << int(Qt::ControlModifier)
            << QStringLiteral("01<img src=\"pic.png\" width=\"4\" height=\"3\" alt=\"pic.png\">56789");
        QTest::newRow("text file with Ctrl wraps the selection")
            << QStringLiteral("txt") << int(Qt::ControlModifier) << QStringLiteral("01<a href=\"notes.txt\">234</a>56789");
        QTest::newRow("text file") << QStringLiteral("txt") << int(Qt::NoModifier)
                                   << QStringLiteral("0123456<a href=\"notes.txt\"></a>789");
        QTest::newRow("two files are refused") << QStringLiteral("two") << int(Qt::NoModifier) << text;
        QTest::newRow("a folder becomes a link") << QStringLiteral("folder") << int(Qt::NoModifier)
                                                 << QStringLiteral("0123456<a href=\"site folder\"></a>789");
        QTest::newRow("a missing image inserts nothing") << QStringLiteral("missing") << int(Qt::NoModifier) << text;
        QTest::newRow("non-ASCII name") << QStringLiteral("japanese") << int(Qt::NoModifier)
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
        dropFiles(view, files, 7, Qt::KeyboardModifiers(modifiers));
        QCOMPARE(view.string(), expected);
    }

    void textDragsAreOrdinary()
    {
        TWEditorTextView view;
        view.resize(400, 300);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        view.setString(QStringLiteral("ab"));
        QMimeData data;
        data.setText(QStringLiteral("XY"));
        const QPointF at = pointOfIndex(view, 1);
        QDragEnterEvent enter(at.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view.viewport(), &enter);
        QDragMoveEvent move(at.toPoint(), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view.viewport(), &move);
        QDropEvent drop(at, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(view.viewport(), &drop);
        QCOMPARE(view.string(), QStringLiteral("aXYb"));
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
