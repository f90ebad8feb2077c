#pragma once

#include <QString>

class QCoreApplication;

// The localised text of a key of the string table "custom"; the key itself when the
// table has no text for it.
QString TWLocalizedString(const char *key);
// A text that tells a count: the table gives it in the form for that count, with %n as the count.
QString TWLocalizedString(const char *key, int count);

// Loads the string table for the user's language, with English underneath it so that
// every key has a text, and Qt's own texts (dialogs, standard buttons) in that language.
// Answers false when not even the English table could be loaded.
bool TWInstallTranslations(QCoreApplication *application);
