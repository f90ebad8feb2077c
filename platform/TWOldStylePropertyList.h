#pragma once

#include <QString>
#include <QVariant>

#include <optional>

// Reader and writer of old-style (OpenStep) text property lists: the form of the tag
// library text. It knows four kinds of value:
//   ( a, b )            arrays      -> QVariantList
//   { key = value; }    dictionaries -> QVariantMap (keys are strings)
//   bare or "quoted"    strings     -> QString
//   <0a1b2c>            data        -> QByteArray
class TWOldStylePropertyList
{
public:
    // Plain-ASCII text of the value: strings, data, and arrays and dictionaries of them (the
    // tag library writes nothing else: its numbers and flags are already strings). A string is
    // written bare when it is not empty and consists only of ASCII letters, digits and the
    // characters _ $ + / : . - (and does not begin with //, which would read as a comment);
    // otherwise it is quoted, with \" for a double quote, \\ for a backslash, \n, \t, \r for
    // those controls and \UXXXX (four lower-case hex digits of the UTF-16 unit) for every other
    // character outside printable ASCII. Data is lower-case hex. Answers std::nullopt for any
    // other type. Nesting is not limited here; the reader takes up to maxDepth levels.
    static std::optional<QString> write(const QVariant &value);

    // Parses one value filling the whole text (surrounding white space and // and /* */
    // comments allowed). Escapes inside quoted strings: \" \\ \' \/ \a \b \f \n \r \t \v,
    // up to three octal digits, \U followed by one to four hex digits. Anything malformed
    // (unterminated string, array, dictionary or data, odd number of hex digits, missing
    // '=' or ';', an unknown escape, nesting deeper than maxDepth, trailing text) answers
    // std::nullopt, with *error saying why.
    static std::optional<QVariant> read(const QString &text, QString *error = nullptr);

    static constexpr int maxDepth = 512;
};
