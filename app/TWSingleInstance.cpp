#include "app/TWSingleInstance.h"

#include <QCryptographicHash>
#include <QDataStream>
#include <QDeadlineTimer>
#include <QDir>
#include <QFileInfo>
#include <QLocalSocket>
#include <QPointer>
#include <QStandardPaths>
#include <QTimer>

#include <limits>
#include <optional>

namespace {

constexpr char namePrefix[] = "tagwright-";
constexpr char lockSuffix[] = ".lock";
// Enough of the hash to tell stores apart, and short: socket paths are limited to ~107 bytes.
constexpr qsizetype hashDigits = 16;

// A request: the protocol version, the size of the body, and the body, the paths as a
// string list. The answer: one acknowledgement byte, sent once the files are open.
constexpr quint8 protocolVersion = 1;
constexpr char acknowledgement = '\x06';
constexpr QDataStream::Version streamVersion = QDataStream::Qt_6_0;
constexpr qint64 headerBytes = sizeof(quint8) + sizeof(quint32);
// Far more than any command line holds: anything bigger is not a request.
constexpr quint32 maxBodyBytes = 4 * 1024 * 1024;
// The least a serialised path takes: its length field.
constexpr quint32 minPathBytes = sizeof(quint32);

// A client that has not sent a whole request by then is dropped.
constexpr int requestTimeout = 10000;
// Between attempts while the running instance starts to listen, or quits.
constexpr int retryInterval = 100;

QString socketNameForStore(const QString &storePath)
{
    QString folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::tempPath();
    const QByteArray key = QDir::cleanPath(QFileInfo(storePath).absoluteFilePath()).toUtf8();
    const QByteArray hash = QCryptographicHash::hash(key, QCryptographicHash::Sha256).toHex().left(hashDigits);
    return folder + QLatin1Char('/') + QLatin1String(namePrefix) + QLatin1String(hash);
}

QByteArray request(const QStringList &paths)
{
    QByteArray body;
    QDataStream bodyStream(&body, QIODevice::WriteOnly);
    bodyStream.setVersion(streamVersion);
    bodyStream << paths;
    QByteArray message;
    QDataStream out(&message, QIODevice::WriteOnly);
    out.setVersion(streamVersion);
    out << protocolVersion << quint32(body.size());
    out.writeRawData(body.constData(), int(body.size()));
    return message;
}

// The paths of a request body; nothing when it is not a list of absolute paths and no more.
// Read one by one: a list's own reader would reserve room for whatever count it is sent.
std::optional<QStringList> decodePaths(const QByteArray &body)
{
    QDataStream in(body);
    in.setVersion(streamVersion);
    quint32 count = 0;
    in >> count;
    if (in.status() != QDataStream::Ok || count > body.size() / minPathBytes)
        return std::nullopt;
    QStringList paths;
    for (quint32 i = 0; i < count; ++i) {
        QString path;
        in >> path;
        if (in.status() != QDataStream::Ok || !QDir::isAbsolutePath(path))
            return std::nullopt;
        paths << path;
    }
    if (!in.atEnd())
        return std::nullopt;
    return paths;
}

int remaining(const QDeadlineTimer &deadline)
{
    return int(qMin<qint64>(deadline.remainingTime(), std::numeric_limits<int>::max()));
}

void drop(QLocalSocket *socket)
{
    socket->abort();
    socket->deleteLater();
}

} // namespace

TWSingleInstance::TWSingleInstance(const QString &storePath, QObject *parent)
    : QObject(parent)
    , socketName(socketNameForStore(storePath))
    , lock(socketName + QLatin1String(lockSuffix))
{
    // The running instance holds the lock as long as it runs: only a holder that is gone
    // makes it stale, never its age.
    lock.setStaleLockTime(0);
    connect(&server, &QLocalServer::newConnection, this, &TWSingleInstance::acceptConnections);
}

TWSingleInstance::Outcome TWSingleInstance::start(const QStringList &paths, int answerTimeout)
{
    const QDeadlineTimer deadline(answerTimeout);
    int wait = 0;
    // The lock decides who runs, so that two launches at the same moment, or two that find a
    // socket left by a crash, cannot both listen; the loser hands over to the winner.
    for (;;) {
        if (lock.tryLock(wait)) {
            listen();
            return Outcome::Running;
        }
        if (lock.error() != QLockFile::LockFailedError) {
            // No lock can be made here at all: better one unguarded window than none.
            qWarning("Tagwright could not create %s; it runs without checking for another instance.",
                     qPrintable(lock.fileName()));
            return Outcome::Running;
        }
        switch (handOver(paths, deadline)) {
        case Delivery::Answered:
            return Outcome::HandedOver;
        case Delivery::Unanswered:
            return Outcome::NoAnswer;
        case Delivery::Gone:
            break;
        }
        if (deadline.hasExpired())
            return Outcome::NoAnswer;
        wait = retryInterval;
    }
}

qint64 TWSingleInstance::runningProcessId() const
{
    qint64 pid = 0;
    return lock.getLockInfo(&pid, nullptr, nullptr) ? pid : 0;
}

TWSingleInstance::Delivery TWSingleInstance::handOver(const QStringList &paths, const QDeadlineTimer &deadline) const
{
    QLocalSocket socket;
    socket.connectToServer(socketName);
    // Not listening (yet, or any more): the holder is starting or quitting.
    if (!socket.waitForConnected(remaining(deadline)))
        return Delivery::Gone;
    socket.write(request(paths));
    while (socket.bytesAvailable() == 0) {
        if (!socket.waitForReadyRead(remaining(deadline))) {
            // Closed without an answer: it quit before reading us, and nothing was opened.
            return socket.state() == QLocalSocket::ConnectedState ? Delivery::Unanswered : Delivery::Gone;
        }
    }
    char answer = 0;
    return socket.getChar(&answer) && answer == acknowledgement ? Delivery::Answered : Delivery::Unanswered;
}

void TWSingleInstance::listen()
{
    // With the lock held, a socket under this name was left by a process that is gone.
    QLocalServer::removeServer(socketName);
    if (!server.listen(socketName)) {
        qWarning("Tagwright could not listen on %s (%s); files opened with it later will not reach this instance.",
                 qPrintable(socketName), qPrintable(server.errorString()));
    }
}

void TWSingleInstance::acceptConnections()
{
    while (QLocalSocket *socket = server.nextPendingConnection()) {
        connect(socket, &QLocalSocket::disconnected, socket, &QObject::deleteLater);
        connect(socket, &QLocalSocket::readyRead, this, [this, socket] { readRequest(socket); });
        QTimer::singleShot(requestTimeout, socket, [socket] { drop(socket); });
        readRequest(socket);
    }
}

void TWSingleInstance::readRequest(QLocalSocket *socket)
{
    if (socket->bytesAvailable() < headerBytes)
        return;
    QDataStream header(socket->peek(headerBytes));
    header.setVersion(streamVersion);
    quint8 version = 0;
    quint32 bodyBytes = 0;
    header >> version >> bodyBytes;
    if (version != protocolVersion || bodyBytes > maxBodyBytes) {
        drop(socket);
        return;
    }
    if (socket->bytesAvailable() < headerBytes + bodyBytes)
        return;
    // One request per connection: whatever follows it is not read.
    socket->disconnect(this);
    socket->skip(headerBytes);
    const std::optional<QStringList> paths = decodePaths(socket->read(bodyBytes));
    if (!paths) {
        drop(socket);
        return;
    }
    // The receivers may run an event loop of their own, in which the socket can go.
    const QPointer<QLocalSocket> guard(socket);
    Q_EMIT filesHandedOver(*paths);
    if (!guard)
        return;
    // Written out now: the application may quit before the event loop would write it.
    socket->putChar(acknowledgement);
    socket->flush();
    socket->disconnectFromServer();
}
