#pragma once

#include <QFileInfo>
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

// What a file opens as, by its extension (the text after the last dot of its name), ignoring
// letter case: anything that is not a project, a template or a style sheet is HTML.
enum class TWFileKind { project, templateFile, styleSheet, html };

inline TWFileKind TWFileKindOfPath(const QString &path)
{
    const QString extension = QFileInfo(path).suffix();
    const auto is = [&extension](const char *kind) {
        return extension.compare(QLatin1String(kind), Qt::CaseInsensitive) == 0;
    };
    if (is(TWExtension::project))
        return TWFileKind::project;
    if (is(TWExtension::templateFile))
        return TWFileKind::templateFile;
    if (is(TWExtension::css))
        return TWFileKind::styleSheet;
    return TWFileKind::html;
}
