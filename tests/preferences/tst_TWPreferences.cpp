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

using namespace Qt::StringLiterals;

namespace {

QString key(const char *name) { return QString::fromLatin1(name); }
TWUserDefaults *store() { return TWUserDefaults::standardUserDefaults(); }

// What the preferences hold, by short names, for the data-driven tests.
QVariantMap current(const TWPreferences &prefs)
{
    return {{u"tagColoring"_s, prefs.tagColoring()}, {u"textEncoding"_s, prefs.textEncoding()}, {u"returnCode"_s, prefs.returnCode()},
            {u"suspendTime"_s, double(prefs.suspendTime())}, {u"exBrowsers"_s, prefs.exBrowsers()}, {u"baseURL"_s, prefs.defaultBaseURL()},
            {u"backgroundBytes"_s, TWColorBytes::bytesFromColor(prefs.editorBGColorWithAlpha(), true)},
            {u"textColorBytes"_s, TWColorBytes::bytesFromColor(prefs.editorTextColor(), false)},
            {u"tagLibrary"_s, prefs.tagLibraryArray().value_or(u"<absent>"_s)}, {u"editorFontPoints"_s, prefs.editorFont().pointSizeF()}};
}

// Values in the store at a launch, a preference by its short name, and what it holds then.
struct Read { QVariantMap stored; QString preference; QVariant expected; };

} // namespace

class tst_TWPreferences : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TWUserDefaults::resetStandardUserDefaults();
        QFile::remove(store()->fileName());
        TWUserDefaults::resetStandardUserDefaults();
    }

    // The checkers are looked for in the data folder, and some browser is always offered.
    // Stored suspension settings reach the editors and the viewer, and a time that is not
    // above 0 never does.
    void defaultsAndSuspension()
    {
        const TWPreferences defaults;
        QVERIFY(defaults.htmlCheckerPath().startsWith(TWApplicationDataFolder() + u'/')
                && defaults.cssCheckerPath().startsWith(TWApplicationDataFolder() + u'/') && !defaults.exBrowsers().isEmpty());
        TWRecordingPreview viewer;
        viewer.install();
        store()->setObject(0.5, key(TWPreferenceKey::suspendTime));
        store()->setObject(u"NO"_s, key(TWPreferenceKey::suspendRender));
        store()->setObject(u"NO"_s, key(TWPreferenceKey::suspendTagColoring));
        TWEditorTextView::setRenderSuspendFlag(true);
        TWEditorTextView::setTagColoringSuspendFlag(true);
        TWPreferences prefs;
        prefs.setSuspendTime(std::numeric_limits<float>::quiet_NaN());
        QCOMPARE(prefs.suspendTime(), 0.5f);
        QCOMPARE(TWEditorTextView::tagColoringSuspendTime(), 0.5f);
        QCOMPARE(viewer.suspensionTimes, QList<double>{0.5});
        QVERIFY(!TWEditorTextView::renderSuspendFlag() && !TWEditorTextView::tagColoringSuspendFlag());
    }

    void storedValuesAreReadByTheirRules_data()
    {
        QTest::addColumn<Read>("row");
        const auto row = [](const char *name, const char *storedKey, const QVariant &stored, const char *preference, const QVariant &expected) {
            QTest::newRow(name) << Read{{{key(storedKey), stored}}, key(preference), expected};
        };
        using namespace TWPreferenceKey;
        row("base URL", defaultBaseURL, u"http://example.test/"_s, "baseURL", u"http://example.test/"_s);
        // Only "YES" is yes; a value of another type is none.
        row("colouring YES", tagColoring, u"YES"_s, "tagColoring", true);
        row("colouring lower-case yes is NO", tagColoring, u"yes"_s, "tagColoring", false);
        row("colouring as a number stays", tagColoring, 1, "tagColoring", true);
        // Names by their place in the list, the last one included; others are the first.
        row("UTF-8", textEncoding, u"UTF-8"_s, "textEncoding", 3);
        row("unknown encoding name", textEncoding, u"utf-8"_s, "textEncoding", 0);
        row("DOS", returnCode, u"DOS"_s, "returnCode", 2);
        row("suspend time text", suspendTime, u"1.25"_s, "suspendTime", 1.25);
        row("suspend time zero ignored", suspendTime, 0.0, "suspendTime", double(0.3f));
        row("suspend time not a number", suspendTime, u"soon"_s, "suspendTime", double(0.3f));
        // A background colour is 4 bytes, a text colour 3; other lengths leave the default.
        row("background bytes", editorBackgroundColor, QByteArray("\x10\x20\x30\x80"), "backgroundBytes", QByteArray("\x10\x20\x30\x80"));
        row("background, 3 bytes", editorBackgroundColor, QByteArray("\x10\x20\x30"), "backgroundBytes", QByteArray("\xff\xff\xff\xb2"));
        row("text colour bytes", editorTextColor, QByteArray("\x80\x00\xff", 3), "textColorBytes", QByteArray("\x80\x00\xff", 3));
        row("text colour, 4 bytes", editorTextColor, QByteArray("\x80\x00\xff\x00", 4), "textColorBytes", QByteArray(3, 0));
        row("browsers", externalBrowsers, QStringList{u"/usr/bin/a"_s, u"/opt/b"_s}, "exBrowsers", QStringList{u"/usr/bin/a"_s, u"/opt/b"_s});
        row("empty browser list empties the list", externalBrowsers, QVariantList(), "exBrowsers", QStringList());
        row("tag library text kept", htmlTagLibrary, u"(a, b)"_s, "tagLibrary", u"(a, b)"_s);
        row("tag library of another type", htmlTagLibrary, 3, "tagLibrary", u"<absent>"_s);
        // A font needs both its name and a size above 0; a family this machine lacks still
        // gives the size.
        const QString family = QFontInfo(QFont()).family(), points = u"editorFontPoints"_s;
        QTest::newRow("font size only") << Read{{{key(editorFontSize), "20"}}, points, 12.0};
        QTest::newRow("font size zero") << Read{{{key(editorFont), family}, {key(editorFontSize), "0"}}, points, 12.0};
        QTest::newRow("unknown family") << Read{{{key(editorFont), "Osaka Nowhere"}, {key(editorFontSize), "18.5"}}, points, 18.5};
    }

    void storedValuesAreReadByTheirRules()
    {
        QFETCH(Read, row);
        for (auto it = row.stored.cbegin(); it != row.stored.cend(); ++it)
            store()->setObject(it.value(), it.key());
        TWUserDefaults::resetStandardUserDefaults(); // what the next launch reads
        QCOMPARE(current(TWPreferences()).value(row.preference), row.expected);
    }

    void savingWritesTheStoredForms()
    {
        store()->setObject(u"(kept)"_s, key(TWPreferenceKey::htmlTagLibrary));
        TWUserDefaults::resetStandardUserDefaults(); // what the next launch reads
        TWPreferences prefs;
        QFont font = prefs.editorFont();
        font.setPointSizeF(12.5);
        prefs.setEditorFont(font);
        prefs.setReturnCode(2);
        prefs.setTagColoring(false);
        prefs.setEditorTextColor(QColor::fromRgbF(1.0, 0.6, 0.5));
        prefs.savePrefs();
        TWUserDefaults::resetStandardUserDefaults(); // what the next launch reads
        using namespace TWPreferenceKey;
        // Before the tag library exists, the text read at launch goes back unchanged.
        const QVariantMap expected = {{key(editorFont), font.family()}, {key(editorFontSize), "12"}, {key(textEncoding), "SJIS-JP"},
                                      {key(returnCode), "DOS"}, {key(tagColoring), "NO"}, {key(suspendRender), "YES"},
                                      {key(editorBackgroundColor), QByteArray("\xff\xff\xff\xb2")},
                                      {key(editorTextColor), QByteArray("\xff\x99\x7f")}, {key(htmlTagLibrary), "(kept)"}};
        for (auto it = expected.cbegin(); it != expected.cend(); ++it)
            QVERIFY2(store()->objectForKey(it.key()) == it.value(), qPrintable(it.key()));
        QCOMPARE(store()->objectForKey(key(suspendTime)).toFloat(), 0.3f);
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
