#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class Node;
using NodePtr = std::shared_ptr<Node>;

// One folder of the size tree. Identity matters: two nodes are the same only if they are the
// same object. A parent owns its children; the parent link is weak.
class Node : public std::enable_shared_from_this<Node>
{
public:
    static NodePtr create(std::string name, const NodePtr &parent = {});

    // The display name of a scan root for the scanned path.
    [[nodiscard]] static std::string rootName(const std::string &scannedPath);

    [[nodiscard]] const std::string &name() const { return m_name; }
    [[nodiscard]] NodePtr parent() const { return m_parent.lock(); }
    [[nodiscard]] bool hasParent() const { return !m_parent.expired(); }
    [[nodiscard]] const std::vector<NodePtr> &children() const { return m_children; }
    [[nodiscard]] const std::optional<std::string> &basePath() const { return m_basePath; }

    [[nodiscard]] std::uint64_t size() const { return m_size; }
    [[nodiscard]] std::int64_t files() const { return m_files; }
    [[nodiscard]] std::uint64_t looseSize() const { return m_looseSize; }
    [[nodiscard]] std::int64_t looseFiles() const { return m_looseFiles; }

    // A detached node has neither parent nor base path; its path is then its bare name.
    [[nodiscard]] std::string path() const;
    [[nodiscard]] int depth() const;
    [[nodiscard]] std::vector<NodePtr> chain();
    [[nodiscard]] NodePtr child(std::string_view named) const;
    void walk(const std::function<void(Node &)> &visit);

    void finish();
    void detach();
    void removeLooseFile(std::uint64_t bytes);

    // Building, used by the scanner while the node is owned by one thread only.
    void setBasePath(std::string path) { m_basePath = std::move(path); }
    void addLoose(std::uint64_t bytes)
    {
        m_looseSize += bytes;
        ++m_looseFiles;
    }
    // A folder's own files at once, for a tree read back rather than walked.
    void setLoose(std::uint64_t bytes, std::int64_t files)
    {
        m_looseSize = bytes;
        m_looseFiles = files;
    }
    void appendChild(NodePtr child) { m_children.push_back(std::move(child)); }
    void setChildren(std::vector<NodePtr> children) { m_children = std::move(children); }
    void setParent(const NodePtr &parent) { m_parent = parent; }

    explicit Node(std::string name) : m_name(std::move(name)) {}

private:
    std::string m_name;
    std::weak_ptr<Node> m_parent;
    std::vector<NodePtr> m_children;
    std::optional<std::string> m_basePath;
    std::uint64_t m_size = 0;
    std::int64_t m_files = 0;
    std::uint64_t m_looseSize = 0;
    std::int64_t m_looseFiles = 0;
};
