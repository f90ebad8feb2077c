#pragma once

#include <QStringList>

// File name extensions by kind of file. Opening routes by them, ignoring letter case; save
// panels offer them.
namespace TWExtension {
inline constexpr char project[] = "twproj";
inline constexpr char templateFile[] = "twtemp";
inline constexpr char css[] = "css";
inline constexpr char html[] = "html";
inline constexpr char htm[] = "htm";
inline constexpr char shtml[] = "shtml";
inline constexpr char tagLibrary[] = "tlib";
inline constexpr char jpg[] = "jpg";
inline constexpr char jpeg[] = "jpeg";
inline constexpr char png[] = "png";
inline constexpr char gif[] = "gif";
} // namespace TWExtension

// The image files that are inserted as <img> tags.
inline QStringList TWImageExtensions()
{
    return {QLatin1String(TWExtension::jpg), QLatin1String(TWExtension::jpeg), QLatin1String(TWExtension::png),
            QLatin1String(TWExtension::gif)};
}
