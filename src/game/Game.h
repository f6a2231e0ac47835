#pragma once

#include "game/Lore.h"
#include "game/Tier.h"
#include "game/Toast.h"
#include "game/ToastQueue.h"

#include <QDateTime>
#include <QObject>
#include <QSettings>
#include <QTimer>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_set>
#include <vector>

class Node;

// The player's long-lived state: experience, level and title, reclaimed bytes, the daily quest,
// achievements, places seen, the hero, territory names and what waits in the Trash. Turns events
// from the rest of the app into rewards and toasts, and keeps everything in the settings.
class Game : public QObject
{
    Q_OBJECT

public:
    struct Options
    {
        std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };
        std::chrono::milliseconds toastDuration{2600};
        std::chrono::milliseconds trashCheckInterval{20'000};
        ToastQueue::SoundPlayer play; // defaults to the shared sound engine
    };

    static constexpr std::uint64_t questGoal = 1'000'000'000;
    static constexpr std::size_t visitedLimit = 5000;
    // Level 100,001: far beyond play, and well inside what the level arithmetic can hold.
    static constexpr std::int64_t maxXP = 50LL * 100'000 * 100'000;

    explicit Game(QObject *parent = nullptr);
    explicit Game(Options options, QObject *parent = nullptr);
    ~Game() override;

    [[nodiscard]] std::int64_t xp() const { return m_xp; }
    [[nodiscard]] std::uint64_t reclaimed() const { return m_reclaimed; }
    [[nodiscard]] const std::set<QString> &unlocked() const { return m_unlocked; }
    [[nodiscard]] std::uint64_t questBytes() const { return m_questBytes; }
    [[nodiscard]] const QString &questDay() const { return m_questDay; }
    [[nodiscard]] const std::optional<Toast> &toast() const { return m_toasts.current(); }
    [[nodiscard]] const std::optional<QDateTime> &confetti() const { return m_confetti; }
    [[nodiscard]] const QString &hero() const { return m_hero; }
    [[nodiscard]] const QString &heroName() const { return m_heroName; }
    [[nodiscard]] bool fantasyNames() const { return m_fantasyNames; }
    [[nodiscard]] const Lore::CustomNames &customNames() const { return m_customNames; }
    [[nodiscard]] const std::map<std::string, double> &trashed() const { return m_trashed; }
    [[nodiscard]] std::uint64_t trashedBytes() const;
    [[nodiscard]] const std::unordered_set<std::string> &seen() const { return m_seen; }

    void setHero(const QString &hero);
    void setHeroName(const QString &name);
    void setFantasyNames(bool on);

    [[nodiscard]] int level() const;
    [[nodiscard]] double levelProgress() const;
    [[nodiscard]] std::int64_t xpToNext() const;
    [[nodiscard]] QString title() const;
    [[nodiscard]] static QString titleFor(int level);
    [[nodiscard]] static std::int64_t floorXP(int level);
    [[nodiscard]] static std::int64_t xpFor(std::uint64_t bytes);
    [[nodiscard]] bool questDone() const { return m_questBytes > questGoal - 1; }

    void scanned(const Node &root);
    void visit(const Node &node);
    [[nodiscard]] bool hasSeen(const std::string &path) const { return m_seen.contains(path); }
    bool discover(const std::string &path);
    void slain(const std::vector<std::uint64_t> &sizes, bool wasBounty);
    // path is the item's new place in the Trash, when the platform told it.
    void noteTrashed(const std::optional<std::string> &path, std::uint64_t bytes);
    void checkTrash();
    [[nodiscard]] std::optional<QString> customName(const std::string &path) const;
    void rename(const std::string &path, const QString &name);
    [[nodiscard]] QString placeName(std::optional<std::string_view> path,
                                    std::string_view folderName, std::optional<Tier> tier) const;
    void spellsCast(std::int64_t count);

    void gainXP(std::int64_t amount, std::optional<Toast> toast = std::nullopt);
    void unlock(const QString &id);
    void post(Toast toast);
    void save();

Q_SIGNALS:
    void xpChanged();
    void reclaimedChanged();
    void unlockedChanged();
    void questBytesChanged();
    void toastChanged();
    void confettiChanged();
    void heroChanged();
    void heroNameChanged();
    void fantasyNamesChanged();
    void customNamesChanged();
    void trashedChanged();
    void seenChanged();

private:
    void load();
    void writeTrashed();
    [[nodiscard]] QString today() const;
    void markSeen(const std::string &path);
    void completeQuest();

    Options m_options;
    std::unique_ptr<QSettings> m_d;
    std::int64_t m_xp = 0;
    std::uint64_t m_reclaimed = 0;
    std::set<QString> m_unlocked;
    std::uint64_t m_questBytes = 0;
    std::optional<QDateTime> m_confetti;
    QString m_hero;
    QString m_heroName;
    bool m_fantasyNames = true;
    Lore::CustomNames m_customNames;
    std::map<std::string, double> m_trashed;
    QTimer m_trashTimer;
    std::unordered_set<std::string> m_seen;
    QString m_questDay;
    ToastQueue m_toasts;
};
