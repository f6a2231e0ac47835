#include "magic/Spell.h"

namespace {

struct Entry
{
    const char *emoji;
    const char *name;
    int cost;
    Sound::Sfx sound;
    const char *description;
};

const std::array<Entry, 5> &table()
{
    static const std::array<Entry, 5> t = {{
        {"✨", "Reveal", 2, Sound::Sfx::reveal(),
         "Lift the fog from every territory in this realm."},
        {"🔮", "Treasure Sense", 1, Sound::Sfx::sense(),
         "A golden trail leads to this realm's richest bounty."},
        {"🌀", "Teleport", 1, Sound::Sfx::teleport(), "Blink to the biggest monster in this realm."},
        {"🔥", "Fireball", 3, Sound::Sfx::fireball(),
         "Burn every ✅ safe bounty in this realm. They go to the Trash, so nothing is lost for "
         "good."},
        {"🏠", "Recall", 1, Sound::Sfx::recall(), "Return to the top of your world."},
    }};
    return t;
}

const Entry &entry(Spell s)
{
    return table()[static_cast<std::size_t>(Spells::index(s))];
}

} // namespace

QString Spells::key(Spell s)
{
    return QString::number(index(s) + 1);
}

QString Spells::emoji(Spell s)
{
    return QString::fromUtf8(entry(s).emoji);
}

QString Spells::name(Spell s)
{
    return QString::fromUtf8(entry(s).name);
}

int Spells::cost(Spell s)
{
    return entry(s).cost;
}

Sound::Sfx Spells::sound(Spell s)
{
    return entry(s).sound;
}

QString Spells::description(Spell s)
{
    return QString::fromUtf8(entry(s).description);
}
