// Nothing typed is lost when Tagwright does not quit cleanly: the recovery copy follows the
// documents while the user works and brings them back at the next start; and a quit whose
// store cannot be written keeps the session elsewhere.
#include "app/TWRecoveryCopy.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "app/TWAppDelegate.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTemplateTextView.h"
#include "platform/TWPaths.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferences.h"

#include <QDir>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QTextCursor>
#include <QFile>
#include <QMap>
#include <QTest>


namespace {

constexpr int patience = 60000;

// The documents that have files in the copy, by name.
QStringList copiedDocuments()
{
    QStringList documents;
    for (const QString &file : QDir(TWRecoveryCopy::folder()).entryList(QDir::Files, QDir::Name))
        documents << file.section(QLatin1Char('.'), 0, 0);
    documents.removeDuplicates();
    return documents;
}

// Every file of the copy with its bytes.
QMap<QString, QByteArray> copyFiles()
{
    QMap<QString, QByteArray> files;
    const QDir folder(TWRecoveryCopy::folder());
    for (const QString &name : folder.entryList(QDir::Files)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly))
            files.insert(name, file.readAll());
    }
    return files;
}

// What a user can have in a text: every kind of character a file or the keyboard gives.
QString awkwardText()
{
    return QStringLiteral("<p>\u65e5\u672c</p>\n\f\v\x1b\u2028\u2029\u00a0&<>") + QChar(0xD800) + QChar(u'\0')
        + QStringLiteral("\n");
}

} // namespace

class tst_TWRecoveryCopy : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    TWEditWindowController *html = nullptr;
    TWTemplateWindowController *templateWindow = nullptr;
    TWCSSWindowController *css = nullptr;

private Q_SLOTS:
    void initTestCase()
    {
        viewer.install();
        TWAppDelegate::sharedAppDelegate();
        TWPreferences::sharedPref();
        html = TWEditWindowController::sharedEditWindowController();
        templateWindow = TWTemplateWindowController::sharedTemplateController();
        css = TWCSSWindowController::sharedCSSController();
        TWRecoveryCopy::shared()->start();
    }

    void init() { TWRecoveryCopy::shared()->discard(); }

    void changedDocumentsAreCopiedAndComeBack_data()
    {
        QTest::addColumn<QString>("document");
        QTest::newRow("HTML") << "HTML";
        QTest::newRow("template") << "Template";
        QTest::newRow("style sheet") << "Style Sheet";
    }

    void changedDocumentsAreCopiedAndComeBack()
    {
        QFETCH(QString, document);
        TWRecoveryCopy *copy = TWRecoveryCopy::shared();
        const QString text = awkwardText() + document;
        const QString file = QStringLiteral("/site/") + document + QStringLiteral(".txt");
        TWEditorTextView *view = document == QLatin1String("HTML") ? html->textView()
            : document == QLatin1String("Template")                ? static_cast<TWEditorTextView *>(templateWindow->topTextView())
                                                                   : css->textView();
        const int writes = copy->writesDone();
        view->setString(QString());
        view->insertText(text);
        if (document == QLatin1String("HTML"))
            html->setHTMLFilename(file);
        else if (document == QLatin1String("Template"))
            templateWindow->setTemplateFilename(file);
        else
            css->setCSSFilename(file);
        TW_TRY_VERIFY_WITH_TIMEOUT(copy->writesDone() > writes && !copy->isWriting(), patience);
        // Only the document that changed is written.
        QCOMPARE(copiedDocuments(), QStringList{document});

        // The next start after a crash: the texts and names come back as they were.
        const QMap<QString, QByteArray> files = copyFiles();
        copy->discard();
        html->loadHTML(QStringLiteral("other"));
        html->setHTMLFilename(QString());
        templateWindow->loadTemplate(QStringLiteral("other"));
        templateWindow->setTemplateFilename(QString());
        css->loadCSS(QStringLiteral("other"));
        css->setCSSFilename(QString());
        copy->discard();
        QDir().mkpath(TWRecoveryCopy::folder());
        for (auto file = files.cbegin(); file != files.cend(); ++file) {
            QFile saved(TWRecoveryCopy::folder() + QLatin1Char('/') + file.key());
            QVERIFY(saved.open(QIODevice::WriteOnly) && saved.write(file.value()) == file.value().size());
        }
        QVERIFY(copy->restore());
        if (document == QLatin1String("HTML")) {
            QCOMPARE(html->getText(), text);
            QCOMPARE(html->htmlFilename(), file);
        } else if (document == QLatin1String("Template")) {
            QVERIFY(templateWindow->topTextView()->string().startsWith(text));
            QCOMPARE(templateWindow->templateFilename(), file);
        } else {
            QCOMPARE(css->textView()->string(), text);
            QCOMPARE(css->cssFilename(), file);
        }
        QCOMPARE(html->textView()->string() == QLatin1String("other"), document != QLatin1String("HTML"));
    }

    void steadyTypingIsCopiedWhileItGoesOn()
    {
        // A copy written only when typing pauses would never be written while it goes on.
        TWRecoveryCopy *copy = TWRecoveryCopy::shared();
        const int writes = copy->writesDone();
        QElapsedTimer clock;
        clock.start();
        while (copy->writesDone() == writes && clock.elapsed() < patience) {
            html->textView()->insertText(QStringLiteral("x"));
            QTest::qWait(TWRecoveryCopy::pauseMilliseconds / 5);
        }
        QVERIFY(copy->writesDone() > writes);
    }

    void everyCopyIsATextTheDocumentHad()
    {
        // Edits while a large text is being copied, before and after the part already taken:
        // what is written is always the text as it was at one moment, never a mixture.
        TWRecoveryCopy *copy = TWRecoveryCopy::shared();
        TWEditorTextView *view = html->textView();
        view->setString(QStringLiteral("<p>line</p>\n").repeated(TWRecoveryCopy::sliceCharacters / 4));
        QSet<size_t> states{qHash(view->string())};
        QRandomGenerator random(20261123);
        for (int round = 0; round < 4; ++round) {
            const int writes = copy->writesDone();
            view->insertText(QStringLiteral("<"));
            states << qHash(view->string());
            QVERIFY2(TWTestEnvironment::waitFor([copy] { return copy->isWriting(); }, patience), qPrintable(QString::number(round)));
            for (int edit = 0; edit < 3 && copy->writesDone() == writes; ++edit) {
                QTextCursor cursor(view->document());
                cursor.setPosition(int(random.bounded(view->document()->characterCount() - 1)));
                cursor.insertText(QStringLiteral("x"));
                states << qHash(view->string());
                QCoreApplication::processEvents();
            }
            // A crash at any turn of the write would find the copy written before it, whole.
            QElapsedTimer clock;
            clock.start();
            while (copy->writesDone() == writes && clock.elapsed() < patience) {
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                const std::optional<QList<QString>> meanwhile = TWRecoveryCopy::read("HTML");
                QVERIFY(round == 0 || (meanwhile && states.contains(qHash(meanwhile->at(1)))));
            }
            QVERIFY(copy->writesDone() > writes);
            const std::optional<QList<QString>> written = TWRecoveryCopy::read("HTML");
            QVERIFY(written);
            QVERIFY2(states.contains(qHash(written->at(1))), qPrintable(QStringLiteral("round %1").arg(round)));
        }
        // A shorter text leaves nothing of the longer one before it.
        const int writes = copy->writesDone();
        view->setString(QStringLiteral("short"));
        TW_TRY_VERIFY_WITH_TIMEOUT(copy->writesDone() > writes + 1 || (copy->writesDone() > writes && !copy->isWriting()), patience);
        QCOMPARE(TWRecoveryCopy::read("HTML").value_or(QList<QString>{{}, {}}).at(1), QStringLiteral("short"));
    }

    void unreadableCopyIsLeftAlone()
    {
        QDir().mkpath(TWRecoveryCopy::folder());
        QFile broken(TWRecoveryCopy::folder() + QStringLiteral("/HTML.1"));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        // Marked whole, but its text is shorter than its length says.
        broken.write(QByteArray("Tagwright recovery copy 2\n") + QByteArray(8, '\1') + QByteArray("\x05\0\0\0\0\0\0\0ab", 10));
        broken.close();
        html->loadHTML(QStringLiteral("mine"));
        QVERIFY(!TWRecoveryCopy::shared()->restore());
        QCOMPARE(html->getText(), QStringLiteral("mine"));
        QVERIFY(broken.exists());
    }

    void quitWithAStoreThatCannotBeWrittenKeepsTheSession()
    {
        // The store's folder is taken by a file: nothing can be written there, not even as root.
        TWUserDefaults::resetStandardUserDefaults();
        const QString storeFolder = QFileInfo(TWUserDefaults::storeFileName()).absolutePath();
        QDir(storeFolder).removeRecursively();
        QFile blocker(storeFolder);
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();

        html->loadHTML(awkwardText());
        html->textView()->insertText(QStringLiteral("typed"));
        TWAppDelegate::sharedAppDelegate()->applicationWillTerminate();
        const QString kept = TWApplicationDataFolder() + QStringLiteral("/Unsaved Session.plist");
        QVERIFY(QFile::exists(kept));
        // The session is safe there, so the recovery copy has done its work.
        QVERIFY(copiedDocuments().isEmpty());

        // The next start takes it back, and says so.
        QVERIFY(QFile::remove(storeFolder));
        TWUserDefaults::resetStandardUserDefaults();
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        QCOMPARE(store->restoredFileName(), kept);
        QVERIFY(!QFile::exists(kept));
        const std::optional<QVariantMap> window = store->dictionaryForKey(QStringLiteral("Editor Window Defaults"));
        QVERIFY(window);
        QCOMPARE(window->value(QStringLiteral("HTML Text")).toString(), QStringLiteral("typed") + awkwardText());
    }

    void quitThatCannotKeepTheSessionKeepsTheRecoveryCopy()
    {
        // A value no property list can hold makes every write of the store fail.
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->setObject(QPoint(1, 2), QStringLiteral("Unwritable"));
        html->loadHTML(QStringLiteral("last words"));
        TWAppDelegate::sharedAppDelegate()->applicationWillTerminate();
        QCOMPARE(copiedDocuments(), QStringList{QStringLiteral("HTML")});
        store->removeObjectForKey(QStringLiteral("Unwritable"));
        html->loadHTML(QStringLiteral("other"));
        QVERIFY(TWRecoveryCopy::shared()->restore());
        QCOMPARE(html->getText(), QStringLiteral("last words"));
    }
};

QTEST_MAIN(tst_TWRecoveryCopy)
#include "tst_TWRecoveryCopy.moc"
