// The HTML document window: title, open, what a file that does not open says, save, save as,
// new, the text colour drawn, and the text, file name and flag that come back at the next launch.
#include "editor/TWEditWindowController.h"

#include "TWRecordingPreview.h"
#include "TWTestEnvironment.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTextFile.h"
#include "platform/TWBeep.h"
#include "platform/TWLocalization.h"
#include "platform/TWMessageBar.h"
#include "platform/TWPanels.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferences.h"
#include "preview/TWPageComposer.h"

#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QString siteURL = QStringLiteral("http://localhost/site/");

// A file opened with a preferred encoding: what the message says and the encoding it offers.
struct OpenCase { QString name; QByteArray bytes; int preferred; QString said; QString offered; };

} // namespace

class tst_TWEditWindowController : public QObject
{
    Q_OBJECT

private:
    TWRecordingPreview viewer;
    QTemporaryDir dir;

    // A new launch of the window: a fresh controller reading the store from disk.
    TWEditWindowController *relaunch()
    {
        delete TWEditWindowController::sharedEditWindowController();
        TWUserDefaults::resetStandardUserDefaults();
        return TWEditWindowController::sharedEditWindowController();
    }

    // What the window shows: text, file name, title, the viewer's base URL and the message.
    QVariantList state(const TWEditWindowController *window) const
    {
        return {window->getText(), window->htmlFilename(), window->windowTitle(), viewer.baseURL, window->messageBar()->text()};
    }

private Q_SLOTS:
    void initTestCase()
    {
        TWInstallTranslations(QCoreApplication::instance());
        viewer.install();
        TWPreferences::sharedPref()->setDefaultBaseURL(siteURL);
    }

    void init()
    {
        TWPreferences::sharedPref()->setTextEncoding(0);
        TWPreferences::sharedPref()->setReturnCode(0);
        TWPanels::setSavePanelHandler({});
        TWResetBeepCount();
    }

    void unopenableFileChangesNothingAndSaysWhy_data()
    {
        QTest::addColumn<OpenCase>("row");
        const QByteArray utf8 = QString::fromUtf8("<p>日本語のページ</p>\n").toUtf8();
        QTest::newRow("UTF-8 read as Shift_JIS") << OpenCase{"utf8.html", utf8, 0, "not Shift_JIS text", "UTF-8"};
        QTest::newRow("EUC-JP read as UTF-8, non-ASCII name")
            << OpenCase{QString::fromUtf8("ページ.html"), "<p>\xc6\xfc\xcb\xdc</p>\n", 3, "not UTF-8 text", "EUC-JP"};
        QTest::newRow("no text at all") << OpenCase{"bad.html", "ok \xff\xfe\x80\x1b$B\xff", 3, "nor text in any other encoding", {}};
        QTest::newRow("missing") << OpenCase{"missing.html", {}, 3, "could not be read", {}};
    }

    void unopenableFileChangesNothingAndSaysWhy()
    {
        QFETCH(OpenCase, row);
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        TWPreferences::sharedPref()->setTextEncoding(row.preferred);
        const QString path = dir.filePath(row.name);
        QVERIFY(row.bytes.isEmpty() || TWTestEnvironment::writeFile(path, row.bytes));
        window->loadHTML(QStringLiteral("<p>work in progress</p>"));
        window->setHTMLFilename(dir.filePath(QStringLiteral("mine.html")));
        const QVariantList before = state(window);
        QVERIFY(window->openHTMLFile(path));
        QCOMPARE(TWBeepCount(), 1);
        QCOMPARE(state(window).mid(0, 4), before.mid(0, 4));
        // The message names the file and the encoding, and offers those the file reads in.
        const QString said = window->messageBar()->text();
        QVERIFY2(said.contains(row.name) && said.contains(row.said), qPrintable(said));
        const QList<QPushButton *> buttons = window->messageBar()->findChildren<QPushButton *>();
        QCOMPARE(buttons.size(), row.offered.isEmpty() ? 0 : 1);
        if (buttons.isEmpty()) {
            // It goes at the next new document, which clears the text, name and base URL.
            window->newDocument();
            QCOMPARE(state(window), (QVariantList{QString(), QString(), "HTML:> Untitled <", QUrl(siteURL), QString()}));
            return;
        }
        // Opening in the offered encoding makes it the preferred one, and opens as any open.
        QCOMPARE(buttons.first()->text(), "Open as " + row.offered);
        buttons.first()->click();
        QVERIFY(window->getText().startsWith(QString::fromUtf8("<p>日本")));
        QCOMPARE(state(window).mid(1), (QVariantList{path, "HTML:" + row.name, TWPageComposer::fileURL(path), QString()}));
        QCOMPARE(QString::fromLatin1(TWTextFile::encodingName(TWPreferences::sharedPref()->textEncoding())), row.offered);
    }

    // Plain text is drawn in the preferred colour (the colour actually drawn, not only the one
    // the view holds), on the background colour made opaque where the desktop does not
    // composite windows, as offscreen.
    void plainTextShowsThePreferredColour()
    {
        TWPreferences::sharedPref()->setEditorTextColor(QColor(0, 170, 0));
        TWEditWindowController *window = relaunch();
        window->loadHTML(QStringLiteral("plain words without tags\n"));
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        window->textView()->setCursorWidth(0); // the caret is no plain text
        const QImage shot = window->textView()->viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const auto *first = reinterpret_cast<const QRgb *>(shot.constBits());
        TWPreferences::sharedPref()->setEditorTextColor(Qt::black);
        window->hide();
        const auto greenish = [](QRgb p) { return qGreen(p) > qMax(qRed(p), qBlue(p)) + 60; };
        QVERIFY(std::count_if(first, first + shot.width() * shot.height(), greenish) > 20);
        QCOMPARE(window->textView()->palette().color(QPalette::Base), QColor(Qt::white));
    }

    // Save asks for a file only when the document has none; what is saved, its file name, the
    // auto indentation flag and the window size come back at the next launch.
    void savedDocumentComesBackAtNextLaunch()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        window->setHTMLFilename(QString());
        window->loadHTML(QString::fromUtf8("<p>日本</p>\n"));
        TWPreferences::sharedPref()->setReturnCode(2);
        const QString path = dir.filePath(QStringLiteral("page.html"));
        std::optional<QString> answer;
        QStringList proposed; // the name the panel proposed, each time it was shown
        TWPanels::setSavePanelHandler([&](const QString &name, const QStringList &) { return proposed << name, answer; });

        // A cancelled panel changes nothing.
        window->saveDocument();
        QCOMPARE(window->htmlFilename(), QString());
        // Without a file, Save asks for one and writes the preferred encoding and line end.
        answer = path;
        window->saveDocument();
        QCOMPARE(TWTestEnvironment::readFile(path), QByteArray("<p>\x93\xfa\x96{</p>\r\n"));
        QCOMPARE(state(window).mid(1, 3), (QVariantList{path, "HTML:page.html", TWPageComposer::fileURL(path)}));
        // Save As proposes the current name; Save with a file name writes without asking.
        answer.reset();
        window->saveDocumentAs();
        QCOMPARE(window->htmlFilename(), path);
        window->loadHTML(QStringLiteral("second\n"));
        window->saveDocument();
        QCOMPARE(proposed, (QStringList{QString(), QString(), QStringLiteral("page.html")}));
        QCOMPARE(TWTestEnvironment::readFile(path), QByteArray("second\r\n"));

        window->textView()->setAutoIndentation(true);
        window->resize(512, 384);
        window->saveWindowProperties();
        TWUserDefaults::standardUserDefaults()->synchronize();
        window = relaunch();
        QCOMPARE(state(window).mid(0, 3), (QVariantList{"second\n", path, "HTML:page.html"}));
        QVERIFY(window->textView()->autoIndentation());
        QCOMPARE(window->size(), QSize(512, 384));
        // A target that cannot become a file (a folder) beeps; nothing before did.
        window->saveHTMLFileAs(dir.path());
        QCOMPARE(TWBeepCount(), 1);
    }
};

QTEST_MAIN(tst_TWEditWindowController)
#include "tst_TWEditWindowController.moc"
