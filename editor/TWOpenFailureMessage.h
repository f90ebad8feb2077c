#pragma once

#include <QString>

#include <functional>

class TWMessageBar;

// What a document window says when a file did not open: that it could not be read, or that
// its bytes are not text in the chosen encoding, offering the encodings in which it does read.
class TWOpenFailureMessage
{
public:
    // Shows the message for `path` after it failed to open in the encoding `tried`. Choosing
    // an offered encoding makes it the preferred one and calls `reopen`.
    static void show(TWMessageBar *bar, const QString &path, int tried, const std::function<void()> &reopen);
};
