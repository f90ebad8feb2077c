// The application as a whole: at quit, the application defaults record, old and new, and the
// version; an English text for every text key; the order of its windows. (The launch:
// tst_TWProject; a quit that cannot write the store: tst_TWRecoveryCopy.)
#include "app/TWAppDelegate.h"

#include "TWTestEnvironment.h"
#include "TWRecordingPreview.h"
#include "app/TWStateKeys.h"
#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"
#include "platform/TWUserDefaults.h"
#include "platform/TWWindowOrder.h"
#include "platform/TWXMLPropertyList.h"
#include "preferences/TWPreferenceKeys.h"

#include <QApplication>
#include <QTest>

#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 30000;
// The older and the current application defaults record in the store (invalid: none), and the
// project file name they give.
struct Records { QVariant legacy; QVariant current; QString projectFilename; QString lineNumbers = QStringLiteral("YES"); };

} // namespace

class tst_TWAppDelegate : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;

private Q_SLOTS:
    void initTestCase() { viewer.install(); }

    // The project file name and whether line numbers show come from the older record when
    // there is one, even without a name, else from the current one; at quit only the current
    // record is written, with this version. (The windows' state written at quit: e2e_restore.sh.)
    void quitSavesPreferencesAndRecord_data()
    {
        QTest::addColumn<Records>("row");
        const auto record = [](const QVariant &name) { return QVariant(QVariantMap{{QLatin1String(TWAppDefaultsKey::projectFilename), name}}); };
        QTest::newRow("no record") << Records{{}, {}, {}};
        QTest::newRow("current only") << Records{{}, record(u"/p/new.twproj"_s), u"/p/new.twproj"_s};
        QTest::newRow("both: legacy wins") << Records{record(u"/p/old.twproj"_s), record(u"/p/new.twproj"_s), u"/p/old.twproj"_s};
        QTest::newRow("legacy without a name still wins") << Records{QVariantMap(), record(u"/p/new.twproj"_s), {}};
        QTest::newRow("name of another type") << Records{{}, record(42), {}};
        // Line numbers stay hidden only where the record says "NO".
        for (const char *shown : {"NO", "no"})
            QTest::addRow("line numbers %s", shown)
                << Records{{}, QVariantMap{{QLatin1String(TWAppDefaultsKey::lineNumbers), shown}}, {}, shown == "NO"_L1 ? u"NO"_s : u"YES"_s};
    }

    void quitSavesPreferencesAndRecord()
    {
        QFETCH(Records, row);
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        for (const auto &[key, value] : {std::pair{TWAppDefaultsKey::legacyRecord, row.legacy}, {TWAppDefaultsKey::record, row.current}})
            value.isValid() ? store->setObject(value, QLatin1String(key)) : store->removeObjectForKey(QLatin1String(key));
        store->setObject(u"0.1"_s, QLatin1String(TWPreferenceKey::applicationVersion));
        delete TWAppDelegate::sharedAppDelegate();
        TWAppDelegate::sharedAppDelegate()->applicationWillTerminate();
        const QVariantMap disk = TWXMLPropertyList::read(TWTestEnvironment::readFile(store->fileName())).value_or(QVariant()).toMap();
        QCOMPARE(disk.value(QLatin1String(TWPreferenceKey::applicationVersion)).toString(), QString::fromLatin1(TWApplicationVersion));
        QCOMPARE(disk.value(QLatin1String(TWAppDefaultsKey::record)).toMap().value(QLatin1String(TWAppDefaultsKey::projectFilename)),
                 QVariant(row.projectFilename));
        QCOMPARE(disk.value(QLatin1String(TWAppDefaultsKey::record)).toMap().value(QLatin1String(TWAppDefaultsKey::lineNumbers)).toString(),
                 row.lineNumbers);
        QCOMPARE(disk.value(QLatin1String(TWAppDefaultsKey::legacyRecord)), row.legacy);
    }

    // Every text key used by the application has an English text; the one text with a number
    // in it says it in the form for the number.
    void everyTextKeyHasAnEnglishText()
    {
        QVERIFY(TWInstallTranslations(QCoreApplication::instance()));
        for (std::string_view key : TWTextKey::all) {
            const QByteArray name(key.data(), qsizetype(key.size()));
            QVERIFY2(TWLocalizedString(name.constData()) != QLatin1String(name), name.constData());
        }
        QCOMPARE(TWLocalizedString(TWTextKey::xPlacesAreReplaced, 3), u"3 places were replaced."_s);
        QCOMPARE(TWLocalizedString(TWTextKey::xPlacesAreReplaced, 1), u"1 place was replaced."_s);
    }

    // Windows are ordered by their last activation, a closed one leaves the order; minimised
    // windows are not visible. (Choosing the document window by this order, the visible ones
    // and not the hidden: tst_TWEditorTextView.)
    void windowsInTheOrderOfTheirActivation()
    {
        QWidget first, second;
        auto closed = std::make_unique<QWidget>();
        for (QWidget *window : {&first, &second, closed.get()}) {
            window->show();
            QVERIFY(QTest::qWaitForWindowExposed(window));
            QApplication::setActiveWindow(window);
            TW_TRY_COMPARE_WITH_TIMEOUT(TWWindowOrder::shared()->orderedWindows().first(), window, patience);
        }
        closed.reset();
        QCOMPARE(TWWindowOrder::shared()->orderedWindows().mid(0, 2), (QList<QWidget *>{&second, &first}));
        first.showMinimized();
        QVERIFY(!TWWindowOrder::isWindowVisible(&first));
    }
};

QTEST_MAIN(tst_TWAppDelegate)
#include "tst_TWAppDelegate.moc"
