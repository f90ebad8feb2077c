// The checker window under a flood of output, and the shipped HTML checker on a big page.
//   bench_checker flood <megabytes>: a checker prints that much (lines of text) as fast as it
//       can; prints the longest and the 99th-percentile wait of a 5 ms timer meanwhile, beside
//       the same timer on an idle event loop, the time the run took and the peak memory, beside
//       the memory of the process before the run
//   bench_checker first <page> <data folder>: Start with the shipped HTML checker on the page
//       (UTF-8): time until its first message is shown, and until the run is done
#include "checker/TWCheckerScripts.h"
#include "checker/TWHTMLCheckerWindowController.h"
#include "editor/TWEditWindowController.h"
#include "preferences/TWPreferences.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

#include <algorithm>
#include <cstdio>
#include <sys/resource.h>

namespace {

constexpr int tickMilliseconds = 5;

long peakMegabytes()
{
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss / 1024;
}

// How late a 5 ms timer fires while the condition does not hold yet: the worst and the 99th
// percentile, in milliseconds.
std::pair<double, double> lateness(const std::function<bool()> &done)
{
    std::vector<double> late;
    QElapsedTimer clock;
    clock.start();
    qint64 last = clock.nsecsElapsed();
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    QObject::connect(&tick, &QTimer::timeout, [&] {
        const qint64 now = clock.nsecsElapsed();
        late.push_back(std::max(0.0, (now - last) / 1e6 - tickMilliseconds));
        last = now;
    });
    tick.start(tickMilliseconds);
    while (!done())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    std::sort(late.begin(), late.end());
    if (late.empty())
        return {0, 0};
    return {late.back(), late[size_t(double(late.size() - 1) * 0.99)]};
}

QPushButton *startButton(TWHTMLCheckerWindowController *window)
{
    return window->findChild<QPushButton *>(QStringLiteral("checkerButton"));
}

int flood(int megabytes)
{
    QTemporaryDir dir;
    const QString checker = dir.filePath(QStringLiteral("flood"));
    QFile script(checker);
    script.open(QIODevice::WriteOnly);
    script.write(QStringLiteral("#!/bin/sh\nyes 'line 12 column 7 - Warning: a message of the checker' | head -c %1\n")
                     .arg(qint64(megabytes) << 20)
                     .toLatin1());
    script.setPermissions(script.permissions() | QFileDevice::ExeOwner);
    script.close();
    TWPreferences::sharedPref()->setHTMLCheckerPath(checker);
    TWPreferences::sharedPref()->setHTMLCheckerOptions(QString());
    TWEditWindowController::sharedEditWindowController()->setHTMLFilename(dir.filePath(QStringLiteral("page.html")));
    TWHTMLCheckerWindowController *window = TWHTMLCheckerWindowController::sharedCheckerController();
    window->setCodeType(TWHTMLCheckerWindowController::html);
    window->show();

    QElapsedTimer idle;
    idle.start();
    const auto [idleWorst, idle99] = lateness([&idle] { return idle.elapsed() > 2000; });
    const long before = peakMegabytes();
    QElapsedTimer run;
    run.start();
    startButton(window)->click();
    const auto [worst, p99] = lateness([window] { return !window->isRunning(); });
    std::printf("flood of %d MB: run %.0f ms; timer late by worst %.2f ms, 99th %.2f ms "
                "(idle loop: worst %.2f ms, 99th %.2f ms); peak memory %ld MB (before the run %ld MB); "
                "window holds %lld characters\n",
                megabytes, run.nsecsElapsed() / 1e6, worst, p99, idleWorst, idle99, peakMegabytes(), before,
                static_cast<long long>(window->text().size()));
    return 0;
}

int first(const QString &page, const QString &dataFolder)
{
    TWCheckerScripts::installIfMissing(dataFolder);
    TWPreferences *preferences = TWPreferences::sharedPref();
    preferences->setHTMLCheckerPath(dataFolder + QLatin1String(TWCheckerScripts::htmlCheckerRelativePath));
    preferences->setTextEncoding(3);
    TWEditWindowController::sharedEditWindowController()->setHTMLFilename(page);
    TWHTMLCheckerWindowController *window = TWHTMLCheckerWindowController::sharedCheckerController();
    window->setCodeType(TWHTMLCheckerWindowController::html);
    QPlainTextEdit *output = window->findChild<QPlainTextEdit *>(QStringLiteral("checkerTextView"));
    QElapsedTimer clock;
    double firstMessage = -1;
    QObject::connect(output->document(), &QTextDocument::contentsChanged, [&] {
        if (firstMessage < 0 && !output->document()->isEmpty())
            firstMessage = clock.nsecsElapsed() / 1e6;
    });
    clock.start();
    startButton(window)->click();
    while (window->isRunning())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    std::printf("shipped HTML checker on %s: first message %.0f ms, done %.0f ms, %lld lines\n", qPrintable(page),
                firstMessage, clock.nsecsElapsed() / 1e6, static_cast<long long>(window->text().count(u'\n')));
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("flood"))
        return flood(arguments.value(2, QStringLiteral("100")).toInt());
    if (arguments.value(1) == QLatin1String("first") && arguments.size() > 3)
        return first(arguments.at(2), arguments.at(3));
    std::fprintf(stderr, "usage: bench_checker flood <megabytes> | first <page> <data folder>\n");
    return 2;
}
