#include "platform/TWPaths.h"

#include <QDir>
#include <QStandardPaths>

namespace {
constexpr char dataFolderName[] = "Tagwright";
}

QString TWApplicationDataFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) + QLatin1Char('/')
        + QLatin1String(dataFolderName);
}

QString TWExpandTilde(const QString &path)
{
    if (path == QLatin1String("~"))
        return QDir::homePath();
    if (path.startsWith(QLatin1String("~/")))
        return QDir::homePath() + path.mid(1);
    return path;
}
