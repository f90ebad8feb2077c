#include "app/TWAppDelegate.h"
#include "app/TWLaunchProbe.h"
#include "editor/TWEditWindowController.h"
#include "platform/TWLocalization.h"
#include "platform/TWUnixSignals.h"
#include "preview/TWViewWindowController.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QFileInfo>

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

    TWInstallTranslations(&application);
    TWQuitOnTerminationSignals(&application);

    TWPreview::setFactory([] { return TWViewWindowController::sharedViewWindowController(); });
    TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
    delegate->applicationWillFinishLaunching();
    for (const QString &path : parser.positionalArguments())
        delegate->applicationOpenFile(QFileInfo(path).absoluteFilePath());
    TWReportLaunchTime(TWEditWindowController::sharedEditWindowController(),
                       TWViewWindowController::sharedViewWindowController());
    delegate->applicationDidFinishLaunching();
    const int status = application.exec();
    // The delegate's menus are widgets: they must go while the application still exists (a
    // menu left open at quit would otherwise be torn down after it).
    delete delegate;
    return status;
}
