#include "platform/TWColorBytes.h"

#include <algorithm>
#include <cmath>

namespace {
// QColor keeps 16 bits per component, so a component read back from a byte can land a hair
// below the exact quotient; without this margin truncation would turn 178 into 177.
constexpr double quantisationMargin = 1e-4;
}

int TWColorBytes::byteFromComponent(double component)
{
    if (!(component > 0.0))
        return 0;
    return std::clamp(static_cast<int>(std::trunc(component * 255.0 + quantisationMargin)), 0, 255);
}

QByteArray TWColorBytes::bytesFromColor(const QColor &color, bool withAlpha)
{
    const QColor rgb = color.toRgb();
    QByteArray bytes;
    bytes.append(char(byteFromComponent(rgb.redF())));
    bytes.append(char(byteFromComponent(rgb.greenF())));
    bytes.append(char(byteFromComponent(rgb.blueF())));
    if (withAlpha)
        bytes.append(char(byteFromComponent(rgb.alphaF())));
    return bytes;
}

std::optional<QColor> TWColorBytes::colorFromBytes(const QByteArray &bytes, bool withAlpha)
{
    if (bytes.size() != (withAlpha ? 4 : 3))
        return std::nullopt;
    const auto component = [&bytes](int index) { return static_cast<unsigned char>(bytes.at(index)) / 255.0; };
    return QColor::fromRgbF(component(0), component(1), component(2), withAlpha ? component(3) : 1.0);
}
