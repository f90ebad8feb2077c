#include "platform/TWUserDefaults.h"

#include "platform/TWXMLPropertyList.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QMetaType>

namespace {

constexpr char organizationName[] = "Tagwright";
constexpr char applicationName[] = "Tagwright";
constexpr char storeExtension[] = "plist";
constexpr char setAsideSuffixFormat[] = ".unreadable-%1";

bool readStore(QIODevice &device, QSettings::SettingsMap &map)
{
    const std::optional<QVariant> root = TWXMLPropertyList::read(device.readAll());
    if (!root || root->typeId() != QMetaType::QVariantMap)
        return false;
    const QVariantMap entries = root->toMap();
    for (auto it = entries.cbegin(); it != entries.cend(); ++it)
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

// A store file that is not a property list would be overwritten by the next save; it is
// moved aside instead, so that whatever it holds can still be recovered by hand.
QString setAsideIfUnreadable(const QString &path)
{
    QFile file(path);
    if (!file.exists() || file.size() == 0 || !file.open(QIODevice::ReadOnly))
        return {};
    const std::optional<QVariant> root = TWXMLPropertyList::read(file.readAll());
    file.close();
    if (root && root->typeId() == QMetaType::QVariantMap)
        return {};
    const QString aside = path
        + QString::fromLatin1(setAsideSuffixFormat)
              .arg(QDateTime::currentDateTime().toString(QStringLiteral("yyyyMMdd-hhmmss")));
    if (!QFile::rename(path, aside))
        return {};
    qWarning("The preferences file %s could not be read; it was kept as %s and the defaults are used.",
             qPrintable(path), qPrintable(aside));
    return aside;
}

} // namespace

TWUserDefaults::TWUserDefaults()
{
    const QSettings::Format format = plistFormat();
    const QString path = QSettings(format, QSettings::UserScope, QLatin1String(organizationName),
                                   QLatin1String(applicationName))
                             .fileName();
    setAsideFile = setAsideIfUnreadable(path);
    settings = std::make_unique<QSettings>(format, QSettings::UserScope, QLatin1String(organizationName),
                                           QLatin1String(applicationName));
    settings->setFallbacksEnabled(false);
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
    auto &store = standardStore();
    if (store)
        store->synchronize();
    store.reset();
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
