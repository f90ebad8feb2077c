#include "app/TWWindowState.h"

#include "platform/TWUserDefaults.h"

#include <QScreen>
#include <QWidget>

namespace {
// Frames are kept next to the window defaults, under a key made from the frame name.
constexpr char frameKeyPrefix[] = "Window Frame ";

QString frameKey(const char *frameName)
{
    return QLatin1String(frameKeyPrefix) + QLatin1String(frameName);
}
} // namespace

void TWWindowState::saveFrameUsingName(const QWidget *window, const char *frameName)
{
    TWUserDefaults::standardUserDefaults()->setObject(window->saveGeometry(), frameKey(frameName));
}

bool TWWindowState::setFrameUsingName(QWidget *window, const char *frameName)
{
    const std::optional<QByteArray> frame = TWUserDefaults::standardUserDefaults()->dataForKey(frameKey(frameName));
    return frame && window->restoreGeometry(*frame);
}

void TWWindowState::setFrameUsingName(QWidget *window, const char *frameName, QPoint defaultPosition)
{
    if (setFrameUsingName(window, frameName))
        return;
    QPoint position = defaultPosition;
    if (const QScreen *screen = window->screen()) {
        const QRect available = screen->availableGeometry();
        position.setX(std::clamp(available.left() + position.x(), available.left(),
                                 std::max(available.left(), available.right() - window->width())));
        position.setY(std::clamp(available.top() + position.y(), available.top(),
                                 std::max(available.top(), available.bottom() - window->height())));
    }
    window->move(position);
}

std::optional<QVariantMap> TWWindowState::readDefaults(const char *defaultsKey)
{
    return TWUserDefaults::standardUserDefaults()->dictionaryForKey(QLatin1String(defaultsKey));
}

void TWWindowState::writeDefaults(const char *defaultsKey, const QVariantMap &dictionary)
{
    TWUserDefaults::standardUserDefaults()->setObject(dictionary, QLatin1String(defaultsKey));
}

std::optional<QString> TWWindowState::stringEntry(const QVariantMap &dictionary, const char *entry)
{
    const QVariant value = dictionary.value(QLatin1String(entry));
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}
