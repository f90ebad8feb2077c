#pragma once

#include <QColor>
#include <QFont>
#include <QString>
#include <QStringList>

#include <optional>

class TWUserDefaults;

// The user's settings: default base URL, checkers, fonts, tag colouring, editor colours,
// file encoding and line end, rendering and colouring suspension, external browsers and the
// stored tag library text. Filled with defaults, then overridden from the user-defaults
// store; written back at quit and when the preferences panel closes.
class TWPreferences
{
public:
    static TWPreferences *sharedPref();

    // Registers itself as the shared instance when none is, then loads (defaults, then the
    // store). Tests may make further instances, which read the same store.
    TWPreferences();
    ~TWPreferences();
    TWPreferences(const TWPreferences &) = delete;
    TWPreferences &operator=(const TWPreferences &) = delete;

    void setDefaultPrefs();
    void loadPrefsFromDictionary();
    void savePrefs();

    const QString &defaultBaseURL() const { return defaultBaseURLValue; }
    void setDefaultBaseURL(const QString &url) { defaultBaseURLValue = url; }
    const QString &htmlCheckerPath() const { return htmlCheckerPathValue; }
    void setHTMLCheckerPath(const QString &path) { htmlCheckerPathValue = path; }
    const QString &htmlCheckerOptions() const { return htmlCheckerOptionsValue; }
    void setHTMLCheckerOptions(const QString &options) { htmlCheckerOptionsValue = options; }
    const QString &cssCheckerPath() const { return cssCheckerPathValue; }
    void setCSSCheckerPath(const QString &path) { cssCheckerPathValue = path; }
    const QString &cssCheckerOptions() const { return cssCheckerOptionsValue; }
    void setCSSCheckerOptions(const QString &options) { cssCheckerOptionsValue = options; }

    const QFont &viewerFont() const { return viewerFontValue; }
    void setViewerFont(const QFont &font) { viewerFontValue = font; }
    const QFont &viewerFixedFont() const { return viewerFixedFontValue; }
    void setViewerFixedFont(const QFont &font) { viewerFixedFontValue = font; }
    const QFont &editorFont() const { return editorFontValue; }
    void setEditorFont(const QFont &font) { editorFontValue = font; }
    const QFont &templateFont() const { return templateFontValue; }
    void setTemplateFont(const QFont &font) { templateFontValue = font; }
    const QFont &cssFont() const { return cssFontValue; }
    void setCSSFont(const QFont &font) { cssFontValue = font; }
    int viewerFontSize() const { return fontSize(viewerFontValue); }
    int viewerFixedFontSize() const { return fontSize(viewerFixedFontValue); }
    int editorFontSize() const { return fontSize(editorFontValue); }
    int templateFontSize() const { return fontSize(templateFontValue); }
    int cssFontSize() const { return fontSize(cssFontValue); }

    bool tagColoring() const { return tagColoringValue; }
    void setTagColoring(bool flag) { tagColoringValue = flag; }

    const QColor &editorBGColorWithAlpha() const { return editorBGColorValue; }
    void setEditorBGColorWithAlpha(const QColor &color) { editorBGColorValue = color.toRgb(); }
    // Red, green and blue of the background colour, opaque.
    QColor editorBGColor() const;
    // Takes red, green and blue, keeps the current alpha.
    void setEditorBGColor(const QColor &color);
    float editorBGAlpha() const { return editorBGColorValue.alphaF(); }
    void setEditorBGAlpha(float alpha);
    const QColor &editorTextColor() const { return editorTextColorValue; }
    void setEditorTextColor(const QColor &color) { editorTextColorValue = color.toRgb(); }

    int textEncoding() const { return textEncodingValue; }
    void setTextEncoding(int code) { textEncodingValue = code; }
    int returnCode() const { return returnCodeValue; }
    void setReturnCode(int code) { returnCodeValue = code; }

    // The suspension settings are pushed on to the editor text views and the viewer.
    bool isSuspendingRender() const { return suspendingRender; }
    void setSuspendingRender(bool flag);
    bool isSuspendingTagColoring() const { return suspendingTagColoring; }
    void setSuspendingTagColoring(bool flag);
    float suspendTime() const { return suspendTimeValue; }
    // Ignores values that are not above 0.
    void setSuspendTime(float seconds);

    const QStringList &exBrowsers() const { return exBrowsersValue; }
    void setExBrowsers(const QStringList &browsers) { exBrowsersValue = browsers; }

    // The tag library text read from the store, if there was one.
    const std::optional<QString> &tagLibraryArray() const { return tagLibraryText; }

    // The text saved under "HTML Tag Library": asked from the tag library when it exists.
    // The tag library installs this when it is created.
    using TagLibraryTextSource = QString (*)();
    static void setTagLibraryTextSource(TagLibraryTextSource source);

    // The defaults that depend on the machine.
    static QString builtInDefaultBaseURL();
    static QStringList builtInExBrowsers();

    // The point size truncated toward zero.
    static int fontSize(const QFont &font);

private:
    void loadFont(const char *nameKey, const char *sizeKey, void (TWPreferences::*setter)(const QFont &),
                  const QFont &current);
    void saveFont(const char *nameKey, const char *sizeKey, const QFont &font);

    TWUserDefaults *TWDefaults = nullptr;
    QString defaultBaseURLValue;
    QFont viewerFontValue;
    QFont viewerFixedFontValue;
    QFont editorFontValue;
    QFont templateFontValue;
    QFont cssFontValue;
    bool tagColoringValue = true;
    QColor editorBGColorValue;
    QColor editorTextColorValue;
    int textEncodingValue = 0;
    int returnCodeValue = 0;
    QString htmlCheckerPathValue;
    QString htmlCheckerOptionsValue;
    QString cssCheckerPathValue;
    QString cssCheckerOptionsValue;
    bool suspendingRender = true;
    bool suspendingTagColoring = true;
    float suspendTimeValue = 0.3f;
    QStringList exBrowsersValue;
    std::optional<QString> tagLibraryText;
};
