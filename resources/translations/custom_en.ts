<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en">
<context>
    <name>custom</name>
    <message>
        <source>fileUnspecified</source>
        <translation>Untitled</translation>
    </message>
    <message>
        <source>defaultPageWasLost</source>
        <translation>&lt;!-- The default page is missing from this installation. Start writing your page here. --&gt;
</translation>
    </message>
    <message>
        <source>template</source>
        <translation>Template</translation>
    </message>
    <message>
        <source>viewer</source>
        <translation>Viewer</translation>
    </message>
    <message>
        <source>noTitle</source>
        <translation>No Title</translation>
    </message>
    <message>
        <source>pathIsNotOne</source>
        <translation>Choose exactly one file.</translation>
    </message>
    <message>
        <source>showInsertTagPalette</source>
        <translation>Show Insert Tag Palette</translation>
    </message>
    <message>
        <source>hideInsertTagPalette</source>
        <translation>Hide Insert Tag Palette</translation>
    </message>
    <message>
        <source>showColorPanel</source>
        <translation>Show Color Panel</translation>
    </message>
    <message>
        <source>hideColorPanel</source>
        <translation>Hide Color Panel</translation>
    </message>
    <message>
        <source>tag</source>
        <translation>Tag</translation>
    </message>
    <message>
        <source>tagName</source>
        <translation>New Tag</translation>
    </message>
    <message>
        <source>htmlTag</source>
        <translation>HTML Tag</translation>
    </message>
    <message>
        <source>comment</source>
        <translation>Comment</translation>
    </message>
    <message>
        <source>generic</source>
        <translation>Generic</translation>
    </message>
    <message>
        <source>genericTag</source>
        <translation>Generic Tag</translation>
    </message>
    <message>
        <source>quotation</source>
        <translation>Quotation</translation>
    </message>
    <message>
        <source>boldFace</source>
        <translation>Bold Face</translation>
    </message>
    <message>
        <source>italic</source>
        <translation>Italic</translation>
    </message>
    <message>
        <source>lineBreak</source>
        <translation>Line Break</translation>
    </message>
    <message>
        <source>image</source>
        <translation>Image</translation>
    </message>
    <message>
        <source>link</source>
        <translation>Link</translation>
    </message>
    <message>
        <source>hyperlink</source>
        <translation>Hyperlink</translation>
    </message>
    <message>
        <source>single</source>
        <translation>Single Tags</translation>
    </message>
    <message>
        <source>paired</source>
        <translation>Paired Tags</translation>
    </message>
    <message>
        <source>replaceAll</source>
        <translation>Replace All</translation>
    </message>
    <message numerus="yes">
        <source>xPlacesAreReplaced</source>
        <translation>
            <numerusform>%n place was replaced.</numerusform>
            <numerusform>%n places were replaced.</numerusform>
        </translation>
    </message>
    <message>
        <source>ready</source>
        <translation>Ready</translation>
    </message>
    <message>
        <source>running</source>
        <translation>Running</translation>
    </message>
    <message>
        <source>done</source>
        <translation>Done</translation>
    </message>
    <message>
        <source>start</source>
        <translation>Start</translation>
    </message>
    <message>
        <source>stop</source>
        <translation>Stop</translation>
    </message>
    <message>
        <source>htmlCheckerNotFound</source>
        <translation>The HTML checker was not found. Set its path in Preferences.
</translation>
    </message>
    <message>
        <source>htmlFileNotSpecified</source>
        <translation>The HTML document has no file yet. Save it, then check it.
</translation>
    </message>
    <message>
        <source>cssCheckerNotFound</source>
        <translation>The CSS checker was not found. Set its path in Preferences.
</translation>
    </message>
    <message>
        <source>cssFileNotSpecified</source>
        <translation>The style sheet has no file yet. Save it, then check it.
</translation>
    </message>
    <message>
        <source>cantExecuteChecker</source>
        <translation>The checker could not be started.
</translation>
    </message>
</context>
</TS>
