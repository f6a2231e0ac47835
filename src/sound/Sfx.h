#pragma once

#include "game/Tier.h"

#include <QString>
#include <QStringView>
#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace Sound {

// The name of a sound effect. `hover` and `slay` carry the tier of their monster, so each tier
// is its own effect (and its own cache entry).
class Sfx
{
public:
    enum class Kind : int {
        hover,
        dive,
        up,
        click,
        slay,
        levelUp,
        achievement,
        quest,
        scanDone,
        denied,
        step,
        discover,
        reveal,
        sense,
        teleport,
        fireball,
        recall,
        noMana,
    };

    [[nodiscard]] static constexpr Sfx hover(Tier t) { return Sfx(Kind::hover, t); }
    [[nodiscard]] static constexpr Sfx dive() { return Sfx(Kind::dive); }
    [[nodiscard]] static constexpr Sfx up() { return Sfx(Kind::up); }
    [[nodiscard]] static constexpr Sfx click() { return Sfx(Kind::click); }
    [[nodiscard]] static constexpr Sfx slay(Tier t) { return Sfx(Kind::slay, t); }
    [[nodiscard]] static constexpr Sfx levelUp() { return Sfx(Kind::levelUp); }
    [[nodiscard]] static constexpr Sfx achievement() { return Sfx(Kind::achievement); }
    [[nodiscard]] static constexpr Sfx quest() { return Sfx(Kind::quest); }
    [[nodiscard]] static constexpr Sfx scanDone() { return Sfx(Kind::scanDone); }
    [[nodiscard]] static constexpr Sfx denied() { return Sfx(Kind::denied); }
    [[nodiscard]] static constexpr Sfx step() { return Sfx(Kind::step); }
    [[nodiscard]] static constexpr Sfx discover() { return Sfx(Kind::discover); }
    [[nodiscard]] static constexpr Sfx reveal() { return Sfx(Kind::reveal); }
    [[nodiscard]] static constexpr Sfx sense() { return Sfx(Kind::sense); }
    [[nodiscard]] static constexpr Sfx teleport() { return Sfx(Kind::teleport); }
    [[nodiscard]] static constexpr Sfx fireball() { return Sfx(Kind::fireball); }
    [[nodiscard]] static constexpr Sfx recall() { return Sfx(Kind::recall); }
    [[nodiscard]] static constexpr Sfx noMana() { return Sfx(Kind::noMana); }

    [[nodiscard]] constexpr Kind kind() const { return m_kind; }
    // The payload of `hover` and `slay`; nullopt for every other case.
    [[nodiscard]] constexpr std::optional<Tier> tier() const { return m_tier; }

    // Distinct for every distinct effect.
    [[nodiscard]] constexpr std::size_t hash() const
    {
        const auto payload = m_tier ? std::size_t(Tiers::index(*m_tier)) + 1 : 0;
        return std::size_t(m_kind) * 8 + payload;
    }

    // "dive", "slay:titan": the names developer tools use.
    [[nodiscard]] QString name() const;
    [[nodiscard]] static std::optional<Sfx> fromName(QStringView name);

    // Every distinct effect, cases in declared order, tiers in tier order.
    [[nodiscard]] static std::vector<Sfx> all();

    friend constexpr bool operator==(const Sfx &, const Sfx &) = default;

private:
    constexpr explicit Sfx(Kind kind, std::optional<Tier> tier = std::nullopt)
        : m_kind(kind), m_tier(tier)
    {}

    Kind m_kind;
    std::optional<Tier> m_tier;
};

} // namespace Sound

template<> struct std::hash<Sound::Sfx>
{
    std::size_t operator()(const Sound::Sfx &sfx) const noexcept { return sfx.hash(); }
};
