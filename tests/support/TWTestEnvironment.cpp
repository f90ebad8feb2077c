#include "TWTestEnvironment.h"

#include <QByteArray>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QTimer>

#include <cstdlib>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string makePrivateHome()
{
    const char *tmp = std::getenv("TMPDIR");
    std::string pattern = std::string(tmp && *tmp ? tmp : "/tmp") + "/tagwright-test-XXXXXX";
    if (!mkdtemp(pattern.data()))
        std::abort();
    const std::string home = pattern;
    const std::pair<const char *, std::string> vars[] = {
        {"HOME", home},
        {"XDG_CONFIG_HOME", home + "/.config"},
        {"XDG_DATA_HOME", home + "/.local/share"},
        {"XDG_CACHE_HOME", home + "/.cache"},
        {"XDG_RUNTIME_DIR", home + "/runtime"},
    };
    for (const auto &[name, value] : vars) {
        QDir().mkpath(QString::fromStdString(value));
        setenv(name, value.c_str(), 1);
    }
    chmod((home + "/runtime").c_str(), 0700);
    // The texts the tests compare are the English ones, whatever the machine's language (and
    // the programs the tests start speak English too).
    unsetenv("LANGUAGE");
    setenv("LC_ALL", "C.UTF-8", 1);
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    // The preview engine shares drawing contexts with the application, and refuses to run as
    // root with its sandbox on.
    QCoreApplication::setAttribute(Qt::AA_ShareOpenGLContexts);
    if (geteuid() == 0)
        setenv("QTWEBENGINE_DISABLE_SANDBOX", "1", 0);
    // The private home goes when the test process ends.
    std::atexit([] {
        const char *dir = std::getenv("HOME");
        if (dir && std::string(dir).find("/tagwright-test-") != std::string::npos)
            QDir(QString::fromLocal8Bit(dir)).removeRecursively();
    });
    return home;
}

// Runs before main(), so that nothing in the test can see the real environment first.
const std::string privateHome = makePrivateHome();

} // namespace

QString TWTestEnvironment::home()
{
    return QString::fromStdString(privateHome);
}

bool TWTestEnvironment::waitFor(const std::function<bool()> &condition, int milliseconds)
{
    const QDeadlineTimer deadline(milliseconds);
    // Wakes the loop now and then, so that the deadline is seen even when nothing happens.
    QTimer wake;
    wake.start(50);
    while (!condition() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    return condition();
}

QString TWTestEnvironment::writeScript(const QString &path, const QByteArray &body)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write("#!/bin/sh\n" + body + "\n") < 0
        || !file.setPermissions(file.permissions() | QFileDevice::ExeOwner))
        return {};
    return path;
}

bool TWTestEnvironment::writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray TWTestEnvironment::readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
