// The preferences: defaults, the reading rule of every stored key, the stored forms written
// at save, and the suspension settings reaching the editors and the viewer.
#include "preferences/TWPreferences.h"

#include "TWRecordingPreview.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWColorBytes.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferenceKeys.h"

#include <QFile>
#include <QFontInfo>
#include <QTest>

namespace {

QString key(const char *name)
{
    return QString::fromLatin1(name);
}

// What a preference holds, by a short name, for the data-driven tests.
QVariant current(const TWPreferences &prefs, const QString &name)
{
    if (name == QLatin1String("defaultBaseURL")) return prefs.defaultBaseURL();
    if (name == QLatin1String("htmlCheckerPath")) return prefs.htmlCheckerPath();
    if (name == QLatin1String("cssCheckerOptions")) return prefs.cssCheckerOptions();
    if (name == QLatin1String("tagColoring")) return prefs.tagColoring();
    if (name == QLatin1String("textEncoding")) return prefs.textEncoding();
    if (name == QLatin1String("returnCode")) return prefs.returnCode();
    if (name == QLatin1String("suspendTime")) return double(prefs.suspendTime());
    if (name == QLatin1String("suspendingRender")) return prefs.isSuspendingRender();
    if (name == QLatin1String("suspendingTagColoring")) return prefs.isSuspendingTagColoring();
    if (name == QLatin1String("backgroundBytes")) return TWColorBytes::bytesFromColor(prefs.editorBGColorWithAlpha(), true);
    if (name == QLatin1String("textColorBytes")) return TWColorBytes::bytesFromColor(prefs.editorTextColor(), false);
    if (name == QLatin1String("exBrowsers")) return prefs.exBrowsers();
    if (name == QLatin1String("editorFontSize")) return prefs.editorFontSize();
    if (name == QLatin1String("editorFontPoints")) return prefs.editorFont().pointSizeF();
    if (name == QLatin1String("tagLibrary")) return prefs.tagLibraryArray().value_or(QStringLiteral("<absent>"));
    qFatal("unknown preference %s", qPrintable(name));
}

} // namespace

class tst_TWPreferences : public QObject
{
    Q_OBJECT

private:
    // A fresh launch: the store as it is on disk, read by a new preferences object.
    void relaunchStore()
    {
        TWUserDefaults::resetStandardUserDefaults();
    }

private Q_SLOTS:
    void init()
    {
        TWUserDefaults::resetStandardUserDefaults();
        QFile::remove(TWUserDefaults::standardUserDefaults()->fileName());
        TWUserDefaults::resetStandardUserDefaults();
    }

    void emptyStoreGivesDefaults()
    {
        // Defaults are not pushed to the editors: what they held stays.
        TWEditorTextView::setRenderSuspendFlag(false);
        TWEditorTextView::setSuspendTime(2.0f);
        TWRecordingPreview viewer;
        viewer.install();

        TWPreferences prefs;
        QCOMPARE(prefs.defaultBaseURL(), QStringLiteral("http://localhost/"));
        QVERIFY(prefs.htmlCheckerPath().endsWith(QLatin1String("/Tagwright/htmllint/htmllint")));
        QCOMPARE(prefs.htmlCheckerOptions(), QStringLiteral("-w short"));
        QVERIFY(prefs.cssCheckerPath().endsWith(QLatin1String("/Tagwright/css-validator/validator.sh")));
        QCOMPARE(prefs.cssCheckerOptions(), QString());
        QCOMPARE(prefs.viewerFontSize(), 14);
        QCOMPARE(prefs.viewerFixedFontSize(), 14);
        QCOMPARE(prefs.editorFontSize(), 12);
        QCOMPARE(prefs.templateFontSize(), 12);
        QCOMPARE(prefs.cssFontSize(), 12);
        QVERIFY(QFontInfo(prefs.editorFont()).fixedPitch());
        QVERIFY(prefs.tagColoring());
        QCOMPARE(prefs.textEncoding(), 0);
        QCOMPARE(prefs.returnCode(), 0);
        QCOMPARE(TWColorBytes::bytesFromColor(prefs.editorBGColorWithAlpha(), true), QByteArray("\xff\xff\xff\xb2"));
        QCOMPARE(prefs.editorTextColor(), QColor(Qt::black));
        QVERIFY(prefs.isSuspendingRender());
        QVERIFY(prefs.isSuspendingTagColoring());
        QCOMPARE(prefs.suspendTime(), 0.3f);
        QVERIFY(!prefs.exBrowsers().isEmpty());
        QVERIFY(!prefs.tagLibraryArray().has_value());

        QCOMPARE(TWEditorTextView::renderSuspendFlag(), false);
        QCOMPARE(TWEditorTextView::tagColoringSuspendTime(), 2.0f);
        QVERIFY(viewer.suspensionTimes.isEmpty());
        TWEditorTextView::setRenderSuspendFlag(true);
    }

    void storedValuesAreReadByTheirRules_data()
    {
        QTest::addColumn<QString>("storedKey");
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<QString>("preference");
        QTest::addColumn<QVariant>("expected");

        const auto row = [](const char *name, const char *storedKey, const QVariant &stored, const char *preference,
                            const QVariant &expected) {
            QTest::newRow(name) << key(storedKey) << stored << QString::fromLatin1(preference) << expected;
        };
        using namespace TWPreferenceKey;
        row("base URL", defaultBaseURL, QStringLiteral("http://example.test/site/"), "defaultBaseURL",
            QStringLiteral("http://example.test/site/"));
        row("base URL of another type", defaultBaseURL, 7, "defaultBaseURL", QStringLiteral("http://localhost/"));
        row("checker path", htmlCheckerPath, QStringLiteral("/opt/lint"), "htmlCheckerPath", QStringLiteral("/opt/lint"));
        row("empty checker options", cssCheckerOptions, QStringLiteral(""), "cssCheckerOptions", QString());
        row("colouring YES", tagColoring, QStringLiteral("YES"), "tagColoring", true);
        row("colouring NO", tagColoring, QStringLiteral("NO"), "tagColoring", false);
        row("colouring lower-case yes is NO", tagColoring, QStringLiteral("yes"), "tagColoring", false);
        row("colouring as a number stays", tagColoring, 1, "tagColoring", true);
        row("EUC-JP", textEncoding, QStringLiteral("EUC-JP"), "textEncoding", 1);
        row("JIS-JP", textEncoding, QStringLiteral("JIS-JP"), "textEncoding", 2);
        row("UTF-8", textEncoding, QStringLiteral("UTF-8"), "textEncoding", 3);
        row("SJIS-JP", textEncoding, QStringLiteral("SJIS-JP"), "textEncoding", 0);
        row("unknown encoding name", textEncoding, QStringLiteral("KOI8-R"), "textEncoding", 0);
        row("LF", returnCode, QStringLiteral("LF"), "returnCode", 1);
        row("DOS", returnCode, QStringLiteral("DOS"), "returnCode", 2);
        row("lower-case lf", returnCode, QStringLiteral("lf"), "returnCode", 0);
        row("suspend time number", suspendTime, 0.5, "suspendTime", 0.5);
        row("suspend time text", suspendTime, QStringLiteral("1.25"), "suspendTime", 1.25);
        row("suspend time zero ignored", suspendTime, 0.0, "suspendTime", double(0.3f));
        row("suspend time negative ignored", suspendTime, -2.0, "suspendTime", double(0.3f));
        row("suspend time not a number", suspendTime, QStringLiteral("soon"), "suspendTime", double(0.3f));
        row("suspend render NO", suspendRender, QStringLiteral("NO"), "suspendingRender", false);
        row("suspend colouring other text", suspendTagColoring, QStringLiteral("maybe"), "suspendingTagColoring", false);
        row("background bytes", editorBackgroundColor, QByteArray("\x10\x20\x30\x80", 4), "backgroundBytes",
            QByteArray("\x10\x20\x30\x80", 4));
        row("background of three bytes keeps default", editorBackgroundColor, QByteArray("\x10\x20\x30", 3),
            "backgroundBytes", QByteArray("\xff\xff\xff\xb2", 4));
        row("text colour bytes", editorTextColor, QByteArray("\x80\x00\xff", 3), "textColorBytes",
            QByteArray("\x80\x00\xff", 3));
        row("text colour of four bytes keeps default", editorTextColor, QByteArray("\x80\x00\xff\x00", 4),
            "textColorBytes", QByteArray("\x00\x00\x00", 3));
        row("browsers", externalBrowsers, QStringList{QStringLiteral("/usr/bin/a"), QStringLiteral("/opt/b")},
            "exBrowsers", QStringList{QStringLiteral("/usr/bin/a"), QStringLiteral("/opt/b")});
        row("empty browser list empties the list", externalBrowsers, QVariantList(), "exBrowsers", QStringList());
        row("tag library text kept", htmlTagLibrary, QStringLiteral("(a, b)"), "tagLibrary", QStringLiteral("(a, b)"));
        row("tag library of another type", htmlTagLibrary, 3, "tagLibrary", QStringLiteral("<absent>"));
    }

    void storedValuesAreReadByTheirRules()
    {
        QFETCH(QString, storedKey);
        QFETCH(QVariant, stored);
        QFETCH(QString, preference);
        QFETCH(QVariant, expected);

        TWUserDefaults::standardUserDefaults()->setObject(stored, storedKey);
        TWUserDefaults::standardUserDefaults()->synchronize();
        relaunchStore();
        TWPreferences prefs;
        const QVariant actual = current(prefs, preference);
        if (expected.typeId() == QMetaType::Double)
            QCOMPARE(actual.toDouble(), expected.toDouble());
        else
            QCOMPARE(actual, expected);
    }

    void fontsNeedBothNameAndSize_data()
    {
        QTest::addColumn<QVariant>("name");
        QTest::addColumn<QVariant>("size");
        QTest::addColumn<double>("expectedPoints");
        const QString family = QFontInfo(QFont()).family();
        QTest::newRow("both") << QVariant(family) << QVariant(QStringLiteral("20")) << 20.0;
        QTest::newRow("fractional size") << QVariant(family) << QVariant(QStringLiteral("12.5")) << 12.5;
        QTest::newRow("name only") << QVariant(family) << QVariant() << 12.0;
        QTest::newRow("size only") << QVariant() << QVariant(QStringLiteral("20")) << 12.0;
        QTest::newRow("size zero keeps size") << QVariant(family) << QVariant(QStringLiteral("0")) << 12.0;
        QTest::newRow("unknown family takes size") << QVariant(QStringLiteral("Osaka Nowhere")) << QVariant(QStringLiteral("18")) << 18.0;
    }

    void fontsNeedBothNameAndSize()
    {
        QFETCH(QVariant, name);
        QFETCH(QVariant, size);
        QFETCH(double, expectedPoints);
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        if (name.isValid())
            store->setObject(name, key(TWPreferenceKey::editorFont));
        if (size.isValid())
            store->setObject(size, key(TWPreferenceKey::editorFontSize));
        TWPreferences prefs;
        QCOMPARE(prefs.editorFont().pointSizeF(), expectedPoints);
        QVERIFY(!prefs.editorFont().family().isEmpty());
    }

    void savingWritesTheStoredForms()
    {
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->setObject(QStringLiteral("0.9"), key(TWPreferenceKey::applicationVersion));
        store->setObject(QStringLiteral("(kept)"), key(TWPreferenceKey::htmlTagLibrary));
        relaunchStore();

        TWPreferences prefs;
        QFont font = prefs.editorFont();
        font.setPointSizeF(12.5);
        prefs.setEditorFont(font);
        prefs.setTextEncoding(7);
        prefs.setReturnCode(2);
        prefs.setTagColoring(false);
        prefs.setEditorTextColor(QColor::fromRgbF(1.0, 0.6, 0.5));
        prefs.setExBrowsers({QStringLiteral("/usr/bin/x")});
        prefs.savePrefs();
        relaunchStore();

        store = TWUserDefaults::standardUserDefaults();
        QCOMPARE(store->stringForKey(key(TWPreferenceKey::applicationVersion)), std::optional<QString>(QStringLiteral("1.4b3")));
        QCOMPARE(store->stringForKey(key(TWPreferenceKey::editorFontSize)), std::optional<QString>(QStringLiteral("12")));
        QCOMPARE(store->stringForKey(key(TWPreferenceKey::editorFont)), std::optional<QString>(font.family()));
        QCOMPARE(store->stringForKey(key(TWPreferenceKey::textEncoding)), std::optional<QString>(QStringLiteral("SJIS-JP")));
        QCOMPARE(store->stringForKey(key(TWPreferenceKey::returnCode)), std::optional<QString>(QStringLiteral("DOS")));
        QCOMPARE(store->stringForKey(key(TWPreferenceKey::tagColoring)), std::optional<QString>(QStringLiteral("NO")));
        QCOMPARE(store->stringForKey(key(TWPreferenceKey::suspendRender)), std::optional<QString>(QStringLiteral("YES")));
        QCOMPARE(store->dataForKey(key(TWPreferenceKey::editorBackgroundColor)),
                 std::optional<QByteArray>(QByteArray("\xff\xff\xff\xb2")));
        QCOMPARE(store->dataForKey(key(TWPreferenceKey::editorTextColor)),
                 std::optional<QByteArray>(QByteArray("\xff\x99\x7f")));
        QCOMPARE(store->objectForKey(key(TWPreferenceKey::suspendTime)).toFloat(), 0.3f);
        QCOMPARE(store->objectForKey(key(TWPreferenceKey::externalBrowsers)).toStringList(), QStringList{QStringLiteral("/usr/bin/x")});
        QCOMPARE(store->stringForKey(key(TWPreferenceKey::htmlTagLibrary)), std::optional<QString>(QStringLiteral("(kept)")));

        // And a new launch reads back what was saved; 12.5 pt comes back as 12 pt.
        TWPreferences again;
        QCOMPARE(again.editorFont().pointSizeF(), 12.0);
        QCOMPARE(again.returnCode(), 2);
        QCOMPARE(again.textEncoding(), 0);
        QVERIFY(!again.tagColoring());
    }

    void suspensionReachesEditorsAndViewer()
    {
        TWRecordingPreview viewer;
        viewer.install();
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->setObject(0.5, key(TWPreferenceKey::suspendTime));
        store->setObject(QStringLiteral("NO"), key(TWPreferenceKey::suspendRender));
        store->setObject(QStringLiteral("NO"), key(TWPreferenceKey::suspendTagColoring));

        TWPreferences prefs;
        QCOMPARE(TWEditorTextView::tagColoringSuspendTime(), 0.5f);
        QCOMPARE(viewer.suspensionTimes, QList<double>{0.5});
        QVERIFY(!TWEditorTextView::renderSuspendFlag());
        QVERIFY(!TWEditorTextView::tagColoringSuspendFlag());

        prefs.setSuspendTime(0.0f);
        prefs.setSuspendTime(-1.0f);
        prefs.setSuspendTime(std::numeric_limits<float>::quiet_NaN());
        QCOMPARE(prefs.suspendTime(), 0.5f);
        QCOMPARE(TWEditorTextView::tagColoringSuspendTime(), 0.5f);
        QCOMPARE(viewer.suspensionTimes.size(), 1);

        prefs.setSuspendTime(1.5f);
        QCOMPARE(TWEditorTextView::tagColoringSuspendTime(), 1.5f);
        QCOMPARE(viewer.suspensionTimes.last(), 1.5);
        prefs.setSuspendingRender(true);
        prefs.setSuspendingTagColoring(true);
        QVERIFY(TWEditorTextView::renderSuspendFlag());
        QVERIFY(TWEditorTextView::tagColoringSuspendFlag());
    }

    void backgroundSettersKeepTheOtherPart()
    {
        TWPreferences prefs;
        prefs.setEditorBGColor(QColor::fromRgbF(0.0, 0.5, 1.0, 0.2));
        QCOMPARE(TWColorBytes::bytesFromColor(prefs.editorBGColorWithAlpha(), true), QByteArray("\x00\x7f\xff\xb2", 4));
        QCOMPARE(prefs.editorBGColor().alphaF(), 1.0f);
        prefs.setEditorBGAlpha(0.5f);
        QCOMPARE(TWColorBytes::bytesFromColor(prefs.editorBGColorWithAlpha(), true), QByteArray("\x00\x7f\xff\x7f", 4));
    }

    void colourBytesAreStableAndTruncated()
    {
        for (int byte = 0; byte < 256; ++byte) {
            const QByteArray bytes(3, char(byte));
            QCOMPARE(TWColorBytes::bytesFromColor(*TWColorBytes::colorFromBytes(bytes, false), false), bytes);
        }
        QCOMPARE(TWColorBytes::byteFromComponent(0.7), 178);
        QCOMPARE(TWColorBytes::byteFromComponent(0.6), 153);
        QCOMPARE(TWColorBytes::byteFromComponent(0.5), 127);
        QCOMPARE(TWColorBytes::byteFromComponent(1.0), 255);
        QCOMPARE(TWColorBytes::byteFromComponent(0.0), 0);
        // Alpha 178/255 reads back as about 0.698.
        QVERIFY(qAbs(TWColorBytes::colorFromBytes(QByteArray("\xff\xff\xff\xb2"), true)->alphaF() - 0.698) < 0.001);
        QVERIFY(!TWColorBytes::colorFromBytes(QByteArray("\xff\xff"), false));
        QVERIFY(!TWColorBytes::colorFromBytes(QByteArray(), true));
    }
};

QTEST_MAIN(tst_TWPreferences)
#include "tst_TWPreferences.moc"
