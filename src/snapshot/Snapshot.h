#pragma once

#include "scan/BigFile.h"
#include "scan/Node.h"
#include "snapshot/SnapshotSummary.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A remembered scan as a flat tree: far smaller than Nodes, and read-only, so any thread may look
// things up in it. Folders are in breadth-first order, so each folder's children sit side by
// side, sorted by name bytes for binary search; folder 0 is the root.
class Snapshot
{
public:
    using Index = std::uint32_t;
    struct Folder
    {
        std::uint32_t nameAt = 0;
        std::uint16_t nameSize = 0;
        Index firstChild = 0;
        Index childCount = 0;
        std::uint64_t size = 0;
        std::int64_t files = 0;
        std::uint64_t looseSize = 0;
        std::int64_t looseFiles = 0;
    };

    Snapshot(SnapshotSummary summary, std::vector<Folder> folders, std::string names,
             std::vector<BigFile> bigFiles)
        : m_summary(std::move(summary)), m_folders(std::move(folders)), m_names(std::move(names)),
          m_bigFiles(std::move(bigFiles))
    {}

    [[nodiscard]] const SnapshotSummary &summary() const { return m_summary; }
    [[nodiscard]] std::size_t folderCount() const { return m_folders.size(); }
    [[nodiscard]] const Folder &folder(Index i) const { return m_folders[i]; }
    [[nodiscard]] std::string_view name(Index i) const
    {
        return std::string_view(m_names).substr(m_folders[i].nameAt, m_folders[i].nameSize);
    }
    [[nodiscard]] const std::vector<BigFile> &bigFiles() const { return m_bigFiles; }

    [[nodiscard]] std::optional<Index> child(Index parent, std::string_view name) const;
    // The folder that held the same place as `node` of a tree of the same root, by names.
    [[nodiscard]] std::optional<Index> find(const Node &node) const;
    // How many bytes `node` grew since, negative when it shrank; all of its size when it is new.
    // A vanished sub-folder shows as its parent's shrinking, since sizes include everything below.
    [[nodiscard]] std::int64_t grown(const Node &node, std::optional<Index> then) const;
    [[nodiscard]] std::int64_t grown(const Node &node) const { return grown(node, find(node)); }
    // The remembered tree as Nodes, finished and ordered as a scan leaves them.
    [[nodiscard]] NodePtr toTree() const;

private:
    SnapshotSummary m_summary;
    std::vector<Folder> m_folders;
    std::string m_names;
    std::vector<BigFile> m_bigFiles;
};
