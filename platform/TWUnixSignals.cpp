#include "platform/TWUnixSignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <sys/socket.h>
#include <unistd.h>

namespace {

int signalPipe[2] = {-1, -1};

// Only async-signal-safe work here: hand the signal to the event loop through a socket.
void onSignal(int)
{
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = ::write(signalPipe[0], &byte, 1);
}

} // namespace

void TWQuitOnTerminationSignals(QCoreApplication *application)
{
    if (signalPipe[0] != -1)
        return;
    if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, signalPipe) != 0)
        return;

    auto *notifier = new QSocketNotifier(signalPipe[1], QSocketNotifier::Read, application);
    QObject::connect(notifier, &QSocketNotifier::activated, application, [] {
        char byte;
        [[maybe_unused]] const ssize_t got = ::read(signalPipe[1], &byte, 1);
        QCoreApplication::exit(0);
    });

    struct sigaction action = {};
    action.sa_handler = onSignal;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESTART;
    sigaction(SIGTERM, &action, nullptr);
    sigaction(SIGINT, &action, nullptr);
}
