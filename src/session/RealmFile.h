#pragma once

#include "session/Realm.h"
#include "snapshot/Snapshot.h"

#include <QString>
#include <variant>

// Reads a realm from a file: a JSON report written by `dustmere --report=json` (here or on another
// machine) or a snapshot. Never trusts it: anything else, or anything malformed, is a one-line
// reason instead.
namespace RealmFile {

[[nodiscard]] std::variant<Realm, QString> read(const QString &file);
// The realm a remembered scan describes, with the advisor's recommendations for it.
[[nodiscard]] Realm fromSnapshot(const Snapshot &snapshot, RealmOrigin::Source source);

} // namespace RealmFile
