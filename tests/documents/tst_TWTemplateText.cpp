// The template as one text: split at the first divider, joined back unchanged.
#include "documents/TWTemplateText.h"

#include <QTest>

using namespace Qt::StringLiterals;

class tst_TWTemplateText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitsAtTheFirstDivider_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("halves");
        QTest::newRow("two dividers") << u"a<<TAGWRIGHTTEMPLATEDIVIDER>>b<<TAGWRIGHTTEMPLATEDIVIDER>>c"_s
                                      << QStringList{u"a"_s, u"b<<TAGWRIGHTTEMPLATEDIVIDER>>c"_s};
        QTest::newRow("starts with it") << u"<<TAGWRIGHTTEMPLATEDIVIDER>>tail"_s << QStringList{QString(), u"tail"_s};
        // Only the whole divider in capitals divides; without one, all is the top half.
        const QString nearMisses = u"a<<tagwrighttemplatedivider>>b<<TAGWRIGHTTEMPLATEDIVIDER>"_s;
        QTest::newRow("near misses are text") << nearMisses << QStringList{nearMisses, QString()};
    }

    void splitsAtTheFirstDivider()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, halves);
        const TWTemplateText::Halves split = TWTemplateText::split(text);
        QCOMPARE((QStringList{split.top, split.bottom}), halves);
        // Joined with nothing between: the text itself, or the text and the divider when it
        // had none; so a split after a join gives back the same halves.
        const QString divider = u"<<TAGWRIGHTTEMPLATEDIVIDER>>"_s;
        QCOMPARE(TWTemplateText::join(halves[0], halves[1]), text.contains(divider) ? text : text + divider);
    }
};

QTEST_GUILESS_MAIN(tst_TWTemplateText)
#include "tst_TWTemplateText.moc"
