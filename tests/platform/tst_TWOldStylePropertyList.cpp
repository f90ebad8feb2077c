// Old-style (OpenStep) text property lists, the form of the tag library text: exact writer
// output, round trips, two-level tag library texts, and hostile input.
#include "platform/TWOldStylePropertyList.h"

#include <QElapsedTimer>
#include <QTest>

class tst_TWOldStylePropertyList : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void writerOutputIsExact_data()
    {
        QTest::addColumn<QVariant>("value");
        QTest::addColumn<QString>("text");
        QTest::newRow("bare word") << QVariant(QStringLiteral("abc")) << QStringLiteral("abc");
        QTest::newRow("bare punctuation") << QVariant(QStringLiteral("a_b$c+d/e:f.g-h")) << QStringLiteral("a_b$c+d/e:f.g-h");
        QTest::newRow("blank quoted") << QVariant(QStringLiteral("a b")) << QStringLiteral("\"a b\"");
        QTest::newRow("empty quoted") << QVariant(QString(QLatin1String(""))) << QStringLiteral("\"\"");
        QTest::newRow("markup quoted") << QVariant(QStringLiteral("<b>")) << QStringLiteral("\"<b>\"");
        QTest::newRow("quote and backslash") << QVariant(QStringLiteral("say \"hi\" \\o/"))
                                             << QStringLiteral("\"say \\\"hi\\\" \\\\o/\"");
        QTest::newRow("controls") << QVariant(QStringLiteral("a\nb\tc\rd\x01")) << QStringLiteral("\"a\\nb\\tc\\rd\\U0001\"");
        QTest::newRow("non-ASCII") << QVariant(QString::fromUtf8("é")) << QStringLiteral("\"\\U00e9\"");
        QTest::newRow("beyond the BMP") << QVariant(QString::fromUtf8("😀")) << QStringLiteral("\"\\Ud83d\\Ude00\"");
        QTest::newRow("data") << QVariant(QByteArray("\x00\x00\xff", 3)) << QStringLiteral("<0000ff>");
        QTest::newRow("number") << QVariant(2) << QStringLiteral("2");
        QTest::newRow("boolean") << QVariant(true) << QStringLiteral("YES");
        QTest::newRow("empty array") << QVariant(QVariantList()) << QStringLiteral("()");
        QTest::newRow("empty dictionary") << QVariant(QVariantMap()) << QStringLiteral("{}");
        QTest::newRow("array") << QVariant(QVariantList{QStringLiteral("a"), QStringLiteral("b c")})
                               << QStringLiteral("(\n    a,\n    \"b c\"\n)");
        QVariantMap map;
        map.insert(QStringLiteral("first tag"), QStringLiteral("<b>"));
        map.insert(QStringLiteral("type"), QStringLiteral("2"));
        QTest::newRow("dictionary") << QVariant(map)
                                    << QStringLiteral("{\n    \"first tag\" = \"<b>\";\n    type = 2;\n}");
        QTest::newRow("nested") << QVariant(QVariantList{QVariantList{QStringLiteral("x")}})
                                << QStringLiteral("(\n    (\n        x\n    )\n)");
    }

    void writerOutputIsExact()
    {
        QFETCH(QVariant, value);
        QFETCH(QString, text);
        QCOMPARE(TWOldStylePropertyList::write(value), std::optional<QString>(text));
    }

    void writtenTextIsPlainASCIIAndRoundTrips_data()
    {
        QTest::addColumn<QVariant>("value");
        QString every;
        for (char16_t u = 1; u < 0x3000; u += 7)
            every += QChar(u);
        every += QString::fromUtf8("😀日本語\"\\");
        QByteArray bytes;
        for (int i = 0; i < 256; ++i)
            bytes.append(char(i));
        QVariantMap record;
        record.insert(QStringLiteral("name"), every);
        record.insert(QStringLiteral("tag color"), bytes);
        record.insert(QStringLiteral(""), QStringLiteral("empty key"));
        record.insert(QStringLiteral("list"), QVariantList{QVariantMap(), QVariantList(), QString(QLatin1String(""))});
        QTest::newRow("mixed") << QVariant(record);
        QTest::newRow("many characters") << QVariant(every);
    }

    void writtenTextIsPlainASCIIAndRoundTrips()
    {
        QFETCH(QVariant, value);
        const std::optional<QString> text = TWOldStylePropertyList::write(value);
        QVERIFY(text);
        for (const QChar c : *text)
            QVERIFY2(c.unicode() < 0x7f && (c.unicode() >= 0x20 || c == QLatin1Char('\n')), "not plain ASCII");
        QString error;
        const std::optional<QVariant> back = TWOldStylePropertyList::read(*text, &error);
        QVERIFY2(back, qPrintable(error));
        QCOMPARE(*back, value);
    }

    // The tag library keeps an array of strings, each a dictionary text of its own.
    void tagLibraryTextReadsInTwoLevels()
    {
        const QString library = QStringLiteral(
            "(\"{\\\"first tag\\\" = \\\"<b>\\\"; \\\"include in menu\\\" = YES; \\\"menu title\\\" = \\\"Bold Face  <b>\\\";"
            " name = Bold; \\\"second tag\\\" = \\\"</b>\\\"; \\\"shortcut key\\\" = \\\"\\\"; tag = b;"
            " \\\"tag color\\\" = <0000ff>; type = 2; \\\"use specific color\\\" = NO; }\")");
        QString error;
        const std::optional<QVariant> outer = TWOldStylePropertyList::read(library, &error);
        QVERIFY2(outer, qPrintable(error));
        QCOMPARE(outer->toList().size(), 1);
        const std::optional<QVariant> inner = TWOldStylePropertyList::read(outer->toList().first().toString(), &error);
        QVERIFY2(inner, qPrintable(error));
        const QVariantMap record = inner->toMap();
        QCOMPARE(record.size(), 10);
        QCOMPARE(record.value(QStringLiteral("first tag")).toString(), QStringLiteral("<b>"));
        QCOMPARE(record.value(QStringLiteral("menu title")).toString(), QStringLiteral("Bold Face  <b>"));
        QCOMPARE(record.value(QStringLiteral("shortcut key")).toString(), QString());
        QCOMPARE(record.value(QStringLiteral("tag color")).toByteArray(), QByteArray("\x00\x00\xff", 3));
        QCOMPARE(record.value(QStringLiteral("type")).toString(), QStringLiteral("2"));

        // Written again in the same two levels, it reads back the same.
        const QString rewritten = *TWOldStylePropertyList::write(QVariantList{*TWOldStylePropertyList::write(record)});
        const QVariant again = *TWOldStylePropertyList::read(
            TWOldStylePropertyList::read(rewritten)->toList().first().toString());
        QCOMPARE(again.toMap(), record);
    }

    void otherLayoutsAreRead_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QVariant>("expected");
        QVariantMap map;
        map.insert(QStringLiteral("a"), QStringLiteral("1"));
        map.insert(QStringLiteral("b c"), QVariantList{QStringLiteral("x"), QByteArray("\x0a\x1b\x2c")});
        QTest::newRow("one line") << QStringLiteral("{a=1;\"b c\"=(x,<0a1b2c>);}") << QVariant(map);
        QTest::newRow("comments and odd spacing")
            << QStringLiteral("// library\n{ /* first */ a\t=\n1 ;\r\n \"b c\" = ( x , < 0a 1b2c > , ) ; }  \n")
            << QVariant(map);
        QTest::newRow("escapes") << QStringLiteral("\"\\101\\t\\U65e5\\U672c\\'\\/\\a\"")
                                 << QVariant(QString::fromUtf8("A\t日本'/\a"));
        QTest::newRow("short \\U") << QStringLiteral("\"\\U41z\"") << QVariant(QStringLiteral("Az"));
        QTest::newRow("trailing comma") << QStringLiteral("(a,b,)") << QVariant(QVariantList{QStringLiteral("a"), QStringLiteral("b")});
        QTest::newRow("bare root") << QStringLiteral("  YES  ") << QVariant(QStringLiteral("YES"));
        QTest::newRow("upper-case data") << QStringLiteral("<FF80>") << QVariant(QByteArray("\xff\x80"));
    }

    void otherLayoutsAreRead()
    {
        QFETCH(QString, text);
        QFETCH(QVariant, expected);
        QString error;
        const std::optional<QVariant> value = TWOldStylePropertyList::read(text, &error);
        QVERIFY2(value, qPrintable(error));
        QCOMPARE(*value, expected);
    }

    void hostileInputFailsCleanly_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("empty") << QString();
        QTest::newRow("only a comment") << QStringLiteral("// nothing");
        QTest::newRow("unterminated string") << QStringLiteral("(\"abc");
        QTest::newRow("backslash at the end") << QStringLiteral("\"abc\\");
        QTest::newRow("\\U without digits") << QStringLiteral("\"\\Uxyz\"");
        QTest::newRow("unknown escape") << QStringLiteral("\"\\q\"");
        QTest::newRow("unterminated array") << QStringLiteral("(a, b");
        QTest::newRow("unterminated dictionary") << QStringLiteral("{a = b;");
        QTest::newRow("unterminated data") << QStringLiteral("<00ff");
        QTest::newRow("odd hex digits") << QStringLiteral("<0ff>");
        QTest::newRow("non-hex in data") << QStringLiteral("<00zz>");
        QTest::newRow("missing value") << QStringLiteral("{ a = ; }");
        QTest::newRow("missing key") << QStringLiteral("{ = b; }");
        QTest::newRow("missing equals") << QStringLiteral("{ a b; }");
        QTest::newRow("missing semicolon") << QStringLiteral("{ a = b }");
        QTest::newRow("missing comma") << QStringLiteral("(a b)");
        QTest::newRow("trailing text") << QStringLiteral("(a) b");
        QTest::newRow("unterminated comment") << QStringLiteral("(a /* b)");
        QTest::newRow("stray character") << QStringLiteral("(a, ?)");
        QTest::newRow("dictionary as key") << QStringLiteral("{ {a=b;} = c; }");
        QTest::newRow("nesting 100000 deep") << QString(100000, QLatin1Char('('));
        QTest::newRow("closed nesting too deep")
            << QString(TWOldStylePropertyList::maxDepth + 1, QLatin1Char('('))
                   + QString(TWOldStylePropertyList::maxDepth + 1, QLatin1Char(')'));
        QTest::newRow("truncated library") << QStringLiteral("(\"{\\\"first tag\\\" = \\\"<b>\\\"; na");
    }

    void hostileInputFailsCleanly()
    {
        QFETCH(QString, text);
        QString error;
        QVERIFY(!TWOldStylePropertyList::read(text, &error).has_value());
        QVERIFY(!error.isEmpty());
    }

    void allowedNestingIsRead()
    {
        const int depth = TWOldStylePropertyList::maxDepth;
        QVERIFY(TWOldStylePropertyList::read(QString(depth, QLatin1Char('(')) + QString(depth, QLatin1Char(')'))));
    }

    // A large library must not take quadratic time.
    void largeTextReadsInLinearTime()
    {
        QString big = QStringLiteral("\"") + QString(20 * 1024 * 1024, QLatin1Char('x')) + QStringLiteral("\\n\"");
        QElapsedTimer timer;
        timer.start();
        const std::optional<QVariant> value = TWOldStylePropertyList::read(big);
        QVERIFY(value);
        QCOMPARE(value->toString().size(), 20 * 1024 * 1024 + 1);
        QVERIFY2(timer.elapsed() < 5000, "reading 20 MB took too long");

        QVariantList records;
        for (int i = 0; i < 5000; ++i)
            records << QStringLiteral("{ name = \"record %1\"; type = 2; }").arg(i);
        const std::optional<QString> text = TWOldStylePropertyList::write(records);
        QVERIFY(text);
        QCOMPARE(TWOldStylePropertyList::read(*text)->toList().size(), 5000);
    }
};

QTEST_GUILESS_MAIN(tst_TWOldStylePropertyList)
#include "tst_TWOldStylePropertyList.moc"
