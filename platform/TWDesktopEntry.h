#pragma once

#include <QIcon>
#include <QString>

// What a Linux desktop says of an installed application in its desktop entry (a .desktop
// file): how to start it, its name and its icon.
namespace TWDesktopEntry {

inline constexpr char extension[] = "desktop";
inline constexpr char execKey[] = "Exec";
inline constexpr char nameKey[] = "Name";
inline constexpr char iconKey[] = "Icon";

bool isDesktopEntry(const QString &path);
// The untranslated value of a key of the [Desktop Entry] group, or "".
QString value(const QString &path, const char *key);
// A desktop entry's icon; for any other file the theme's icon of the file's name, else the
// file's own.
QIcon icon(const QString &path);

} // namespace TWDesktopEntry
