// The scanners of tag colouring: exact segments for the cases that decide colours.
#include "editor/TWTagScanner.h"

#include <QTest>

namespace {

// Segments written as "kind:text:name" for compact expectations.
QStringList describe(const QString &text)
{
    QStringList parts;
    for (const TWTagScanner::Segment &segment : TWTagScanner::segments(text)) {
        const QString piece = text.mid(segment.range.location, segment.range.length);
        parts << QStringLiteral("%1:%2:%3").arg(segment.kind).arg(piece, segment.name);
    }
    return parts;
}

} // namespace

class tst_TWTagScanner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void segments_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("expected");
        QTest::newRow("tags and plain") << QStringLiteral("<b>bold</b> text")
                                        << QStringList{"1:<b>:b", "0:bold:", "1:</b>:b", "0: text:"};
        QTest::newRow("name stops at a digit") << QStringLiteral("<H1 class=x>") << QStringList{"1:<H1 class=x>:H"};
        QTest::newRow("blank after <") << QStringLiteral("< p>") << QStringList{"1:< p>:"};
        QTest::newRow("digit after <") << QStringLiteral("<3") << QStringList{"1:<3:"};
        QTest::newRow("less-than in prose") << QStringLiteral("a < b") << QStringList{"0:a :", "1:< b:"};
        QTest::newRow("comment holds >") << QStringLiteral("<!-- a > b -->") << QStringList{"2:<!-- a > b -->:"};
        QTest::newRow("doctype") << QStringLiteral("<!DOCTYPE html>x") << QStringList{"2:<!DOCTYPE html>:", "0:x:"};
        QTest::newRow("unterminated comment") << QStringLiteral("<!-- open <b>") << QStringList{"2:<!-- open <b>:"};
        QTest::newRow("opener dashes do not close") << QStringLiteral("<!-->x") << QStringList{"2:<!-->x:"};
        QTest::newRow("shortest comment") << QStringLiteral("<!---->x") << QStringList{"2:<!---->:", "0:x:"};
        QTest::newRow("< at the end") << QStringLiteral("ab<") << QStringList{"0:ab:", "1:<:"};
        QTest::newRow("< inside a tag ends it") << QStringLiteral("<a<b>") << QStringList{"1:<a:a", "1:<b>:b"};
        QTest::newRow("declaration ends before <") << QStringLiteral("<!x<b>") << QStringList{"2:<!x:", "1:<b>:b"};
        QTest::newRow("end tag name") << QStringLiteral("</table>") << QStringList{"1:</table>:table"};
        QTest::newRow("name to the end") << QStringLiteral("<span") << QStringList{"1:<span:span"};
        QTest::newRow("bare </") << QStringLiteral("</") << QStringList{"1:</:"};
        QTest::newRow("> in an attribute ends the tag") << QStringLiteral("<a title=\">\">x")
                                                       << QStringList{"1:<a title=\">:a", "0:\">x:"};
        QTest::newRow("non-ASCII ends the name") << QString::fromUtf8("<aé>") << QStringList{QString::fromUtf8("1:<aé>:a")};
        QTest::newRow("<!- short") << QStringLiteral("<!-x>") << QStringList{"2:<!-x>:"};
        QTest::newRow("line breaks inside") << QStringLiteral("<a\nhref>\n<!--\n-->") << QStringList{"1:<a\nhref>:a", "0:\n:", "2:<!--\n-->:"};
    }

    void segments()
    {
        QFETCH(QString, text);
        QFETCH(QStringList, expected);
        QCOMPARE(describe(text), expected);
    }

    void scannersAtAnIndex()
    {
        const QString text = QStringLiteral("x<!--c--><p>");
        QCOMPARE(TWTagScanner::typeOfText(text, 0), int(TWTagScanner::plainText));
        QCOMPARE(TWTagScanner::typeOfText(text, 1), int(TWTagScanner::comment));
        QCOMPARE(TWTagScanner::typeOfText(text, 9), int(TWTagScanner::tag));
        QCOMPARE(TWTagScanner::typeOfText(text, 12), int(TWTagScanner::endOfText));
        QCOMPARE(TWTagScanner::typeOfText(text, 99), int(TWTagScanner::endOfText));
        QCOMPARE(TWTagScanner::rangeOfCommentInText(text, 1), (TWRange{1, 8}));
        QString name = QStringLiteral("stale");
        QCOMPARE(TWTagScanner::rangeOfTagInText(text, name, 9), (TWRange{9, 3}));
        QCOMPARE(name, QStringLiteral("p"));
        QCOMPARE(TWTagScanner::rangeOfPlainText(text, 0), (TWRange{0, 1}));
        QCOMPARE(TWTagScanner::rangeOfPlainText(QStringLiteral("abc"), 1), (TWRange{1, 2}));
    }

    void segmentsCoverTheText()
    {
        // Every position of a text of nothing but "<", "!", "-", ">" and line breaks.
        const QString alphabet = QStringLiteral("<!->\na");
        QString text;
        quint32 seed = 12345;
        for (int i = 0; i < 5000; ++i) {
            seed = seed * 1103515245u + 12345u;
            text += alphabet.at((seed >> 16) % alphabet.size());
        }
        qsizetype next = 0;
        for (const TWTagScanner::Segment &segment : TWTagScanner::segments(text)) {
            QCOMPARE(segment.range.location, next);
            QVERIFY(segment.range.length > 0);
            next = segment.range.end();
        }
        QCOMPARE(next, text.size());
    }
};

QTEST_GUILESS_MAIN(tst_TWTagScanner)
#include "tst_TWTagScanner.moc"
