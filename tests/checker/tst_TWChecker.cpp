// The checker runner with real child processes: the order in which the window hears of a run,
// output printed at any moment on either stream, characters split between reads, programs
// that cannot start, and stopping programs that do not want to stop.
#include "checker/TWChecker.h"

#include "TWTestEnvironment.h"
#include "checker/TWCheckerController.h"
#include "checker/TWOutputDecoder.h"

#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>

namespace {

constexpr int runTimeout = 60000;

// Writes down what a run tells its controller.
class Recorder : public TWCheckerController
{
public:
    void processFinished(TWChecker *, int status) override { events << QStringLiteral("finished %1").arg(status); }
    void processStarted(TWChecker *) override { events << QStringLiteral("started"); }
    void appendError(const QString &text) override { error += text, events << QStringLiteral("error"); }
    void appendOutput(const QString &text) override { output += text, events << QStringLiteral("output"); }
    void processCouldNotStart(TWChecker *, const QString &) override { events << QStringLiteral("could not start"); }

    QStringList events;
    QString output;
    QString error;
};

bool alive(qint64 pid)
{
    return pid > 0 && ::kill(pid_t(pid), 0) == 0;
}

} // namespace

class tst_TWChecker : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir dir;

    // A shell script the test writes, made executable.
    QString script(const QString &name, const QByteArray &body)
    {
        return TWTestEnvironment::writeScript(dir.filePath(name), body);
    }

    // Runs the program to its end (stopping it after stopAfter milliseconds when given).
    void run(Recorder &recorder, const QStringList &command, int stopAfter = -1)
    {
        TWChecker checker(&recorder, dir.path(), QProcessEnvironment::systemEnvironment(), command);
        int notified = -1;
        connect(&checker, &TWChecker::processFinishedNotification, this, [&notified](int status) { notified = status; });
        checker.startProcess();
        if (stopAfter >= 0) {
            TWTestEnvironment::waitFor([] { return false; }, stopAfter);
            checker.stopProcess();
        }
        QVERIFY(TWTestEnvironment::waitFor([&notified] { return notified >= 0; }, runTimeout));
        QCOMPARE(recorder.events.last(), QStringLiteral("finished %1").arg(notified));
    }

private Q_SLOTS:
    // Started first, finished last with the status, everything printed in between and whole:
    // also what is printed just before the end, or by a program still running after it.
    void runsTellTheirControllerInOrder_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("error");
        QTest::addColumn<int>("status");
        QTest::newRow("nothing printed") << QByteArray("exit 3") << QString() << QString() << 3;
        QTest::newRow("standard error only") << QByteArray("echo oops >&2; exit 1") << QString() << "oops\n" << 1;
        QTest::newRow("both streams") << QByteArray("printf a; sleep 0.1; printf b >&2; printf c") << "ac" << "b" << 0;
        QTest::newRow("a megabyte just before the end")
            << QByteArray("head -c 1048576 /dev/zero | tr '\\0' x") << QString(1 << 20, u'x') << QString() << 0;
        QTest::newRow("input ends at once") << QByteArray("cat; echo read") << "read\n" << QString() << 0;
        QTest::newRow("output split inside characters")
            << QByteArray("printf '\\346\\227'; sleep 0.2; printf '\\245\\n\\360\\237'; sleep 0.2; printf '\\230\\200'")
            << QString::fromUtf8("日\n😀") << QString() << 0;
        QTest::newRow("bytes that are no UTF-8")
            << QByteArray("printf 'a\\377b\\n'") << QStringLiteral("a\uFFFDb\n") << QString() << 0;
    }

    void runsTellTheirControllerInOrder()
    {
        QFETCH(QByteArray, body);
        QFETCH(QString, output);
        QFETCH(QString, error);
        QFETCH(int, status);
        Recorder recorder;
        if (output.contains(u'\uFFFD'))
            QTest::ignoreMessage(QtWarningMsg, "Not able to encode output. Specified encoding: 4");
        run(recorder, {script(QStringLiteral("order"), body)});
        QCOMPARE(recorder.events.first(), QStringLiteral("started"));
        QCOMPARE(recorder.events.last(), QStringLiteral("finished %1").arg(status));
        QCOMPARE(recorder.output, output);
        QCOMPARE(recorder.error, error);
    }

    // A program that cannot be started says so and finishes; nothing is printed.
    void programsThatCannotStart_data()
    {
        QTest::addColumn<QString>("program");
        QTest::newRow("missing") << "missing";
        QTest::newRow("a folder") << "folder";
        QTest::newRow("not executable") << "plain";
        QTest::newRow("bad interpreter line") << "interpreter";
    }

    void programsThatCannotStart()
    {
        QFETCH(QString, program);
        QDir(dir.path()).mkdir(QStringLiteral("folder"));
        QFile plain(dir.filePath(QStringLiteral("plain")));
        QVERIFY(plain.open(QIODevice::WriteOnly) && plain.write("#!/bin/sh\necho never\n") > 0);
        plain.close();
        QFile interpreter(dir.filePath(QStringLiteral("interpreter")));
        QVERIFY(interpreter.open(QIODevice::WriteOnly) && interpreter.write("#!/no/such/shell\necho never\n") > 0);
        interpreter.setPermissions(interpreter.permissions() | QFileDevice::ExeOwner);
        interpreter.close();
        Recorder recorder;
        run(recorder, {dir.filePath(program)});
        QCOMPARE(recorder.events, (QStringList{QStringLiteral("started"), QStringLiteral("could not start"),
                                               QStringLiteral("finished %1").arg(TWChecker::couldNotStartStatus)}));
    }

    // Stop ends the program, and everything it started, even one that ignores the request;
    // what it printed until then still arrives.
    void stopEndsEverythingTheProgramStarted_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("signal");
        QTest::newRow("ends when asked") << QByteArray("echo begun; sleep 1000 & echo $! > child; wait") << SIGTERM;
        QTest::newRow("ignores the request, floods")
            << QByteArray("trap '' TERM; echo begun; sleep 1000 & echo $! > child; while :; do echo flood; done") << SIGKILL;
    }

    void stopEndsEverythingTheProgramStarted()
    {
        QFETCH(QByteArray, body);
        QFETCH(int, signal);
        QFile::remove(dir.filePath(QStringLiteral("child")));
        Recorder recorder;
        TWChecker checker(&recorder, dir.path(), QProcessEnvironment::systemEnvironment(),
                          {script(QStringLiteral("stop"), body)});
        int status = -1;
        connect(&checker, &TWChecker::processFinishedNotification, this, [&status](int value) { status = value; });
        checker.startProcess();
        QVERIFY(TWTestEnvironment::waitFor([&recorder] { return recorder.output.startsWith(QLatin1String("begun")); }, runTimeout));
        QVERIFY(TWTestEnvironment::waitFor([this] { return QFile(dir.filePath(QStringLiteral("child"))).size() > 0; }, runTimeout));
        QFile child(dir.filePath(QStringLiteral("child")));
        QVERIFY(child.open(QIODevice::ReadOnly));
        const qint64 childPid = child.readAll().trimmed().toLongLong();
        QVERIFY(alive(childPid));
        checker.stopProcess();
        QVERIFY(TWTestEnvironment::waitFor([&status] { return status >= 0; }, runTimeout));
        QCOMPARE(status, signal);
        QVERIFY(TWTestEnvironment::waitFor([childPid] { return !alive(childPid); }, runTimeout));
    }

    // Text cut into reads at random places, with bytes that are no UTF-8 among it, comes out as
    // the whole text decoded at once.
    void randomlySplitOutputDecodesAsAWhole()
    {
        QRandomGenerator random(20261123);
        const char32_t samples[] = {U'a', U'\n', U'é', U'日', U'\uFEFF', U'😀', U'ß'};
        for (int round = 0; round < 500; ++round) {
            QByteArray bytes("x");
            for (int n = random.bounded(1, 60); n > 0; --n) {
                if (random.bounded(10) == 0)
                    bytes += '\xff';
                else
                    bytes += QString::fromUcs4(&samples[random.bounded(int(std::size(samples)))], 1).toUtf8();
            }
            TWOutputDecoder decoder;
            QString decoded;
            for (qsizetype at = 0; at < bytes.size();) {
                const qsizetype length = random.bounded(1, 5);
                decoded += decoder.decode(bytes.mid(at, length));
                at += length;
            }
            QCOMPARE(decoded, QString::fromUtf8(bytes));
            QVERIFY(decoder.heldBack().isEmpty());
        }
    }
};

QTEST_GUILESS_MAIN(tst_TWChecker)
#include "tst_TWChecker.moc"
