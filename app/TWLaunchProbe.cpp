#include "app/TWLaunchProbe.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>
#include <QWidget>

#include <cstdio>
#include <ctime>

namespace {

constexpr char launchVariable[] = "TAGWRIGHT_LAUNCH_NS";

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
            // Report once the paint has been delivered, then leave as a normal quit does.
            QTimer::singleShot(0, this, [this] {
                timespec now = {};
                clock_gettime(CLOCK_REALTIME, &now);
                const qint64 elapsed = qint64(now.tv_sec) * 1000000000 + now.tv_nsec - launch;
                std::printf("launch-to-window-shown-ms %.1f\n", double(elapsed) / 1e6);
                std::fflush(stdout);
                QCoreApplication::quit();
            });
        }
        return false;
    }

private:
    qint64 launch;
};

} // namespace

void TWReportLaunchTimeOnFirstPaint(QWidget *window)
{
    bool ok = false;
    const qint64 launch = qEnvironmentVariable(launchVariable).toLongLong(&ok);
    if (ok && launch > 0)
        new FirstPaintWatcher(window, launch);
}
