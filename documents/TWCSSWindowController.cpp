#include "documents/TWCSSWindowController.h"

#include "app/TWAppDelegate.h"
#include "app/TWFileExtensions.h"
#include "app/TWProjectFile.h"
#include "app/TWStateKeys.h"
#include "app/TWWindowState.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWOpenFailureMessage.h"
#include "platform/TWFlag.h"
#include "platform/TWLocalization.h"
#include "platform/TWMessageBar.h"
#include "platform/TWPanels.h"
#include "platform/TWTextKeys.h"
#include "platform/TWWindowOrder.h"
#include "preferences/TWPreferences.h"
#include "preview/TWPreview.h"
#include "ui_TWCSSWindow.h"

#include <QFileInfo>
#include <QMenuBar>

namespace {

TWCSSWindowController *sharedInstance = nullptr;

constexpr char titleWithFile[] = "CSS:%1";
constexpr char titleWithoutFile[] = "CSS:> %1 <";

// Where the window opens on a first launch, beside the other document windows.
constexpr QPoint defaultPosition(1640, 520);

} // namespace

TWCSSWindowController *TWCSSWindowController::sharedCSSController()
{
    if (!sharedInstance)
        new TWCSSWindowController(); // registers itself
    return sharedInstance;
}

TWCSSWindowController::TWCSSWindowController()
    : ui(new Ui::TWCSSWindow)
{
    if (!sharedInstance)
        sharedInstance = this;
    ui->setupUi(this);
    cssTextView = ui->cssTextView;
    TWAppDelegate::sharedAppDelegate()->populateMenuBar(menuBar());
    awakeFromNib();
}

TWCSSWindowController::~TWCSSWindowController()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
    delete ui;
}

void TWCSSWindowController::awakeFromNib()
{
    changeFont(TWPreferences::sharedPref()->cssFont());
    cssTextView->setTagColoring(false);
    cssTextView->setAutoRenderEnabled(false);
    cssTextView->setEditorTextColor(Qt::black);
    TWWindowState::setFrameUsingName(this, TWFrameName::cssWindow, defaultPosition);
    setCSSFilename(QString());

    const std::optional<QVariantMap> defaults = TWWindowState::readDefaults(TWWindowDefaultsKey::cssWindow);
    if (!defaults) {
        setDefaultCSSText();
        setCSSFilename(QString());
        return;
    }
    if (const std::optional<QString> text = TWWindowState::stringEntry(*defaults, TWStateEntry::cssText))
        loadCSS(*text);
    else
        setDefaultCSSText();
    if (const std::optional<QString> name = TWWindowState::stringEntry(*defaults, TWStateEntry::cssFilename))
        setCSSFilename(*name);
    showAtLaunch = TWFlag::isNotNo(defaults->value(QLatin1String(TWStateEntry::showWindow)));
}

void TWCSSWindowController::loadCSSAtAppLaunch()
{
    if (showAtLaunch)
        show();
}

void TWCSSWindowController::loadCSS(const QString &text)
{
    cssTextView->setString(text);
}

void TWCSSWindowController::setDefaultCSSText()
{
    loadCSS(QString());
}

void TWCSSWindowController::clearCSS()
{
    ui->messageBar->dismiss();
    loadCSS(QString());
    setCSSFilename(QString());
    if (TWPreview *viewer = TWPreview::shared())
        viewer->renderIfAutorender();
}

bool TWCSSWindowController::openCSSFile(const QString &path)
{
    ui->messageBar->dismiss();
    bool decoded = false;
    const QString text = cssTextView->loadTextFromFile(path, &decoded);
    // A file that cannot be read changes nothing (see the HTML window).
    if (!decoded) {
        TWOpenFailureMessage::show(ui->messageBar, path, TWPreferences::sharedPref()->textEncoding(),
                                   [this, path] { openCSSFile(path); });
        return true;
    }
    setCSSFilename(path);
    loadCSS(text);
    if (TWPreview *viewer = TWPreview::shared())
        viewer->renderIfAutorender();
    return true;
}

void TWCSSWindowController::saveCSS()
{
    if (!cssFilenameValue.isEmpty())
        saveCSSFileAs(cssFilenameValue);
    else
        saveDocumentAs();
}

void TWCSSWindowController::saveCSSFileAs(const QString &path)
{
    ui->messageBar->dismiss();
    cssTextView->saveText(cssTextView->string(), path);
    setCSSFilename(path);
}

void TWCSSWindowController::saveDocumentAs()
{
    const QString proposed = cssFilenameValue.isEmpty() ? QString() : QFileInfo(cssFilenameValue).fileName();
    if (const std::optional<QString> path = TWPanels::runSavePanel(this, proposed, {QLatin1String(TWExtension::css)}))
        saveCSSFileAs(*path);
}

QString TWCSSWindowController::titleForFilename(const QString &path)
{
    if (path.isEmpty())
        return QString::fromLatin1(titleWithoutFile).arg(TWLocalizedString(TWTextKey::fileUnspecified));
    return QString::fromLatin1(titleWithFile).arg(QFileInfo(path).fileName());
}

void TWCSSWindowController::setCSSFilename(const QString &path)
{
    const bool changed = path != cssFilenameValue;
    cssFilenameValue = path;
    setWindowTitle(titleForFilename(path));
    if (changed)
        Q_EMIT cssFilenameChanged();
}

void TWCSSWindowController::changeFont(const QFont &font)
{
    cssTextView->setFont(font);
    update();
}

TWMessageBar *TWCSSWindowController::messageBar() const
{
    return ui->messageBar;
}

void TWCSSWindowController::showWindow()
{
    TWWindowOrder::showWindow(this);
}

QVariantMap TWCSSWindowController::saveData() const
{
    QVariantMap data;
    data.insert(QLatin1String(TWStateEntry::cssFilename), cssFilenameValue);
    data.insert(QLatin1String(TWStateEntry::cssText), cssTextView->string());
    return data;
}

void TWCSSWindowController::saveDataToDictionary(QVariantMap &project) const
{
    project.insert(QLatin1String(TWProjectKey::cssWindow), saveData());
}

void TWCSSWindowController::loadDataFromDictionary(const std::optional<QVariantMap> &project)
{
    const std::optional<QVariantMap> data = TWProjectFile::windowEntry(project, TWProjectKey::cssWindow);
    if (!data)
        return;
    if (const std::optional<QString> name = TWWindowState::stringEntry(*data, TWStateEntry::cssFilename))
        setCSSFilename(*name);
    if (const std::optional<QString> text = TWWindowState::stringEntry(*data, TWStateEntry::cssText))
        loadCSS(*text);
}

void TWCSSWindowController::saveWindowProperties() const
{
    TWWindowState::saveFrameUsingName(this, TWFrameName::cssWindow);
    QVariantMap defaults = saveData();
    defaults.insert(QLatin1String(TWStateEntry::showWindow), TWFlag::string(TWWindowOrder::isWindowVisible(this)));
    TWWindowState::writeDefaults(TWWindowDefaultsKey::cssWindow, defaults);
}
