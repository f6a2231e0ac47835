#pragma once

#include <QDateTime>
#include <QString>
#include <cstdint>

// The byte and count texts every view uses, so one number always reads the same way.
namespace Fmt {

// File-style byte count: decimal units, no fraction digits for bytes and KB, one for MB, two for
// GB and larger, trailing zeros dropped, "Zero KB" for 0.
[[nodiscard]] QString bytes(std::uint64_t n);

// Bytes grown or shrunk, signed, as bytes() writes them: "+30 MB", "−300 MB" with a real minus
// sign, "±0" when nothing changed.
[[nodiscard]] QString growth(std::int64_t n);

// A day, "20 Nov", and a moment, "20 Nov 2026, 14:05", in local time.
[[nodiscard]] QString day(const QDateTime &when);
[[nodiscard]] QString moment(const QDateTime &when);
// How long ago: "just now", "5 minutes ago", "yesterday", "2 days ago", "on 20 Nov 2026".
[[nodiscard]] QString ago(const QDateTime &then, const QDateTime &now);

// The count with the locale's digit grouping.
[[nodiscard]] QString count(std::int64_t n);
// The count and the noun that agrees with it: "1 entry", "2,048 entries".
[[nodiscard]] QString counted(std::int64_t n, const char *singular, const char *plural);
// "1 file", "2,048 files".
[[nodiscard]] QString files(std::int64_t n);

} // namespace Fmt
