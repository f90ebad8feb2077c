#include "preview/TWViewWindowController.h"

#include "app/TWAppDelegate.h"
#include "app/TWProjectFile.h"
#include "app/TWStateKeys.h"
#include "app/TWWindowState.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWTextFile.h"
#include "platform/TWFlag.h"
#include "platform/TWLocalization.h"
#include "platform/TWPanels.h"
#include "platform/TWPaths.h"
#include "platform/TWTextKeys.h"
#include "platform/TWWindowOrder.h"
#include "preferences/TWPreferences.h"
#include "preview/TWExternalBrowser.h"
#include "preview/TWLoadErrorText.h"
#include "preview/TWPageComposer.h"
#include "preview/TWRenderControl.h"
#include "preview/TWUserStyleSheet.h"
#include "preview/TWWebPreferences.h"
#include "ui_TWViewWindow.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLabel>
#include <QMenuBar>
#include <QPainter>
#include <QProgressBar>
#include <QStatusBar>
#include <QTimer>
#include <QWebEngineLoadingInfo>
#include <QWebEnginePage>
#include <QWebEngineProfile>
#include <QWebEngineScript>
#include <QWebEngineScriptCollection>
#include <QWebEngineView>

#include <csignal>

namespace {

TWViewWindowController *sharedInstance = nullptr;

constexpr char noTitleFormat[] = "(%1)";
// The page's own title: "" when it has none (whitespace alone is none).
constexpr char titleScript[] = "document.title";
constexpr QPoint defaultPosition(800, 40);
// A page handed over directly travels as a percent-encoded address, which the engine takes only
// up to 2 MB and decodes slowly well before that; larger pages are written into the document.
constexpr qsizetype directPageBytes = 256 * 1024;
constexpr char emptyDocument[] = "<!DOCTYPE html><html><head></head><body></body></html>";
// A page whose scripts do not answer within this time is stopped by ending its process.
constexpr int unresponsiveMilliseconds = 400;

bool fitsDirectly(const QString &page)
{
    // UTF-8 takes at most three bytes for one UTF-16 unit.
    return page.size() * 3 <= directPageBytes || page.toUtf8().size() <= directPageBytes;
}

// Icons of the option buttons: the name, and the name struck through for the pressed state,
// which means "off".
QIcon toggleIcon(const QString &text, const QFont &font)
{
    QFont bold = font;
    bold.setBold(true);
    const QFontMetrics metrics(bold);
    const QSize size(metrics.horizontalAdvance(text) + 12, metrics.height() + 6);
    QIcon icon;
    for (const bool struck : {false, true}) {
        QPixmap pixmap(size);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setFont(bold);
        painter.setPen(struck ? QColor(120, 120, 120) : QColor(30, 90, 170));
        painter.drawText(pixmap.rect(), Qt::AlignCenter, text);
        if (struck) {
            painter.setPen(QPen(QColor(200, 40, 40), 2));
            painter.drawLine(4, size.height() - 4, size.width() - 4, 4);
        }
        painter.end();
        icon.addPixmap(pixmap, QIcon::Normal, struck ? QIcon::On : QIcon::Off);
    }
    return icon;
}

} // namespace

TWViewWindowController *TWViewWindowController::sharedViewWindowController()
{
    if (!sharedInstance)
        new TWViewWindowController(); // registers itself
    return sharedInstance;
}

TWViewWindowController::TWViewWindowController()
    : ui(new Ui::TWViewWindow)
{
    if (!sharedInstance)
        sharedInstance = this;
    ui->setupUi(this);
    webViewValue = ui->webView;
    statusBarText = new QLabel(this);
    progressIndicator = new QProgressBar(this);
    progressIndicator->setRange(0, 0);
    progressIndicator->setMaximumWidth(120);
    progressIndicator->setMaximumHeight(14);
    statusBar()->addWidget(statusBarText, 1);
    statusBar()->addPermanentWidget(progressIndicator);

    const TWPreferences *preferences = TWPreferences::sharedPref();
    control = new TWRenderControl(this);
    control->render = [this] { renderNow(); };
    control->isLaunching = [] { return TWAppDelegate::sharedAppDelegate()->isLaunching(); };
    control->setSuspensionTime(double(preferences->suspendTime()));
    baseURLValue = TWPageComposer::baseURLFromString(TWPreferences::builtInDefaultBaseURL());

    TWAppDelegate::sharedAppDelegate()->populateMenuBar(menuBar());
    TWWindowState::setFrameUsingName(this, TWFrameName::viewerWindow, defaultPosition);
    statusBarText->clear();

    if (const std::optional<QVariantMap> defaults = TWWindowState::readDefaults(TWWindowDefaultsKey::viewerWindow)) {
        setBaseURLWithString(TWWindowState::stringEntry(*defaults, TWStateEntry::baseURL)
                                 .value_or(preferences->defaultBaseURL()));
        if (!TWFlag::isNotNo(defaults->value(QLatin1String(TWStateEntry::autoRendering))))
            control->setAutoRender(false);
        if (TWFlag::isYes(defaults->value(QLatin1String(TWStateEntry::applyCSS))))
            applyCSSFlag = true;
        if (TWFlag::isYes(defaults->value(QLatin1String(TWStateEntry::validateLineBreak))))
            lineBreakValidationFlag = true;
    } else {
        setBaseURLWithString(preferences->defaultBaseURL());
    }
    awakeFromNib();
}

TWViewWindowController::~TWViewWindowController()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
    delete ui;
}

void TWViewWindowController::awakeFromNib()
{
    setWindowTitle(TWLocalizedString(TWTextKey::viewer));
    progressIndicator->hide();
    // The page belongs to the shared profile, which carries the viewer fonts.
    auto *page = new QWebEnginePage(TWWebPreferences::profile(), webViewValue);
    webViewValue->setPage(page);
    // The engine shuts down with the application object; the page must be gone by then.
    qAddPostRoutine([] {
        if (sharedInstance)
            delete sharedInstance->webView()->page();
    });
    TWWebPreferences::apply(*TWPreferences::sharedPref());

    connect(page, &QWebEnginePage::loadStarted, this, &TWViewWindowController::loadStarted);
    connect(page, &QWebEnginePage::loadingChanged, this, &TWViewWindowController::loadingChanged);
    connect(page, &QWebEnginePage::titleChanged, this, &TWViewWindowController::didReceiveTitle);

    const QFont font = ui->templateButton->font();
    ui->templateButton->setIcon(toggleIcon(tr("Template"), font));
    ui->templateButton->setToolTip(tr("Apply the template (struck through: the template is not applied)"));
    ui->cssButton->setIcon(toggleIcon(tr("CSS"), font));
    ui->cssButton->setToolTip(tr("Apply the style sheet (struck through: not applied)"));
    ui->autoRenderButton->setIcon(toggleIcon(tr("Auto"), font));
    ui->autoRenderButton->setToolTip(tr("Render while typing (struck through: only on request)"));
    ui->lineBreakValidationButton->setIcon(toggleIcon(tr("<br>"), font));
    ui->lineBreakValidationButton->setToolTip(tr("Every line break becomes <br> (struck through: off)"));
    for (QToolButton *button : {ui->templateButton, ui->cssButton, ui->autoRenderButton, ui->lineBreakValidationButton})
        button->setIconSize(button->icon().availableSizes().value(0));

    connect(ui->templateButton, &QToolButton::clicked, this,
            [] { TWTemplateWindowController::sharedTemplateController()->toggleApplyTemplate(); });
    connect(ui->cssButton, &QToolButton::clicked, this, &TWViewWindowController::toggleApplyCSS);
    connect(ui->autoRenderButton, &QToolButton::clicked, this, &TWViewWindowController::toggleAutoRender);
    connect(ui->lineBreakValidationButton, &QToolButton::clicked, this,
            &TWViewWindowController::toggleLineBreakValidation);
    connect(ui->baseURLField, &QLineEdit::returnPressed, this, &TWViewWindowController::inputBaseURL);
    connect(ui->chooseFileButton, &QToolButton::clicked, this, &TWViewWindowController::setFilePath);
}

// Rendering ----------------------------------------------------------------------------------

void TWViewWindowController::renderNow()
{
    const TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
    render(TWPageComposer::combinedPage(templateWindow->topTemplateText(),
                                        TWEditWindowController::sharedEditWindowController()->getText(),
                                        templateWindow->bottomTemplateText(), lineBreakValidationFlag));
    if (!TWWindowOrder::isWindowVisible(this))
        showWindow();
}

void TWViewWindowController::render(const QString &page)
{
    loadRequested();
    const QUrl base = baseURLValue.value_or(QUrl());
    if (fitsDirectly(page)) {
        pendingPage.clear();
        webViewValue->page()->setHtml(page, base);
        return;
    }
    // Too large to hand over: an empty document at the base URL takes the page in, so that
    // relative references resolve exactly as for a small page.
    pendingPage = page;
    webViewValue->page()->setHtml(QLatin1String(emptyDocument), base);
}

void TWViewWindowController::renderIfAutorender()
{
    control->renderIfAutorender();
}

void TWViewWindowController::fireRenderTimer()
{
    control->fireRenderTimer();
}

double TWViewWindowController::suspensionTime() const
{
    return control->suspensionTime();
}

void TWViewWindowController::setSuspensionTime(double seconds)
{
    control->setSuspensionTime(seconds);
}

int TWViewWindowController::timerCount() const
{
    return control->timerCount();
}

void TWViewWindowController::stopRendering()
{
    webViewValue->page()->triggerAction(QWebEnginePage::Stop);
    // Stopping a load does not stop a script that runs forever: a page that does not answer
    // in time is ended with its process, and the next render starts a fresh one.
    auto answered = std::make_shared<bool>(false);
    webViewValue->page()->runJavaScript(QStringLiteral("0"), [answered](const QVariant &) { *answered = true; });
    QTimer::singleShot(unresponsiveMilliseconds, this, [this, answered] {
        if (*answered)
            return;
        const qint64 pid = webViewValue->page()->renderProcessPid();
        if (pid > 0)
            ::kill(pid_t(pid), SIGKILL);
    });
}

QString TWViewWindowController::generateReloadingFile() const
{
    const TWTemplateWindowController *templateWindow = TWTemplateWindowController::sharedTemplateController();
    const QString combined = TWPageComposer::combinedPage(
        templateWindow->topTemplateText(), TWEditWindowController::sharedEditWindowController()->getText(),
        templateWindow->bottomTemplateText(), lineBreakValidationFlag);
    const QString cssPath = applyCSSFlag ? TWCSSWindowController::sharedCSSController()->cssFilename() : QString();
    // Without a base URL the base line is written empty, which browsers ignore.
    const QString base = baseURLValue ? TWPageComposer::absoluteString(*baseURLValue) : QString();
    return TWPageComposer::writeReloadingFile(TWApplicationDataFolder(),
                                              TWPageComposer::reloadingFileText(base, cssPath, combined));
}

void TWViewWindowController::clearCache()
{
    const QString path = generateReloadingFile();
    loadRequested();
    webViewValue->page()->profile()->clearHttpCache();
    pendingPage.clear();
    webViewValue->page()->load(QUrl::fromLocalFile(path));
}

void TWViewWindowController::loadRequested()
{
    // The style sheet as saved at this moment reaches every load.
    installUserStyleSheet();
    loading = true;
    progressIndicator->show();
    Q_EMIT pageRequested();
}

void TWViewWindowController::viewOnApp(const QString &application)
{
    const QString path = generateReloadingFile();
    // An application that cannot be started is not reported; a note goes to the log.
    if (!TWExternalBrowser::open(application, path))
        qWarning("Could not open the page with %s", qPrintable(application));
}

// Option flags -------------------------------------------------------------------------------

bool TWViewWindowController::autoRender() const
{
    return control->autoRender();
}

void TWViewWindowController::setAutoRender(bool flag)
{
    control->setAutoRender(flag);
    setAutoRenderButtonState(flag);
    TWAppDelegate::sharedAppDelegate()->setAutoRenderMenu(flag);
}

void TWViewWindowController::toggleAutoRender()
{
    setAutoRender(!autoRender());
    renderIfAutorender();
}

void TWViewWindowController::setApplyCSS(bool flag)
{
    applyCSSFlag = flag;
    installUserStyleSheet();
    setCSSButtonState(flag);
    TWAppDelegate::sharedAppDelegate()->setApplyCSSMenuState(flag);
}

void TWViewWindowController::installUserStyleSheet()
{
    // Read anew each time, so that a saved change shows at the next load; a file that cannot
    // be read leaves the page without it.
    const QString path = TWCSSWindowController::sharedCSSController()->cssFilename();
    std::optional<QString> css;
    if (applyCSSFlag && !path.isEmpty())
        css = TWTextFile::load(path, TWPreferences::sharedPref()->textEncoding());
    if (css == installedStyleSheet)
        return;
    installedStyleSheet = css;
    QWebEngineScriptCollection &scripts = webViewValue->page()->scripts();
    for (const QWebEngineScript &script : scripts.find(QLatin1String(TWUserStyleSheet::scriptName)))
        scripts.remove(script);
    if (!css)
        return;
    QWebEngineScript script;
    script.setName(QLatin1String(TWUserStyleSheet::scriptName));
    script.setInjectionPoint(QWebEngineScript::DocumentCreation);
    script.setWorldId(QWebEngineScript::MainWorld);
    script.setRunsOnSubFrames(true);
    script.setSourceCode(TWUserStyleSheet::injectionSource(*css));
    scripts.insert(script);
}

void TWViewWindowController::toggleApplyCSS()
{
    setApplyCSS(!applyCSSFlag);
    renderIfAutorender();
}

void TWViewWindowController::setLineBreakValidation(bool flag)
{
    lineBreakValidationFlag = flag;
    setLbValidationButtonState(flag);
    TWAppDelegate::sharedAppDelegate()->setLineBreakValidationMenu(flag);
}

void TWViewWindowController::toggleLineBreakValidation()
{
    setLineBreakValidation(!lineBreakValidationFlag);
    renderIfAutorender();
}

void TWViewWindowController::setTemplateButtonState(bool templateApplied)
{
    ui->templateButton->setChecked(!templateApplied);
}

void TWViewWindowController::setCSSButtonState(bool flag)
{
    ui->cssButton->setChecked(!flag);
}

void TWViewWindowController::setAutoRenderButtonState(bool flag)
{
    ui->autoRenderButton->setChecked(!flag);
}

void TWViewWindowController::setLbValidationButtonState(bool flag)
{
    ui->lineBreakValidationButton->setChecked(!flag);
}

// Base URL -----------------------------------------------------------------------------------

void TWViewWindowController::setBaseURL(const QUrl &url)
{
    baseURLValue = url;
    ui->baseURLField->setText(TWPageComposer::absoluteString(url));
}

void TWViewWindowController::clearBaseURL()
{
    baseURLValue.reset();
    ui->baseURLField->clear();
}

void TWViewWindowController::setBaseURLWithString(const QString &text)
{
    if (const std::optional<QUrl> url = TWPageComposer::baseURLFromString(text))
        setBaseURL(*url);
    else
        clearBaseURL();
}

QString TWViewWindowController::relativePathToBaseURL(const QString &path)
{
    return TWPageComposer::relativePathToBaseURL(baseURLValue, path);
}

void TWViewWindowController::inputBaseURL()
{
    setBaseURLWithString(ui->baseURLField->text());
    renderIfAutorender();
}

void TWViewWindowController::setFilePath()
{
    choseBaseURLFiles(TWPanels::runOpenPanel(this, {}));
}

void TWViewWindowController::choseBaseURLFiles(const QStringList &paths)
{
    if (paths.isEmpty())
        return;
    if (paths.size() != 1) {
        ui->baseURLField->setText(TWLocalizedString(TWTextKey::pathIsNotOne));
        return;
    }
    setBaseURL(TWPageComposer::fileURL(paths.first()));
    renderIfAutorender();
}

// Load feedback ------------------------------------------------------------------------------

void TWViewWindowController::loadStarted()
{
    loading = true;
    progressIndicator->show();
    if (!scrollPosition)
        scrollPosition = webViewValue->page()->scrollPosition();
}

void TWViewWindowController::loadingChanged(const QWebEngineLoadingInfo &info)
{
    switch (info.status()) {
    case QWebEngineLoadingInfo::LoadStartedStatus:
        return;
    case QWebEngineLoadingInfo::LoadSucceededStatus:
        break;
    case QWebEngineLoadingInfo::LoadStoppedStatus:
    case QWebEngineLoadingInfo::LoadFailedStatus:
        receivedError(TWLoadErrorText::description(info.errorDomain(), info.errorCode(), info.errorString()));
        return;
    }
    if (pendingPage.isEmpty()) {
        loadComplete();
        return;
    }
    const QString page = std::exchange(pendingPage, QString());
    QString script = QStringLiteral("document.open(); document.write(%1[0]); document.close();")
                         .arg(QString::fromUtf8(QJsonDocument(QJsonArray{page}).toJson(QJsonDocument::Compact)));
    // A rewritten document keeps the style sheet too.
    const QList<QWebEngineScript> styles
        = webViewValue->page()->scripts().find(QLatin1String(TWUserStyleSheet::scriptName));
    if (!styles.isEmpty())
        script += styles.first().sourceCode();
    webViewValue->page()->runJavaScript(script, [this](const QVariant &) { loadComplete(); });
}

void TWViewWindowController::receivedError(const QString &description)
{
    loading = false;
    statusBarText->setText(description);
    progressIndicator->hide();
    Q_EMIT loadEnded(false);
}

void TWViewWindowController::loadComplete()
{
    loading = false;
    statusBarText->clear();
    progressIndicator->hide();
    if (scrollPosition) {
        webViewValue->page()->runJavaScript(
            QStringLiteral("window.scrollTo(%1, %2);").arg(scrollPosition->x()).arg(scrollPosition->y()));
        scrollPosition.reset();
    }
    didReceiveTitle();
    Q_EMIT loadEnded(true);
}

void TWViewWindowController::didReceiveTitle()
{
    // Without a title the engine offers the page's address instead; the document itself says
    // whether it has one.
    webViewValue->page()->runJavaScript(QLatin1String(titleScript), QWebEngineScript::ApplicationWorld,
                                        [this](const QVariant &title) {
                                            if (title.typeId() == QMetaType::QString)
                                                showTitle(title.toString());
                                        });
}

void TWViewWindowController::showTitle(const QString &title)
{
    if (title.isEmpty())
        setWindowTitle(QString::fromLatin1(noTitleFormat).arg(TWLocalizedString(TWTextKey::noTitle)));
    else
        setWindowTitle(title);
}

QString TWViewWindowController::statusText() const
{
    return statusBarText->text();
}

// Life cycle ---------------------------------------------------------------------------------

void TWViewWindowController::setupAtAppLaunch()
{
    setAutoRender(autoRender());
    setApplyCSS(applyCSSFlag);
    setLineBreakValidation(lineBreakValidationFlag);
    setTemplateButtonState(TWTemplateWindowController::sharedTemplateController()->applyTemplate());
    if (baseURLValue)
        setBaseURL(*baseURLValue);
    else
        clearBaseURL();
    showWindow();
}

void TWViewWindowController::clearWithProject()
{
    setBaseURLWithString(TWPreferences::sharedPref()->defaultBaseURL());
}

void TWViewWindowController::showWindow()
{
    // A minimised viewer comes back too.
    if (isMinimized())
        setWindowState(windowState() & ~Qt::WindowMinimized);
    TWWindowOrder::showWindow(this);
}

QVariantMap TWViewWindowController::saveData() const
{
    QVariantMap data;
    // A viewer without a base URL stores "", which reads back as no base URL.
    data.insert(QLatin1String(TWStateEntry::baseURL),
                baseURLValue ? TWPageComposer::absoluteString(*baseURLValue) : QString());
    data.insert(QLatin1String(TWStateEntry::autoRendering), TWFlag::string(autoRender()));
    data.insert(QLatin1String(TWStateEntry::applyCSS), TWFlag::string(applyCSSFlag));
    data.insert(QLatin1String(TWStateEntry::validateLineBreak), TWFlag::string(lineBreakValidationFlag));
    return data;
}

void TWViewWindowController::saveDataToDictionary(QVariantMap &project) const
{
    project.insert(QLatin1String(TWProjectKey::viewerWindow), saveData());
}

void TWViewWindowController::loadDataFromDictionary(const std::optional<QVariantMap> &project)
{
    const std::optional<QVariantMap> data = TWProjectFile::windowEntry(project, TWProjectKey::viewerWindow);
    if (!data)
        return;
    const auto has = [&data](const char *entry) { return data->contains(QLatin1String(entry)); };
    const auto value = [&data](const char *entry) { return data->value(QLatin1String(entry)); };
    if (const std::optional<QString> url = TWWindowState::stringEntry(*data, TWStateEntry::baseURL))
        setBaseURLWithString(*url);
    if (has(TWStateEntry::autoRendering))
        setAutoRender(TWFlag::isNotNo(value(TWStateEntry::autoRendering)));
    // Through the setters, so that the buttons, the menu and the style sheet follow.
    if (has(TWStateEntry::applyCSS))
        setApplyCSS(TWFlag::isYes(value(TWStateEntry::applyCSS)));
    if (has(TWStateEntry::validateLineBreak))
        setLineBreakValidation(TWFlag::isYes(value(TWStateEntry::validateLineBreak)));
}

void TWViewWindowController::holdRenders()
{
    control->holdRequests();
}

void TWViewWindowController::releaseRenders()
{
    control->releaseRequests();
}

void TWViewWindowController::saveWindowProperties()
{
    TWWindowState::saveFrameUsingName(this, TWFrameName::viewerWindow);
    TWWindowState::writeDefaults(TWWindowDefaultsKey::viewerWindow, saveData());
    QFile::remove(TWApplicationDataFolder() + QLatin1Char('/') + QLatin1String(TWPageComposer::reloadingFileName));
}
