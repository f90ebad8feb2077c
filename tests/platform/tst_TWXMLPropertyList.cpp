// XML property lists, the form of the user-defaults store: values and UTF-16 texts survive a round
// trip in the standard form, whatever is read can be written again, bad documents are refused whole.
#include "platform/TWXMLPropertyList.h"

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

// n arrays, each in the one before: read, and as written.
QByteArray arrays(int n) { return QByteArray("<array>").repeated(n) + QByteArray("</array>").repeated(n); }
QVariant nested(int n) { return n > 1 ? QVariant(QVariantList{nested(n - 1)}) : QVariant(QVariantList()); }

QDateTime utc(int year, int month, int day, int hour = 0) { return QDateTime(QDate(year, month, day), QTime(hour, 0), QTimeZone::utc()); }

// A text a file could hold or a user could paste: any of the 65536 units, with extra weight
// on controls, surrogates, what XML escapes, and look-alikes of the written form.
QString randomText(QRandomGenerator &random)
{
    static const QStringList pieces =
        QStringLiteral("&|<|>|]]>|\r\n|<?tw-char 000C?>|<?tw-char|?>|&#12;|😀|\uFFFE|\uFFFF").split(u'|');
    QString text;
    for (int i = random.bounded(12); i > 0; --i) {
        const int kind = random.bounded(4); // any unit, a control, a surrogate, or a piece
        const auto unit = char16_t(random.bounded(0x10000));
        text += kind == 3 ? pieces.at(random.bounded(pieces.size())) : QChar(kind == 0 ? unit : kind == 1 ? unit % 0x20 : 0xD800 + unit % 0x800);
    }
    return text;
}

// A value and its written form ("body"), which reads back as a value written the same again; an
// empty body: the value has no form and is refused. Or a document of another writer ("input")
// read as the value, whose written form must read as the same value: the store writes back all it read.
struct Form { QVariant value; QByteArray body = {}, input = {}; };

} // namespace

class tst_TWXMLPropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A zone far from UTC makes a date read as local time show up as another instant.
    void initTestCase()
    {
        qputenv("TZ", "JST-9");
        tzset();
        QCOMPARE(QDateTime(QDate(2001, 1, 1), QTime(0, 0)).offsetFromUtc(), 9 * 3600);
    }

    // Texts with every kind of unit, as keys and values, nested in dicts and arrays.
    void randomTextsRoundTrip()
    {
        QRandomGenerator random(randomSeed);
        for (int i = 0; i < randomDocuments; ++i) {
            QVariantMap root;
            for (int n = random.bounded(6); n > 0; --n)
                root.insert(randomText(random), QVariantList{randomText(random), QVariantMap{{randomText(random), randomText(random)}}});
            const std::optional<QByteArray> written = TWXMLPropertyList::write(root);
            QVERIFY2(written && TWXMLPropertyList::read(*written) == QVariant(root), written.value_or(QByteArray()).constData());
        }
    }

    void forms_data()
    {
        QTest::addColumn<Form>("form");
        QTest::newRow("escaped, CR, UTF-8") << Form{QString::fromUtf8("a<b & c>d \"e' ]]>\r\n\té😀"),
                                                   "<string>a&lt;b &amp; c&gt;d \"e' ]]&gt;&#13;\n\t\xc3\xa9\xf0\x9f\x98\x80</string>"};
        QTest::newRow("nested, keys sorted, control in a key")
            << Form{QVariantMap{{"b", QVariantList{QVariantMap{{"c", true}}}}, {"a", QStringList()}, {"B\x01", QVariantMap()}},
                    "<dict>\n\t<key>B<?tw-char 0001?></key>\n\t<dict/>\n\t<key>a</key>\n\t<array/>\n\t<key>b</key>\n\t<array>\n"
                    "\t\t<dict>\n\t\t\t<key>c</key>\n\t\t\t<true/>\n\t\t</dict>\n\t</array>\n</dict>"};
        QTest::newRow("numbers, data, date")
            << Form{QVariantList{std::numeric_limits<qlonglong>::min(), std::numeric_limits<qulonglong>::max(), 0.1, 5e-324, 0.3f,
                                 QByteArray("\x00\x01\x02\xff", 4), QDateTime(QDate(2001, 2, 3), QTime(4, 5, 6), QTimeZone::utc())},
                    "<array>\n\t<integer>-9223372036854775808</integer>\n\t<integer>18446744073709551615</integer>\n"
                    "\t<real>0.1</real>\n\t<real>5e-324</real>\n\t<real>0.3</real>\n\t<data>AAEC/w==</data>\n"
                    "\t<date>2001-02-03T04:05:06Z</date>\n</array>"};
        // Values without a form: an infinite real, a five-digit year, a foreign type inside, nesting
        // one level deeper than the reader reads.
        for (const QVariant &value : {QVariant(qInf()), QVariant(utc(10000, 1, 1)), QVariant(QVariantList{1, QVariantList{QPoint()}})})
            QTest::addRow("no form: %s", value.typeName()) << Form{value};
        QTest::newRow("no form: too deep") << Form{nested(TWXMLPropertyList::maxDepth + 1)};
        QTest::newRow("the deepest nesting") << Form{nested(TWXMLPropertyList::maxDepth), {}, arrays(TWXMLPropertyList::maxDepth)};
        QTest::newRow("dates: offset, none (UTC), fraction")
            << Form{QVariantList{utc(2001, 1, 1), utc(2001, 1, 1, 10), utc(2001, 1, 1, 10)}, {},
                    document("<array><date>2001-01-01T02:00:00+02:00</date><date>2001-01-01T10:00:00</date>"
                             "<date>2001-01-01T10:00:00.7Z</date></array>")};
        QTest::newRow("data, blanks") << Form{QByteArray("\x00\x01\x02\xff", 4), {}, document("<data> AA\n\tEC\r\n/w== </data>")};
        // In text, a tw-char instruction in lower case or short; elsewhere it is any instruction.
        QTest::newRow("tw-char") << Form{QVariantMap{{"\x1b", QStringLiteral("a\f") + QChar(0xD800)}, {"n", qlonglong(12)}}, {},
                                         document("<?tw-char 000C?><dict><key><?tw-char 1b?></key><string>a<?tw-char c?><?tw-char d800?>"
                                                  "</string><?tw-char x?><key>n</key><integer>1<?tw-char 0041?>2</integer></dict>")};
    }

    void forms()
    {
        QFETCH(Form, form);
        const std::optional<QByteArray> written = TWXMLPropertyList::write(form.value);
        if (!form.input.isEmpty()) {
            QCOMPARE(TWXMLPropertyList::read(form.input), std::optional(form.value));
            QCOMPARE(TWXMLPropertyList::read(written.value_or(QByteArray())), std::optional(form.value));
        } else {
            QCOMPARE(written, form.body.isEmpty() ? std::nullopt : std::optional(document(form.body)));
            if (written)
                QCOMPARE(TWXMLPropertyList::write(TWXMLPropertyList::read(*written).value_or(QVariant())), written);
        }
    }

    // Each fails as a whole, with a reason; "reason" is part of the message where the reader
    // words it (empty where the XML parser does).
    void badDocumentsAreRefused_data()
    {
        QTest::addColumn<QByteArray>("input");
        QTest::addColumn<QString>("reason");
        QTest::newRow("one level too deep") << arrays(TWXMLPropertyList::maxDepth + 1) << QStringLiteral("nesting deeper");
        QTest::newRow("unclosed dict") << QByteArray("<plist><dict><key>A</key><string>x</string>") << QStringLiteral("dict not closed");
        QTest::newRow("two values") << document("<string>a</string><string>b</string>") << QStringLiteral("more than one value");
        QTest::newRow("unknown element") << document("<dict><key>A</key><color/></dict>") << QStringLiteral("unknown element <color>");
        QTest::newRow("key without value") << document("<dict><key>A</key></dict>") << QStringLiteral("without a value");
        QTest::newRow("text between values") << document("<array>loose<true/></array>") << QStringLiteral("text outside a value");
        QTest::newRow("element inside string") << document("<string>a<b/>c</string>") << QStringLiteral("element inside");
        QTest::newRow("bad base64") << document("<data>AA==AAAA</data>") << QStringLiteral("base64");
        QTest::newRow("integer overflow") << document("<integer>-9223372036854775809</integer>") << QStringLiteral("bad integer");
        QTest::newRow("real overflow") << document("<real>1e999</real>") << QStringLiteral("bad real");
        QTest::newRow("date before year 1") << document("<date>0001-01-01T00:00:00+01:00</date>") << QStringLiteral("bad date");
        QTest::newRow("content after plist") << document("<true/>") + "<plist><false/></plist>" << QString();
        QTest::newRow("unknown entity in text") << document("<string>&x;</string>") << QStringLiteral("unknown entity &x;");
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
