#include "advisor/Advisor.h"
#include "scan/Scanner.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QDir>

using namespace TreeBuilder;
using Safety = Advice::Safety;

namespace {

constexpr std::int64_t now = 1'700'000'000;
constexpr std::int64_t day = 86'400;

const char *const trashReason =
    "Already in the Trash. Empty the Trash in your file manager to actually free this space.";
const char *const appCacheReason = "App cache. The app rebuilds it automatically.";
const char *const supportCacheReason =
    "App cache (browser, editor or chat app). Rebuilt on next launch.";
const char *const venvReason =
    "Python virtual environment. Recreate it from the project's requirements.";
const char *const pycacheReason = "Compiled Python files. Regenerated automatically.";
const char *const frameworkReason = "Framework build cache. Recreated on the next build.";
const char *const buildReason = "Build output. Rebuilt from the project's sources.";
const char *const firmwareReason = "iOS/macOS firmware. Downloaded again when it's needed.";

QString line(const QString &path, Safety safety, const QString &reason, bool actionable = true)
{
    static const char *const names[] = {"safe", "rebuild", "review"};
    return path + QStringLiteral(" [") + QLatin1String(names[int(safety)]) +
           (actionable ? QString() : QStringLiteral(", inert")) + QStringLiteral("] ") + reason;
}

// One line per advice, home shown as "~", so whole results compare at once.
QStringList describe(const std::vector<Advice> &advice, const std::string &home)
{
    QStringList lines;
    for (const Advice &a : advice) {
        QString path = QFile::decodeName(QByteArray::fromStdString(a.path));
        if (a.path.starts_with(home + '/'))
            path = QStringLiteral("~") + path.mid(qsizetype(home.size()));
        lines << line(path, a.safety, a.reason, a.actionable);
    }
    return lines;
}

// A size tree built by hand, for sizes no test should put on disk. Each added folder holds the
// given bytes as loose files; missing ancestors are created.
class HandTree
{
public:
    explicit HandTree(std::optional<std::string> basePath) : m_root(Node::create("root"))
    {
        if (basePath)
            m_root->setBasePath(*basePath);
    }

    HandTree &add(const QByteArray &relPath, std::uint64_t bytes)
    {
        NodePtr node = m_root;
        for (const QByteArray &piece : relPath.split('/')) {
            NodePtr child = node->child(piece.toStdString());
            if (!child) {
                child = Node::create(piece.toStdString(), node);
                node->appendChild(child);
            }
            node = child;
        }
        node->addLoose(bytes);
        return *this;
    }

    NodePtr finished()
    {
        finish(*m_root);
        return m_root;
    }

private:
    static void finish(Node &n)
    {
        for (const NodePtr &c : n.children())
            finish(*c);
        n.finish();
    }

    NodePtr m_root;
};

void makePath(const QByteArray &path)
{
    QDir().mkpath(QFile::decodeName(path));
}

} // namespace

class TestAdvisor : public QObject
{
    Q_OBJECT

    std::string m_home; // for hand-built trees; only marker files exist there
    Advisor::Context m_context;

private Q_SLOTS:
    void initTestCase()
    {
        m_home = QFile::encodeName(TestSandbox::instance()->root()).toStdString() + "/hand";
        makePath(QByteArray::fromStdString(m_home));
        m_context = {m_home,
                     now,
                     m_home + "/.local/share/Trash",
                     m_home + "/xdg",
                     {m_home + "/Downloads", m_home + "/Desktop", m_home + "/Documents",
                      m_home + "/Vid\xc3\xa9os"}};
    }

    // One folder of 30 MB (unless told) below home; markers are created on disk first, a name
    // starting with "@" as a dangling link, one ending in ":N" changed N days and a half ago, one
    // ending in "/" as an empty folder of the tree only. An empty reason means nothing is advised;
    // without a reason only the safety is compared.
    void folderRules_data()
    {
        QTest::addColumn<QByteArray>("folder");
        QTest::addColumn<quint64>("bytes");
        QTest::addColumn<QByteArrayList>("markers");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *folder, Safety s, const char *reason,
                            const QByteArrayList &markers = {}, bool actionable = true,
                            quint64 bytes = 30'000'000) {
            QTest::newRow(folder) << QByteArray(folder) << bytes << markers
                                  << line(QStringLiteral("~/") + QString::fromUtf8(folder), s,
                                          QString::fromUtf8(reason), actionable);
        };
        const auto none = [](const char *folder, const QByteArrayList &markers = {},
                             quint64 bytes = 30'000'000) {
            QTest::newRow(folder) << QByteArray(folder) << bytes << markers << QString();
        };
        const auto kind = [&](const char *folder, Safety s, const QByteArrayList &markers = {},
                              bool actionable = true) { row(folder, s, "", markers, actionable); };

        row(".Trash", Safety::review, trashReason, {}, false);
        row(".local/share/Trash", Safety::review, trashReason, {}, false);
        row("Library/Developer/Xcode/DerivedData", Safety::safe,
            "Xcode build products. Rebuilt on your next build.");
        row("Library/Developer/Xcode/Archives", Safety::review,
            "Old app archives. Keep the ones you still need for crash symbolication.");
        row("Library/Developer/CoreSimulator/Caches", Safety::safe,
            "Simulator caches. Recreated automatically.");
        row("Library/Developer/CoreSimulator/Devices", Safety::review,
            "iOS simulators and their data. Prefer `xcrun simctl delete unavailable` to prune old "
            "ones.");
        row("Library/Logs", Safety::safe, "Log files. Apps write new ones as needed.");
        row(".npm", Safety::rebuild, "npm download cache. Packages are re-downloaded when needed.");
        none(".npm-global/x");
#ifdef Q_OS_MACOS
        row(".cache", Safety::rebuild,
            "Tool caches (pip, Hugging Face, etc.). Re-downloaded when needed.");
#else
        none(".cache");
#endif
        for (const char *cache :
             {".gradle/caches", ".m2/repository", "go/pkg/mod", ".cargo/registry", ".pub-cache",
              ".yarn/berry/cache", "Library/pnpm/store", ".pnpm-store", ".bun/install/cache",
              ".nuget/packages", ".conda/pkgs", ".cocoapods/repos", "miniconda3/pkgs",
              "anaconda3/pkgs", "opt/anaconda3/pkgs"})
            row(cache, Safety::rebuild,
                "Package download cache. Re-downloaded on the next install.");
        row(".ollama/models", Safety::review,
            "Local AI models. Re-download with `ollama pull` if you still use them.");
        row("Library/Containers/com.docker.docker", Safety::review,
            "Docker's disk image. Prefer `docker system prune` inside Docker instead of trashing "
            "it.",
            {}, false);
        row("Library/Application Support/MobileSync/Backup", Safety::review,
            "iPhone/iPad backups. Delete old ones from Finder › your device › Manage Backups.");
        none("Library/Caches");
        row("Library/Caches/com.example.app", Safety::safe, appCacheReason);
        row("Library/Caches/__pycache__", Safety::safe, appCacheReason);
        row("Library/Developer/Xcode/iOS DeviceSupport", Safety::rebuild,
            "Device debug symbols. Re-copied the next time you connect that device.");
        row("Library/Application Support/Slack/Cache", Safety::safe, supportCacheReason);
        row("Library/Containers/com.app/Data/Library/Caches", Safety::safe, supportCacheReason);
        none("Library/Application Support/Slack/cache");
        row("web/node_modules", Safety::rebuild,
            "npm packages for this project. `npm install` restores them.", {"web/package.json"});
        none("no-package/node_modules");
        row("py/.venv", Safety::rebuild, venvReason, {"py/.venv/pyvenv.cfg"});
        row("py2/venv", Safety::rebuild, venvReason, {"py2/venv/pyvenv.cfg"});
        none("no-cfg/venv");
        row("py/pkg/__pycache__", Safety::safe, pycacheReason);
        none("small/__pycache__", {}, 24'999'999);
        row("floor/__pycache__", Safety::safe, pycacheReason, {}, true, 25'000'000);
        row("rs/target", Safety::rebuild, "Rust build output. `cargo build` recreates it.",
            {"rs/Cargo.toml"});
        none("no-cargo/target");
        row("android/.gradle", Safety::safe, frameworkReason);
        row("ios/DerivedData", Safety::safe, frameworkReason);
        row("site/.next", Safety::safe, frameworkReason);
        none(".gradle");
        none(".gradle/wrapper/.next");
        row("app/build", Safety::rebuild, buildReason, {"app/CMakeLists.txt"});
        row("kt/dist", Safety::rebuild, buildReason, {"kt/build.gradle.kts"});
        row("swift/.build", Safety::rebuild, buildReason, {"swift/Package.swift"});
        none("no-marker/build");
        none("dangling/build", {"dangling/@package.json"});

        none("xdg");
        row("xdg/pip", Safety::rebuild,
            "pip download cache. Packages are re-downloaded on the next `pip install`.");
        kind("xdg/JetBrains", Safety::rebuild);
        row("xdg/huggingface", Safety::review,
            "Downloaded AI models. Fetched again the next time a program loads them, which can "
            "take long.");
        row("xdg/mesa_shader_cache", Safety::safe, appCacheReason);
        none("xdg/tiny", {}, 24'999'999);
        row(".var/app/org.gimp.GIMP/cache", Safety::safe, appCacheReason);
        none(".var/app/org.gimp.GIMP/data");
        row("snap/firefox/common/.cache", Safety::safe, appCacheReason);
        none("snap/firefox/current/.cache");
        row(".config/Code/CachedData", Safety::safe, supportCacheReason);
        row(".config/chromium/Default/GPUCache", Safety::safe, supportCacheReason);
        none(".config/Cache");
        row(".cargo/git", Safety::rebuild,
            "Cargo's copies of git dependencies. `cargo fetch` downloads them again.");
        for (const char *f : {".local/share/pnpm/store", ".gradle/wrapper/dists", ".ivy2/cache",
                              ".sbt/boot", ".local/share/virtualenvs", ".vscode-server"})
            kind(f, Safety::rebuild);
        for (const char *f : {".rustup/toolchains", ".pyenv/versions", ".nvm/versions",
                              ".sdkman/candidates", ".android/avd"})
            kind(f, Safety::review);
        kind(".local/share/containers", Safety::review, {}, false);
        kind(".local/share/docker", Safety::review, {}, false);
        kind(".local/share/Steam/steamapps/shadercache", Safety::safe);
        kind(".steam/steam/steamapps/shadercache", Safety::safe);
        none("games/shadercache");
        row("mnt/.Trash-1000", Safety::review, trashReason, {}, false);
        row("mnt/.Trash/1000", Safety::review, trashReason, {}, false);
        none("mnt/.Trash-x");
        none("mnt/1000");

        row("mvn/target", Safety::rebuild, "Maven build output. `mvn package` recreates it.",
            {"mvn/pom.xml:90"});
        row("mvn-old/target", Safety::rebuild,
            "Maven build output of a project untouched for 8 months. `mvn package` recreates it.",
            {"mvn-old/pom.xml:240"});
        row("sbt/target", Safety::rebuild, "sbt build output. `sbt compile` recreates it.",
            {"sbt/build.sbt"});
        row("hs/.stack-work", Safety::rebuild, "Stack build output. `stack build` recreates it.",
            {"hs/stack.yaml"});
        row("cabal/dist-newstyle", Safety::rebuild,
            "Cabal build output of a project untouched for 3 months. `cabal build` recreates it.",
            {"cabal/a.cabal:91", "cabal/b.cabal:400"});
        kind("cabal2/dist-newstyle", Safety::rebuild, {"cabal2/cabal.project"});
        none("cabal3/dist-newstyle", {"cabal3/.cabal"});
        row("ex/deps", Safety::rebuild, "Elixir dependencies. `mix deps.get` fetches them again.",
            {"ex/mix.exs"});
        kind("ex/_build", Safety::rebuild, {"ex/mix.exs"});
        kind("zig/zig-cache", Safety::safe, {"zig/build.zig"});
        kind("zig/.zig-cache", Safety::safe, {"zig/build.zig"});
        row("zig/zig-out", Safety::rebuild, "Zig build output. `zig build` recreates it.",
            {"zig/build.zig"});
        const QByteArray unity = "unity/ProjectSettings/ProjectVersion.txt";
        row("unity/obj", Safety::rebuild,
            "Unity's build files. Unity recreates them when it opens the project.",
            {unity, "unity/Game.csproj"});
        kind("unity/Library", Safety::rebuild, {unity});
        kind("unity/Temp", Safety::rebuild, {unity});
        none("unity2/Library", {"unity2/ProjectVersion.txt"});
        row("cs/bin", Safety::rebuild, ".NET build output. `dotnet build` recreates it.",
            {"cs/App.csproj"});
        row("fs/obj", Safety::rebuild, ".NET build files. `dotnet build` recreates them.",
            {"fs/Lib.fsproj"});
        none("cs2/bin", {"cs2/App.csproj.user"});
        row("dart/.dart_tool", Safety::rebuild,
            "Dart tool files. `flutter pub get` or `dart pub get` recreates them.",
            {"dart/pubspec.yaml"});
        kind("gd/.godot", Safety::rebuild, {"gd/project.godot"});
        row("tf/.terraform", Safety::rebuild,
            "Terraform providers and modules. `terraform init` downloads them again.",
            {"tf/main.tf"});
        for (const char *f : {"ue/Intermediate", "ue/DerivedDataCache", "ue/Binaries"})
            kind(f, Safety::rebuild, {"ue/Game.uproject"});
        for (const char *f : {".pytest_cache", ".mypy_cache", ".ruff_cache", ".tox", ".nox"})
            kind(f, Safety::safe);
        row("cm/out", Safety::rebuild,
            "CMake build tree. Configuring and building the project again recreates it.",
            {"cm/out/CMakeCache.txt", "cm/out/CMakeFiles/"});
        none("cm2/out", {"cm2/out/CMakeFiles/"});
        none("cm3/out", {"cm3/out/CMakeCache.txt"});
        none("cm4/src",
             {"cm4/src/CMakeCache.txt", "cm4/src/CMakeLists.txt", "cm4/src/CMakeFiles/"});
        none("cm5/out", {"cm5/out/CMakeCache.txt", "cm5/out/CMakeFiles/", "cm5/out/.git/"});
        none("Documents", {"Documents/CMakeCache.txt", "Documents/CMakeFiles/"});
        row("bare/build/.pytest_cache", Safety::safe,
            "pytest cache. Recreated on the next test run.");
        for (const char *f : {"bare/target", "bare/.stack-work", "bare/dist-newstyle", "bare/deps",
                              "bare/_build", "bare/zig-out", "bare/Library", "bare/obj", "bare/bin",
                              "bare/.godot", "bare/Intermediate", "bare/.terraform"})
            none(f);
    }

    void folderRules()
    {
        QFETCH(QByteArray, folder);
        QFETCH(quint64, bytes);
        QFETCH(QByteArrayList, markers);
        QFETCH(QString, expected);

        const QByteArray home = QByteArray::fromStdString(m_home);
        HandTree tree(m_home);
        for (const QByteArray &marker : markers) {
            const QList<QByteArray> parts = QByteArray(marker).replace("@", "").split(':');
            const QByteArray path = home + '/' + parts[0];
            makePath(path.left(path.lastIndexOf('/')));
            if (marker.endsWith('/'))
                tree.add(parts[0].chopped(1), 0);
            else if (marker.contains('@'))
                makeSymlink("nowhere", path);
            else
                makeFile(path);
            if (parts.size() > 1)
                setModified(path, now - parts[1].toInt() * day - day / 2);
        }
        const NodePtr root = tree.add(folder, bytes).finished();
        const QString got = describe(Advisor::advise(root, {}, m_context), m_home).join('\n');
        if (expected.endsWith(QStringLiteral("] ")))
            QVERIFY2(got.startsWith(expected) && got.size() > expected.size(), qPrintable(got));
        else
            QCOMPARE(got, expected);
    }

    // One big file, modified `days` and a half ago; an empty result means nothing is advised.
    void fileRules_data()
    {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<quint64>("size");
        QTest::addColumn<qint64>("days");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const char *path, quint64 size, qint64 days,
                            const QString &expected) {
            QTest::newRow(name) << QByteArray(path) << size << days << expected;
        };
        const auto installer = [](const char *age) {
            return QStringLiteral("[review] Installer or archive in Downloads%1. Usually not "
                                  "needed once installed or unpacked.")
                .arg(QLatin1String(age));
        };
        const auto old = [](const char *age) {
            return QStringLiteral("[review] Big file not modified in %1.").arg(QLatin1String(age));
        };
        const QString firmware = QStringLiteral("[rebuild] ") + firmwareReason;

        row("fresh dmg", "~/Downloads/Tool.dmg", 300'000'000, 5, installer(""));
        row("old dmg", "~/Downloads/Tool.dmg", 300'000'000, 400, installer(", 13 months old"));
        row("7 days", "~/Downloads/a.deb", 30'000'000, 7, installer(""));
        row("8 days", "~/Downloads/a.AppImage", 30'000'000, 8, installer(", 8 days old"));
        row("59 days", "~/Downloads/a.iso", 30'000'000, 59, installer(", 59 days old"));
        row("60 days", "~/Downloads/a.tar.zst", 30'000'000, 60, installer(", 2 months old"));
        row("729 days", "~/Downloads/a.xip", 30'000'000, 729, installer(", 24 months old"));
        row("730 days", "~/Downloads/a.msi", 30'000'000, 730, installer(", 2 years old"));
        row("from the future", "~/Downloads/a.exe", 30'000'000, -3, installer(""));
        row("extension case", "~/Downloads/sub/B.TAR.GZ", 30'000'000, 100,
            installer(", 3 months old"));
        row("installer on Desktop", "~/Desktop/a.dmg", 30'000'000, 400, {});
        row("video in Downloads", "~/Downloads/a.mkv", 250'000'000, 400, old("13 months"));
        row("150 MB video", "~/Vid\xc3\xa9os/a.mov", 150'000'000, 1095, {});
        row("250 MB video", "~/Vid\xc3\xa9os/a.mov", 250'000'000, 1095, old("3 years"));
        row("unlocalized videos", "~/Videos/a.mov", 250'000'000, 1095, {});
        row("at both floors", "~/Documents/a.bin", 200'000'000, 180, old("6 months"));
        row("a byte too small", "~/Documents/a.bin", 199'999'999, 180, {});
        row("a day too young", "~/Documents/a.bin", 200'000'000, 179, {});
        row("directly in home", "~/backup.tar", 250'000'000, 200, old("6 months"));
        row("in Projects", "~/Projects/backup.tar", 250'000'000, 200, {});
        row("look-alike folder", "~/Downloads2/a.dmg", 250'000'000, 400, {});
        row("photo library", "~/Pictures/Photos Library.photoslibrary/originals/a.heic",
            2'000'000'000, 1000, {});
        row("video project", "~/Vid\xc3\xa9os/Trip.fcpbundle/a.mov", 2'000'000'000, 1000, {});
        row("archive in a music project", "~/Downloads/Song.band/a.zip", 30'000'000, 10, {});
        row("firmware anywhere", "/opt/fw/iPhone.ipsw", 8'000'000'000, 0, firmware);
        row("firmware in a library", "~/Vid\xc3\xa9os/Trip.fcpbundle/iPad.IPSW", 8'000'000'000, 0,
            firmware);
        row("below the advice floor", "~/Downloads/a.ipsw", 24'999'999, 0, {});
    }

    void fileRules()
    {
        QFETCH(QByteArray, path);
        QFETCH(quint64, size);
        QFETCH(qint64, days);
        QFETCH(QString, expected);

        if (path.startsWith('~'))
            path.replace(0, 1, QByteArray::fromStdString(m_home));
        const BigFile file{path.toStdString(), size, now - days * day - day / 2};
        const auto advice = Advisor::advise(HandTree(m_home).finished(), {file}, m_context);
        QCOMPARE(advice.size(), std::size_t(expected.isEmpty() ? 0 : 1));
        if (advice.empty())
            return;
        QCOMPARE(*advice[0].file(), file);
        QVERIFY(advice[0].actionable);
        const QString got = describe(advice, m_home).constFirst();
        QCOMPARE(got.mid(got.indexOf(QStringLiteral(" [")) + 1), expected);
    }

    void nothingInsideAnAdvisedFolderIsAdvisedAgain()
    {
        const std::string h = m_home;
        const NodePtr root = HandTree(h)
                                 .add(".Trash", 1'000'000'000)
                                 .add(".Trash/old project/__pycache__", 1'000'000'000)
                                 .add("xdg/fw", 1'000'000'000)
                                 .add("mnt/.Trash-1000/files/fw", 30'000'000)
                                 .add(".local/share/Trash/files", 500'000'000)
                                 .add(".Trash-backup", 30'000'000)
                                 .finished();
        const std::vector<BigFile> files = {
            {h + "/.Trash/iPhone.ipsw", 900'000'000, now},
            {h + "/xdg/fw/iPad.ipsw", 900'000'000, now},
            {h + "/mnt/.Trash-1000/files/fw/a.ipsw", 30'000'000, now},
            {h + "/.local/share/Trash/files/a.ipsw", 400'000'000, now},
            {h + "/.Trash-backup/iPhone.ipsw", 30'000'000, now}};
        const auto advice = Advisor::advise(root, files, m_context);
        QCOMPARE(
            describe(advice, h),
            QStringList({line("~/.Trash", Safety::review, trashReason, false),
                         line("~/xdg/fw", Safety::safe, appCacheReason),
                         line("~/.local/share/Trash", Safety::review, trashReason, false),
                         line("~/mnt/.Trash-1000", Safety::review, trashReason, false),
                         line("~/.Trash-backup/iPhone.ipsw", Safety::rebuild, firmwareReason)}));
        QCOMPARE(advice[0].folder(), root->child(".Trash"));
        QCOMPARE(advice[0].size, std::uint64_t(2'000'000'000));
    }

    void equalSizesKeepDiscoveryOrder()
    {
        const NodePtr root = HandTree(m_home)
                                 .add("Library/Caches/b", 40'000'000)
                                 .add("Library/Caches/a", 40'000'000)
                                 .add(".npm", 50'000'000)
                                 .finished();
        const std::vector<BigFile> files = {{m_home + "/y.ipsw", 40'000'000, now},
                                            {m_home + "/x.ipsw", 40'000'000, now},
                                            {m_home + "/z.ipsw", 60'000'000, now}};
        QStringList paths;
        for (const Advice &a : Advisor::advise(root, files, m_context))
            paths << QString::fromStdString(a.path.substr(m_home.size()));
        QCOMPARE(paths, QStringList({"/z.ipsw", "/.npm", "/Library/Caches/b", "/Library/Caches/a",
                                     "/y.ipsw", "/x.ipsw"}));
    }

    void theRootIsNeverAdvisedButWalked()
    {
        const NodePtr derived = HandTree(m_home + "/Library/Developer/Xcode/DerivedData")
                                    .add("MyApp-abc/Build", 60'000'000)
                                    .add("__pycache__", 30'000'000)
                                    .finished();
        QCOMPARE(describe(Advisor::advise(derived, {}, m_context), m_home),
                 QStringList(line("~/Library/Developer/Xcode/DerivedData/__pycache__", Safety::safe,
                                  pycacheReason)));

        const NodePtr noBase = HandTree(std::nullopt).add("tmp/__pycache__", 30'000'000).finished();
        const auto advice = Advisor::advise(noBase, {}, m_context);
        QCOMPARE(advice.size(), std::size_t(1));
        QCOMPARE(advice[0].path, std::string("/tmp/__pycache__"));

        const NodePtr small = HandTree(m_home).add("__pycache__", 24'999'999).finished();
        QVERIFY(Advisor::advise(small, {}, m_context).empty());
        QVERIFY(
            Advisor::advise(nullptr, {{m_home + "/a.ipsw", 30'000'000, now}}, m_context).empty());
    }

    void defaultsFollowTheXdgFolders()
    {
        const std::string home = Advisor::Context{}.home;
        struct Case
        {
            const char *var;
            std::string Advisor::Context::*folder;
            const char *inside, *fallback;
        };
        for (const Case &c :
             {Case{"XDG_DATA_HOME", &Advisor::Context::trash, "/Trash", "/.local/share/Trash"},
              Case{"XDG_CACHE_HOME", &Advisor::Context::cache, "", "/.cache"}}) {
            const QByteArray saved = qgetenv(c.var);
            QCOMPARE(Advisor::Context{}.*c.folder, saved.toStdString() + c.inside);
            qputenv(c.var, "relative");
            QCOMPARE(Advisor::Context{}.*c.folder, home + c.fallback);
            qunsetenv(c.var);
            QCOMPARE(Advisor::Context{}.*c.folder, home + c.fallback);
            qputenv(c.var, saved);
        }
        // A localized folder, and one turned off by pointing it at home.
        const QByteArray dirs = qgetenv("XDG_CONFIG_HOME") + "/user-dirs.dirs";
        QVERIFY(writeFile(dirs,
                          "XDG_VIDEOS_DIR=\"$HOME/Vid\xc3\xa9os\"\nXDG_DESKTOP_DIR=\"$HOME/\"\n"));
        const std::array<std::string, 4> folders = Advisor::Context{}.userFolders;
        QFile::remove(QFile::decodeName(dirs));
        QCOMPARE(folders,
                 (std::array<std::string, 4>{
                     home + "/Downloads", {}, home + "/Documents", home + "/Vid\xc3\xa9os"}));
    }

    // A real home folder on disk, scanned, advised with the default context. Sizes differ by
    // whole megabytes so the order does not depend on the order folders are listed in.
    void scannedHome()
    {
        const QByteArray home = QFile::encodeName(TestSandbox::instance()->home());
        const auto file = [&](const char *rel, std::uint64_t bytes = 0) {
            const QByteArray path = home + '/' + rel;
            makePath(path.left(path.lastIndexOf('/')));
            makeFile(path, bytes);
        };
        file("Library/Caches/com.big/data", 30'000'000);
        file("Library/Caches/com.small/data", 10'000'000);
        file("Projects/web/package.json");
        file("Projects/web/node_modules/lodash/blob", 27'000'000);
        file(".npm-global/lib/package.json");
        file(".npm-global/lib/node_modules/tool/package.json");
        file(".npm-global/lib/node_modules/tool/dist/bundle", 28'000'000);
        file("Projects/py/venv/lib/__pycache__/blob", 29'000'000);
        file("Downloads/new.dmg", 26'000'000);
        file("Downloads/old.dmg", 26'500'000);
        const std::time_t t = std::time(nullptr);
        setModified(home + "/Downloads/new.dmg", t - 5 * day);
        setModified(home + "/Downloads/old.dmg", t - 400 * day);

        Scanner scanner;
        const NodePtr root = scanner.scan(home.toStdString());
        QVERIFY(root);
        const Advisor::Context context;
        QCOMPARE(context.home, home.toStdString());
        QCOMPARE(describe(Advisor::advise(root, scanner.bigFiles(), context), context.home),
                 QStringList({
                     line("~/Library/Caches/com.big", Safety::safe, appCacheReason),
                     line("~/Projects/py/venv/lib/__pycache__", Safety::safe, pycacheReason),
                     line("~/.npm-global/lib/node_modules/tool/dist", Safety::rebuild, buildReason),
                     line("~/Projects/web/node_modules", Safety::rebuild,
                          "npm packages for this project. `npm install` restores them."),
                     line("~/Downloads/old.dmg", Safety::review,
                          "Installer or archive in Downloads, 13 months old. Usually not needed "
                          "once installed or unpacked."),
                     line("~/Downloads/new.dmg", Safety::review,
                          "Installer or archive in Downloads. Usually not needed once installed "
                          "or unpacked."),
                 }));
    }
};

DUSTMERE_TEST_MAIN(TestAdvisor)
#include "test_advisor.moc"
