// The scanners of tag colouring: exact segments for the cases that decide colours.
#include "editor/TWTagScanner.h"

#include <QTest>

class tst_TWTagScanner : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void segments_data()
    {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QStringList>("expected"); // each segment as "kind:text:name"
        QTest::newRow("tags and plain") << QStringLiteral("<b>bold</b> text") << QStringList{"1:<b>:b", "0:bold:", "1:</b>:b", "0: text:"};
        QTest::newRow("name stops at a digit") << QStringLiteral("<H1 class=x>") << QStringList{"1:<H1 class=x>:H"};
        QTest::newRow("non-ASCII ends the name") << QString::fromUtf8("<aé>") << QStringList{QString::fromUtf8("1:<aé>:a")};
        QTest::newRow("blank after <") << QStringLiteral("< p>") << QStringList{"1:< p>:"};
        QTest::newRow("a name is not kept for the next tag") << QStringLiteral("<b></>") << QStringList{"1:<b>:b", "1:</>:"};
        QTest::newRow("comment holds >") << QStringLiteral("<!-- a > b -->") << QStringList{"2:<!-- a > b -->:"};
        QTest::newRow("doctype") << QStringLiteral("<!DOCTYPE html>x") << QStringList{"2:<!DOCTYPE html>:", "0:x:"};
        QTest::newRow("unterminated comment") << QStringLiteral("<!-- open <b>") << QStringList{"2:<!-- open <b>:"};
        QTest::newRow("opener dashes do not close") << QStringLiteral("<!-->x") << QStringList{"2:<!-->x:"};
        QTest::newRow("shortest comment") << QStringLiteral("<!---->x") << QStringList{"2:<!---->:", "0:x:"};
        QTest::newRow("< at the end") << QStringLiteral("ab<") << QStringList{"0:ab:", "1:<:"};
        QTest::newRow("< inside a tag ends it") << QStringLiteral("<a<b>") << QStringList{"1:<a:a", "1:<b>:b"};
        QTest::newRow("declaration ends before <") << QStringLiteral("<!x<b>") << QStringList{"2:<!x:", "1:<b>:b"};
        QTest::newRow("name to the end") << QStringLiteral("<span") << QStringList{"1:<span:span"};
        QTest::newRow("bare </") << QStringLiteral("</") << QStringList{"1:</:"};
        QTest::newRow("> in an attribute ends the tag") << QStringLiteral("<a title=\">\">x") << QStringList{"1:<a title=\">:a", "0:\">x:"};
        QTest::newRow("<!- short") << QStringLiteral("<!-x>") << QStringList{"2:<!-x>:"};
    }

    void segments()
    {
        QFETCH(QString, text);
        QStringList parts;
        for (const TWTagScanner::Segment &segment : TWTagScanner::segments(text))
            parts << QStringLiteral("%1:%2:%3").arg(segment.kind).arg(text.mid(segment.range.location, segment.range.length), segment.name);
        QTEST(parts, "expected");
    }
};

QTEST_GUILESS_MAIN(tst_TWTagScanner)
#include "tst_TWTagScanner.moc"
