#include "app/TWWindowState.h"

#include "platform/TWUserDefaults.h"

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
