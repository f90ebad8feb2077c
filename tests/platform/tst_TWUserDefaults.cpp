// The user-defaults store: a property-list file that keeps every kind of value and every
// text across launches, leaves its file as it was when a write fails, and never overwrites a
// file it cannot read.
#include "platform/TWUserDefaults.h"

#include "TWTestEnvironment.h"
#include "platform/TWXMLPropertyList.h"

#include <QDir>
#include <QFileInfo>
#include <QPoint>
#include <QTest>

class tst_TWUserDefaults : public QObject
{
    Q_OBJECT

    const QString storePath = TWUserDefaults::storeFileName();

    // What the next launch of the application reads.
    static TWUserDefaults *relaunch()
    {
        TWUserDefaults::resetStandardUserDefaults();
        return TWUserDefaults::standardUserDefaults();
    }

private Q_SLOTS:
    // Whatever file the store opened (none; an empty one, an empty store; or one it cannot read,
    // which is set aside, never overwritten), the values set survive a relaunch, in a plain XML
    // property list whose root holds the keys. Typed readers answer nothing for a value of
    // another type; a write the writer refuses fails and leaves the file as it was.
    void valuesSurviveARelaunch_data()
    {
        QTest::addColumn<QByteArray>("contents"); // null: no file
        QTest::addColumn<bool>("setAside");
        QTest::newRow("no file") << QByteArray() << false;
        QTest::newRow("empty file") << QByteArray("") << false;
        QTest::newRow("not XML") << QByteArray("this is not a property list\n\x01\x02") << true;
        QTest::newRow("root is an array")
            << QByteArray("<?xml version=\"1.0\"?><plist version=\"1.0\"><array><string>x</string></array></plist>") << true;
    }

    void valuesSurviveARelaunch()
    {
        QFETCH(QByteArray, contents);
        QFETCH(bool, setAside);
        QVERIFY(storePath.startsWith(QDir::homePath()) && storePath.endsWith(QLatin1String("/Tagwright/Tagwright.plist")));
        QDir(QFileInfo(storePath).absolutePath()).removeRecursively();
        QVERIFY(contents.isNull() || TWTestEnvironment::writeFile(storePath, contents));
        TWUserDefaults *store = relaunch();
        const QString aside = store->setAsideFileName();
        QCOMPARE(!aside.isEmpty(), setAside);
        const QString text = QStringLiteral("<p>日本語</p>\r\n\u2028\f<?tw-char 000C?>") + QChar(0) + QChar(0xFFFE) + QChar(0xDC00);
        const QByteArray color("\xff\xff\xff\xb2", 4);
        const QVariantMap values{{QStringLiteral("Editor Window Defaults"), QVariantMap{{QStringLiteral("HTML Text"), text}}},
                                 {QStringLiteral("Editor Background Color"), color},
                                 {QStringLiteral("External Browsers"), QVariantList{QStringLiteral("/usr/bin/firefox")}},
                                 {QStringLiteral("Suspend Time"), 0.5}};
        for (auto it = values.begin(); it != values.end(); ++it)
            store->setObject(it.value(), it.key());
        QVERIFY(store->synchronize());
        QCOMPARE(TWXMLPropertyList::read(TWTestEnvironment::readFile(storePath)), std::optional<QVariant>(values));
        if (setAside)
            QCOMPARE(TWTestEnvironment::readFile(aside), contents);

        store = relaunch();
        for (auto it = values.begin(); it != values.end(); ++it)
            QCOMPARE(store->objectForKey(it.key()), it.value());
        QCOMPARE(store->dataForKey(QStringLiteral("Editor Background Color")), std::optional(color));
        QVERIFY(!store->stringForKey(QStringLiteral("Suspend Time")));
        QVERIFY(!store->dictionaryForKey(QStringLiteral("External Browsers")));
        const QByteArray before = TWTestEnvironment::readFile(storePath);
        store->setObject(QPoint(1, 2), QStringLiteral("Unwritable"));
        QVERIFY(!store->synchronize());
        QCOMPARE(TWTestEnvironment::readFile(storePath), before);
        store->removeObjectForKey(QStringLiteral("Unwritable"));
    }
};

QTEST_GUILESS_MAIN(tst_TWUserDefaults)
#include "tst_TWUserDefaults.moc"
