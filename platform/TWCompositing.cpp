#include "platform/TWCompositing.h"

#include <QGuiApplication>
#include <QtGui/qguiapplication_platform.h>

#include <xcb/xcb.h>

#include <cstdlib>
#include <string>

namespace {

// An X11 compositing manager owns the selection _NET_WM_CM_S<screen>.
bool x11CompositorRunning()
{
    auto *x11 = qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || !x11->connection())
        return false;
    xcb_connection_t *connection = x11->connection();
    const char *display = std::getenv("DISPLAY");
    int screen = 0;
    if (display) {
        const std::string name(display);
        const auto dot = name.rfind('.');
        if (dot != std::string::npos && dot > name.rfind(':'))
            screen = std::atoi(name.c_str() + dot + 1);
    }
    const std::string atomName = "_NET_WM_CM_S" + std::to_string(screen);
    xcb_intern_atom_reply_t *atom = xcb_intern_atom_reply(
        connection, xcb_intern_atom(connection, 1, uint16_t(atomName.size()), atomName.c_str()), nullptr);
    if (!atom)
        return false;
    const bool exists = atom->atom != XCB_ATOM_NONE;
    const xcb_atom_t selection = atom->atom;
    std::free(atom);
    if (!exists)
        return false;
    xcb_get_selection_owner_reply_t *owner
        = xcb_get_selection_owner_reply(connection, xcb_get_selection_owner(connection, selection), nullptr);
    if (!owner)
        return false;
    const bool owned = owner->owner != XCB_WINDOW_NONE;
    std::free(owner);
    return owned;
}

} // namespace

bool TWDesktopCompositesWindows()
{
    const QString platform = QGuiApplication::platformName();
    if (platform.startsWith(QLatin1String("wayland")))
        return true;
    if (platform == QLatin1String("xcb"))
        return x11CompositorRunning();
    return false;
}
