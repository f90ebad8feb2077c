#include "app/TWLaunchProbe.h"

#include "preview/TWViewWindowController.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <ctime>

namespace {

constexpr char launchVariable[] = "TAGWRIGHT_LAUNCH_NS";
constexpr char waitVariable[] = "TAGWRIGHT_LAUNCH_WAIT";
constexpr char waitForPreview[] = "preview";

void report(const char *label, qint64 launch)
{
    timespec now = {};
    clock_gettime(CLOCK_REALTIME, &now);
    const qint64 elapsed = qint64(now.tv_sec) * 1000000000 + now.tv_nsec - launch;
    std::printf("%s %.1f\n", label, double(elapsed) / 1e6);
    std::fflush(stdout);
    QCoreApplication::exit(0);
}

class FirstPaintWatcher : public QObject
{
public:
    FirstPaintWatcher(QWidget *window, qint64 launchNanoseconds)
        : QObject(window)
        , launch(launchNanoseconds)
    {
        window->installEventFilter(this);
    }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override
    {
        if (event->type() == QEvent::Paint) {
            watched->removeEventFilter(this);
            // Report once the paint has been delivered.
            QTimer::singleShot(0, this, [this] { report("launch-to-window-shown-ms", launch); });
        }
        return false;
    }

private:
    qint64 launch;
};

} // namespace

void TWReportLaunchTime(QWidget *htmlWindow, TWViewWindowController *viewer)
{
    bool ok = false;
    const qint64 launch = qEnvironmentVariable(launchVariable).toLongLong(&ok);
    if (!ok || launch <= 0)
        return;
    if (qEnvironmentVariable(waitVariable) == QLatin1String(waitForPreview)) {
        QObject::connect(viewer, &TWViewWindowController::loadEnded, viewer, [launch](bool succeeded) {
            if (succeeded)
                report("launch-to-preview-rendered-ms", launch);
        });
    } else {
        new FirstPaintWatcher(htmlWindow, launch);
    }
}
