#include "checker/TWCheckerScripts.h"

#include "platform/TWAtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

constexpr QFileDevice::Permissions scriptPermissions =
    QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ReadGroup | QFileDevice::ReadOther;
constexpr QFileDevice::Permissions programPermissions =
    scriptPermissions | QFileDevice::ExeOwner | QFileDevice::ExeGroup | QFileDevice::ExeOther;

struct ShippedFile {
    const char *resource;
    const char *relativePath;
    QFileDevice::Permissions permissions;
};

constexpr ShippedFile shippedFiles[] = {
    {":/checkers/htmllint", TWCheckerScripts::htmlCheckerRelativePath, programPermissions},
    {":/checkers/validator.sh", TWCheckerScripts::cssCheckerRelativePath, programPermissions},
    {":/checkers/validator.js", TWCheckerScripts::cssCheckerScriptRelativePath, scriptPermissions},
};

void install(const ShippedFile &shipped, const QString &target)
{
    QFile source(QLatin1String(shipped.resource));
    const QFileInfo place(target);
    if (!source.open(QIODevice::ReadOnly) || !QDir().mkpath(place.absolutePath()))
        return;
    // Written whole or not at all, so a crash never leaves half a program that looks installed.
    TWWriteFileAtomically(target, source.readAll(), shipped.permissions);
}

} // namespace

void TWCheckerScripts::installIfMissing(const QString &dataFolder)
{
    for (const ShippedFile &shipped : shippedFiles) {
        const QString target = dataFolder + QLatin1String(shipped.relativePath);
        const QFileInfo place(target);
        // A link whose target is gone does not "exist", but it is still the user's.
        if (!place.exists() && !place.isSymLink())
            install(shipped, target);
    }
}
