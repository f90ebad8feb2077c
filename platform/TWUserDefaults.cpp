#include "platform/TWUserDefaults.h"

#include "platform/TWAtomicFile.h"
#include "platform/TWPaths.h"
#include "platform/TWXMLPropertyList.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMetaType>

#include <cstdio>
#include <unistd.h>

namespace {

constexpr char organizationName[] = "Tagwright";
constexpr char applicationName[] = "Tagwright";
constexpr char storeExtension[] = "plist";
constexpr char setAsideSuffixFormat[] = ".unreadable-%1";
constexpr char setAsideStampFormat[] = "yyyyMMdd-hhmmss";
// Where the state goes when the store cannot be written, and where a later start looks for it.
constexpr char unsavedStateName[] = "Unsaved Session.plist";
constexpr char unsavedStateTemporaryFormat[] = "Tagwright-%1-Unsaved Session.plist";

// The entries of a store's text; nothing when it is not a property list of a dictionary.
std::optional<QVariantMap> entriesOf(const QByteArray &document)
{
    const std::optional<QVariant> root = TWXMLPropertyList::read(document);
    if (!root || root->typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    return root->toMap();
}

bool readStore(QIODevice &device, QSettings::SettingsMap &map)
{
    const std::optional<QVariantMap> entries = entriesOf(device.readAll());
    if (!entries)
        return false;
    for (auto it = entries->cbegin(); it != entries->cend(); ++it)
        map.insert(it.key(), it.value());
    return true;
}

bool writeStore(QIODevice &device, const QSettings::SettingsMap &map)
{
    QVariantMap root;
    for (auto it = map.cbegin(); it != map.cend(); ++it)
        root.insert(it.key(), it.value());
    const std::optional<QByteArray> document = TWXMLPropertyList::write(root);
    return document && device.write(*document) == document->size();
}

QSettings::Format plistFormat()
{
    static const QSettings::Format format
        = QSettings::registerFormat(QLatin1String(storeExtension), readStore, writeStore);
    return format;
}

std::unique_ptr<TWUserDefaults> &standardStore()
{
    static std::unique_ptr<TWUserDefaults> store;
    return store;
}

// Moves a file that cannot be read out of the way, under a name nothing looks for, so that
// whatever it holds can still be recovered by hand; answers the new name, or "".
QString setAside(const QString &path)
{
    const QString aside = path
        + QString::fromLatin1(setAsideSuffixFormat)
              .arg(QDateTime::currentDateTime().toString(QLatin1String(setAsideStampFormat)));
    return QFile::rename(path, aside) ? aside : QString();
}

// A store file that is not a property list would be overwritten by the next save.
QString setAsideIfUnreadable(const QString &path)
{
    QFile file(path);
    if (!file.exists() || file.size() == 0 || !file.open(QIODevice::ReadOnly) || entriesOf(file.readAll()))
        return {};
    file.close();
    const QString aside = setAside(path);
    if (aside.isEmpty())
        return {};
    qWarning("The preferences file %s could not be read; it was kept as %s and the defaults are used.",
             qPrintable(path), qPrintable(aside));
    return aside;
}

} // namespace

QString TWUserDefaults::storeFileName()
{
    return QSettings(plistFormat(), QSettings::UserScope, QLatin1String(organizationName),
                     QLatin1String(applicationName))
        .fileName();
}

TWUserDefaults::TWUserDefaults()
{
    open();
}

void TWUserDefaults::open()
{
    settings.reset();
    restoredFile.clear();
    setAsideFile = setAsideIfUnreadable(storeFileName());
    settings = std::make_unique<QSettings>(plistFormat(), QSettings::UserScope, QLatin1String(organizationName),
                                           QLatin1String(applicationName));
    settings->setFallbacksEnabled(false);
    takeBackUnsavedState();
}

QStringList TWUserDefaults::unsavedStateFileNames()
{
    return {TWApplicationDataFolder() + QLatin1Char('/') + QLatin1String(unsavedStateName),
            QDir::tempPath() + QLatin1Char('/')
                + QString::fromLatin1(unsavedStateTemporaryFormat).arg(QString::number(geteuid()))};
}

QVariantMap TWUserDefaults::dictionaryRepresentation() const
{
    QVariantMap entries;
    for (const QString &key : settings->allKeys())
        entries.insert(key, settings->value(key));
    return entries;
}

QString TWUserDefaults::keepUnsavedState() const
{
    const std::optional<QByteArray> document = TWXMLPropertyList::write(dictionaryRepresentation());
    if (!document)
        return {};
    for (const QString &path : unsavedStateFileNames()) {
        QDir().mkpath(QFileInfo(path).absolutePath());
        // The texts are the user's own: nobody else reads them, even in the temporary folder.
        if (!TWWriteFileAtomically(path, *document, QFileDevice::ReadOwner | QFileDevice::WriteOwner))
            continue;
        return path;
    }
    return {};
}

void TWUserDefaults::takeBackUnsavedState()
{
    for (const QString &path : unsavedStateFileNames()) {
        QFile file(path);
        if (!file.exists() || !file.open(QIODevice::ReadOnly))
            continue;
        const std::optional<QVariantMap> entries = entriesOf(file.readAll());
        file.close();
        if (!entries) {
            std::fprintf(stderr, "The unsaved session %s could not be read; it was kept as %s.\n", qPrintable(path),
                         qPrintable(setAside(path)));
            continue;
        }
        // It is the whole state of a later session than the store's.
        settings->clear();
        for (auto it = entries->cbegin(); it != entries->cend(); ++it)
            settings->setValue(it.key(), it.value());
        restoredFile = path;
        // Once the store holds it, the file has done its work; if the store still cannot be
        // written, the file stays until a quit that can.
        if (synchronize())
            QFile::remove(path);
        return;
    }
}

TWUserDefaults *TWUserDefaults::standardUserDefaults()
{
    auto &store = standardStore();
    if (!store)
        store.reset(new TWUserDefaults());
    return store.get();
}

void TWUserDefaults::resetStandardUserDefaults()
{
    // Read again in place: whoever holds the store keeps a valid one.
    if (auto &store = standardStore()) {
        store->synchronize();
        store->open();
    }
}

QVariant TWUserDefaults::objectForKey(const QString &key) const
{
    return settings->value(key);
}

std::optional<QString> TWUserDefaults::stringForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (value.typeId() != QMetaType::QString)
        return std::nullopt;
    return value.toString();
}

std::optional<QVariantMap> TWUserDefaults::dictionaryForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (value.typeId() != QMetaType::QVariantMap)
        return std::nullopt;
    return value.toMap();
}

std::optional<QByteArray> TWUserDefaults::dataForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (value.typeId() != QMetaType::QByteArray)
        return std::nullopt;
    return value.toByteArray();
}

std::optional<QVariantList> TWUserDefaults::arrayForKey(const QString &key) const
{
    const QVariant value = objectForKey(key);
    if (value.typeId() != QMetaType::QVariantList && value.typeId() != QMetaType::QStringList)
        return std::nullopt;
    return value.toList();
}

void TWUserDefaults::setObject(const QVariant &value, const QString &key)
{
    settings->setValue(key, value);
}

void TWUserDefaults::removeObjectForKey(const QString &key)
{
    settings->remove(key);
}

bool TWUserDefaults::hasKey(const QString &key) const
{
    return settings->contains(key);
}

bool TWUserDefaults::synchronize()
{
    settings->sync();
    return settings->status() == QSettings::NoError;
}

QString TWUserDefaults::fileName() const
{
    return settings->fileName();
}
