// Tag records: what they insert, the fixed parts of the special tags, copying, keys.
#include "taglib/TWHTMLTag.h"

#include "platform/TWBeep.h"
#include "taglib/TWCommentTag.h"
#include "taglib/TWGenericTag.h"
#include "taglib/TWHTMLTagLibrary.h"
#include "taglib/TWQuotation.h"

#include <QTest>

#include <memory>

Q_DECLARE_METATYPE(std::shared_ptr<TWHTMLTag>)

namespace {

// Every field of a record but its name, by a short name.
QMap<QString, QString> fields(const TWHTMLTag &tag)
{
    return {{"type", QString::number(tag.type())}, {"tag", tag.tag()}, {"sample", tag.colorSampleTag()},
            {"first", tag.firstTag()}, {"second", tag.secondTag()}, {"specific", QString::number(tag.useSpecificColor())},
            {"colour", tag.tagColor().name()}, {"key", tag.shortcutKey()}, {"menu", QString::number(tag.includeInMenu())},
            {"title", tag.title()}};
}

} // namespace

class tst_TWHTMLTag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void newRecordTakesTheGenericColour()
    {
        TWHTMLTagLibrary::sharedTagLibrary()->genericTag()->setTagColor(Qt::magenta);
        TWHTMLTag tag;
        QCOMPARE(tag.tagColor(), QColor(Qt::magenta));
        // The sample text follows the element name; the insertion texts do not.
        tag.setTag(QStringLiteral("em"));
        QCOMPARE(tag.colorSampleTag(), QStringLiteral("<em>"));
        QCOMPARE(tag.insertingStringWithSelectedString(QStringLiteral("x")), std::optional<QString>(QStringLiteral("<Tag>x</Tag>")));
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
        TWResetBeepCount();
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
        tag.setShortcutKey(QString());
        QVERIFY(!tag.hasShortcutKey());
    }

    void specialTagsKeepTheirFixedParts_data()
    {
        QTest::addColumn<std::shared_ptr<TWHTMLTag>>("tag");
        QTest::addColumn<QStringList>("kept");
        const QStringList fixed{"type", "tag", "sample", "first", "second"};
        QTest::newRow("comment") << std::shared_ptr<TWHTMLTag>(new TWCommentTag) << fixed;
        QTest::newRow("generic") << std::shared_ptr<TWHTMLTag>(new TWGenericTag) << fixed + QStringList{"specific"};
        QTest::newRow("quotation") << std::shared_ptr<TWHTMLTag>(new TWQuotation)
                                   << fixed + QStringList{"specific", "colour"};
    }

    void specialTagsKeepTheirFixedParts()
    {
        QFETCH(std::shared_ptr<TWHTMLTag>, tag);
        QFETCH(QStringList, kept);
        const QMap<QString, QString> before = fields(*tag);
        tag->setType(tag->type() == 1 ? 2 : 1);
        tag->setTag(QStringLiteral("em"));
        tag->setFirstTag(QStringLiteral("["));
        tag->setSecondTag(QStringLiteral("]"));
        tag->setUseSpecificColor(!tag->useSpecificColor());
        tag->setTagColor(Qt::cyan);
        // What every record may change, the special ones may too.
        tag->setShortcutKey(QStringLiteral("q"));
        tag->setIncludeInMenu(false);
        tag->setTitle(QStringLiteral("Retitled"));
        const QMap<QString, QString> after = fields(*tag);
        for (auto it = before.cbegin(); it != before.cend(); ++it)
            QVERIFY2((after.value(it.key()) == it.value()) == kept.contains(it.key()), qPrintable(it.key()));
    }

    void copyTakesAllButTheKey()
    {
        TWHTMLTag source(1, QStringLiteral("hr"), QStringLiteral("Rule"), QStringLiteral("<hr>"), QStringLiteral("-"),
                         false, true, Qt::darkGreen, QStringLiteral("Rule  <hr>"));
        source.setShortcutKey(QStringLiteral("b"));
        TWHTMLTag copy;
        copy.copyFromTag(source);
        QMap<QString, QString> expected = fields(source);
        expected.insert(QStringLiteral("key"), QString());
        QCOMPARE(fields(copy), expected);
        QCOMPARE(copy.name(), source.name());

        // A special tag takes the type and both flags even where its setters refuse them, and
        // keeps its texts and colour.
        TWQuotation quotation;
        expected = fields(quotation);
        quotation.copyFromTag(source);
        expected.insert(QMap<QString, QString>{{"type", "1"}, {"specific", "1"}, {"menu", "0"}, {"title", source.title()}});
        QCOMPARE(fields(quotation), expected);
    }
};

QTEST_MAIN(tst_TWHTMLTag)
#include "tst_TWHTMLTag.moc"
