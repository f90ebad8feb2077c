#pragma once

#include <QByteArray>
#include <QString>
#include <QVariant>

#include <optional>

// Reader and writer of XML property lists (the Apple plist DTD), the form in which
// projects and the user-defaults store are kept on disk.
//
// Values map onto QVariant as follows:
//   <dict>     QVariantMap          <array>   QVariantList (a QStringList is written as an array too)
//   <string>   QString              <data>    QByteArray (base64 in the file)
//   <integer>  qlonglong            <real>    double (float is written as real too)
//   <true/>    bool true            <false/>  bool false
//   <date>     QDateTime (UTC, to the second, "yyyy-MM-ddTHH:mm:ssZ", years 1 to 9999)
// Every value read can be written again: the user-defaults store writes back all it read.
//
// Every UTF-16 string survives a round trip. In string and key text a CR is written as &#13;
// and each unit XML 1.0 cannot carry (C0 controls other than tab, LF and CR, U+FFFE, U+FFFF,
// a surrogate not in a valid pair) as the processing instruction <?tw-char XXXX?>, with four
// upper-case hex digits; the document stays well-formed XML that any parser accepts.
class TWXMLPropertyList
{
public:
    // The whole document: XML declaration, DOCTYPE, <plist version="1.0">, the root value.
    // Answers std::nullopt when the value (or something inside it) has no plist form: another
    // QVariant type, a real that is not finite, a date outside the years above, nesting
    // deeper than maxDepth.
    static std::optional<QByteArray> write(const QVariant &root);

    // Parses a whole document. Answers std::nullopt for anything that is not a well-formed
    // property list (bad XML, unknown element, <key> without a value, nesting deeper than
    // maxDepth, trailing content, a date the writer could not write, a tw-char instruction
    // in a string or key whose data is not 1 to 4 hex digits of a unit XML cannot carry, ...);
    // *error then says why, in English, for logs and tests. Other processing instructions
    // and comments are skipped.
    static std::optional<QVariant> read(const QByteArray &document, QString *error = nullptr);

    static constexpr int maxDepth = 512;
};
