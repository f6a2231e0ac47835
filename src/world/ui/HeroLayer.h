#pragma once

#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <functional>
#include <optional>

class Stamps;
class Game;
class HeroPrompt;
class Model;
class Player;
class QPainter;
class QWidget;

// The hero on the map: his glyph over a ground shadow, mirrored when he faces left and bobbing
// while he walks; his floating message; and the prompt panel of what he can do where he stands.
// The glyph and the message are painted by the map; the panel is a real widget on the map.
class HeroLayer : public QObject
{
    Q_OBJECT

public:
    static constexpr double glyphSize = 30;
    static constexpr double floaterLow = 44;  // above the hero point, without the panel
    static constexpr double floaterHigh = 78; // with the panel in between

    HeroLayer(Player &player, Model &model, Game &game, bool reduceMotion, QWidget *host);

    void setActions(std::function<void()> enter, std::function<void()> fight,
                    std::function<void()> rename);

    void paint(QPainter &painter, Stamps &stamps, double now) const;
    // The world area the hero and his message cover at `now`.
    [[nodiscard]] QRectF bounds(double now) const;
    [[nodiscard]] bool animating(double now) const;
    // Puts the panel beside the hero, for a world drawn at `cameraOffset` in the host.
    void place(QPointF cameraOffset);
    // The panel's place in world coordinates, shown or not.
    [[nodiscard]] QRectF promptBox() const { return panelBox(); }

    [[nodiscard]] HeroPrompt *prompt() const { return m_prompt; }
    // The hero's name, ", standing in " and his territory's title, or "the sea".
    [[nodiscard]] QString accessibleLabel() const;

Q_SIGNALS:
    // Something the hero shows changed; the map repaints `bounds`.
    void changed();

private:
    struct Shown
    {
        QString text;
        double since = 0;
    };

    void floaterChanged();
    void refreshChoices();
    [[nodiscard]] double bob(double now) const;
    // Where the panel and the message go, in world coordinates: inside the view, above the hero
    // or, where that is off the view or over his territory's monster, below them both.
    [[nodiscard]] QRectF visibleWorld() const;
    [[nodiscard]] std::optional<QRectF> monsterBox() const;
    [[nodiscard]] bool below() const;
    [[nodiscard]] double belowTop() const;
    [[nodiscard]] QRectF insideView(QRectF box) const;
    [[nodiscard]] QRectF panelBox() const;
    [[nodiscard]] QRectF floaterBox(const QString &text) const;
    void paintFloater(QPainter &painter, const Shown &shown, double progress, bool entering) const;

    Player &m_player;
    Model &m_model;
    Game &m_game;
    bool m_reduceMotion;
    HeroPrompt *m_prompt;
    std::function<void()> m_enter;
    std::function<void()> m_fight;
    std::function<void()> m_rename;
    std::optional<Shown> m_floater;
    std::optional<Shown> m_leaving;
    std::optional<QString> m_floaterId;
};
