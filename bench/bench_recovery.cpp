// The recovery copy with a large page: what one write costs (in all, and the longest the event
// loop waits for it), and typing while copies are written beside the same typing without them.
//   bench_recovery <page.html>
#include "app/TWRecoveryCopy.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTextFile.h"
#include "preview/TWPreview.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <vector>

namespace {

constexpr int writesMeasured = 15;
constexpr int keyIntervalMilliseconds = 60;
constexpr int typingMilliseconds = 12000;

struct Figures
{
    double median;
    double p99;
    double worst;
};

Figures figures(std::vector<double> samples)
{
    std::sort(samples.begin(), samples.end());
    return {samples[samples.size() / 2], samples[std::min(samples.size() - 1, samples.size() * 99 / 100)],
            samples.back()};
}

// The longest time the event loop was held while `busy` is true: a zero timer measures the
// gaps between its turns.
struct StallMeter
{
    double longest = 0;
    void run(const std::function<bool()> &busy)
    {
        QElapsedTimer clock;
        clock.start();
        qint64 last = clock.nsecsElapsed();
        while (busy()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents);
            const qint64 now = clock.nsecsElapsed();
            longest = std::max(longest, (now - last) / 1e6);
            last = now;
        }
    }
};

// Keys typed at a steady pace, each measured from the moment it was due (one interval after the
// one before was due) to the moment the view has painted it, so that any wait for other work
// counts.
Figures typeSteadily(TWEditorTextView *view)
{
    std::vector<double> samples;
    QElapsedTimer clock;
    clock.start();
    qint64 due = 0;
    QTimer ticker;
    ticker.setTimerType(Qt::PreciseTimer);
    QObject::connect(&ticker, &QTimer::timeout, view, [&] {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
        QApplication::sendEvent(view, &press);
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_X, Qt::NoModifier, QStringLiteral("x"));
        QApplication::sendEvent(view, &release);
        view->viewport()->repaint();
        const qint64 now = clock.nsecsElapsed();
        samples.push_back((now - due) / 1e6);
        // The ticker keeps its own pace: the next key is due one interval after this one was.
        due += qint64(keyIntervalMilliseconds) * 1000000;
    });
    due = clock.nsecsElapsed() + qint64(keyIntervalMilliseconds) * 1000000;
    ticker.start(keyIntervalMilliseconds);
    while (clock.elapsed() < typingMilliseconds)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    ticker.stop();
    return figures(samples);
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    if (argc < 2) {
        std::fprintf(stderr, "usage: bench_recovery <page.html>\n");
        return 2;
    }
    const std::optional<QString> page = TWTextFile::load(QString::fromLocal8Bit(argv[1]), 3);
    if (!page)
        return 1;
    // No viewer: the preview's own cost is measured elsewhere.
    TWPreview::setFactory([] { return static_cast<TWPreview *>(nullptr); });
    TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
    TWTemplateWindowController::sharedTemplateController();
    TWCSSWindowController::sharedCSSController();
    window->resize(900, 800);
    window->loadHTML(*page);
    window->show();
    QApplication::processEvents();
    TWEditorTextView *view = window->textView();
    TWRecoveryCopy *copy = TWRecoveryCopy::shared();

    // One write after one change, many times.
    copy->start();
    std::vector<double> totals;
    std::vector<double> stalls;
    for (int i = 0; i < writesMeasured; ++i) {
        view->insertText(QStringLiteral("x"));
        const int before = copy->writesDone();
        QElapsedTimer waited;
        waited.start();
        while (!copy->isWriting() && copy->writesDone() == before && waited.elapsed() < 10000)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 5);
        QElapsedTimer clock;
        clock.start();
        StallMeter meter;
        meter.run([&] { return copy->isWriting() || copy->writesDone() == before; });
        totals.push_back(clock.nsecsElapsed() / 1e6);
        stalls.push_back(meter.longest);
    }
    const Figures total = figures(totals);
    const Figures stall = figures(stalls);
    std::printf("one recovery write of the %.1f MB page (%d writes):\n", page->size() / 1e6, writesMeasured);
    std::printf("  whole write       median %7.2f ms   worst %7.2f ms\n", total.median, total.worst);
    std::printf("  longest stall     median %7.2f ms   worst %7.2f ms   (target: a few ms)\n", stall.median,
                stall.worst);

    // Typing with copies written as it goes on, then the same without.
    const int writesBefore = copy->writesDone();
    const Figures on = typeSteadily(view);
    const int writesWhileTyping = copy->writesDone() - writesBefore;
    copy->discard();
    QObject::disconnect(view->document(), nullptr, copy, nullptr);
    const Figures off = typeSteadily(view);
    std::printf("typing one key every %d ms for %d s, due to painted:\n", keyIntervalMilliseconds,
                typingMilliseconds / 1000);
    std::printf("  recovery on  (%2d copies written)  median %6.2f ms   99th %6.2f ms   worst %6.2f ms\n",
                writesWhileTyping, on.median, on.p99, on.worst);
    std::printf("  recovery off                      median %6.2f ms   99th %6.2f ms   worst %6.2f ms\n", off.median,
                off.p99, off.worst);
    std::printf("  ratio (99th)  %.2f\n", on.p99 / off.p99);
    copy->discard();
    return 0;
}
