#pragma once

#include <QtGlobal>

// A stretch of text: a location and a length in UTF-16 units.
struct TWRange
{
    // The location of a range that was not found.
    static constexpr qsizetype notFound = 0x7FFFFFFF;

    qsizetype location = 0;
    qsizetype length = 0;

    qsizetype end() const { return location + length; }
    bool found() const { return location != notFound; }
    friend bool operator==(const TWRange &, const TWRange &) = default;
};
