#include "game/Lore.h"

#include "game/Djb2.h"
#include "platform/DisplayName.h"
#include "platform/Utf8.h"

#include <QHash>
#include <QTextBoundaryFinder>
#include <array>
#include <span>

namespace {

const QHash<QString, QString> &knownNames()
{
    static const QHash<QString, QString> names = [] {
        const std::pair<const char *, const char *> table[] = {
            {"library", "The Great Archive"},
            {"caches", "Caverns of Echoes"},
            {"cache", "Echo Grotto"},
            {"downloads", "Port of Arrivals"},
            {"documents", "The Scriptorium"},
            {"desktop", "The Workbench"},
            {"pictures", "Gallery of Visions"},
            {"movies", "Theatre of Dreams"},
            {"music", "The Bardic Halls"},
            {"applications", "Guild of Artificers"},
            {"projects", "The Forge"},
            {"developer", "Tinkerer's Den"},
            {"logs", "Hall of Records"},
            {"containers", "The Jar Fields"},
            {"group containers", "The Shared Jars"},
            {"application support", "Quartermaster's Keep"},
            {"mobile documents", "Cloud Citadel"},
            {"mail", "Raven Post"},
            {"public", "Town Square"},
            {"node_modules", "The Endless Thicket"},
            {".git", "Chronicle Vault"},
            {".trash", "Sea of Forgotten Things"},
            {".npm", "Packrat's Burrow"},
            {".cache", "Hoarder's Attic"},
            {".ssh", "Keymaster's Lock"},
            {".docker", "Harbour of Crates"},
            {"com.docker.docker", "Harbour of Crates"},
            {".ollama", "Oracle's Grove"},
            {"models", "Hall of Oracles"},
            {"deriveddata", "Smithy Ashes"},
            {"venv", "Serpent's Den"},
            {".venv", "Serpent's Den"},
            {"target", "Rust Forge"},
            {"build", "Builder's Yard"},
            {"dist", "The Distillery"},
            {".next", "Next Frontier"},
            {"go", "Gopher Warrens"},
            {"pkg", "Parcel Depot"},
            {"src", "The Wellspring"},
            {"users", "Commons of Folk"},
            {"system", "The Clockwork Core"},
        };
        QHash<QString, QString> h;
        for (const auto &[folder, place] : table)
            h.insert(QString::fromUtf8(folder), QString::fromUtf8(place));
        return h;
    }();
    return names;
}

constexpr std::array<const char *, 4> microbeTemplates = {"Meadows of %@", "%@ Downs", "%@ Fields",
                                                          "Little %@"};
constexpr std::array<const char *, 4> gremlinTemplates = {"%@ Woods", "Glade of %@", "%@ Hollow",
                                                          "%@ Copse"};
constexpr std::array<const char *, 4> ogreTemplates = {"Forest of %@", "%@ Weald", "Deepwood %@",
                                                       "%@ Wildwood"};
constexpr std::array<const char *, 4> dragonTemplates = {"%@ Highlands", "Crags of %@", "%@ Ridge",
                                                         "Dragonback %@"};
constexpr std::array<const char *, 4> titanTemplates = {"Peaks of %@", "Mount %@", "%@ Spires",
                                                        "Throne of %@"};
constexpr std::array<const char *, 3> islandTemplates = {"%@ Isles", "%@ Shoals", "%@ Reef"};
constexpr std::array<const char *, 4> veilWords = {"Veiled", "Secret", "Hidden", "Shrouded"};

std::span<const char *const> templates(std::optional<Tier> tier)
{
    if (!tier)
        return islandTemplates;
    switch (*tier) {
    case Tier::microbe:
        return microbeTemplates;
    case Tier::gremlin:
        return gremlinTemplates;
    case Tier::ogre:
        return ogreTemplates;
    case Tier::dragon:
        return dragonTemplates;
    case Tier::titan:
        break;
    }
    return titanTemplates;
}

// The first user-perceived character upper-cased, the rest untouched.
QString capitalized(const QString &piece)
{
    // Most names are ASCII: two ASCII characters in a row end the first grapheme after one.
    if (!piece.isEmpty() && piece[0].unicode() < 0x80 && piece[0] != u'\r' &&
        (piece.size() == 1 || piece[1].unicode() < 0x80)) {
        QString out = piece;
        out[0] = out[0].toUpper();
        return out;
    }
    QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, piece);
    const qsizetype end = graphemes.toNextBoundary();
    if (end <= 0)
        return piece;
    return piece.left(end).toUpper() + piece.mid(end);
}

bool isSeparator(QChar c)
{
    return c == u'.' || c == u'_' || c == u'-' || c == u'~';
}

// Runs of . _ - ~ become one space, spaces and tabs are trimmed from both ends, the rest is split
// at spaces into at most three words whose first characters are upper-cased, joined by spaces.
// Done in one pass: this runs for every folder of a report.
QString cleaned(const QString &folderName)
{
    const auto trimmable = [](QChar c) { return c == u' ' || c == u'\t' || isSeparator(c); };
    qsizetype begin = 0;
    qsizetype end = folderName.size();
    while (begin < end && trimmable(folderName[begin]))
        ++begin;
    while (end > begin && trimmable(folderName[end - 1]))
        --end;

    QString joined;
    joined.reserve(end - begin);
    int words = 0;
    for (qsizetype i = begin; i < end && words < 3;) {
        if (folderName[i] == u' ' || isSeparator(folderName[i])) {
            ++i;
            continue;
        }
        qsizetype j = i;
        while (j < end && folderName[j] != u' ' && !isSeparator(folderName[j]))
            ++j;
        if (words++ > 0)
            joined.append(u' ');
        joined.append(capitalized(folderName.mid(i, j - i)));
        i = j;
    }
    return joined.isEmpty() ? folderName : joined;
}

} // namespace

QString Lore::name(std::string_view folderName, std::optional<Tier> tier)
{
    const QString decoded = Utf8::lossless(folderName);
    static const qsizetype longestKnown = [] {
        qsizetype n = 0;
        for (auto it = knownNames().cbegin(); it != knownNames().cend(); ++it)
            n = std::max(n, it.key().size());
        return n;
    }();
    if (decoded.size() <= longestKnown) {
        if (const auto known = knownNames().constFind(decoded.toLower());
            known != knownNames().cend())
            return *known;
    }

    const std::uint64_t h = djb2(folderName);
    const auto list = templates(tier);
    const QLatin1StringView chosen(list[h % list.size()]);
    const qsizetype slot = chosen.indexOf(QLatin1StringView("%@"));
    const QString name = DisplayName::of(cleaned(decoded));
    QString place;
    place.reserve(chosen.size() + name.size() + 10);
    place.append(chosen.left(slot)).append(name).append(chosen.mid(slot + 2));
    if (folderName.starts_with('.'))
        place = QString::fromUtf8(veilWords[(h / 7) % veilWords.size()]) + u' ' + place;
    return place;
}

QString Lore::placeName(std::optional<std::string_view> path, std::string_view folderName,
                        std::optional<Tier> tier, const CustomNames &customNames, bool fantasyNames)
{
    if (path) {
        // A hand-edited settings file can put anything here.
        if (const auto custom = customNames.find(*path); custom != customNames.end())
            return DisplayName::of(custom->second);
    }
    if (fantasyNames)
        return name(folderName, tier);
    return DisplayName::of(folderName);
}
