#include "world/ui/MapFonts.h"

#include <QFontInfo>
#include <QGuiApplication>

namespace {

const QString emojiFamily = QStringLiteral("Noto Color Emoji");

} // namespace

QFont MapFonts::serif(double pixelSize, QFont::Weight weight)
{
    QFont f;
    f.setFamilies({QStringLiteral("Noto Serif"), QStringLiteral("DejaVu Serif"),
                   QStringLiteral("serif"), emojiFamily});
    f.setStyleHint(QFont::Serif);
    f.setPixelSize(std::max(1, int(std::lround(pixelSize))));
    f.setWeight(weight);
    return f;
}

QFont MapFonts::system(double pixelSize, QFont::Weight weight)
{
    QFont f = QGuiApplication::font();
    // The face the platform actually resolved: a generic name first would let the emoji font,
    // which also has digits and spaces, win over the text font's fallback.
    f.setFamilies({QFontInfo(f).family(), emojiFamily});
    f.setPixelSize(std::max(1, int(std::lround(pixelSize))));
    f.setWeight(weight);
    return f;
}
