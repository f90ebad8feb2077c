#include "checker/TWChecker.h"

#include "checker/TWCheckerController.h"

#include <QTimer>

#include <csignal>
#include <unistd.h>

namespace {

constexpr char undecodableLogLine[] = "Not able to encode output. Specified encoding: %i";

} // namespace

TWChecker::TWChecker(TWCheckerController *controller, const QString &workingDirectory,
                     const QProcessEnvironment &environment, const QStringList &arguments, QObject *parent)
    : QObject(parent)
    , task(new QProcess(this))
    , controller(controller)
    , arguments(arguments)
{
    task->setWorkingDirectory(workingDirectory);
    task->setProcessEnvironment(environment);
    task->setProgram(arguments.value(0));
    task->setArguments(arguments.mid(1));
    // A checker that reads its input must not wait for the user to stop it.
    task->setStandardInputFile(QProcess::nullDevice());
    // Its own process group, so that stopping it reaches whatever it started.
    task->setChildProcessModifier([] { ::setpgid(0, 0); });
    connect(task, &QProcess::readyReadStandardOutput, this, [this] { appendOutput(task->readAllStandardOutput()); });
    connect(task, &QProcess::readyReadStandardError, this, [this] { appendError(task->readAllStandardError()); });
    connect(task, &QProcess::finished, this, &TWChecker::taskStopped);
    connect(task, &QProcess::errorOccurred, this, &TWChecker::launchFailed);
}

TWChecker::~TWChecker()
{
    if (task->state() != QProcess::NotRunning) {
        signalGroup(SIGKILL);
        task->waitForFinished(stopGraceMilliseconds);
    }
}

void TWChecker::startProcess()
{
    if (controller)
        controller->processStarted(this);
    task->start();
    // Set from this side too, so that a stop that comes at once already reaches the group.
    if (const qint64 pid = task->processId(); pid > 0) {
        ::setpgid(pid_t(pid), pid_t(pid));
        groupId = pid;
    }
}

void TWChecker::stopProcess()
{
    if (task->state() == QProcess::NotRunning)
        return;
    signalGroup(SIGTERM);
    QTimer::singleShot(stopGraceMilliseconds, this, [this] {
        if (task->state() != QProcess::NotRunning)
            signalGroup(SIGKILL);
    });
}

bool TWChecker::isRunning() const
{
    return !finished && task->state() != QProcess::NotRunning;
}

void TWChecker::signalGroup(int signal) const
{
    if (groupId > 0)
        ::kill(pid_t(-groupId), signal);
}

QString TWChecker::decoded(TWOutputDecoder &decoder, const QByteArray &bytes)
{
    QString text = decoder.decode(bytes);
    if (decoder.lastChunkHadInvalidBytes())
        qWarning(undecodableLogLine, TWOutputDecoder::utf8EncodingCode);
    return text;
}

void TWChecker::appendOutput(const QByteArray &bytes)
{
    if (const QString text = decoded(stdoutDecoder, bytes); controller && !text.isEmpty())
        controller->appendOutput(text);
}

void TWChecker::appendError(const QByteArray &bytes)
{
    if (const QString text = decoded(stderrDecoder, bytes); controller && !text.isEmpty())
        controller->appendError(text);
}

void TWChecker::taskStopped()
{
    // The program has ended and the pipes hold all it printed: standard output first, then
    // standard error, before the controller hears of the end.
    appendOutput(task->readAllStandardOutput());
    appendError(task->readAllStandardError());
    cleanup(task->exitCode());
}

void TWChecker::launchFailed(QProcess::ProcessError error)
{
    if (error != QProcess::FailedToStart)
        return;
    if (controller)
        controller->processCouldNotStart(this, task->errorString());
    cleanup(couldNotStartStatus);
}

void TWChecker::cleanup(int terminationStatus)
{
    if (finished)
        return;
    finished = true;
    // Whatever the program left running would hold on to the pipes.
    signalGroup(SIGKILL);
    stdoutDecoder.clear();
    stderrDecoder.clear();
    TWCheckerController *told = controller;
    controller = nullptr;
    if (told)
        told->processFinished(this, terminationStatus);
    Q_EMIT processFinishedNotification(terminationStatus);
}
