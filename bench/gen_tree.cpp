// Builds a reproducible folder tree for the scan benchmarks. Sizes come from posix_fallocate, so
// the files own real blocks without writing their contents.
//
//   bench_gen_tree wide|skewed|huge DIR     DIR must not exist yet
//
// huge is the wide tree ten times over (2,000,000 files in 200,000 folders) with empty files, for
// measuring how the window copes with a long scan rather than for timing the walk.
//   bench_gen_tree --version           bump the version whenever the trees change

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr const char *generatorVersion = "1";
constexpr int topLevelCount = 16;

struct Shape
{
    bool skewed = false;
    int folders = 20'000;
    int files = 200'000;
    bool sized = true; // false: every small file is empty
};
constexpr int bigFileCount = 8;
constexpr int maxDepth = 6; // the tree's own folder is depth 0

// splitmix64: tiny, and the same sequence on every platform (unlike std:: distributions).
class Rng
{
public:
    explicit Rng(std::uint64_t seed) : m_state(seed) {}

    std::uint64_t next()
    {
        std::uint64_t z = (m_state += 0x9e3779b97f4a7c15ULL);
        z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
        z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
        return z ^ (z >> 31);
    }
    double unit() { return double(next() >> 11) * 0x1.0p-53; }
    std::size_t below(std::size_t n) { return std::size_t(unit() * double(n)); }
    std::uint64_t logUniform(double lo, double hi)
    {
        return std::uint64_t(std::exp(std::log(lo) + unit() * (std::log(hi) - std::log(lo))));
    }

private:
    std::uint64_t m_state;
};

struct Folder
{
    std::string path;
    int depth;
};

struct Totals
{
    long folders = 0;
    long files = 0;
    std::uint64_t bytes = 0;
};

[[noreturn]] void fail(const std::string &what)
{
    std::fprintf(stderr, "bench_gen_tree: %s: %s\n", what.c_str(), std::strerror(errno));
    std::_Exit(1); // may run on a worker thread: no static destructors
}

void makeFolder(const std::string &path, Totals &totals)
{
    if (mkdir(path.c_str(), 0755) != 0)
        fail("mkdir " + path);
    ++totals.folders;
}

void makeFile(const std::string &path, std::uint64_t size, Totals &totals)
{
    const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
    if (fd < 0)
        fail("create " + path);
    if (size > 0) {
        if (const int err = posix_fallocate(fd, 0, off_t(size)); err != 0) {
            errno = err;
            fail("fallocate " + path);
        }
    }
    struct stat st;
    if (fstat(fd, &st) != 0)
        fail("stat " + path);
    close(fd);
    ++totals.files;
    totals.bytes += std::uint64_t(st.st_blocks) * 512;
}

// Mostly one-block files, a tail of larger ones: roughly what source trees and caches hold.
std::uint64_t smallFileSize(Rng &rng)
{
    const double r = rng.unit();
    if (r < 0.08)
        return 0;
    if (r < 0.80)
        return 1 + rng.below(4096);
    if (r < 0.995)
        return rng.logUniform(4'096, 16'384);
    return rng.logUniform(65'536, 1'048'576);
}

std::string folderName(Rng &rng, std::size_t index)
{
    static constexpr std::string_view stems[] = {"src",    "lib",  "assets",  "cache", "docs",
                                                 "build",  "data", "img",     "test",  "pkg",
                                                 "vendor", "out",  "modules", "res",   "tmp"};
    return std::string(stems[rng.below(std::size(stems))]) + '-' + std::to_string(index);
}

std::string fileName(Rng &rng, std::size_t index)
{
    static constexpr std::string_view extensions[] = {".txt", ".json", ".png", ".o",   ".js",
                                                      ".h",   ".cpp",  ".log", ".svg", ""};
    return "file-" + std::to_string(index) +
           std::string(extensions[rng.below(std::size(extensions))]);
}

// Grows one top-level folder as a random recursive tree: each new folder hangs below a random
// earlier one that may still take children; some folders stay leaves early, so leaves sit 3 to 6
// levels down rather than all at the deepest level.
std::vector<Folder> growFolders(Rng &rng, const std::string &topPath, int count, Totals &totals)
{
    std::vector<Folder> folders{{topPath, 1}};
    std::vector<std::size_t> open{0};
    makeFolder(topPath, totals);
    for (int i = 1; i < count; ++i) {
        const Folder &parent = folders[open[rng.below(open.size())]];
        Folder folder{parent.path + '/' + folderName(rng, std::size_t(i)), parent.depth + 1};
        makeFolder(folder.path, totals);
        if (folder.depth < maxDepth && rng.unit() < 0.6)
            open.push_back(folders.size());
        folders.push_back(std::move(folder));
    }
    return folders;
}

// Spreads the files unevenly: a shuffled few folders hold many files, most hold a handful.
void fillFolders(Rng &rng, const std::vector<Folder> &folders, int count, bool sized,
                 Totals &totals)
{
    std::vector<std::size_t> order(folders.size());
    for (std::size_t i = 0; i < order.size(); ++i)
        order[i] = i;
    for (std::size_t i = order.size(); i > 1; --i)
        std::swap(order[i - 1], order[rng.below(i)]);

    std::vector<int> perFolder(folders.size(), 0);
    for (int i = 0; i < count; ++i) {
        const double u = rng.unit();
        ++perFolder[order[std::size_t(u * u * double(order.size()))]];
    }
    std::size_t index = 0;
    for (std::size_t f = 0; f < folders.size(); ++f) {
        for (int i = 0; i < perFolder[f]; ++i) {
            // This order of drawing keeps the trees what they were before huge existed.
            const std::uint64_t size = smallFileSize(rng);
            const std::string name = fileName(rng, index++);
            makeFile(folders[f].path + '/' + name, sized ? size : 0, totals);
        }
    }
}

// Shares of the total that each top-level folder gets.
std::vector<double> topLevelShares(bool skewed)
{
    if (skewed) {
        std::vector<double> shares(topLevelCount, 0.10 / (topLevelCount - 1));
        shares[0] = 0.90;
        return shares;
    }
    return std::vector<double>(topLevelCount, 1.0 / topLevelCount);
}

int generate(const Shape &shape, const std::string &root)
{
    const std::uint64_t seed = shape.skewed ? 0x5ca1ab1e : 0xd057e4e;
    Totals totals;
    makeFolder(root, totals);

    // Each top-level folder has its own seed, so building them on several threads stays
    // reproducible.
    const auto shares = topLevelShares(shape.skewed);
    std::vector<std::vector<Folder>> tops(topLevelCount);
    std::vector<Totals> topTotals(topLevelCount);
    std::atomic<int> next = 0;
    const auto build = [&] {
        for (int t; (t = next++) < topLevelCount;) {
            Rng rng(seed + std::uint64_t(t));
            const int folders = std::max(1, int(std::lround(shares[t] * shape.folders)) - (t == 0));
            tops[t] = growFolders(rng, root + "/top-" + std::to_string(t), folders, topTotals[t]);
            fillFolders(rng, tops[t], int(std::lround(shares[t] * (shape.files - bigFileCount))),
                        shape.sized, topTotals[t]);
        }
    };
    {
        std::vector<std::jthread> workers;
        for (unsigned i = 0; i < std::max(1U, std::thread::hardware_concurrency()); ++i)
            workers.emplace_back(build);
    }

    std::vector<const Folder *> all;
    for (int t = 0; t < topLevelCount; ++t) {
        totals.folders += topTotals[t].folders;
        totals.files += topTotals[t].files;
        totals.bytes += topTotals[t].bytes;
        for (const Folder &f : tops[t])
            all.push_back(&f);
    }
    // Big files land in random folders, so the skewed tree keeps most of them under its giant.
    Rng rng(~seed);
    for (int i = 0; i < bigFileCount; ++i) {
        const Folder &folder = *all[rng.below(all.size())];
        makeFile(folder.path + "/big-" + std::to_string(i) + ".bin",
                 rng.logUniform(26'000'000, 60'000'000), totals);
    }

    std::printf("%s: %ld folders, %ld files, %.2f GB allocated\n", root.c_str(), totals.folders,
                totals.files, double(totals.bytes) / 1e9);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 2 && std::string_view(argv[1]) == "--version") {
        std::puts(generatorVersion);
        return 0;
    }
    const std::string_view kind = argc == 3 ? argv[1] : "";
    Shape shape;
    if (kind == "skewed") {
        shape.skewed = true;
    } else if (kind == "huge") {
        shape.folders *= 10;
        shape.files *= 10;
        shape.sized = false;
    } else if (kind != "wide") {
        std::fprintf(
            stderr,
            "usage: bench_gen_tree wide|skewed|huge DIR\n       bench_gen_tree --version\n");
        return 2;
    }
    return generate(shape, argv[2]);
}
