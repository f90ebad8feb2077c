// The tag library: the shipped and built-in sets, colouring, list operations, shortcut keys, the
// text form kept in the preferences and in .tlib files, and stored texts that cannot be read.
#include "taglib/TWHTMLTagLibrary.h"

#include "platform/TWBeep.h"
#include "platform/TWColorBytes.h"
#include "platform/TWOldStylePropertyList.h"
#include "platform/TWPaths.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferenceKeys.h"
#include "preferences/TWPreferences.h"
#include "taglib/TWHTMLTag.h"

#include <QDir>
#include <QFile>
#include <QSet>
#include <QTest>

namespace {

QStringList tagNames(const TWHTMLTagLibrary &library)
{
    QStringList names;
    for (const TWHTMLTagLibrary::Tag &tag : library.tagList())
        names << (tag->isCommentTag() ? QStringLiteral("comment") : tag->isGenericTag() ? QStringLiteral("generic")
                  : tag->isQuotation() ? QStringLiteral("quotation") : tag->tag());
    return names;
}

// A library holding just the built-in set.
struct BuiltIn : TWHTMLTagLibrary
{
    BuiltIn() { loadFromPropertyListDictionary(QStringLiteral("()")); setBuiltInTags(); }
};

// A library text: a list of records, each given by its entries.
QString library(const QStringList &records)
{
    QVariantList texts;
    for (const QString &entries : records)
        texts << QStringLiteral("{ %1 }").arg(entries);
    return *TWOldStylePropertyList::write(texts);
}

} // namespace

class tst_TWHTMLTagLibrary : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        TWResetBeepCount();
        // Each test starts from a store without a library text, read by new preferences.
        TWUserDefaults::standardUserDefaults()->removeObjectForKey(QLatin1String(TWPreferenceKey::htmlTagLibrary));
        delete TWPreferences::sharedPref();
    }

    void newLibraryIsTheShippedLibrary()
    {
        TWHTMLTagLibrary library; // nothing stored in the preferences
        QCOMPARE(tagNames(library).mid(0, 3), (QStringList{"comment", "generic", "quotation"}));
        QVERIFY2(library.numberOfTags() > 40, qPrintable(tagNames(library).join(u' ')));
        // Every record can be inserted and reached in the menus, and is coloured.
        QSet<QString> titles;
        for (int index = 3; index < library.numberOfTags(); ++index) {
            const TWHTMLTag *tag = library.tagAtIndex(index);
            QVERIFY2((tag->type() == 1 || tag->type() == 2) && tag->useSpecificColor() && !titles.contains(tag->title())
                         && tag->firstTag().startsWith(u'<' + tag->tag())
                         && (tag->type() == 1 || tag->secondTag().startsWith(QStringLiteral("</") + tag->tag())),
                     qPrintable(tag->title()));
            titles << tag->title();
        }
        library.setUpTagColor();
        // Common elements have colours of their own.
        for (const char *name : {"p", "DIV", "table", "h", "form", "ul"})
            QVERIFY2(library.colorForTag(QString::fromLatin1(name)) != library.genericTagColor(), name);
    }

    void colourOfEachName()
    {
        BuiltIn library;
        const QColor red = QColor::fromRgbF(1, 0, 0), green = QColor::fromRgbF(0, 1, 0), blue = QColor::fromRgbF(0, 0, 1);
        for (const auto &[name, color] : {std::pair{"p", red}, std::pair{"P", blue}}) {
            TWHTMLTag *tag = library.tagAtIndex(library.addNewTag());
            tag->setTag(QString::fromLatin1(name));
            tag->setUseSpecificColor(true);
            tag->setTagColor(color);
        }
        library.setUpTagColor();
        // The comment and the records of a colour of their own are listed; the first record of a
        // name gives its colour, whatever the case; other names take the generic colour.
        QCOMPARE(library.coloringTagList(), (QStringList{"!--", "br", "img", "a", "p", "P"}));
        QCOMPARE(library.coloringColorList(), (QList<QColor>{red, blue, green, blue, red, blue}));
        QCOMPARE(library.colorForTag(QStringLiteral("P")), red);
        for (const QString &name : {QStringLiteral("table"), QString()})
            QCOMPARE(library.colorForTag(name), library.genericTagColor());
        const int generation = library.colorsGeneration();
        library.deleteTagAtIndex(8);
        library.setUpTagColor();
        QCOMPARE(library.colorForTag(QStringLiteral("p")), blue);
        QVERIFY(library.colorsGeneration() != generation);
        // The generic colour reaches every name without one of its own, as it is now.
        library.genericTag()->setTagColor(Qt::magenta);
        QCOMPARE(library.colorForTag(QStringLiteral("table")), QColor(Qt::magenta));
    }

    void moveRows_data()
    {
        QTest::addColumn<QList<int>>("rows");
        QTest::addColumn<int>("target");
        QTest::addColumn<QString>("order");
        QTest::newRow("two rows to the top") << QList<int>{1, 3} << 0 << QStringLiteral("BDACE");
        QTest::newRow("first two to the end") << QList<int>{0, 1} << 5 << QStringLiteral("CDEAB");
        QTest::newRow("unsorted rows") << QList<int>{3, 0} << 5 << QStringLiteral("BCEAD");
        QTest::newRow("onto itself") << QList<int>{2} << 2 << QStringLiteral("ABCDE");
    }

    void moveRows()
    {
        QFETCH(QList<int>, rows);
        QFETCH(int, target);
        QFETCH(QString, order);
        TWHTMLTagLibrary library;
        QVERIFY(library.loadFromPropertyListDictionary(::library({"tag = A;", "tag = B;", "tag = C;", "tag = D;", "tag = E;"})));
        library.moveRowsOfArray(rows, target);
        QCOMPARE(tagNames(library).join(QString()), order);
    }

    void textFormRoundTrip()
    {
        BuiltIn library;
        library.tagAtIndex(3)->setShortcutKey(QStringLiteral("b"));
        library.tagAtIndex(4)->setTitle(QString::fromUtf8("Kursiv «i» 日本"));
        library.tagAtIndex(5)->setIncludeInMenu(false);
        const QString text = library.propertyListString();

        // Read back, every record is the same (each is written with all ten keys), and the
        // special tags are the same instances.
        QVERIFY(library.loadFromPropertyListDictionary(text));
        QCOMPARE(library.propertyListString(), text);
        QCOMPARE(library.tagAtIndex(0), library.commentTag());
        const QVariantList outer = TWOldStylePropertyList::read(text)->toList();
        const auto entries = [&outer](int index) { return TWOldStylePropertyList::read(outer.at(index).toString())->toMap(); };
        QCOMPARE(entries(3).size(), 10);
        QCOMPARE(entries(3).value(QStringLiteral("tag color")).toByteArray(), QByteArray("\x00\x00\xff", 3));
        // Comment, generic tag, quotation and a plain record are told apart by their type.
        for (const auto &[index, type] : {std::pair{0, "4"}, std::pair{1, "3"}, std::pair{2, "5"}, std::pair{3, "2"}})
            QCOMPARE(entries(index).value(QStringLiteral("type")).toString(), QString::fromLatin1(type));
    }

    void readingRules()
    {
        BuiltIn library;
        QVERIFY(library.loadFromPropertyListDictionary(::library(
            {"type = 4; \"first tag\" = \"[\"; name = Remark;",
             "type = 2; tag = p; \"include in menu\" = yes; \"tag color\" = <ff8000>; \"shortcut key\" = q;",
             "type = 2; tag = div; \"shortcut key\" = q; \"include in menu\" = YES;", "type = 7; tag = x;",
             "type = \"1abc\"; tag = hr; \"tag color\" = <ff80>;", "tag = em;", "type = 4; name = Twice;"})));
        // A special tag given twice is listed once and takes both; its fixed parts stay, and the
        // special tags left out of the text still exist, as they were.
        QCOMPARE(tagNames(library), (QStringList{"comment", "p", "div", "x", "hr", "em"}));
        QCOMPARE(library.commentTag()->name(), QStringLiteral("Twice"));
        QCOMPARE(library.commentTag()->firstTag(), QStringLiteral("<!-- "));
        QCOMPARE(library.genericTag()->firstTag(), QStringLiteral("<>"));
        const TWHTMLTag *p = library.tagAtIndex(1), *div = library.tagAtIndex(2), *hr = library.tagAtIndex(4);
        // Only "YES" is yes. Of two records with one key, the first keeps it. A key is free when
        // there is none, when it is the record's own, or in another case; the first character counts.
        QVERIFY(!p->includeInMenu() && div->includeInMenu());
        QCOMPARE((QStringList{p->shortcutKey(), div->shortcutKey()}), (QStringList{"q", ""}));
        const auto free = [&library](const char *key, auto *tag) { return library.isShortcutKey(QString::fromLatin1(key), tag); };
        QCOMPARE((QList<bool>{free("", div), free("q", p), free("Q", div), free("q", div), free("qx", div)}),
                 (QList<bool>{true, true, true, false, false}));
        QCOMPARE(TWColorBytes::bytesFromColor(p->tagColor(), false), QByteArray("\xff\x80\x00", 3));
        // Colour data that is not three bytes leaves the colour as it was.
        QCOMPARE(hr->tagColor(), QColor::fromRgbF(0, 0, 0));
        // The type is the number the text starts with; a record without one is paired.
        QCOMPARE((QList<int>{library.tagAtIndex(3)->type(), hr->type(), library.tagAtIndex(5)->type()}), (QList<int>{7, 1, 2}));
    }

    void unreadableTextsLoseNothing_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("reason"); // part of the reason given; none when the text is read
        QTest::newRow("syntax error") << QStringLiteral("(\n\"{type = 2;}\",\n\"{tag = \u00e9m") << QStringLiteral("line 3");
        QTest::newRow("a dictionary, not a list") << QStringLiteral("{ \"\u00dcberschrift\" = h1; }") << QStringLiteral("not a list");
        QTest::newRow("element not a dictionary text") << QStringLiteral("(\"{type = 2;}\", \"(1, 2)\")") << QStringLiteral("record 2");
        QTest::newRow("element not text") << QStringLiteral("((a, b))") << QStringLiteral("record 1");
        QTest::newRow("readable") << library({QStringLiteral("type = 2; tag = \"\u00e9m\";")}) << QString();
    }

    void unreadableTextsLoseNothing()
    {
        QFETCH(QString, text);
        QFETCH(QString, reason);
        const bool readable = reason.isEmpty();
        // Loaded into a library, it leaves the library whole.
        BuiltIn built;
        const QString before = built.propertyListString();
        QCOMPARE(built.loadFromPropertyListDictionary(text), readable);
        QCOMPARE(built.propertyListString() == before, !readable);

        // Found in the store at a start, it gives the library, or else the shipped set stands
        // in and the user's text waits, whole, in the data folder.
        const QString shipped = TWHTMLTagLibrary().propertyListString();
        QDir folder(TWApplicationDataFolder());
        folder.removeRecursively();
        TWUserDefaults::standardUserDefaults()->setObject(text, QLatin1String(TWPreferenceKey::htmlTagLibrary));
        delete TWPreferences::sharedPref();
        const TWHTMLTagLibrary library;
        QCOMPARE(library.propertyListString(), readable ? built.propertyListString() : shipped);
        const QStringList kept = folder.entryList({QStringLiteral("Unreadable Tag Library *.tlib")}, QDir::Files);
        QCOMPARE(kept.size(), readable ? 0 : 1);
        QCOMPARE(library.setAsideFileName(), readable ? QString() : folder.filePath(kept.first()));
        if (readable)
            return;
        QVERIFY2(library.setAsideReason().contains(reason), qPrintable(library.setAsideReason()));
        QFile file(library.setAsideFileName());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), text.toUtf8());
    }
};

QTEST_MAIN(tst_TWHTMLTagLibrary)
#include "tst_TWHTMLTagLibrary.moc"
