#pragma once

#include <QDateTime>
#include <QSettings>
#include <QString>
#include <QStringList>
#include <QVariantMap>
#include <memory>
#include <optional>

// The user's settings: one JSON file per domain under $XDG_CONFIG_HOME/dustmere/ (default
// ~/.config/dustmere/), read and written through QSettings with a JSON format that keeps value
// types: bool, integer (qint64), double, string, array, map. A double stays a double, even 5.0.
//
// Saves are atomic (temporary file, fsync, rename onto the file, or onto the file a symlink
// points to, so the link stays). A leading UTF-8 byte-order mark is read past. A damaged or
// unreadable file reads as empty; a damaged one is copied to "<domain>.json.corrupt" (then
// ".corrupt.1", ".corrupt.2", …) before the first save replaces it, and an unreadable one is
// never replaced.
namespace Settings {

inline QString currentDomain()
{
    return QStringLiteral("dustmere");
}
inline QString oldDomain()
{
    return QStringLiteral("local.dustmere");
}

// A handle on one domain. Handles on the same domain share their values within the process;
// changes are saved by sync(), by the event loop shortly after a change, or when the handle is
// destroyed. Opening never creates or changes a file.
[[nodiscard]] std::unique_ptr<QSettings> open(const QString &domain = currentDomain());
[[nodiscard]] QString filePath(const QString &domain = currentDomain());
// Keeps a copy of the domain's file now if it is damaged and not kept yet; the copy's path when
// this call made one, so the window can say so once.
[[nodiscard]] std::optional<QString> keepDamaged(const QString &domain = currentDomain());

// Typed reads: nullopt when the key is absent or holds a value of another type.
// boolean: only true/false. integer: an integer, or a double with a whole value that fits in
// qint64 (a hand-edited 12.0). number: any finite integer or double. stringList: an array whose
// every element is a string. map: an object. date: ISO-8601 text, as setDate writes it.
[[nodiscard]] std::optional<bool> boolean(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<qint64> integer(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<double> number(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<QString> string(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<QStringList> stringList(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<QVariantMap> map(const QSettings &s, const QString &key);
[[nodiscard]] std::optional<QDateTime> date(const QSettings &s, const QString &key);
// Stored as UTC ISO-8601 text with milliseconds; an invalid date removes the key.
void setDate(QSettings &s, const QString &key, const QDateTime &when);

} // namespace Settings
