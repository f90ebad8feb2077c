// The user-defaults store: a property-list file that keeps every kind of value and every
// text across launches, never overwrites a file it cannot read, and loses nothing when it
// cannot be written.
#include "platform/TWUserDefaults.h"

#include "TWTestEnvironment.h"
#include "platform/TWPaths.h"
#include "platform/TWXMLPropertyList.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

namespace {

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Every character a text can hold, those XML cannot carry among them.
QString everyKindOfText()
{
    QString text = QString::fromUtf8("<p>日本語</p>\n<b>x</b> & \"y\" \u2028\u2029\u00a0\r");
    for (char16_t u = 0; u < 0x20; ++u)
        text += QChar(u);
    return text + QChar(0xFFFE) + QChar(0xFFFF) + QChar(0xDC00) + QChar(0xD800) + QStringLiteral("<?tw-char 000C?>");
}

} // namespace

class tst_TWUserDefaults : public QObject
{
    Q_OBJECT

private:
    QString storePath;

    // What the next launch of the application reads.
    static TWUserDefaults *relaunch()
    {
        TWUserDefaults::resetStandardUserDefaults();
        return TWUserDefaults::standardUserDefaults();
    }

private Q_SLOTS:
    void initTestCase()
    {
        storePath = TWUserDefaults::storeFileName();
        QVERIFY(storePath.startsWith(QDir::homePath()));
        QVERIFY(storePath.endsWith(QLatin1String("/Tagwright/Tagwright.plist")));
    }

    void init()
    {
        TWUserDefaults::resetStandardUserDefaults();
        QDir(QFileInfo(storePath).absolutePath()).removeRecursively();
        QFile::remove(TWApplicationDataFolder() + QStringLiteral("/Unsaved Session.plist"));
        relaunch();
    }

    void everyValueAndTextSurvivesARelaunch()
    {
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        QVariantMap window;
        window.insert(QStringLiteral("HTML Text"), everyKindOfText());
        window.insert(QStringLiteral("Auto Indentation"), QStringLiteral("YES"));
        store->setObject(window, QStringLiteral("Editor Window Defaults"));
        store->setObject(QByteArray("\xff\xff\xff\xb2", 4), QStringLiteral("Editor Background Color"));
        store->setObject(QStringList{QStringLiteral("/usr/bin/firefox"), QStringLiteral("/usr/bin/chromium")},
                         QStringLiteral("External Browsers"));
        store->setObject(0.5, QStringLiteral("Suspend Time"));
        QVERIFY(store->synchronize());

        store = relaunch();
        QCOMPARE(store->dictionaryForKey(QStringLiteral("Editor Window Defaults")), std::optional<QVariantMap>(window));
        QCOMPARE(store->dataForKey(QStringLiteral("Editor Background Color")),
                 std::optional<QByteArray>(QByteArray("\xff\xff\xff\xb2", 4)));
        QCOMPARE(store->arrayForKey(QStringLiteral("External Browsers"))->value(1).toString(),
                 QStringLiteral("/usr/bin/chromium"));
        QCOMPARE(store->objectForKey(QStringLiteral("Suspend Time")).toDouble(), 0.5);
        // Typed readers answer nothing for a value of another type.
        QVERIFY(!store->stringForKey(QStringLiteral("Suspend Time")));
        QVERIFY(!store->dictionaryForKey(QStringLiteral("External Browsers")));
        QVERIFY(!store->dataForKey(QStringLiteral("Editor Window Defaults")));
        QVERIFY(!store->arrayForKey(QStringLiteral("Missing")));
        // The file on disk is a plain XML property list whose root holds the keys.
        QVERIFY(TWXMLPropertyList::read(readFile(storePath))->toMap().contains(QStringLiteral("Editor Window Defaults")));
    }

    void unreadableStoreIsSetAsideNotOverwritten_data()
    {
        QTest::addColumn<QByteArray>("contents");
        QTest::addColumn<bool>("setAside");
        QTest::newRow("not XML") << QByteArray("this is not a property list\n\x01\x02") << true;
        QTest::newRow("truncated plist") << QByteArray("<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>A</key>")
                                         << true;
        QTest::newRow("root is an array")
            << QByteArray("<?xml version=\"1.0\"?><plist version=\"1.0\"><array><string>x</string></array></plist>")
            << true;
        QTest::newRow("empty file is an empty store") << QByteArray() << false;
    }

    void unreadableStoreIsSetAsideNotOverwritten()
    {
        QFETCH(QByteArray, contents);
        QFETCH(bool, setAside);
        QVERIFY(TWTestEnvironment::writeFile(storePath, contents));
        TWUserDefaults *store = relaunch();
        const QString aside = store->setAsideFileName();
        QCOMPARE(!aside.isEmpty(), setAside);
        if (setAside)
            QCOMPARE(readFile(aside), contents);
        store->setObject(QStringLiteral("fresh"), QStringLiteral("Key"));
        QVERIFY(store->synchronize());
        if (setAside)
            QCOMPARE(readFile(aside), contents);
        QCOMPARE(relaunch()->stringForKey(QStringLiteral("Key")), std::optional<QString>(QStringLiteral("fresh")));
    }

    void storeThatCannotBeWrittenLosesNothing()
    {
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->setObject(QStringLiteral("old"), QStringLiteral("Text"));
        QVERIFY(store->synchronize());
        const QByteArray before = readFile(storePath);

        // A write the writer refuses leaves the file as it was.
        store->setObject(QPoint(1, 2), QStringLiteral("Unwritable"));
        store->setObject(everyKindOfText(), QStringLiteral("Text"));
        QVERIFY(!store->synchronize());
        QCOMPARE(readFile(storePath), before);
        store->removeObjectForKey(QStringLiteral("Unwritable"));

        // A store whose folder cannot hold it (taken by a file: not even root writes there) keeps
        // its state in a file of its own, which the next launch takes back.
        const QString folder = QFileInfo(storePath).absolutePath();
        QVERIFY(QDir(folder).removeRecursively());
        QVERIFY(TWTestEnvironment::writeFile(folder, "in the way"));
        QVERIFY(!store->synchronize());
        const QString kept = store->keepUnsavedState();
        QVERIFY(kept.startsWith(TWApplicationDataFolder()));
        QVERIFY(QFile::remove(folder));
        store = relaunch();
        QCOMPARE(store->restoredFileName(), kept);
        QCOMPARE(store->stringForKey(QStringLiteral("Text")), std::optional<QString>(everyKindOfText()));
        QVERIFY(!QFile::exists(kept));
        QVERIFY(relaunch()->restoredFileName().isEmpty());
    }
};

QTEST_GUILESS_MAIN(tst_TWUserDefaults)
#include "tst_TWUserDefaults.moc"
