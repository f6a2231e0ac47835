#include "magic/SpellCaster.h"

#include "game/Game.h"
#include "magic/Magic.h"
#include "magic/SpellFX.h"
#include "scan/Fmt.h"
#include "session/Model.h"
#include "world/Player.h"

#include <algorithm>

namespace {

constexpr double revealDuration = 1.4;
constexpr double senseDuration = 8.0;
constexpr double teleportDuration = 0.8;
constexpr double fireDuration = 1.4;
constexpr double recallDuration = 0.6;

bool isUnder(const std::string &path, const std::string &folder)
{
    return path == folder ||
           (path.size() > folder.size() && path.starts_with(folder) && path[folder.size()] == '/');
}

std::uint64_t folderBytes(const Region &region)
{
    const NodePtr *node = region.tile.folder();
    return node && *node ? (*node)->size() : 0;
}

} // namespace

SpellCaster::SpellCaster(Magic &magic, Model &model, Game &game, Player &player, QObject *parent)
    : QObject(parent), m_magic(magic), m_model(model), m_game(game), m_player(player)
{}

void SpellCaster::cast(Spell spell)
{
    if (!m_player.layout() || !m_model.current())
        return;
    if (!m_magic.canCast(spell)) {
        m_model.play(Sound::Sfx::noMana());
        m_player.say(QStringLiteral("Not enough mana (%1 needed)").arg(Spells::cost(spell)));
        return;
    }
    const QPointF hero = m_player.heroPoint();
    switch (spell) {
    case Spell::reveal:
        reveal(hero);
        break;
    case Spell::sense:
        sense(hero);
        break;
    case Spell::teleport:
        teleport(hero);
        break;
    case Spell::fireball:
        fireball();
        break;
    case Spell::recall:
        recall(hero);
        break;
    }
}

void SpellCaster::reveal(QPointF hero)
{
    std::vector<std::string> hidden;
    for (const Region &region : m_player.layout()->regions) {
        if (region.path && !region.explored)
            hidden.push_back(*region.path);
    }
    if (hidden.empty()) {
        m_player.say(QStringLiteral("Nothing hidden in this realm"));
        return;
    }
    spend(Spell::reveal);
    m_player.add(
        SpellFX::make(SpellFX::Kind::ring, {hero}, revealDuration, m_player.clock().now()));
    for (const std::string &path : hidden)
        m_game.discover(path);
    m_player.say(QStringLiteral("The fog lifts from %1 territories").arg(hidden.size()));
}

void SpellCaster::sense(QPointF hero)
{
    std::optional<Region> richest;
    std::uint64_t best = 0;
    for (const Region &region : m_player.layout()->regions) {
        if (!region.path)
            continue;
        std::uint64_t total = 0;
        for (const Advice &a : m_model.adviceUnder(*region.path))
            total += a.size;
        if (total > best) {
            best = total;
            richest = region;
        }
    }
    if (!richest) {
        m_player.say(QStringLiteral("No treasure in this realm"));
        return;
    }
    spend(Spell::sense);
    m_player.add(SpellFX::make(SpellFX::Kind::trail, {hero, richest->capital}, senseDuration,
                               m_player.clock().now()));
    m_player.say(QStringLiteral("Treasure: %1 in %2").arg(Fmt::bytes(best), richest->title));
}

void SpellCaster::teleport(QPointF hero)
{
    const std::vector<Region> &regions = m_player.layout()->regions;
    std::vector<int> candidates;
    for (int i = 0; i < static_cast<int>(regions.size()); ++i) {
        if (regions[std::size_t(i)].hasMonster())
            candidates.push_back(i);
    }
    if (candidates.empty()) {
        m_player.say(QStringLiteral("Nowhere to go"));
        return;
    }
    std::stable_sort(candidates.begin(), candidates.end(), [&regions](int a, int b) {
        return folderBytes(regions[std::size_t(a)]) > folderBytes(regions[std::size_t(b)]);
    });
    const std::optional<int> standing = m_player.regionIndex();
    const auto away = std::find_if(candidates.begin(), candidates.end(),
                                   [&standing](int i) { return !standing || i != *standing; });
    const Region &chosen =
        regions[std::size_t(away != candidates.end() ? *away : candidates.front())];
    const QPointF destination = chosen.besideMonster();

    spend(Spell::teleport);
    m_player.add(SpellFX::make(SpellFX::Kind::swirl, {hero, destination}, teleportDuration,
                               m_player.clock().now()));
    Player &player = m_player;
    m_player.clock().after(teleportDelay, &m_player,
                           [&player, destination] { player.jump(destination); });
}

void SpellCaster::fireball()
{
    std::vector<Advice> safe;
    for (Advice &a : m_model.adviceUnder(m_model.current()->path())) {
        if (a.safety == Advice::Safety::safe && a.actionable && m_model.canSlay(a.path))
            safe.push_back(std::move(a));
    }
    if (safe.empty()) {
        m_player.say(QStringLiteral("No safe bounties to burn here"));
        return;
    }
    setPendingFire(std::move(safe));
}

void SpellCaster::confirmFireball()
{
    if (!m_pendingFire)
        return;
    std::vector<Advice> items = std::move(*m_pendingFire);
    setPendingFire(std::nullopt);
    if (!m_magic.canCast(Spell::fireball))
        return;
    spend(Spell::fireball);

    std::vector<QPointF> points;
    if (m_player.layout()) {
        const std::vector<Region> &regions = m_player.layout()->regions;
        for (const Advice &item : items) {
            const auto home =
                std::find_if(regions.begin(), regions.end(), [&item](const Region &r) {
                    return r.path && isUnder(item.path, *r.path);
                });
            if (home != regions.end())
                points.push_back(home->capital);
        }
    }
    if (points.empty())
        points.push_back(m_player.heroPoint());
    m_player.add(SpellFX::make(SpellFX::Kind::fire, std::move(points), fireDuration,
                               m_player.clock().now()));

    Model &model = m_model;
    Game &game = m_game;
    m_player.clock().after(fireballDelay, this, [&model, &game, items = std::move(items)] {
        model.slayAll(items, game);
    });
}

void SpellCaster::cancelFireball()
{
    setPendingFire(std::nullopt);
}

void SpellCaster::recall(QPointF hero)
{
    if (!m_model.root() || m_model.current() == m_model.root()) {
        m_player.say(QStringLiteral("You're already home"));
        return;
    }
    spend(Spell::recall);
    m_player.add(
        SpellFX::make(SpellFX::Kind::swirl, {hero}, recallDuration, m_player.clock().now()));
    Model &model = m_model;
    Game &game = m_game;
    m_player.clock().after(recallDelay, this, [&model, &game] {
        if (model.root())
            model.go(model.root(), game);
    });
}

void SpellCaster::spend(Spell spell)
{
    m_magic.spend(spell);
    m_game.spellsCast(m_magic.casts());
    m_model.play(Spells::sound(spell));
}

void SpellCaster::setPendingFire(std::optional<std::vector<Advice>> items)
{
    if (!items && !m_pendingFire)
        return;
    m_pendingFire = std::move(items);
    Q_EMIT pendingFireChanged();
}

QString SpellCaster::fireballTitle(const std::vector<Advice> &items)
{
    std::uint64_t total = 0;
    for (const Advice &a : items)
        total += a.size;
    return QStringLiteral("Burn %1 safe bounties in this realm (%2)?")
        .arg(items.size())
        .arg(Fmt::bytes(total));
}

QString SpellCaster::fireballMessage()
{
    return QStringLiteral("Caches, logs and build leftovers that are recreated automatically. "
                          "Everything goes to the Trash, so you can still put it back.");
}

QString SpellCaster::fireballAction()
{
    return QStringLiteral("Cast Fireball 🔥");
}
