// XML property lists, the form of projects and of the user-defaults store: every kind of value
// survives a round trip, the written layout is the standard one, documents in other layouts
// are read, values with no XML form are refused, and hostile input fails cleanly.
#include "platform/TWXMLPropertyList.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QPoint>
#include <QTest>
#include <QTimeZone>

#include <cmath>
#include <ctime>
#include <limits>

namespace {

constexpr char header[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                          "<plist version=\"1.0\">\n";

QByteArray document(const QByteArray &body)
{
    return header + body + "\n</plist>\n";
}

QByteArray allBytes()
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes.append(char(i));
    return bytes;
}

QByteArray utf16LittleEndian(const QString &text)
{
    QByteArray bytes("\xff\xfe");
    for (const QChar c : text)
        bytes.append(char(c.unicode() & 0xff)).append(char(c.unicode() >> 8));
    return bytes;
}

QVariant nested(int depth, const QVariant &innermost)
{
    QVariant value = innermost;
    for (int i = 0; i < depth; ++i)
        value = QVariantList{value};
    return value;
}

QDateTime utc(int year, int month, int day, int hour, int minute, int second)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), QTimeZone::utc());
}

} // namespace

class tst_TWXMLPropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Dates are compared as instants; a zone far from UTC makes a date read as local time
    // show up as a different instant.
    void initTestCase()
    {
        qputenv("TZ", "Asia/Tokyo");
        tzset();
        QCOMPARE(QDateTime(QDate(2001, 1, 1), QTime(0, 0)).offsetFromUtc(), 9 * 3600);
    }

    // ---- Round trips --------------------------------------------------------------------

    void valuesRoundTrip_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("string") << QVariant(QStringLiteral("plain"));
        QTest::newRow("XML special characters")
            << QVariant(QStringLiteral("<p class=\"a\">&amp; 'x' \\ ]]> &#13; &lt;</p>"));
        QTest::newRow("line breaks and tabs") << QVariant(QStringLiteral("a\nb\r\nc\rd\te\n"));
        QTest::newRow("only a carriage return") << QVariant(QStringLiteral("\r"));
        QTest::newRow("non-ASCII") << QVariant(QString::fromUtf8("日本語 – üé 😀 \u00a0"));
        QTest::newRow("empty string") << QVariant(QString(QLatin1String("")));
        QTest::newRow("blanks only") << QVariant(QStringLiteral("  \n\t "));
        QTest::newRow("all bytes as data") << QVariant(allBytes());
        QTest::newRow("empty data") << QVariant(QByteArray());
        QTest::newRow("integer") << QVariant(qlonglong(-9007199254740993LL));
        QTest::newRow("smallest integer") << QVariant(std::numeric_limits<qlonglong>::min());
        QTest::newRow("largest unsigned") << QVariant(std::numeric_limits<qulonglong>::max());
        QTest::newRow("real") << QVariant(0.1);
        QTest::newRow("tiny real") << QVariant(5e-324);
        QTest::newRow("huge real") << QVariant(-1.7976931348623157e308);
        QTest::newRow("true") << QVariant(true);
        QTest::newRow("false") << QVariant(false);
        QTest::newRow("date") << QVariant(utc(2026, 11, 23, 1, 2, 3));
        QTest::newRow("empty dict") << QVariant(QVariantMap());
        QTest::newRow("empty array") << QVariant(QVariantList());

        QVariantMap window;
        window.insert(QStringLiteral("HTML Text"), QString::fromUtf8("<p>日本 & \"más\"</p>\r\n"));
        window.insert(QStringLiteral("Auto Indentation"), true);
        window.insert(QStringLiteral("Tab Width"), qlonglong(4));
        window.insert(QStringLiteral("Font Size"), 12.5);
        window.insert(QStringLiteral("Saved"), utc(2001, 1, 1, 0, 0, 0));
        QVariantMap root;
        root.insert(QStringLiteral("Editor Window Defaults"), window);
        root.insert(QStringLiteral("Editor Background Color"), QByteArray("\xff\xff\xff\xb2"));
        root.insert(QStringLiteral("External Browsers"),
                    QVariantList{QStringLiteral("/usr/bin/firefox"),
                                 QVariantList{QVariantMap(), QVariantList(), qlonglong(3), false, QByteArray()}});
        root.insert(QString(QLatin1String("")), QStringLiteral("empty key"));
        root.insert(QStringLiteral("<key> & \"quotes\""), QString(QLatin1String("")));
        QTest::newRow("nested, every kind") << QVariant(root);
        QTest::newRow("nesting at the limit") << nested(TWXMLPropertyList::maxDepth - 1, QStringLiteral("deep"));
    }

    void valuesRoundTrip()
    {
        QFETCH(QVariant, value);
        const std::optional<QByteArray> written = TWXMLPropertyList::write(value);
        QVERIFY(written);
        QString error;
        const std::optional<QVariant> read = TWXMLPropertyList::read(*written, &error);
        QVERIFY2(read, qPrintable(error));
        QCOMPARE(read->typeId(), value.typeId());
        QCOMPARE(*read, value);
        // Writing what was read gives the same document again.
        QCOMPARE(TWXMLPropertyList::write(*read), written);
    }

    // Types the form has no element of its own for come back as the plist kind they map to.
    void valuesComeBackAsTheirPlistKind_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("string list") << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b")})
                                     << QVariant(QVariantList{QStringLiteral("a"), QStringLiteral("b")});
        QTest::newRow("int") << QVariant(7) << QVariant(qlonglong(7));
        QTest::newRow("unsigned int") << QVariant(7u) << QVariant(qlonglong(7));
        QTest::newRow("float, shortest form") << QVariant(0.3f) << QVariant(0.3);
        QTest::newRow("date with milliseconds")
            << QVariant(QDateTime(QDate(2020, 2, 29), QTime(23, 59, 59, 999), QTimeZone::utc()))
            << QVariant(utc(2020, 2, 29, 23, 59, 59));
        QTest::newRow("date in another zone")
            << QVariant(QDateTime(QDate(2020, 1, 1), QTime(1, 30), QTimeZone(3600)))
            << QVariant(utc(2020, 1, 1, 0, 30, 0));
    }

    void valuesComeBackAsTheirPlistKind()
    {
        QFETCH(QVariant, value);
        QFETCH(QVariant, expected);
        const std::optional<QByteArray> written = TWXMLPropertyList::write(value);
        QVERIFY(written);
        const std::optional<QVariant> read = TWXMLPropertyList::read(*written);
        QVERIFY(read);
        QCOMPARE(read->typeId(), expected.typeId());
        QCOMPARE(*read, expected);
    }

    // ---- The written layout -------------------------------------------------------------

    void wholeDocumentIsTheStandardForm()
    {
        QVariantMap root;
        root.insert(QStringLiteral("b"), QVariantList{QStringLiteral("x"), QVariantMap{{QStringLiteral("c"), true}}});
        root.insert(QStringLiteral("a"), QVariantList());
        QCOMPARE(*TWXMLPropertyList::write(root),
                 QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                            "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                            "<plist version=\"1.0\">\n"
                            "<dict>\n"
                            "\t<key>a</key>\n"
                            "\t<array/>\n"
                            "\t<key>b</key>\n"
                            "\t<array>\n"
                            "\t\t<string>x</string>\n"
                            "\t\t<dict>\n"
                            "\t\t\t<key>c</key>\n"
                            "\t\t\t<true/>\n"
                            "\t\t</dict>\n"
                            "\t</array>\n"
                            "</dict>\n"
                            "</plist>\n"));
    }

    void writerOutputIsExact_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("string") << QVariant(QStringLiteral("abc")) << QByteArray("<string>abc</string>");
        QTest::newRow("escaped") << QVariant(QStringLiteral("a<b & c>d \"e' \\"))
                                 << QByteArray("<string>a&lt;b &amp; c&gt;d \"e' \\</string>");
        QTest::newRow("carriage return") << QVariant(QStringLiteral("a\r\nb\tc"))
                                         << QByteArray("<string>a&#13;\nb\tc</string>");
        QTest::newRow("UTF-8") << QVariant(QString::fromUtf8("é😀")) << QByteArray("<string>\xc3\xa9\xf0\x9f\x98\x80</string>");
        QTest::newRow("empty string") << QVariant(QString(QLatin1String(""))) << QByteArray("<string></string>");
        QTest::newRow("true") << QVariant(true) << QByteArray("<true/>");
        QTest::newRow("false") << QVariant(false) << QByteArray("<false/>");
        QTest::newRow("negative integer") << QVariant(-42) << QByteArray("<integer>-42</integer>");
        QTest::newRow("largest unsigned") << QVariant(std::numeric_limits<qulonglong>::max())
                                          << QByteArray("<integer>18446744073709551615</integer>");
        QTest::newRow("real") << QVariant(0.1) << QByteArray("<real>0.1</real>");
        QTest::newRow("whole real") << QVariant(2.0) << QByteArray("<real>2</real>");
        QTest::newRow("float, shortest form") << QVariant(0.3f) << QByteArray("<real>0.3</real>");
        QTest::newRow("data") << QVariant(QByteArray("\x00\x01\x02\xff", 4)) << QByteArray("<data>AAEC/w==</data>");
        QTest::newRow("empty data") << QVariant(QByteArray()) << QByteArray("<data></data>");
        QTest::newRow("date") << QVariant(utc(2001, 2, 3, 4, 5, 6)) << QByteArray("<date>2001-02-03T04:05:06Z</date>");
        QTest::newRow("empty dict") << QVariant(QVariantMap()) << QByteArray("<dict/>");
        QTest::newRow("empty array") << QVariant(QVariantList()) << QByteArray("<array/>");
        QTest::newRow("keys in map order")
            << QVariant(QVariantMap{{QStringLiteral("b"), 1}, {QStringLiteral("B"), 2}, {QStringLiteral("a&"), 3}})
            << QByteArray("<dict>\n\t<key>B</key>\n\t<integer>2</integer>\n\t<key>a&amp;</key>\n\t<integer>3</integer>\n"
                          "\t<key>b</key>\n\t<integer>1</integer>\n</dict>");
    }

    void writerOutputIsExact()
    {
        QFETCH(QVariant, value);
        QFETCH(QByteArray, body);
        QCOMPARE(TWXMLPropertyList::write(value), std::optional<QByteArray>(document(body)));
    }

    // ---- Values with no XML form ----------------------------------------------------------

    void valuesWithoutAPlistFormAreRefused_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("control character") << QVariant(QStringLiteral("bell\a"));
        QTest::newRow("NUL") << QVariant(QString(QChar(u'\0')));
        QTest::newRow("escape character deep inside")
            << QVariant(QVariantMap{{QStringLiteral("a"), QVariantList{QStringLiteral("ok"), QStringLiteral("\x1b[0m")}}});
        QTest::newRow("control character in a key") << QVariant(QVariantMap{{QStringLiteral("k\x01"), 1}});
        QTest::newRow("U+FFFF") << QVariant(QString(QChar(0xFFFF)));
        QTest::newRow("U+FFFE") << QVariant(QString(QChar(0xFFFE)));
        QTest::newRow("lone high surrogate") << QVariant(QStringLiteral("a") + QChar(0xD83D) + QStringLiteral("b"));
        QTest::newRow("high surrogate at the end") << QVariant(QStringLiteral("a") + QChar(0xD83D));
        QTest::newRow("lone low surrogate") << QVariant(QString(QChar(0xDE00)));
        QTest::newRow("infinite real") << QVariant(std::numeric_limits<double>::infinity());
        QTest::newRow("NaN") << QVariant(std::nan(""));
        QTest::newRow("infinite float") << QVariant(std::numeric_limits<float>::infinity());
        QTest::newRow("invalid date") << QVariant(QDateTime());
        QTest::newRow("five-digit year") << QVariant(utc(10000, 1, 1, 0, 0, 0));
        QTest::newRow("foreign type") << QVariant(QPoint(1, 2));
        QTest::newRow("foreign type inside") << QVariant(QVariantList{1, QVariantList{QPoint(1, 2)}});
        QTest::newRow("invalid") << QVariant();
        QTest::newRow("nesting beyond the limit") << nested(TWXMLPropertyList::maxDepth, QStringLiteral("deep"));
    }

    void valuesWithoutAPlistFormAreRefused()
    {
        QFETCH(QVariant, value);
        QVERIFY(!TWXMLPropertyList::write(value).has_value());
    }

    // ---- Documents in other layouts -------------------------------------------------------

    void otherLayoutsAreRead_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QVariant>("expected");

        // The layout other writers use: root at the margin, data broken into indented lines.
        QVariantMap apple;
        apple.insert(QStringLiteral("CFBundleName"), QStringLiteral("Tagwright"));
        apple.insert(QStringLiteral("Icon"), allBytes().left(60));
        apple.insert(QStringLiteral("Modified"), utc(2003, 6, 1, 12, 0, 0));
        apple.insert(QStringLiteral("Ratio"), 0.5);
        apple.insert(QStringLiteral("Count"), qlonglong(3));
        apple.insert(QStringLiteral("Items"), QVariantList{QStringLiteral("one"), true, QVariantMap()});
        QTest::newRow("standard layout")
            << QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                          "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                          "<plist version=\"1.0\">\n"
                          "<dict>\n"
                          "\t<key>CFBundleName</key>\n\t<string>Tagwright</string>\n"
                          "\t<key>Count</key>\n\t<integer>3</integer>\n"
                          "\t<key>Icon</key>\n\t<data>\n\tAAECAwQFBgcICQoLDA0ODxAREhMUFRYXGBkaGxwdHh8gISIjJCUmJygpKiss\n"
                          "\tLS4vMDEyMzQ1Njc4OTo7\n\t</data>\n"
                          "\t<key>Items</key>\n\t<array>\n\t\t<string>one</string>\n\t\t<true/>\n\t\t<dict/>\n\t</array>\n"
                          "\t<key>Modified</key>\n\t<date>2003-06-01T12:00:00Z</date>\n"
                          "\t<key>Ratio</key>\n\t<real>0.5</real>\n"
                          "</dict>\n</plist>\n")
            << QVariant(apple);
        QTest::newRow("bare root, no declaration") << QByteArray("<array><true/><false></false></array>")
                                                   << QVariant(QVariantList{true, false});
        QTest::newRow("one line, no DOCTYPE")
            << QByteArray("<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>a</key><string>b</string></dict></plist>")
            << QVariant(QVariantMap{{QStringLiteral("a"), QStringLiteral("b")}});
        QTest::newRow("comments and processing instructions")
            << QByteArray("<!-- before --><plist><!-- a --><dict><!-- b --><key>k<!-- c --></key><?pi x?>"
                          "<integer><!-- d -->5</integer></dict></plist><!-- after -->\n")
            << QVariant(QVariantMap{{QStringLiteral("k"), qlonglong(5)}});
        QTest::newRow("byte-order mark") << QByteArray("\xef\xbb\xbf<plist><string>\xc3\xa9</string></plist>")
                                         << QVariant(QString::fromUtf8("é"));
        QTest::newRow("entities and character references")
            << document("<string>&lt;&amp;&gt;&quot;&apos;&#x65E5;&#26412;&#x1F600;</string>")
            << QVariant(QString::fromUtf8("<&>\"'日本😀"));
        QTest::newRow("CDATA") << document("<string><![CDATA[<b> & </b>]]></string>") << QVariant(QStringLiteral("<b> & </b>"));
        QTest::newRow("entity declared in the document")
            << QByteArray("<!DOCTYPE plist [<!ENTITY name \"Tagwright\">]><plist><string>&name; 1</string></plist>")
            << QVariant(QStringLiteral("Tagwright 1"));
        QTest::newRow("empty string element") << document("<string/>") << QVariant(QString(QLatin1String("")));
        QTest::newRow("string keeps its blanks") << document("<string>  a  </string>") << QVariant(QStringLiteral("  a  "));
        QTest::newRow("integer with blanks and sign") << document("<integer> +42 </integer>") << QVariant(qlonglong(42));
        QTest::newRow("negative integer") << document("<integer>-9223372036854775808</integer>")
                                          << QVariant(std::numeric_limits<qlonglong>::min());
        QTest::newRow("integer above the signed range") << document("<integer>9223372036854775808</integer>")
                                                        << QVariant(qulonglong(9223372036854775808ULL));
        QTest::newRow("real with exponent") << document("<real>-1.5E3</real>") << QVariant(-1500.0);
        QTest::newRow("real without fraction") << document("<real>7</real>") << QVariant(7.0);
        QTest::newRow("date with an offset") << document("<date>2001-01-01T02:00:00+02:00</date>")
                                             << QVariant(utc(2001, 1, 1, 0, 0, 0));
        QTest::newRow("date without a zone is UTC") << document("<date>2001-01-01T10:00:00</date>")
                                                    << QVariant(utc(2001, 1, 1, 10, 0, 0));
        QTest::newRow("last of duplicate keys wins")
            << document("<dict><key>k</key><string>first</string><key>k</key><string>last</string></dict>")
            << QVariant(QVariantMap{{QStringLiteral("k"), QStringLiteral("last")}});
        QTest::newRow("empty key") << document("<dict><key/><true/></dict>")
                                   << QVariant(QVariantMap{{QString(QLatin1String("")), true}});
        QTest::newRow("data with blanks everywhere") << document("<data> AA\n\tEC\r\n/w== </data>")
                                                     << QVariant(QByteArray("\x00\x01\x02\xff", 4));
        QTest::newRow("UTF-16 document")
            << utf16LittleEndian(QStringLiteral("<plist><string>\u00e9</string></plist>"))
            << QVariant(QString::fromUtf8("é"));
    }

    void otherLayoutsAreRead()
    {
        QFETCH(QByteArray, input);
        QFETCH(QVariant, expected);
        QString error;
        const std::optional<QVariant> read = TWXMLPropertyList::read(input, &error);
        QVERIFY2(read, qPrintable(error));
        QCOMPARE(read->typeId(), expected.typeId());
        QCOMPARE(*read, expected);
    }

    // ---- Hostile input ------------------------------------------------------------------

    // Each must fail as a whole, quickly, with a reason; "reason" is part of the message
    // where the reader gives its own (empty where the XML parser words it).
    void hostileInputFailsCleanly_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("reason");
        QTest::newRow("empty") << QByteArray() << QStringLiteral("no root element");
        QTest::newRow("only blanks") << QByteArray(" \n\t") << QStringLiteral("no root element");
        QTest::newRow("only the prolog") << QByteArray(header).chopped(int(qstrlen("<plist version=\"1.0\">\n")))
                                         << QStringLiteral("no root element");
        QTest::newRow("not XML") << QByteArray("Tagwright preferences\n") << QString();
        QTest::newRow("binary plist") << QByteArray("bplist00\xd1\x01\x02\x00\xff", 13) << QString();
        const QByteArray whole = document("<dict><key>A</key><string>x</string></dict>");
        QTest::newRow("truncated") << whole.left(whole.size() - 20) << QString();
        QTest::newRow("unclosed dict") << QByteArray("<plist version=\"1.0\"><dict><key>A</key><string>x</string>")
                                       << QStringLiteral("dict not closed");
        QTest::newRow("unclosed plist") << QByteArray("<plist version=\"1.0\"><true/>") << QStringLiteral("plist not closed");
        QTest::newRow("empty plist") << QByteArray("<plist version=\"1.0\"/>") << QStringLiteral("holds no value");
        QTest::newRow("plist of blanks") << document("  ") << QStringLiteral("holds no value");
        QTest::newRow("two values") << document("<string>a</string><string>b</string>") << QStringLiteral("more than one value");
        QTest::newRow("plist inside plist") << document("<plist><true/></plist>") << QStringLiteral("unknown element <plist>");
        QTest::newRow("unknown element") << document("<dict><key>A</key><color>red</color></dict>")
                                         << QStringLiteral("unknown element <color>");
        QTest::newRow("key as root") << document("<key>A</key>") << QStringLiteral("unknown element <key>");
        QTest::newRow("key in an array") << document("<array><key>A</key></array>") << QStringLiteral("unknown element <key>");
        QTest::newRow("key without value") << document("<dict><key>A</key></dict>") << QStringLiteral("without a value");
        QTest::newRow("two keys in a row") << document("<dict><key>A</key><key>B</key><true/></dict>")
                                           << QStringLiteral("unknown element <key>");
        QTest::newRow("value without key") << document("<dict><string>x</string></dict>") << QStringLiteral("without a key");
        QTest::newRow("text between values") << document("<array>loose<string>x</string></array>")
                                             << QStringLiteral("text outside a value");
        QTest::newRow("text in a dict") << document("<dict><key>a</key><true/>loose</dict>")
                                        << QStringLiteral("text outside a value");
        QTest::newRow("text in plist") << document("loose<true/>") << QStringLiteral("text outside a value");
        QTest::newRow("element inside string") << document("<string>a<b/>c</string>") << QStringLiteral("element inside");
        QTest::newRow("element inside key") << document("<dict><key>a<i>b</i></key><true/></dict>")
                                            << QStringLiteral("element inside");
        QTest::newRow("bad base64") << document("<data>!!!notbase64***</data>") << QStringLiteral("base64");
        QTest::newRow("base64 padding in the middle") << document("<data>AA==AAAA</data>") << QStringLiteral("base64");
        QTest::newRow("non-Latin-1 in data") << document("<data>AA\xe6\x97\xa5=</data>") << QStringLiteral("base64");
        QTest::newRow("integer overflow") << document("<integer>123456789012345678901234567890</integer>")
                                          << QStringLiteral("bad integer");
        QTest::newRow("negative integer overflow") << document("<integer>-9223372036854775809</integer>")
                                                   << QStringLiteral("bad integer");
        QTest::newRow("integer not a number") << document("<integer>12a</integer>") << QStringLiteral("bad integer");
        QTest::newRow("empty integer") << document("<integer/>") << QStringLiteral("bad integer");
        QTest::newRow("real not a number") << document("<real>fast</real>") << QStringLiteral("bad real");
        QTest::newRow("real NaN") << document("<real>nan</real>") << QStringLiteral("bad real");
        QTest::newRow("real infinity") << document("<real>inf</real>") << QStringLiteral("bad real");
        QTest::newRow("real overflow") << document("<real>1e999</real>") << QStringLiteral("bad real");
        QTest::newRow("real with a comma") << document("<real>1,5</real>") << QStringLiteral("bad real");
        QTest::newRow("bad date") << document("<date>yesterday</date>") << QStringLiteral("bad date");
        QTest::newRow("impossible date") << document("<date>2001-02-30T00:00:00Z</date>") << QStringLiteral("bad date");
        QTest::newRow("text in true") << document("<true>no</true>") << QStringLiteral("text in <true/>");
        QTest::newRow("content after plist") << document("<true/>") + "<plist><false/></plist>" << QString();
        QTest::newRow("text after plist") << document("<true/>") + "junk" << QString();
        QTest::newRow("mismatched tags") << document("<array><string>x</array></string>") << QString();
        QTest::newRow("undefined entity in a string") << document("<string>&nosuch;</string>")
                                                      << QStringLiteral("unknown entity &nosuch;");
        QTest::newRow("undefined entity between values") << document("<array>&nosuch;<true/></array>")
                                                         << QStringLiteral("unknown entity &nosuch;");
        QTest::newRow("external entity")
            << QByteArray("<!DOCTYPE plist [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><plist><string>a&x;b</string></plist>")
            << QStringLiteral("external entity &x;");
        QTest::newRow("external entity, public")
            << QByteArray("<!DOCTYPE plist [<!ENTITY x PUBLIC \"-//X//Y\" \"http://example.com/x\">]>"
                          "<plist><array>&x;</array></plist>")
            << QStringLiteral("external entity &x;");
        QByteArray deep = "<plist version=\"1.0\">";
        for (int i = 0; i < 100000; ++i)
            deep += "<array>";
        QTest::newRow("nesting 100000 deep") << deep << QStringLiteral("nesting deeper than 512");
        QByteArray deepDicts = "<plist version=\"1.0\">";
        for (int i = 0; i < 100000; ++i)
            deepDicts += "<dict><key>a</key>";
        QTest::newRow("dicts 100000 deep") << deepDicts << QStringLiteral("nesting deeper than 512");
        QTest::newRow("closed nesting one too deep")
            << QByteArray("<plist>") + QByteArray("<array>").repeated(TWXMLPropertyList::maxDepth + 1)
                   + QByteArray("</array>").repeated(TWXMLPropertyList::maxDepth + 1) + "</plist>"
            << QStringLiteral("nesting deeper than 512");
        QTest::newRow("entity expansion bomb") << QByteArray(
            "<?xml version=\"1.0\"?><!DOCTYPE plist [<!ENTITY a \"aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa\">"
            "<!ENTITY b \"&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;&a;\"><!ENTITY c \"&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;&b;\">"
            "<!ENTITY d \"&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;&c;\"><!ENTITY e \"&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;&d;\">]>"
            "<plist version=\"1.0\"><string>&e;&e;&e;&e;&e;&e;&e;&e;</string></plist>")
            << QString();
    }

    void hostileInputFailsCleanly()
    {
        QFETCH(QByteArray, input);
        QFETCH(QString, reason);
        QElapsedTimer timer;
        timer.start();
        QString error;
        QVERIFY(!TWXMLPropertyList::read(input, &error).has_value());
        QVERIFY(!error.isEmpty());
        QVERIFY2(error.contains(reason), qPrintable(error));
        QVERIFY2(timer.elapsed() < 2000, "hostile input must not make the reader hang");
    }

    void largeDocumentReadsQuickly()
    {
        const QString big(20 * 1024 * 1024, QLatin1Char('x'));
        const QVariant value = QVariantList{QVariantMap{{QStringLiteral("k"), big}}, QStringLiteral("<&>")};
        const std::optional<QByteArray> written = TWXMLPropertyList::write(value);
        QVERIFY(written);
        QElapsedTimer timer;
        timer.start();
        const std::optional<QVariant> read = TWXMLPropertyList::read(*written);
        QVERIFY(read);
        QCOMPARE(*read, value);
        QVERIFY2(timer.elapsed() < 3000, "reading 20 MB took too long");
    }
};

QTEST_GUILESS_MAIN(tst_TWXMLPropertyList)
#include "tst_TWXMLPropertyList.moc"
