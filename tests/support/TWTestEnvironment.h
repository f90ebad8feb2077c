#pragma once

#include <QString>

#include <functional>

// Every test process runs in a private home made before main() starts: HOME and the XDG
// folders point into a fresh temporary directory, so the user-defaults store and the data
// folder that the code under test sees are empty and never the user's own.
namespace TWTestEnvironment {
// The private home of this process.
QString home();

// Turns the event loop until the condition holds or the time is up, and answers the condition.
// Unlike QTest::qWaitFor and the QTRY macros, which sleep between turns, it keeps the loop
// running: the browser engine does its work on it, and a load that takes 20 ms there takes a
// second with sleeps in between. Each turn handles one batch of events, so no state between two
// events goes unseen.
bool waitFor(const std::function<bool()> &condition, int milliseconds);

// Writes the bytes into the file, making its folder; answers whether all of them were written.
bool writeFile(const QString &path, const QByteArray &bytes);
// The file's bytes, or none when it cannot be read.
QByteArray readFile(const QString &path);

// Writes an executable shell script (the body after "#!/bin/sh") and answers its path, or ""
// when it could not be written.
QString writeScript(const QString &path, const QByteArray &body);
}

// Waits for the values to become equal, then compares them, with QCOMPARE's message if they
// never do.
#define TW_TRY_COMPARE_WITH_TIMEOUT(actual, expected, timeout)                                         \
    do {                                                                                               \
        TWTestEnvironment::waitFor([&] { return (actual) == (expected); }, timeout);                  \
        QCOMPARE(actual, expected);                                                                    \
    } while (false)
#define TW_TRY_VERIFY_WITH_TIMEOUT(condition, timeout)                                                 \
    QVERIFY(TWTestEnvironment::waitFor([&] { return bool(condition); }, timeout))
