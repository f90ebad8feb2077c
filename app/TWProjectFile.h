#pragma once

#include <QString>
#include <QVariantMap>

#include <optional>

// A project file: one XML property list whose root dictionary holds one entry per document
// window, each a dictionary of strings. Written only when the user saves a project, read only
// when the user opens one.
class TWProjectFile
{
public:
    // The root dictionary, or nothing when the file cannot be read, is not a property list or
    // its root is not a dictionary; *why then says which, as a sentence for the user.
    static std::optional<QVariantMap> read(const QString &path, QString *why = nullptr);
    // Replaces the file at path as a whole, or leaves it as it was: false when it could not be
    // written.
    static bool write(const QString &path, const QVariantMap &project);

    // A window's entry: nothing when there is no project, or no dictionary under the key.
    static std::optional<QVariantMap> windowEntry(const std::optional<QVariantMap> &project, const char *rootKey);
};
