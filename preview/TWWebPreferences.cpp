#include "preview/TWWebPreferences.h"

#include "preferences/TWPreferences.h"

#include <QFontInfo>
#include <QWebEngineProfile>
#include <QWebEngineSettings>

QWebEngineProfile *TWWebPreferences::profile()
{
    static QWebEngineProfile *shared = [] {
        // Like every shared object it lives as long as the process; the viewer's page must
        // never outlive it.
        auto *profile = new QWebEngineProfile();
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
