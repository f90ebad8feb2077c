// Tag colouring on the 8 MB page, in the HTML window, with render and colouring suspension
// off (every keystroke recolours at once). Prints, for colouring on or off:
//   (a) open to the visible screen coloured, and the longest hold of the event loop while the
//       rest is worked out;
//   (b) keystroke to recoloured screen, 200 keys spread over the document, beside a bare
//       QPlainTextEdit with the same text;
//   (c) typing "<!--" at the top and deleting it again: time until the screen is right;
//   (d) peak memory.
//   bench_coloring on|off <page.html>
#include "app/TWAppDelegate.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTagHighlighter.h"
#include "editor/TWTextFile.h"
#include "preferences/TWPreferences.h"
#include "taglib/TWHTMLTagLibrary.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTextBlock>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <sys/resource.h>
#include <vector>

namespace {

double percentile(std::vector<double> samples, int percent)
{
    std::sort(samples.begin(), samples.end());
    return samples[std::min(samples.size() - 1, samples.size() * percent / 100)];
}

double key(QPlainTextEdit *view, int code, const QString &text)
{
    QElapsedTimer timer;
    timer.start();
    QKeyEvent press(QEvent::KeyPress, code, Qt::NoModifier, text);
    QApplication::sendEvent(view, &press);
    QKeyEvent release(QEvent::KeyRelease, code, Qt::NoModifier, text);
    QApplication::sendEvent(view, &release);
    QApplication::processEvents();
    view->viewport()->repaint();
    return timer.nsecsElapsed() / 1e6;
}

std::vector<double> typeSpread(QPlainTextEdit *view)
{
    std::vector<double> samples;
    const int blocks = view->document()->blockCount();
    for (int i = 0; i < 200; ++i) {
        if (i % 20 == 0) {
            view->setTextCursor(QTextCursor(view->document()->findBlockByNumber(int(qint64(blocks) * (i / 20) / 10))));
            view->ensureCursorVisible();
            QApplication::processEvents();
            view->viewport()->repaint();
        }
        samples.push_back(key(view, Qt::Key_X, QStringLiteral("x")));
    }
    return samples;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (argc < 3) {
        std::fprintf(stderr, "usage: bench_coloring on|off <page.html>\n");
        return 2;
    }
    const bool coloring = qstrcmp(argv[1], "on") == 0;
    const std::optional<QString> page = TWTextFile::load(QString::fromLocal8Bit(argv[2]), 3);
    if (!page)
        return 1;
    TWPreferences::sharedPref()->setTagColoring(coloring);
    TWHTMLTagLibrary::sharedTagLibrary()->setUpTagColor();
    TWEditorTextView::setTagColoringSuspendFlag(false);
    TWEditorTextView::setRenderSuspendFlag(false);

    TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
    window->resize(900, 800);
    window->show();
    TWEditorTextView *view = window->textView();
    view->setTagColoring(coloring);
    QApplication::processEvents();

    // (a)
    QElapsedTimer open;
    open.start();
    window->loadHTML(*page);
    QApplication::processEvents();
    view->viewport()->repaint();
    const double openMs = open.nsecsElapsed() / 1e6;
    double longestHold = 0;
    {
        QElapsedTimer gap;
        gap.start();
        QTimer ticker;
        ticker.setInterval(0);
        QObject::connect(&ticker, &QTimer::timeout, [&] {
            longestHold = std::max(longestHold, gap.nsecsElapsed() / 1e6);
            gap.restart();
        });
        ticker.start();
        QElapsedTimer limit;
        limit.start();
        while (coloring && !view->tagHighlighter()->isComplete() && limit.elapsed() < 60000)
            QApplication::processEvents(QEventLoop::AllEvents);
    }
    const double backgroundMs = open.nsecsElapsed() / 1e6;

    // (b)
    const std::vector<double> ours = typeSpread(view);
    QPlainTextEdit bare;
    bare.resize(900, 800);
    bare.setFont(view->font());
    bare.setPlainText(*page);
    bare.show();
    QApplication::processEvents();
    const std::vector<double> plain = typeSpread(&bare);
    bare.hide();

    // (c)
    view->setTextCursor(QTextCursor(view->document()));
    view->ensureCursorVisible();
    QApplication::processEvents();
    double commentMs = 0;
    for (const char c : {'<', '!', '-', '-'})
        commentMs = std::max(commentMs, key(view, c, QString(QLatin1Char(c))));
    double uncommentMs = 0;
    for (int i = 0; i < 4; ++i)
        uncommentMs = std::max(uncommentMs, key(view, Qt::Key_Backspace, QString()));

    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);

    std::printf("tag colouring %s, %.1f MB page:\n", coloring ? "ON" : "OFF", page->size() / 1e6);
    std::printf("  (a) open to visible screen coloured  %7.1f ms   rest coloured after %7.1f ms, longest event-loop hold %5.1f ms\n",
                openMs, backgroundMs, longestHold);
    std::printf("  (b) keystroke to recoloured screen   median %5.2f ms  99th %5.2f ms   bare editor median %5.2f ms  99th %5.2f ms  (ratio %.2f)\n",
                percentile(ours, 50), percentile(ours, 99), percentile(plain, 50), percentile(plain, 99),
                percentile(ours, 50) / percentile(plain, 50));
    std::printf("  (c) \"<!--\" typed at the top: slowest key %5.1f ms; deleted again: slowest key %5.1f ms\n", commentMs,
                uncommentMs);
    std::printf("  (d) peak memory %ld MB\n", usage.ru_maxrss / 1024);
    return 0;
}
