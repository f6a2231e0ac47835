#pragma once

#include "scan/BigFile.h"
#include "scan/Node.h"
#include "snapshot/Snapshot.h"
#include "snapshot/SnapshotSummary.h"

#include <QByteArray>
#include <QByteArrayView>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The bytes of a snapshot file: a magic, a version, a small checksummed header (the summary) and
// the tree, compressed. Names are stored once each, every number as a varint, columns apart so
// that the compressor finds their patterns. Anything damaged, truncated, of another version or
// of another root reads as nothing.
namespace SnapshotCodec {

inline constexpr std::uint32_t version = 1;

// The tree, flattened but not compressed yet: quick, but it must run where nothing changes the
// tree; the compression can then run anywhere.
struct Flat
{
    SnapshotSummary summary;
    std::uint64_t bigFiles = 0;
    std::string payload;
};

// root must be a scan root (it has a base path).
[[nodiscard]] Flat flatten(const Node &root, const std::vector<BigFile> &bigFiles,
                           const QDateTime &scanned, const QString &host);
[[nodiscard]] QByteArray pack(const Flat &flat);

// Whether a file starts as a snapshot does (its first 8 bytes suffice).
[[nodiscard]] bool hasMagic(QByteArrayView start);

// How many leading bytes of a file summary() needs at most.
inline constexpr qsizetype headerLimit = 16 * 1024;
[[nodiscard]] std::optional<SnapshotSummary> summary(QByteArrayView file);
[[nodiscard]] std::optional<Snapshot> unpack(QByteArrayView file, std::string_view root);

} // namespace SnapshotCodec
