// Nothing typed is lost when Tagwright does not quit cleanly: the recovery copy follows the
// documents while the user works and brings them back at the next start, and stays when a
// quit can write nothing.
#include "app/TWRecoveryCopy.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "app/TWAppDelegate.h"
#include "documents/TWCSSWindowController.h"
#include "documents/TWTemplateWindowController.h"
#include "editor/TWEditWindowController.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTemplateTextView.h"
#include "platform/TWUserDefaults.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QRandomGenerator>
#include <QTest>
#include <QTextBlock>
#include <QTextCursor>

using namespace Qt::StringLiterals;

namespace {

constexpr int patience = 60000;
// The copy's documents, in order.
constexpr const char *documentNames[] = {"HTML", "Template", "Style Sheet"};

// What a user can have in a text: every kind of character a file or the keyboard gives.
QString awkwardText() { return u"<p>\u65e5\u672c</p>\n\f\v\x1b\u2028\u2029\u00a0&<>"_s + QChar(0xD800) + QChar(u'\0') + u"\n"_s; }

// The text of the newest whole copy of the HTML, "" when there is none.
QString copiedHTML() { return TWRecoveryCopy::read("HTML").value_or(QList<QString>{{}, {}}).at(1); }

TWEditWindowController *html() { return TWEditWindowController::sharedEditWindowController(); }
TWTemplateWindowController *templateWindow() { return TWTemplateWindowController::sharedTemplateController(); }
TWCSSWindowController *css() { return TWCSSWindowController::sharedCSSController(); }

} // namespace

class tst_TWRecoveryCopy : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    TWRecoveryCopy *copy = TWRecoveryCopy::shared();

    // The texts and file names of the three documents, in the order of the copy's documents.
    QStringList documents() const
    {
        return {html()->getText(), html()->htmlFilename(), templateWindow()->topTextView()->string(), templateWindow()->templateFilename(),
                css()->textView()->string(), css()->cssFilename()};
    }

private Q_SLOTS:
    void initTestCase()
    {
        viewer.install();
        copy->start();
    }

    void init() { copy->discard(); }

    // Only the document that changed is written; the next start after a crash puts back its
    // text and name, and nothing else; a copy that is not whole is left alone.
    void changedDocumentsAreCopiedAndComeBack_data()
    {
        QTest::addColumn<int>("index");
        for (int index = 0; const char *name : documentNames)
            QTest::newRow(name) << index++;
    }

    void changedDocumentsAreCopiedAndComeBack()
    {
        QFETCH(int, index);
        const QString document = QString::fromLatin1(QTest::currentDataTag());
        const QString text = awkwardText() + document, file = u"/site/"_s + document + u".txt"_s;
        const int writes = copy->writesDone();
        TWEditorTextView *view = QList<TWEditorTextView *>{html()->textView(), templateWindow()->topTextView(), css()->textView()}.at(index);
        const auto setFileName = [index](const QString &name) {
            index == 0 ? html()->setHTMLFilename(name) : index == 1 ? templateWindow()->setTemplateFilename(name) : css()->setCSSFilename(name);
        };
        view->setString(QString());
        view->insertText(text);
        setFileName(file);
        TW_TRY_VERIFY_WITH_TIMEOUT(copy->writesDone() > writes && !copy->isWriting(), patience);
        for (const char *other : documentNames)
            QCOMPARE(TWRecoveryCopy::read(other).has_value(), document == QLatin1String(other));

        // The next start after a crash, before the copy takes this change.
        view->setString(u"other"_s);
        setFileName(QString());
        QStringList expected = documents();
        expected[2 * index] = text;
        expected[2 * index + 1] = file;
        QVERIFY(copy->restore());
        QCOMPARE(documents(), expected);

        // A copy cut short is left alone: nothing comes back from it, and it stays.
        const QDir folder(TWRecoveryCopy::folder());
        for (const QString &name : folder.entryList(QDir::Files))
            QVERIFY(TWTestEnvironment::writeFile(folder.filePath(name), TWTestEnvironment::readFile(folder.filePath(name)).chopped(1)));
        view->setString(u"other"_s);
        QVERIFY(!copy->restore());
        QCOMPARE(view->string(), u"other"_s);
        QVERIFY(!folder.entryList(QDir::Files).isEmpty());
    }

    // Typing that goes on is copied while it goes on: a copy written only when typing pauses would
    // never be written. Edits while a large text is being copied, before and after the part
    // already taken, never make a mixture: what is written is always the text as it was at one moment.
    void everyCopyIsATextTheDocumentHad()
    {
        TWEditorTextView *view = html()->textView();
        view->setString(u"<p>line</p>\n"_s.repeated(TWRecoveryCopy::sliceCharacters / 4));
        QSet<size_t> states{qHash(view->string())};
        QRandomGenerator random(20261123);
        for (int round = 0; round < 4; ++round) {
            const int writes = copy->writesDone();
            for (QDeadlineTimer deadline(patience); !copy->isWriting() && !deadline.hasExpired();) {
                view->insertText(u"<"_s);
                states << qHash(view->string());
                TWTestEnvironment::waitFor([this] { return copy->isWriting(); }, TWRecoveryCopy::pauseMilliseconds / 5);
            }
            QVERIFY2(copy->isWriting(), qPrintable(QString::number(round)));
            for (int edit = 0; edit < 3 && copy->writesDone() == writes; ++edit) {
                QTextCursor(view->document()->findBlockByNumber(int(random.bounded(view->document()->blockCount())))).insertText(u"x"_s);
                states << qHash(view->string());
                QCoreApplication::processEvents();
            }
            // A crash at any turn of the write would find the copy written before it, whole.
            for (QDeadlineTimer deadline(patience); copy->writesDone() == writes && !deadline.hasExpired();) {
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
                QVERIFY2(round == 0 || states.contains(qHash(copiedHTML())), qPrintable(QString::number(round)));
            }
            QVERIFY2(copy->writesDone() > writes && states.contains(qHash(copiedHTML())), qPrintable(QString::number(round)));
        }
        // A shorter text leaves nothing of the longer one before it.
        const int writes = copy->writesDone();
        view->setString(u"short"_s);
        TW_TRY_VERIFY_WITH_TIMEOUT(copy->writesDone() > writes + 1 || (copy->writesDone() > writes && !copy->isWriting()), patience);
        QCOMPARE(copiedHTML(), u"short"_s);
    }

    // A quit that can write nothing, not even the session to a file of its own, keeps the copy.
    // (A value no property list can hold makes every write fail.)
    void quitThatCanWriteNothingKeepsTheCopy()
    {
        TWUserDefaults::standardUserDefaults()->setObject(QPoint(1, 2), u"Unwritable"_s);
        html()->loadHTML(u"last words"_s);
        TWAppDelegate::sharedAppDelegate()->applicationWillTerminate();
        TWUserDefaults::standardUserDefaults()->removeObjectForKey(u"Unwritable"_s);
        QCOMPARE(copiedHTML(), u"last words"_s);
    }
};

QTEST_MAIN(tst_TWRecoveryCopy)
#include "tst_TWRecoveryCopy.moc"
