#include "platform/Appearance.h"

#include <algorithm>
#include <cmath>

namespace Appearance {

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < 128;
}

QColor ink(const QPalette &palette)
{
    return palette.color(QPalette::WindowText);
}

double contrast(const QColor &a, const QColor &b)
{
    const auto luminance = [](const QColor &c) {
        const auto linear = [](double v) {
            return v <= 0.03928 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * linear(c.redF()) + 0.7152 * linear(c.greenF()) + 0.0722 * linear(c.blueF());
    };
    const double la = luminance(a);
    const double lb = luminance(b);
    return (std::max(la, lb) + 0.05) / (std::min(la, lb) + 0.05);
}

QPalette palette(Scheme scheme)
{
    QPalette p;
    const bool dark = scheme == Scheme::dark;
    const auto set = [&p](QPalette::ColorRole role, QColor active, QColor disabled = {}) {
        p.setColor(QPalette::Active, role, active);
        p.setColor(QPalette::Inactive, role, active);
        p.setColor(QPalette::Disabled, role, disabled.isValid() ? disabled : active);
    };
    if (dark) {
        set(QPalette::Window, QColor(0x28, 0x28, 0x2B));
        set(QPalette::WindowText, QColor(0xF2, 0xF2, 0xF4), QColor(0x7A, 0x7A, 0x80));
        set(QPalette::Base, QColor(0x1E, 0x1E, 0x21));
        set(QPalette::AlternateBase, QColor(0x2F, 0x2F, 0x33));
        set(QPalette::Text, QColor(0xF2, 0xF2, 0xF4), QColor(0x7A, 0x7A, 0x80));
        set(QPalette::Button, QColor(0x3A, 0x3A, 0x3F));
        set(QPalette::ButtonText, QColor(0xF2, 0xF2, 0xF4), QColor(0x7A, 0x7A, 0x80));
        set(QPalette::Highlight, QColor(0x2F, 0x7D, 0xE1));
        set(QPalette::HighlightedText, Qt::white);
        set(QPalette::ToolTipBase, QColor(0x3A, 0x3A, 0x3F));
        set(QPalette::ToolTipText, QColor(0xF2, 0xF2, 0xF4));
        set(QPalette::PlaceholderText, QColor(0x8E, 0x8E, 0x93));
        set(QPalette::Light, QColor(0x4A, 0x4A, 0x50));
        set(QPalette::Midlight, QColor(0x40, 0x40, 0x46));
        set(QPalette::Mid, QColor(0x30, 0x30, 0x34));
        set(QPalette::Dark, QColor(0x18, 0x18, 0x1A));
        set(QPalette::Shadow, Qt::black);
        set(QPalette::Link, QColor(0x5A, 0xA5, 0xFF));
    } else {
        set(QPalette::Window, QColor(0xEC, 0xEC, 0xEE));
        set(QPalette::WindowText, QColor(0x1D, 0x1D, 0x1F), QColor(0xA0, 0xA0, 0xA5));
        set(QPalette::Base, Qt::white);
        set(QPalette::AlternateBase, QColor(0xF5, 0xF5, 0xF7));
        set(QPalette::Text, QColor(0x1D, 0x1D, 0x1F), QColor(0xA0, 0xA0, 0xA5));
        set(QPalette::Button, QColor(0xF7, 0xF7, 0xF9));
        set(QPalette::ButtonText, QColor(0x1D, 0x1D, 0x1F), QColor(0xA0, 0xA0, 0xA5));
        set(QPalette::Highlight, QColor(0x1F, 0x6F, 0xD6));
        set(QPalette::HighlightedText, Qt::white);
        set(QPalette::ToolTipBase, QColor(0xFF, 0xFF, 0xF2));
        set(QPalette::ToolTipText, QColor(0x1D, 0x1D, 0x1F));
        set(QPalette::PlaceholderText, QColor(0x8E, 0x8E, 0x93));
        set(QPalette::Light, Qt::white);
        set(QPalette::Midlight, QColor(0xE3, 0xE3, 0xE6));
        set(QPalette::Mid, QColor(0xC7, 0xC7, 0xCC));
        set(QPalette::Dark, QColor(0xA0, 0xA0, 0xA5));
        set(QPalette::Shadow, QColor(0x60, 0x60, 0x66));
        set(QPalette::Link, QColor(0x1F, 0x6F, 0xD6));
    }
    return p;
}

} // namespace Appearance
