// The template as one text: split at the first divider, joined back unchanged.
#include "documents/TWTemplateText.h"

#include <QTest>

class tst_TWTemplateText : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void splitsAtTheFirstDivider_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("top");
        QTest::addColumn<QString>("bottom");
        QTest::newRow("one divider") << QStringLiteral("<html>\n<<TAGWRIGHTTEMPLATEDIVIDER>>\n</html>")
                                     << QStringLiteral("<html>\n") << QStringLiteral("\n</html>");
        QTest::newRow("no divider") << QStringLiteral("<html>") << QStringLiteral("<html>") << QString();
        QTest::newRow("two dividers") << QStringLiteral("a<<TAGWRIGHTTEMPLATEDIVIDER>>b<<TAGWRIGHTTEMPLATEDIVIDER>>c")
                                      << QStringLiteral("a") << QStringLiteral("b<<TAGWRIGHTTEMPLATEDIVIDER>>c");
        QTest::newRow("lower-case is text") << QStringLiteral("a<<tagwrighttemplatedivider>>b")
                                            << QStringLiteral("a<<tagwrighttemplatedivider>>b") << QString();
        QTest::newRow("only the divider") << QStringLiteral("<<TAGWRIGHTTEMPLATEDIVIDER>>") << QString() << QString();
        QTest::newRow("starts with it") << QStringLiteral("<<TAGWRIGHTTEMPLATEDIVIDER>>tail") << QString()
                                        << QStringLiteral("tail");
        QTest::newRow("empty") << QString() << QString() << QString();
        QTest::newRow("cut-off divider") << QStringLiteral("a<<TAGWRIGHTTEMPLATEDIVIDER>") << QStringLiteral("a<<TAGWRIGHTTEMPLATEDIVIDER>")
                                         << QString();
    }

    void splitsAtTheFirstDivider()
    {
        QFETCH(QString, text);
        QFETCH(QString, top);
        QFETCH(QString, bottom);
        const TWTemplateText::Halves halves = TWTemplateText::split(text);
        QCOMPARE(halves.top, top);
        QCOMPARE(halves.bottom, bottom);
        // Joined with nothing between: the text itself, or the text and the divider when it
        // had none; so a split after a join gives back the same halves.
        const QString divider = QStringLiteral("<<TAGWRIGHTTEMPLATEDIVIDER>>");
        QCOMPARE(TWTemplateText::join(top, bottom), text.contains(divider) ? text : text + divider);
    }
};

QTEST_GUILESS_MAIN(tst_TWTemplateText)
#include "tst_TWTemplateText.moc"
