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
        QCOMPARE((QList<int>{prefs.viewerFontSize(), prefs.viewerFixedFontSize(), prefs.editorFontSize(),
                             prefs.templateFontSize(), prefs.cssFontSize()}),
                 (QList<int>{14, 14, 12, 12, 12}));
        QVERIFY(prefs.htmlCheckerPath().startsWith(TWApplicationDataFolder() + u'/')
                && prefs.cssCheckerPath().startsWith(TWApplicationDataFolder() + u'/'));
        QCOMPARE((QVariantList{prefs.tagColoring(), prefs.textEncoding(), prefs.returnCode(), prefs.isSuspendingRender(),
                               prefs.isSuspendingTagColoring()}),
                 (QVariantList{true, 0, 0, true, true}));
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
        using namespace TWPreferenceKey;
        row("base URL", defaultBaseURL, QStringLiteral("http://example.test/"), "defaultBaseURL", QStringLiteral("http://example.test/"));
        row("base URL of another type", defaultBaseURL, 7, "defaultBaseURL", QStringLiteral("http://localhost/"));
        row("colouring YES", tagColoring, QStringLiteral("YES"), "tagColoring", true);
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
        row("suspend time not a number", suspendTime, QStringLiteral("soon"), "suspendTime", double(0.3f));
        row("suspend render NO", suspendRender, QStringLiteral("NO"), "suspendingRender", false);
        row("suspend colouring other text", suspendTagColoring, QStringLiteral("maybe"), "suspendingTagColoring", false);
        row("background bytes", editorBackgroundColor, QByteArray("\x10\x20\x30\x80"), "backgroundBytes", QByteArray("\x10\x20\x30\x80"));
        row("background, 3 bytes", editorBackgroundColor, QByteArray("\x10\x20\x30"), "backgroundBytes", QByteArray("\xff\xff\xff\xb2"));
        row("text colour bytes", editorTextColor, QByteArray("\x80\x00\xff", 3), "textColorBytes", QByteArray("\x80\x00\xff", 3));
        row("text colour, 4 bytes",  editorTextColor, QByteArray("\x80\x00\xff\x00", 4), "textColorBytes", QByteArray(3, 0));
        row("browsers", externalBrowsers, QStringList{"/usr/bin/a", "/opt/b"}, "exBrowsers", QStringList{"/usr/bin/a", "/opt/b"});
        row("empty browser list empties the list", externalBrowsers, QVariantList(), "exBrowsers", QStringList());
        row("tag library text kept", htmlTagLibrary, QStringLiteral("(a, b)"), "tagLibrary", QStringLiteral("(a, b)"));
        row("tag library of another type", htmlTagLibrary, 3, "tagLibrary", QStringLiteral("<absent>"));
        // A font needs both its name and its size; a family this machine lacks still gives the size.
        const QString family = QFontInfo(QFont()).family(), points = QStringLiteral("editorFontPoints");
        QTest::newRow("font") << QVariantMap{{key(editorFont), family}, {key(editorFontSize), "12.5"}} << points << QVariant(12.5);
        QTest::newRow("font name only") << QVariantMap{{key(editorFont), family}} << points << QVariant(12.0);
        QTest::newRow("font size only") << QVariantMap{{key(editorFontSize), "20"}} << points << QVariant(12.0);
        QTest::newRow("font size zero") << QVariantMap{{key(editorFont), family}, {key(editorFontSize), "0"}} << points << QVariant(12.0);
        QTest::newRow("unknown family") << QVariantMap{{key(editorFont), "Osaka Nowhere"}, {key(editorFontSize), "18"}} << points
                                        << QVariant(18.0);
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
        QCOMPARE(current(prefs, preference), expected);
    }

    void savingWritesTheStoredForms()
    {
        TWUserDefaults::standardUserDefaults()->setObject(QStringLiteral("(kept)"), key(TWPreferenceKey::htmlTagLibrary));
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

        const TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        using namespace TWPreferenceKey;
        // Before the tag library exists, the text read at launch goes back unchanged.
        const QVariantMap expected = {{key(editorFont), font.family()}, {key(editorFontSize), "12"}, {key(textEncoding), "SJIS-JP"},
                                      {key(returnCode), "DOS"}, {key(tagColoring), "NO"}, {key(suspendRender), "YES"},
                                      {key(editorBackgroundColor), QByteArray("\xff\xff\xff\xb2")},
                                      {key(editorTextColor), QByteArray("\xff\x99\x7f")}, {key(htmlTagLibrary), "(kept)"}};
        for (auto it = expected.cbegin(); it != expected.cend(); ++it)
            QVERIFY2(store->objectForKey(it.key()) == it.value(), qPrintable(it.key()));
        QCOMPARE(store->objectForKey(key(suspendTime)).toFloat(), 0.3f);
        QCOMPARE(store->objectForKey(key(externalBrowsers)).toStringList(), QStringList{QStringLiteral("/usr/bin/x")});
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
        // What is not a time above 0 is refused before it reaches them.
        prefs.setSuspendTime(std::numeric_limits<float>::quiet_NaN());
        QCOMPARE(prefs.suspendTime(), 0.5f);
        QCOMPARE(TWEditorTextView::tagColoringSuspendTime(), 0.5f);
        QCOMPARE(viewer.suspensionTimes, QList<double>{0.5});
        QVERIFY(!TWEditorTextView::renderSuspendFlag() && !TWEditorTextView::tagColoringSuspendFlag());
    }

    void colourBytesAreStable()
    {
        // A component read back from a byte gives that byte again, although it is kept with
        // more bits than a byte and truncated when written.
        using namespace TWColorBytes;
        for (int byte = 0; byte < 256; ++byte)
            QCOMPARE(bytesFromColor(*colorFromBytes(QByteArray(4, char(byte)), true), true), QByteArray(4, char(byte)));
    }
};

QTEST_MAIN(tst_TWPreferences)
#include "tst_TWPreferences.moc"
