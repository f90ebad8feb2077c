// Tag records: what they insert, their fixed parts for the special tags, copying, keys.
#include "taglib/TWHTMLTag.h"

#include "platform/TWBeep.h"
#include "platform/TWLocalization.h"
#include "taglib/TWCommentTag.h"
#include "taglib/TWGenericTag.h"
#include "taglib/TWHTMLTagLibrary.h"
#include "taglib/TWQuotation.h"

#include <QCoreApplication>
#include <QTest>

class tst_TWHTMLTag : public QObject
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

    void newRecordInsertsTagPair()
    {
        TWHTMLTag tag;
        QCOMPARE(tag.type(), TWHTMLTag::pairedType);
        QCOMPARE(tag.insertingStringWithSelectedString(QStringLiteral("x")), std::optional<QString>(QStringLiteral("<Tag>x</Tag>")));
        QCOMPARE(tag.colorSampleTag(), QStringLiteral("<Tag>"));
        QCOMPARE(tag.tagColor(), TWHTMLTagLibrary::sharedTagLibrary()->genericTagColor());
        QCOMPARE(tag.tag(), QStringLiteral("Tag"));
        QCOMPARE(tag.name(), QStringLiteral("New Tag"));
        QCOMPARE(tag.title(), QStringLiteral("HTML Tag"));
        QVERIFY(tag.includeInMenu());
        QVERIFY(!tag.useSpecificColor());
        tag.setTag(QStringLiteral("em"));
        QCOMPARE(tag.colorSampleTag(), QStringLiteral("<em>"));
        QCOMPARE(tag.firstTag(), QStringLiteral("<Tag>"));
        QCOMPARE(tag.secondTag(), QStringLiteral("</Tag>"));
    }

    void insertion_data()
    {
        QTest::addColumn<int>("type");
        QTest::addColumn<QString>("selection");
        QTest::addColumn<QVariant>("expected");
        QTest::newRow("single drops the selection") << 1 << QStringLiteral("abc") << QVariant(QStringLiteral("<br>"));
        QTest::newRow("paired wraps") << 2 << QStringLiteral("abc") << QVariant(QStringLiteral("<br>abc</x>"));
        QTest::newRow("paired, nothing selected") << 2 << QString() << QVariant(QStringLiteral("<br></x>"));
        QTest::newRow("type 0 beeps") << 0 << QStringLiteral("abc") << QVariant();
        QTest::newRow("type 3 beeps") << 3 << QStringLiteral("abc") << QVariant();
    }

    void insertion()
    {
        QFETCH(int, type);
        QFETCH(QString, selection);
        QFETCH(QVariant, expected);
        const TWHTMLTag tag(type, QStringLiteral("br"), QString(), QStringLiteral("<br>"), QStringLiteral("</x>"), true,
                            false, Qt::blue, QString());
        const std::optional<QString> text = tag.insertingStringWithSelectedString(selection);
        QCOMPARE(text.has_value(), expected.isValid());
        if (text)
            QCOMPARE(*text, expected.toString());
        QCOMPARE(TWBeepCount(), expected.isValid() ? 0 : 1);
    }

    void shortcutKeyKeepsOneCharacter()
    {
        TWHTMLTag tag;
        tag.setShortcutKey(QStringLiteral("xyz"));
        QCOMPARE(tag.shortcutKey(), QStringLiteral("x"));
        QVERIFY(tag.hasShortcutKey());
        tag.setShortcutKey(QString());
        QCOMPARE(tag.shortcutKey(), QString());
        QVERIFY(!tag.hasShortcutKey());
    }

    void specialTagsKeepTheirFixedParts()
    {
        TWCommentTag comment;
        comment.setTag(QStringLiteral("b"));
        comment.setFirstTag(QStringLiteral("["));
        comment.setSecondTag(QStringLiteral("]"));
        comment.setType(1);
        QCOMPARE(comment.tag(), QStringLiteral("!--"));
        QCOMPARE(comment.firstTag(), QStringLiteral("<!-- "));
        QCOMPARE(comment.secondTag(), QStringLiteral(" -->"));
        QCOMPARE(comment.type(), 2);
        QCOMPARE(comment.colorSampleTag(), QStringLiteral("<!-->"));
        QCOMPARE(comment.title(), QStringLiteral("Comment  <!--...-->"));
        comment.setUseSpecificColor(false);
        QVERIFY(!comment.useSpecificColor());
        comment.setTagColor(Qt::green);
        QCOMPARE(comment.tagColor(), QColor(Qt::green));

        TWGenericTag generic;
        generic.setUseSpecificColor(false);
        QVERIFY(generic.useSpecificColor());
        QCOMPARE(generic.type(), 1);
        QCOMPARE(generic.firstTag(), QStringLiteral("<>"));
        QCOMPARE(generic.title(), QStringLiteral("Generic Tag  <>"));
        generic.setTagColor(Qt::gray);
        QCOMPARE(generic.tagColor(), QColor(Qt::gray));

        TWQuotation quotation;
        const QColor brown = quotation.tagColor();
        quotation.setTagColor(Qt::green);
        QCOMPARE(quotation.tagColor(), brown);
        QCOMPARE(quotation.colorSampleTag(), QString());
        QCOMPARE(quotation.insertingStringWithSelectedString(QStringLiteral("q")),
                 std::optional<QString>(QStringLiteral("\"q\"")));
        // What every record may change, the special ones may too.
        quotation.setTitle(QStringLiteral("Quotes"));
        quotation.setShortcutKey(QStringLiteral("q"));
        quotation.setIncludeInMenu(false);
        QCOMPARE(quotation.title(), QStringLiteral("Quotes"));
        QCOMPARE(quotation.shortcutKey(), QStringLiteral("q"));
        QVERIFY(!quotation.includeInMenu());
    }

    void copyTakesAllButTheKey()
    {
        TWHTMLTag source(1, QStringLiteral("hr"), QStringLiteral("Rule"), QStringLiteral("<hr>"), QString(), false, true,
                         Qt::darkGreen, QStringLiteral("Rule  <hr>"));
        source.setShortcutKey(QStringLiteral("b"));
        TWHTMLTag copy;
        copy.copyFromTag(source);
        QCOMPARE(copy.type(), 1);
        QCOMPARE(copy.tag(), QStringLiteral("hr"));
        QCOMPARE(copy.colorSampleTag(), QStringLiteral("<hr>"));
        QCOMPARE(copy.name(), QStringLiteral("Rule"));
        QCOMPARE(copy.firstTag(), QStringLiteral("<hr>"));
        QVERIFY(copy.useSpecificColor());
        QVERIFY(!copy.includeInMenu());
        QCOMPARE(copy.tagColor(), QColor(Qt::darkGreen));
        QCOMPARE(copy.title(), QStringLiteral("Rule  <hr>"));
        QCOMPARE(copy.shortcutKey(), QString());

        // A special tag takes the type and flags even where its setters refuse them.
        TWGenericTag generic;
        generic.copyFromTag(source);
        QCOMPARE(generic.type(), 1);
        QVERIFY(!generic.includeInMenu());
        QCOMPARE(generic.firstTag(), QStringLiteral("<>"));
        TWCommentTag comment;
        source.setType(2);
        comment.copyFromTag(source);
        QCOMPARE(comment.tag(), QStringLiteral("!--"));
        QCOMPARE(comment.tagColor(), QColor(Qt::darkGreen));
    }
};

QTEST_MAIN(tst_TWHTMLTag)
#include "tst_TWHTMLTag.moc"
