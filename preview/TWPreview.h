#pragma once

#include <QString>
#include <QUrl>

#include <functional>

// What the documents and the preferences ask of the viewer: renders when due, the render
// timers, the suspension time and the base URL that links and images are resolved against.
// The viewer window controller implements it; shared() reaches the one viewer and creates
// it on first use, as every shared controller is created.
class TWPreview
{
public:
    virtual ~TWPreview() = default;

    // Composes the page and renders it now, whatever the flags say.
    virtual void renderNow() = 0;
    // A direct request to render when rendering is due: no render timer pending,
    // auto-rendering on and the application no longer launching.
    virtual void renderIfAutorender() = 0;
    // Starts one suspended render: a one-shot timer of the suspension time.
    virtual void fireRenderTimer() = 0;
    virtual void setSuspensionTime(double seconds) = 0;
    // The viewer's template button follows the template's apply flag.
    virtual void setTemplateButtonState(bool templateApplied) = 0;

    virtual void setBaseURL(const QUrl &url) = 0;
    virtual void setBaseURLWithString(const QString &text) = 0;
    // The link path that an href or src attribute gets for a file (relative to the folder
    // of a file base URL when the file lies below it, else the bare file name).
    virtual QString relativePathToBaseURL(const QString &path) = 0;

    // Start-up and quit: brings the flags' buttons, menus and style sheet into line and the
    // window to the front; keeps the window state and removes the temporary page file.
    virtual void setupAtAppLaunch() = 0;
    virtual void saveWindowProperties() = 0;

    // The viewer, created through the installed factory on first use; nullptr while the
    // application has no viewer.
    static TWPreview *shared();
    static void setFactory(std::function<TWPreview *()> factory);
};
