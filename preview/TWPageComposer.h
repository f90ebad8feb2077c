#pragma once

#include <QString>
#include <QUrl>

#include <optional>

// How the previewed page is made: the combined page (template top half, the HTML, template
// bottom half) and the temporary page file with its base line and style-sheet link line in
// front; the base URL rules and the link path of a file relative to the base URL.
namespace TWPageComposer {

// The name of the temporary page file in the application data folder.
inline constexpr char reloadingFileName[] = "Tagwright_tmp.html";

// The HTML with every line feed replaced by "<br>" when asked (carriage returns stay).
QString htmlWithLineBreakRule(const QString &html, bool lineBreakValidation);
// Top half, HTML (with the line-feed rule), bottom half; nothing else is added.
QString combinedPage(const QString &top, const QString &html, const QString &bottom, bool lineBreakValidation);
// The temporary page file's text: "<base href=...>" CR, the style-sheet link line CR when a
// style sheet path is given, then the combined page.
QString reloadingFileText(const QString &baseURL, const QString &styleSheetPath, const QString &combined);

// The base URL for a text: none when the text is empty or no absolute URL.
std::optional<QUrl> baseURLFromString(const QString &text);
// The absolute string of a URL, percent-escaped as it travels.
QString absoluteString(const QUrl &url);
// The file URL of a path in the form file://localhost/... that relative paths are made against.
QUrl fileURL(const QString &path);
// The path to write into an href or src attribute: relative to the folder of a file base URL
// when the file lies below it, else the bare file name.
QString relativePathToBaseURL(const std::optional<QUrl> &baseURL, const QString &path);

// Writes the temporary page file (UTF-8 with a byte-order mark, so that browsers read it as
// UTF-8 whatever character set the template declares; atomically) into the folder, creating the
// folder when nothing exists at its path; answers the file's path, whether or not it was written.
QString writeReloadingFile(const QString &folder, const QString &text);

} // namespace TWPageComposer
