#include "platform/TWAtomicFile.h"

#include <QSaveFile>

bool TWWriteFileAtomically(const QString &path, const QByteArray &bytes,
                           std::optional<QFileDevice::Permissions> permissions)
{
    QSaveFile file(path);
    return file.open(QIODevice::WriteOnly) && (!permissions || file.setPermissions(*permissions))
           && file.write(bytes) == bytes.size() && file.commit();
}
