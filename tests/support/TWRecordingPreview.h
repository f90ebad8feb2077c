#pragma once

#include "preview/TWPreview.h"

#include <QList>
#include <QStringList>

// Stands in for the viewer in tests of the documents and the preferences: it records what
// they ask of the viewer, and answers relative paths the way a file base URL would.
class TWRecordingPreview : public TWPreview
{
public:
    void renderNow() override { ++renderNowCount; }
    void renderIfAutorender() override { ++directRenderRequests; }
    void fireRenderTimer() override { ++renderTimersFired; }
    void setSuspensionTime(double seconds) override { suspensionTimes << seconds; }
    void setTemplateButtonState(bool applied) override { templateButtonStates << applied; }
    void setBaseURL(const QUrl &url) override { baseURL = url; }
    void setBaseURLWithString(const QString &text) override { baseURL = QUrl(text); }
    QString relativePathToBaseURL(const QString &path) override { return path.section(QLatin1Char('/'), -1); }
    void setupAtAppLaunch() override { ++setupCount; }
    void saveWindowProperties() override { ++savedCount; }

    // Makes this the viewer that TWPreview::shared() answers, for the life of the object.
    void install()
    {
        TWPreview::setFactory([this] { return this; });
    }
    ~TWRecordingPreview() override { TWPreview::setFactory({}); }

    int renderNowCount = 0;
    int directRenderRequests = 0;
    int renderTimersFired = 0;
    QList<double> suspensionTimes;
    QList<bool> templateButtonStates;
    int setupCount = 0;
    int savedCount = 0;
    QUrl baseURL;
};
