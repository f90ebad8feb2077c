// The HTML document window: title, default page, open, save, save as, new, and the text,
// file name and flag that come back at the next launch.
#include "editor/TWEditWindowController.h"

#include "TWTestEnvironment.h"
#include "TWRecordingPreview.h"
#include "app/TWAppDelegate.h"
#include "app/TWStateKeys.h"
#include "editor/TWEditorTextView.h"
#include "editor/TWTextFile.h"
#include "platform/TWBeep.h"
#include "platform/TWLocalization.h"
#include "platform/TWMessageBar.h"
#include "platform/TWPanels.h"
#include "platform/TWUserDefaults.h"
#include "preferences/TWPreferences.h"
#include "preview/TWPageComposer.h"

#include <QAction>
#include <QApplication>
#include <QFile>
#include <QTemporaryDir>
#include <QPushButton>
#include <QTest>

namespace {

const QString siteURL = QStringLiteral("http://localhost/site/");

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
        QTest::addColumn<QString>("name");
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<int>("preferred");
        QTest::addColumn<QString>("said");
        QTest::addColumn<QStringList>("offered");
        const QByteArray utf8 = QString::fromUtf8("<p>日本語のページ</p>\n").toUtf8();
        const QByteArray eucJP("<p>\xc6\xfc\xcb\xdc</p>\n");
        QTest::newRow("UTF-8 read as Shift_JIS")
            << "utf8.html" << utf8 << 0 << "not Shift_JIS text" << QStringList{"Open as UTF-8"};
        QTest::newRow("EUC-JP read as UTF-8, non-ASCII name")
            << QString::fromUtf8("ページ.html") << eucJP << 3 << "not UTF-8 text" << QStringList{"Open as EUC-JP"};
        QTest::newRow("no text at all") << "bad.html" << QByteArray("ok \xff\xfe\x80\x1b$B\xff") << 3
                                        << "nor text in any other encoding" << QStringList();
        QTest::newRow("missing") << "missing.html" << QByteArray() << 3 << "could not be read" << QStringList();
    }

    void unopenableFileChangesNothingAndSaysWhy()
    {
        QFETCH(QString, name);
        QFETCH(QByteArray, bytes);
        QFETCH(int, preferred);
        QFETCH(QString, said);
        QFETCH(QStringList, offered);
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        TWPreferences::sharedPref()->setTextEncoding(preferred);
        const QString path = dir.filePath(name);
        QVERIFY(bytes.isEmpty() || TWTestEnvironment::writeFile(path, bytes));
        window->loadHTML(QStringLiteral("<p>work in progress</p>"));
        window->setHTMLFilename(dir.filePath(QStringLiteral("mine.html")));

        QVERIFY(window->openHTMLFile(path));
        QCOMPARE(TWBeepCount(), 1);
        QCOMPARE(window->getText(), QStringLiteral("<p>work in progress</p>"));
        QCOMPARE(window->htmlFilename(), dir.filePath(QStringLiteral("mine.html")));
        if (!bytes.isEmpty())
            QCOMPARE(TWTestEnvironment::readFile(path), bytes);
        // The message names the file and the encoding, and offers those the file reads in.
        TWMessageBar *bar = window->messageBar();
        QVERIFY2(bar->text().contains(name) && bar->text().contains(said), qPrintable(bar->text()));
        const QList<QPushButton *> buttons = bar->findChildren<QPushButton *>();
        QStringList titles;
        for (const QPushButton *button : buttons)
            titles << button->text();
        QCOMPARE(titles, offered);
        if (offered.isEmpty()) {
            // It goes at the next new document, which clears the text, name and base URL.
            window->newDocument();
            QCOMPARE(bar->text(), QString());
            QCOMPARE(window->getText(), QString());
            QCOMPARE(window->windowTitle(), QStringLiteral("HTML:> Untitled <"));
            QCOMPARE(viewer.baseURL, QUrl(siteURL));
            return;
        }
        // Opening in the offered encoding makes it the preferred one, and opens as any open.
        const int renders = viewer.directRenderRequests;
        buttons.last()->click();
        QCOMPARE(window->windowTitle(), QStringLiteral("HTML:") + name);
        QCOMPARE(viewer.baseURL, TWPageComposer::fileURL(path));
        QCOMPARE(viewer.directRenderRequests, renders + 1);
        QVERIFY(window->getText().startsWith(QString::fromUtf8("<p>日本")));
        QCOMPARE(QString::fromLatin1(TWTextFile::encodingName(TWPreferences::sharedPref()->textEncoding())),
                 offered.last().section(u' ', -1));
        QCOMPARE(bar->text(), QString());
    }

    void plainTextShowsThePreferredColour_data()
    {
        QTest::addColumn<bool>("coloring");
        QTest::newRow("tag colouring on") << true;
        QTest::newRow("tag colouring off") << false;
    }

    void plainTextShowsThePreferredColour()
    {
        // The colour actually drawn, not only the one the view holds.
        QFETCH(bool, coloring);
        TWPreferences::sharedPref()->setEditorTextColor(QColor(0, 170, 0));
        TWEditWindowController *window = relaunch();
        window->resize(500, 300);
        window->loadHTML(QStringLiteral("plain words without tags\n"));
        window->setTagColoring(coloring);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        window->textView()->setCursorWidth(0); // the caret is no plain text
        const QImage shot = window->textView()->viewport()->grab().toImage().convertToFormat(QImage::Format_RGB32);
        const auto *first = reinterpret_cast<const QRgb *>(shot.constBits());
        const auto count = [&](auto is) { return int(std::count_if(first, first + shot.width() * shot.height(), is)); };
        const int greenish = count([](QRgb p) { return qGreen(p) > qMax(qRed(p), qBlue(p)) + 60; });
        const int dark = count([](QRgb p) { return qMax(qMax(qRed(p), qGreen(p)), qBlue(p)) < 60; });
        TWPreferences::sharedPref()->setEditorTextColor(Qt::black);
        window->hide();
        QVERIFY2(greenish > 20, qPrintable(QString::number(greenish)));
        QCOMPARE(dark, 0);
        // Offscreen there is no compositor: the window stays opaque and shows the colour itself.
        QVERIFY(!window->testAttribute(Qt::WA_TranslucentBackground));
        QCOMPARE(window->textView()->palette().color(QPalette::Base), QColor(Qt::white));
    }

    void saveUsesPanelPreferredFormsAndKeepsWhatFails()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        window->setHTMLFilename(QString());
        window->loadHTML(QString::fromUtf8("<p>日本</p>\n"));
        TWPreferences::sharedPref()->setReturnCode(2);
        const QString path = dir.filePath(QStringLiteral("page.html"));
        std::optional<QString> answer;
        QString proposed;
        QStringList offered;
        int asked = 0;
        TWPanels::setSavePanelHandler([&](const QString &name, const QStringList &extensions) {
            ++asked;
            proposed = name;
            offered = extensions;
            return answer;
        });

        // A cancelled panel changes nothing.
        window->saveDocument();
        QCOMPARE(asked, 1);
        QCOMPARE(window->htmlFilename(), QString());
        QCOMPARE(TWBeepCount(), 0);

        // Without a file, Save asks for one and writes the preferred encoding and line end.
        answer = path;
        window->saveDocument();
        QCOMPARE(proposed, QString());
        QCOMPARE(offered, (QStringList{QStringLiteral("html"), QStringLiteral("htm")}));
        QCOMPARE(TWTestEnvironment::readFile(path), QByteArray("<p>\x93\xfa\x96{</p>\r\n"));
        QCOMPARE(window->windowTitle(), QStringLiteral("HTML:page.html"));
        QCOMPARE(viewer.baseURL, TWPageComposer::fileURL(path));

        // Save As proposes the current name; Save with a file name writes without asking.
        answer.reset();
        window->saveDocumentAs();
        QCOMPARE(proposed, QStringLiteral("page.html"));
        QCOMPARE(window->htmlFilename(), path);
        window->loadHTML(QStringLiteral("second\n"));
        window->saveDocument();
        QCOMPARE(asked, 3);
        QCOMPARE(TWTestEnvironment::readFile(path), QByteArray("second\r\n"));

        // A target that cannot become a file (a folder) beeps and stays as it was.
        window->saveHTMLFileAs(dir.path());
        QCOMPARE(TWBeepCount(), 1);
        QVERIFY(QFileInfo(dir.path()).isDir());
    }

    void stateComesBackAtNextLaunch()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        window->loadHTML(QString::fromUtf8("<p>kept 日本</p>\n"));
        window->setHTMLFilename(QStringLiteral("/site/kept.html"));
        window->textView()->setAutoIndentation(true);
        window->resize(512, 384);
        window->saveWindowProperties();
        TWUserDefaults::standardUserDefaults()->synchronize();

        window = relaunch();
        QCOMPARE(window->getText(), QString::fromUtf8("<p>kept 日本</p>\n"));
        QCOMPARE(window->htmlFilename(), QStringLiteral("/site/kept.html"));
        QVERIFY(window->textView()->autoIndentation());
        QCOMPARE(window->size(), QSize(512, 384));
    }

    void missingStateFallsBack_data()
    {
        QTest::addColumn<QVariant>("stored");
        QTest::addColumn<bool>("defaultPageShown");
        QTest::addColumn<QString>("filename");
        QTest::addColumn<bool>("autoIndentation");
        QVariantMap noText{{QStringLiteral("HTML Filename"), QStringLiteral("/a.html")},
                           {QStringLiteral("Auto Indentation"), QStringLiteral("yes")}};
        QVariantMap foreignTypes{{QStringLiteral("HTML Text"), 12},
                                 {QStringLiteral("HTML Filename"), QVariantList()},
                                 {QStringLiteral("Auto Indentation"), QStringLiteral("YES")}};
        QTest::newRow("first launch") << QVariant() << true << QString() << false;
        QTest::newRow("no text") << QVariant(noText) << true << QStringLiteral("/a.html") << false;
        QTest::newRow("only text") << QVariant(QVariantMap{{QStringLiteral("HTML Text"), QStringLiteral("t")}})
                                   << false << QString() << false;
        QTest::newRow("foreign types") << QVariant(foreignTypes) << true << QString() << true;
    }

    void missingStateFallsBack()
    {
        QFETCH(QVariant, stored);
        QFETCH(bool, defaultPageShown);
        QFETCH(QString, filename);
        QFETCH(bool, autoIndentation);
        TWUserDefaults::standardUserDefaults()->setObject(stored, QLatin1String(TWWindowDefaultsKey::editorWindow));
        TWUserDefaults::standardUserDefaults()->synchronize();
        TWEditWindowController *window = relaunch();
        const QString defaultPage = QString::fromLatin1(TWTestEnvironment::readFile(QStringLiteral(":/defaultPage.txt")));
        QCOMPARE(window->getText() == defaultPage, defaultPageShown);
        QCOMPARE(window->htmlFilename(), filename);
        QCOMPARE(window->textView()->autoIndentation(), autoIndentation);
    }

    void autoIndentationToggleFollowsMenu()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        QAction *menu = TWAppDelegate::sharedAppDelegate()->autoIndentMenu;
        window->textView()->setAutoIndentation(false);
        QVERIFY(!menu->isChecked());
        window->toggleAutoIndentation();
        QVERIFY(window->textView()->autoIndentation() && menu->isChecked());
        // The menu item itself toggles the same flag.
        menu->trigger();
        QVERIFY(!window->textView()->autoIndentation() && !menu->isChecked());
    }
};

QTEST_MAIN(tst_TWEditWindowController)
#include "tst_TWEditWindowController.moc"
