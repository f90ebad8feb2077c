// The style-sheet window: never coloured, never renders while typing, and its state across
// launches.
#include "documents/TWCSSWindowController.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "app/TWStateKeys.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWLocalization.h"
#include "platform/TWUserDefaults.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

class tst_TWCSSWindowController : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QTemporaryDir dir;

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        viewer.install();
    }

    // Opening renders once; typing is not coloured and renders nothing: the page takes the
    // style sheet as saved. (What opening reads: tst_TWProject; saving: the Save CSS and Clear
    // Cache of tst_TWViewWindowController.)
    void openingAndTyping()
    {
        TWCSSWindowController *window = TWCSSWindowController::sharedCSSController();
        const QString path = dir.filePath(u"site.CSS"_s);
        QVERIFY(TWTestEnvironment::writeFile(path, "body {}\n"));
        const auto renders = [this] { return viewer.directRenderRequests + viewer.renderTimersFired; };
        const int before = renders();
        QVERIFY(window->openCSSFile(path));
        QCOMPARE(renders(), before + 1);
        QVERIFY(!window->textView()->tagColoring());
        QTest::keyClicks(window->textView(), u"p {}"_s);
        QCOMPARE(renders(), before + 1);
    }

    // What the window saved comes back at the next launch: its text, its file in the title,
    // and hidden when stored as "NO".
    void stateComesBackAtNextLaunch()
    {
        TWUserDefaults::standardUserDefaults()->setObject(QVariantMap{{QLatin1String(TWStateEntry::cssText), u"h1 {}\n"_s},
                                                                      {QLatin1String(TWStateEntry::cssFilename), u"/site/style.css"_s},
                                                                      {QLatin1String(TWStateEntry::showWindow), u"NO"_s}},
                                                          QLatin1String(TWWindowDefaultsKey::cssWindow));
        delete TWCSSWindowController::sharedCSSController();
        TWUserDefaults::resetStandardUserDefaults();
        TWCSSWindowController *window = TWCSSWindowController::sharedCSSController();
        QCOMPARE(window->textView()->string(), u"h1 {}\n"_s);
        QCOMPARE(window->windowTitle(), u"CSS:style.css"_s);
        window->loadCSSAtAppLaunch();
        QVERIFY(!window->isVisible());
    }
};

QTEST_MAIN(tst_TWCSSWindowController)
#include "tst_TWCSSWindowController.moc"
