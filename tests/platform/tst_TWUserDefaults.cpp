// The user-defaults store: a property-list file that keeps every kind of value across
// launches, and never overwrites a file it cannot read.
#include "platform/TWUserDefaults.h"
#include "platform/TWXMLPropertyList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace {

void writeFile(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

class tst_TWUserDefaults : public QObject
{
    Q_OBJECT

private:
    QString storePath;

private Q_SLOTS:
    void initTestCase()
    {
        storePath = TWUserDefaults::standardUserDefaults()->fileName();
        QVERIFY(storePath.startsWith(QDir::homePath()));
        QVERIFY(storePath.endsWith(QLatin1String("/Tagwright/Tagwright.plist")));
    }

    void init()
    {
        TWUserDefaults::resetStandardUserDefaults();
        QFile::remove(storePath);
        const QStringList asides = QDir(QFileInfo(storePath).absolutePath()).entryList({QStringLiteral("*.unreadable-*")});
        for (const QString &name : asides)
            QFile::remove(QFileInfo(storePath).absolutePath() + QLatin1Char('/') + name);
    }

    void everyKindOfValueSurvivesARelaunch()
    {
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        QVariantMap window;
        window.insert(QStringLiteral("HTML Text"), QString::fromUtf8("<p>日本語</p>\n<b>x</b> & \"y\""));
        window.insert(QStringLiteral("Auto Indentation"), QStringLiteral("YES"));
        store->setObject(window, QStringLiteral("Editor Window Defaults"));
        store->setObject(QByteArray("\xff\xff\xff\xb2", 4), QStringLiteral("Editor Background Color"));
        store->setObject(QStringList{QStringLiteral("/usr/bin/firefox"), QStringLiteral("/usr/bin/chromium")},
                         QStringLiteral("External Browsers"));
        store->setObject(0.5, QStringLiteral("Suspend Time"));
        store->setObject(QStringLiteral("SJIS-JP"), QStringLiteral("Text Encoding"));
        QVERIFY(store->synchronize());

        TWUserDefaults::resetStandardUserDefaults();
        store = TWUserDefaults::standardUserDefaults();
        QCOMPARE(store->dictionaryForKey(QStringLiteral("Editor Window Defaults")), std::optional<QVariantMap>(window));
        QCOMPARE(store->dataForKey(QStringLiteral("Editor Background Color")),
                 std::optional<QByteArray>(QByteArray("\xff\xff\xff\xb2", 4)));
        const std::optional<QVariantList> browsers = store->arrayForKey(QStringLiteral("External Browsers"));
        QVERIFY(browsers);
        QCOMPARE(browsers->size(), 2);
        QCOMPARE(browsers->at(1).toString(), QStringLiteral("/usr/bin/chromium"));
        QCOMPARE(store->objectForKey(QStringLiteral("Suspend Time")).toDouble(), 0.5);
        QCOMPARE(store->stringForKey(QStringLiteral("Text Encoding")), std::optional<QString>(QStringLiteral("SJIS-JP")));

        // The file on disk is a plain XML property list whose root holds the keys.
        const std::optional<QVariant> root = TWXMLPropertyList::read(readFile(storePath));
        QVERIFY(root);
        QVERIFY(root->toMap().contains(QStringLiteral("Editor Window Defaults")));
    }

    void typedReadersRefuseForeignTypes()
    {
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->setObject(42, QStringLiteral("Number"));
        store->setObject(QStringLiteral("text"), QStringLiteral("Text"));
        QVERIFY(!store->stringForKey(QStringLiteral("Number")));
        QVERIFY(!store->dictionaryForKey(QStringLiteral("Text")));
        QVERIFY(!store->dataForKey(QStringLiteral("Text")));
        QVERIFY(!store->arrayForKey(QStringLiteral("Text")));
        QVERIFY(!store->stringForKey(QStringLiteral("Missing")));
        QVERIFY(store->hasKey(QStringLiteral("Text")));
        store->removeObjectForKey(QStringLiteral("Text"));
        QVERIFY(!store->hasKey(QStringLiteral("Text")));
    }

    void unreadableStoreIsSetAsideNotOverwritten_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::newRow("not XML") << QByteArray("this is not a property list\n\x01\x02");
        QTest::newRow("truncated plist") << QByteArray("<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>A</key>");
        QTest::newRow("root is an array")
            << QByteArray("<?xml version=\"1.0\"?><plist version=\"1.0\"><array><string>x</string></array></plist>");
    }

    void unreadableStoreIsSetAsideNotOverwritten()
    {
        QFETCH(QByteArray, contents);
        writeFile(storePath, contents);

        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        const QString aside = store->setAsideFileName();
        QVERIFY(!aside.isEmpty());
        QCOMPARE(readFile(aside), contents);
        QVERIFY(!store->hasKey(QStringLiteral("A")));

        store->setObject(QStringLiteral("fresh"), QStringLiteral("Key"));
        QVERIFY(store->synchronize());
        QCOMPARE(readFile(aside), contents);
        TWUserDefaults::resetStandardUserDefaults();
        QCOMPARE(TWUserDefaults::standardUserDefaults()->stringForKey(QStringLiteral("Key")),
                 std::optional<QString>(QStringLiteral("fresh")));
    }

    void emptyStoreFileIsAnEmptyStore()
    {
        writeFile(storePath, QByteArray());
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        QVERIFY(store->setAsideFileName().isEmpty());
        store->setObject(QStringLiteral("v"), QStringLiteral("k"));
        QVERIFY(store->synchronize());
    }
};

QTEST_GUILESS_MAIN(tst_TWUserDefaults)
#include "tst_TWUserDefaults.moc"
