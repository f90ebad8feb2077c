// Tag records: what a new one holds and inserts, and the parts the special tags keep. (Insertion
// itself is tested through the menus, copying through the library window and the edit sheet.)
#include "taglib/TWHTMLTag.h"

#include "taglib/TWCommentTag.h"
#include "taglib/TWGenericTag.h"
#include "taglib/TWHTMLTagLibrary.h"
#include "taglib/TWQuotation.h"

#include <QTest>

#include <memory>

Q_DECLARE_METATYPE(std::shared_ptr<TWHTMLTag>)

class tst_TWHTMLTag : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // A new record wraps in "<Tag>", whatever its element name, in the generic tag's colour as
    // it is now; only the sample follows the name.
    void newRecord()
    {
        TWHTMLTagLibrary::sharedTagLibrary()->genericTag()->setTagColor(Qt::magenta);
        TWHTMLTag tag;
        tag.setTag(QStringLiteral("em"));
        QCOMPARE(tag.tagColor(), QColor(Qt::magenta));
        QCOMPARE(tag.colorSampleTag(), QStringLiteral("<em>"));
        QCOMPARE(tag.insertingStringWithSelectedString(QStringLiteral("x")), std::optional<QString>(QStringLiteral("<Tag>x</Tag>")));
    }

    // Per part (type, element name, sample, first tag, second tag, own colour flag, colour):
    // k kept, c changed by its setter.
    void specialTagsKeepTheirFixedParts_data()
    {
        QTest::addColumn<std::shared_ptr<TWHTMLTag>>("tag");
        QTest::addColumn<QString>("parts");
        QTest::newRow("comment") << std::shared_ptr<TWHTMLTag>(new TWCommentTag) << "kkkkkcc";
        QTest::newRow("generic") << std::shared_ptr<TWHTMLTag>(new TWGenericTag) << "kkkkkkc";
        QTest::newRow("quotation") << std::shared_ptr<TWHTMLTag>(new TWQuotation) << "kkkkkkk";
        QTest::newRow("plain") << std::make_shared<TWHTMLTag>() << "ccccccc";
    }

    void specialTagsKeepTheirFixedParts()
    {
        QFETCH(std::shared_ptr<TWHTMLTag>, tag);
        const auto parts = [&tag] {
            return QStringList{QString::number(tag->type()), tag->tag(), tag->colorSampleTag(), tag->firstTag(),
                               tag->secondTag(), QString::number(tag->useSpecificColor()), tag->tagColor().name()};
        };
        const QStringList before = parts();
        tag->setType(7);
        tag->setTag(QStringLiteral("em"));
        tag->setFirstTag(QStringLiteral("["));
        tag->setSecondTag(QStringLiteral("]"));
        tag->setUseSpecificColor(!tag->useSpecificColor());
        tag->setTagColor(Qt::cyan);
        QString seen;
        for (qsizetype i = 0; i < before.size(); ++i)
            seen += parts()[i] == before[i] ? u'k' : u'c';
        QTEST(seen, "parts");
    }
};

QTEST_MAIN(tst_TWHTMLTag)
#include "tst_TWHTMLTag.moc"
