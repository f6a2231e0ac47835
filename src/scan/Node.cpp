#include "scan/Node.h"

#include <algorithm>

NodePtr Node::create(std::string name, const NodePtr &parent)
{
    auto node = std::make_shared<Node>(std::move(name));
    node->m_parent = parent;
    return node;
}

std::string Node::rootName(const std::string &scannedPath)
{
    if (scannedPath == "/")
        return "Computer";
    std::string_view p = scannedPath;
    while (p.size() > 1 && p.back() == '/')
        p.remove_suffix(1);
    const auto slash = p.rfind('/');
    return std::string(slash == std::string_view::npos ? p : p.substr(slash + 1));
}

std::string Node::path() const
{
    if (m_basePath)
        return *m_basePath;
    const NodePtr p = m_parent.lock();
    if (!p)
        return m_name;
    std::string prefix = p->path();
    if (prefix != "/")
        prefix += '/';
    return prefix + m_name;
}

int Node::depth() const
{
    int d = 0;
    for (NodePtr p = m_parent.lock(); p; p = p->m_parent.lock())
        ++d;
    return d;
}

std::vector<NodePtr> Node::chain()
{
    std::vector<NodePtr> nodes;
    for (NodePtr n = shared_from_this(); n; n = n->m_parent.lock())
        nodes.push_back(n);
    std::reverse(nodes.begin(), nodes.end());
    return nodes;
}

NodePtr Node::child(std::string_view named) const
{
    for (const NodePtr &c : m_children) {
        if (c->m_name == named)
            return c;
    }
    return nullptr;
}

void Node::walk(const std::function<void(Node &)> &visit)
{
    visit(*this);
    for (const NodePtr &c : m_children)
        c->walk(visit);
}

void Node::finish()
{
    std::uint64_t size = m_looseSize;
    std::int64_t files = m_looseFiles;
    for (const NodePtr &c : m_children) {
        size += c->m_size;
        files += c->m_files;
    }
    m_size = size;
    m_files = files;
    std::stable_sort(m_children.begin(), m_children.end(),
                     [](const NodePtr &a, const NodePtr &b) { return a->m_size > b->m_size; });
}

void Node::detach()
{
    const NodePtr p = m_parent.lock();
    if (!p)
        return;
    std::erase_if(p->m_children, [this](const NodePtr &c) { return c.get() == this; });
    for (NodePtr a = p; a; a = a->m_parent.lock()) {
        a->m_size -= std::min(a->m_size, m_size);
        a->m_files = std::max<std::int64_t>(a->m_files - m_files, 0);
    }
    m_parent.reset();
}

void Node::removeLooseFile(std::uint64_t bytes)
{
    m_looseSize -= std::min(m_looseSize, bytes);
    m_looseFiles = std::max<std::int64_t>(m_looseFiles - 1, 0);
    for (Node *n = this; n;) {
        n->m_size -= std::min(n->m_size, bytes);
        n->m_files = std::max<std::int64_t>(n->m_files - 1, 0);
        const NodePtr p = n->m_parent.lock();
        n = p.get(); // the tree keeps p alive while we climb
    }
}
