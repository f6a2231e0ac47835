#pragma once

#include "snapshot/Snapshot.h"

#include <optional>
#include <string_view>

// Where a folder of a fresh tree stood in the remembered one, carried down a walk of the tree
// so that each folder is found with one lookup among its parent's children.
class Counterpart
{
public:
    Counterpart() = default;
    // The root of a tree of the same folder the snapshot remembers; none without a snapshot.
    static Counterpart root(const Snapshot *snapshot)
    {
        return snapshot ? Counterpart(snapshot, Snapshot::Index(0)) : Counterpart();
    }

    [[nodiscard]] const Snapshot *snapshot() const { return m_snapshot; }
    [[nodiscard]] Counterpart child(std::string_view name) const
    {
        return Counterpart(m_snapshot, m_at ? m_snapshot->child(*m_at, name) : std::nullopt);
    }
    // Signed bytes grown since; none without a snapshot.
    [[nodiscard]] std::optional<std::int64_t> grown(const Node &node) const
    {
        return m_snapshot ? std::optional(m_snapshot->grown(node, m_at)) : std::nullopt;
    }
    [[nodiscard]] std::optional<std::int64_t> looseGrown(const Node &node) const
    {
        if (!m_snapshot)
            return std::nullopt;
        return std::int64_t(node.looseSize()) -
               std::int64_t(m_at ? m_snapshot->folder(*m_at).looseSize : 0);
    }

private:
    Counterpart(const Snapshot *snapshot, std::optional<Snapshot::Index> at)
        : m_snapshot(snapshot), m_at(at)
    {}

    const Snapshot *m_snapshot = nullptr;
    std::optional<Snapshot::Index> m_at;
};
