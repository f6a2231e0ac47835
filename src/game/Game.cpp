#include "game/Game.h"

#include "game/Achievement.h"
#include "platform/Settings.h"
#include "platform/Utf8.h"
#include "scan/Fmt.h"
#include "scan/Node.h"
#include "sound/Sound.h"

#include <QGuiApplication>
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <sys/stat.h>

namespace {

// Paths are stored so that names which are not UTF-8 read back as the same bytes.
QString text(const std::string &bytes)
{
    return Utf8::lossless(bytes);
}

std::string bytesOf(const QString &s)
{
    return Utf8::bytes(s);
}

// Byte counts are stored as doubles. One that cannot be a byte count (not finite, negative
// beyond rounding, or too large) is treated as absent rather than guessed at.
std::uint64_t toByteCount(std::optional<double> stored)
{
    if (!stored || !std::isfinite(*stored) || *stored <= -1.0 || *stored >= 18446744073709551616.0)
        return 0;
    return *stored <= 0 ? 0 : static_cast<std::uint64_t>(*stored);
}

bool isNumber(const QVariant &v)
{
    switch (v.typeId()) {
    case QMetaType::Double:
    case QMetaType::Float:
    case QMetaType::Int:
    case QMetaType::LongLong:
    case QMetaType::UInt:
    case QMetaType::ULongLong:
        return true;
    default:
        return false;
    }
}

ToastQueue::SoundPlayer orShared(ToastQueue::SoundPlayer play)
{
    if (play)
        return play;
    return [](const Sound::Sfx &sfx) { Sound::shared().play(sfx); };
}

} // namespace

Game::Game(QObject *parent) : Game(Options{}, parent) {}

Game::Game(Options options, QObject *parent)
    : QObject(parent), m_options(std::move(options)), m_d(Settings::open()),
      m_toasts(m_options.toastDuration, orShared(m_options.play), this)
{
    connect(&m_toasts, &ToastQueue::currentChanged, this, &Game::toastChanged);
    load();
    checkTrash();
    m_trashTimer.setInterval(m_options.trashCheckInterval);
    connect(&m_trashTimer, &QTimer::timeout, this, &Game::checkTrash);
    m_trashTimer.start();
    if (auto *app = qobject_cast<QGuiApplication *>(QCoreApplication::instance())) {
        connect(app, &QGuiApplication::applicationStateChanged, this,
                [this](Qt::ApplicationState s) {
                    if (s == Qt::ApplicationActive)
                        checkTrash();
                });
    }
}

// Achievements unlocked since the last save (a rename, a spell) would otherwise be lost at quit.
Game::~Game()
{
    save();
}

void Game::load()
{
    const QSettings &d = *m_d;
    // Experience never decreases; a negative stored value can only be damage, so it counts as 0,
    // and a huge one is held where the level arithmetic stays exact.
    m_xp = std::clamp<qint64>(Settings::integer(d, QStringLiteral("xp")).value_or(0), 0, maxXP);
    m_reclaimed = toByteCount(Settings::number(d, QStringLiteral("reclaimed")));
    for (const QString &id :
         Settings::stringList(d, QStringLiteral("unlocked")).value_or(QStringList{})) {
        // An id no achievement has would count towards the fifteen without being one of them.
        if (Achievement::find(id))
            m_unlocked.insert(id);
    }
    for (const QString &p :
         Settings::stringList(d, QStringLiteral("visited")).value_or(QStringList{}))
        m_seen.insert(bytesOf(p));
    m_questDay = today();
    if (Settings::string(d, QStringLiteral("questDay")) == m_questDay)
        m_questBytes = toByteCount(Settings::number(d, QStringLiteral("questBytes")));
    m_hero = Settings::string(d, QStringLiteral("hero")).value_or(QStringLiteral("🧙"));
    m_heroName =
        Settings::string(d, QStringLiteral("heroName")).value_or(QStringLiteral("Sweeper"));
    m_fantasyNames = Settings::boolean(d, QStringLiteral("fantasyNames")).value_or(true);

    const QVariantMap names =
        Settings::map(d, QStringLiteral("customNames")).value_or(QVariantMap{});
    if (std::all_of(names.begin(), names.end(),
                    [](const QVariant &v) { return v.typeId() == QMetaType::QString; })) {
        for (auto it = names.begin(); it != names.end(); ++it)
            m_customNames.emplace(bytesOf(it.key()), it.value().toString());
    }
    const QVariantMap trashed = Settings::map(d, QStringLiteral("trashed")).value_or(QVariantMap{});
    if (std::all_of(trashed.begin(), trashed.end(), isNumber)) {
        for (auto it = trashed.begin(); it != trashed.end(); ++it)
            m_trashed.emplace(bytesOf(it.key()), it.value().toDouble());
    }
}

QString Game::today() const
{
    return m_options.now().toString(QStringLiteral("yyyy-MM-dd"));
}

std::uint64_t Game::trashedBytes() const
{
    double sum = 0;
    for (const auto &[path, bytes] : m_trashed)
        sum += bytes;
    return toByteCount(sum);
}

void Game::setHero(const QString &hero)
{
    if (hero == m_hero)
        return;
    m_hero = hero;
    m_d->setValue(QStringLiteral("hero"), hero);
    Q_EMIT heroChanged();
}

void Game::setHeroName(const QString &name)
{
    if (name == m_heroName)
        return;
    m_heroName = name;
    m_d->setValue(QStringLiteral("heroName"), name);
    Q_EMIT heroNameChanged();
}

void Game::setFantasyNames(bool on)
{
    if (on == m_fantasyNames)
        return;
    m_fantasyNames = on;
    m_d->setValue(QStringLiteral("fantasyNames"), on);
    Q_EMIT fantasyNamesChanged();
}

std::int64_t Game::floorXP(int level)
{
    const std::int64_t l = level - 1;
    return 50 * l * l;
}

int Game::level() const
{
    return static_cast<int>(
               std::sqrt(static_cast<double>(std::max<std::int64_t>(m_xp, 0)) / 50.0)) +
           1;
}

double Game::levelProgress() const
{
    const int l = level();
    return static_cast<double>(m_xp - floorXP(l)) /
           static_cast<double>(floorXP(l + 1) - floorXP(l));
}

std::int64_t Game::xpToNext() const
{
    return floorXP(level() + 1) - m_xp;
}

QString Game::titleFor(int level)
{
    static const char *const titles[] = {
        "Dust Bunny",      "Byte Scout",      "Folder Ranger", "Cache Hunter",
        "Gigabyte Knight", "Storage Paladin", "Disk Archmage", "Legend of the Dustmere"};
    return QString::fromUtf8(titles[std::min((std::max(level, 1) - 1) / 3, 7)]);
}

QString Game::title() const
{
    return titleFor(level());
}

std::int64_t Game::xpFor(std::uint64_t bytes)
{
    const auto units = static_cast<std::int64_t>(bytes / 50'000'000);
    return std::max<std::int64_t>(units, 5) * (Tiers::index(Tiers::ofBytes(bytes)) + 1);
}

void Game::gainXP(std::int64_t amount, std::optional<Toast> toast)
{
    const int before = level();
    m_xp = std::clamp<std::int64_t>(m_xp + std::max<std::int64_t>(amount, 0), 0, maxXP);
    Q_EMIT xpChanged();
    if (toast)
        post(std::move(*toast));
    const int now = level();
    if (now > before) {
        post(Toast::make(
            QStringLiteral("⬆️"), QStringLiteral("Level %1!").arg(now),
            QStringLiteral("%1 · %2 XP to level %3").arg(title()).arg(xpToNext()).arg(now + 1),
            Sound::Sfx::levelUp()));
        m_confetti = m_options.now();
        Q_EMIT confettiChanged();
    }
}

void Game::unlock(const QString &id)
{
    if (m_unlocked.contains(id))
        return;
    const std::optional<Achievement> a = Achievement::find(id);
    if (!a)
        return;
    m_unlocked.insert(id);
    m_xp = std::min<std::int64_t>(m_xp + 30, maxXP); // directly: no level-up of its own
    Q_EMIT unlockedChanged();
    Q_EMIT xpChanged();
    post(Toast::make(a->emoji, QStringLiteral("Achievement: ") + a->title,
                     a->detail + QStringLiteral(" · +30 XP"), Sound::Sfx::achievement()));
    m_confetti = m_options.now();
    Q_EMIT confettiChanged();
}

void Game::post(Toast toast)
{
    m_toasts.post(std::move(toast));
}

void Game::scanned(const Node &root)
{
    std::uint64_t largestSize = 0;
    std::int64_t largestFiles = 0;
    for (const NodePtr &child : root.children()) {
        child->walk([&](Node &n) {
            largestSize = std::max(largestSize, n.size());
            largestFiles = std::max(largestFiles, n.files());
        });
    }
    gainXP(std::min<std::int64_t>(root.files() / 20'000, 75) + 25);
    unlock(QStringLiteral("first_scan"));
    if (largestSize >= 10'000'000'000) {
        unlock(QStringLiteral("dragon"));
        if (largestSize >= 50'000'000'000)
            unlock(QStringLiteral("titan"));
    }
    if (largestFiles >= 100'000)
        unlock(QStringLiteral("hoarder"));
    save();
}

void Game::markSeen(const std::string &path)
{
    m_seen.insert(path);
    Q_EMIT seenChanged();
}

void Game::visit(const Node &node)
{
    if (node.depth() >= 8)
        unlock(QStringLiteral("deep_diver"));
    const std::string path = node.path();
    if (m_seen.contains(path))
        return;
    markSeen(path);
    gainXP(2);
    if (m_seen.size() >= 25)
        unlock(QStringLiteral("explorer"));
    save();
}

bool Game::discover(const std::string &path)
{
    if (m_seen.contains(path))
        return false;
    markSeen(path);
    gainXP(3);
    if (m_seen.size() >= 25)
        unlock(QStringLiteral("explorer"));
    if (m_seen.size() >= 100)
        unlock(QStringLiteral("walker"));
    save();
    return true;
}

void Game::slain(const std::vector<std::uint64_t> &sizes, bool wasBounty)
{
    if (sizes.empty())
        return;
    std::uint64_t total = 0;
    std::int64_t reward = 0;
    for (const std::uint64_t s : sizes) {
        total += s;
        reward += xpFor(s);
    }
    const auto n = static_cast<std::int64_t>(sizes.size());
    if (wasBounty)
        reward += 10 * n;

    if (m_questDay != today()) {
        m_questDay = today();
        m_questBytes = 0;
    }
    const std::uint64_t before = m_questBytes;
    m_reclaimed += total;
    m_questBytes += total;
    Q_EMIT reclaimedChanged();
    Q_EMIT questBytesChanged();

    const QString subtitle =
        QStringLiteral("+%1 XP · %2 to the Trash").arg(reward).arg(Fmt::bytes(total));
    if (n == 1) {
        const Tier tier = Tiers::ofBytes(total);
        gainXP(reward, Toast::make(Tiers::emoji(tier),
                                   Tiers::displayName(tier) + QStringLiteral(" slain!"), subtitle));
    } else {
        gainXP(reward, Toast::make(QStringLiteral("🧹"),
                                   QStringLiteral("Swept %1 monsters!").arg(n), subtitle));
    }
    unlock(QStringLiteral("first_blood"));
    if (wasBounty)
        unlock(QStringLiteral("bounty"));
    if (m_reclaimed >= 1'000'000'000)
        unlock(QStringLiteral("sweep_1g"));
    if (m_reclaimed >= 10'000'000'000)
        unlock(QStringLiteral("sweep_10g"));
    if (m_reclaimed >= 100'000'000'000)
        unlock(QStringLiteral("sweep_100g"));
    if (before < questGoal && m_questBytes >= questGoal)
        completeQuest();
    save();
}

void Game::completeQuest()
{
    gainXP(100, Toast::make(QStringLiteral("📜"), QStringLiteral("Daily quest complete"),
                            QStringLiteral("+100 XP bonus"), Sound::Sfx::quest()));
    unlock(QStringLiteral("quest"));
}

void Game::noteTrashed(const std::optional<std::string> &path, std::uint64_t bytes)
{
    if (!path)
        return;
    m_trashed[*path] = static_cast<double>(bytes);
    writeTrashed();
    Q_EMIT trashedChanged();
}

void Game::checkTrash()
{
    bool changed = false;
    for (auto it = m_trashed.begin(); it != m_trashed.end();) {
        struct stat st;
        if (lstat(it->first.c_str(), &st) != 0 && errno == ENOENT) {
            it = m_trashed.erase(it);
            changed = true;
        } else {
            ++it;
        }
    }
    if (!changed)
        return;
    writeTrashed();
    Q_EMIT trashedChanged();
}

void Game::writeTrashed()
{
    QVariantMap map;
    for (const auto &[path, bytes] : m_trashed)
        map.insert(text(path), bytes);
    m_d->setValue(QStringLiteral("trashed"), map);
}

std::optional<QString> Game::customName(const std::string &path) const
{
    const auto it = m_customNames.find(path);
    return it == m_customNames.end() ? std::nullopt : std::optional(it->second);
}

void Game::rename(const std::string &path, const QString &name)
{
    const QString trimmed = name.trimmed();
    if (!trimmed.isEmpty()) {
        m_customNames[path] = trimmed;
        unlock(QStringLiteral("namer"));
    } else {
        m_customNames.erase(path);
    }
    QVariantMap map;
    for (const auto &[p, n] : m_customNames)
        map.insert(text(p), n);
    m_d->setValue(QStringLiteral("customNames"), map);
    Q_EMIT customNamesChanged();
}

QString Game::placeName(std::optional<std::string_view> path, std::string_view folderName,
                        std::optional<Tier> tier) const
{
    return Lore::placeName(path, folderName, tier, m_customNames, m_fantasyNames);
}

void Game::spellsCast(std::int64_t count)
{
    if (count >= 25)
        unlock(QStringLiteral("archmage"));
}

void Game::save()
{
    QSettings &d = *m_d;
    d.setValue(QStringLiteral("xp"), qint64(m_xp));
    d.setValue(QStringLiteral("reclaimed"), static_cast<double>(m_reclaimed));
    d.setValue(QStringLiteral("unlocked"), QStringList(m_unlocked.begin(), m_unlocked.end()));
    QStringList visited;
    visited.reserve(qsizetype(std::min(m_seen.size(), visitedLimit)));
    for (const std::string &p : m_seen) {
        if (std::size_t(visited.size()) == visitedLimit)
            break;
        visited << text(p);
    }
    d.setValue(QStringLiteral("visited"), visited);
    d.setValue(QStringLiteral("questDay"), m_questDay);
    d.setValue(QStringLiteral("questBytes"), static_cast<double>(m_questBytes));
}
