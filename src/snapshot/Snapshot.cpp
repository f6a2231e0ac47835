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

NodePtr Snapshot::toTree() const
{
    std::vector<NodePtr> nodes(m_folders.size());
    nodes[0] = Node::create(std::string(name(0)));
    nodes[0]->setBasePath(m_summary.root);
    for (std::size_t i = 0; i < m_folders.size(); ++i) {
        const Folder &f = m_folders[i];
        nodes[i]->setLoose(f.looseSize, f.looseFiles);
        std::vector<NodePtr> children;
        children.reserve(f.childCount);
        for (Index c = f.firstChild; c < f.firstChild + f.childCount; ++c) {
            nodes[c] = Node::create(std::string(name(c)), nodes[i]);
            children.push_back(nodes[c]);
        }
        nodes[i]->setChildren(std::move(children));
    }
    // Children come after their parent, so finishing backwards sums from the leaves up.
    for (std::size_t i = nodes.size(); i-- > 0;)
        nodes[i]->finish();
    return nodes[0];
}
