#include "preferences/TWPreferences.h"

#include "checker/TWCheckerScripts.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWBeep.h"
#include "platform/TWColorBytes.h"
#include "platform/TWFlag.h"
#include "platform/TWPaths.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferenceKeys.h"
#include "preview/TWPreview.h"

#include <QFileInfo>
#include <QFontDatabase>
#include <QFontInfo>

#include <cmath>
#include <iterator>

namespace {

TWPreferences *sharedInstance = nullptr;
TWPreferences::TagLibraryTextSource tagLibraryTextSource = nullptr;

constexpr char builtInBaseURL[] = "http://localhost/";
constexpr char defaultHTMLCheckerOptions[] = "-w short";
constexpr int viewerFontPoints = 14;
constexpr int editorFontPoints = 12;
constexpr double defaultBackgroundAlpha = 0.7;
constexpr float defaultSuspendTime = 0.3f;
// Browsers looked for, in this order; the first that is installed is listed first.
constexpr const char *candidateBrowsers[] = {"/usr/bin/firefox", "/usr/bin/firefox-esr", "/usr/bin/chromium",
                                             "/usr/bin/google-chrome"};
// Opens the page in the user's default browser when none of the above is installed.
constexpr char fallbackBrowser[] = "/usr/bin/xdg-open";

QString key(const char *name)
{
    return QString::fromLatin1(name);
}

QFont systemFont(QFontDatabase::SystemFont kind, int points)
{
    QFont font = QFontDatabase::systemFont(kind);
    font.setPointSize(points);
    return font;
}

// Text of a value kept as a string, or of a number (whose decimal text is taken).
std::optional<QString> textOf(const QVariant &value)
{
    switch (value.typeId()) {
    case QMetaType::QString:
        return value.toString();
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        return value.toString();
    default:
        return std::nullopt;
    }
}

int codeOfName(const QString &name, const char *const *names, int count)
{
    for (int code = 1; code < count; ++code) {
        if (name == QLatin1String(names[code]))
            return code;
    }
    return 0;
}

QString nameOfCode(int code, const char *const *names, int count)
{
    return QString::fromLatin1(names[code > 0 && code < count ? code : 0]);
}

} // namespace

TWPreferences *TWPreferences::sharedPref()
{
    if (!sharedInstance)
        new TWPreferences(); // registers itself
    return sharedInstance;
}

TWPreferences::TWPreferences()
{
    // Registered first: loading the suspend time reaches the viewer, which reads the fonts
    // and the base URL from this object while it is still being built.
    if (!sharedInstance)
        sharedInstance = this;
    TWDefaults = TWUserDefaults::standardUserDefaults();
    if (!TWDefaults)
        TWBeep();
    setDefaultPrefs();
    loadPrefsFromDictionary();
    // The viewer's rendering settings (viewer fonts, automatic image loading) are made from
    // these preferences by the viewer itself when it is created.
}

TWPreferences::~TWPreferences()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
}

QString TWPreferences::builtInDefaultBaseURL()
{
    return key(builtInBaseURL);
}

QStringList TWPreferences::builtInExBrowsers()
{
    QStringList browsers;
    for (const char *path : candidateBrowsers) {
        if (QFileInfo(QLatin1String(path)).isExecutable())
            browsers << key(path);
    }
    if (browsers.isEmpty())
        browsers << key(fallbackBrowser);
    return browsers;
}

void TWPreferences::setDefaultPrefs()
{
    defaultBaseURLValue = builtInDefaultBaseURL();
    const QString dataFolder = TWApplicationDataFolder();
    htmlCheckerPathValue = dataFolder + QLatin1String(TWCheckerScripts::htmlCheckerRelativePath);
    htmlCheckerOptionsValue = key(defaultHTMLCheckerOptions);
    cssCheckerPathValue = dataFolder + QLatin1String(TWCheckerScripts::cssCheckerRelativePath);
    cssCheckerOptionsValue.clear();
    viewerFontValue = systemFont(QFontDatabase::GeneralFont, viewerFontPoints);
    viewerFixedFontValue = systemFont(QFontDatabase::FixedFont, viewerFontPoints);
    editorFontValue = systemFont(QFontDatabase::FixedFont, editorFontPoints);
    templateFontValue = systemFont(QFontDatabase::FixedFont, editorFontPoints);
    cssFontValue = systemFont(QFontDatabase::FixedFont, editorFontPoints);
    tagColoringValue = true;
    editorBGColorValue = QColor::fromRgbF(1.0, 1.0, 1.0, defaultBackgroundAlpha);
    editorTextColorValue = QColor::fromRgbF(0.0, 0.0, 0.0);
    textEncodingValue = 0;
    returnCodeValue = 0;
    suspendingRender = true;
    suspendingTagColoring = true;
    suspendTimeValue = defaultSuspendTime;
    exBrowsersValue = builtInExBrowsers();
}

void TWPreferences::loadFont(const char *nameKey, const char *sizeKey, void (TWPreferences::*setter)(const QFont &),
                             const QFont &current)
{
    const std::optional<QString> name = TWDefaults->stringForKey(key(nameKey));
    const std::optional<QString> size = textOf(TWDefaults->objectForKey(key(sizeKey)));
    if (!name || !size)
        return;
    QFont font = current;
    // A family this machine does not have (say, one named on another system) keeps the
    // current family; the size is still taken.
    if (QFontDatabase::hasFamily(*name))
        font.setFamily(*name);
    bool ok = false;
    const double points = size->toDouble(&ok);
    if (ok && points > 0.0 && std::isfinite(points))
        font.setPointSizeF(points);
    (this->*setter)(font);
}

void TWPreferences::loadPrefsFromDictionary()
{
    if (!TWDefaults)
        return;
    const TWUserDefaults &store = *TWDefaults;
    if (auto value = store.stringForKey(key(TWPreferenceKey::defaultBaseURL)))
        setDefaultBaseURL(*value);
    if (auto value = store.stringForKey(key(TWPreferenceKey::htmlCheckerPath)))
        setHTMLCheckerPath(*value);
    if (auto value = store.stringForKey(key(TWPreferenceKey::htmlCheckerOptions)))
        setHTMLCheckerOptions(*value);
    if (auto value = store.stringForKey(key(TWPreferenceKey::cssCheckerPath)))
        setCSSCheckerPath(*value);
    if (auto value = store.stringForKey(key(TWPreferenceKey::cssCheckerOptions)))
        setCSSCheckerOptions(*value);

    loadFont(TWPreferenceKey::viewerFont, TWPreferenceKey::viewerFontSize, &TWPreferences::setViewerFont,
             viewerFontValue);
    loadFont(TWPreferenceKey::viewerFixedFont, TWPreferenceKey::viewerFixedFontSize,
             &TWPreferences::setViewerFixedFont, viewerFixedFontValue);
    loadFont(TWPreferenceKey::editorFont, TWPreferenceKey::editorFontSize, &TWPreferences::setEditorFont,
             editorFontValue);
    loadFont(TWPreferenceKey::templateFont, TWPreferenceKey::templateFontSize, &TWPreferences::setTemplateFont,
             templateFontValue);
    loadFont(TWPreferenceKey::cssFont, TWPreferenceKey::cssFontSize, &TWPreferences::setCSSFont, cssFontValue);

    if (auto value = store.stringForKey(key(TWPreferenceKey::tagColoring)))
        setTagColoring(*value == QLatin1String(TWFlag::yes));
    if (auto value = store.stringForKey(key(TWPreferenceKey::textEncoding)))
        setTextEncoding(codeOfName(*value, TWPreferenceValue::textEncodingNames,
                                   int(std::size(TWPreferenceValue::textEncodingNames))));
    if (auto value = store.stringForKey(key(TWPreferenceKey::returnCode)))
        setReturnCode(codeOfName(*value, TWPreferenceValue::returnCodeNames,
                                 int(std::size(TWPreferenceValue::returnCodeNames))));

    // Colour data of another length than 4 (background) or 3 (text) bytes is not a colour
    // this application wrote; the current colour stays.
    if (auto data = store.dataForKey(key(TWPreferenceKey::editorBackgroundColor))) {
        if (auto color = TWColorBytes::colorFromBytes(*data, true))
            setEditorBGColorWithAlpha(*color);
    }
    if (auto data = store.dataForKey(key(TWPreferenceKey::editorTextColor))) {
        if (auto color = TWColorBytes::colorFromBytes(*data, false))
            setEditorTextColor(*color);
    }

    if (auto value = store.stringForKey(key(TWPreferenceKey::suspendRender)))
        setSuspendingRender(*value == QLatin1String(TWFlag::yes));
    if (auto value = store.stringForKey(key(TWPreferenceKey::suspendTagColoring)))
        setSuspendingTagColoring(*value == QLatin1String(TWFlag::yes));
    if (auto value = textOf(store.objectForKey(key(TWPreferenceKey::suspendTime)))) {
        bool ok = false;
        const float seconds = value->toFloat(&ok);
        if (ok)
            setSuspendTime(seconds);
    }

    if (auto list = store.arrayForKey(key(TWPreferenceKey::externalBrowsers))) {
        QStringList browsers;
        for (const QVariant &entry : *list) {
            if (entry.typeId() == QMetaType::QString)
                browsers << entry.toString();
        }
        setExBrowsers(browsers);
    }
    if (auto text = store.stringForKey(key(TWPreferenceKey::htmlTagLibrary)))
        tagLibraryText = *text;
}

void TWPreferences::saveFont(const char *nameKey, const char *sizeKey, const QFont &font)
{
    TWDefaults->setObject(font.family(), key(nameKey));
    TWDefaults->setObject(QString::number(fontSize(font)), key(sizeKey));
}

void TWPreferences::savePrefs()
{
    if (!TWDefaults)
        return;
    TWUserDefaults &store = *TWDefaults;
    store.setObject(key(TWApplicationVersion), key(TWPreferenceKey::applicationVersion));
    store.setObject(defaultBaseURLValue, key(TWPreferenceKey::defaultBaseURL));
    store.setObject(htmlCheckerPathValue, key(TWPreferenceKey::htmlCheckerPath));
    store.setObject(htmlCheckerOptionsValue, key(TWPreferenceKey::htmlCheckerOptions));
    store.setObject(cssCheckerPathValue, key(TWPreferenceKey::cssCheckerPath));
    store.setObject(cssCheckerOptionsValue, key(TWPreferenceKey::cssCheckerOptions));
    saveFont(TWPreferenceKey::viewerFont, TWPreferenceKey::viewerFontSize, viewerFontValue);
    saveFont(TWPreferenceKey::viewerFixedFont, TWPreferenceKey::viewerFixedFontSize, viewerFixedFontValue);
    saveFont(TWPreferenceKey::editorFont, TWPreferenceKey::editorFontSize, editorFontValue);
    saveFont(TWPreferenceKey::templateFont, TWPreferenceKey::templateFontSize, templateFontValue);
    saveFont(TWPreferenceKey::cssFont, TWPreferenceKey::cssFontSize, cssFontValue);
    store.setObject(TWFlag::string(tagColoringValue), key(TWPreferenceKey::tagColoring));
    store.setObject(nameOfCode(textEncodingValue, TWPreferenceValue::textEncodingNames,
                               int(std::size(TWPreferenceValue::textEncodingNames))),
                    key(TWPreferenceKey::textEncoding));
    store.setObject(nameOfCode(returnCodeValue, TWPreferenceValue::returnCodeNames,
                               int(std::size(TWPreferenceValue::returnCodeNames))),
                    key(TWPreferenceKey::returnCode));
    store.setObject(TWFlag::string(suspendingRender), key(TWPreferenceKey::suspendRender));
    store.setObject(TWFlag::string(suspendingTagColoring), key(TWPreferenceKey::suspendTagColoring));
    store.setObject(QVariant::fromValue(suspendTimeValue), key(TWPreferenceKey::suspendTime));
    store.setObject(TWColorBytes::bytesFromColor(editorBGColorValue, true), key(TWPreferenceKey::editorBackgroundColor));
    store.setObject(TWColorBytes::bytesFromColor(editorTextColorValue, false), key(TWPreferenceKey::editorTextColor));
    store.setObject(exBrowsersValue, key(TWPreferenceKey::externalBrowsers));
    // The library's current text, not the one read at launch; before the library exists
    // the text read at launch is written back unchanged.
    if (tagLibraryTextSource)
        store.setObject(tagLibraryTextSource(), key(TWPreferenceKey::htmlTagLibrary));
    else if (tagLibraryText)
        store.setObject(*tagLibraryText, key(TWPreferenceKey::htmlTagLibrary));
    store.synchronize();
}

void TWPreferences::setTagLibraryTextSource(TagLibraryTextSource source)
{
    tagLibraryTextSource = source;
}

int TWPreferences::fontSize(const QFont &font)
{
    const double points = font.pointSizeF();
    return points > 0 ? static_cast<int>(points) : QFontInfo(font).pointSize();
}

QColor TWPreferences::editorBGColor() const
{
    QColor color = editorBGColorValue;
    color.setAlphaF(1.0f);
    return color;
}

void TWPreferences::setEditorBGColor(const QColor &color)
{
    const QColor rgb = color.toRgb();
    editorBGColorValue = QColor::fromRgbF(rgb.redF(), rgb.greenF(), rgb.blueF(), editorBGColorValue.alphaF());
}

void TWPreferences::setEditorBGAlpha(float alpha)
{
    editorBGColorValue.setAlphaF(std::clamp(alpha, 0.0f, 1.0f));
}

void TWPreferences::setSuspendingRender(bool flag)
{
    suspendingRender = flag;
    TWEditorTextView::setRenderSuspendFlag(flag);
}

void TWPreferences::setSuspendingTagColoring(bool flag)
{
    suspendingTagColoring = flag;
    TWEditorTextView::setTagColoringSuspendFlag(flag);
}

void TWPreferences::setSuspendTime(float seconds)
{
    if (!(seconds > 0.0f) || !std::isfinite(seconds))
        return;
    suspendTimeValue = seconds;
    TWEditorTextView::setSuspendTime(seconds);
    if (TWPreview *viewer = TWPreview::shared())
        viewer->setSuspensionTime(double(seconds));
}
