// Old-style (OpenStep) text property lists, the form of the tag library text: exact writer
// output, round trips, texts in other layouts, two-level tag library texts, values with no
// old-style form, and hostile input.
#include "platform/TWOldStylePropertyList.h"

#include <QDateTime>
#include <QElapsedTimer>
#include <QPoint>
#include <QTest>

namespace {

QByteArray allBytes()
{
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes.append(char(i));
    return bytes;
}

QVariant nested(int depth, const QVariant &innermost)
{
    QVariant value = innermost;
    for (int i = 0; i < depth; ++i)
        value = QVariantList{value};
    return value;
}

// The sample entry of a tag library: an array of strings, each itself a dictionary text.
const QString tagLibrary = QStringLiteral(
    "(\"{\\\"first tag\\\" = \\\"<b>\\\"; \\\"include in menu\\\" = YES; \\\"menu title\\\" = \\\"Bold Face  <b>\\\";"
    " name = Bold; \\\"second tag\\\" = \\\"</b>\\\"; \\\"shortcut key\\\" = \\\"\\\"; tag = b;"
    " \\\"tag color\\\" = <0000ff>; type = 2; \\\"use specific color\\\" = NO; }\")");

} // namespace

class tst_TWOldStylePropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // ---- The written form ---------------------------------------------------------------

    void writerOutputIsExact_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("bare word") << QVariant(QStringLiteral("abc")) << QStringLiteral("abc");
        QTest::newRow("every bare character")
            << QVariant(QStringLiteral("AZaz09_$+/:.-")) << QStringLiteral("AZaz09_$+/:.-");
        QTest::newRow("blank quoted") << QVariant(QStringLiteral("a b")) << QStringLiteral("\"a b\"");
        QTest::newRow("empty quoted") << QVariant(QString(QLatin1String(""))) << QStringLiteral("\"\"");
        QTest::newRow("null string quoted") << QVariant(QString()) << QStringLiteral("\"\"");
        QTest::newRow("markup quoted") << QVariant(QStringLiteral("<b>")) << QStringLiteral("\"<b>\"");
        QTest::newRow("punctuation quoted") << QVariant(QStringLiteral("a=b;c,(d){e}'f'*#@!?"))
                                            << QStringLiteral("\"a=b;c,(d){e}'f'*#@!?\"");
        QTest::newRow("quote and backslash") << QVariant(QStringLiteral("say \"hi\" \\o/"))
                                             << QStringLiteral("\"say \\\"hi\\\" \\\\o/\"");
        QTest::newRow("controls") << QVariant(QStringLiteral("a\nb\tc\rd\x01\x1b\x7f"))
                                  << QStringLiteral("\"a\\nb\\tc\\rd\\U0001\\U001b\\U007f\"");
        QTest::newRow("non-ASCII") << QVariant(QString::fromUtf8("é")) << QStringLiteral("\"\\U00e9\"");
        QTest::newRow("non-ASCII in a word") << QVariant(QString::fromUtf8("Café")) << QStringLiteral("\"Caf\\U00e9\"");
        QTest::newRow("CJK") << QVariant(QString::fromUtf8("日本")) << QStringLiteral("\"\\U65e5\\U672c\"");
        QTest::newRow("beyond the BMP") << QVariant(QString::fromUtf8("😀")) << QStringLiteral("\"\\Ud83d\\Ude00\"");
        QTest::newRow("comment start quoted") << QVariant(QStringLiteral("//x")) << QStringLiteral("\"//x\"");
        QTest::newRow("block comment start quoted") << QVariant(QStringLiteral("/*x")) << QStringLiteral("\"/*x\"");
        QTest::newRow("slashes inside stay bare") << QVariant(QStringLiteral("a//b")) << QStringLiteral("a//b");
        QTest::newRow("path stays bare") << QVariant(QStringLiteral("/usr/bin/firefox")) << QStringLiteral("/usr/bin/firefox");
        QTest::newRow("data") << QVariant(QByteArray("\x00\x00\xff", 3)) << QStringLiteral("<0000ff>");
        QTest::newRow("data, lower-case hex") << QVariant(QByteArray("\x0a\x1b\x2c\xAB\xCD\xEF\x01\x23\x45", 9))
                                              << QStringLiteral("<0a1b2cabcdef012345>");
        QTest::newRow("empty data") << QVariant(QByteArray()) << QStringLiteral("<>");
        QTest::newRow("number") << QVariant(2) << QStringLiteral("2");
        QTest::newRow("negative real") << QVariant(-1.5) << QStringLiteral("-1.5");
        QTest::newRow("YES") << QVariant(true) << QStringLiteral("YES");
        QTest::newRow("NO") << QVariant(false) << QStringLiteral("NO");
        QTest::newRow("empty array") << QVariant(QVariantList()) << QStringLiteral("()");
        QTest::newRow("empty dictionary") << QVariant(QVariantMap()) << QStringLiteral("{}");
        QTest::newRow("array") << QVariant(QVariantList{QStringLiteral("a"), QStringLiteral("b c")})
                               << QStringLiteral("(\n    a,\n    \"b c\"\n)");
        QTest::newRow("string list") << QVariant(QStringList{QStringLiteral("a"), QStringLiteral("b")})
                                     << QStringLiteral("(\n    a,\n    b\n)");
        QVariantMap map;
        map.insert(QStringLiteral("first tag"), QStringLiteral("<b>"));
        map.insert(QStringLiteral("type"), QStringLiteral("2"));
        map.insert(QStringLiteral("Name"), QStringLiteral("Bold"));
        QTest::newRow("dictionary, keys in map order")
            << QVariant(map) << QStringLiteral("{\n    Name = Bold;\n    \"first tag\" = \"<b>\";\n    type = 2;\n}");
        QTest::newRow("nested arrays") << QVariant(QVariantList{QVariantList{QStringLiteral("x")}})
                                       << QStringLiteral("(\n    (\n        x\n    )\n)");
        QVariantMap inner;
        inner.insert(QStringLiteral("list"), QVariantList{QVariantMap{{QStringLiteral("k"), QStringLiteral("v")}}, QVariantList()});
        inner.insert(QStringLiteral("none"), QVariantMap());
        QTest::newRow("nested dictionaries")
            << QVariant(QVariantMap{{QStringLiteral("outer"), inner}})
            << QStringLiteral("{\n"
                              "    outer = {\n"
                              "        list = (\n"
                              "            {\n"
                              "                k = v;\n"
                              "            },\n"
                              "            ()\n"
                              "        );\n"
                              "        none = {};\n"
                              "    };\n"
                              "}");
    }

    void writerOutputIsExact()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, text);
        QCOMPARE(TWOldStylePropertyList::write(value), std::optional<QString>(text));
    }

    void valuesWithoutAnOldStyleFormAreRefused_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::newRow("invalid") << QVariant();
        QTest::newRow("date") << QVariant(QDateTime::currentDateTimeUtc());
        QTest::newRow("foreign type") << QVariant(QPoint(1, 2));
        QTest::newRow("foreign type deep inside")
            << QVariant(QVariantMap{{QStringLiteral("a"), QVariantList{QStringLiteral("ok"), QPoint(1, 2)}}});
        QTest::newRow("nesting beyond the limit") << nested(TWOldStylePropertyList::maxDepth, QStringLiteral("deep"));
    }

    void valuesWithoutAnOldStyleFormAreRefused()
    {
        QFETCH(QVariant, value);
        QVERIFY(!TWOldStylePropertyList::write(value).has_value());
    }

    // ---- Round trips --------------------------------------------------------------------

    void writtenTextIsPlainASCIIAndRoundTrips_data()
    {
        QTest::addColumn<QVariant>("value");
        QString every;
        for (char16_t u = 1; u < 0xD800; ++u)
            every += QChar(u);
        for (char16_t u = 0xE000; u != 0; ++u)
            every += QChar(u);
        every += QString::fromUtf8("😀𝄞");
        QTest::newRow("every BMP character and two beyond") << QVariant(every);
        QTest::newRow("characters that matter to the syntax")
            << QVariant(QStringLiteral("\"\\'/ // /* */ = ; , ( ) { } < > \\U0041 \\n"));
        QTest::newRow("comment start") << QVariant(QStringLiteral("//"));
        QTest::newRow("NUL") << QVariant(QString(QChar(u'\0')));
        QTest::newRow("all 256 bytes") << QVariant(allBytes());
        QTest::newRow("nesting at the limit") << nested(TWOldStylePropertyList::maxDepth - 1, QStringLiteral("deep"));

        QVariantMap record;
        record.insert(QStringLiteral("name"), QString::fromUtf8("Fête «日本» 😀\n\t\"x\" \\ <b>&amp;"));
        record.insert(QStringLiteral("tag color"), allBytes());
        record.insert(QString(QLatin1String("")), QStringLiteral("empty key"));
        record.insert(QStringLiteral("empty value"), QString(QLatin1String("")));
        record.insert(QString::fromUtf8("clé"), QStringLiteral("/*not a comment*/"));
        record.insert(QStringLiteral("list"),
                      QVariantList{QVariantMap(), QVariantList(), QByteArray(), QStringLiteral("x"),
                                   QVariantMap{{QStringLiteral("deeper"), QVariantList{QStringLiteral("a b")}}}});
        QTest::newRow("nested, every kind") << QVariant(record);
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
        QCOMPARE(TWOldStylePropertyList::write(*back), text);
    }

    // The form has strings only: numbers and flags come back as their text.
    void numbersAndFlagsComeBackAsStrings()
    {
        const QVariantMap written{{QStringLiteral("type"), 2}, {QStringLiteral("ratio"), 0.25},
                                  {QStringLiteral("include in menu"), true}};
        const std::optional<QVariant> back = TWOldStylePropertyList::read(*TWOldStylePropertyList::write(written));
        QVERIFY(back);
        const QVariantMap expected{{QStringLiteral("type"), QStringLiteral("2")},
                                   {QStringLiteral("ratio"), QStringLiteral("0.25")},
                                   {QStringLiteral("include in menu"), QStringLiteral("YES")}};
        QCOMPARE(back->toMap(), expected);
        QCOMPARE(back->toMap().value(QStringLiteral("type")).typeId(), QMetaType::QString);
    }

    // ---- The tag library ----------------------------------------------------------------

    // The tag library keeps an array of strings, each a dictionary text of its own.
    void tagLibraryTextReadsInTwoLevels()
    {
        QString error;
        const std::optional<QVariant> outer = TWOldStylePropertyList::read(tagLibrary, &error);
        QVERIFY2(outer, qPrintable(error));
        QCOMPARE(outer->typeId(), QMetaType::QVariantList);
        QCOMPARE(outer->toList().size(), 1);
        QCOMPARE(outer->toList().first().typeId(), QMetaType::QString);
        const std::optional<QVariant> inner = TWOldStylePropertyList::read(outer->toList().first().toString(), &error);
        QVERIFY2(inner, qPrintable(error));
        QVariantMap expected;
        expected.insert(QStringLiteral("first tag"), QStringLiteral("<b>"));
        expected.insert(QStringLiteral("include in menu"), QStringLiteral("YES"));
        expected.insert(QStringLiteral("menu title"), QStringLiteral("Bold Face  <b>"));
        expected.insert(QStringLiteral("name"), QStringLiteral("Bold"));
        expected.insert(QStringLiteral("second tag"), QStringLiteral("</b>"));
        expected.insert(QStringLiteral("shortcut key"), QString(QLatin1String("")));
        expected.insert(QStringLiteral("tag"), QStringLiteral("b"));
        expected.insert(QStringLiteral("tag color"), QByteArray("\x00\x00\xff", 3));
        expected.insert(QStringLiteral("type"), QStringLiteral("2"));
        expected.insert(QStringLiteral("use specific color"), QStringLiteral("NO"));
        QCOMPARE(*inner, QVariant(expected));
    }

    void tagLibraryWrittenInTwoLevelsReadsBack()
    {
        const QVariantMap record = TWOldStylePropertyList::read(
                                       TWOldStylePropertyList::read(tagLibrary)->toList().first().toString())
                                       ->toMap();
        QVariantMap second = record;
        second.insert(QStringLiteral("name"), QString::fromUtf8("Überschrift \"1\""));
        second.insert(QStringLiteral("first tag"), QStringLiteral("<h1 class=\"x\">\n"));
        const QVariantList entries{*TWOldStylePropertyList::write(record), *TWOldStylePropertyList::write(second)};
        const std::optional<QString> library = TWOldStylePropertyList::write(entries);
        QVERIFY(library);
        QString error;
        const std::optional<QVariant> outer = TWOldStylePropertyList::read(*library, &error);
        QVERIFY2(outer, qPrintable(error));
        QCOMPARE(outer->toList().size(), 2);
        QCOMPARE(TWOldStylePropertyList::read(outer->toList().at(0).toString())->toMap(), record);
        QCOMPARE(TWOldStylePropertyList::read(outer->toList().at(1).toString())->toMap(), second);
    }

    // ---- Texts in other layouts -----------------------------------------------------------

    void otherLayoutsAreRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariant>("expected");
        QVariantMap map;
        map.insert(QStringLiteral("a"), QStringLiteral("1"));
        map.insert(QStringLiteral("b c"), QVariantList{QStringLiteral("x"), QByteArray("\x0a\x1b\x2c")});
        QTest::newRow("one line, no blanks") << QStringLiteral("{a=1;\"b c\"=(x,<0a1b2c>);}") << QVariant(map);
        QTest::newRow("comments and odd spacing")
            << QStringLiteral("// library\n{ /* first */ a\t=\n1 ;\r\n \"b c\" = ( x , < 0a 1b2c > , ) ; }  \n")
            << QVariant(map);
        QTest::newRow("comments everywhere")
            << QStringLiteral("/**/{//k\n\"a\"/*=*/=/* v */\"1\"//;\n;\"b c\"=(/*(*/x /**/,<0a1b2c>//)\n)/***/;}//")
            << QVariant(map);
        QTest::newRow("tabs, form feeds, CR line ends")
            << QStringLiteral("\t{\r\ta =\t1;\r\t\"b c\" =\f(\v\n x,\r\n <0a1b 2c>\n );\r}\r") << QVariant(map);
        QTest::newRow("the usual layout")
            << QStringLiteral("{\n"
                              "    CFBundleName = Tagwright;\n"
                              "    Items = (\n"
                              "        \"one\",\n"
                              "        two\n"
                              "    );\n"
                              "    Icon = <00010203 04050607 08>;\n"
                              "}\n")
            << QVariant(QVariantMap{{QStringLiteral("CFBundleName"), QStringLiteral("Tagwright")},
                                    {QStringLiteral("Items"), QVariantList{QStringLiteral("one"), QStringLiteral("two")}},
                                    {QStringLiteral("Icon"), QByteArray("\x00\x01\x02\x03\x04\x05\x06\x07\x08", 9)}});
        QTest::newRow("every escape")
            << QStringLiteral("\"\\\"\\\\\\'\\/\\a\\b\\f\\n\\r\\t\\v\"") << QVariant(QStringLiteral("\"\\'/\a\b\f\n\r\t\v"));
        QTest::newRow("octal escapes") << QStringLiteral("\"\\101\\0\\12x\\1019\\377\"")
                                       << QVariant(QStringLiteral("A") + QChar(u'\0') + QStringLiteral("\nxA9") + QChar(0xff));
        QTest::newRow("\\U with one to four digits")
            << QStringLiteral("\"\\U41z\\U065e5\\U65e5\\U672C\\Ud83d\\Ude00\\U9\"")
            << QVariant(QStringLiteral("Az") + QChar(0x065e) + QStringLiteral("5") + QString::fromUtf8("日本😀\t"));
        QTest::newRow("raw non-ASCII and line breaks in quotes") << QString::fromUtf8("\"é\n日\"")
                                                                 << QVariant(QString::fromUtf8("é\n日"));
        QTest::newRow("quoted key with escapes") << QStringLiteral("{\"a\\\"b\" = c;}")
                                                 << QVariant(QVariantMap{{QStringLiteral("a\"b"), QStringLiteral("c")}});
        QTest::newRow("last of duplicate keys wins") << QStringLiteral("{k = first; k = last;}")
                                                     << QVariant(QVariantMap{{QStringLiteral("k"), QStringLiteral("last")}});
        QTest::newRow("trailing comma") << QStringLiteral("(a,b,)") << QVariant(QVariantList{QStringLiteral("a"), QStringLiteral("b")});
        QTest::newRow("empty containers with blanks") << QStringLiteral("( { } , ( /* */ ) , < > )")
                                                      << QVariant(QVariantList{QVariantMap(), QVariantList(), QByteArray()});
        QTest::newRow("bare root") << QStringLiteral("  YES  ") << QVariant(QStringLiteral("YES"));
        QTest::newRow("slashes inside a bare string") << QStringLiteral("(a//b, c/ //d\n)")
                                                      << QVariant(QVariantList{QStringLiteral("a//b"), QStringLiteral("c/")});
        QTest::newRow("upper-case data") << QStringLiteral("<FF80>") << QVariant(QByteArray("\xff\x80"));
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

    // ---- Hostile input ------------------------------------------------------------------

    // Each must fail as a whole, quickly, with the reason and where it was found.
    void hostileInputFailsCleanly_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("reason");
        QTest::newRow("empty") << QString() << QStringLiteral("empty text");
        QTest::newRow("only blanks") << QStringLiteral(" \n\t ") << QStringLiteral("empty text");
        QTest::newRow("only a comment") << QStringLiteral("// nothing") << QStringLiteral("empty text");
        QTest::newRow("unterminated string") << QStringLiteral("(\"abc") << QStringLiteral("unterminated string");
        QTest::newRow("backslash at the end") << QStringLiteral("\"abc\\") << QStringLiteral("unterminated string");
        QTest::newRow("lone quote") << QStringLiteral("\"") << QStringLiteral("unterminated string");
        QTest::newRow("\\U at the end") << QStringLiteral("\"\\U") << QStringLiteral("\\U without hex digits");
        QTest::newRow("\\U without digits") << QStringLiteral("\"\\Uxyz\"") << QStringLiteral("\\U without hex digits");
        QTest::newRow("lower-case \\u") << QStringLiteral("\"\\u0041\"") << QStringLiteral("unknown escape");
        QTest::newRow("unknown escape") << QStringLiteral("\"\\q\"") << QStringLiteral("unknown escape");
        QTest::newRow("escaped digit 8") << QStringLiteral("\"\\8\"") << QStringLiteral("unknown escape");
        QTest::newRow("unterminated array") << QStringLiteral("(a, b") << QStringLiteral("unterminated array");
        QTest::newRow("unterminated array after comma") << QStringLiteral("(a,") << QStringLiteral("unterminated array");
        QTest::newRow("lone parenthesis") << QStringLiteral("(") << QStringLiteral("unterminated array");
        QTest::newRow("unterminated dictionary") << QStringLiteral("{a = b;") << QStringLiteral("unterminated dictionary");
        QTest::newRow("lone brace") << QStringLiteral("{") << QStringLiteral("unterminated dictionary");
        QTest::newRow("dictionary cut after the key") << QStringLiteral("{a") << QStringLiteral("'=' expected");
        QTest::newRow("dictionary cut after '='") << QStringLiteral("{a =") << QStringLiteral("value expected");
        QTest::newRow("dictionary cut after the value") << QStringLiteral("{a = b") << QStringLiteral("';' expected");
        QTest::newRow("unterminated data") << QStringLiteral("<00ff") << QStringLiteral("unterminated data");
        QTest::newRow("lone angle bracket") << QStringLiteral("<") << QStringLiteral("unterminated data");
        QTest::newRow("odd hex digits") << QStringLiteral("<0ff>") << QStringLiteral("odd number of hex digits");
        QTest::newRow("odd hex digits split by blanks") << QStringLiteral("<0 0f>") << QStringLiteral("odd number of hex digits");
        QTest::newRow("non-hex in data") << QStringLiteral("<00zz>") << QStringLiteral("bad character in data");
        QTest::newRow("comment in data") << QStringLiteral("<00/**/ff>") << QStringLiteral("bad character in data");
        QTest::newRow("missing value") << QStringLiteral("{ a = ; }") << QStringLiteral("unexpected character");
        QTest::newRow("missing key") << QStringLiteral("{ = b; }") << QStringLiteral("string expected");
        QTest::newRow("missing equals") << QStringLiteral("{ a b; }") << QStringLiteral("'=' expected");
        QTest::newRow("missing last semicolon") << QStringLiteral("{ a = b }") << QStringLiteral("';' expected");
        QTest::newRow("comma instead of semicolon") << QStringLiteral("{ a = b, c = d; }") << QStringLiteral("';' expected");
        QTest::newRow("double semicolon") << QStringLiteral("{ a = b;; }") << QStringLiteral("string expected");
        QTest::newRow("missing comma") << QStringLiteral("(a b)") << QStringLiteral("',' or ')' expected");
        QTest::newRow("leading comma") << QStringLiteral("(, a)") << QStringLiteral("unexpected character");
        QTest::newRow("double comma") << QStringLiteral("(a,, b)") << QStringLiteral("unexpected character");
        QTest::newRow("mismatched brackets") << QStringLiteral("(a}") << QStringLiteral("',' or ')' expected");
        QTest::newRow("trailing text") << QStringLiteral("(a) b") << QStringLiteral("unexpected text after the value");
        QTest::newRow("two values") << QStringLiteral("a b") << QStringLiteral("unexpected text after the value");
        QTest::newRow("stray closing parenthesis") << QStringLiteral(")") << QStringLiteral("unexpected character");
        QTest::newRow("unterminated comment") << QStringLiteral("(a /* b)") << QStringLiteral("unterminated comment");
        QTest::newRow("stray character") << QStringLiteral("(a, ?)") << QStringLiteral("unexpected character");
        QTest::newRow("non-ASCII outside quotes") << QString::fromUtf8("(café)") << QStringLiteral("',' or ')' expected");
        QTest::newRow("NUL outside quotes") << QString(QChar(u'\0')) << QStringLiteral("unexpected character");
        QTest::newRow("single quotes") << QStringLiteral("'a'") << QStringLiteral("unexpected character");
        QTest::newRow("dictionary as key") << QStringLiteral("{ {a=b;} = c; }") << QStringLiteral("string expected");
        QTest::newRow("data as key") << QStringLiteral("{ <00> = c; }") << QStringLiteral("string expected");
        QTest::newRow("nesting 100000 deep") << QString(100000, u'(') << QStringLiteral("nesting deeper than 512");
        QString deepDictionaries;
        for (int i = 0; i < 100000; ++i)
            deepDictionaries += QLatin1String("{a=");
        QTest::newRow("dictionaries 100000 deep") << deepDictionaries << QStringLiteral("nesting deeper than 512");
        QTest::newRow("closed nesting one too deep")
            << QString(TWOldStylePropertyList::maxDepth + 1, u'(') + QString(TWOldStylePropertyList::maxDepth + 1, u')')
            << QStringLiteral("nesting deeper than 512");
        QTest::newRow("truncated library") << tagLibrary.left(40) << QStringLiteral("unterminated string");
        QTest::newRow("20 MB unterminated string") << QStringLiteral("(\"") + QString(20 * 1024 * 1024, u'x')
                                                   << QStringLiteral("unterminated string");
        QTest::newRow("20 MB unterminated comment") << QStringLiteral("(a /*") + QString(20 * 1024 * 1024, u'*')
                                                    << QStringLiteral("unterminated comment");
        QTest::newRow("a million opening brackets") << QString(1000000, u'(')
                                                   << QStringLiteral("nesting deeper than 512");
    }

    void hostileInputFailsCleanly()
    {
        QFETCH(QString, text);
        QFETCH(QString, reason);
        QElapsedTimer timer;
        timer.start();
        QString error;
        QVERIFY(!TWOldStylePropertyList::read(text, &error).has_value());
        QVERIFY2(error.contains(reason), qPrintable(error));
        QVERIFY2(error.contains(QLatin1String(" at line ")), qPrintable(error));
        QVERIFY2(timer.elapsed() < 2000, "hostile input must not make the reader hang");
    }

    void errorSaysWhere()
    {
        QString error;
        QVERIFY(!TWOldStylePropertyList::read(QStringLiteral("{\n    a = b;\n    c = \\d;\n}"), &error));
        QVERIFY2(error.endsWith(QLatin1String("at line 3, column 9")), qPrintable(error));
    }

    // ---- Size ---------------------------------------------------------------------------

    // A large library must not take quadratic time.
    void largeTextsReadInLinearTime_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<qsizetype>("size");
        const qsizetype twenty = 20 * 1024 * 1024;
        QTest::newRow("20 MB quoted string")
            << QStringLiteral("\"") + QString(twenty, u'x') + QStringLiteral("\\n\"") << twenty + 1;
        QString escaped;
        escaped.reserve(twenty);
        for (qsizetype i = 0; i < twenty / 8; ++i)
            escaped += QLatin1String("\\U00e9\\n");
        QTest::newRow("20 MB of escapes") << QStringLiteral("\"") + escaped + QStringLiteral("\"") << twenty / 4;
        QTest::newRow("20 MB bare string") << QString(twenty, u'a') << twenty;
        QTest::newRow("10 MB data") << QStringLiteral("<") + QString(twenty, u'f') + QStringLiteral(">") << twenty / 2;
        QString array = QStringLiteral("(");
        for (int i = 0; i < 1000000; ++i)
            array += QLatin1String("\"item\", ");
        array += u')';
        QTest::newRow("array of a million strings") << array << qsizetype(1000000);
    }

    void largeTextsReadInLinearTime()
    {
        QFETCH(QString, text);
        QFETCH(qsizetype, size);
        QElapsedTimer timer;
        timer.start();
        QString error;
        const std::optional<QVariant> value = TWOldStylePropertyList::read(text, &error);
        const qint64 elapsed = timer.elapsed();
        QVERIFY2(value, qPrintable(error));
        const qsizetype got = value->typeId() == QMetaType::QByteArray ? value->toByteArray().size()
            : value->typeId() == QMetaType::QVariantList                ? value->toList().size()
                                                                        : value->toString().size();
        QCOMPARE(got, size);
        QVERIFY2(elapsed < 2000, qPrintable(QStringLiteral("reading took %1 ms").arg(elapsed)));
    }

    void largeLibraryRoundTrips()
    {
        QVariantList records;
        for (int i = 0; i < 20000; ++i)
            records << QStringLiteral("{ name = \"record %1\"; type = 2; }").arg(i);
        QElapsedTimer timer;
        timer.start();
        const std::optional<QString> text = TWOldStylePropertyList::write(records);
        QVERIFY(text);
        const std::optional<QVariant> back = TWOldStylePropertyList::read(*text);
        QVERIFY(back);
        QCOMPARE(back->toList(), records);
        QVERIFY2(timer.elapsed() < 2000, "writing and reading 20000 records took too long");
    }
};

QTEST_GUILESS_MAIN(tst_TWOldStylePropertyList)
#include "tst_TWOldStylePropertyList.moc"
