// The application's launch and quit: the launching flag, files handed over at launch, the
// application defaults record, and everything saved at quit.
#include "app/TWAppDelegate.h"

#include "TWTestEnvironment.h"
#include "TWRecordingPreview.h"
#include "app/TWStateKeys.h"
#include "editor/TWEditWindowController.h"
#include "platform/TWUserDefaults.h"
#include "platform/TWXMLPropertyList.h"
#include "preferences/TWPreferenceKeys.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

namespace {

QVariant record(const QVariant &projectFilename)
{
    return projectFilename.isValid() ? QVariantMap{{QLatin1String(TWAppDefaultsKey::projectFilename), projectFilename}}
                                     : QVariantMap();
}

// The store as written to disk, read back as a whole.
QVariantMap storeOnDisk()
{
    QFile file(TWUserDefaults::standardUserDefaults()->fileName());
    return TWXMLPropertyList::read(file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray()).value_or(QVariant()).toMap();
}

} // namespace

class tst_TWAppDelegate : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QTemporaryDir dir;

private Q_SLOTS:
    void initTestCase()
    {
        viewer.install();
    }

    // A file handed over at launch opens before the windows show; the page renders once, when
    // the launch ends. (Which window a file opens in: tst_TWProject.)
    void launchOpensFilesAndShowsThePageOnce()
    {
        const QString page = dir.filePath(QStringLiteral("page.html"));
        QVERIFY(TWTestEnvironment::writeFile(page, "<p>handed over</p>\n"));
        const int renders = viewer.renderNowCount;
        TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
        delegate->applicationWillFinishLaunching();
        QVERIFY(delegate->applicationOpenFile(page));
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        QCOMPARE(window->getText(), QStringLiteral("<p>handed over</p>\n"));
        QVERIFY(!window->isVisible());
        QCOMPARE(viewer.renderNowCount, renders);
        QVERIFY(delegate->isLaunching());

        delegate->applicationDidFinishLaunching();
        QVERIFY(!delegate->isLaunching());
        QVERIFY(window->isVisible());
        QCOMPARE(viewer.renderNowCount, renders + 1);
    }

    // The project file name comes from the older record when there is one, even without a
    // name, else from the current one; at quit only the current record is written.
    void quitSavesPreferencesRecordAndWindows_data()
    {
        QTest::addColumn<QVariant>("legacy");
        QTest::addColumn<QVariant>("current");
        QTest::addColumn<QString>("projectFilename");
        const QVariant none;
        QTest::newRow("no record") << none << none << QString();
        QTest::newRow("current only") << none << record(QStringLiteral("/p/new.twproj"))
                                      << QStringLiteral("/p/new.twproj");
        QTest::newRow("both: legacy wins") << record(QStringLiteral("/p/old.twproj")) << record(QStringLiteral("/p/new.twproj"))
                                           << QStringLiteral("/p/old.twproj");
        QTest::newRow("legacy without a name still wins")
            << record(none) << record(QStringLiteral("/p/new.twproj")) << QString();
        QTest::newRow("name of another type") << none << record(42) << QString();
    }

    void quitSavesPreferencesRecordAndWindows()
    {
        QFETCH(QVariant, legacy);
        QFETCH(QVariant, current);
        QFETCH(QString, projectFilename);
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->removeObjectForKey(QLatin1String(TWAppDefaultsKey::legacyRecord));
        store->removeObjectForKey(QLatin1String(TWAppDefaultsKey::record));
        if (legacy.isValid())
            store->setObject(legacy, QLatin1String(TWAppDefaultsKey::legacyRecord));
        if (current.isValid())
            store->setObject(current, QLatin1String(TWAppDefaultsKey::record));
        store->setObject(QStringLiteral("0.1"), QLatin1String(TWPreferenceKey::applicationVersion));
        delete TWAppDelegate::sharedAppDelegate();
        TWEditWindowController::sharedEditWindowController()->loadHTML(QStringLiteral("<p>typed before quitting</p>"));
        TWAppDelegate::sharedAppDelegate()->applicationWillTerminate();
        const QVariantMap disk = storeOnDisk();
        QCOMPARE(disk.value(QLatin1String(TWPreferenceKey::applicationVersion)).toString(), QStringLiteral("1.4b3"));
        QCOMPARE(disk.value(QLatin1String(TWAppDefaultsKey::record)).toMap().value(QLatin1String(TWAppDefaultsKey::projectFilename)),
                 QVariant(projectFilename));
        QCOMPARE(disk.value(QLatin1String(TWAppDefaultsKey::legacyRecord)), legacy);
        QCOMPARE(disk.value(QLatin1String(TWWindowDefaultsKey::editorWindow)).toMap().value(QLatin1String(TWStateEntry::htmlText)).toString(),
                 QStringLiteral("<p>typed before quitting</p>"));
        QVERIFY(disk.value(QLatin1String(TWWindowDefaultsKey::templateWindow)).toMap().contains(QLatin1String(TWStateEntry::templateText)));
        QVERIFY(disk.value(QLatin1String(TWWindowDefaultsKey::cssWindow)).toMap().contains(QLatin1String(TWStateEntry::cssText)));
    }
};

QTEST_MAIN(tst_TWAppDelegate)
#include "tst_TWAppDelegate.moc"
