#include "app/TWAppDelegate.h"
#include "app/TWFileExtensions.h"
#include "app/TWLaunchProbe.h"
#include "app/TWSingleInstance.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "platform/TWLocalization.h"
#include "platform/TWUnixSignals.h"
#include "platform/TWUserDefaults.h"
#include "platform/TWWindowOrder.h"
#include "preview/TWViewWindowController.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>
#include <QIcon>

#include <cstdio>

namespace {

// The exit status of a launch whose files the running instance did not take.
constexpr int noAnswerStatus = 1;

// The picture that the desktop shows for Tagwright, carried in the bundle so that the windows
// show it too wherever the program was installed.
constexpr char applicationIconPath[] = ":/desktop/tagwright.svg";

// The window that a file opens in, by the delegate's routing; a project comes to the front
// with its page.
QWidget *windowForFile(const QString &path)
{
    switch (TWFileKindOfPath(path)) {
    case TWFileKind::templateFile:
        return TWTemplateWindowController::sharedTemplateController();
    case TWFileKind::styleSheet:
        return TWCSSWindowController::sharedCSSController();
    case TWFileKind::project:
    case TWFileKind::html:
        break;
    }
    return TWEditWindowController::sharedEditWindowController();
}

void bringToFront(QWidget *window)
{
    window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
    TWWindowOrder::showWindow(window);
}

// Files handed over by a later launch open as those given at launch do, and each window that
// got one comes to the front (restored if minimised, with any message about a file that could
// not be read), the last file's in front. Without files, the HTML window comes to the front.
void openHandedOverFiles(TWAppDelegate *delegate, const QStringList &paths)
{
    if (paths.isEmpty())
        bringToFront(TWEditWindowController::sharedEditWindowController());
    for (const QString &path : paths) {
        delegate->applicationOpenFile(path);
        bringToFront(windowForFile(path));
    }
}

void reportNoAnswer(const TWSingleInstance &instance)
{
    const qint64 pid = instance.runningProcessId();
    const QString holder = pid > 0 ? QStringLiteral("Tagwright (process %1)").arg(pid) : QStringLiteral("Tagwright");
    std::fprintf(stderr,
                 "%s is already running on these settings but did not answer in %d seconds.\n"
                 "The files open there if it answers later; if it does not, end that process and start\n"
                 "Tagwright again. A second Tagwright is not started: it would overwrite your texts.\n",
                 qPrintable(holder), TWSingleInstance::defaultAnswerTimeout / 1000);
}

} // namespace

int main(int argc, char **argv)
{
    // The preview engine shares its drawing contexts with the application.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    QApplication application(argc, argv);
    QApplication::setOrganizationName(QStringLiteral("Tagwright"));
    QApplication::setApplicationName(QStringLiteral("Tagwright"));
    QApplication::setApplicationVersion(QStringLiteral("1.4b3"));
    QApplication::setDesktopFileName(QStringLiteral("tagwright"));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("Write HTML and watch it render as you type."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("files"), QStringLiteral("Files to open."), QStringLiteral("[files...]"));
    parser.process(application);

    QStringList paths;
    for (const QString &path : parser.positionalArguments())
        paths << QFileInfo(path).absoluteFilePath();

    // Decided before anything reads the store: a second process on it would overwrite the
    // first one's texts at quit. A launch during the running one's start-up waits for it.
    TWSingleInstance instance(TWUserDefaults::storeFileName());
    switch (instance.start(paths)) {
    case TWSingleInstance::Outcome::HandedOver:
        return 0;
    case TWSingleInstance::Outcome::NoAnswer:
        reportNoAnswer(instance);
        return noAnswerStatus;
    case TWSingleInstance::Outcome::Running:
        break;
    }

    QApplication::setWindowIcon(QIcon(QLatin1String(applicationIconPath)));
    TWInstallTranslations(&application);
    TWQuitOnTerminationSignals(&application);

    TWPreview::setFactory([] { return TWViewWindowController::sharedViewWindowController(); });
    TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
    delegate->applicationWillFinishLaunching();
    for (const QString &path : paths)
        delegate->applicationOpenFile(path);
    TWReportLaunchTime(TWEditWindowController::sharedEditWindowController(),
                       TWViewWindowController::sharedViewWindowController());
    delegate->applicationDidFinishLaunching();
    QObject::connect(&instance, &TWSingleInstance::filesHandedOver, delegate,
                     [delegate](const QStringList &handedOver) { openHandedOverFiles(delegate, handedOver); });
    const int status = application.exec();
    // The delegate's menus are widgets: they must go while the application still exists (a
    // menu left open at quit would otherwise be torn down after it).
    delete delegate;
    // The instance goes last: until the texts are saved, a new launch must wait, not start.
    return status;
}
