#pragma once

class QWebEngineProfile;
class TWPreferences;

// The rendering settings the viewer shares ("TWWebPref"): images load automatically, and the
// viewer's proportional and fixed-pitch fonts with their sizes. One profile, kept in memory
// only, so that the preview leaves no browsing data behind.
class TWWebPreferences
{
public:
    static constexpr char identifier[] = "TWWebPref";

    static QWebEngineProfile *profile();
    // Takes the viewer fonts from the preferences.
    static void apply(const TWPreferences &preferences);
};
