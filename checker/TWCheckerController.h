#pragma once

#include <QString>

class TWChecker;

// What a checker run tells the window that started it, always on the main thread and in this
// order: processStarted, then the text the checker prints as it prints it (standard output and
// standard error as they come), then processFinished. A program that cannot be started at
// all gets processCouldNotStart just before processFinished.
class TWCheckerController
{
public:
    virtual ~TWCheckerController() = default;

    virtual void processFinished(TWChecker *checker, int terminationStatus) = 0;
    virtual void processStarted(TWChecker *checker) = 0;
    virtual void appendError(const QString &text) = 0;
    virtual void appendOutput(const QString &text) = 0;
    virtual void processCouldNotStart(TWChecker *checker, const QString &reason) = 0;
};
