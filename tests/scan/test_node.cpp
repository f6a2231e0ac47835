#include "scan/Node.h"
#include "support/TestSandbox.h"

namespace {

// A finished folder with the given loose bytes/files and children, like the scanner leaves it.
NodePtr folder(const std::string &name, std::uint64_t looseBytes, std::int64_t looseFiles,
               std::vector<NodePtr> children = {})
{
    NodePtr n = Node::create(name);
    for (std::int64_t i = 0; i < looseFiles; ++i)
        n->addLoose(i == 0 ? looseBytes : 0);
    for (NodePtr &c : children) {
        c->setParent(n);
        n->appendChild(c);
    }
    n->finish();
    return n;
}

} // namespace

class TestNode : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void finishSumsAndOrdersStably()
    {
        NodePtr a = folder("a", 100, 2);
        NodePtr b = folder("b", 300, 1);
        NodePtr c = folder("c", 100, 5);
        NodePtr root = folder("root", 7, 1, {a, b, c});
        QCOMPARE(root->size(), 507u);
        QCOMPARE(root->files(), 9);
        // Equal sizes keep scan order: a before c.
        QCOMPARE(root->children()[0], b);
        QCOMPARE(root->children()[1], a);
        QCOMPARE(root->children()[2], c);
    }

    void emptySubfoldersMakeAnEmptyNodeWithChildren()
    {
        NodePtr root = folder("root", 0, 0, {folder("x", 0, 0), folder("y", 0, 0)});
        QCOMPARE(root->size(), 0u);
        QCOMPARE(root->files(), 0);
        QCOMPARE(root->children().size(), 2u);
    }

    void pathsAvoidDoubledSlashes()
    {
        NodePtr users = folder("Users", 0, 0);
        NodePtr root = folder(Node::rootName("/"), 0, 0, {users});
        root->setBasePath("/");
        QCOMPARE(root->name(), std::string("Computer"));
        QCOMPARE(users->path(), std::string("/Users"));

        NodePtr bob = folder("bob", 0, 0);
        NodePtr home = folder("home", 0, 0, {bob});
        home->setBasePath("/srv/home");
        QCOMPARE(bob->path(), std::string("/srv/home/bob"));
        QCOMPARE(Node::rootName("/srv/home/"), std::string("home"));
    }

    void chainDepthAndChildLookup()
    {
        NodePtr deep = folder("Deep", 0, 0);
        NodePtr mid = folder("mid", 0, 0, {deep});
        NodePtr root = folder("root", 0, 0, {mid});
        QCOMPARE(root->chain(), std::vector<NodePtr>{root});
        QCOMPARE(deep->chain(), (std::vector<NodePtr>{root, mid, deep}));
        QCOMPARE(deep->depth(), 2);
        QCOMPARE(mid->child("Deep"), deep);
        QVERIFY(!mid->child("deep"));
        QVERIFY(!mid->child("Dee"));

        std::vector<std::string> visited;
        root->walk([&](Node &n) { visited.push_back(n.name()); });
        QCOMPARE(visited, (std::vector<std::string>{"root", "mid", "Deep"}));
    }

    void detachShrinksEveryAncestorOnly()
    {
        const std::uint64_t gb3 = 3'000'000'000;
        NodePtr big = folder("big", gb3, 1000);
        NodePtr sibling = folder("sibling", 10, 1);
        NodePtr mid = folder("mid", 5, 1, {big, sibling});
        NodePtr root = folder("root", 1, 1, {mid});
        root->setBasePath("/r");

        big->detach();
        QCOMPARE(root->size(), 16u);
        QCOMPARE(root->files(), 3);
        QCOMPARE(mid->size(), 15u);
        QCOMPARE(mid->looseSize(), 5u); // a folder is never a loose file
        QCOMPARE(mid->children(), std::vector<NodePtr>{sibling});
        QCOMPARE(big->size(), gb3); // the detached node keeps its own numbers
        QCOMPARE(big->files(), 1000);
        QVERIFY(!big->hasParent());
        QCOMPARE(big->depth(), 0);

        big->detach(); // no parent: nothing happens
        QCOMPARE(root->size(), 16u);
    }

    void removeLooseFileSaturatesAtZero()
    {
        NodePtr inner = folder("inner", 100, 1);
        NodePtr root = folder("root", 50, 2, {inner});
        inner->removeLooseFile(1'000);
        QCOMPARE(inner->looseSize(), 0u);
        QCOMPARE(inner->looseFiles(), 0);
        QCOMPARE(inner->size(), 0u);
        QCOMPARE(root->size(), 0u); // 150 - min(150, 1000)
        QCOMPARE(root->files(), 2);

        inner->removeLooseFile(1); // already empty: still never wraps
        QCOMPARE(inner->looseFiles(), 0);
        QCOMPARE(inner->size(), 0u);
        QCOMPARE(root->files(), 1);
    }
};

DUSTMERE_TEST_MAIN(TestNode)
#include "test_node.moc"
