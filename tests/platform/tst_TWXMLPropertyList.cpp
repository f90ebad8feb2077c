// XML property lists: every kind of value survives a round trip, hand-written documents are
// read, and hostile input fails cleanly.
#include "platform/TWXMLPropertyList.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QTest>

namespace {

QByteArray document(const QByteArray &body)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" \"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n"
        + body + "\n</plist>\n";
}

QByteArray allBytes()
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes.append(char(i));
    return bytes;
}

} // namespace

class tst_TWXMLPropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesRoundTrip_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("string") << QVariant(QStringLiteral("plain"));
        QTest::newRow("markup and quotes") << QVariant(QStringLiteral("<p class=\"a\">&amp; 'x' \\ </p>"));
        QTest::newRow("line breaks and tabs") << QVariant(QStringLiteral("a\nb\r\nc\td\n"));
        QTest::newRow("non-ASCII") << QVariant(QString::fromUtf8("日本語 – ü 😀"));
        QTest::newRow("empty string") << QVariant(QString(QLatin1String("")));
        QTest::newRow("leading and trailing blanks") << QVariant(QStringLiteral("  padded  "));
        QTest::newRow("all bytes as data") << QVariant(allBytes());
        QTest::newRow("empty data") << QVariant(QByteArray());
        QTest::newRow("integer") << QVariant(qlonglong(-9007199254740993LL));
        QTest::newRow("real") << QVariant(0.1);
        QTest::newRow("true") << QVariant(true);
        QTest::newRow("false") << QVariant(false);
        QTest::newRow("date") << QVariant(QDateTime(QDate(2026, 11, 23), QTime(1, 2, 3), Qt::UTC));
        QTest::newRow("empty dict") << QVariant(QVariantMap());
        QTest::newRow("empty array") << QVariant(QVariantList());

        QVariantMap window;
        window.insert(QStringLiteral("HTML Text"), QString::fromUtf8("<p>日本</p>\n"));
        window.insert(QStringLiteral("Auto Indentation"), QStringLiteral("YES"));
        QVariantMap root;
        root.insert(QStringLiteral("Editor Window Defaults"), window);
        root.insert(QStringLiteral("Editor Background Color"), QByteArray("\xff\xff\xff\xb2"));
        root.insert(QStringLiteral("External Browsers"),
                    QVariantList{QStringLiteral("/usr/bin/firefox"), QVariantList{QVariantMap(), qlonglong(3)}});
        root.insert(QString(QLatin1String("")), QStringLiteral("empty key"));
        QTest::newRow("nested") << QVariant(root);
    }

    void valuesRoundTrip()
    {
        QFETCH(QVariant, value);
        const std::optional<QByteArray> written = TWXMLPropertyList::write(value);
        QVERIFY(written);
        QString error;
        const std::optional<QVariant> read = TWXMLPropertyList::read(*written, &error);
        QVERIFY2(read, qPrintable(error));
        QCOMPARE(*read, value);
        // A second round gives the same document.
        QCOMPARE(TWXMLPropertyList::write(*read), written);
    }

    void writerUsesTheStandardForm()
    {
        QVariantMap root;
        root.insert(QStringLiteral("Key"), QStringLiteral("a<b"));
        root.insert(QStringLiteral("Flag"), true);
        const QByteArray written = *TWXMLPropertyList::write(root);
        QVERIFY(written.startsWith("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"));
        QVERIFY(written.contains("<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\""));
        QVERIFY(written.contains("<plist version=\"1.0\">"));
        QVERIFY(written.contains("\t<key>Key</key>\n\t\t<string>a&lt;b</string>")
                || written.contains("\t\t<key>Key</key>\n\t\t<string>a&lt;b</string>"));
        QVERIFY(written.contains("<true/>"));
        QVERIFY(written.trimmed().endsWith("</plist>"));
    }

    void floatsAreWrittenShortest()
    {
        const QByteArray written = *TWXMLPropertyList::write(QVariant::fromValue(0.3f));
        QVERIFY2(written.contains("<real>0.3</real>"), written.constData());
        QCOMPARE(TWXMLPropertyList::read(written)->toFloat(), 0.3f);
    }

    void valuesWithoutAPlistFormAreRefused_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("control character") << QVariant(QStringLiteral("bell\a"));
        QTest::newRow("control character in a key") << QVariant(QVariantMap{{QStringLiteral("k\x01"), 1}});
        QTest::newRow("infinite real") << QVariant(std::numeric_limits<double>::infinity());
        QTest::newRow("foreign type") << QVariant(QPoint(1, 2));
        QTest::newRow("invalid") << QVariant();
    }

    void valuesWithoutAPlistFormAreRefused()
    {
        QFETCH(QVariant, value);
        QVERIFY(!TWXMLPropertyList::write(value));
    }

    void handWrittenDocumentsAreRead()
    {
        const QByteArray text = document(
            "<!-- a comment -->\n<dict>\n  <key>Name</key>   <string>Tagwright</string>\n"
            "  <key>Data</key><data>\n  AAEC\n  /w==\n  </data>\n"
            "  <key>Number</key><integer> 42 </integer>\n"
            "  <key>Real</key><real>-1.5e3</real>\n"
            "  <key>Date</key><date>2001-01-01T00:00:00Z</date>\n"
            "  <key>Empty</key><string/>\n"
            "  <key>Twice</key><string>first</string><key>Twice</key><string>last</string>\n"
            "  <key>Entities</key><string>&lt;&amp;&#x65E5;&#26412;</string>\n"
            "</dict>");
        QString error;
        const std::optional<QVariant> read = TWXMLPropertyList::read(text, &error);
        QVERIFY2(read, qPrintable(error));
        const QVariantMap map = read->toMap();
        QCOMPARE(map.value(QStringLiteral("Name")).toString(), QStringLiteral("Tagwright"));
        QCOMPARE(map.value(QStringLiteral("Data")).toByteArray(), QByteArray("\x00\x01\x02\xff", 4));
        QCOMPARE(map.value(QStringLiteral("Number")).toLongLong(), 42);
        QCOMPARE(map.value(QStringLiteral("Real")).toDouble(), -1500.0);
        QCOMPARE(map.value(QStringLiteral("Date")).toDateTime(), QDateTime(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC));
        QCOMPARE(map.value(QStringLiteral("Empty")).toString(), QString());
        QCOMPARE(map.value(QStringLiteral("Twice")).toString(), QStringLiteral("last"));
        QCOMPARE(map.value(QStringLiteral("Entities")).toString(), QString::fromUtf8("<&日本"));
    }

    void bareRootWithoutPlistElementIsRead()
    {
        QCOMPARE(TWXMLPropertyList::read("<?xml version=\"1.0\"?><array><true/></array>"),
                 std::optional<QVariant>(QVariantList{true}));
    }

    void hostileInputFailsCleanly_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("not XML") << QByteArray("Tagwright preferences\n");
        QTest::newRow("binary") << QByteArray("bplist00\xd1\x01\x02", 11);
        QTest::newRow("truncated") << document("<dict><key>A</key><string>x</str").left(120);
        QTest::newRow("unclosed dict") << QByteArray("<plist version=\"1.0\"><dict><key>A</key><string>x</string>");
        QTest::newRow("empty plist") << QByteArray("<plist version=\"1.0\"/>");
        QTest::newRow("two values") << document("<string>a</string><string>b</string>");
        QTest::newRow("unknown element") << document("<dict><key>A</key><color>red</color></dict>");
        QTest::newRow("key without value") << document("<dict><key>A</key></dict>");
        QTest::newRow("value without key") << document("<dict><string>x</string></dict>");
        QTest::newRow("text between values") << document("<array>loose<string>x</string></array>");
        QTest::newRow("element inside string") << document("<string>a<b/>c</string>");
        QTest::newRow("bad base64") << document("<data>!!!notbase64***</data>");
        QTest::newRow("integer overflow") << document("<integer>123456789012345678901234567890</integer>");
        QTest::newRow("integer not a number") << document("<integer>12a</integer>");
        QTest::newRow("real not a number") << document("<real>fast</real>");
        QTest::newRow("bad date") << document("<date>yesterday</date>");
        QTest::newRow("text in true") << document("<true>no</true>");
        QTest::newRow("content after plist") << document("<true/>") + "<plist><false/></plist>";
        QTest::newRow("mismatched tags") << document("<array><string>x</array></string>");
        QTest::newRow("undefined entity") << document("<string>&nosuch;</string>");
        QByteArray deep = "<plist version=\"1.0\">";
        for (int i = 0; i < 100000; ++i)
            deep += "<array>";
        QTest::newRow("nesting 100000 deep") << deep;
        QTest::newRow("entity expansion bomb") << QByteArray(
            "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\">"
            "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">"
            "<!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\"><!ENTITY e \"&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;\">]>"
            "<plist version=\"1.0\"><string>&e;&e;&e;&e;&e;&e;&e;&e;</string></plist>");
    }

    void hostileInputFailsCleanly()
    {
        QFETCH(QByteArray, input);
        QElapsedTimer timer;
        timer.start();
        QString error;
        QVERIFY(!TWXMLPropertyList::read(input, &error).has_value());
        QVERIFY(!error.isEmpty());
        QVERIFY2(timer.elapsed() < 5000, "hostile input must not make the reader hang");
    }

    void deepButAllowedNestingIsRead()
    {
        QByteArray text = "<plist version=\"1.0\">";
        for (int i = 0; i < TWXMLPropertyList::maxDepth; ++i)
            text += "<array>";
        for (int i = 0; i < TWXMLPropertyList::maxDepth; ++i)
            text += "</array>";
        text += "</plist>";
        QVERIFY(TWXMLPropertyList::read(text));
    }
};

QTEST_GUILESS_MAIN(tst_TWXMLPropertyList)
#include "tst_TWXMLPropertyList.moc"
