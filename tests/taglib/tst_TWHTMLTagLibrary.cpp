// The tag library: the shipped set, the colour of each element name, the rules of its text form
// (kept in the preferences and in .tlib files) and its shortcut keys, and a stored text that
// cannot be read.
#include "taglib/TWHTMLTagLibrary.h"

#include "TWTestEnvironment.h"
#include "platform/TWOldStylePropertyList.h"
#include "platform/TWPaths.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferenceKeys.h"
#include "preferences/TWPreferences.h"
#include "taglib/TWHTMLTag.h"

#include <QDir>
#include <QTest>

namespace {

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
        // Each test starts from a store without a library text, read by new preferences.
        TWUserDefaults::standardUserDefaults()->removeObjectForKey(QLatin1String(TWPreferenceKey::htmlTagLibrary));
        delete TWPreferences::sharedPref();
    }

    void newLibraryIsTheShippedLibrary()
    {
        TWHTMLTagLibrary library; // nothing stored in the preferences
        QVERIFY(library.tagAtIndex(0)->isCommentTag() && library.tagAtIndex(1)->isGenericTag() && library.tagAtIndex(2)->isQuotation());
        QVERIFY(library.numberOfTags() > 40); // not the built-in set
        // No two records share a title: the menus would list only the first.
        QCOMPARE(library.titleList().removeDuplicates(), 0);
    }

    // The first record of a name with a colour of its own gives the name its colour, whatever the
    // case; other names take the generic tag's colour as it is now.
    void colourOfEachName()
    {
        TWHTMLTagLibrary library;
        library.loadFromPropertyListDictionary(QStringLiteral("()"));
        library.setBuiltInTags();
        const QColor red = QColor::fromRgbF(1, 0, 0), green = QColor::fromRgbF(0, 1, 0), blue = QColor::fromRgbF(0, 0, 1);
        for (const auto &[name, color] : {std::pair{"p", red}, std::pair{"P", blue}}) {
            TWHTMLTag *tag = library.tagAtIndex(library.addNewTag());
            tag->setTag(QString::fromLatin1(name));
            tag->setUseSpecificColor(true);
            tag->setTagColor(color);
        }
        library.setUpTagColor();
        library.genericTag()->setTagColor(Qt::magenta);
        QList<QColor> colours;
        for (const char *name : {"!--", "br", "IMG", "P", "b", "table", ""})
            colours << library.colorForTag(QString::fromLatin1(name));
        QCOMPARE(colours, (QList<QColor>{red, blue, green, red, Qt::magenta, Qt::magenta, Qt::magenta}));
        // Worked out anew, without the first "p".
        library.deleteTagAtIndex(8);
        library.setUpTagColor();
        QCOMPARE(library.colorForTag(QStringLiteral("p")), blue);
    }

    void readingRules()
    {
        TWHTMLTagLibrary library; // the shipped set
        QVERIFY(library.loadFromPropertyListDictionary(::library(
            {"type = 4; \"first tag\" = \"[\"; name = Remark;",
             "type = 2; tag = p; \"include in menu\" = yes; \"tag color\" = <ff8000>; \"shortcut key\" = q;",
             "type = 2; tag = div; \"shortcut key\" = q; \"include in menu\" = YES;", "type = 7; tag = x;",
             "type = \"1abc\"; tag = hr; \"tag color\" = <ff80>;", "tag = em;", "type = 4; name = Twice;"})));
        // A special tag given twice is listed once and takes both; its fixed parts stay, and the
        // special tags left out of the text still exist, as they were.
        QStringList names;
        for (const TWHTMLTagLibrary::Tag &tag : library.tagList())
            names << tag->tag();
        QCOMPARE(names, (QStringList{"!--", "p", "div", "x", "hr", "em"}));
        QCOMPARE(library.tagAtIndex(0), library.commentTag());
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
        QCOMPARE(p->tagColor(), QColor(0xff8000));
        // Colour data that is not three bytes leaves the colour as it was.
        QCOMPARE(hr->tagColor(), QColor::fromRgbF(0, 0, 0));
        // The type is the number the text starts with; a record without one is paired.
        QCOMPARE((QList<int>{library.tagAtIndex(3)->type(), hr->type(), library.tagAtIndex(5)->type()}), (QList<int>{7, 1, 2}));
    }

    // A stored text found at a start gives the library; one that cannot be read leaves the
    // shipped set in its place and waits, whole, in the data folder, with the reason.
    void storedTextThatCannotBeReadIsKept_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("reason"); // part of it; none when the text is read
        QTest::newRow("syntax error") << QStringLiteral("(\n\"{type = 2;}\",\n\"{tag = \u00e9m") << QStringLiteral("line 3");
        QTest::newRow("readable") << library({QStringLiteral("type = 2; tag = \"\u00e9m\";")}) << QString();
    }

    void storedTextThatCannotBeReadIsKept()
    {
        QFETCH(QString, text);
        QFETCH(QString, reason);
        const bool readable = reason.isEmpty();
        const QString shipped = TWHTMLTagLibrary().propertyListString();
        QDir folder(TWApplicationDataFolder());
        folder.removeRecursively();
        TWUserDefaults::standardUserDefaults()->setObject(text, QLatin1String(TWPreferenceKey::htmlTagLibrary));
        delete TWPreferences::sharedPref();
        const TWHTMLTagLibrary library;
        QCOMPARE(library.propertyListString() == shipped, !readable);
        const QStringList kept = folder.entryList({QStringLiteral("Unreadable Tag Library *.tlib")}, QDir::Files);
        QCOMPARE(kept, readable ? QStringList() : QStringList{QFileInfo(library.setAsideFileName()).fileName()});
        QVERIFY2(library.setAsideReason().contains(reason), qPrintable(library.setAsideReason()));
        if (!readable)
            QCOMPARE(TWTestEnvironment::readFile(library.setAsideFileName()), text.toUtf8());
    }
};

QTEST_MAIN(tst_TWHTMLTagLibrary)
#include "tst_TWHTMLTagLibrary.moc"
