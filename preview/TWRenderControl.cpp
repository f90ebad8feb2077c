#include "preview/TWRenderControl.h"

#include <QTimer>

#include <cmath>

TWRenderControl::TWRenderControl(QObject *parent)
    : QObject(parent)
{
}

void TWRenderControl::renderIfAutorender()
{
    if (timerCountValue != 0 || !autoRenderFlag)
        return;
    if (isLaunching && isLaunching())
        return;
    if (render)
        render();
}

void TWRenderControl::fireRenderTimer()
{
    const int milliseconds = int(std::lround(std::max(0.0, suspensionSeconds) * 1000.0));
    QTimer::singleShot(milliseconds, this, &TWRenderControl::renderTimerFired);
    ++timerCountValue;
}

void TWRenderControl::renderTimerFired()
{
    --timerCountValue;
    renderIfAutorender();
}
