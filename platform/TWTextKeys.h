#pragma once

#include <array>
#include <string_view>

// Keys of the localised string table "custom". Every text that the user sees comes from
// that table through TWLocalizedString(); a key with no text shows as the key itself.
namespace TWTextKey {
// Document windows
inline constexpr char fileUnspecified[] = "fileUnspecified";
inline constexpr char defaultPageWasLost[] = "defaultPageWasLost";
inline constexpr char templateTitle[] = "template";
// Viewer
inline constexpr char viewer[] = "viewer";
inline constexpr char noTitle[] = "noTitle";
inline constexpr char pathIsNotOne[] = "pathIsNotOne";
// Panel menu titles
inline constexpr char showInsertTagPalette[] = "showInsertTagPalette";
inline constexpr char hideInsertTagPalette[] = "hideInsertTagPalette";
inline constexpr char showColorPanel[] = "showColorPanel";
inline constexpr char hideColorPanel[] = "hideColorPanel";
// Tag records and the built-in tag library
inline constexpr char tag[] = "tag";
inline constexpr char tagName[] = "tagName";
inline constexpr char htmlTag[] = "htmlTag";
inline constexpr char comment[] = "comment";
inline constexpr char generic[] = "generic";
inline constexpr char genericTag[] = "genericTag";
inline constexpr char quotation[] = "quotation";
inline constexpr char boldFace[] = "boldFace";
inline constexpr char italic[] = "italic";
inline constexpr char lineBreak[] = "lineBreak";
inline constexpr char image[] = "image";
inline constexpr char link[] = "link";
inline constexpr char hyperlink[] = "hyperlink";
// Insert-tag palette headers
inline constexpr char single[] = "single";
inline constexpr char paired[] = "paired";
// Replace all
inline constexpr char replaceAll[] = "replaceAll";
inline constexpr char xPlacesAreReplaced[] = "xPlacesAreReplaced";
// Checker window
inline constexpr char ready[] = "ready";
inline constexpr char running[] = "running";
inline constexpr char done[] = "done";
inline constexpr char start[] = "start";
inline constexpr char stop[] = "stop";
inline constexpr char htmlCheckerNotFound[] = "htmlCheckerNotFound";
inline constexpr char htmlFileNotSpecified[] = "htmlFileNotSpecified";
inline constexpr char cssCheckerNotFound[] = "cssCheckerNotFound";
inline constexpr char cssFileNotSpecified[] = "cssFileNotSpecified";
inline constexpr char cantExecuteChecker[] = "cantExecuteChecker";

// Every key above, so that a missing text is caught before a user sees a bare key.
inline constexpr std::array<std::string_view, 37> all = {
    fileUnspecified, defaultPageWasLost, templateTitle, viewer, noTitle, pathIsNotOne,
    showInsertTagPalette, hideInsertTagPalette, showColorPanel, hideColorPanel,
    tag, tagName, htmlTag, comment, generic, genericTag, quotation, boldFace, italic,
    lineBreak, image, link, hyperlink, single, paired, replaceAll, xPlacesAreReplaced,
    ready, running, done, start, stop, htmlCheckerNotFound, htmlFileNotSpecified,
    cssCheckerNotFound, cssFileNotSpecified, cantExecuteChecker,
};
} // namespace TWTextKey
