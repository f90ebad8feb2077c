// XML property lists, the form of the user-defaults store: values and UTF-16 texts survive a round
// trip in the standard form, whatever is read can be written again, bad documents are refused whole.
#include "platform/TWXMLPropertyList.h"

#include <QDateTime>
#include <QPoint>
#include <QRandomGenerator>
#include <QTest>
#include <QTimeZone>

#include <ctime>
#include <limits>

namespace {

constexpr char header[] = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                          "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                          "<plist version=\"1.0\">\n";
// Fixed, so that a failure shows again on every run.
constexpr quint32 randomSeed = 20240611;
constexpr int randomDocuments = 3000;

QByteArray document(const QByteArray &body) { return header + body + "\n</plist>\n"; }

QDateTime utc(int year, int month, int day, int hour, int minute, int second)
{
    return QDateTime(QDate(year, month, day), QTime(hour, minute, second), QTimeZone::utc());
}

// A text a file could hold or a user could paste: any of the 65536 units, with extra weight
// on controls, surrogates, what XML escapes, and look-alikes of the written form.
QString randomText(QRandomGenerator &random)
{
    static const QStringList pieces{QStringLiteral("&"), QStringLiteral("<"), QStringLiteral(">"), QStringLiteral("]]>"),
                                    QStringLiteral("\r\n"), QStringLiteral("<?tw-char 000C?>"), QStringLiteral("<?tw-char"),
                                    QStringLiteral("?>"), QStringLiteral("&#12;"), QString::fromUtf8("😀"),
                                    QString(QChar(0xFFFE)), QString(QChar(0xFFFF))};
    QString text;
    for (int i = random.bounded(12); i > 0; --i) {
        switch (random.bounded(4)) {
        case 0: text += QChar(char16_t(random.bounded(0x10000))); break;
        case 1: text += QChar(char16_t(random.bounded(0x20))); break;
        case 2: text += QChar(char16_t(0xD800 + random.bounded(0x800))); break;
        default: text += pieces.at(random.bounded(pieces.size()));
        }
    }
    return text;
}

QVariant randomValue(QRandomGenerator &random, int depth)
{
    const int kind = depth < 3 ? random.bounded(3) : 0;
    if (kind == 0)
        return randomText(random);
    QVariantList list;
    QVariantMap map;
    for (int i = random.bounded(6); i > 0; --i) {
        if (kind == 1)
            list << randomValue(random, depth + 1);
        else
            map.insert(randomText(random), randomValue(random, depth + 1));
    }
    return kind == 1 ? QVariant(list) : QVariant(map);
}

} // namespace

class tst_TWXMLPropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A zone far from UTC makes a date read as local time show up as another instant.
    void initTestCase()
    {
        qputenv("TZ", "Asia/Tokyo");
        tzset();
        QCOMPARE(QDateTime(QDate(2001, 1, 1), QTime(0, 0)).offsetFromUtc(), 9 * 3600);
    }

    // The writer and the reader agree on the deepest nesting: it is read and written, one level
    // more is neither.
    void nestingUpToTheLimitRoundTrips()
    {
        const auto arrays = [](int n) { return QByteArray("<array>").repeated(n) + QByteArray("</array>").repeated(n); };
        QVERIFY(!TWXMLPropertyList::read(arrays(TWXMLPropertyList::maxDepth + 1)));
        const QVariant deepest = TWXMLPropertyList::read(arrays(TWXMLPropertyList::maxDepth)).value_or(QVariant());
        QCOMPARE(TWXMLPropertyList::read(TWXMLPropertyList::write(deepest).value_or(QByteArray())), std::optional(deepest));
        QVERIFY(!TWXMLPropertyList::write(QVariantList{deepest}));
    }

    // Texts with every kind of unit, as keys and values, nested in dicts and arrays.
    void randomTextsRoundTrip()
    {
        QRandomGenerator random(randomSeed);
        for (int i = 0; i < randomDocuments; ++i) {
            const QVariantMap root{{randomText(random), randomValue(random, 0)}};
            const std::optional<QByteArray> written = TWXMLPropertyList::write(root);
            QVERIFY2(written && TWXMLPropertyList::read(*written) == QVariant(root), written.value_or(QByteArray()).constData());
        }
    }

    // Each written form reads back as a value that is written the same again; an empty body:
    // the value has no property-list form and is refused.
    void writtenForm_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QByteArray>("body");
        QTest::newRow("escaped, CR, UTF-8") << QVariant(QString::fromUtf8("a<b & c>d \"e' ]]>\r\n\té😀"))
                                            << QByteArray("<string>a&lt;b &amp; c&gt;d \"e' ]]&gt;&#13;\n\t\xc3\xa9\xf0\x9f\x98\x80</string>");
        QTest::newRow("units XML cannot carry") << QVariant(QStringView(u"\f\0\x1b\xFFFE\xFFFF\xD800x\xDFFF\xDE00\xD83D", 10).toString())
            << QByteArray("<string><?tw-char 000C?><?tw-char 0000?><?tw-char 001B?><?tw-char FFFE?><?tw-char FFFF?>"
                          "<?tw-char D800?>x<?tw-char DFFF?><?tw-char DE00?><?tw-char D83D?></string>");
        QTest::newRow("nested, keys sorted, control in a key")
            << QVariant(QVariantMap{{QStringLiteral("b"), QVariantList{QVariantMap{{QStringLiteral("c"), true}}}},
                                    {QStringLiteral("a"), QStringList()}, {QStringLiteral("B\x01"), QVariantMap()}})
            << QByteArray("<dict>\n\t<key>B<?tw-char 0001?></key>\n\t<dict/>\n\t<key>a</key>\n\t<array/>\n\t<key>b</key>\n\t<array>\n"
                          "\t\t<dict>\n\t\t\t<key>c</key>\n\t\t\t<true/>\n\t\t</dict>\n\t</array>\n</dict>");
        QTest::newRow("numbers, data, date")
            << QVariant(QVariantList{std::numeric_limits<qlonglong>::min(), std::numeric_limits<qulonglong>::max(), 0.1, 5e-324,
                                     0.3f, QByteArray("\x00\x01\x02\xff", 4), utc(2001, 2, 3, 4, 5, 6)})
            << QByteArray("<array>\n\t<integer>-9223372036854775808</integer>\n\t<integer>18446744073709551615</integer>\n"
                          "\t<real>0.1</real>\n\t<real>5e-324</real>\n\t<real>0.3</real>\n\t<data>AAEC/w==</data>\n"
                          "\t<date>2001-02-03T04:05:06Z</date>\n</array>");
        // Values without a form: an infinite real, a five-digit year, a foreign type inside.
        for (const QVariant &value :
             {QVariant(qInf()), QVariant(utc(10000, 1, 1, 0, 0, 0)), QVariant(QVariantList{1, QVariantList{QPoint()}})})
            QTest::addRow("no form: %s", value.typeName()) << value << QByteArray();
    }

    void writtenForm()
    {
        QFETCH(QVariant, value);
        QFETCH(QByteArray, body);
        const std::optional<QByteArray> written = TWXMLPropertyList::write(value);
        QCOMPARE(written, body.isEmpty() ? std::nullopt : std::optional(document(body)));
        if (written)
            QCOMPARE(TWXMLPropertyList::write(TWXMLPropertyList::read(*written).value_or(QVariant())), written);
    }

    // Documents of other writers are read; the store writes back all it read, so each value
    // read must have a written form that reads as the same value.
    void otherDocumentsAreReadAndWrittenAgain_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("bare root") << QByteArray("<array><true/><false></false></array>") << QVariant(QVariantList{true, false});
        QTest::newRow("comments, instructions, the last of repeated keys")
            << QByteArray("<!-- a --><plist><dict><key>k</key><string>first</string><!-- b --><key>k<!-- c --></key><?pi x?>"
                          "<string>a<?pi y?>b<!-- d --></string></dict></plist><!-- e -->\n")
            << QVariant(QVariantMap{{QStringLiteral("k"), QStringLiteral("ab")}});
        QTest::newRow("references, CDATA, a declared entity")
            << QByteArray("<!DOCTYPE plist [<!ENTITY n \"Tagwright\">]><plist><string>&lt;&amp;&gt;&quot;&#x65E5;&#26412;"
                          "<![CDATA[<b>]]>&n;</string></plist>")
            << QVariant(QString::fromUtf8("<&>\"日本<b>Tagwright"));
        QTest::newRow("dates: offset, none (UTC), fraction")
            << document("<array><date>2001-01-01T02:00:00+02:00</date><date>2001-01-01T10:00:00</date>"
                        "<date>2001-01-01T10:00:00.7Z</date></array>")
            << QVariant(QVariantList{utc(2001, 1, 1, 0, 0, 0), utc(2001, 1, 1, 10, 0, 0), utc(2001, 1, 1, 10, 0, 0)});
        QTest::newRow("data, blanks") << document("<data> AA\n\tEC\r\n/w== </data>") << QVariant(QByteArray("\x00\x01\x02\xff", 4));
        // In text, a tw-char instruction in lower case or short; elsewhere it is any instruction.
        QTest::newRow("tw-char") << document("<?tw-char 000C?><dict><key><?tw-char 1b?></key><string>a<?tw-char c?><?tw-char d800?>"
                                             "</string><?tw-char x?><key>n</key><integer>1<?tw-char 0041?>2</integer></dict>")
                                 << QVariant(QVariantMap{{QStringLiteral("\x1b"), QStringLiteral("a\f") + QChar(0xD800)},
                                                         {QStringLiteral("n"), qlonglong(12)}});
    }

    void otherDocumentsAreReadAndWrittenAgain()
    {
        QFETCH(QByteArray, input);
        QFETCH(QVariant, expected);
        const std::optional<QVariant> read = TWXMLPropertyList::read(input);
        QCOMPARE(read, std::optional(expected));
        QCOMPARE(TWXMLPropertyList::read(TWXMLPropertyList::write(*read).value_or(QByteArray())), read);
    }

    // Each fails as a whole, with a reason; "reason" is part of the message where the reader
    // words it (empty where the XML parser does).
    void badDocumentsAreRefused_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("reason");
        QTest::newRow("empty") << QByteArray() << QStringLiteral("no root element");
        QTest::newRow("unclosed dict") << QByteArray("<plist><dict><key>A</key><string>x</string>") << QStringLiteral("dict not closed");
        QTest::newRow("empty plist") << QByteArray("<plist version=\"1.0\"/>") << QStringLiteral("holds no value");
        QTest::newRow("two values") << document("<string>a</string><string>b</string>") << QStringLiteral("more than one value");
        QTest::newRow("unknown element") << document("<dict><key>A</key><color/></dict>") << QStringLiteral("unknown element <color>");
        QTest::newRow("key without value") << document("<dict><key>A</key></dict>") << QStringLiteral("without a value");
        QTest::newRow("value without key") << document("<dict><string>x</string></dict>") << QStringLiteral("without a key");
        QTest::newRow("text between values") << document("<array>loose<true/></array>") << QStringLiteral("text outside a value");
        QTest::newRow("element inside string") << document("<string>a<b/>c</string>") << QStringLiteral("element inside");
        QTest::newRow("bad base64") << document("<data>AA==AAAA</data>") << QStringLiteral("base64");
        QTest::newRow("integer overflow") << document("<integer>-9223372036854775809</integer>") << QStringLiteral("bad integer");
        QTest::newRow("real overflow") << document("<real>1e999</real>") << QStringLiteral("bad real");
        QTest::newRow("date before year 1") << document("<date>0001-01-01T00:00:00+01:00</date>") << QStringLiteral("bad date");
        QTest::newRow("text in true") << document("<true>no</true>") << QStringLiteral("text in <true/>");
        QTest::newRow("content after plist") << document("<true/>") + "<plist><false/></plist>" << QString();
        QTest::newRow("unknown entity in text") << document("<string>&x;</string>") << QStringLiteral("unknown entity &x;");
        QTest::newRow("entity between values") << document("<array>&x;<true/></array>") << QStringLiteral("&x; outside a value");
        QTest::newRow("external entity")
            << QByteArray("<!DOCTYPE plist [<!ENTITY x SYSTEM \"file:///etc/passwd\">]><plist><string>a&x;b</string></plist>")
            << QStringLiteral("external entity &x;");
        QByteArray bomb = "<!DOCTYPE plist [<!ENTITY a \"" + QByteArray(40, 'a') + "\">";
        for (char name = 'b'; name <= 'e'; ++name)
            bomb += "<!ENTITY " + QByteArray(1, name) + " \"" + ("&" + QByteArray(1, char(name - 1)) + ";").repeated(16) + "\">";
        QTest::newRow("entity expansion bomb") << bomb + "]><string>" + QByteArray("&e;").repeated(8) + "</string>" << QString();
        QTest::newRow("dicts 100000 deep") << QByteArray("<dict><key>a</key>").repeated(100000) << QStringLiteral("nesting deeper");
        // In a string or key, a tw-char instruction carries 1 to 4 hex digits of a unit XML cannot carry itself.
        for (const char *data : {"", " 0000C", " 0x0C", " 000C ", " 0041", " 000D"})
            QTest::addRow("<?tw-char%s?>", data) << document(QByteArray("<string><?tw-char") + data + "?></string>")
                                                 << QStringLiteral("bad <?tw-char");
    }

    void badDocumentsAreRefused()
    {
        QFETCH(QByteArray, input);
        QFETCH(QString, reason);
        QString error;
        QVERIFY(!TWXMLPropertyList::read(input, &error).has_value());
        QVERIFY2(!error.isEmpty() && error.contains(reason), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(tst_TWXMLPropertyList)
#include "tst_TWXMLPropertyList.moc"
