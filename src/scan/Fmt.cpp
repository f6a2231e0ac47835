#include "scan/Fmt.h"

#include <QLocale>
#include <array>
#include <cmath>
#include <limits>

namespace {

// A machine left in the C locale would print 1234567; readers expect grouping. Derived once per
// default locale: views format thousands of sizes.
const QLocale &numberLocale()
{
    thread_local QLocale source = QLocale::c();
    thread_local QLocale derived = [] {
        QLocale l(QLocale::English, QLocale::UnitedStates);
        l.setNumberOptions(l.numberOptions() & ~QLocale::OmitGroupSeparator);
        return l;
    }();
    const QLocale current;
    if (current != source) {
        source = current;
        derived = current.language() == QLocale::C
                      ? QLocale(QLocale::English, QLocale::UnitedStates)
                      : current;
        derived.setNumberOptions(derived.numberOptions() & ~QLocale::OmitGroupSeparator);
    }
    return derived;
}

struct Unit
{
    const char *name;
    int decimals;
};

constexpr std::array<Unit, 7> units = {{
    {"bytes", 0},
    {"KB", 0},
    {"MB", 1},
    {"GB", 2},
    {"TB", 2},
    {"PB", 2},
    {"EB", 2},
}};

} // namespace

QString Fmt::bytes(std::uint64_t n)
{
    const auto maxSigned = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
    if (n > maxSigned)
        n = maxSigned;
    if (n == 0)
        return QStringLiteral("Zero KB");
    if (n == 1)
        return QStringLiteral("1 byte");

    const QLocale &locale = numberLocale();
    if (n < 1000)
        return locale.toString(static_cast<qulonglong>(n)) + QStringLiteral(" bytes");

    // Pick the unit after rounding, so 999,999 bytes reads "1 MB" rather than "1,000 KB".
    std::size_t u = 1;
    double scaled = static_cast<double>(n) / 1000.0;
    while (u + 1 < units.size()) {
        const double factor = std::pow(10.0, units[u].decimals);
        if (std::round(scaled * factor) / factor < 1000.0)
            break;
        scaled /= 1000.0;
        ++u;
    }
    const double factor = std::pow(10.0, units[u].decimals);
    const double rounded = std::round(scaled * factor) / factor;
    QString text = locale.toString(rounded, 'f', units[u].decimals);
    if (units[u].decimals > 0) {
        const QString point = locale.decimalPoint();
        while (text.endsWith(QLatin1Char('0')))
            text.chop(1);
        if (text.endsWith(point))
            text.chop(point.size());
    }
    return text + QLatin1Char(' ') + QLatin1String(units[u].name);
}

QString Fmt::count(std::int64_t n)
{
    return numberLocale().toString(static_cast<qlonglong>(n));
}

QString Fmt::counted(std::int64_t n, const char *singular, const char *plural)
{
    return count(n) + QLatin1Char(' ') + QLatin1String(n == 1 ? singular : plural);
}

QString Fmt::files(std::int64_t n)
{
    return counted(n, "file", "files");
}

QString Fmt::growth(std::int64_t n)
{
    if (n == 0)
        return QStringLiteral("±0");
    const std::uint64_t magnitude = n < 0 ? 0 - std::uint64_t(n) : std::uint64_t(n);
    return (n < 0 ? QStringLiteral("−") : QStringLiteral("+")) + bytes(magnitude);
}

QString Fmt::day(const QDateTime &when)
{
    return QLocale::c().toString(when.toLocalTime(), QStringLiteral("d MMM"));
}

QString Fmt::moment(const QDateTime &when)
{
    return QLocale::c().toString(when.toLocalTime(), QStringLiteral("d MMM yyyy, HH:mm"));
}

QString Fmt::ago(const QDateTime &then, const QDateTime &now)
{
    const qint64 minutes = then.secsTo(now) / 60;
    if (minutes < 1)
        return QStringLiteral("just now");
    if (minutes < 60)
        return counted(minutes, "minute", "minutes") + QStringLiteral(" ago");
    if (minutes < 24 * 60)
        return counted(minutes / 60, "hour", "hours") + QStringLiteral(" ago");
    const qint64 days = then.toLocalTime().date().daysTo(now.toLocalTime().date());
    if (days <= 1)
        return QStringLiteral("yesterday");
    if (days < 30)
        return QStringLiteral("%1 days ago").arg(days);
    return QLocale::c().toString(then.toLocalTime(), QStringLiteral("'on' d MMM yyyy"));
}
