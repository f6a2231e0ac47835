#pragma once

#include <QProxyStyle>

// Menus cannot mix fonts within one item: with the text font first a leading emoji comes out in
// black ("⚔️"), with the emoji font first the spaces grow wide. Items whose text starts with an
// emoji therefore carry that emoji, drawn in colour, as their icon, and this style leaves it out
// of the drawn text. The action's text itself stays whole (accessibility, tests).
class EmojiMenuStyle : public QProxyStyle
{
    Q_OBJECT

public:
    EmojiMenuStyle();

    // The emoji that opens `text`, followed by a space; empty when there is none.
    [[nodiscard]] static QString leadingEmoji(const QString &text);
    [[nodiscard]] static QIcon icon(const QString &emoji, int size = 16);

    void drawControl(ControlElement element, const QStyleOption *option, QPainter *painter,
                     const QWidget *widget = nullptr) const override;
};
