#include "app/TWProjectFile.h"

#include "platform/TWAtomicFile.h"
#include "platform/TWXMLPropertyList.h"

#include <QCoreApplication>
#include <QFile>

std::optional<QVariantMap> TWProjectFile::read(const QString &path, QString *why)
{
    const auto fail = [why](const char *text) {
        if (why)
            *why = QCoreApplication::translate("TWProjectFile", text);
        return std::nullopt;
    };
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return fail(QT_TRANSLATE_NOOP("TWProjectFile", "The file could not be read."));
    const std::optional<QVariant> root = TWXMLPropertyList::read(file.readAll());
    if (!root || root->typeId() != QMetaType::QVariantMap)
        return fail(QT_TRANSLATE_NOOP("TWProjectFile", "This is not a Tagwright project."));
    return root->toMap();
}

bool TWProjectFile::write(const QString &path, const QVariantMap &project)
{
    const std::optional<QByteArray> document = TWXMLPropertyList::write(project);
    return document && TWWriteFileAtomically(path, *document);
}

std::optional<QVariantMap> TWProjectFile::windowEntry(const std::optional<QVariantMap> &project, const char *rootKey)
{
    if (!project)
        return std::nullopt;
    const QVariant entry = project->value(QLatin1String(rootKey));
    if (entry.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    return entry.toMap();
}
