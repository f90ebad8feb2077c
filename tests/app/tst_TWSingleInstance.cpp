// One instance per store: a later launch hands its paths to the running one, whatever broken
// requests came first, and fails when it gets no answer; after a crash exactly one of several
// launches at once runs. (e2e_single_instance.sh drives the same with the application.)
#include "app/TWSingleInstance.h"

#include "TWTestEnvironment.h"

#include <QDataStream>
#include <QFileInfo>
#include <QLocalSocket>
#include <QProcess>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

// The test program runs itself in this mode as a later launch, in a process of its own.
constexpr char launchMode[] = "--launch";
constexpr char runtimeVariable[] = "XDG_RUNTIME_DIR";
constexpr int waitTimeout = 60000;
constexpr int shortAnswerTimeout = 1000;
constexpr int racers = 8;
// A launch exits with its outcome, or when it runs, serves the others and exits with this plus them.
constexpr int servedStatus = 100;

// Instances are told apart by the store's path alone; the file need not exist.
QString storePath() { return TWTestEnvironment::home() + QStringLiteral("/Tagwright.plist"); }

// Arguments: the test's runtime folder (the child makes a home of its own), store, answer timeout, paths.
int launch(const QStringList &arguments)
{
    qputenv(runtimeVariable, arguments.at(0).toLocal8Bit());
    TWSingleInstance instance(arguments.at(1));
    if (const auto outcome = instance.start(arguments.mid(3), arguments.at(2).toInt()); outcome != TWSingleInstance::Outcome::Running)
        return int(outcome);
    int served = 0;
    QObject::connect(&instance, &TWSingleInstance::filesHandedOver, [&served] {
        if (++served == racers - 1)
            QCoreApplication::quit();
    });
    QTimer::singleShot(waitTimeout, &QCoreApplication::quit);
    QCoreApplication::exec();
    return servedStatus + served;
}

void startLaunch(QProcess &process, int answerTimeout, const QStringList &paths)
{
    process.start(QCoreApplication::applicationFilePath(), QStringList{QLatin1String(launchMode), qEnvironmentVariable(runtimeVariable),
                                                                       storePath(), QString::number(answerTimeout)} + paths);
}

// A request as the wire carries it, for requests that no launch sends.
QByteArray request(quint8 version, const QStringList &paths)
{
    QByteArray body, message;
    QDataStream bodyStream(&body, QIODevice::WriteOnly);
    bodyStream << paths;
    QDataStream(&message, QIODevice::WriteOnly) << version << quint32(body.size());
    return message + body;
}

// A request the running instance gets first and must survive, whether it answers the launch
// after it, and that launch's paths.
struct Launch { QByteArray brokenRequest; bool answered; QStringList paths; };

} // namespace

class tst_TWSingleInstance : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void laterLaunchHandsOverItsPaths_data()
    {
        QTest::addColumn<Launch>("row");
        const QStringList page{QStringLiteral("/tmp/page.html")};
        QTest::newRow("spaces, Japanese, several kinds, after another version")
            << Launch{request(2, page), true, {u"/home/u/My Pages/index.html"_s, u"/home/u/日本語/ページ.twtemp"_s, u"/home/u/style.css"_s}};
        QTest::newRow("after a relative path") << Launch{request(1, {QStringLiteral("page.html")}), true, page};
        QTest::newRow("no answer: fails instead of running") << Launch{request(2, page), false, page};
    }

    void laterLaunchHandsOverItsPaths()
    {
        QFETCH(Launch, row);
        const auto &[brokenRequest, answered, paths] = row;
        TWSingleInstance running(storePath());
        QCOMPARE(running.start({}), TWSingleInstance::Outcome::Running);
        QSignalSpy handedOver(&running, &TWSingleInstance::filesHandedOver);
        QLocalSocket broken;
        broken.connectToServer(running.socketPath());
        QVERIFY(broken.waitForConnected());
        broken.write(brokenRequest);
        broken.disconnectFromServer();
        QProcess later;
        startLaunch(later, answered ? TWSingleInstance::defaultAnswerTimeout : shortAnswerTimeout, paths);
        // Waiting without turning the event loop keeps this, the running instance, from answering.
        QVERIFY(answered ? TWTestEnvironment::waitFor([&] { return later.state() == QProcess::NotRunning; }, waitTimeout)
                         : later.waitForFinished(waitTimeout));
        QCOMPARE(later.exitCode(), int(answered ? TWSingleInstance::Outcome::HandedOver : TWSingleInstance::Outcome::NoAnswer));
        QCOMPARE(handedOver, answered ? QList<QVariantList>{{paths}} : QList<QVariantList>());
    }

    void oneOfSeveralRunsAfterACrash()
    {
        QProcess crashed;
        startLaunch(crashed, TWSingleInstance::defaultAnswerTimeout, {});
        TW_TRY_VERIFY_WITH_TIMEOUT(QFileInfo::exists(TWSingleInstance(storePath()).socketPath()), waitTimeout);
        crashed.kill();
        QVERIFY(crashed.waitForFinished(waitTimeout));

        QProcess launches[racers];
        QList<int> statuses;
        for (int i = 0; i < racers; ++i)
            startLaunch(launches[i], TWSingleInstance::defaultAnswerTimeout, {QStringLiteral("/tmp/%1").arg(i)});
        for (QProcess &launch : launches)
            statuses << (launch.waitForFinished(2 * waitTimeout) ? launch.exitCode() : -1);
        QCOMPARE(statuses.count(int(TWSingleInstance::Outcome::HandedOver)), racers - 1);
        QVERIFY(statuses.contains(servedStatus + racers - 1));
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
