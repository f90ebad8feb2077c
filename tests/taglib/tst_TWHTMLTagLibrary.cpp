// The tag library: the shipped and built-in sets, colouring lists, list operations, shortcut
// keys, the text form kept in the preferences and in .tlib files, and a stored text that
// cannot be read.
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
        names << (tag->isCommentTag() ? QStringLiteral("comment")
                  : tag->isGenericTag() ? QStringLiteral("generic")
                  : tag->isQuotation()  ? QStringLiteral("quotation")
                                        : tag->tag());
    return names;
}

// A library holding just the built-in set.
struct BuiltIn : TWHTMLTagLibrary
{
    BuiltIn()
    {
        loadFromPropertyListDictionary(QStringLiteral("()"));
        setBuiltInTags();
    }
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
            keys << tag->shortcutKey();
        }
        QVERIFY(keys.contains(QStringLiteral("p")));
        library.setUpTagColor();
        // Common elements have colours of their own; unknown ones take the generic colour.
        for (const char *name : {"p", "DIV", "table", "h", "form", "ul"})
            QVERIFY2(library.colorForTag(QString::fromLatin1(name)) != library.genericTagColor(), name);
        QCOMPARE(library.colorForTag(QStringLiteral("blink")), library.genericTagColor());
    }

    void builtInSetAndItsColours()
    {
        BuiltIn library;
        QCOMPARE(tagNames(library), (QStringList{"comment", "generic", "quotation", "b", "i", "br", "img", "a"}));
        library.setUpTagColor();
        QCOMPARE(library.coloringTagList(), (QStringList{"!--", "br", "img", "a"}));
        QCOMPARE(library.coloringColorList(),
                 (QList<QColor>{QColor::fromRgbF(1, 0, 0), QColor::fromRgbF(0, 0, 1), QColor::fromRgbF(0, 1, 0),
                                QColor::fromRgbF(0, 0, 1)}));
        QCOMPARE(library.colorForTag(QStringLiteral("IMG")), QColor::fromRgbF(0, 1, 0));
        QCOMPARE(library.colorForTag(QStringLiteral("table")), library.genericTagColor());
        QCOMPARE(library.colorForTag(QString()), library.genericTagColor());
        QCOMPARE(library.tagAtIndex(8), nullptr);
    }

    void firstRecordOfANameGivesItsColour()
    {
        BuiltIn library;
        const auto add = [&library](const char *name, Qt::GlobalColor color) {
            TWHTMLTag *tag = library.tagAtIndex(library.addNewTag());
            tag->setTag(QString::fromLatin1(name));
            tag->setUseSpecificColor(true);
            tag->setTagColor(color);
        };
        add("p", Qt::red);
        add("P", Qt::blue);
        library.setUpTagColor();
        QCOMPARE(library.colorForTag(QStringLiteral("p")), QColor(Qt::red));
        QCOMPARE(library.coloringTagList().mid(4), (QStringList{"p", "P"}));
        const int generation = library.colorsGeneration();
        library.deleteTagAtIndex(8);
        library.setUpTagColor();
        QCOMPARE(library.colorForTag(QStringLiteral("p")), QColor(Qt::blue));
        QVERIFY(library.colorsGeneration() != generation);
        // The generic colour reaches every name without one of its own.
        library.genericTag()->setTagColor(Qt::magenta);
        QCOMPARE(library.colorForTag(QStringLiteral("table")), QColor(Qt::magenta));
    }

    void duplicateAndDelete()
    {
        BuiltIn library;
        library.tagAtIndex(4)->setShortcutKey(QStringLiteral("i"));
        QCOMPARE(library.duplicateTagAtIndex(4), 5);
        QCOMPARE(library.duplicateTagAtIndex(8), 9);
        QCOMPARE(tagNames(library), (QStringList{"comment", "generic", "quotation", "b", "i", "i", "br", "img", "a", "a"}));
        QCOMPARE(library.tagAtIndex(5)->shortcutKey(), QString());
        // The special tags can be neither duplicated nor deleted.
        QCOMPARE(library.duplicateTagAtIndex(0), -1);
        library.deleteTagAtIndex(1);
        QCOMPARE(TWBeepCount(), 2);
        library.deleteTagAtIndex(9);
        QCOMPARE(tagNames(library), (QStringList{"comment", "generic", "quotation", "b", "i", "i", "br", "img", "a"}));
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
        BuiltIn library;
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
        BuiltIn library;
        library.tagAtIndex(3)->setShortcutKey(QStringLiteral("b"));
        library.tagAtIndex(4)->setTitle(QString::fromUtf8("Kursiv «i» 日本"));
        library.tagAtIndex(5)->setIncludeInMenu(false);
        TWHTMLTag *comment = library.commentTag();
        const QString text = library.propertyListString();
        for (const QChar c : text)
            QVERIFY2(c.unicode() < 0x80, "the library text is plain ASCII");

        // Read back, every record is the same (each is written with all ten keys), and the
        // special tags are the same instances.
        QVERIFY(library.loadFromPropertyListDictionary(text));
        QCOMPARE(library.propertyListString(), text);
        QCOMPARE(library.tagAtIndex(0), comment);
        const QVariantList outer = TWOldStylePropertyList::read(text)->toList();
        const QVariantMap bold = TWOldStylePropertyList::read(outer.at(3).toString())->toMap();
        QCOMPARE(bold.size(), 10);
        QCOMPARE(bold.value(QStringLiteral("tag color")).toByteArray(), QByteArray("\x00\x00\xff", 3));
        // Comment, generic tag, quotation and a plain record are told apart by their type.
        QStringList types;
        for (int index = 0; index < 4; ++index)
            types << TWOldStylePropertyList::read(outer.at(index).toString())->toMap().value(QStringLiteral("type")).toString();
        QCOMPARE(types, (QStringList{"4", "3", "5", "2"}));
    }

    void readingRules()
    {
        BuiltIn library;
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
        QCOMPARE(library.genericTag()->firstTag(), QStringLiteral("<>"));
    }

    void unreadableTextsLoseNothing_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("reason"); // part of the reason given; none when the text is read
        QTest::newRow("syntax error") << QStringLiteral("(\n\"{type = 2;}\",\n\"{tag = \u00e9m") << QStringLiteral("line 3");
        QTest::newRow("a dictionary, not a list") << QStringLiteral("{ \"\u00dcberschrift\" = h1; }") << QStringLiteral("not a list");
        QTest::newRow("element not a dictionary text")
            << library({record(QStringLiteral("type = 2;")), QStringLiteral("\"(1, 2)\"")}) << QStringLiteral("record 2");
        QTest::newRow("element not text") << QStringLiteral("((a, b))") << QStringLiteral("record 1");
        QTest::newRow("empty text") << QString() << QStringLiteral("line 1");
        QTest::newRow("readable") << library({record(QStringLiteral("type = 2; tag = \"\u00e9m\";"))}) << QString();
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
        if (!readable)
            QCOMPARE(built.propertyListString(), before);

        // Found in the store at a start, it gives the library, or else the shipped set stands
        // in and the user's text waits, whole, in the data folder.
        const QString shipped = TWHTMLTagLibrary().propertyListString();
        QDir folder(TWApplicationDataFolder());
        folder.removeRecursively();
        TWUserDefaults::standardUserDefaults()->setObject(text, QLatin1String(TWPreferenceKey::htmlTagLibrary));
        delete TWPreferences::sharedPref();
        const TWHTMLTagLibrary library;
        QCOMPARE(library.propertyListString(), readable ? built.propertyListString() : shipped);
        const QStringList kept = folder.entryList(QDir::Files);
        QCOMPARE(kept.size(), readable ? 0 : 1);
        if (readable) {
            QCOMPARE(library.setAsideFileName(), QString());
            return;
        }
        QVERIFY2(library.setAsideReason().contains(reason), qPrintable(library.setAsideReason()));
        QCOMPARE(library.setAsideFileName(), folder.filePath(kept.first()));
        QVERIFY2(kept.first().startsWith(QLatin1String("Unreadable Tag Library ")) && kept.first().endsWith(QLatin1String(".tlib")),
                 qPrintable(kept.first()));
        QFile file(library.setAsideFileName());
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.readAll(), text.toUtf8());
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

};

QTEST_MAIN(tst_TWHTMLTagLibrary)
#include "tst_TWHTMLTagLibrary.moc"
