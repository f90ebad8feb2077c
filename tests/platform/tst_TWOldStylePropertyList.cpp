// Old-style (OpenStep) text property lists, the form of the tag library text: the written
// form, round trips through plain ASCII, texts in other layouts, and bad texts refused.
#include "platform/TWOldStylePropertyList.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

// Every written text is plain ASCII and reads back as the value. "text" is the written form: null
// when the value has none and is refused, "any" when any form will do. "input" is a text of another
// layout, as hand-made library files have, read as the value.
struct Form { QVariant value; QString text = {}, input = {}; };
const QString any = ""_L1;

} // namespace

class tst_TWOldStylePropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void forms_data()
    {
        QTest::addColumn<Form>("form");
        QTest::newRow("quoted only where needed")
            << Form{QVariantList{"/usr//AZaz09_$+:.-", "//x", "", "<b> a=b;c,(d){e}'f'*#@!?"},
                    u"(\n    /usr//AZaz09_$+:.-,\n    \"//x\",\n    \"\",\n    \"<b> a=b;c,(d){e}'f'*#@!?\"\n)"_s};
        QTest::newRow("escapes") << Form{u"\"hi\" \\ a\nb\tc\rd\x01\x1b\x7fé日😀"_s,
                                         u"\"\\\"hi\\\" \\\\ a\\nb\\tc\\rd\\U0001\\U001b\\U007f\\U00e9\\U65e5\\Ud83d\\Ude00\""_s};
        QTest::newRow("array, empty containers and data")
            << Form{QVariantList{"b c", QVariantMap(), QVariantList(), QByteArray()}, u"(\n    \"b c\",\n    {},\n    (),\n    <>\n)"_s};
        QTest::newRow("dictionary in map order, data in lower-case hex")
            << Form{QVariantMap{{"type", "2"}, {"Name", "Bold"}, {"tag color", QByteArray("\x0a\xbc\xff", 3)}},
                    u"{\n    Name = Bold;\n    \"tag color\" = <0abcff>;\n    type = 2;\n}"_s};
        QString every; // lone surrogates among them
        for (int u = 0; u < 0x10000; ++u)
            every += QChar(u);
        QTest::newRow("every unit and two characters beyond") << Form{every + u"😀𝄞"_s, any};
        QTest::newRow("number") << Form{2};
        QTest::newRow("foreign type deep inside") << Form{QVariantMap{{"a", QVariantList{"ok", QPoint(1, 2)}}}};
        QTest::newRow("comments and odd spacing")
            << Form{QVariantMap{{"a", "1"}, {"b c", QVariantList{"x", QByteArray("\x0a\x1b\x2c")}}}, any,
                    u"// library\n/**/{//k\n\"a\"/*=*/=\f1\r\n;\t\"b c\" =\v( x , < 0a 1B2C > , )//)\n;}//"_s};
        QTest::newRow("every escape") << Form{u"\"\\'/\a\b\f\n\r\t\v"_s, any, u"\"\\\"\\\\\\'\\/\\a\\b\\f\\n\\r\\t\\v\""_s};
        QTest::newRow("octal escapes") << Form{u"A"_s + QChar(u'\0') + u"\nxA9\u00ff"_s, any, u"\"\\101\\0\\12x\\1019\\377\""_s};
        QTest::newRow("\\U with one to four digits")
            << Form{u"Az\u065e5本😀\t"_s, any, u"\"\\U41z\\U065e5\\U672C\\Ud83d\\Ude00\\U9\""_s};
        QTest::newRow("empty containers, trailing comma")
            << Form{QVariantList{QVariantMap(), QVariantList(), QByteArray()}, any, u"( { } , ( /* */ ) , < > , )"_s};
        QTest::newRow("slashes inside a bare string") << Form{QVariantList{"a//b", "c/"}, any, u"(a//b, c/ //d\n)"_s};
    }

    void forms()
    {
        QFETCH(Form, form);
        if (!form.input.isNull())
            QCOMPARE(TWOldStylePropertyList::read(form.input), std::optional(form.value));
        const std::optional<QString> written = TWOldStylePropertyList::write(form.value);
        QCOMPARE(written.has_value(), !form.text.isNull());
        if (!written)
            return;
        if (!form.text.isEmpty())
            QCOMPARE(*written, form.text);
        for (const QChar c : *written)
            QVERIFY2(c.unicode() < 0x7f && (c.unicode() >= 0x20 || c == u'\n'), "not plain ASCII");
        QCOMPARE(TWOldStylePropertyList::read(*written), std::optional(form.value));
    }

    // Each fails as a whole, with the reason and where it was found.
    void badTextsAreRefused_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("reason");
        const QString tooDeep = QStringLiteral("nesting deeper than 512");
        QTest::newRow("empty") << QString() << QStringLiteral("empty text");
        QTest::newRow("unterminated string") << QStringLiteral("(\"abc") << QStringLiteral("unterminated string");
        QTest::newRow("backslash at the end") << QStringLiteral("\"abc\\") << QStringLiteral("unterminated string");
        QTest::newRow("\\U without digits") << QStringLiteral("\"\\Uxyz\"") << QStringLiteral("\\U without hex digits");
        QTest::newRow("where, by line and column") << QStringLiteral("{\n    a = b;\n    c = \\d;\n}")
                                                   << QStringLiteral("unexpected character at line 3, column 9");
        QTest::newRow("unterminated dictionary") << QStringLiteral("{a = b;") << QStringLiteral("unterminated dictionary");
        QTest::newRow("unterminated data") << QStringLiteral("<00ff") << QStringLiteral("unterminated data");
        QTest::newRow("odd hex digits") << QStringLiteral("<0 0f>") << QStringLiteral("odd number of hex digits");
        QTest::newRow("missing equals") << QStringLiteral("{ a b; }") << QStringLiteral("'=' expected");
        QTest::newRow("two values") << QStringLiteral("(a) b") << QStringLiteral("unexpected text after the value");
        QTest::newRow("unterminated comment") << QStringLiteral("(a /* b)") << QStringLiteral("unterminated comment");
        QTest::newRow("non-ASCII outside quotes") << QString::fromUtf8("(café)") << QStringLiteral("',' or ')' expected");
        QTest::newRow("arrays 100000 deep") << QString(100000, u'(') << tooDeep;
        QTest::newRow("closed nesting one too deep")
            << QString(TWOldStylePropertyList::maxDepth + 1, u'(') + QString(TWOldStylePropertyList::maxDepth + 1, u')') << tooDeep;
        QTest::newRow("20 MB unterminated string") << QStringLiteral("(\"") + QString(20 * 1024 * 1024, u'x')
                                                   << QStringLiteral("unterminated string");
    }

    void badTextsAreRefused()
    {
        QFETCH(QString, text);
        QFETCH(QString, reason);
        QString error;
        QVERIFY(!TWOldStylePropertyList::read(text, &error).has_value());
        QVERIFY2(error.contains(reason) && error.contains(QLatin1String(" at line ")), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(tst_TWOldStylePropertyList)
#include "tst_TWOldStylePropertyList.moc"
