#include "platform/TWDesktopEntry.h"

#include <QFile>
#include <QFileIconProvider>
#include <QFileInfo>

namespace {

constexpr char desktopGroup[] = "[Desktop Entry]";
// A desktop entry is a few lines; anything much larger is not one.
constexpr qint64 longestEntry = 1 << 20;

} // namespace

bool TWDesktopEntry::isDesktopEntry(const QString &path)
{
    return QFileInfo(path).suffix() == QLatin1String(extension);
}

QString TWDesktopEntry::value(const QString &path, const char *key)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text) || file.size() > longestEntry)
        return {};
    const QString prefix = QLatin1String(key) + QLatin1Char('=');
    bool inEntry = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(QLatin1Char('[')))
            inEntry = line == QLatin1String(desktopGroup);
        else if (inEntry && line.startsWith(prefix))
            return line.mid(prefix.size()).trimmed();
    }
    return {};
}

QIcon TWDesktopEntry::icon(const QString &path)
{
    // A desktop entry names its icon in the theme or by path; a program usually has a theme
    // icon of its own name.
    const QString name = isDesktopEntry(path) ? value(path, iconKey) : QFileInfo(path).completeBaseName();
    if (QFileInfo(name).isAbsolute())
        return QIcon(name);
    const QIcon themed = name.isEmpty() ? QIcon() : QIcon::fromTheme(name);
    return themed.isNull() ? QFileIconProvider().icon(QFileInfo(path)) : themed;
}
