// The template window: halves and their copies, the apply flag, one undo history for both
// halves, files, and state across launches (the default template at first).
// (Undo and redo across the halves after a Replace All: tst_TWFindReplace; a new project
// empties the window: tst_TWProject.)
#include "documents/TWTemplateWindowController.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "app/TWStateKeys.h"
#include "documents/TWTemplateText.h"
#include "editor/TWTemplateTextView.h"
#include "editor/TWUndoHistory.h"
#include "platform/TWLocalization.h"
#include "platform/TWPanels.h"
#include "platform/TWUserDefaults.h"

#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

constexpr char storedText[] = "a<<TAGWRIGHTTEMPLATEDIVIDER>>b";

TWTemplateWindowController *window() { return TWTemplateWindowController::sharedTemplateController(); }

// The window's entry in the store at a launch (none at the first), and whether the window
// shows and the template applies then.
struct Launch { QVariant defaults; bool shown; bool applied; };

} // namespace

class tst_TWTemplateWindowController : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QTemporaryDir dir;

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        viewer.install();
    }

    // Typing in either half reaches its copy and asks for a render. Ctrl+Z in one half undoes
    // the newest edit, made in the other; a template loaded afterwards has a history of its own.
    void halvesShareOneUndoHistory()
    {
        window()->loadTemplate(u"T<<TAGWRIGHTTEMPLATEDIVIDER>>B"_s);
        const int timers = viewer.renderTimersFired;
        for (TWTemplateTextView *half : {window()->bottomTextView(), window()->topTextView()}) {
            half->setSelectedRange({1, 0});
            QTest::keyClicks(half, u"1"_s);
        }
        QCOMPARE(window()->getCombinedText(), u"T1<<TAGWRIGHTTEMPLATEDIVIDER>>B1"_s);
        QCOMPARE(viewer.renderTimersFired, timers + 2);
        QTest::keyClick(window()->bottomTextView(), Qt::Key_Z, Qt::ControlModifier);
        QCOMPARE(window()->getCombinedText(), u"T<<TAGWRIGHTTEMPLATEDIVIDER>>B1"_s);
        window()->loadTemplate(QString());
        QVERIFY(!window()->undoHistory()->canUndo());
    }

    // Files are read and written whole in the preferred encoding and line end (at first
    // Shift_JIS and CR); Save As proposes the file's own name; a file that cannot be decoded
    // changes nothing.
    void filesInPreferredEncoding()
    {
        const QString path = dir.filePath(u"site.twtemp"_s), copy = dir.filePath(u"copy of site.twtemp"_s);
        const QByteArray bytes = "<p>\x93\xfa</p>\r<<TAGWRIGHTTEMPLATEDIVIDER>>\r<!-- end -->";
        QVERIFY(TWTestEnvironment::writeFile(path, QByteArray(bytes).replace('\r', "\r\n")));
        QVERIFY(window()->openTemplateFile(path));
        TWPanels::setSavePanelHandler([this](const QString &name, const QStringList &) { return std::optional(dir.filePath(u"copy of "_s + name)); });
        window()->saveDocumentAs();
        QCOMPARE(TWTestEnvironment::readFile(copy), bytes);
        QVERIFY(TWTestEnvironment::writeFile(path, "\x82\xa0\xff\xff"));
        QVERIFY(window()->openTemplateFile(path));
        QCOMPARE(window()->templateFilename(), copy);
        QCOMPARE(window()->getCombinedText(), u"<p>日</p>\n<<TAGWRIGHTTEMPLATEDIVIDER>>\n<!-- end -->"_s);
    }

    // Without a stored state the window holds the default template; a flag is NO only when
    // stored as "NO". Switching the template over changes the halves the page gets, never the
    // window's. (What a project keeps of the window: tst_TWProject.)
    void stateComesBackAtNextLaunch_data()
    {
        QTest::addColumn<Launch>("row");
        const QString showWindow = QLatin1String(TWStateEntry::showWindow), applyTemplate = QLatin1String(TWStateEntry::applyTemplate);
        const auto stored = [](QVariantMap flags) { // with a text and a file
            flags.insert({{QLatin1String(TWStateEntry::templateText), QLatin1String(storedText)},
                          {QLatin1String(TWStateEntry::templateFilename), u"/x/t.twtemp"_s}});
            return QVariant(flags);
        };
        QTest::newRow("none: the default template") << Launch{QVariant(), true, true};
        QTest::newRow("hidden, not applied") << Launch{stored({{showWindow, "NO"}, {applyTemplate, "NO"}}), false, false};
        QTest::newRow("other flags show and apply") << Launch{stored({{showWindow, "no"}}), true, true};
    }

    void stateComesBackAtNextLaunch()
    {
        QFETCH(Launch, row);
        const auto &[defaults, shown, applied] = row;
        const QLatin1String windowKey(TWWindowDefaultsKey::templateWindow);
        TWUserDefaults *store = TWUserDefaults::standardUserDefaults();
        store->removeObjectForKey(windowKey);
        if (defaults.isValid())
            store->setObject(defaults, windowKey);
        delete window();
        TWUserDefaults::resetStandardUserDefaults();

        const QString text = defaults.isValid() ? QLatin1String(storedText) : TWTemplateText::builtInDefault();
        QCOMPARE(window()->getCombinedText(), text);
        QCOMPARE(window()->windowTitle(), defaults.isValid() ? u"Template:t.twtemp"_s : u"Template:> Untitled <"_s);
        window()->loadTemplateAtAppLaunch();
        QCOMPARE(window()->isVisible(), shown);
        window()->toggleApplyTemplate();
        QCOMPARE(window()->topTemplateText().isEmpty(), applied);
        QCOMPARE(window()->getCombinedText(), text);
        window()->saveWindowProperties();
        QCOMPARE(store->dictionaryForKey(windowKey)->value(QLatin1String(TWStateEntry::showWindow)), QVariant(shown ? u"YES"_s : u"NO"_s));
    }
};

QTEST_MAIN(tst_TWTemplateWindowController)
#include "tst_TWTemplateWindowController.moc"
