#pragma once

#include <QString>

// The style sheet reaches the preview like a user style sheet: a script that runs as each
// document is created puts a <style> with the style sheet's text first into the page, so the
// page's own rules still win where they say otherwise.
namespace TWUserStyleSheet {
inline constexpr char scriptName[] = "TWUserStyleSheet";
inline constexpr char elementId[] = "tagwright-user-style-sheet";

// The script that puts the style sheet into the current document as soon as it has a root.
QString injectionSource(const QString &css);
} // namespace TWUserStyleSheet
