#pragma once

class QWidget;
class TWViewWindowController;

// For the start-up benchmarks: when TAGWRIGHT_LAUNCH_NS holds the moment the launch began
// (nanoseconds of the realtime clock), the time from then to the first paint of the HTML
// window, or with TAGWRIGHT_LAUNCH_WAIT=preview to the first page rendered in the viewer, is
// printed to standard output and the application quits. Does nothing otherwise.
void TWReportLaunchTime(QWidget *htmlWindow, TWViewWindowController *viewer);
