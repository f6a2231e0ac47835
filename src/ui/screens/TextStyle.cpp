#include "ui/screens/TextStyle.h"

#include "platform/Appearance.h"

#include <QApplication>
#include <QFontInfo>
#include <QPalette>
#include <QWidget>

namespace {

QFont sized(int pixels, QFont::Weight weight = QFont::Normal)
{
    QFont f = QApplication::font();
    // A generic name such as "Sans Serif" would let the emoji font, which Emoji::mixedFont puts
    // second, supply spaces and digits; the resolved family keeps them in the text face.
    f.setFamily(QFontInfo(f).family());
    f.setPixelSize(pixels);
    f.setWeight(weight);
    return f;
}

} // namespace

namespace TextStyle {

QFont title()
{
    return sized(22);
}
QFont title2()
{
    return sized(17);
}
QFont title3()
{
    return sized(15);
}
QFont headline()
{
    return sized(13, QFont::DemiBold);
}
QFont body()
{
    return sized(13);
}
QFont callout()
{
    return sized(12);
}
QFont subheadline()
{
    return sized(11);
}
QFont caption()
{
    return sized(10);
}
QFont caption2()
{
    return sized(9);
}

QFont weighted(QFont font, QFont::Weight weight)
{
    font.setWeight(weight);
    return font;
}

void makeSecondary(QWidget *widget)
{
    widget->setForegroundRole(QPalette::PlaceholderText);
}

QColor secondary(const QPalette &palette)
{
    return palette.color(QPalette::PlaceholderText);
}

QColor hover(const QPalette &palette)
{
    QColor c = Appearance::ink(palette);
    c.setAlphaF(Appearance::isDark(palette) ? 0.10 : 0.07);
    return c;
}

QColor track(const QPalette &palette)
{
    QColor c = Appearance::ink(palette);
    c.setAlphaF(0.12);
    return c;
}

QColor accent(const QPalette &palette)
{
    return palette.color(QPalette::Highlight);
}

} // namespace TextStyle
