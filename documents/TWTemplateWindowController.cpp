#include "documents/TWTemplateWindowController.h"

#include "app/TWAppDelegate.h"
#include "app/TWFileExtensions.h"
#include "app/TWProjectFile.h"
#include "app/TWStateKeys.h"
#include "app/TWWindowState.h"
#include "documents/TWTemplateText.h"
#include "editor/TWOpenFailureMessage.h"
#include "editor/TWUndoHistory.h"
#include "editor/TWTemplateTextView.h"
#include "platform/TWFlag.h"
#include "platform/TWLocalization.h"
#include "platform/TWMessageBar.h"
#include "platform/TWPanels.h"
#include "platform/TWTextKeys.h"
#include "platform/TWWindowOrder.h"
#include "preferences/TWPreferences.h"
#include "preview/TWPreview.h"
#include "ui_TWTemplateWindow.h"

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QMenuBar>

namespace {

TWTemplateWindowController *sharedInstance = nullptr;

constexpr char titleWithFile[] = "%1:%2";
constexpr char titleWithoutFile[] = "%1:> %2 <";
constexpr char defaultTemplateResource[] = ":/defaultTemplate.txt";

void renderIfAutorender()
{
    if (TWPreview *viewer = TWPreview::shared())
        viewer->renderIfAutorender();
}

// Where the window opens on a first launch, beside the other document windows.
constexpr QPoint defaultPosition(1640, 40);

} // namespace

TWTemplateWindowController *TWTemplateWindowController::sharedTemplateController()
{
    if (!sharedInstance)
        new TWTemplateWindowController(); // registers itself
    return sharedInstance;
}

TWTemplateWindowController::TWTemplateWindowController()
    : ui(new Ui::TWTemplateWindow)
{
    if (!sharedInstance)
        sharedInstance = this;
    ui->setupUi(this);
    topTemplateTextView = ui->topTemplateTextView;
    bottomTemplateTextView = ui->bottomTemplateTextView;
    lastActiveHalf = topTemplateTextView;
    undoHistoryValue = new TWUndoHistory(this);
    for (TWTemplateTextView *half : {topTemplateTextView, bottomTemplateTextView}) {
        undoHistoryValue->follow(half->document());
        half->setUndoHistory(undoHistoryValue);
    }
    TWAppDelegate::sharedAppDelegate()->populateMenuBar(menuBar());
    connect(qApp, &QApplication::focusChanged, this,
            [this](QWidget *, QWidget *now) { rememberActiveHalf(now); });
    awakeFromNib();
    connect(topTemplateTextView, &TWEditorTextView::userEdited, this, &TWTemplateWindowController::topTextDidChange);
    connect(bottomTemplateTextView, &TWEditorTextView::userEdited, this,
            &TWTemplateWindowController::bottomTextDidChange);
    // Replace All and its undo change the halves without typing; the page must follow.
    connect(topTemplateTextView, &TWEditorTextView::textReplaced, this,
            [this] { topTemplateTextValue = topTemplateTextView->string(); });
    connect(bottomTemplateTextView, &TWEditorTextView::textReplaced, this,
            [this] { bottomTemplateTextValue = bottomTemplateTextView->string(); });
}

TWTemplateWindowController::~TWTemplateWindowController()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
    delete ui;
}

void TWTemplateWindowController::awakeFromNib()
{
    applyTemplateFlag = true;
    changeFont(TWPreferences::sharedPref()->templateFont());
    topTemplateTextView->setAutoRenderEnabled(true);
    bottomTemplateTextView->setAutoRenderEnabled(true);
    topTemplateTextView->setTopTextView(topTemplateTextView);
    topTemplateTextView->setBottomTextView(bottomTemplateTextView);
    bottomTemplateTextView->setTopTextView(topTemplateTextView);
    bottomTemplateTextView->setBottomTextView(bottomTemplateTextView);
    TWWindowState::setFrameUsingName(this, TWFrameName::templateWindow, defaultPosition);
    setTemplateFilename(QString());

    const std::optional<QVariantMap> defaults = TWWindowState::readDefaults(TWWindowDefaultsKey::templateWindow);
    if (!defaults) {
        setDefaultTemplateText();
        setTemplateFilename(QString());
    } else {
        if (const std::optional<QString> text = TWWindowState::stringEntry(*defaults, TWStateEntry::templateText))
            loadTemplate(*text);
        else
            setDefaultTemplateText();
        if (const std::optional<QString> name = TWWindowState::stringEntry(*defaults, TWStateEntry::templateFilename))
            setTemplateFilename(*name);
        if (!TWFlag::isNotNo(defaults->value(QLatin1String(TWStateEntry::applyTemplate))))
            applyTemplateFlag = false;
        showAtLaunch = TWFlag::isNotNo(defaults->value(QLatin1String(TWStateEntry::showWindow)));
    }
    setApplyTemplate(applyTemplateFlag);
}

void TWTemplateWindowController::rememberActiveHalf(QWidget *now)
{
    if (now == topTemplateTextView || now == bottomTemplateTextView)
        lastActiveHalf = static_cast<TWTemplateTextView *>(now);
}

TWEditorTextView *TWTemplateWindowController::activeTextView() const
{
    // A search may have moved the focus into the other half while another window was active.
    QWidget *focus = focusWidget();
    if (focus == topTemplateTextView || focus == bottomTemplateTextView)
        return static_cast<TWTemplateTextView *>(focus);
    return lastActiveHalf;
}

void TWTemplateWindowController::loadTemplateAtAppLaunch()
{
    if (showAtLaunch)
        show();
}

void TWTemplateWindowController::loadTemplate(const QString &text)
{
    const TWTemplateText::Halves halves = TWTemplateText::split(text);
    topTemplateTextView->setString(halves.top);
    topTextDidChange();
    bottomTemplateTextView->setString(halves.bottom);
    bottomTextDidChange();
}

QString TWTemplateWindowController::getCombinedText() const
{
    return TWTemplateText::join(topTemplateTextValue, bottomTemplateTextValue);
}

QString TWTemplateWindowController::topTemplateText() const
{
    return applyTemplateFlag ? topTemplateTextValue : QString();
}

QString TWTemplateWindowController::bottomTemplateText() const
{
    return applyTemplateFlag ? bottomTemplateTextValue : QString();
}

void TWTemplateWindowController::setApplyTemplate(bool flag)
{
    applyTemplateFlag = flag;
    if (TWPreview *viewer = TWPreview::shared())
        viewer->setTemplateButtonState(flag);
    TWAppDelegate::sharedAppDelegate()->setApplyTemplateMenuState(flag);
}

void TWTemplateWindowController::toggleApplyTemplate()
{
    setApplyTemplate(!applyTemplateFlag);
    renderIfAutorender();
}

QString TWTemplateWindowController::titleForFilename(const QString &path)
{
    const QString name = TWLocalizedString(TWTextKey::templateTitle);
    if (path.isEmpty())
        return QString::fromLatin1(titleWithoutFile).arg(name, TWLocalizedString(TWTextKey::fileUnspecified));
    return QString::fromLatin1(titleWithFile).arg(name, QFileInfo(path).fileName());
}

void TWTemplateWindowController::setTemplateFilename(const QString &path)
{
    const bool changed = path != templateFilenameValue;
    templateFilenameValue = path;
    setWindowTitle(titleForFilename(path));
    if (changed)
        Q_EMIT templateFilenameChanged();
}

void TWTemplateWindowController::setDefaultTemplateText()
{
    QFile resource{QLatin1String(defaultTemplateResource)};
    if (resource.open(QIODevice::ReadOnly))
        loadTemplate(QString::fromUtf8(resource.readAll()));
    else
        loadTemplate(TWTemplateText::builtInDefault());
}

void TWTemplateWindowController::clearTemplate()
{
    ui->messageBar->dismiss();
    loadTemplate(QString());
    setTemplateFilename(QString());
    renderIfAutorender();
}

bool TWTemplateWindowController::openTemplateFile(const QString &path)
{
    ui->messageBar->dismiss();
    bool decoded = false;
    const QString text = topTemplateTextView->loadTextFromFile(path, &decoded);
    // As for HTML files: a file that cannot be read changes nothing, so that a later Save
    // cannot overwrite it with the old template.
    if (!decoded) {
        TWOpenFailureMessage::show(ui->messageBar, path, TWPreferences::sharedPref()->textEncoding(),
                                   [this, path] { openTemplateFile(path); });
        return true;
    }
    setTemplateFilename(path);
    loadTemplate(text);
    renderIfAutorender();
    return true;
}

void TWTemplateWindowController::saveTemplate()
{
    if (!templateFilenameValue.isEmpty())
        saveTemplateFileAs(templateFilenameValue);
    else
        saveDocumentAs();
}

void TWTemplateWindowController::saveTemplateFileAs(const QString &path)
{
    ui->messageBar->dismiss();
    topTemplateTextView->saveText(getCombinedText(), path);
    setTemplateFilename(path);
}

void TWTemplateWindowController::saveDocumentAs()
{
    const QString proposed = templateFilenameValue.isEmpty() ? QString() : QFileInfo(templateFilenameValue).fileName();
    if (const std::optional<QString> path
        = TWPanels::runSavePanel(this, proposed, {QLatin1String(TWExtension::templateFile)}))
        saveTemplateFileAs(*path);
}

void TWTemplateWindowController::insertFileLink()
{
    const QStringList paths = TWPanels::runOpenPanel(this, {});
    if (!paths.isEmpty())
        lastActiveHalf->insertLinkForFile(paths.first());
}

void TWTemplateWindowController::insertImage()
{
    const QStringList paths = TWPanels::runOpenPanel(this, TWImageExtensions());
    if (!paths.isEmpty())
        lastActiveHalf->insertImageOfFile(paths.first());
}

void TWTemplateWindowController::changeFont(const QFont &font)
{
    topTemplateTextView->setFont(font);
    bottomTemplateTextView->setFont(font);
    update();
}

TWMessageBar *TWTemplateWindowController::messageBar() const
{
    return ui->messageBar;
}

void TWTemplateWindowController::showWindow()
{
    TWWindowOrder::showWindow(this);
}

void TWTemplateWindowController::topTextDidChange()
{
    topTemplateTextValue = topTemplateTextView->string();
    topTemplateTextView->textDidChange();
}

void TWTemplateWindowController::bottomTextDidChange()
{
    bottomTemplateTextValue = bottomTemplateTextView->string();
    bottomTemplateTextView->textDidChange();
}

QVariantMap TWTemplateWindowController::saveData() const
{
    QVariantMap data;
    data.insert(QLatin1String(TWStateEntry::templateFilename), templateFilenameValue);
    data.insert(QLatin1String(TWStateEntry::templateText), getCombinedText());
    data.insert(QLatin1String(TWStateEntry::applyTemplate), TWFlag::string(applyTemplateFlag));
    return data;
}

void TWTemplateWindowController::saveDataToDictionary(QVariantMap &project) const
{
    project.insert(QLatin1String(TWProjectKey::templateWindow), saveData());
}

void TWTemplateWindowController::loadDataFromDictionary(const std::optional<QVariantMap> &project)
{
    const std::optional<QVariantMap> data = TWProjectFile::windowEntry(project, TWProjectKey::templateWindow);
    if (!data)
        return;
    if (const std::optional<QString> name = TWWindowState::stringEntry(*data, TWStateEntry::templateFilename))
        setTemplateFilename(*name);
    if (const std::optional<QString> text = TWWindowState::stringEntry(*data, TWStateEntry::templateText))
        loadTemplate(*text);
    if (data->contains(QLatin1String(TWStateEntry::applyTemplate)))
        setApplyTemplate(TWFlag::isYes(data->value(QLatin1String(TWStateEntry::applyTemplate))));
}

void TWTemplateWindowController::saveWindowProperties() const
{
    TWWindowState::saveFrameUsingName(this, TWFrameName::templateWindow);
    QVariantMap defaults = saveData();
    defaults.insert(QLatin1String(TWStateEntry::showWindow), TWFlag::string(TWWindowOrder::isWindowVisible(this)));
    TWWindowState::writeDefaults(TWWindowDefaultsKey::templateWindow, defaults);
}
