#include "magic/AmbientGeometry.h"

#include <cmath>

std::array<AmbientGeometry::Mote, AmbientGeometry::moteCount> AmbientGeometry::motes()
{
    std::array<Mote, moteCount> list;
    for (int i = 0; i < moteCount; ++i) {
        list[std::size_t(i)] = {double((i * 104729) % 1000) / 1000,
                                double((i * 7919) % 1000) / 1000, 1.37 * i, 0.5 + 0.15 * (i % 5)};
    }
    return list;
}

QRectF AmbientGeometry::cloud(int c, double t, QSizeF size)
{
    const double w = size.width();
    const double h = size.height();
    if (w <= 0 || h <= 0)
        return {};
    const double x = std::fmod(600.0 * c + (6.0 + 3.0 * c) * t, w + 0.5 * w) - 0.5 * w;
    return {x, (0.2 + 0.45 * c) * h, 0.5 * w, 0.35 * h};
}

QPointF AmbientGeometry::moteCentre(const Mote &mote, double t, QSizeF size)
{
    return {mote.x * size.width() + 40 * std::sin(mote.phase + 0.3 * t * mote.speed),
            mote.y * size.height() + 30 * std::cos(mote.phase + 0.23 * t * mote.speed)};
}

QRectF AmbientGeometry::moteRect(const Mote &mote, double t, QSizeF size)
{
    const double half = moteDiameter / 2;
    const QPointF centre = moteCentre(mote, t, size);
    return {centre.x() - half, centre.y() - half, moteDiameter, moteDiameter};
}

double AmbientGeometry::moteOpacity(const Mote &mote, double t)
{
    const double twinkle = (std::sin(mote.phase + 2 * t * mote.speed) + 1) / 2;
    return 0.25 + 0.6 * twinkle;
}

double AmbientGeometry::cloudTime(double t)
{
    return std::floor(t * cloudSteps) / cloudSteps;
}

namespace {

void addArea(std::vector<QRect> &areas, const QRectF &ellipse, double blur)
{
    if (!ellipse.isEmpty())
        areas.push_back(ellipse.adjusted(-blur, -blur, blur, blur).toAlignedRect());
}

} // namespace

std::vector<QRect> AmbientGeometry::cloudAreas(double t, QSizeF size)
{
    std::vector<QRect> areas;
    for (int c = 0; c < cloudCount; ++c)
        addArea(areas, cloud(c, cloudTime(t), size), cloudBlur);
    return areas;
}

std::vector<QRect> AmbientGeometry::moteAreas(const std::array<Mote, moteCount> &motes, double t,
                                              QSizeF size)
{
    std::vector<QRect> areas;
    for (const Mote &m : motes)
        addArea(areas, moteRect(m, t, size), moteBlur);
    return areas;
}
