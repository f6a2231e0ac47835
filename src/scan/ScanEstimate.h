#pragma once

#include "scan/Scanner.h"

#include <QString>
#include <chrono>
#include <cstdint>
#include <optional>

// How far a rescan has come and how long it has left, judged against the totals the last scan of
// the same folder found. Files and bytes count alike: walking costs by the file, and a folder of
// few huge files still moves the bytes.
class ScanEstimate
{
public:
    struct Guess
    {
        int percent = 0; // 0 to 99: a scan is done when it says so, not when the guess says
        std::optional<std::chrono::seconds> left;
        bool operator==(const Guess &) const = default;
    };

    ScanEstimate(std::int64_t files, std::uint64_t bytes) : m_files(files), m_bytes(bytes) {}

    [[nodiscard]] std::optional<Guess> at(const Scanner::Progress &now,
                                          std::chrono::milliseconds elapsed) const;
    // "45% · about 20 s left", or just "45%" while it is too early to tell.
    [[nodiscard]] static QString text(const Guess &guess);

private:
    std::int64_t m_files;
    std::uint64_t m_bytes;
};
