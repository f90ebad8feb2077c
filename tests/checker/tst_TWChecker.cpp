// The checker runner with real child processes: the order in which the window hears of a run,
// output printed at any moment on either stream, characters split between reads, programs
// that cannot start, and stopping programs that do not want to stop.
#include "checker/TWChecker.h"

#include "TWTestEnvironment.h"
#include "checker/TWCheckerController.h"
#include "checker/TWOutputDecoder.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

namespace {

constexpr int runTimeout = 60000;
const QString couldNotStart = QStringLiteral("could not start");

// Writes down what a run tells its controller.
class Recorder : public TWCheckerController
{
public:
    void processFinished(TWChecker *, int status) override { events << QStringLiteral("finished %1").arg(status); }
    void processStarted(TWChecker *) override { events << QStringLiteral("started"); }
    void appendError(const QString &text) override { error += text, events << QStringLiteral("error"); }
    void appendOutput(const QString &text) override { output += text, events << QStringLiteral("output"); }
    void processCouldNotStart(TWChecker *, const QString &) override { events << couldNotStart; }

    QStringList events;
    QString output;
    QString error;
};

bool alive(qint64 pid) { return pid > 0 && ::kill(pid_t(pid), 0) == 0; }

} // namespace

class tst_TWChecker : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;

private Q_SLOTS:
    // Started first, finished last with the status, everything printed in between and whole:
    // also what is printed just before the end, or split inside a character. A program that
    // cannot be started (no body: none is written) says so and prints nothing. Stop ("stop":
    // once the program has begun and started a child, which writes its id to "child") ends
    // the program and everything it started, even one that ignores the request; what it printed
    // until then ("output" begins it) still arrives.
    void runs_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("stop");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("error");
        QTest::addColumn<int>("status");
        QTest::newRow("cannot start") << QByteArray() << false << QString() << QString() << TWChecker::couldNotStartStatus;
        QTest::newRow("standard error only") << QByteArray("echo oops >&2; exit 3") << false << QString() << "oops\n" << 3;
        QTest::newRow("both streams") << QByteArray("printf a; sleep 0.1; printf b >&2; printf c") << false << "ac" << "b" << 0;
        QTest::newRow("a megabyte just before the end")
            << QByteArray("head -c 1048576 /dev/zero | tr '\\0' x") << false << QString(1 << 20, u'x') << QString() << 0;
        QTest::newRow("input ends at once") << QByteArray("cat; echo read") << false << "read\n" << QString() << 0;
        QTest::newRow("output split inside characters")
            << QByteArray("printf '\\346\\227'; sleep 0.2; printf '\\245\\n\\360\\237'; sleep 0.2; printf '\\230\\200'") << false
            << QString::fromUtf8("日\n😀") << QString() << 0;
        QTest::newRow("bytes that are no UTF-8") << QByteArray("printf 'a\\377b\\n'") << false << "a\uFFFDb\n" << QString() << 0;
        QTest::newRow("stopped") << QByteArray("echo begun; sleep 1000 & echo $! > child; wait") << true << "begun\n" << QString() << SIGTERM;
        QTest::newRow("stopped, ignores the request, floods")
            << QByteArray("trap '' TERM; echo begun; sleep 1000 & echo $! > child; while :; do echo flood; done") << true << "begun\n"
            << QString() << SIGKILL;
    }

    void runs()
    {
        QFETCH(QByteArray, body);
        QFETCH(bool, stop);
        QFETCH(QString, output);
        QFETCH(int, status);
        const QString childFile = dir.filePath(QStringLiteral("child"));
        QFile::remove(childFile);
        if (QTest::currentDataTag() == QLatin1String("bytes that are no UTF-8"))
            QTest::ignoreMessage(QtWarningMsg, "Not able to encode output. Specified encoding: 4");
        Recorder recorder;
        const QString program = body.isEmpty() ? dir.filePath(QStringLiteral("missing"))
                                               : TWTestEnvironment::writeScript(dir.filePath(QStringLiteral("run")), body);
        TWChecker checker(&recorder, dir.path(), QProcessEnvironment::systemEnvironment(), {program});
        int finished = -1;
        connect(&checker, &TWChecker::processFinishedNotification, this, [&finished](int value) { finished = value; });
        checker.startProcess();
        qint64 child = 0;
        if (stop) {
            QVERIFY(TWTestEnvironment::waitFor([&] {
                child = TWTestEnvironment::readFile(childFile).trimmed().toLongLong();
                return recorder.output.startsWith(output) && alive(child);
            }, runTimeout));
            checker.stopProcess();
        }
        QVERIFY(TWTestEnvironment::waitFor([&finished] { return finished >= 0; }, runTimeout));
        QCOMPARE(finished, status);
        QCOMPARE(recorder.events.first(), QStringLiteral("started"));
        QCOMPARE(recorder.events.last(), QStringLiteral("finished %1").arg(status));
        QCOMPARE(recorder.events.contains(couldNotStart), status == TWChecker::couldNotStartStatus);
        QVERIFY2(stop ? recorder.output.startsWith(output) : recorder.output == output, qPrintable(recorder.output.left(80)));
        QTEST(recorder.error, "error");
        QVERIFY(TWTestEnvironment::waitFor([child] { return !alive(child); }, runTimeout));
    }

    // Text cut into reads at random places, with bytes that are no UTF-8 among it, comes out as
    // the whole text decoded at once.
    void randomlySplitOutputDecodesAsAWhole()
    {
        QRandomGenerator random(20261123);
        const QByteArrayList samples{"a", "\n", "\xc3\xa9", "\xe6\x97\xa5", "\xef\xbb\xbf", "\xf0\x9f\x98\x80", "\xff"};
        for (int round = 0; round < 500; ++round) {
            QByteArray bytes("x");
            for (int n = random.bounded(1, 60); n > 0; --n)
                bytes += samples[random.bounded(int(samples.size()))];
            TWOutputDecoder decoder;
            QString decoded;
            for (qsizetype at = 0, length = 0; at < bytes.size(); at += length)
                decoded += decoder.decode(bytes.mid(at, length = random.bounded(1, 5)));
            QCOMPARE(decoded, QString::fromUtf8(bytes));
        }
    }
};

QTEST_GUILESS_MAIN(tst_TWChecker)
#include "tst_TWChecker.moc"
