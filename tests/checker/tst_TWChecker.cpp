// The checker runner with real child processes: the order in which the window hears of a run,
// output printed at any moment on either stream, characters split between reads, programs
// that cannot start, and stopping programs that do not want to stop.
#include "checker/TWChecker.h"

#include "TWTestEnvironment.h"
#include "checker/TWCheckerController.h"

#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

using namespace Qt::StringLiterals;

namespace {

constexpr int runTimeout = 60000;
const QString couldNotStart = u"could not start"_s;

// Writes down what a run tells its controller.
class Recorder : public TWCheckerController
{
public:
    void processFinished(TWChecker *, int status) override { events << u"finished %1"_s.arg(status); }
    void processStarted(TWChecker *) override { events << u"started"_s; }
    void appendError(const QString &text) override { error += text, events << u"error"_s; }
    void appendOutput(const QString &text) override { output += text, events << u"output"_s; }
    void processCouldNotStart(TWChecker *, const QString &) override { events << couldNotStart; }

    QStringList events;
    QString output, error;
};

// A program's script (none: it does not exist), what it prints on each stream, its status; "stop":
// stopped once it has printed the start of "output" and started a child, which writes its id to "child".
struct Run { QByteArray body = {}; QString output = {}, error = {}; int status = 0; bool stop = false; };

bool alive(qint64 pid) { return pid > 0 && ::kill(pid_t(pid), 0) == 0; }

} // namespace

class tst_TWChecker : public QObject
{
    Q_OBJECT

    QTemporaryDir dir;

private Q_SLOTS:
    // Started first, finished last with the status, everything printed in between and whole:
    // also what is printed just before the end, or split inside a character. A program that
    // cannot be started says so and prints nothing. Stop ends the program and everything it
    // started, even one that ignores the request; what it printed until then still arrives.
    void runs_data()
    {
        QTest::addColumn<Run>("run");
        QTest::newRow("cannot start") << Run{.status = TWChecker::couldNotStartStatus};
        QTest::newRow("both streams, failing") << Run{"printf a; sleep 0.1; printf 'b\\n' >&2; printf c; exit 3", u"ac"_s, u"b\n"_s, 3};
        QTest::newRow("a megabyte just before the end") << Run{"head -c 1048576 /dev/zero | tr '\\0' x", QString(1 << 20, u'x')};
        QTest::newRow("input ends at once") << Run{"cat; echo read", u"read\n"_s};
        QTest::newRow("output split inside characters")
            << Run{"printf '\\346\\227'; sleep 0.2; printf '\\245\\n\\360\\237'; sleep 0.2; printf '\\230\\200'", u"日\n😀"_s};
        QTest::newRow("bytes that are no UTF-8") << Run{"printf 'a\\377b\\n'", u"a\uFFFDb\n"_s};
        QTest::newRow("stopped") << Run{"echo begun; sleep 1000 & echo $! > child; wait", u"begun\n"_s, {}, SIGTERM, true};
        QTest::newRow("stopped, ignores the request, floods")
            << Run{"trap '' TERM; echo begun; sleep 1000 & echo $! > child; while :; do echo flood; done", u"begun\n"_s, {}, SIGKILL, true};
    }

    void runs()
    {
        QFETCH(Run, run);
        const QString childFile = dir.filePath(u"child"_s);
        QFile::remove(childFile);
        if (QTest::currentDataTag() == "bytes that are no UTF-8"_L1)
            QTest::ignoreMessage(QtWarningMsg, "Not able to encode output. Specified encoding: 4");
        Recorder recorder;
        TWChecker checker(&recorder, dir.path(), QProcessEnvironment::systemEnvironment(),
                          {run.body.isEmpty() ? dir.filePath(u"missing"_s) : TWTestEnvironment::writeScript(dir.filePath(u"run"_s), run.body)});
        checker.startProcess();
        qint64 child = 0;
        if (run.stop) {
            QVERIFY(TWTestEnvironment::waitFor([&] {
                child = TWTestEnvironment::readFile(childFile).trimmed().toLongLong();
                return recorder.output.startsWith(run.output) && alive(child);
            }, runTimeout));
            checker.stopProcess();
        }
        TW_TRY_COMPARE_WITH_TIMEOUT(recorder.events.last(), u"finished %1"_s.arg(run.status), runTimeout);
        QCOMPARE(recorder.events.first(), u"started"_s);
        QCOMPARE(recorder.events.contains(couldNotStart), run.body.isEmpty());
        QVERIFY2(run.stop ? recorder.output.startsWith(run.output) : recorder.output == run.output, qPrintable(recorder.output.left(80)));
        QCOMPARE(recorder.error, run.error);
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
