#include "sound/Sfx.h"

#include <array>

namespace {

using Kind = Sound::Sfx::Kind;

constexpr std::array<const char *, 18> kindNames = {
    "hover",       "dive",  "up",       "click",    "slay",   "levelUp",
    "achievement", "quest", "scanDone", "denied",   "step",   "discover",
    "reveal",      "sense", "teleport", "fireball", "recall", "noMana",
};

constexpr std::array<const char *, 5> tierNames = {"microbe", "gremlin", "ogre", "dragon", "titan"};

bool carriesTier(Kind kind)
{
    return kind == Kind::hover || kind == Kind::slay;
}

} // namespace

QString Sound::Sfx::name() const
{
    QString text = QLatin1String(kindNames[std::size_t(m_kind)]);
    if (m_tier)
        text += QLatin1Char(':') + QLatin1String(tierNames[std::size_t(Tiers::index(*m_tier))]);
    return text;
}

std::optional<Sound::Sfx> Sound::Sfx::fromName(QStringView name)
{
    const auto colon = name.indexOf(QLatin1Char(':'));
    const QStringView head = colon < 0 ? name : name.left(colon);
    for (std::size_t k = 0; k < kindNames.size(); ++k) {
        if (head != QLatin1String(kindNames[k]))
            continue;
        const auto kind = Kind(k);
        if (carriesTier(kind) != (colon >= 0))
            return std::nullopt;
        if (colon < 0)
            return Sfx(kind);
        const QStringView tail = name.mid(colon + 1);
        for (std::size_t t = 0; t < tierNames.size(); ++t) {
            if (tail == QLatin1String(tierNames[t]))
                return Sfx(kind, Tier(t));
        }
        return std::nullopt;
    }
    return std::nullopt;
}

std::vector<Sound::Sfx> Sound::Sfx::all()
{
    std::vector<Sfx> list;
    for (std::size_t k = 0; k < kindNames.size(); ++k) {
        const auto kind = Kind(k);
        if (!carriesTier(kind)) {
            list.push_back(Sfx(kind));
            continue;
        }
        for (const Tier t : Tiers::all)
            list.push_back(Sfx(kind, t));
    }
    return list;
}
