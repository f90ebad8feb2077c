#pragma once

#include <QString>

// How much of a checker's output the window keeps, so that a checker that never stops
// printing costs neither memory nor time: the first maxCharacters characters, each line cut
// after maxLineLength characters. What is left out is said in the text itself.
class TWOutputLimit
{
public:
    static constexpr qsizetype maxCharacters = 4 * 1024 * 1024;
    static constexpr qsizetype maxLineLength = 4096;

    // The part of the text to show, with a mark where a line was cut and a line where the
    // output stops being shown.
    QString admit(const QString &text);
    // A last line saying how much was left out, or "" when nothing was.
    QString summary() const;

private:
    qsizetype shown = 0;
    qsizetype lineLength = 0;
    bool lineCut = false;
    bool full = false;
    qsizetype leftOut = 0;
};
