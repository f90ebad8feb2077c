#pragma once

// Keys under which windows keep their state in the user-defaults store between launches
// (frames and window defaults dictionaries), and the application defaults record.
namespace TWFrameName {
inline constexpr char editorWindow[] = "Editor Window";
inline constexpr char viewerWindow[] = "Viewer Window";
inline constexpr char templateWindow[] = "Template Window";
inline constexpr char cssWindow[] = "CSS Window";
inline constexpr char insertTagPalette[] = "Insert Tag Palette";
inline constexpr char colorPanel[] = "Color Panel";
inline constexpr char htmlCheckerWindow[] = "HTML Checker Window";
inline constexpr char findPanel[] = "Find Panel";
inline constexpr char tagLibraryWindow[] = "Tag Library Window";
inline constexpr char preferencesPanel[] = "Preferences Panel";
} // namespace TWFrameName

namespace TWWindowDefaultsKey {
inline constexpr char editorWindow[] = "Editor Window Defaults";
inline constexpr char viewerWindow[] = "Viewer Window Defaults";
inline constexpr char templateWindow[] = "Template Window Defaults";
inline constexpr char cssWindow[] = "CSS Window Defaults";
inline constexpr char insertTagPalette[] = "Insert Tag Palette Defaults";
inline constexpr char colorPanel[] = "Color Panel Defaults";
inline constexpr char htmlCheckerWindow[] = "HTML Checker Window Defaults";
inline constexpr char findPanel[] = "Find Panel Defaults";
} // namespace TWWindowDefaultsKey

// Entries of the window defaults dictionaries; the document entries are also those of a
// window's part of a project file.
namespace TWStateEntry {
inline constexpr char htmlText[] = "HTML Text";
inline constexpr char htmlFilename[] = "HTML Filename";
inline constexpr char autoIndentation[] = "Auto Indentation";
inline constexpr char baseURL[] = "Base URL";
inline constexpr char autoRendering[] = "Auto Rendering";
inline constexpr char applyCSS[] = "Apply CSS";
inline constexpr char validateLineBreak[] = "Validate Line Break";
inline constexpr char templateFilename[] = "Template Filename";
inline constexpr char templateText[] = "Template Text";
inline constexpr char applyTemplate[] = "Apply Template";
inline constexpr char cssFilename[] = "CSS Filename";
inline constexpr char cssText[] = "CSS Text";
inline constexpr char showWindow[] = "Show Window";
inline constexpr char autoInsert[] = "Auto Insert";
inline constexpr char codeType[] = "Code Type";
inline constexpr char searchText[] = "Search Text";
inline constexpr char replaceText[] = "Replace Text";
inline constexpr char searchUpward[] = "Search Upward";
inline constexpr char ignoreCase[] = "Ignore Case";
inline constexpr char wrapAround[] = "Wrap Around";
} // namespace TWStateEntry

// The application defaults record, and the older record that is read but never written.
namespace TWAppDefaultsKey {
inline constexpr char record[] = "Tagwright App Defaults";
inline constexpr char legacyRecord[] = "Tagwright Legacy App Defaults";
inline constexpr char projectFilename[] = "Project Filename";
// Whether the editors show line numbers: "NO" hides them.
inline constexpr char lineNumbers[] = "Line Numbers";
} // namespace TWAppDefaultsKey

// The root entries of a project file, one per document window; each holds the window's
// entries above as strings.
namespace TWProjectKey {
inline constexpr char editorWindow[] = "Editor Window Save Data";
inline constexpr char viewerWindow[] = "Viewer Window Save Data";
inline constexpr char templateWindow[] = "Template Window Save Data";
inline constexpr char cssWindow[] = "CSS Window Save Data";
} // namespace TWProjectKey
