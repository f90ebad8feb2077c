#pragma once

class QCoreApplication;

// SIGTERM and SIGINT end the application the same way as the Quit command, so that a
// session logout or Ctrl+C in a terminal loses nothing.
void TWQuitOnTerminationSignals(QCoreApplication *application);
