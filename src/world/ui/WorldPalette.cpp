#include "world/ui/WorldPalette.h"

#include "platform/Appearance.h"

namespace {

QColor rgb(QRgb value)
{
    return QColor::fromRgb(value);
}

QColor withAlpha(QColor color, double alpha)
{
    color.setAlphaF(float(alpha));
    return color;
}

} // namespace

WorldPalette WorldPalette::of(const QPalette &palette)
{
    return of(Appearance::isDark(palette), Appearance::ink(palette));
}

WorldPalette WorldPalette::of(bool dark, const QColor &ink)
{
    WorldPalette p;
    p.dark = dark;
    p.ink = ink;
    if (dark) {
        p.sea = rgb(0x07111C);
        p.coast = rgb(0x10283F);
        p.waves = rgb(0x1D3A57);
        p.river = rgb(0x143A5C);
        p.plainLand = rgb(0x4A4232);
        p.border = withAlpha(Qt::white, 0.35);
        p.fog = withAlpha(QColor::fromRgbF(0.08f, 0.1f, 0.14f), 0.62);
        p.labelShadow = Qt::black;
    } else {
        p.sea = rgb(0x3F7DB4);
        p.coast = rgb(0x6A9CC9);
        p.waves = rgb(0x8DB7DC);
        p.river = rgb(0x3F7DB4);
        p.plainLand = rgb(0xE3D3A8);
        p.border = withAlpha(QColor::fromRgbF(0.1f, 0.15f, 0.08f), 0.5);
        p.fog = withAlpha(Qt::white, 0.55);
        p.labelShadow = Qt::white;
    }
    return p;
}

QColor WorldPalette::land(std::optional<Tier> tier) const
{
    return tier ? Tiers::landColor(*tier).resolve(dark) : plainLand;
}

QColor WorldPalette::ground(std::optional<Tier> tier, bool explored) const
{
    const QColor base = land(tier);
    if (explored)
        return base;
    const double a = fog.alphaF();
    const auto over = [a](double top, double under) { return a * top + (1 - a) * under; };
    return QColor::fromRgbF(float(over(fog.redF(), base.redF())),
                            float(over(fog.greenF(), base.greenF())),
                            float(over(fog.blueF(), base.blueF())));
}

WorldPalette::Label WorldPalette::label(std::optional<Tier> tier, bool explored) const
{
    if (explored)
        return {tier ? Tiers::labelColor(*tier).resolve(dark) : ink, withAlpha(labelShadow, 0.4)};
    const QColor nearBlack = rgb(0x0B0B0B);
    const QColor white = Qt::white;
    const QColor under = ground(tier, false);
    if (Appearance::contrast(nearBlack, under) > Appearance::contrast(white, under))
        return {nearBlack, withAlpha(white, 0.7)};
    return {white, withAlpha(nearBlack, 0.7)};
}
