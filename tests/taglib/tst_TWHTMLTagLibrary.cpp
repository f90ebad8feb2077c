// The tag library: the built-in set, colouring lists, list operations, shortcut keys and the
// text form kept in the preferences and in .tlib files.
#include "taglib/TWHTMLTagLibrary.h"

#include "platform/TWBeep.h"
#include "platform/TWColorBytes.h"
#include "platform/TWLocalization.h"
#include "platform/TWOldStylePropertyList.h"
#include "taglib/TWHTMLTag.h"

#include <QCoreApplication>
#include <QSet>
#include <QTest>

namespace {

QStringList tagNames(const TWHTMLTagLibrary &library)
{
    QStringList names;
    for (const TWHTMLTagLibrary::Tag &tag : library.tagList())
        names << (tag->isCommentTag() ? QStringLiteral("comment")
                  : tag->isGenericTag() ? QStringLiteral("generic")
                  : tag->isQuotation()  ? QStringLiteral("quotation")
                                        : tag->tag());
    return names;
}

// A library holding just the built-in set.
struct BuiltIn
{
    BuiltIn()
    {
        library.loadFromPropertyListDictionary(QStringLiteral("()"));
        library.setBuiltInTags();
    }
    TWHTMLTagLibrary library;
};

QString record(const QString &entries)
{
    return *TWOldStylePropertyList::write(QStringLiteral("{ %1 }").arg(entries));
}

QString library(const QStringList &records)
{
    return QStringLiteral("(") + records.join(QLatin1String(", ")) + QStringLiteral(")");
}

} // namespace

class tst_TWHTMLTagLibrary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
    }

    void init()
    {
        TWResetBeepCount();
    }

    void newLibraryIsTheShippedLibrary()
    {
        TWHTMLTagLibrary library; // nothing stored in the preferences
        QCOMPARE(library.tagAtIndex(0), library.commentTag());
        QCOMPARE(library.tagAtIndex(1), library.genericTag());
        QVERIFY(library.tagAtIndex(2)->isQuotation());
        QVERIFY2(library.numberOfTags() > 40, qPrintable(tagNames(library).join(u' ')));
        QSet<QString> titles, keys;
        for (int index = 3; index < library.numberOfTags(); ++index) {
            const TWHTMLTag *tag = library.tagAtIndex(index);
            QVERIFY2(tag->type() == 1 || tag->type() == 2, qPrintable(tag->title()));
            QVERIFY2(tag->useSpecificColor(), qPrintable(tag->title()));
            QVERIFY2(!titles.contains(tag->title()), qPrintable(tag->title()));
            QVERIFY2(tag->firstTag().startsWith(u'<' + tag->tag()), qPrintable(tag->firstTag()));
            if (tag->type() == 2)
                QVERIFY2(tag->secondTag().startsWith(QStringLiteral("</") + tag->tag()), qPrintable(tag->secondTag()));
            titles << tag->title();
            if (tag->hasShortcutKey()) {
                QVERIFY2(!keys.contains(tag->shortcutKey()), qPrintable(tag->shortcutKey()));
                keys << tag->shortcutKey();
            }
        }
        QVERIFY(keys.contains(QStringLiteral("p")));
        library.setUpTagColor();
        // Common elements have colours of their own; unknown ones take the generic colour.
        for (const char *name : {"p", "DIV", "table", "h", "form", "ul"})
            QVERIFY2(library.colorForTag(QString::fromLatin1(name)) != library.genericTagColor(), name);
        QCOMPARE(library.colorForTag(QStringLiteral("blink")), library.genericTagColor());
        // Its text form reads back to the same library.
        const QString text = library.propertyListString();
        TWHTMLTagLibrary reread;
        QVERIFY(reread.loadFromPropertyListDictionary(text));
        QCOMPARE(reread.propertyListString(), text);
        QCOMPARE(reread.numberOfTags(), library.numberOfTags());
    }

    void builtInSetAndItsColours()
    {
        BuiltIn built;
        TWHTMLTagLibrary &library = built.library;
        QCOMPARE(tagNames(library), (QStringList{"comment", "generic", "quotation", "b", "i", "br", "img", "a"}));
        QCOMPARE(library.titleList().at(3), QStringLiteral("Bold Face  <b>"));
        QCOMPARE(library.titleList().at(0), QStringLiteral("Comment  <!--...-->"));
        QCOMPARE(library.titleList().at(7), QStringLiteral("Link  <a href=..."));
        QCOMPARE(library.tagAtIndex(7)->firstTag(), QStringLiteral("<a href =\"\">"));
        library.setUpTagColor();
        QCOMPARE(library.coloringTagList(), (QStringList{"!--", "br", "img", "a"}));
        QCOMPARE(library.coloringColorList(),
                 (QList<QColor>{QColor::fromRgbF(1, 0, 0), QColor::fromRgbF(0, 0, 1), QColor::fromRgbF(0, 1, 0),
                                QColor::fromRgbF(0, 0, 1)}));
        QCOMPARE(library.colorForTag(QStringLiteral("IMG")), QColor::fromRgbF(0, 1, 0));
        QCOMPARE(library.colorForTag(QStringLiteral("table")), library.genericTagColor());
        QCOMPARE(library.colorForTag(QString()), library.genericTagColor());
        QCOMPARE(library.tagAtIndex(-1), nullptr);
        QCOMPARE(library.tagAtIndex(8), nullptr);
    }

    void firstRecordOfANameGivesItsColour()
    {
        BuiltIn built;
        TWHTMLTagLibrary &library = built.library;
        const int red = library.addNewTag();
        library.tagAtIndex(red)->setTag(QStringLiteral("p"));
        library.tagAtIndex(red)->setUseSpecificColor(true);
        library.tagAtIndex(red)->setTagColor(Qt::red);
        const int blue = library.addNewTag();
        library.tagAtIndex(blue)->setTag(QStringLiteral("P"));
        library.tagAtIndex(blue)->setUseSpecificColor(true);
        library.tagAtIndex(blue)->setTagColor(Qt::blue);
        library.setUpTagColor();
        QCOMPARE(library.colorForTag(QStringLiteral("p")), QColor(Qt::red));
        QCOMPARE(library.coloringTagList().mid(4), (QStringList{"p", "P"}));
        const int generation = library.colorsGeneration();
        library.deleteTagAtIndex(red);
        library.setUpTagColor();
        QCOMPARE(library.colorForTag(QStringLiteral("p")), QColor(Qt::blue));
        QVERIFY(library.colorsGeneration() != generation);
        // The generic colour reaches every name without one of its own.
        library.genericTag()->setTagColor(Qt::magenta);
        QCOMPARE(library.colorForTag(QStringLiteral("table")), QColor(Qt::magenta));
    }

    void duplicateAndDelete()
    {
        BuiltIn built;
        TWHTMLTagLibrary &library = built.library;
        library.tagAtIndex(4)->setShortcutKey(QStringLiteral("i"));
        QCOMPARE(library.duplicateTagAtIndex(4), 5);
        QCOMPARE(library.tagAtIndex(5)->tag(), QStringLiteral("i"));
        QCOMPARE(library.tagAtIndex(5)->shortcutKey(), QString());
        QCOMPARE(library.duplicateTagAtIndex(8), 9);
        QCOMPARE(library.numberOfTags(), 10);
        QCOMPARE(library.duplicateTagAtIndex(0), -1);
        QCOMPARE(TWBeepCount(), 1);
        library.deleteTagAtIndex(1);
        QCOMPARE(TWBeepCount(), 2);
        QCOMPARE(library.numberOfTags(), 10);
        library.deleteTagAtIndex(9);
        QCOMPARE(library.numberOfTags(), 9);
    }

    void moveRows_data()
    {
        QTest::addColumn<QList<int>>("rows");
        QTest::addColumn<int>("target");
        QTest::addColumn<QString>("order");
        QTest::newRow("two rows to the top") << QList<int>{1, 3} << 0 << QStringLiteral("BDACE");
        QTest::newRow("first two to the end") << QList<int>{0, 1} << 5 << QStringLiteral("CDEAB");
        QTest::newRow("third above the first") << QList<int>{2} << 0 << QStringLiteral("CABDE");
        QTest::newRow("unsorted rows") << QList<int>{3, 0} << 5 << QStringLiteral("BCEAD");
        QTest::newRow("onto itself") << QList<int>{2} << 2 << QStringLiteral("ABCDE");
    }

    void moveRows()
    {
        QFETCH(QList<int>, rows);
        QFETCH(int, target);
        QFETCH(QString, order);
        TWHTMLTagLibrary library;
        QStringList records;
        for (const QChar letter : QStringLiteral("ABCDE"))
            records << record(QStringLiteral("type = 2; tag = %1;").arg(letter));
        QVERIFY(library.loadFromPropertyListDictionary(::library(records)));
        library.moveRowsOfArray(rows, target);
        QCOMPARE(tagNames(library).join(QString()), order);
    }

    void shortcutKeys()
    {
        BuiltIn built;
        TWHTMLTagLibrary &library = built.library;
        TWHTMLTag *bold = library.tagAtIndex(3);
        TWHTMLTag *italic = library.tagAtIndex(4);
        bold->setShortcutKey(QStringLiteral("k"));
        QVERIFY(library.isShortcutKey(QString(), italic));
        QVERIFY(!library.isShortcutKey(QStringLiteral("k"), italic));
        QVERIFY(!library.isShortcutKey(QStringLiteral("kx"), italic));
        QVERIFY(library.isShortcutKey(QStringLiteral("k"), bold));
        QVERIFY(library.isShortcutKey(QStringLiteral("K"), italic));
    }

    void textFormRoundTrip()
    {
        BuiltIn built;
        TWHTMLTagLibrary &library = built.library;
        library.tagAtIndex(3)->setShortcutKey(QStringLiteral("b"));
        library.tagAtIndex(4)->setTitle(QString::fromUtf8("Kursiv «i» 日本"));
        library.tagAtIndex(5)->setIncludeInMenu(false);
        TWHTMLTag *comment = library.commentTag();
        const QString text = library.propertyListString();
        for (const QChar c : text)
            QVERIFY2(c.unicode() < 0x80, "the library text is plain ASCII");

        QVERIFY(library.loadFromPropertyListDictionary(text));
        QCOMPARE(tagNames(library), (QStringList{"comment", "generic", "quotation", "b", "i", "br", "img", "a"}));
        QCOMPARE(library.tagAtIndex(0), comment);
        QCOMPARE(library.tagAtIndex(3)->shortcutKey(), QStringLiteral("b"));
        QCOMPARE(library.tagAtIndex(4)->title(), QString::fromUtf8("Kursiv «i» 日本"));
        QVERIFY(!library.tagAtIndex(5)->includeInMenu());
        QCOMPARE(library.tagAtIndex(6)->tagColor(), QColor::fromRgbF(0, 1, 0));
        QCOMPARE(library.propertyListString(), text);

        // Each record is itself a dictionary text with all ten keys.
        const QVariantList outer = TWOldStylePropertyList::read(text)->toList();
        const QVariantMap bold = TWOldStylePropertyList::read(outer.at(3).toString())->toMap();
        QCOMPARE(bold.size(), 10);
        QCOMPARE(bold.value(QStringLiteral("type")).toString(), QStringLiteral("2"));
        QCOMPARE(bold.value(QStringLiteral("tag color")).toByteArray(), QByteArray("\x00\x00\xff", 3));
        QCOMPARE(TWOldStylePropertyList::read(outer.at(1).toString())->toMap().value(QStringLiteral("type")).toString(),
                 QStringLiteral("3"));
        QCOMPARE(TWOldStylePropertyList::read(outer.at(0).toString())->toMap().value(QStringLiteral("type")).toString(),
                 QStringLiteral("4"));
        QCOMPARE(TWOldStylePropertyList::read(outer.at(2).toString())->toMap().value(QStringLiteral("type")).toString(),
                 QStringLiteral("5"));
    }

    void readingRules()
    {
        BuiltIn built;
        TWHTMLTagLibrary &library = built.library;
        QVERIFY(library.loadFromPropertyListDictionary(::library(
            {record(QStringLiteral("type = 4; \"first tag\" = \"[\"; name = Remark;")),
             record(QStringLiteral("type = 2; tag = p; \"include in menu\" = yes; \"tag color\" = <ff8000>; "
                                   "\"shortcut key\" = q;")),
             record(QStringLiteral("type = 2; tag = div; \"shortcut key\" = q; \"include in menu\" = YES;")),
             record(QStringLiteral("type = 7; tag = x;")),
             record(QStringLiteral("type = \"1abc\"; tag = hr; \"tag color\" = <ff80>;"))})));
        QCOMPARE(tagNames(library), (QStringList{"comment", "p", "div", "x", "hr"}));
        QCOMPARE(library.commentTag()->firstTag(), QStringLiteral("<!-- "));
        QCOMPARE(library.commentTag()->name(), QStringLiteral("Remark"));
        QVERIFY(!library.tagAtIndex(1)->includeInMenu());
        QCOMPARE(TWColorBytes::bytesFromColor(library.tagAtIndex(1)->tagColor(), false), QByteArray("\xff\x80\x00", 3));
        QCOMPARE(library.tagAtIndex(1)->tagColor().greenF(), float(128 / 255.0));
        QCOMPARE(library.tagAtIndex(1)->shortcutKey(), QStringLiteral("q"));
        QCOMPARE(library.tagAtIndex(2)->shortcutKey(), QString());
        QVERIFY(library.tagAtIndex(2)->includeInMenu());
        QCOMPARE(library.tagAtIndex(3)->type(), 7);
        QCOMPARE(library.tagAtIndex(4)->type(), 1);
        // Colour data that is not three bytes leaves the colour as it was.
        QCOMPARE(library.tagAtIndex(4)->tagColor(), QColor::fromRgbF(0, 0, 0));
        // The special tags left out of the text still exist, as they were.
        QVERIFY(library.genericTag());
        QCOMPARE(library.genericTag()->firstTag(), QStringLiteral("<>"));
    }

    void unreadableTextsLeaveTheLibraryWhole_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("not a property list") << QStringLiteral("(\"unterminated");
        QTest::newRow("a dictionary, not a list") << QStringLiteral("{ a = b; }");
        QTest::newRow("element not a dictionary text") << library({record(QStringLiteral("type = 2;")), QStringLiteral("\"(1, 2)\"")});
        QTest::newRow("element not text") << QStringLiteral("((a, b))");
        QTest::newRow("empty text") << QString();
    }

    void unreadableTextsLeaveTheLibraryWhole()
    {
        QFETCH(QString, text);
        BuiltIn built;
        const QString before = built.library.propertyListString();
        QVERIFY(!built.library.loadFromPropertyListDictionary(text));
        QCOMPARE(built.library.propertyListString(), before);
    }

    void recordWithoutTypeIsAPlainPairedRecord()
    {
        TWHTMLTagLibrary library;
        QVERIFY(library.loadFromPropertyListDictionary(
            ::library({record(QStringLiteral("tag = em; \"first tag\" = \"<em>\";")), record(QStringLiteral("type = 4;")),
                     record(QStringLiteral("type = 4; name = Twice;"))})));
        QCOMPARE(tagNames(library), (QStringList{"em", "comment"}));
        QCOMPARE(library.tagAtIndex(0)->type(), 2);
        QCOMPARE(library.commentTag()->name(), QStringLiteral("Twice"));
    }

    void thousandsOfRecords()
    {
        QStringList records;
        for (int i = 0; i < 5000; ++i)
            records << record(QStringLiteral("type = 2; tag = t%1; \"menu title\" = \"T %1\";").arg(i));
        TWHTMLTagLibrary library;
        QVERIFY(library.loadFromPropertyListDictionary(::library(records)));
        QCOMPARE(library.numberOfTags(), 5000);
        QCOMPARE(library.tagAtIndex(4999)->title(), QStringLiteral("T 4999"));
        library.setUpTagColor();
    }
};

QTEST_MAIN(tst_TWHTMLTagLibrary)
#include "tst_TWHTMLTagLibrary.moc"
