#pragma once

#include "snapshot/Snapshot.h"
#include "snapshot/SnapshotSummary.h"

#include <QByteArray>
#include <QString>
#include <optional>
#include <string_view>
#include <vector>

// The remembered scans on disk: one file per scanned root in a folder of the user's cache
// ($XDG_CACHE_HOME/dustmere, else ~/.cache/dustmere), the folder 0700 and each file 0600, written
// atomically; only the most recently scanned roots are kept. Plain file work: callers keep it
// off the main thread where a tree is large.
class SnapshotStore
{
public:
    static constexpr int kept = 8;

    explicit SnapshotStore(QString folder = defaultFolder()) : m_folder(std::move(folder)) {}
    [[nodiscard]] static QString defaultFolder();

    [[nodiscard]] const QString &folder() const { return m_folder; }
    // Named after a hash of the root, so any path, in any bytes, makes a plain file name.
    [[nodiscard]] QString fileFor(std::string_view root) const;

    // Writes a packed snapshot of `root`, then drops all but the `kept` newest roots.
    bool save(const QByteArray &packed, std::string_view root) const;
    [[nodiscard]] std::optional<Snapshot> load(std::string_view root) const;
    [[nodiscard]] std::optional<SnapshotSummary> summary(std::string_view root) const;
    // Every readable snapshot, the most recent scan first.
    [[nodiscard]] std::vector<SnapshotSummary> remembered() const;
    // Removes every snapshot file, and nothing else.
    void forgetAll() const;

private:
    struct Entry
    {
        QString file;
        std::optional<SnapshotSummary> summary;
    };
    [[nodiscard]] std::vector<Entry> entries() const;
    void prune() const;

    QString m_folder;
};
