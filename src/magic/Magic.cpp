#include "magic/Magic.h"

#include "platform/Settings.h"

#include <algorithm>
#include <cmath>

namespace {

const QString manaKey = QStringLiteral("mana");
const QString manaAtKey = QStringLiteral("manaAt");
const QString castsKey = QStringLiteral("casts");

} // namespace

Magic::Magic(QObject *parent) : Magic(Options{}, parent) {}

Magic::Magic(Options options, QObject *parent)
    : QObject(parent), m_options(std::move(options)), m_d(Settings::open()), m_timer(this)
{
    const QDateTime now = m_options.now();
    const double stored = Settings::number(*m_d, manaKey).value_or(maxMana);
    const QDateTime since = Settings::date(*m_d, manaAtKey).value_or(now);
    // A clock set back since the last save refills nothing rather than draining the pool; one
    // millisecond away refills one unit.
    const std::int64_t elapsed = std::clamp<std::int64_t>(since.msecsTo(now), 0, maxUnits);
    m_units =
        std::clamp<std::int64_t>(unitsOf(std::clamp(stored, 0.0, maxMana)) + elapsed, 0, maxUnits);
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
    return m_units >= unitsOf(Spells::cost(spell));
}

void Magic::spend(Spell spell)
{
    setUnits(std::max<std::int64_t>(m_units - unitsOf(Spells::cost(spell)), 0));
    ++m_casts;
    Q_EMIT castsChanged();
    save();
}

void Magic::gain(double amount)
{
    setUnits(std::clamp<std::int64_t>(m_units + unitsOf(amount), 0, maxUnits));
    save();
}

void Magic::tick()
{
    if (m_units >= maxUnits)
        return;
    setUnits(std::min(m_units + unitsPerTick, maxUnits));
    // A whole point reached (in whole ticks: slays may add fractions).
    if ((m_units / unitsPerTick) % (unitsPerMana / unitsPerTick) == 0)
        save();
}

void Magic::save()
{
    m_d->setValue(manaKey, mana());
    Settings::setDate(*m_d, manaAtKey, m_options.now());
    m_d->setValue(castsKey, qint64(m_casts));
}

void Magic::setUnits(std::int64_t units)
{
    if (units == m_units)
        return;
    m_units = units;
    Q_EMIT manaChanged();
}
