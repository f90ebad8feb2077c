#pragma once

#include <QString>

// Every test process runs in a private home made before main() starts: HOME and the XDG
// folders point into a fresh temporary directory, so the user-defaults store and the data
// folder that the code under test sees are empty and never the user's own.
namespace TWTestEnvironment {
// The private home of this process.
QString home();
}
