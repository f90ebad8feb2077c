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
#include <QTest>


namespace {

constexpr int patience = 60000;

QStringList copiedDocuments()
{
    return QDir(TWRecoveryCopy::folder()).entryList(QDir::Files, QDir::Name);
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
        QFile saved(TWRecoveryCopy::folder() + QLatin1Char('/') + document);
        QVERIFY(saved.open(QIODevice::ReadOnly));
        const QByteArray bytes = saved.readAll();
        saved.close();
        copy->discard();
        html->loadHTML(QStringLiteral("other"));
        html->setHTMLFilename(QString());
        templateWindow->loadTemplate(QStringLiteral("other"));
        templateWindow->setTemplateFilename(QString());
        css->loadCSS(QStringLiteral("other"));
        css->setCSSFilename(QString());
        copy->discard();
        QDir().mkpath(TWRecoveryCopy::folder());
        QVERIFY(saved.open(QIODevice::WriteOnly));
        saved.write(bytes);
        saved.close();
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
            TW_TRY_VERIFY_WITH_TIMEOUT(copy->writesDone() > writes, patience);
            const std::optional<QList<QString>> written
                = TWRecoveryCopy::read(TWRecoveryCopy::folder() + QStringLiteral("/HTML"));
            QVERIFY(written);
            QVERIFY2(states.contains(qHash(written->at(1))), qPrintable(QStringLiteral("round %1").arg(round)));
        }
    }

    void unreadableCopyIsLeftAlone()
    {
        QDir().mkpath(TWRecoveryCopy::folder());
        QFile broken(TWRecoveryCopy::folder() + QStringLiteral("/HTML"));
        QVERIFY(broken.open(QIODevice::WriteOnly));
        broken.write("Tagwright recovery copy 1\n\x05\x00\x00\x00\x00\x00\x00\x00ab");
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
