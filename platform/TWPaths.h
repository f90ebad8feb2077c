#pragma once

#include <QString>

// The application data folder, ~/.local/share/Tagwright (or under $XDG_DATA_HOME): home of
// the temporary page file and of the checkers' default locations.
QString TWApplicationDataFolder();

// A path with a leading "~" or "~/" replaced by the user's home folder.
QString TWExpandTilde(const QString &path);
