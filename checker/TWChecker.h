#pragma once

#include "checker/TWOutputDecoder.h"

#include <QObject>
#include <QProcess>
#include <QStringList>

class TWCheckerController;

// Runs one checker program as a child process, never through a shell, and tells its
// controller when it starts, what it prints, and when it has finished. The program gets no
// input (reading it ends at once), runs in a process group of its own, and everything it
// started ends with the run, so nothing is left behind.
class TWChecker : public QObject
{
    Q_OBJECT
public:
    // arguments[0] is the program's path, the rest its arguments.
    TWChecker(TWCheckerController *controller, const QString &workingDirectory,
              const QProcessEnvironment &environment, const QStringList &arguments, QObject *parent = nullptr);
    // A run still going is ended at once, with every process it started.
    ~TWChecker() override;

    void startProcess();
    // Asks the program to end; one that does not within stopGraceMilliseconds is killed. The
    // run then finishes as any other, with what the program printed until then.
    void stopProcess();
    bool isRunning() const;

    static constexpr int stopGraceMilliseconds = 2000;
    // The status a run gets when its program could not be started.
    static constexpr int couldNotStartStatus = 127;

Q_SIGNALS:
    // After the controller was told: the run is over, with the program's exit status (the
    // signal's number for a program ended by a signal).
    void processFinishedNotification(int terminationStatus);

private:
    void appendOutput(const QByteArray &bytes);
    void appendError(const QByteArray &bytes);
    // The text of the bytes, logging bytes that are no UTF-8.
    static QString decoded(TWOutputDecoder &decoder, const QByteArray &bytes);
    void taskStopped();
    void launchFailed(QProcess::ProcessError error);
    void cleanup(int terminationStatus);
    void signalGroup(int signal) const;

    QProcess *task;
    TWCheckerController *controller;
    QStringList arguments;
    TWOutputDecoder stdoutDecoder;
    TWOutputDecoder stderrDecoder;
    qint64 groupId = 0;
    bool finished = false;
};
