#pragma once

#include <QColor>
#include <cstdint>

// A colour with one value for the light appearance and one for the dark.
struct AdaptiveColor
{
    std::uint32_t light = 0; // 0xRRGGBB, sRGB
    std::uint32_t dark = 0;

    [[nodiscard]] QColor resolve(bool darkAppearance) const
    {
        return QColor::fromRgb(static_cast<QRgb>(0xFF000000u | (darkAppearance ? dark : light)));
    }
    bool operator==(const AdaptiveColor &) const = default;
};
