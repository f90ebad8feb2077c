#pragma once

#include <QString>
#include <QVariant>

// Flags are stored as the strings "YES" and "NO" everywhere (user defaults, window
// defaults, projects). Readers compare with one of the two exactly, so a missing or
// foreign value falls to the other side; each reader says which side it takes.
namespace TWFlag {
inline constexpr char yes[] = "YES";
inline constexpr char no[] = "NO";

inline QString string(bool flag)
{
    return QString::fromLatin1(flag ? yes : no);
}

// Exactly "YES"; anything else (missing, "yes", a number) is NO.
inline bool isYes(const QVariant &value)
{
    return value.typeId() == QMetaType::QString && value.toString() == QLatin1String(yes);
}

// Anything but exactly "NO" (missing included) is YES.
inline bool isNotNo(const QVariant &value)
{
    return !(value.typeId() == QMetaType::QString && value.toString() == QLatin1String(no));
}
} // namespace TWFlag
