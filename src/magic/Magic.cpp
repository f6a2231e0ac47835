#include "magic/Magic.h"

#include "platform/Settings.h"

#include <algorithm>
#include <cmath>

namespace {

const QString manaKey = QStringLiteral("mana");
const QString manaAtKey = QStringLiteral("manaAt");
const QString castsKey = QStringLiteral("casts");

// Absorbs the rounding of repeated 0.05 steps, so 2.95 + 0.05 still counts as a whole point.
constexpr double wholePointSlack = 1e-9;

} // namespace

Magic::Magic(QObject *parent) : Magic(Options{}, parent) {}

Magic::Magic(Options options, QObject *parent)
    : QObject(parent), m_options(std::move(options)), m_d(Settings::open()), m_timer(this)
{
    const QDateTime now = m_options.now();
    const double stored = Settings::number(*m_d, manaKey).value_or(maxMana);
    const QDateTime since = Settings::date(*m_d, manaAtKey).value_or(now);
    // A clock set back since the last save refills nothing rather than draining the pool.
    const double elapsed = std::max(since.msecsTo(now) / 1000.0, 0.0);
    m_mana = std::clamp(stored + elapsed / secondsPerMana, 0.0, maxMana);
    m_casts = std::max<std::int64_t>(Settings::integer(*m_d, castsKey).value_or(0), 0);

    if (m_options.tickInterval.count() > 0) {
        m_timer.setInterval(m_options.tickInterval);
        connect(&m_timer, &QTimer::timeout, this, &Magic::tick);
        m_timer.start();
    }
}

Magic::~Magic() = default;

bool Magic::canCast(Spell spell) const
{
    return m_mana >= Spells::cost(spell);
}

void Magic::spend(Spell spell)
{
    setMana(std::max(m_mana - Spells::cost(spell), 0.0));
    ++m_casts;
    Q_EMIT castsChanged();
    save();
}

void Magic::gain(double amount)
{
    setMana(std::min(m_mana + amount, maxMana));
    save();
}

void Magic::tick()
{
    if (m_mana >= maxMana)
        return;
    setMana(std::min(m_mana + refillPerTick, maxMana));
    const auto steps =
        static_cast<std::int64_t>(std::floor(m_mana * secondsPerMana + wholePointSlack));
    if (steps % static_cast<std::int64_t>(secondsPerMana) == 0)
        save();
}

void Magic::save()
{
    m_d->setValue(manaKey, m_mana);
    Settings::setDate(*m_d, manaAtKey, m_options.now());
    m_d->setValue(castsKey, qint64(m_casts));
}

void Magic::setMana(double mana)
{
    if (mana == m_mana)
        return;
    m_mana = mana;
    Q_EMIT manaChanged();
}
