#pragma once

#include "preview/TWPreview.h"

#include <QMainWindow>
#include <QPointF>
#include <QUrl>
#include <QVariantMap>

#include <optional>

namespace Ui {
class TWViewWindow;
}
class QLabel;
class QProgressBar;
class QWebEngineLoadingInfo;
class QWebEngineView;
class TWRenderControl;

// The viewer window: the page being written, rendered by the browser engine. It decides when
// to render (at once, after the user stops typing, or not by itself), composes the page with
// the template and base URL, applies the style sheet, keeps the reader's scroll position
// across renders, reloads from the temporary page file bypassing the cache, and opens the
// page in external browsers.
class TWViewWindowController : public QMainWindow, public TWPreview
{
    Q_OBJECT
public:
    static TWViewWindowController *sharedViewWindowController();
    ~TWViewWindowController() override;

    // Rendering
    void renderNow() override;
    void render(const QString &page);
    void renderIfAutorender() override;
    void fireRenderTimer() override;
    double suspensionTime() const;
    void setSuspensionTime(double seconds) override;
    int timerCount() const;
    void stopRendering();
    void clearCache();
    // Writes the temporary page file and answers its path.
    QString generateReloadingFile() const;
    void viewOnApp(const QString &application);

    // Option flags
    bool autoRender() const;
    void setAutoRender(bool flag);
    void toggleAutoRender();
    bool applyCSS() const { return applyCSSFlag; }
    void setApplyCSS(bool flag);
    void toggleApplyCSS();
    bool lineBreakValidation() const { return lineBreakValidationFlag; }
    void setLineBreakValidation(bool flag);
    void toggleLineBreakValidation();
    // Button states are the inverse of the flags: pressed means off.
    void setTemplateButtonState(bool templateApplied) override;
    void setCSSButtonState(bool flag);
    void setAutoRenderButtonState(bool flag);
    void setLbValidationButtonState(bool flag);

    // Base URL
    const std::optional<QUrl> &baseURL() const { return baseURLValue; }
    void setBaseURL(const QUrl &url) override;
    void clearBaseURL();
    void setBaseURLWithString(const QString &text) override;
    QString relativePathToBaseURL(const QString &path) override;
    void inputBaseURL();
    // The choose-file panel for the base URL; a choice of other than one file says so.
    void setFilePath();
    void choseBaseURLFiles(const QStringList &paths);

    // Life cycle
    void setupAtAppLaunch() override;
    void clearWithProject();
    void saveWindowProperties() override;
    // The viewer's part of a project: the base URL and the three flags.
    void saveDataToDictionary(QVariantMap &project) const;
    void loadDataFromDictionary(const std::optional<QVariantMap> &project);
    // Around a change of every window at once: requests wait, and the release renders once
    // if rendering is due.
    void holdRenders();
    void releaseRenders();
    void showWindow();

    QWebEngineView *webView() const { return webViewValue; }
    QString statusText() const;
    // From the moment a page is requested until the engine has finished loading.
    bool isLoading() const { return loading; }

Q_SIGNALS:
    // A page was handed to the engine: a render, or a reload from the temporary page file.
    void pageRequested();
    // The engine has finished loading, well or with an error shown in the status text.
    void loadEnded(bool succeeded);

private:
    TWViewWindowController();
    void awakeFromNib();
    void loadRequested();
    void loadStarted();
    void loadingChanged(const QWebEngineLoadingInfo &info);
    void receivedError(const QString &description);
    void loadComplete();
    void didReceiveTitle();
    void showTitle(const QString &title);
    void installUserStyleSheet();
    QVariantMap saveData() const;

    Ui::TWViewWindow *ui;
    QWebEngineView *webViewValue;
    QLabel *statusBarText;
    QProgressBar *progressIndicator;
    TWRenderControl *control;
    // The reader's position, taken when a load starts and given back when it completes.
    std::optional<QPointF> scrollPosition;
    std::optional<QUrl> baseURLValue;
    bool applyCSSFlag = false;
    // The style sheet text the pages get; none when it is not applied or cannot be read.
    std::optional<QString> installedStyleSheet;
    bool lineBreakValidationFlag = false;
    // A page too large to hand over directly, written into the document once it exists.
    QString pendingPage;
    bool loading = false;
};
