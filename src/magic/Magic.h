#pragma once

#include "magic/Spell.h"

#include <QDateTime>
#include <QObject>
#include <QSettings>
#include <QTimer>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <functional>
#include <memory>

// The hero's mana: a pool of five that refills one point every 20 seconds, also while the app is
// closed, and one point on every slaying action. Counts the spells cast. Main thread only.
class Magic : public QObject
{
    Q_OBJECT

public:
    struct Options
    {
        std::function<QDateTime()> now = [] { return QDateTime::currentDateTime(); };
        // Zero starts no timer: whoever owns the Magic calls tick() instead, as tests do.
        std::chrono::milliseconds tickInterval{1000};
    };

    static constexpr double maxMana = 5.0;
    static constexpr double secondsPerMana = 20.0;
    static constexpr double manaPerSlay = 1.0;

    explicit Magic(QObject *parent = nullptr);
    explicit Magic(Options options, QObject *parent = nullptr);
    ~Magic() override;

    [[nodiscard]] double mana() const { return double(m_units) / unitsPerMana; }
    [[nodiscard]] std::int64_t casts() const { return m_casts; }

    [[nodiscard]] bool canCast(Spell spell) const;
    void spend(Spell spell);
    void gain(double amount);
    // One refill step of the 1 s timer.
    void tick();
    void save();

Q_SIGNALS:
    void manaChanged();
    void castsChanged();

private:
    // Mana is counted in milliseconds of refill, so ticks, slays and spells add up exactly: 0.05
    // a second summed as a double reached 2.9999999 with three full orbs.
    static constexpr std::int64_t unitsPerTick = 1'000;
    static constexpr std::int64_t unitsPerMana = std::int64_t(secondsPerMana) * unitsPerTick;
    static constexpr std::int64_t maxUnits = std::int64_t(maxMana) * unitsPerMana;
    [[nodiscard]] static std::int64_t unitsOf(double mana)
    {
        return std::llround(mana * unitsPerMana);
    }
    void setUnits(std::int64_t units);

    Options m_options;
    std::unique_ptr<QSettings> m_d;
    std::int64_t m_units = maxUnits;
    std::int64_t m_casts = 0;
    QTimer m_timer;
};
