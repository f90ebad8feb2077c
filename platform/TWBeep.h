#pragma once

// The system beep: how the application tells the user that an action could not be done
// (nothing found, nowhere to insert, a file that cannot be decoded, a refused change).
// Every beep is counted so that tests can see that it happened.
void TWBeep();

// Beeps since the process started (or since the last reset).
int TWBeepCount();
void TWResetBeepCount();
