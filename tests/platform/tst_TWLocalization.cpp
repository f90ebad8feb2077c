// Every text key used by the application has an English text; a key without one shows itself.
#include "platform/TWLocalization.h"
#include "platform/TWTextKeys.h"

#include <QCoreApplication>
#include <QTest>

class tst_TWLocalization : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKeyHasAText()
    {
        QVERIFY(TWInstallTranslations(QCoreApplication::instance()));
        QStringList missing;
        for (std::string_view key : TWTextKey::all) {
            const QByteArray name(key.data(), qsizetype(key.size()));
            const QString text = TWLocalizedString(name.constData());
            if (text.isEmpty() || text == QLatin1String(name))
                missing << QLatin1String(name);
        }
        QVERIFY2(missing.isEmpty(), qPrintable(missing.join(QLatin1String(", "))));
        // The one text with a number in it says it in the form for the number.
        QCOMPARE(TWLocalizedString(TWTextKey::xPlacesAreReplaced, 3), QStringLiteral("3 places were replaced."));
        QCOMPARE(TWLocalizedString(TWTextKey::xPlacesAreReplaced, 1), QStringLiteral("1 place was replaced."));
        QCOMPARE(TWLocalizedString("noSuchKeyAnywhere"), QStringLiteral("noSuchKeyAnywhere"));
    }
};

QTEST_GUILESS_MAIN(tst_TWLocalization)
#include "tst_TWLocalization.moc"
