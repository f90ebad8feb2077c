#include "platform/TWLocalization.h"

#include <QCoreApplication>
#include <QLocale>
#include <QTranslator>

namespace {
constexpr char tableName[] = "custom";
constexpr char translationsFolder[] = ":/translations";
constexpr char fallbackLanguage[] = "en";
}

QString TWLocalizedString(const char *key)
{
    return QCoreApplication::translate(tableName, key);
}

QString TWLocalizedString(const char *key, int count)
{
    return QCoreApplication::translate(tableName, key, nullptr, count);
}

bool TWInstallTranslations(QCoreApplication *application)
{
    // Translators installed later are asked first: English goes in first as the floor.
    auto *english = new QTranslator(application);
    const bool haveEnglish = english->load(QStringLiteral("%1_%2").arg(QLatin1String(tableName), QLatin1String(fallbackLanguage)),
                                           QLatin1String(translationsFolder));
    if (haveEnglish)
        QCoreApplication::installTranslator(english);
    else
        delete english;

    auto *local = new QTranslator(application);
    if (QLocale().language() != QLocale::English
        && local->load(QLocale(), QLatin1String(tableName), QStringLiteral("_"), QLatin1String(translationsFolder)))
        QCoreApplication::installTranslator(local);
    else
        delete local;
    return haveEnglish;
}
