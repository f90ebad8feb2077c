// The HTML document window: title, default page, open, save, save as, new, and the text,
// file name and flag that come back at the next launch.
#include "editor/TWEditWindowController.h"

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
#include <QTest>

namespace {

QByteArray readBytes(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QString defaultPage()
{
    return QString::fromLatin1(readBytes(QStringLiteral(":/defaultPage.txt")));
}

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
        TWPreferences::sharedPref();
    }

    void init()
    {
        TWPreferences::sharedPref()->setTextEncoding(0);
        TWPreferences::sharedPref()->setReturnCode(0);
        TWPanels::setOpenPanelHandler({});
        TWPanels::setSavePanelHandler({});
        TWResetBeepCount();
    }

    void firstLaunchShowsDefaultPage()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        QVERIFY(defaultPage().contains(QLatin1String("<h1>")));
        QCOMPARE(window->getText(), defaultPage());
        QCOMPARE(window->htmlFilename(), QString());
        QCOMPARE(window->windowTitle(), QStringLiteral("HTML:> Untitled <"));
        QVERIFY(!window->textView()->autoIndentation());
        QVERIFY(window->textView()->autoRenderEnabled());
        QCOMPARE(window->activeTextView(), window->textView());
        // Offscreen there is no compositor: the window stays opaque and shows the colour itself.
        QVERIFY(!window->testAttribute(Qt::WA_TranslucentBackground));
        QCOMPARE(window->textView()->palette().color(QPalette::Base), QColor(Qt::white));
    }

    void titleFollowsFileName_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<QString>("title");
        QTest::newRow("no file") << QString() << QStringLiteral("HTML:> Untitled <");
        QTest::newRow("file") << QStringLiteral("/a/b/page.html") << QStringLiteral("HTML:page.html");
        QTest::newRow("no extension") << QStringLiteral("/a/b/README") << QStringLiteral("HTML:README");
        QTest::newRow("non-ASCII") << QString::fromUtf8("/tmp/ページ.html") << QString::fromUtf8("HTML:ページ.html");
    }

    void titleFollowsFileName()
    {
        QFETCH(QString, path);
        QFETCH(QString, title);
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        window->setHTMLFilename(path);
        QCOMPARE(window->windowTitle(), title);
        QCOMPARE(window->htmlFilename(), path);
    }

    void openReadsPreferredEncodingAndSetsBaseURL()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        const QString path = dir.filePath(QStringLiteral("euc.html"));
        QVERIFY(writeBytes(path, QByteArray("<p>\xc6\xfc\xcb\xdc</p>\r\n<p>2</p>\r")));
        TWPreferences::sharedPref()->setTextEncoding(1);
        const int renders = viewer.directRenderRequests;
        QVERIFY(window->openHTMLFile(path));
        QCOMPARE(window->getText(), QString::fromUtf8("<p>日本</p>\n<p>2</p>\n"));
        QCOMPARE(window->htmlFilename(), path);
        QCOMPARE(window->windowTitle(), QStringLiteral("HTML:euc.html"));
        QCOMPARE(viewer.baseURL, TWPageComposer::fileURL(path));
        QCOMPARE(viewer.directRenderRequests, renders + 1);
        QCOMPARE(TWBeepCount(), 0);
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
        QTest::newRow("EUC-JP read as UTF-8")
            << "euc.html" << eucJP << 3 << "not UTF-8 text" << QStringList{"Open as EUC-JP"};
        QTest::newRow("no text at all") << "bad.html" << QByteArray("ok \xff\xfe\x80\x1b$B\xff") << 3
                                        << "nor text in any other encoding" << QStringList();
        QTest::newRow("missing") << "missing.html" << QByteArray() << 3 << "could not be read" << QStringList();
        QTest::newRow("directory") << "folder" << QByteArray() << 3 << "could not be read" << QStringList();
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
        if (!bytes.isEmpty())
            QVERIFY(writeBytes(path, bytes));
        if (name == QLatin1String("folder"))
            QVERIFY(QDir().mkpath(path));
        window->loadHTML(QStringLiteral("<p>work in progress</p>"));
        window->setHTMLFilename(dir.filePath(QStringLiteral("mine.html")));

        QVERIFY(window->openHTMLFile(path));
        QCOMPARE(TWBeepCount(), 1);
        QCOMPARE(window->getText(), QStringLiteral("<p>work in progress</p>"));
        QCOMPARE(window->htmlFilename(), dir.filePath(QStringLiteral("mine.html")));
        if (!bytes.isEmpty())
            QCOMPARE(readBytes(path), bytes);
        // The message names the file and the encoding, and offers those the file reads in.
        TWMessageBar *bar = window->messageBar();
        QVERIFY2(bar->text().contains(name) && bar->text().contains(said), qPrintable(bar->text()));
        QCOMPARE(bar->actionTitles(), offered);
        if (offered.isEmpty()) {
            // It goes at the next new document.
            window->newDocument();
            QCOMPARE(bar->text(), QString());
            return;
        }
        // Opening in the offered encoding makes it the preferred one.
        QVERIFY(bar->trigger(offered.last()));
        QCOMPARE(window->htmlFilename(), path);
        QVERIFY(window->getText().contains(QString::fromUtf8("日本")));
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
        const QColor green(0, 170, 0);
        TWPreferences::sharedPref()->setEditorTextColor(green);
        TWEditWindowController *window = relaunch();
        window->resize(500, 300);
        window->loadHTML(QStringLiteral("plain words without tags\n"));
        window->setTagColoring(coloring);
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
        window->textView()->setCursorWidth(0); // the caret is no plain text
        const QImage shot = window->textView()->viewport()->grab().toImage();
        int greenish = 0;
        int dark = 0;
        for (int y = 0; y < shot.height(); ++y) {
            for (int x = 0; x < shot.width(); ++x) {
                const QColor pixel = shot.pixelColor(x, y);
                greenish += pixel.green() > pixel.red() + 60 && pixel.green() > pixel.blue() + 60;
                dark += pixel.red() < 60 && pixel.green() < 60 && pixel.blue() < 60;
            }
        }
        TWPreferences::sharedPref()->setEditorTextColor(Qt::black);
        window->hide();
        QVERIFY2(greenish > 20, qPrintable(QString::number(greenish)));
        QCOMPARE(dark, 0);
    }

    void saveAsUsesPanelAndPreferredForms()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        window->setHTMLFilename(QString());
        window->loadHTML(QString::fromUtf8("<p>日本</p>\n"));
        TWPreferences::sharedPref()->setTextEncoding(0);
        TWPreferences::sharedPref()->setReturnCode(2);

        // A cancelled panel changes nothing.
        TWPanels::setSavePanelHandler([](const QString &, const QStringList &) { return std::optional<QString>(); });
        window->saveDocument();
        QCOMPARE(window->windowTitle(), QStringLiteral("HTML:> Untitled <"));

        QStringList offered;
        QString proposed = QStringLiteral("<not asked>");
        const QString path = dir.filePath(QStringLiteral("page.html"));
        TWPanels::setSavePanelHandler([&](const QString &name, const QStringList &extensions) {
            proposed = name;
            offered = extensions;
            return std::optional<QString>(path);
        });
        window->saveDocument(); // no file yet: runs the panel
        QCOMPARE(proposed, QString());
        QCOMPARE(offered, (QStringList{QStringLiteral("html"), QStringLiteral("htm")}));
        QCOMPARE(readBytes(path), QByteArray("<p>\x93\xfa\x96{</p>\r\n"));
        QCOMPARE(window->windowTitle(), QStringLiteral("HTML:page.html"));
        QCOMPARE(viewer.baseURL, TWPageComposer::fileURL(path));

        // Save As again proposes the current name.
        TWPanels::setSavePanelHandler([&](const QString &name, const QStringList &) {
            proposed = name;
            return std::optional<QString>();
        });
        window->saveDocumentAs();
        QCOMPARE(proposed, QStringLiteral("page.html"));
        QCOMPARE(window->htmlFilename(), path);

        // Save with a file name writes without asking.
        bool asked = false;
        TWPanels::setSavePanelHandler([&](const QString &, const QStringList &) {
            asked = true;
            return std::optional<QString>();
        });
        window->loadHTML(QStringLiteral("second\n"));
        window->saveDocument();
        QVERIFY(!asked);
        QCOMPARE(readBytes(path), QByteArray("second\r\n"));
    }

    void unwritableTargetBeepsAndKeepsOldFile()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        const QString folder = dir.filePath(QStringLiteral("taken"));
        QVERIFY(QDir().mkpath(folder));
        window->loadHTML(QStringLiteral("text"));
        window->saveHTMLFileAs(folder); // a folder cannot become a file
        QCOMPARE(TWBeepCount(), 1);
        QVERIFY(QFileInfo(folder).isDir());
    }

    void newDocumentClearsTextNameAndBaseURL()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        window->loadHTML(QStringLiteral("<p>x</p>"));
        window->setHTMLFilename(QStringLiteral("/x/y.html"));
        viewer.baseURL = QUrl::fromLocalFile(QStringLiteral("/x/y.html"));
        TWPreferences::sharedPref()->setDefaultBaseURL(QStringLiteral("http://localhost/site/"));
        window->newDocument();
        QCOMPARE(window->getText(), QString());
        QCOMPARE(window->htmlFilename(), QString());
        QCOMPARE(viewer.baseURL, QUrl(QStringLiteral("http://localhost/site/")));
        QCOMPARE(window->windowTitle(), QStringLiteral("HTML:> Untitled <"));
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
        QCOMPARE(window->windowTitle(), QStringLiteral("HTML:kept.html"));
        QVERIFY(window->textView()->autoIndentation());
        QCOMPARE(window->size(), QSize(512, 384));
    }

    void partialDefaultsFallBack_data()
    {
        QTest::addColumn<QVariantMap>("defaults");
        QTest::addColumn<bool>("defaultPageShown");
        QTest::addColumn<QString>("filename");
        QTest::addColumn<bool>("autoIndentation");
        QVariantMap noText;
        noText.insert(QStringLiteral("HTML Filename"), QStringLiteral("/a.html"));
        noText.insert(QStringLiteral("Auto Indentation"), QStringLiteral("yes"));
        QVariantMap onlyText;
        onlyText.insert(QStringLiteral("HTML Text"), QStringLiteral("t"));
        QVariantMap foreignTypes;
        foreignTypes.insert(QStringLiteral("HTML Text"), 12);
        foreignTypes.insert(QStringLiteral("HTML Filename"), QVariantList());
        foreignTypes.insert(QStringLiteral("Auto Indentation"), QStringLiteral("YES"));
        QTest::newRow("no text") << noText << true << QStringLiteral("/a.html") << false;
        QTest::newRow("only text") << onlyText << false << QString() << false;
        QTest::newRow("foreign types") << foreignTypes << true << QString() << true;
    }

    void partialDefaultsFallBack()
    {
        QFETCH(QVariantMap, defaults);
        QFETCH(bool, defaultPageShown);
        QFETCH(QString, filename);
        QFETCH(bool, autoIndentation);
        TWUserDefaults::standardUserDefaults()->setObject(defaults, QLatin1String(TWWindowDefaultsKey::editorWindow));
        TWUserDefaults::standardUserDefaults()->synchronize();
        TWEditWindowController *window = relaunch();
        QCOMPARE(window->getText() == defaultPage(), defaultPageShown);
        QCOMPARE(window->htmlFilename(), filename);
        QCOMPARE(window->textView()->autoIndentation(), autoIndentation);
    }

    void autoIndentationToggleFollowsMenu()
    {
        TWEditWindowController *window = TWEditWindowController::sharedEditWindowController();
        window->textView()->setAutoIndentation(false);
        QVERIFY(!TWAppDelegate::sharedAppDelegate()->autoIndentMenu->isChecked());
        window->toggleAutoIndentation();
        QVERIFY(window->textView()->autoIndentation());
        QVERIFY(TWAppDelegate::sharedAppDelegate()->autoIndentMenu->isChecked());
        // The menu item itself toggles the same flag.
        TWAppDelegate::sharedAppDelegate()->autoIndentMenu->trigger();
        QVERIFY(!window->textView()->autoIndentation());
        QVERIFY(!TWAppDelegate::sharedAppDelegate()->autoIndentMenu->isChecked());
    }
};

QTEST_MAIN(tst_TWEditWindowController)
#include "tst_TWEditWindowController.moc"
