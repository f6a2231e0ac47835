#pragma once

#include <QDateTime>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>
#include <optional>

// The user's settings: one JSON file per domain under $XDG_CONFIG_HOME/dustmere/, read and
// written through QSettings with a JSON format that keeps value types.
namespace Settings {

inline QString currentDomain() { return QStringLiteral("dustmere"); }
inline QString oldDomain() { return QStringLiteral("local.dustmere"); }

// A handle on one domain. Handles on the same domain share their values within the process.
[[nodiscard]] std::unique_ptr<QSettings> open(const QString &domain = currentDomain());
[[nodiscard]] QString filePath(const QString &domain = currentDomain());

// Typed reads: nullopt when the key is absent or holds a value of another type.
[[nodiscard]] std::optional<bool> boolean(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<qint64> integer(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<double> number(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<QString> string(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<QStringList> stringList(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<QVariantMap> map(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<QDateTime> date(const QSettings &s, const QString &key);
void setDate(QSettings &s, const QString &key, const QDateTime &when);

} // namespace Settings
