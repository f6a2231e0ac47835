#include "game/Achievement.h"

const std::vector<Achievement> &Achievement::all()
{
    static const std::vector<Achievement> table = [] {
        const auto a = [](const char *id, const char *emoji, const char *title,
                          const char *detail) {
            return Achievement{QString::fromUtf8(id), QString::fromUtf8(emoji),
                               QString::fromUtf8(title), QString::fromUtf8(detail)};
        };
        return std::vector<Achievement>{
            a("first_scan", "🧭", "Cartographer", "Complete your first scan"),
            a("explorer", "🥾", "Explorer", "Visit 25 different folders"),
            a("deep_diver", "🤿", "Deep Diver", "Drill 8 levels deep"),
            a("dragon", "🐉", "Dragon Spotter", "Find a folder over 10 GB"),
            a("titan", "🗿", "Titan Spotter", "Find a folder over 50 GB"),
            a("hoarder", "📚", "Hoard Finder", "Find a folder with 100,000+ files"),
            a("first_blood", "⚔️", "First Blood", "Slay your first folder"),
            a("sweep_1g", "🧹", "Clean Sweep", "Reclaim 1 GB"),
            a("sweep_10g", "✨", "Tidy Legend", "Reclaim 10 GB"),
            a("sweep_100g", "🏆", "Disk Whisperer", "Reclaim 100 GB"),
            a("quest", "📜", "Questor", "Finish a daily quest"),
            a("bounty", "💰", "Bounty Hunter", "Claim a bounty from the board"),
            a("walker", "🗺️", "World Walker", "Discover 100 regions on foot"),
            a("archmage", "🔮", "Archmage", "Cast 25 spells"),
            a("namer", "✒️", "Mapmaker", "Give a territory a name of your own"),
        };
    }();
    return table;
}

std::optional<Achievement> Achievement::find(const QString &id)
{
    for (const Achievement &a : all()) {
        if (a.id == id)
            return a;
    }
    return std::nullopt;
}
