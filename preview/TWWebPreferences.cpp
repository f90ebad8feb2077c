#include "preview/TWWebPreferences.h"

#include "preferences/TWPreferences.h"

#include <QCoreApplication>
#include <QFontInfo>
#include <QWebEngineProfile>
#include <QWebEngineSettings>

QWebEngineProfile *TWWebPreferences::profile()
{
    static QWebEngineProfile *shared = [] {
        auto *profile = new QWebEngineProfile(QCoreApplication::instance());
        profile->settings()->setAttribute(QWebEngineSettings::AutoLoadImages, true);
        return profile;
    }();
    return shared;
}

void TWWebPreferences::apply(const TWPreferences &preferences)
{
    QWebEngineSettings *settings = profile()->settings();
    settings->setAttribute(QWebEngineSettings::AutoLoadImages, true);
    settings->setFontFamily(QWebEngineSettings::StandardFont, QFontInfo(preferences.viewerFont()).family());
    settings->setFontSize(QWebEngineSettings::DefaultFontSize, preferences.viewerFontSize());
    settings->setFontFamily(QWebEngineSettings::FixedFont, QFontInfo(preferences.viewerFixedFont()).family());
    settings->setFontSize(QWebEngineSettings::DefaultFixedFontSize, preferences.viewerFixedFontSize());
}
