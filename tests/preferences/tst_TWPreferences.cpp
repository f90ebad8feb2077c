// The preferences: defaults, the reading rule of every stored key, the stored forms written
// at save, and the suspension settings reaching the editors and the viewer.
#include "preferences/TWPreferences.h"

#include "TWRecordingPreview.h"
#include "editor/TWEditorTextView.h"
#include "platform/TWColorBytes.h"
#include "platform/TWPaths.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferenceKeys.h"

#include <QFile>
#include <QFontDatabase>
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
    if (name == QLatin1String("tagColoring")) return prefs.tagColoring();
    if (name == QLatin1String("textEncoding")) return prefs.textEncoding();
    if (name == QLatin1String("returnCode")) return prefs.returnCode();
    if (name == QLatin1String("suspendTime")) return double(prefs.suspendTime());
    if (name == QLatin1String("suspendingRender")) return prefs.isSuspendingRender();
    if (name == QLatin1String("suspendingTagColoring")) return prefs.isSuspendingTagColoring();
    if (name == QLatin1String("backgroundBytes")) return TWColorBytes::bytesFromColor(prefs.editorBGColorWithAlpha(), true);
    if (name == QLatin1String("textColorBytes")) return TWColorBytes::bytesFromColor(prefs.editorTextColor(), false);
    if (name == QLatin1String("exBrowsers")) return prefs.exBrowsers();
    if (name == QLatin1String("tagLibrary")) return prefs.tagLibraryArray().value_or(QStringLiteral("<absent>"));
    if (name == QLatin1String("editorFontPoints")) return prefs.editorFont().pointSizeF();
    qFatal("unknown preference %s", qPrintable(name));
}

} // namespace

class tst_TWPreferences : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TWUserDefaults::resetStandardUserDefaults();
        QFile::remove(TWUserDefaults::standardUserDefaults()->fileName());
        TWUserDefaults::resetStandardUserDefaults();
    }

    void emptyStoreGivesDefaults()
    {
        // Defaults are not pushed to the editors or the viewer: what they held stays.
        TWEditorTextView::setRenderSuspendFlag(false);
        TWEditorTextView::setSuspendTime(2.0f);
        TWRecordingPreview viewer;
        viewer.install();

        TWPreferences prefs;
        // The system's general font for the viewer, its fixed-pitch font for the rest, whatever
        // families the machine's font configuration makes of them.
        const QString fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont).family();
        QCOMPARE(prefs.viewerFont().family(), QFontDatabase::systemFont(QFontDatabase::GeneralFont).family());
        for (const QFont &font : {prefs.viewerFixedFont(), prefs.editorFont(), prefs.templateFont(), prefs.cssFont()})
            QCOMPARE(font.family(), fixed);
        QCOMPARE((QList<int>{prefs.viewerFontSize(), prefs.viewerFixedFontSize(), prefs.editorFontSize(),
                             prefs.templateFontSize(), prefs.cssFontSize()}),
                 (QList<int>{14, 14, 12, 12, 12}));
        QVERIFY(prefs.htmlCheckerPath().startsWith(TWApplicationDataFolder() + u'/'));
        QVERIFY(prefs.cssCheckerPath().startsWith(TWApplicationDataFolder() + u'/'));
        QVERIFY(prefs.tagColoring());
        QCOMPARE(prefs.textEncoding(), 0);
        QCOMPARE(prefs.returnCode(), 0);
        QVERIFY(prefs.isSuspendingRender() && prefs.isSuspendingTagColoring());
        QVERIFY(!prefs.exBrowsers().isEmpty());

        QVERIFY(!TWEditorTextView::renderSuspendFlag());
        QCOMPARE(TWEditorTextView::tagColoringSuspendTime(), 2.0f);
        QVERIFY(viewer.suspensionTimes.isEmpty());
        TWEditorTextView::setRenderSuspendFlag(true);
    }

    void storedValuesAreReadByTheirRules_data()
    {
        QTest::addColumn<QVariantMap>("stored");
        QTest::addColumn<QString>("preference");
        QTest::addColumn<QVariant>("expected");

        const auto row = [](const char *name, const char *storedKey, const QVariant &stored, const char *preference,
                            const QVariant &expected) {
            QTest::newRow(name) << QVariantMap{{key(storedKey), stored}} << QString::fromLatin1(preference) << expected;
        };
        // A font needs both its name and its size.
        const auto font = [](const char *name, const QVariant &family, const QVariant &size, double points) {
            QVariantMap stored;
            if (family.isValid())
                stored.insert(key(TWPreferenceKey::editorFont), family);
            if (size.isValid())
                stored.insert(key(TWPreferenceKey::editorFontSize), size);
            QTest::newRow(name) << stored << QStringLiteral("editorFontPoints") << QVariant(points);
        };
        using namespace TWPreferenceKey;
        row("base URL", defaultBaseURL, QStringLiteral("http://example.test/site/"), "defaultBaseURL",
            QStringLiteral("http://example.test/site/"));
        row("base URL of another type", defaultBaseURL, 7, "defaultBaseURL", QStringLiteral("http://localhost/"));
        row("colouring YES", tagColoring, QStringLiteral("YES"), "tagColoring", true);
        row("colouring NO", tagColoring, QStringLiteral("NO"), "tagColoring", false);
        row("colouring lower-case yes is NO", tagColoring, QStringLiteral("yes"), "tagColoring", false);
        row("colouring as a number stays", tagColoring, 1, "tagColoring", true);
        row("EUC-JP", textEncoding, QStringLiteral("EUC-JP"), "textEncoding", 1);
        row("JIS-JP", textEncoding, QStringLiteral("JIS-JP"), "textEncoding", 2);
        row("UTF-8", textEncoding, QStringLiteral("UTF-8"), "textEncoding", 3);
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
        const QString family = QFontInfo(QFont()).family();
        font("font", family, QStringLiteral("20"), 20.0);
        font("font of a fractional size", family, QStringLiteral("12.5"), 12.5);
        font("font name only", family, QVariant(), 12.0);
        font("font size only", QVariant(), QStringLiteral("20"), 12.0);
        font("font size zero keeps the size", family, QStringLiteral("0"), 12.0);
        font("unknown font family takes the size", QStringLiteral("Osaka Nowhere"), QStringLiteral("18"), 18.0);
    }

    void storedValuesAreReadByTheirRules()
    {
        QFETCH(QVariantMap, stored);
        QFETCH(QString, preference);
        QFETCH(QVariant, expected);
        for (auto it = stored.cbegin(); it != stored.cend(); ++it)
            TWUserDefaults::standardUserDefaults()->setObject(it.value(), it.key());
        TWUserDefaults::resetStandardUserDefaults(); // what the next launch reads
        TWPreferences prefs;
        const QVariant actual = current(prefs, preference);
        if (expected.typeId() == QMetaType::Double)
            QCOMPARE(actual.toDouble(), expected.toDouble());
        else
            QCOMPARE(actual, expected);
    }

    void savingWritesTheStoredForms()
    {
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->setObject(QStringLiteral("0.9"), key(TWPreferenceKey::applicationVersion));
        store->setObject(QStringLiteral("(kept)"), key(TWPreferenceKey::htmlTagLibrary));
        TWUserDefaults::resetStandardUserDefaults(); // what the next launch reads

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
        TWUserDefaults::resetStandardUserDefaults(); // what the next launch reads

        const auto stored = [](const char *name) { return TWUserDefaults::standardUserDefaults()->objectForKey(key(name)); };
        using namespace TWPreferenceKey;
        QCOMPARE(stored(applicationVersion), QVariant(QStringLiteral("1.4b3")));
        QCOMPARE(stored(editorFont), QVariant(font.family()));
        QCOMPARE(stored(editorFontSize), QVariant(QStringLiteral("12")));
        QCOMPARE(stored(textEncoding), QVariant(QStringLiteral("SJIS-JP")));
        QCOMPARE(stored(returnCode), QVariant(QStringLiteral("DOS")));
        QCOMPARE(stored(tagColoring), QVariant(QStringLiteral("NO")));
        QCOMPARE(stored(suspendRender), QVariant(QStringLiteral("YES")));
        QCOMPARE(stored(editorBackgroundColor), QVariant(QByteArray("\xff\xff\xff\xb2")));
        QCOMPARE(stored(editorTextColor), QVariant(QByteArray("\xff\x99\x7f")));
        QCOMPARE(stored(suspendTime).toFloat(), 0.3f);
        QCOMPARE(stored(externalBrowsers).toStringList(), QStringList{QStringLiteral("/usr/bin/x")});
        // Before the tag library exists, the text read at launch goes back unchanged.
        QCOMPARE(stored(htmlTagLibrary), QVariant(QStringLiteral("(kept)")));
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

    void colourBytesAreStable()
    {
        // A component read back from a byte gives that byte again, although it is kept with
        // more bits than a byte and truncated when written.
        for (int byte = 0; byte < 256; ++byte) {
            const QByteArray bytes(4, char(byte));
            QCOMPARE(TWColorBytes::bytesFromColor(*TWColorBytes::colorFromBytes(bytes, true), true), bytes);
        }
    }
};

QTEST_MAIN(tst_TWPreferences)
#include "tst_TWPreferences.moc"
