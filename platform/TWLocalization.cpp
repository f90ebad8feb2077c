#include "platform/TWLocalization.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace {
constexpr char tableName[] = "custom";
constexpr char translationsFolder[] = ":/translations";
constexpr char fallbackLanguage[] = "en";
constexpr char fileNamePrefix[] = "_";
// Qt's own texts (standard buttons, file, font and colour dialogs): the catalogue of all
// modules, or where only some are installed, that of the widgets module.
constexpr const char *qtCatalogues[] = {"qt", "qtbase"};

void installQtTranslations(QCoreApplication *application, const QLocale &locale)
{
    for (const char *catalogue : qtCatalogues) {
        auto *qt = new QTranslator(application);
        if (qt->load(locale, QLatin1String(catalogue), QLatin1String(fileNamePrefix),
                     QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
            QCoreApplication::installTranslator(qt);
            return;
        }
        delete qt;
    }
}
} // namespace

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
    // Translators installed later are asked first: Qt's texts, then English as the floor under
    // every key, then the user's language, which may word some of Qt's texts (file filters) its own way.
    auto *local = new QTranslator(application);
    if (QLocale().language() == QLocale::English
        || !local->load(QLocale(), QLatin1String(tableName), QLatin1String(fileNamePrefix), QLatin1String(translationsFolder))) {
        delete local;
        local = nullptr;
    }
    // Qt's own dialogs and standard buttons speak the language the application speaks, not
    // one it does not.
    if (local)
        installQtTranslations(application, QLocale(local->language()));

    auto *english = new QTranslator(application);
    const bool haveEnglish = english->load(QStringLiteral("%1%2%3").arg(QLatin1String(tableName), QLatin1String(fileNamePrefix),
                                                                        QLatin1String(fallbackLanguage)),
                                           QLatin1String(translationsFolder));
    if (haveEnglish)
        QCoreApplication::installTranslator(english);
    else
        delete english;
    if (local)
        QCoreApplication::installTranslator(local);
    return haveEnglish;
}
