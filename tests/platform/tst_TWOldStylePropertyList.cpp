// Old-style (OpenStep) text property lists, the form of the tag library text: the written
// form, round trips through plain ASCII, texts in other layouts, and bad texts refused.
#include "platform/TWOldStylePropertyList.h"

#include <QPoint>
#include <QTest>

class tst_TWOldStylePropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A null text: the value has no old-style form and is refused.
    void writtenForm_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("bare, slashes inside") << QVariant(QStringLiteral("/usr//AZaz09_$+:.-")) << QStringLiteral("/usr//AZaz09_$+:.-");
        QTest::newRow("comment start quoted") << QVariant(QStringLiteral("//x")) << QStringLiteral("\"//x\"");
        QTest::newRow("empty quoted") << QVariant(QString(QLatin1String(""))) << QStringLiteral("\"\"");
        QTest::newRow("markup and punctuation quoted") << QVariant(QStringLiteral("<b> a=b;c,(d){e}'f'*#@!?"))
                                                       << QStringLiteral("\"<b> a=b;c,(d){e}'f'*#@!?\"");
        QTest::newRow("escapes") << QVariant(QString::fromUtf8("\"hi\" \\ a\nb\tc\rd\x01\x1b\x7fé日😀"))
                                 << QStringLiteral("\"\\\"hi\\\" \\\\ a\\nb\\tc\\rd\\U0001\\U001b\\U007f\\U00e9\\U65e5\\Ud83d\\Ude00\"");
        QTest::newRow("data, lower-case hex") << QVariant(QByteArray("\x0a\x1b\x2c\xAB\xCD\xEF", 6))
                                              << QStringLiteral("<0a1b2cabcdef>");
        QTest::newRow("array, empty containers and data")
            << QVariant(QVariantList{QStringLiteral("a"), QStringLiteral("b c"), QVariantMap(), QVariantList(), QByteArray()})
            << QStringLiteral("(\n    a,\n    \"b c\",\n    {},\n    (),\n    <>\n)");
        QTest::newRow("dictionary, keys in map order")
            << QVariant(QVariantMap{{QStringLiteral("type"), QStringLiteral("2")}, {QStringLiteral("tag color"), QByteArray(3, '\xff')},
                                    {QStringLiteral("Name"), QStringLiteral("Bold")}})
            << QStringLiteral("{\n    Name = Bold;\n    \"tag color\" = <ffffff>;\n    type = 2;\n}");
        QTest::newRow("number") << QVariant(2) << QString();
        QTest::newRow("flag") << QVariant(true) << QString();
        QTest::newRow("foreign type deep inside")
            << QVariant(QVariantMap{{QStringLiteral("a"), QVariantList{QStringLiteral("ok"), QPoint(1, 2)}}}) << QString();
    }

    void writtenForm()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, text);
        QCOMPARE(TWOldStylePropertyList::write(value), text.isNull() ? std::nullopt : std::optional(text));
    }

    void writtenTextIsPlainASCIIAndRoundTrips_data()
    {
        QTest::addColumn<QVariant>("value");
        QString every;
        for (char16_t u = 0; u < 0xD800; ++u)
            every += QChar(u);
        for (char16_t u = 0xE000; u != 0; ++u)
            every += QChar(u);
        QTest::newRow("every BMP character and two beyond") << QVariant(every + QString::fromUtf8("😀𝄞"));
        QTest::newRow("lone surrogates") << QVariant(QString(QChar(0xDC00)) + QStringLiteral("x") + QChar(0xD800));
        QTest::newRow("syntax, from a comment start")
            << QVariant(QStringLiteral("// \"\\'/ /* */ = ; , ( ) { } < > \\U0041 \\n"));
        QByteArray bytes(256, '\0');
        for (int i = 0; i < 256; ++i)
            bytes[i] = char(i);
        QTest::newRow("dictionary: all bytes, empty key, nesting") << QVariant(QVariantMap{
            {QString(), bytes}, {QString::fromUtf8("clé"), QVariantList{QVariantMap(), QStringLiteral("/*x*/")}}});
    }

    void writtenTextIsPlainASCIIAndRoundTrips()
    {
        QFETCH(QVariant, value);
        const std::optional<QString> text = TWOldStylePropertyList::write(value);
        QVERIFY(text);
        for (const QChar c : *text)
            QVERIFY2(c.unicode() < 0x7f && (c.unicode() >= 0x20 || c == u'\n'), "not plain ASCII");
        QString error;
        const std::optional<QVariant> back = TWOldStylePropertyList::read(*text, &error);
        QVERIFY2(back, qPrintable(error));
        QCOMPARE(back->typeId(), value.typeId());
        QCOMPARE(*back, value);
    }

    // Hand-made library files come in any layout.
    void otherLayoutsAreRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariant>("expected");
        QVariantMap map;
        map.insert(QStringLiteral("a"), QStringLiteral("1"));
        map.insert(QStringLiteral("b c"), QVariantList{QStringLiteral("x"), QByteArray("\x0a\x1b\x2c")});
        QTest::newRow("one line, no blanks") << QStringLiteral("{a=1;\"b c\"=(x,<0a1b2c>);}") << QVariant(map);
        QTest::newRow("comments and odd spacing")
            << QStringLiteral("// library\n/**/{//k\n\"a\"/*=*/=\f1\r\n;\t\"b c\" =\v( x , < 0a 1B2C > , )//)\n;}//")
            << QVariant(map);
        QTest::newRow("every escape")
            << QStringLiteral("\"\\\"\\\\\\'\\/\\a\\b\\f\\n\\r\\t\\v\"") << QVariant(QStringLiteral("\"\\'/\a\b\f\n\r\t\v"));
        QTest::newRow("octal escapes") << QStringLiteral("\"\\101\\0\\12x\\1019\\377\"")
                                       << QVariant(QStringLiteral("A") + QChar(u'\0') + QStringLiteral("\nxA9") + QChar(0xff));
        QTest::newRow("\\U with one to four digits")
            << QStringLiteral("\"\\U41z\\U065e5\\U672C\\Ud83d\\Ude00\\U9\"")
            << QVariant(QStringLiteral("Az") + QChar(0x065e) + QStringLiteral("5") + QString::fromUtf8("本😀\t"));
        QTest::newRow("raw non-ASCII and line breaks in quotes") << QString::fromUtf8("\"é\n日\"")
                                                                 << QVariant(QString::fromUtf8("é\n日"));
        QTest::newRow("last of duplicate keys wins") << QStringLiteral("{k = first; k = last;}")
                                                     << QVariant(QVariantMap{{QStringLiteral("k"), QStringLiteral("last")}});
        QTest::newRow("empty containers, trailing comma") << QStringLiteral("( { } , ( /* */ ) , < > , )")
                                                          << QVariant(QVariantList{QVariantMap(), QVariantList(), QByteArray()});
        QTest::newRow("bare root") << QStringLiteral("  YES  ") << QVariant(QStringLiteral("YES"));
        QTest::newRow("slashes inside a bare string") << QStringLiteral("(a//b, c/ //d\n)")
                                                      << QVariant(QVariantList{QStringLiteral("a//b"), QStringLiteral("c/")});
    }

    void otherLayoutsAreRead()
    {
        QFETCH(QString, text);
        QFETCH(QVariant, expected);
        QString error;
        const std::optional<QVariant> value = TWOldStylePropertyList::read(text, &error);
        QVERIFY2(value, qPrintable(error));
        QCOMPARE(value->typeId(), expected.typeId());
        QCOMPARE(*value, expected);
    }

    // Each fails as a whole, with the reason and where it was found.
    void badTextsAreRefused_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("reason");
        QTest::newRow("empty") << QString() << QStringLiteral("empty text");
        QTest::newRow("unterminated string") << QStringLiteral("(\"abc") << QStringLiteral("unterminated string");
        QTest::newRow("backslash at the end") << QStringLiteral("\"abc\\") << QStringLiteral("unterminated string");
        QTest::newRow("\\U without digits") << QStringLiteral("\"\\Uxyz\"") << QStringLiteral("\\U without hex digits");
        QTest::newRow("lower-case \\u") << QStringLiteral("\"\\u0041\"") << QStringLiteral("unknown escape");
        QTest::newRow("where, by line and column") << QStringLiteral("{\n    a = b;\n    c = \\d;\n}")
                                                   << QStringLiteral("unexpected character at line 3, column 9");
        QTest::newRow("unterminated array") << QStringLiteral("(a,") << QStringLiteral("unterminated array");
        QTest::newRow("unterminated dictionary") << QStringLiteral("{a = b;") << QStringLiteral("unterminated dictionary");
        QTest::newRow("cut after '='") << QStringLiteral("{a =") << QStringLiteral("value expected");
        QTest::newRow("cut after the value") << QStringLiteral("{a = b") << QStringLiteral("';' expected");
        QTest::newRow("unterminated data") << QStringLiteral("<00ff") << QStringLiteral("unterminated data");
        QTest::newRow("odd hex digits") << QStringLiteral("<0 0f>") << QStringLiteral("odd number of hex digits");
        QTest::newRow("comment in data") << QStringLiteral("<00/**/ff>") << QStringLiteral("bad character in data");
        QTest::newRow("missing value") << QStringLiteral("{ a = ; }") << QStringLiteral("unexpected character");
        QTest::newRow("missing key") << QStringLiteral("{ = b; }") << QStringLiteral("string expected");
        QTest::newRow("missing equals") << QStringLiteral("{ a b; }") << QStringLiteral("'=' expected");
        QTest::newRow("missing comma") << QStringLiteral("(a b)") << QStringLiteral("',' or ')' expected");
        QTest::newRow("two values") << QStringLiteral("(a) b") << QStringLiteral("unexpected text after the value");
        QTest::newRow("unterminated comment") << QStringLiteral("(a /* b)") << QStringLiteral("unterminated comment");
        QTest::newRow("non-ASCII outside quotes") << QString::fromUtf8("(café)") << QStringLiteral("',' or ')' expected");
        QTest::newRow("NUL outside quotes") << QString(QChar(u'\0')) << QStringLiteral("unexpected character");
        QTest::newRow("arrays 100000 deep") << QString(100000, u'(') << QStringLiteral("nesting deeper than 512");
        QTest::newRow("dictionaries 100000 deep") << QStringLiteral("{a=").repeated(100000)
                                                  << QStringLiteral("nesting deeper than 512");
        QTest::newRow("closed nesting one too deep")
            << QString(TWOldStylePropertyList::maxDepth + 1, u'(') + QString(TWOldStylePropertyList::maxDepth + 1, u')')
            << QStringLiteral("nesting deeper than 512");
        QTest::newRow("20 MB unterminated string") << QStringLiteral("(\"") + QString(20 * 1024 * 1024, u'x')
                                                   << QStringLiteral("unterminated string");
    }

    void badTextsAreRefused()
    {
        QFETCH(QString, text);
        QFETCH(QString, reason);
        QString error;
        QVERIFY(!TWOldStylePropertyList::read(text, &error).has_value());
        QVERIFY2(error.contains(reason), qPrintable(error));
        QVERIFY2(error.contains(QLatin1String(" at line ")), qPrintable(error));
    }
};

QTEST_GUILESS_MAIN(tst_TWOldStylePropertyList)
#include "tst_TWOldStylePropertyList.moc"
