// One instance per store: a later launch hands its paths to the running one, whatever broken
// requests came first; a launch that gets no answer fails instead of running; after a crash
// exactly one of several launches at once runs.
#include "app/TWSingleInstance.h"

#include <QDataStream>
#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <algorithm>
#include <cstdio>

namespace {

// The test program runs itself in this mode as a later launch, in a process of its own.
constexpr char launchMode[] = "--launch";
constexpr char runtimeVariable[] = "XDG_RUNTIME_DIR";
constexpr int handedOverStatus = 0;
constexpr int noAnswerStatus = 1;
// A launch that runs serves as many hand-overs as it is told, then exits with this plus them.
constexpr int servedStatus = 100;
constexpr char runningLine[] = "running";
constexpr int waitTimeout = 60000;
constexpr int shortAnswerTimeout = 1000;
constexpr int racers = 8;

// Arguments: the test's runtime folder (each test process makes a home of its own), the store,
// the answer timeout, the hand-overs to serve if it runs, its paths.
int launch(const QStringList &arguments)
{
    qputenv(runtimeVariable, arguments.at(0).toLocal8Bit());
    TWSingleInstance instance(arguments.at(1));
    const int expected = arguments.at(3).toInt();
    const TWSingleInstance::Outcome outcome = instance.start(arguments.mid(4), arguments.at(2).toInt());
    if (outcome != TWSingleInstance::Outcome::Running)
        return outcome == TWSingleInstance::Outcome::HandedOver ? handedOverStatus : noAnswerStatus;
    int served = 0;
    QObject::connect(&instance, &TWSingleInstance::filesHandedOver, [&served, expected] {
        if (++served == expected)
            QCoreApplication::quit();
    });
    std::puts(runningLine);
    std::fflush(stdout);
    if (expected > 0) {
        QTimer::singleShot(waitTimeout, &QCoreApplication::quit);
        QCoreApplication::exec();
    }
    return servedStatus + served;
}

struct Store
{
    QTemporaryDir folder;
    QString path = folder.filePath(QStringLiteral("Tagwright.plist"));

    void launch(QProcess &process, int answerTimeout, int serve, const QStringList &paths) const
    {
        process.start(QCoreApplication::applicationFilePath(),
                      QStringList{QLatin1String(launchMode), qEnvironmentVariable(runtimeVariable), path,
                                  QString::number(answerTimeout), QString::number(serve)}
                          + paths);
    }
};

// A request as the wire carries it, for requests that no launch sends.
QByteArray request(quint8 version, const QStringList &paths, qsizetype cut = 0)
{
    QByteArray body;
    QDataStream bodyStream(&body, QIODevice::WriteOnly);
    bodyStream << paths;
    body.chop(cut);
    QByteArray message;
    QDataStream stream(&message, QIODevice::WriteOnly);
    stream << version << quint32(body.size());
    return message + body;
}

} // namespace

class tst_TWSingleInstance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void laterLaunchHandsOverItsPaths_data()
    {
        QTest::addColumn<QByteArray>("brokenRequest");
        QTest::addColumn<QStringList>("paths");
        const QStringList page{QStringLiteral("/tmp/page.html")};
        QTest::newRow("no paths") << QByteArray() << QStringList();
        QTest::newRow("spaces, Japanese, several kinds")
            << QByteArray()
            << QStringList{QStringLiteral("/home/u/My Pages/index.html"), QStringLiteral("/home/u/日本語/ページ.twtemp"),
                           QStringLiteral("/home/u/style.css")};
        QTest::newRow("after another version") << request(2, page) << page;
        QTest::newRow("after a relative path") << request(1, {QStringLiteral("page.html")}) << page;
        QTest::newRow("after a path cut short") << request(1, page, sizeof(char16_t)) << page;
    }
    void laterLaunchHandsOverItsPaths()
    {
        QFETCH(QByteArray, brokenRequest);
        QFETCH(QStringList, paths);
        Store store;
        TWSingleInstance running(store.path);
        QCOMPARE(running.start({}), TWSingleInstance::Outcome::Running);
        QSignalSpy handedOver(&running, &TWSingleInstance::filesHandedOver);
        QLocalSocket broken;
        if (!brokenRequest.isEmpty()) {
            broken.connectToServer(running.socketPath());
            QVERIFY(broken.waitForConnected());
            broken.write(brokenRequest);
            broken.disconnectFromServer();
        }
        QProcess later;
        store.launch(later, TWSingleInstance::defaultAnswerTimeout, 0, paths);
        QTRY_COMPARE_WITH_TIMEOUT(later.state(), QProcess::NotRunning, waitTimeout);
        QCOMPARE(later.exitCode(), handedOverStatus);
        QCOMPARE(handedOver.count(), 1);
        QCOMPARE(handedOver.first().first().toStringList(), paths);
    }

    void unansweredLaunchFailsInsteadOfRunning()
    {
        Store store;
        TWSingleInstance running(store.path);
        QCOMPARE(running.start({}), TWSingleInstance::Outcome::Running);
        QProcess later;
        store.launch(later, shortAnswerTimeout, 0, {});
        // Blocks this process's event loop, so the running instance cannot answer.
        QVERIFY(later.waitForFinished(waitTimeout));
        QCOMPARE(later.exitCode(), noAnswerStatus);
    }

    void oneOfSeveralRunsAfterACrash()
    {
        Store store;
        QProcess crashed;
        store.launch(crashed, TWSingleInstance::defaultAnswerTimeout, 1, {});
        QTRY_VERIFY_WITH_TIMEOUT(crashed.canReadLine(), waitTimeout);
        QCOMPARE(crashed.readLine().trimmed(), runningLine);
        crashed.kill();
        QVERIFY(crashed.waitForFinished(waitTimeout));

        QProcess launches[racers];
        for (int i = 0; i < racers; ++i)
            store.launch(launches[i], TWSingleInstance::defaultAnswerTimeout, racers - 1, {QStringLiteral("/tmp/%1").arg(i)});
        QList<int> statuses;
        for (QProcess &launch : launches) {
            QVERIFY(launch.waitForFinished(2 * waitTimeout));
            statuses << launch.exitCode();
        }
        std::sort(statuses.begin(), statuses.end());
        QCOMPARE(statuses, QList<int>(racers - 1, handedOverStatus) << servedStatus + racers - 1);
    }
};

int main(int argc, char **argv)
{
    QCoreApplication application(argc, argv);
    if (argc > 1 && qstrcmp(argv[1], launchMode) == 0)
        return launch(QCoreApplication::arguments().mid(2));
    tst_TWSingleInstance test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_TWSingleInstance.moc"
