#pragma once

class QWidget;

// For the start-up benchmark: when TAGWRIGHT_LAUNCH_NS holds the moment the launch began
// (nanoseconds of the realtime clock), the time from then to the first paint of the given
// window is printed to standard output and the application quits. Does nothing otherwise.
void TWReportLaunchTimeOnFirstPaint(QWidget *window);
