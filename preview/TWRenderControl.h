#pragma once

#include <QObject>

#include <functional>

// When the preview renders by itself. A render request is honoured only when no render timer
// is pending, auto-rendering is on and the application is no longer launching; a timer is not
// even started while launching. Suspended renders are counted, never cancelled: each change
// starts one more timer, and only the firing that finds no other timer pending renders, one
// suspension time after a burst.
class TWRenderControl : public QObject
{
    Q_OBJECT
public:
    explicit TWRenderControl(QObject *parent = nullptr);

    // What rendering means, and whether the application is still launching.
    std::function<void()> render;
    std::function<bool()> isLaunching;

    bool autoRender() const { return autoRenderFlag; }
    void setAutoRender(bool flag) { autoRenderFlag = flag; }
    double suspensionTime() const { return suspensionSeconds; }
    void setSuspensionTime(double seconds) { suspensionSeconds = seconds; }
    int timerCount() const { return timerCountValue; }

    // A direct request.
    void renderIfAutorender();
    // Starts one suspended render (none while launching).
    void fireRenderTimer();
    // While held, direct requests wait: replacing every window's text at once (a new or
    // opened project) renders once at the release, with one direct request, not once per
    // window. Holds nest.
    void holdRequests() { ++holdCount; }
    void releaseRequests();

private:
    void renderTimerFired();

    bool autoRenderFlag = true;
    double suspensionSeconds = 0.3;
    int timerCountValue = 0;
    int holdCount = 0;
};
