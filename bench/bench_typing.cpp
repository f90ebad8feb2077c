// Typing latency in the HTML window holding a large page, beside a bare QPlainTextEdit with
// the same text in the same run; and the cost of auto-indentation by document size.
//   bench_typing <page.html>
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWLineNumberGutter.h"
#include "editor/TWTextFile.h"
#include "preferences/TWPreferences.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTextBlock>

#include <algorithm>
#include <cstdio>
#include <vector>

namespace {

constexpr int keystrokes = 200;

struct Figures
{
    double median;
    double p99;
};

Figures figures(std::vector<double> samples)
{
    std::sort(samples.begin(), samples.end());
    return {samples[samples.size() / 2], samples[std::min(samples.size() - 1, samples.size() * 99 / 100)]};
}

// Sends one key and waits until the view has painted it; answers the milliseconds taken.
double typeOneKey(QPlainTextEdit *view, int key, const QString &text)
{
    QElapsedTimer timer;
    timer.start();
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
    QApplication::sendEvent(view, &press);
    QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
    QApplication::sendEvent(view, &release);
    QApplication::processEvents();
    view->viewport()->repaint();
    return timer.nsecsElapsed() / 1e6;
}

// Keystrokes spread over the document: the cursor goes to a new place every 20 keys.
Figures typeInto(QPlainTextEdit *view)
{
    std::vector<double> samples;
    const int blocks = view->document()->blockCount();
    for (int i = 0; i < keystrokes; ++i) {
        if (i % 20 == 0) {
            QTextCursor cursor(view->document()->findBlockByNumber(int((qint64(blocks) * (i / 20)) / 10)));
            view->setTextCursor(cursor);
            view->ensureCursorVisible();
            QApplication::processEvents();
            view->viewport()->repaint();
        }
        samples.push_back(typeOneKey(view, Qt::Key_X, QStringLiteral("x")));
    }
    return figures(samples);
}

QString indentedLines(int count)
{
    QString text;
    text.reserve(count * 24);
    for (int i = 0; i < count; ++i)
        text += QStringLiteral("    <li>line %1</li>\n").arg(i);
    return text;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_typing <page.html>\n");
        return 2;
    }
    const std::optional<QString> page = TWTextFile::load(QString::fromLocal8Bit(argv[1]), 3);
    if (!page)
        return 1;

    TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
    window->resize(900, 800);
    window->loadHTML(*page);
    window->show();
    QApplication::processEvents();
    // A first round lays out the places typed at, so that both rounds below find them alike.
    typeInto(window->textView());
    const Figures ours = typeInto(window->textView());
    TWLineNumberGutter::setLineNumbersShown(false);
    QApplication::processEvents();
    const Figures noNumbers = typeInto(window->textView());
    TWLineNumberGutter::setLineNumbersShown(true);
    window->hide();

    QPlainTextEdit bare;
    bare.resize(900, 800);
    bare.setFont(TWPreferences::sharedPref()->editorFont());
    bare.setPlainText(*page);
    bare.show();
    QApplication::processEvents();
    const Figures plain = typeInto(&bare);
    bare.hide();

    std::printf("keystroke to painted, %d keys spread over %.1f MB:\n", keystrokes, page->size() / 1e6);
    std::printf("  HTML window       median %6.2f ms   99th %6.2f ms\n", ours.median, ours.p99);
    std::printf("  without line numbers median %6.2f ms   99th %6.2f ms   (numbers on/off: %.2f)\n", noNumbers.median,
                noNumbers.p99, ours.median / noNumbers.median);
    std::printf("  bare QPlainTextEdit median %6.2f ms   99th %6.2f ms\n", plain.median, plain.p99);
    std::printf("  ratio (median)    %.2f   (target <= 1.5; 99th target < 16 ms)\n", ours.median / plain.median);

    std::printf("auto-indentation on Return, median of 50:\n");
    for (const int lines : {1000, 10000, 100000}) {
        TWEditorTextView view;
        view.resize(900, 800);
        view.setAutoIndentation(true);
        view.setString(indentedLines(lines));
        view.show();
        QApplication::processEvents();
        view.setTextCursor(QTextCursor(view.document()->findBlockByNumber(lines / 2)));
        view.moveCursor(QTextCursor::EndOfBlock);
        std::vector<double> samples;
        for (int i = 0; i < 50; ++i)
            samples.push_back(typeOneKey(&view, Qt::Key_Return, QStringLiteral("\r")));
        std::printf("  %6d lines   %6.3f ms\n", lines, figures(samples).median);
    }
    return 0;
}
