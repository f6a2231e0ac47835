#pragma once

#include <QString>

// The one-time copy of the settings an older version kept in another domain.
namespace Migration {

inline QString flagKey()
{
    return QStringLiteral("migratedFromLocal");
}
// Keys the platform wrote for itself there, such as saved window frames.
inline QString skippedPrefix()
{
    return QStringLiteral("NS");
}

// Copies every key of the old domain that the current domain does not hold yet, then sets the
// flag. Once the flag is set, later calls return without reading the old domain. The old domain
// is never changed; a missing, damaged or unreadable one counts as empty.
void migrate();

} // namespace Migration
