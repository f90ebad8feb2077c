#pragma once

// Top-level keys of the user-defaults store under which the preferences are kept, and the
// stored names of their values.
namespace TWPreferenceKey {
inline constexpr char applicationVersion[] = "Application Version";
inline constexpr char defaultBaseURL[] = "Default Base URL";
inline constexpr char htmlCheckerPath[] = "HTML Checker Path";
inline constexpr char htmlCheckerOptions[] = "HTML Checker Options";
inline constexpr char cssCheckerPath[] = "CSS Checker Path";
inline constexpr char cssCheckerOptions[] = "CSS Checker Options";
inline constexpr char viewerFont[] = "Viewer Font";
inline constexpr char viewerFontSize[] = "Viewer Font Size";
inline constexpr char viewerFixedFont[] = "Viewer Fixed Font";
inline constexpr char viewerFixedFontSize[] = "Viewer Fixed Font Size";
inline constexpr char editorFont[] = "Editor Font";
inline constexpr char editorFontSize[] = "Editor Font Size";
inline constexpr char templateFont[] = "Template Font";
inline constexpr char templateFontSize[] = "Template Font Size";
inline constexpr char cssFont[] = "CSS Font";
inline constexpr char cssFontSize[] = "CSS Font Size";
inline constexpr char tagColoring[] = "HTML Tag Coloring";
inline constexpr char textEncoding[] = "Text Encoding";
inline constexpr char returnCode[] = "Return Code";
inline constexpr char suspendRender[] = "Suspend Render";
inline constexpr char suspendTagColoring[] = "Suspend Tag Coloring";
inline constexpr char suspendTime[] = "Suspend Time";
inline constexpr char editorBackgroundColor[] = "Editor Background Color";
inline constexpr char editorTextColor[] = "Editor Text Color";
inline constexpr char externalBrowsers[] = "External Browsers";
inline constexpr char htmlTagLibrary[] = "HTML Tag Library";
} // namespace TWPreferenceKey

// The version written under "Application Version" at every save.
inline constexpr char TWApplicationVersion[] = "1.4b3";

// Stored names of the text encoding codes (index = code) and of the return codes.
namespace TWPreferenceValue {
inline constexpr const char *textEncodingNames[] = {"SJIS-JP", "EUC-JP", "JIS-JP", "UTF-8"};
inline constexpr const char *returnCodeNames[] = {"CR", "LF", "DOS"};
} // namespace TWPreferenceValue
