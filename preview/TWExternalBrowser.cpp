#include "preview/TWExternalBrowser.h"

#include "platform/TWDesktopEntry.h"

#include <QFileInfo>
#include <QProcess>
#include <QUrl>

namespace {

// Replaces the field codes of an Exec line: %f %F %u %U take the file, %% is a percent sign,
// the other codes go. Without a file code the file is added at the end.
QStringList expandExec(const QString &exec, const QString &file)
{
    QStringList command;
    bool fileGiven = false;
    for (const QString &argument : QProcess::splitCommand(exec)) {
        if (argument == QLatin1String("%f") || argument == QLatin1String("%F")) {
            command << file;
            fileGiven = true;
        } else if (argument == QLatin1String("%u") || argument == QLatin1String("%U")) {
            command << QUrl::fromLocalFile(file).toString();
            fileGiven = true;
        } else if (argument.size() == 2 && argument.startsWith(QLatin1Char('%'))) {
            if (argument == QLatin1String("%%"))
                command << QStringLiteral("%");
        } else {
            QString plain = argument;
            command << plain.replace(QLatin1String("%%"), QLatin1String("%"));
        }
    }
    if (!command.isEmpty() && !fileGiven)
        command << file;
    return command;
}

} // namespace

QStringList TWExternalBrowser::commandFor(const QString &application, const QString &file)
{
    if (TWDesktopEntry::isDesktopEntry(application))
        return expandExec(TWDesktopEntry::value(application, TWDesktopEntry::execKey), file);
    const QFileInfo info(application);
    if (!info.isFile() || !info.isExecutable())
        return {};
    return {application, file};
}

bool TWExternalBrowser::open(const QString &application, const QString &file)
{
    QStringList command = commandFor(application, file);
    if (command.isEmpty())
        return false;
    const QString program = command.takeFirst();
    return QProcess::startDetached(program, command);
}

QString TWExternalBrowser::title(const QString &application)
{
    return QFileInfo(application).completeBaseName();
}

QString TWExternalBrowser::displayName(const QString &application)
{
    const QString name = TWDesktopEntry::isDesktopEntry(application) ? TWDesktopEntry::value(application, TWDesktopEntry::nameKey) : QString();
    return name.isEmpty() ? title(application) : name;
}
