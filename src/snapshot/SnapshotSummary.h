#pragma once

#include <QDateTime>
#include <QString>
#include <cstdint>
#include <string>

// What a remembered scan says about itself, readable without decoding its tree.
struct SnapshotSummary
{
    std::string root;  // the scanned folder, absolute and clean, as bytes
    QDateTime scanned; // UTC
    QString host;
    std::uint64_t size = 0;
    std::int64_t files = 0;
    std::int64_t folders = 0;

    bool operator==(const SnapshotSummary &) const = default;
};
