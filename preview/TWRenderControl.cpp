#include "preview/TWRenderControl.h"

#include <QTimer>

#include <cmath>

TWRenderControl::TWRenderControl(QObject *parent)
    : QObject(parent)
{
}

void TWRenderControl::renderIfAutorender()
{
    if (holdCount > 0 || timerCountValue != 0 || !autoRenderFlag)
        return;
    if (isLaunching && isLaunching())
        return;
    if (render)
        render();
}

void TWRenderControl::fireRenderTimer()
{
    // Dropped like a direct request while launching: the launch renders once, at its end, and
    // a timer started by the texts being restored would render a second time after it.
    if (isLaunching && isLaunching())
        return;
    const int milliseconds = int(std::lround(std::max(0.0, suspensionSeconds) * 1000.0));
    QTimer::singleShot(milliseconds, this, &TWRenderControl::renderTimerFired);
    ++timerCountValue;
}

void TWRenderControl::renderTimerFired()
{
    --timerCountValue;
    renderIfAutorender();
}

void TWRenderControl::releaseRequests()
{
    if (holdCount > 0 && --holdCount == 0)
        renderIfAutorender();
}
