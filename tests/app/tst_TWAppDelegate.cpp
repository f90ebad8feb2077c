// The application's launch and quit: the application defaults record, the launching flag,
// files handed over at launch, and everything saved at quit.
#include "app/TWAppDelegate.h"

#include "TWRecordingPreview.h"
#include "app/TWStateKeys.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "platform/TWUserDefaults.h"
#include "platform/TWXMLPropertyList.h"
#include "preferences/TWPreferences.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QTest>

namespace {

QVariantMap record(const QVariant &projectFilename)
{
    QVariantMap map;
    if (projectFilename.isValid())
        map.insert(QLatin1String(TWAppDefaultsKey::projectFilename), projectFilename);
    return map;
}

// The store as written to disk, read back as a whole.
QVariantMap storeOnDisk()
{
    QFile file(TWUserDefaults::standardUserDefaults()->fileName());
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return TWXMLPropertyList::read(file.readAll()).value_or(QVariant()).toMap();
}

} // namespace

class tst_TWAppDelegate : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;

private Q_SLOTS:
    void initTestCase()
    {
        viewer.install();
    }

    void projectFilenameComesFromTheRightRecord_data()
    {
        QTest::addColumn<QVariant>("legacy");
        QTest::addColumn<QVariant>("current");
        QTest::addColumn<QString>("expected");
        const QVariant none;
        QTest::newRow("no record") << none << none << QString();
        QTest::newRow("current only") << none << QVariant(record(QStringLiteral("/p/new.twproj")))
                                      << QStringLiteral("/p/new.twproj");
        QTest::newRow("legacy only") << QVariant(record(QStringLiteral("/p/old.twproj"))) << none
                                     << QStringLiteral("/p/old.twproj");
        QTest::newRow("both: legacy wins")
            << QVariant(record(QStringLiteral("/p/old.twproj"))) << QVariant(record(QStringLiteral("/p/new.twproj")))
            << QStringLiteral("/p/old.twproj");
        QTest::newRow("legacy without a name still wins")
            << QVariant(record(QVariant())) << QVariant(record(QStringLiteral("/p/new.twproj"))) << QString();
        QTest::newRow("name of another type") << none << QVariant(record(42)) << QString();
    }

    void projectFilenameComesFromTheRightRecord()
    {
        QFETCH(QVariant, legacy);
        QFETCH(QVariant, current);
        QFETCH(QString, expected);
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->removeObjectForKey(QLatin1String(TWAppDefaultsKey::legacyRecord));
        store->removeObjectForKey(QLatin1String(TWAppDefaultsKey::record));
        if (legacy.isValid())
            store->setObject(legacy, QLatin1String(TWAppDefaultsKey::legacyRecord));
        if (current.isValid())
            store->setObject(current, QLatin1String(TWAppDefaultsKey::record));

        delete TWAppDelegate::sharedAppDelegate();
        QCOMPARE(TWAppDelegate::sharedAppDelegate()->projectFilename(), expected);
    }

    void launchOpensFilesAndShowsTheWindowOnce()
    {
        QTemporaryDir dir;
        const QString page = dir.filePath(QStringLiteral("handed.html"));
        QFile file(page);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("<p>handed over</p>\n");
        file.close();

        const int renders = viewer.renderNowCount;
        TWAppDelegate *delegate = TWAppDelegate::sharedAppDelegate();
        QVERIFY(delegate->isLaunching());
        delegate->applicationWillFinishLaunching();
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        QVERIFY(!window->isVisible());
        QVERIFY(delegate->applicationOpenFile(page));
        QCOMPARE(window->getText(), QStringLiteral("<p>handed over</p>\n"));
        QCOMPARE(viewer.renderNowCount, renders);
        QVERIFY(delegate->isLaunching());

        delegate->applicationDidFinishLaunching();
        QVERIFY(!delegate->isLaunching());
        QVERIFY(window->isVisible());
        QCOMPARE(viewer.renderNowCount, renders + 1);
    }

    void filesAreRoutedByExtension_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("window");
        QTest::newRow("style sheet") << QStringLiteral("page.css") << QStringLiteral("css");
        QTest::newRow("style sheet, upper case") << QStringLiteral("page.CSS") << QStringLiteral("css");
        QTest::newRow("template, mixed case") << QStringLiteral("site.TwTemp") << QStringLiteral("template");
        QTest::newRow("HTML") << QStringLiteral("page.html") << QStringLiteral("html");
        QTest::newRow("text file") << QStringLiteral("page.txt") << QStringLiteral("html");
        QTest::newRow("no extension") << QStringLiteral("README") << QStringLiteral("html");
        QTest::newRow("dot in folder only") << QStringLiteral("v1.css/page") << QStringLiteral("html");
    }

    void filesAreRoutedByExtension()
    {
        QFETCH(QString, name);
        QFETCH(QString, window);
        QTemporaryDir dir;
        const QString path = dir.filePath(name);
        QDir().mkpath(QFileInfo(path).absolutePath());
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("routed text");
        file.close();

        QVERIFY(TWAppDelegate::sharedAppDelegate()->openFile(path));
        QCOMPARE(TWCSSWindowController::sharedCSSController()->cssFilename() == path, window == QLatin1String("css"));
        QCOMPARE(TWTemplateWindowController::sharedTemplateController()->templateFilename() == path,
                 window == QLatin1String("template"));
        QCOMPARE(TWEditWindowController::sharedEditWindowController()->htmlFilename() == path,
                 window == QLatin1String("html"));
    }

    void quitSavesPreferencesRecordAndWindows()
    {
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        const QVariantMap legacy = record(QStringLiteral("/p/legacy.twproj"));
        store->setObject(legacy, QLatin1String(TWAppDefaultsKey::legacyRecord));
        store->setObject(QStringLiteral("0.1"), QStringLiteral("Application Version"));
        store->synchronize();
        delete TWAppDelegate::sharedAppDelegate();

        TWEditWindowController::sharedEditWindowController()->loadHTML(QStringLiteral("<p>typed before quitting</p>"));
        TWAppDelegate::sharedAppDelegate()->applicationWillTerminate();

        // Only the current record is written; it carries the name the older one gave.
        const QVariantMap disk = storeOnDisk();
        QCOMPARE(disk.value(QStringLiteral("Application Version")).toString(), QStringLiteral("1.4b3"));
        QCOMPARE(disk.value(QLatin1String(TWAppDefaultsKey::record)).toMap(), legacy);
        QCOMPARE(disk.value(QLatin1String(TWAppDefaultsKey::legacyRecord)).toMap(), legacy);
        QCOMPARE(disk.value(QLatin1String(TWWindowDefaultsKey::editorWindow)).toMap().value(QLatin1String(TWStateEntry::htmlText)).toString(),
                 QStringLiteral("<p>typed before quitting</p>"));
        QVERIFY(disk.value(QLatin1String(TWWindowDefaultsKey::templateWindow)).toMap().contains(QLatin1String(TWStateEntry::templateText)));
        QVERIFY(disk.value(QLatin1String(TWWindowDefaultsKey::cssWindow)).toMap().contains(QLatin1String(TWStateEntry::cssText)));
    }
};

QTEST_MAIN(tst_TWAppDelegate)
#include "tst_TWAppDelegate.moc"
