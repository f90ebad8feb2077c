#include "platform/TWBeep.h"

#include <QApplication>

namespace {
int beepCount = 0;
}

void TWBeep()
{
    ++beepCount;
    // Model code beeps too, and its tests run without a GUI application.
    if (qobject_cast<QApplication *>(QCoreApplication::instance()))
        QApplication::beep();
}

int TWBeepCount()
{
    return beepCount;
}

void TWResetBeepCount()
{
    beepCount = 0;
}
