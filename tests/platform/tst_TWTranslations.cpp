// The Japanese table gives every key of the string table and every text of the program a
// Japanese text; the user's language chooses the table, and Qt's own texts follow it.
#include "platform/TWLocalization.h"

#include <QLibraryInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>
#include <QTranslator>
#include <QXmlStreamReader>

using namespace Qt::StringLiterals;

class tst_TWTranslations : public QObject
{
    Q_OBJECT

    // Where the program's translatable texts are: its subsystems and its window layouts.
    static constexpr const char *sourceFolders[] = {"app",     "preferences", "taglib", "editor",   "documents",
                                                    "preview", "checker",     "panels", "platform", "resources/ui"};
    QTranslator japanese, english;
    QTemporaryDir work;

    // One row per message of a .ts file (none of the program's texts is disambiguated).
    static void addMessages(const QString &tsPath)
    {
        QFile file(tsPath);
        QVERIFY2(file.open(QIODevice::ReadOnly), qPrintable(tsPath));
        QXmlStreamReader xml(&file);
        QString context, source;
        while (xml.readNext() != QXmlStreamReader::EndDocument && !xml.hasError()) {
            if (xml.isEndElement() && xml.name() == u"message")
                QTest::addRow("%s %s", qPrintable(context), qPrintable(source)) << context << source;
            for (auto [name, field] : {std::pair{u"name", &context}, {u"source", &source}})
                if (xml.isStartElement() && xml.name() == name)
                    *field = xml.readElementText();
        }
        QVERIFY2(!xml.hasError(), qPrintable(xml.errorString()));
    }

private Q_SLOTS:
    void initTestCase() { QVERIFY(japanese.load(u":/translations/custom_ja.qm"_s) && english.load(u":/translations/custom_en.qm"_s)); }

    // Every key of the table, and every text as lupdate finds it in the sources now: a text
    // added without a Japanese text fails. (lupdate comes with lrelease, which the build needs.)
    void everyTextIsJapanese_data()
    {
        const QString lupdate = QLibraryInfo::path(QLibraryInfo::BinariesPath) + u"/lupdate"_s;
        if (!QFileInfo(lupdate).isExecutable())
            QSKIP("lupdate (Debian package qt6-l10n-tools) is not installed");
        QStringList arguments{u"-silent"_s, u"-locations"_s, u"none"_s, u"-I"_s, QStringLiteral(TW_SOURCE_DIR)};
        for (const char *folder : sourceFolders)
            arguments << QStringLiteral(TW_SOURCE_DIR "/") + QLatin1String(folder);
        QCOMPARE(QProcess::execute(lupdate, arguments << u"-ts"_s << work.filePath(u"program.ts"_s)), 0);
        QTest::addColumn<QString>("context");
        QTest::addColumn<QString>("source");
        addMessages(QStringLiteral(TW_SOURCE_DIR "/resources/translations/custom_en.ts"));
        addMessages(work.filePath(u"program.ts"_s));
    }
    void everyTextIsJapanese()
    {
        QFETCH(QString, context);
        QFETCH(QString, source);
        QVERIFY(!japanese.translate(context.toUtf8(), source.toUtf8(), nullptr, 2).isEmpty());
    }

    // A menu title and a key in the user's language, English for a language without a table;
    // Qt's standard buttons in the language of the table, where Qt's texts for it are installed.
    void theUserLanguageChoosesTheTable_data()
    {
        QTest::addColumn<QString>("locale");
        for (const char *locale : {"ja_JP", "en_US", "de_DE"}) // German: a language without a table
            QTest::newRow(locale) << QString::fromLatin1(locale);
    }
    void theUserLanguageChoosesTheTable()
    {
        QFETCH(QString, locale);
        const bool isJapanese = QLocale(locale).language() == QLocale::Japanese;
        QLocale::setDefault(QLocale(locale));
        qDeleteAll(qApp->findChildren<QTranslator *>(Qt::FindDirectChildrenOnly));
        QVERIFY(TWInstallTranslations(qApp));
        for (const auto &[context, source] : {std::pair{"TWAppDelegate", "&File"}, {"custom", "fileUnspecified"}}) {
            const QString table = (isJapanese ? japanese : english).translate(context, source);
            QCOMPARE(QCoreApplication::translate(context, source), table.isEmpty() ? QString::fromLatin1(source) : table);
        }
        QTranslator qt;
        const bool haveQt = isJapanese && qt.load(QLocale(locale), u"qtbase"_s, u"_"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath));
        QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), haveQt ? qt.translate("QPlatformTheme", "Cancel") : u"Cancel"_s);
    }
};

QTEST_MAIN(tst_TWTranslations)
#include "tst_TWTranslations.moc"
