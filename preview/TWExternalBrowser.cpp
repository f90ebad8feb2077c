#include "preview/TWExternalBrowser.h"

#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QUrl>

namespace {

constexpr char desktopExtension[] = "desktop";
constexpr char desktopGroup[] = "[Desktop Entry]";
constexpr char execKey[] = "Exec=";

// The Exec line of the [Desktop Entry] group, or "".
QString execLine(const QString &desktopFile)
{
    QFile file(desktopFile);
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        return {};
    bool inEntry = false;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        if (line.startsWith(QLatin1Char('[')))
            inEntry = line == QLatin1String(desktopGroup);
        else if (inEntry && line.startsWith(QLatin1String(execKey)))
            return line.mid(int(qstrlen(execKey)));
    }
    return {};
}

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
    const QFileInfo info(application);
    if (info.suffix() == QLatin1String(desktopExtension))
        return expandExec(execLine(application), file);
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
