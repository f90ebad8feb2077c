#pragma once

#include <QString>
#include <QStringList>

// Opens a file with an application given by path: an executable gets the file as its
// argument; a .desktop file is started through its Exec line.
namespace TWExternalBrowser {
// The program and arguments that open the file; empty when the application cannot be used.
QStringList commandFor(const QString &application, const QString &file);
// Starts it detached; answers whether it started.
bool open(const QString &application, const QString &file);
// The menu title for an application: its file name without the extension.
QString title(const QString &application);
// What the user knows the application as: a desktop entry's name, else the title.
QString displayName(const QString &application);
} // namespace TWExternalBrowser
