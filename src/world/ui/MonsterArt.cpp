#include "world/ui/MonsterArt.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <cmath>
#include <initializer_list>
#include <numbers>

namespace {

const QColor ink(0x1D, 0x1A, 0x24);
const QColor eyeYellow(0xFF, 0xD3, 0x4D);

QPen outlinePen(double width = 3)
{
    return QPen(ink, width, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin);
}

QPen roundPen(const QColor &color, double width)
{
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

QPolygonF polygon(std::initializer_list<QPointF> points)
{
    return QPolygonF(QList<QPointF>(points));
}

void fill(QPainter &p, const QPainterPath &path, const QColor &color)
{
    QPainterPath nonZero = path;
    nonZero.setFillRule(Qt::WindingFill);
    p.fillPath(nonZero, color);
}

void fillEllipse(QPainter &p, const QRectF &r, const QColor &color)
{
    QPainterPath path;
    path.addEllipse(r);
    fill(p, path, color);
}

void fillRounded(QPainter &p, const QRectF &r, double radius, const QColor &color)
{
    QPainterPath path;
    path.addRoundedRect(r, radius, radius);
    fill(p, path, color);
}

void stroke(QPainter &p, const QPainterPath &path, const QPen &pen)
{
    p.strokePath(path, pen);
}

void filledOutlined(QPainter &p, const QPolygonF &poly, const QColor &color)
{
    QPainterPath path;
    path.addPolygon(poly);
    path.closeSubpath();
    fill(p, path, color);
    stroke(p, path, outlinePen());
}

void outlinedEllipse(QPainter &p, const QRectF &r, const QColor &color)
{
    QPainterPath path;
    path.addEllipse(r);
    fill(p, path, color);
    stroke(p, path, outlinePen());
}

void line(QPainter &p, QPointF a, QPointF b, const QPen &pen)
{
    QPainterPath path(a);
    path.lineTo(b);
    stroke(p, path, pen);
}

void microbe(QPainter &p)
{
    QPainterPath spikes;
    for (int i = 0; i < 16; ++i) {
        const double a = i * std::numbers::pi / 8;
        const double r = i % 2 == 0 ? 40 : 35;
        spikes.moveTo(50 + 26 * std::cos(a), 58 + 26 * std::sin(a));
        spikes.lineTo(50 + r * std::cos(a), 58 + r * std::sin(a));
    }
    stroke(p, spikes, QPen(QColor(0x12, 0x8A, 0x5E), 3.5, Qt::SolidLine, Qt::RoundCap));
    fillEllipse(p, {23, 31, 54, 54}, QColor(0x1B, 0xAF, 0x7A));
    fillEllipse(p, {32, 38, 15, 8}, QColor(255, 255, 255, 102));
    fillEllipse(p, {38, 44, 24, 24}, Qt::white);
    fillEllipse(p, {46, 50, 10, 11}, ink);
    fillEllipse(p, {48, 51, 3, 3}, Qt::white);
    QPainterPath mouth({42, 74});
    mouth.quadTo({50, 80}, {58, 74});
    stroke(p, mouth, roundPen(ink, 2.5));
}

void gremlin(QPainter &p)
{
    const QColor skin(0x7B, 0x61, 0xD6);
    filledOutlined(p, polygon({{32, 48}, {6, 18}, {46, 36}}), skin);
    filledOutlined(p, polygon({{68, 48}, {94, 18}, {54, 36}}), skin);
    for (const QPolygonF &inner :
         {polygon({{30, 43}, {15, 26}, {40, 37}}), polygon({{70, 43}, {85, 26}, {60, 37}})}) {
        QPainterPath path;
        path.addPolygon(inner);
        path.closeSubpath();
        fill(p, path, QColor(0xE8, 0x7B, 0xA4));
    }
    fillEllipse(p, {21, 30, 58, 56}, skin);
    fillEllipse(p, {35, 60, 30, 22}, QColor(0x9A, 0x85, 0xE6));
    for (const double x : {32.0, 55.0}) {
        outlinedEllipse(p, {x, 43, 14, 14}, eyeYellow);
        fillRounded(p, {x + 5.5, 45, 3, 10}, 1.5, ink);
    }
    QPainterPath mouth({35, 66});
    mouth.quadTo({50, 82}, {65, 66});
    mouth.closeSubpath();
    fill(p, mouth, Qt::white);
    const QPen teeth(ink, 1.5, Qt::SolidLine, Qt::FlatCap);
    for (const double x : {42.0, 50.0, 58.0})
        line(p, {x, 66}, {x, 72}, teeth);
}

void ogre(QPainter &p)
{
    const QColor horn(0xEF, 0xE3, 0xC8);
    filledOutlined(p, polygon({{27, 38}, {18, 10}, {40, 30}}), horn);
    filledOutlined(p, polygon({{73, 38}, {82, 10}, {60, 30}}), horn);
    fillRounded(p, {14, 24, 72, 68}, 28, QColor(0xD9, 0x78, 0x3A));
    fillEllipse(p, {24, 66, 52, 22}, QColor(0xE8, 0x9A, 0x5F));
    for (const double x : {33.0, 56.0}) {
        outlinedEllipse(p, {x, 47, 11, 10}, Qt::white);
        fillEllipse(p, {x + 3.5, 49.5, 5, 5}, ink);
    }
    line(p, {29, 41}, {46, 47}, roundPen(ink, 5));
    line(p, {71, 41}, {54, 47}, roundPen(ink, 5));
    fillEllipse(p, {44, 57, 12, 8}, QColor(0xA8, 0x57, 0x2A));
    QPainterPath mouth({33, 76});
    mouth.quadTo({50, 72}, {67, 76});
    stroke(p, mouth, roundPen(ink, 3));
    filledOutlined(p, polygon({{37, 76}, {41, 62}, {46, 75}}), Qt::white);
    filledOutlined(p, polygon({{54, 75}, {59, 62}, {63, 76}}), Qt::white);
}

void dragon(QPainter &p)
{
    const QColor wing(0xA8, 0x32, 0x32);
    const QColor gold = QColor::fromRgbF(0.953f, 0.690f, 0.353f);
    filledOutlined(p, polygon({{36, 52}, {3, 16}, {14, 42}, {5, 58}, {30, 68}}), wing);
    filledOutlined(p, polygon({{64, 52}, {97, 16}, {86, 42}, {95, 58}, {70, 68}}), wing);
    filledOutlined(p, polygon({{36, 32}, {41, 12}, {48, 30}}), gold);
    filledOutlined(p, polygon({{46, 29}, {52, 8}, {58, 29}}), gold);
    filledOutlined(p, polygon({{56, 30}, {63, 12}, {66, 33}}), gold);
    fillEllipse(p, {23, 25, 54, 66}, QColor(0xD9, 0x44, 0x44));
    fillEllipse(p, {35, 58, 30, 30}, QColor(0xF3, 0xB0, 0x5A));
    const QPen scales(QColor(0xD9, 0x8A, 0x3A), 1.5, Qt::SolidLine, Qt::FlatCap);
    for (const double y : {66.0, 73.0, 80.0})
        line(p, {40, y}, {60, y}, scales);
    for (const double x : {32.0, 55.0}) {
        outlinedEllipse(p, {x, 38, 13, 11}, eyeYellow);
        fillRounded(p, {x + 5, 39.5, 3, 8}, 1.5, ink);
    }
    fillEllipse(p, {43, 52, 3.5, 3}, ink);
    fillEllipse(p, {53.5, 52, 3.5, 3}, ink);
    for (const QPolygonF &fang :
         {polygon({{42, 58}, {45, 65}, {48, 58}}), polygon({{52, 58}, {55, 65}, {58, 58}})}) {
        QPainterPath path;
        path.addPolygon(fang);
        path.closeSubpath();
        fill(p, path, Qt::white);
    }
}

QPainterPath titanCrown()
{
    QPainterPath crown({16, 34});
    crown.lineTo(16, 28);
    crown.quadTo({16, 18}, {28, 18});
    crown.lineTo(72, 18);
    crown.quadTo({84, 18}, {84, 28});
    crown.lineTo(84, 32);
    for (int k = 0; k < 8; ++k) {
        const double x = 80 - 8 * k;
        crown.quadTo({x - 2, k % 2 == 0 ? 40.0 : 34.0}, {x - 4, 31});
    }
    crown.closeSubpath();
    return crown;
}

void titan(QPainter &p)
{
    fillRounded(p, {16, 18, 68, 76}, 12, QColor(0x8D, 0x8A, 0x85));
    fill(p, titanCrown(), QColor(0x5F, 0x8F, 0x3A));
    fillRounded(p, {22, 40, 56, 9}, 3, QColor(0x6B, 0x68, 0x63));

    const QColor glow(0x5E, 0xF2, 0xFF);
    QPainterPath eyes;
    eyes.addRoundedRect(QRectF(30, 50, 14, 7), 2, 2);
    eyes.addRoundedRect(QRectF(56, 50, 14, 7), 2, 2);
    // A soft halo of widening translucent strokes stands in for a blurred shadow.
    for (int i = 4; i >= 1; --i) {
        QColor halo = glow;
        halo.setAlphaF(0.12f);
        p.strokePath(eyes, QPen(halo, 2.0 * i, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    }
    fill(p, eyes, glow);

    const QPen crack = roundPen(QColor(0x5C, 0x59, 0x55), 2);
    for (const QPolygonF &poly :
         {polygon({{28, 64}, {34, 72}, {30, 84}}), polygon({{70, 60}, {64, 68}, {69, 78}})}) {
        QPainterPath path;
        path.addPolygon(poly);
        stroke(p, path, crack);
    }
    fillRounded(p, {40, 72, 20, 6}, 2, QColor(0x4A, 0x47, 0x43));
}

} // namespace

void MonsterArt::draw(QPainter &painter, Tier tier, const QRectF &square)
{
    if (square.width() <= 0 || square.height() <= 0)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(square.topLeft());
    painter.scale(square.width() / 100.0, square.height() / 100.0);
    switch (tier) {
    case Tier::microbe:
        microbe(painter);
        break;
    case Tier::gremlin:
        gremlin(painter);
        break;
    case Tier::ogre:
        ogre(painter);
        break;
    case Tier::dragon:
        dragon(painter);
        break;
    case Tier::titan:
        titan(painter);
        break;
    }
    painter.restore();
}
