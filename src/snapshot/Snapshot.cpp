#include "snapshot/Snapshot.h"

#include <algorithm>
#include <limits>

std::optional<Snapshot::Index> Snapshot::child(Index parent, std::string_view name) const
{
    const Folder &p = m_folders[parent];
    const auto first = m_folders.begin() + p.firstChild;
    const auto last = first + p.childCount;
    const auto it =
        std::lower_bound(first, last, name, [this](const Folder &f, std::string_view n) {
            return std::string_view(m_names).substr(f.nameAt, f.nameSize) < n;
        });
    if (it == last || this->name(Index(it - m_folders.begin())) != name)
        return std::nullopt;
    return Index(it - m_folders.begin());
}

std::optional<Snapshot::Index> Snapshot::find(const Node &node) const
{
    std::vector<const Node *> chain;
    for (const Node *n = &node; n; n = n->parent().get())
        chain.push_back(n);
    // A detached folder, or one of another tree, has no place here.
    if (chain.back()->basePath() != m_summary.root)
        return std::nullopt;
    Index at = 0;
    for (auto it = chain.rbegin() + 1; it != chain.rend(); ++it) {
        const std::optional<Index> next = child(at, (*it)->name());
        if (!next)
            return std::nullopt;
        at = *next;
    }
    return at;
}

std::int64_t Snapshot::grown(const Node &node, std::optional<Index> then) const
{
    constexpr auto most = std::uint64_t(std::numeric_limits<std::int64_t>::max());
    const std::uint64_t now = node.size();
    const std::uint64_t before = then ? m_folders[*then].size : 0;
    if (now >= before)
        return std::int64_t(std::min(now - before, most));
    return -std::int64_t(std::min(before - now, most));
}
