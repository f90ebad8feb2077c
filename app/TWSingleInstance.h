#pragma once

#include <QLocalServer>
#include <QLockFile>
#include <QObject>
#include <QString>
#include <QStringList>

class QDeadlineTimer;
class QLocalSocket;

// One running Tagwright per user-defaults store. Two processes on one store would each save
// their own texts at quit, and the last to quit would overwrite the other's. The first process
// to start holds a lock file and listens on a local socket; a later launch hands its files to
// it over the socket, waits for its acknowledgement and exits. Both live in the user's runtime
// folder, named from the store's path, so that separate stores are separate instances.
class TWSingleInstance : public QObject
{
    Q_OBJECT
public:
    enum class Outcome {
        // This process is the running instance: it listens and goes on to launch.
        Running,
        // The running instance took the files and answered.
        HandedOver,
        // Another process holds the store but did not answer in time.
        NoAnswer,
    };

    static constexpr int defaultAnswerTimeout = 30000;

    explicit TWSingleInstance(const QString &storePath, QObject *parent = nullptr);

    // Becomes the running instance of the store, or hands the absolute paths (possibly none)
    // to the instance that runs and waits up to answerTimeout milliseconds for its answer.
    // Blocks; called once, before the event loop runs.
    Outcome start(const QStringList &paths, int answerTimeout = defaultAnswerTimeout);

    // The process that holds the store, as far as its lock file tells (0 when unknown).
    qint64 runningProcessId() const;
    QString socketPath() const { return socketName; }

Q_SIGNALS:
    // Another launch handed over these paths (possibly none). The answer goes back to it when
    // the receivers have returned, so they open the files before answering.
    void filesHandedOver(const QStringList &paths);

private:
    enum class Delivery { Answered, Gone, Unanswered };
    Delivery handOver(const QStringList &paths, const QDeadlineTimer &deadline) const;
    void listen();
    void acceptConnections();
    void readRequest(QLocalSocket *socket);

    QString socketName;
    QLockFile lock;
    QLocalServer server;
};
