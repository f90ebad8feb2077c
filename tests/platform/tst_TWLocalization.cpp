// Every text key used by the application has an English text in the string table.
#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"

#include <QCoreApplication>
#include <QTest>

class tst_TWLocalization : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QVERIFY(TWInstallTranslations(QCoreApplication::instance()));
    }

    void everyKeyHasAText()
    {
        QStringList missing;
        for (std::string_view key : TWTextKey::all) {
            const QByteArray name(key.data(), qsizetype(key.size()));
            const QString text = TWLocalizedString(name.constData());
            if (text.isEmpty() || text == QLatin1String(name))
                missing << QLatin1String(name);
        }
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QLatin1String(", "))));
    }

    void textsAreTheEnglishOnes()
    {
        QCOMPARE(TWLocalizedString(TWTextKey::fileUnspecified), QStringLiteral("Untitled"));
        QCOMPARE(TWLocalizedString(TWTextKey::xPlacesAreReplaced).arg(3), QStringLiteral("3 places were replaced."));
    }

    void missingKeyShowsTheKey()
    {
        QCOMPARE(TWLocalizedString("noSuchKeyAnywhere"), QStringLiteral("noSuchKeyAnywhere"));
    }
};

QTEST_GUILESS_MAIN(tst_TWLocalization)
#include "tst_TWLocalization.moc"
