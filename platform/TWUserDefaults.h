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
    // Forgets the open store, so that the next standardUserDefaults() reads the file again
    // (what the next launch of the application would see).
    static void resetStandardUserDefaults();

    QVariant objectForKey(const QString &key) const;
    // Typed readers: the value only when it is stored with that type, else nothing.
    std::optional<QString> stringForKey(const QString &key) const;
    std::optional<QVariantMap> dictionaryForKey(const QString &key) const;
    std::optional<QByteArray> dataForKey(const QString &key) const;
    std::optional<QVariantList> arrayForKey(const QString &key) const;

    void setObject(const QVariant &value, const QString &key);
    void removeObjectForKey(const QString &key);
    bool hasKey(const QString &key) const;

    // Writes pending changes to disk. Answers false when the file could not be written.
    bool synchronize();

    QString fileName() const;
    // Where an unreadable store file was moved to when the store was opened, or "".
    QString setAsideFileName() const { return setAsideFile; }

private:
    TWUserDefaults();

    std::unique_ptr<QSettings> settings;
    QString setAsideFile;
};
