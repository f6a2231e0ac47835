// Times writing and reading the snapshot of a synthetic tree of 200,000 folders with names like a
// home folder's (common folder names, versions, hashes of caches, git object folders) and prints
//   snapshot-write-ms, snapshot-read-ms, snapshot-bytes-per-folder
// as "name value" lines for bench/run. Writing is everything after a scan: flattening, packing and
// the atomic save; reading is loading and checking the file back into a lookup tree.
//
//   bench_snapshot [FOLDERS]

#include "snapshot/SnapshotCodec.h"
#include "snapshot/SnapshotStore.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <cstdio>
#include <set>

namespace {

class Rng
{
public:
    std::uint64_t next()
    {
        std::uint64_t z = (m_state += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    std::size_t below(std::size_t n) { return std::size_t(next() % n); }

private:
    std::uint64_t m_state = 20261123;
};

std::string hex(Rng &rng, int digits)
{
    static const char *const d = "0123456789abcdef";
    std::string s;
    for (int i = 0; i < digits; ++i)
        s += d[rng.below(16)];
    return s;
}

std::string folderName(Rng &rng)
{
    static const std::array<const char *, 32> words = {
        "src",           "lib",        "include",     "node_modules", ".git",  "objects",
        "test",          "docs",       "assets",      "cache",        "build", "images",
        "Photos",        "Documents",  "Projects",    "vendor",       "dist",  "config",
        "share",         "bin",        "resources",   "locale",       "fonts", "icons",
        "site-packages", "python3.11", "Screenshots", "backup",       "Music", "Videos",
        "components",    "modules"};
    switch (rng.below(6)) {
    case 0:
    case 1:
        return words[rng.below(words.size())];
    case 2:
        return std::string(words[rng.below(words.size())]) + "-" + std::to_string(rng.below(3000));
    case 3:
        return hex(rng, 2);
    case 4:
        return hex(rng, 8 + int(rng.below(32)));
    default:
        return "v" + std::to_string(rng.below(20)) + "." + std::to_string(rng.below(40)) + "." +
               std::to_string(rng.below(100));
    }
}

NodePtr syntheticTree(std::size_t folders)
{
    Rng rng;
    NodePtr root = Node::create("ada");
    root->setBasePath("/home/ada");
    std::vector<NodePtr> all{root};
    std::vector<std::set<std::string>> taken(1);
    while (all.size() < folders) {
        // Deeper folders are likelier parents, so the tree gets a home folder's depth.
        const std::size_t parent = std::max(rng.below(all.size()), rng.below(all.size()));
        std::string name = folderName(rng);
        while (!taken[parent].insert(name).second)
            name += "_";
        NodePtr n = Node::create(name, all[parent]);
        for (std::size_t f = rng.below(12); f > 0; --f)
            n->addLoose(512 * (1 + rng.below(1u << (1 + rng.below(16)))));
        all[parent]->appendChild(n);
        all.push_back(std::move(n));
        taken.emplace_back();
    }
    for (auto it = all.rbegin(); it != all.rend(); ++it)
        (*it)->finish();
    return root;
}

double medianMs(std::vector<double> runs)
{
    std::sort(runs.begin(), runs.end());
    return runs[runs.size() / 2];
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    const std::size_t folders = argc > 1 ? std::stoul(argv[1]) : 200'000;
    const NodePtr root = syntheticTree(folders);
    QTemporaryDir dir;
    const SnapshotStore store(dir.path() + QStringLiteral("/dustmere"));
    const std::string base = *root->basePath();

    std::vector<double> writes;
    std::vector<double> reads;
    bool intact = true;
    for (int run = 0; run < 7; ++run) {
        QElapsedTimer t;
        t.start();
        const SnapshotCodec::Flat flat = SnapshotCodec::flatten(
            *root, {}, QDateTime::currentDateTimeUtc(), QStringLiteral("bench"));
        intact = store.save(SnapshotCodec::pack(flat), base) && intact;
        writes.push_back(double(t.nsecsElapsed()) / 1e6);
        t.restart();
        const std::optional<Snapshot> back = store.load(base);
        reads.push_back(double(t.nsecsElapsed()) / 1e6);
        intact = back && back->folderCount() == folders && intact;
    }
    const double bytes = double(QFileInfo(store.fileFor(base)).size());
    std::printf("folders %zu\n", folders);
    std::printf("snapshot-write-ms %.1f\n", medianMs(writes));
    std::printf("snapshot-read-ms %.1f\n", medianMs(reads));
    std::printf("snapshot-bytes-per-folder %.1f\n", bytes / double(folders));
    if (!intact)
        std::fprintf(stderr, "bench_snapshot: the snapshot did not read back\n");
    return intact ? 0 : 1;
}
