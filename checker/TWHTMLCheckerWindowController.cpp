#include "checker/TWHTMLCheckerWindowController.h"

#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "app/TWWindowState.h"
#include "checker/TWChecker.h"
#include "checker/TWCheckerScripts.h"
#include "documents/TWCSSWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWTextFile.h"
#include "platform/TWBeep.h"
#include "platform/TWFlag.h"
#include "platform/TWLocalization.h"
#include "platform/TWPaths.h"
#include "platform/TWTextKeys.h"
#include "platform/TWWindowOrder.h"
#include "preferences/TWPreferences.h"
#include "ui_TWHTMLCheckerWindow.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QFontDatabase>
#include <QMenuBar>
#include <QScrollBar>

namespace {

TWHTMLCheckerWindowController *sharedInstance = nullptr;

// The pop-up's titles, by code type.
constexpr char htmlTitle[] = "HTML";
constexpr char cssTitle[] = "CSS";
constexpr char codeTypeCSS[] = "CSS";
constexpr char codeTypeHTML[] = "HTML";
constexpr char runningFormat[] = "%1...";
constexpr char optionSeparator = ' ';

// Where the window opens on a first launch: below the HTML window.
constexpr QPoint defaultPosition(20, 520);

} // namespace

TWHTMLCheckerWindowController *TWHTMLCheckerWindowController::sharedCheckerController()
{
    if (!sharedInstance)
        new TWHTMLCheckerWindowController(); // registers itself
    return sharedInstance;
}

TWHTMLCheckerWindowController::TWHTMLCheckerWindowController()
    : ui(new Ui::TWHTMLCheckerWindow)
{
    if (!sharedInstance)
        sharedInstance = this;
    ui->setupUi(this);
    TWAppDelegate::sharedAppDelegate()->populateMenuBar(menuBar());
    awakeFromNib();
    connect(ui->checkerButton, &QPushButton::clicked, this, &TWHTMLCheckerWindowController::checkerButtonClicked);
    // A run still going at quit ends with everything it started.
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] { delete checker; });
}

TWHTMLCheckerWindowController::~TWHTMLCheckerWindowController()
{
    if (sharedInstance == this)
        sharedInstance = nullptr;
    delete checker;
    delete ui;
}

void TWHTMLCheckerWindowController::awakeFromNib()
{
    TWWindowState::setFrameUsingName(this, TWFrameName::htmlCheckerWindow, defaultPosition);
    setCheckerFilename(QString());
    ui->checkerStatusText->setText(TWLocalizedString(TWTextKey::ready));
    ui->checkerButton->setText(TWLocalizedString(TWTextKey::start));
    ui->checkerIndicator->hide();
    // The user's fixed-pitch font, a little smaller than the general text, as messages are.
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSizeF(std::max(8.0, QApplication::font().pointSizeF() - 1.0));
    ui->checkerTextView->setFont(font);

    const std::optional<QVariantMap> defaults = TWWindowState::readDefaults(TWWindowDefaultsKey::htmlCheckerWindow);
    const bool css = defaults && TWWindowState::stringEntry(*defaults, TWStateEntry::codeType) == QLatin1String(codeTypeCSS);
    setCodeType(css ? CodeType::css : CodeType::html);
    showAtLaunch = defaults && TWFlag::isYes(defaults->value(QLatin1String(TWStateEntry::showWindow)));
}

int TWHTMLCheckerWindowController::codeType() const
{
    const QString title = ui->checkerPopUpButton->currentText();
    if (title == QLatin1String(cssTitle))
        return CodeType::css;
    if (title != QLatin1String(htmlTitle))
        TWBeep();
    return CodeType::html;
}

void TWHTMLCheckerWindowController::setCodeType(int type)
{
    if (type != CodeType::html && type != CodeType::css) {
        TWBeep();
        return;
    }
    ui->checkerPopUpButton->setCurrentIndex(
        ui->checkerPopUpButton->findText(QLatin1String(type == CodeType::css ? cssTitle : htmlTitle)));
}

void TWHTMLCheckerWindowController::setCheckerFilename(const QString &path)
{
    checkerFilenameValue = path;
    filenameSpecified = !path.isEmpty();
}

QStringList TWHTMLCheckerWindowController::checkerCommand() const
{
    const TWPreferences *preferences = TWPreferences::sharedPref();
    const bool css = codeType() == CodeType::css;
    const QString &options = css ? preferences->cssCheckerOptions() : preferences->htmlCheckerOptions();
    QStringList command{TWExpandTilde(css ? preferences->cssCheckerPath() : preferences->htmlCheckerPath())};
    command << options.split(QLatin1Char(optionSeparator), Qt::SkipEmptyParts);
    command << checkerFilenameValue;
    return command;
}

void TWHTMLCheckerWindowController::checkerButtonClicked()
{
    if (running) {
        if (checker)
            checker->stopProcess();
        return;
    }
    ui->checkerTextView->clear();
    outputLimit = TWOutputLimit();
    const TWPreferences *preferences = TWPreferences::sharedPref();
    const bool css = codeType() == CodeType::css;
    setCheckerFilename(css ? TWCSSWindowController::sharedCSSController()->cssFilename()
                           : TWEditWindowController::sharedEditWindowController()->htmlFilename());
    // Only existence is asked here; a program that cannot be run says so when it fails to start.
    if (!QFileInfo::exists(TWExpandTilde(css ? preferences->cssCheckerPath() : preferences->htmlCheckerPath()))) {
        appendError(TWLocalizedString(css ? TWTextKey::cssCheckerNotFound : TWTextKey::htmlCheckerNotFound));
        return;
    }
    if (!filenameSpecified) {
        appendError(TWLocalizedString(css ? TWTextKey::cssFileNotSpecified : TWTextKey::htmlFileNotSpecified));
        return;
    }
    // The shipped checkers read the file in the encoding it was saved in.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QLatin1String(TWCheckerScripts::encodingVariable),
                       QLatin1String(TWTextFile::encodingName(preferences->textEncoding())));
    setChecker(new TWChecker(this, QDir::homePath(), environment, checkerCommand(), this));
    checker->startProcess();
}

void TWHTMLCheckerWindowController::setChecker(TWChecker *newChecker)
{
    if (newChecker == checker)
        return;
    // The old one may be the one calling: it goes once its call has returned.
    if (checker)
        checker->deleteLater();
    checker = newChecker;
}

QString TWHTMLCheckerWindowController::text() const
{
    return ui->checkerTextView->toPlainText();
}

void TWHTMLCheckerWindowController::append(const QString &text)
{
    if (text.isEmpty())
        return;
    QScrollBar *scrollBar = ui->checkerTextView->verticalScrollBar();
    // The newest output stays in sight unless the user has scrolled up to read.
    const bool following = scrollBar->value() == scrollBar->maximum();
    QTextCursor end(ui->checkerTextView->document());
    end.movePosition(QTextCursor::End);
    end.insertText(text);
    if (following)
        scrollBar->setValue(scrollBar->maximum());
}

void TWHTMLCheckerWindowController::processStarted(TWChecker *)
{
    running = true;
    ui->checkerIndicator->show();
    ui->checkerButton->setText(TWLocalizedString(TWTextKey::stop));
    ui->checkerStatusText->setText(QString::fromLatin1(runningFormat).arg(TWLocalizedString(TWTextKey::running)));
    ui->checkerPopUpButton->setEnabled(false);
}

void TWHTMLCheckerWindowController::appendOutput(const QString &text)
{
    append(outputLimit.admit(text));
}

void TWHTMLCheckerWindowController::appendError(const QString &text)
{
    append(outputLimit.admit(text));
}

void TWHTMLCheckerWindowController::processCouldNotStart(TWChecker *, const QString &reason)
{
    appendError(TWLocalizedString(TWTextKey::cantExecuteChecker) + reason + QLatin1Char('\n'));
}

void TWHTMLCheckerWindowController::processFinished(TWChecker *, int)
{
    append(outputLimit.summary());
    running = false;
    ui->checkerIndicator->hide();
    ui->checkerButton->setText(TWLocalizedString(TWTextKey::start));
    ui->checkerStatusText->setText(TWLocalizedString(TWTextKey::done));
    ui->checkerPopUpButton->setEnabled(true);
    setChecker(nullptr);
}

void TWHTMLCheckerWindowController::setupAtAppLaunch()
{
    if (showAtLaunch)
        show();
}

void TWHTMLCheckerWindowController::showWindow()
{
    TWWindowOrder::showWindow(this);
}

void TWHTMLCheckerWindowController::saveWindowProperties() const
{
    TWWindowState::saveFrameUsingName(this, TWFrameName::htmlCheckerWindow);
    QVariantMap defaults;
    defaults.insert(QLatin1String(TWStateEntry::showWindow), TWFlag::string(TWWindowOrder::isWindowVisible(this)));
    defaults.insert(QLatin1String(TWStateEntry::codeType),
                    QLatin1String(codeType() == CodeType::css ? codeTypeCSS : codeTypeHTML));
    TWWindowState::writeDefaults(TWWindowDefaultsKey::htmlCheckerWindow, defaults);
}
