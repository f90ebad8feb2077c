#pragma once

#include <QByteArray>
#include <QColor>

#include <optional>

// Colours kept as bytes (the editor colours in the preferences, tag colours in the tag
// library text): each component times 255, truncated toward zero; reading divides by 255.
namespace TWColorBytes {
// One component (0.0 to 1.0) as a byte.
int byteFromComponent(double component);
// Red, green, blue, and alpha when asked for.
QByteArray bytesFromColor(const QColor &color, bool withAlpha);
// A colour from exactly 3 bytes (alpha 1.0) or, when alpha is expected, exactly 4 bytes.
// Data of any other length gives nothing.
std::optional<QColor> colorFromBytes(const QByteArray &bytes, bool withAlpha);
} // namespace TWColorBytes
