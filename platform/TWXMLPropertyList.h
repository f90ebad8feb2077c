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
//   <date>     QDateTime (UTC, ISO 8601 "yyyy-MM-ddTHH:mm:ssZ")
// Any other QVariant type cannot be written; write() then fails.
class TWXMLPropertyList
{
public:
    // The whole document: XML declaration, DOCTYPE, <plist version="1.0">, the root value.
    // Answers std::nullopt when the value (or something inside it) has no plist form.
    static std::optional<QByteArray> write(const QVariant &root);

    // Parses a whole document. Answers std::nullopt for anything that is not a well-formed
    // property list (bad XML, unknown element, <key> without a value, nesting deeper than
    // maxDepth, trailing content, ...); *error then says why, in English, for logs and tests.
    static std::optional<QVariant> read(const QByteArray &document, QString *error = nullptr);

    static constexpr int maxDepth = 512;
};
