#pragma once

#include "platform/TWRange.h"

#include <QList>
#include <QString>
#include <QStringView>

// The scanners of tag colouring: they cut a text into plain runs, tags (with their element
// name) and comments or "<!" declarations. Every segment is at least one character long and
// the segments cover the text without gaps.
namespace TWTagScanner {

enum Kind : int { endOfText = -1, plainText = 0, tag = 1, comment = 2 };

// The kind of segment that starts at index i.
int typeOfText(QStringView text, qsizetype i);
// The comment or declaration starting at i (which holds "<!").
TWRange rangeOfCommentInText(QStringView text, qsizetype i);
// The tag starting at i (which holds "<"); its element name (letters only, as typed, possibly
// empty) goes into name.
TWRange rangeOfTagInText(QStringView text, QString &name, qsizetype i);
// From i up to the next "<" or the end.
TWRange rangeOfPlainText(QStringView text, qsizetype i);

struct Segment
{
    TWRange range;
    int kind;
    QString name;
};

// The whole text cut into segments from its start: the reference that colouring follows.
QList<Segment> segments(QStringView text);

} // namespace TWTagScanner
