// Old-style (OpenStep) text property lists, the form of the tag library text: the written
// form, round trips through plain ASCII, texts in other layouts, and bad texts refused.
#include "platform/TWOldStylePropertyList.h"

#include <QPoint>
#include <QTest>

class tst_TWOldStylePropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Every written text is plain ASCII and reads back as the value. "text" is the written form:
    // null when the value has none and is refused, empty when any form will do. "input" is a
    // text of another layout, as hand-made library files have, read as the value.
    void forms_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("input");
        const QString any = QLatin1String("");
        QTest::newRow("quoted only where needed")
            << QVariant(QVariantList{QStringLiteral("/usr//AZaz09_$+:.-"), QStringLiteral("//x"), any,
                                     QStringLiteral("<b> a=b;c,(d){e}'f'*#@!?")})
            << QStringLiteral("(\n    /usr//AZaz09_$+:.-,\n    \"//x\",\n    \"\",\n    \"<b> a=b;c,(d){e}'f'*#@!?\"\n)") << QString();
        QTest::newRow("escapes")
            << QVariant(QString::fromUtf8("\"hi\" \\ a\nb\tc\rd\x01\x1b\x7fé日😀"))
            << QStringLiteral("\"\\\"hi\\\" \\\\ a\\nb\\tc\\rd\\U0001\\U001b\\U007f\\U00e9\\U65e5\\Ud83d\\Ude00\"") << QString();
        QTest::newRow("array, empty containers and data")
            << QVariant(QVariantList{QStringLiteral("b c"), QVariantMap(), QVariantList(), QByteArray()})
            << QStringLiteral("(\n    \"b c\",\n    {},\n    (),\n    <>\n)") << QString();
        QTest::newRow("dictionary in map order, data in lower-case hex")
            << QVariant(QVariantMap{{QStringLiteral("type"), QStringLiteral("2")}, {QStringLiteral("Name"), QStringLiteral("Bold")},
                                    {QStringLiteral("tag color"), QByteArray("\x0a\xbc\xff", 3)}})
            << QStringLiteral("{\n    Name = Bold;\n    \"tag color\" = <0abcff>;\n    type = 2;\n}") << QString();
        QString every; // lone surrogates among them
        for (int u = 0; u < 0x10000; ++u)
            every += QChar(u);
        QTest::newRow("every unit and two characters beyond") << QVariant(every + QString::fromUtf8("😀𝄞")) << any << QString();
        QTest::newRow("syntax, from a comment start")
            << QVariant(QStringLiteral("// \"\\'/ /* */ = ; , ( ) { } < > \\U0041 \\n")) << any << QString();
        QTest::newRow("number") << QVariant(2) << QString() << QString();
        QTest::newRow("foreign type deep inside")
            << QVariant(QVariantMap{{QStringLiteral("a"), QVariantList{QStringLiteral("ok"), QPoint(1, 2)}}}) << QString() << QString();
        const QVariantMap map{{QStringLiteral("a"), QStringLiteral("1")},
                              {QStringLiteral("b c"), QVariantList{QStringLiteral("x"), QByteArray("\x0a\x1b\x2c")}}};
        QTest::newRow("comments and odd spacing") << QVariant(map) << any
            << QStringLiteral("// library\n/**/{//k\n\"a\"/*=*/=\f1\r\n;\t\"b c\" =\v( x , < 0a 1B2C > , )//)\n;}//");
        QTest::newRow("every escape") << QVariant(QStringLiteral("\"\\'/\a\b\f\n\r\t\v")) << any
                                      << QStringLiteral("\"\\\"\\\\\\'\\/\\a\\b\\f\\n\\r\\t\\v\"");
        QTest::newRow("octal escapes") << QVariant(QStringLiteral("A") + QChar(u'\0') + QStringLiteral("\nxA9") + QChar(0xff)) << any
                                       << QStringLiteral("\"\\101\\0\\12x\\1019\\377\"");
        QTest::newRow("\\U with one to four digits") << QVariant(QStringLiteral("Az") + QChar(0x065e) + QString::fromUtf8("5本😀\t")) << any
                                                      << QStringLiteral("\"\\U41z\\U065e5\\U672C\\Ud83d\\Ude00\\U9\"");
        QTest::newRow("empty containers, trailing comma") << QVariant(QVariantList{QVariantMap(), QVariantList(), QByteArray()}) << any
                                                          << QStringLiteral("( { } , ( /* */ ) , < > , )");
        QTest::newRow("slashes inside a bare string") << QVariant(QVariantList{QStringLiteral("a//b"), QStringLiteral("c/")}) << any
                                                      << QStringLiteral("(a//b, c/ //d\n)");
    }

    void forms()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, text);
        QFETCH(QString, input);
        if (!input.isNull())
            QCOMPARE(TWOldStylePropertyList::read(input), std::optional(value));
        const std::optional<QString> written = TWOldStylePropertyList::write(value);
        QCOMPARE(written.has_value(), !text.isNull());
        if (!written)
            return;
        if (!text.isEmpty())
            QCOMPARE(*written, text);
        for (const QChar c : *written)
            QVERIFY2(c.unicode() < 0x7f && (c.unicode() >= 0x20 || c == u'\n'), "not plain ASCII");
        QCOMPARE(TWOldStylePropertyList::read(*written), std::optional(value));
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
