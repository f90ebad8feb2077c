#pragma once

#include <QSettings>
#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

// The user-defaults store: one XML property-list file per user
// ($XDG_CONFIG_HOME/Tagwright/Tagwright.plist) holding the preferences, the application
// defaults record and the window defaults. Each top-level key is one entry; dictionaries and
// arrays are kept whole as the value of their key. The file is written atomically.
class TWUserDefaults
{
public:
    // The store of this process, opened on first use.
    static TWUserDefaults *standardUserDefaults();
    // Reads the store's file again, as the next launch of the application would see it.
    static void resetStandardUserDefaults();
    // Where the store of this user is kept, without opening it.
    static QString storeFileName();

    QVariant objectForKey(const QString &key) const;
    // Typed readers: the value only when it is stored with that type, else nothing.
    std::optional<QString> stringForKey(const QString &key) const;
    std::optional<QVariantMap> dictionaryForKey(const QString &key) const;
    std::optional<QByteArray> dataForKey(const QString &key) const;
    std::optional<QVariantList> arrayForKey(const QString &key) const;

    void setObject(const QVariant &value, const QString &key);
    void removeObjectForKey(const QString &key);
    bool hasKey(const QString &key) const;

    // Writes pending changes to disk. Answers false when the file could not be written; the
    // file then keeps what it held.
    bool synchronize();
    // When the store itself cannot be written: writes everything it holds to a file of its own
    // (in the data folder, else the temporary folder), which the next opening of the store takes
    // back. Answers that file's path, or "" when it could not be written anywhere either.
    QString keepUnsavedState() const;

    QString fileName() const;
    // Where an unreadable store file was moved to when the store was opened, or "".
    QString setAsideFileName() const { return setAsideFile; }
    // The state kept by keepUnsavedState() at the last quit, taken back when the store was
    // opened: the file it came from, or "".
    QString restoredFileName() const { return restoredFile; }

private:
    TWUserDefaults();
    void open();
    // Everything the store holds now.
    QVariantMap dictionaryRepresentation() const;
    static QStringList unsavedStateFileNames();
    void takeBackUnsavedState();

    std::unique_ptr<QSettings> settings;
    QString setAsideFile;
    QString restoredFile;
};
