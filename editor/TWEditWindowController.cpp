#include "editor/TWEditWindowController.h"

#include "app/TWAppDelegate.h"
#include "app/TWFileExtensions.h"
#include "app/TWProjectFile.h"
#include "app/TWStateKeys.h"
#include "app/TWWindowState.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWOpenFailureMessage.h"
#include "platform/TWCompositing.h"
#include "platform/TWFlag.h"
#include "platform/TWLocalization.h"
#include "platform/TWMessageBar.h"
#include "platform/TWPanels.h"
#include "platform/TWTextKeys.h"
#include "platform/TWWindowOrder.h"
#include "preferences/TWPreferences.h"
#include "preview/TWPageComposer.h"
#include "preview/TWPreview.h"
#include "ui_TWEditWindow.h"

#include <QFile>
#include <QFileInfo>
#include <QMenuBar>
#include <QUrl>

namespace {

TWEditWindowController *sharedInstance = nullptr;

constexpr char titleWithFile[] = "HTML:%1";
constexpr char titleWithoutFile[] = "HTML:> %1 <";
constexpr char defaultPageResource[] = ":/defaultPage.txt";

// Where the window opens on a first launch, beside the other document windows.
constexpr QPoint defaultPosition(20, 40);

} // namespace

TWEditWindowController *TWEditWindowController::sharedEditWindowController()
{
    if (!sharedInstance)
        sharedInstance = new TWEditWindowController();
    return sharedInstance;
}

TWEditWindowController::TWEditWindowController()
    : ui(new Ui::TWEditWindow)
{
    ui->setupUi(this);
    htmlText = ui->htmlText;
    TWAppDelegate::sharedAppDelegate()->populateMenuBar(menuBar());
    awakeFromNib();
    connect(htmlText, &TWEditorTextView::userEdited, htmlText, &TWEditorTextView::textDidChange);
}

TWEditWindowController::~TWEditWindowController()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
    delete ui;
}

TWMessageBar *TWEditWindowController::messageBar() const
{
    return ui->messageBar;
}

void TWEditWindowController::awakeFromNib()
{
    // The window itself is not opaque, so that a background colour with an opacity below
    // 100 % lets the desktop show through the text. Where the desktop does not composite
    // windows that would show black instead, so the window stays opaque there.
    if (TWDesktopCompositesWindows())
        setAttribute(Qt::WA_TranslucentBackground);
    const TWPreferences *preferences = TWPreferences::sharedPref();
    changeBGColor(preferences->editorBGColorWithAlpha());
    htmlText->setFont(preferences->editorFont());
    htmlText->setAutoRenderEnabled(true);
    TWWindowState::setFrameUsingName(this, TWFrameName::editorWindow, defaultPosition);

    const std::optional<QVariantMap> defaults = TWWindowState::readDefaults(TWWindowDefaultsKey::editorWindow);
    if (!defaults) {
        loadDefaultPage();
        setHTMLFilename(QString());
        htmlText->setAutoIndentation(false);
        return;
    }
    if (const std::optional<QString> text = TWWindowState::stringEntry(*defaults, TWStateEntry::htmlText))
        loadHTML(*text);
    else
        loadDefaultPage();
    setHTMLFilename(TWWindowState::stringEntry(*defaults, TWStateEntry::htmlFilename).value_or(QString()));
    htmlText->setAutoIndentation(TWFlag::isYes(defaults->value(QLatin1String(TWStateEntry::autoIndentation))));
}

QString TWEditWindowController::titleForFilename(const QString &path)
{
    if (path.isEmpty())
        return QString::fromLatin1(titleWithoutFile).arg(TWLocalizedString(TWTextKey::fileUnspecified));
    return QString::fromLatin1(titleWithFile).arg(QFileInfo(path).fileName());
}

void TWEditWindowController::setHTMLFilename(const QString &path)
{
    const bool changed = path != htmlFilenameValue;
    htmlFilenameValue = path;
    setWindowTitle(titleForFilename(path));
    if (changed)
        Q_EMIT htmlFilenameChanged();
}

QString TWEditWindowController::getText() const
{
    return htmlText->string();
}

void TWEditWindowController::loadHTML(const QString &text)
{
    htmlText->setString(text);
    htmlText->colorText();
    if (TWPreview *viewer = TWPreview::shared())
        viewer->renderIfAutorender();
}

void TWEditWindowController::loadDefaultPage()
{
    const QString resource = QLatin1String(defaultPageResource);
    // The page is plain ASCII, so that it reads the same in every encoding.
    const QString page = QFile::exists(resource) ? htmlText->loadTextFromFile(resource)
                                                 : TWLocalizedString(TWTextKey::defaultPageWasLost);
    htmlText->setString(page);
    htmlText->colorText();
    if (TWPreview *viewer = TWPreview::shared())
        viewer->renderIfAutorender();
}

void TWEditWindowController::clearHTML()
{
    ui->messageBar->dismiss();
    loadHTML(QString());
    setHTMLFilename(QString());
    if (TWPreview *viewer = TWPreview::shared())
        viewer->setBaseURLWithString(TWPreferences::sharedPref()->defaultBaseURL());
}

bool TWEditWindowController::openHTMLFile(const QString &path)
{
    ui->messageBar->dismiss();
    bool decoded = false;
    const QString text = htmlText->loadTextFromFile(path, &decoded);
    // A file that cannot be read or decoded changes nothing: keeping the old file name means
    // that a later Save cannot write the old text over the file that failed to open.
    if (!decoded) {
        TWOpenFailureMessage::show(ui->messageBar, path, TWPreferences::sharedPref()->textEncoding(),
                                   [this, path] { openHTMLFile(path); });
        return true;
    }
    setHTMLFilename(path);
    if (TWPreview *viewer = TWPreview::shared())
        viewer->setBaseURL(TWPageComposer::fileURL(path));
    loadHTML(text);
    return true;
}

void TWEditWindowController::saveHTML()
{
    if (!htmlFilenameValue.isEmpty())
        saveHTMLFileAs(htmlFilenameValue);
    else
        saveDocumentAs();
}

void TWEditWindowController::saveHTMLFileAs(const QString &path)
{
    ui->messageBar->dismiss();
    htmlText->saveText(getText(), path);
    setHTMLFilename(path);
    if (TWPreview *viewer = TWPreview::shared())
        viewer->setBaseURL(TWPageComposer::fileURL(path));
}

void TWEditWindowController::saveDocumentAs()
{
    const QString proposed = htmlFilenameValue.isEmpty() ? QString() : QFileInfo(htmlFilenameValue).fileName();
    const std::optional<QString> path = TWPanels::runSavePanel(
        this, proposed, {QLatin1String(TWExtension::html), QLatin1String(TWExtension::htm)});
    if (path)
        saveHTMLFileAs(*path);
}

void TWEditWindowController::insertFileLink()
{
    const QStringList paths = TWPanels::runOpenPanel(this, {});
    if (!paths.isEmpty())
        htmlText->insertLinkForFile(paths.first());
}

void TWEditWindowController::insertImage()
{
    const QStringList paths = TWPanels::runOpenPanel(this, TWImageExtensions());
    if (!paths.isEmpty())
        htmlText->insertImageOfFile(paths.first());
}

void TWEditWindowController::insertTag(const TWHTMLTag &tag)
{
    htmlText->insertTag(tag);
}

void TWEditWindowController::insertColorCode(const QString &code)
{
    htmlText->insertColorCode(code);
}

void TWEditWindowController::setTagColoring(bool flag)
{
    htmlText->setTagColoring(flag);
}

void TWEditWindowController::toggleAutoIndentation()
{
    htmlText->toggleAutoIndentation();
}

void TWEditWindowController::changeFont(const QFont &font)
{
    htmlText->setFont(font);
    update();
}

void TWEditWindowController::changeBGColor(const QColor &color)
{
    QPalette palette = htmlText->palette();
    // An opaque window would blend a translucent colour with its own grey: show the colour.
    QColor shown = color;
    if (!testAttribute(Qt::WA_TranslucentBackground))
        shown.setAlphaF(1.0f);
    palette.setColor(QPalette::Base, shown);
    htmlText->setPalette(palette);
    update();
}

void TWEditWindowController::showWindow()
{
    TWWindowOrder::showWindow(this);
}

void TWEditWindowController::openWindowAtAppLaunch()
{
    show();
}

void TWEditWindowController::loadTextAtAppLaunch()
{
    if (TWPreview *viewer = TWPreview::shared())
        viewer->renderNow();
    showWindow();
}

QVariantMap TWEditWindowController::saveData() const
{
    QVariantMap data;
    data.insert(QLatin1String(TWStateEntry::htmlText), getText());
    data.insert(QLatin1String(TWStateEntry::htmlFilename), htmlFilenameValue);
    data.insert(QLatin1String(TWStateEntry::autoIndentation), TWFlag::string(htmlText->autoIndentation()));
    return data;
}

void TWEditWindowController::saveWindowProperties() const
{
    TWWindowState::saveFrameUsingName(this, TWFrameName::editorWindow);
    TWWindowState::writeDefaults(TWWindowDefaultsKey::editorWindow, saveData());
}

void TWEditWindowController::saveDataToDictionary(QVariantMap &project) const
{
    project.insert(QLatin1String(TWProjectKey::editorWindow), saveData());
}

void TWEditWindowController::loadDataFromDictionary(const std::optional<QVariantMap> &project)
{
    const std::optional<QVariantMap> data = TWProjectFile::windowEntry(project, TWProjectKey::editorWindow);
    if (!data) {
        loadDefaultPage();
        return;
    }
    // Each entry that is there is applied; one that is missing (or not a text) changes nothing.
    if (const std::optional<QString> text = TWWindowState::stringEntry(*data, TWStateEntry::htmlText))
        loadHTML(*text);
    if (const std::optional<QString> name = TWWindowState::stringEntry(*data, TWStateEntry::htmlFilename))
        setHTMLFilename(*name);
    if (data->contains(QLatin1String(TWStateEntry::autoIndentation)))
        htmlText->setAutoIndentation(TWFlag::isYes(data->value(QLatin1String(TWStateEntry::autoIndentation))));
}
