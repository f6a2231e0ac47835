#include "advisor/Advisor.h"

#include "advisor/LinuxRules.h"
#include "advisor/ProjectOutputs.h"
#include "advisor/Verdict.h"
#include "platform/Home.h"
#include "platform/Paths.h"

#include <QFile>
#include <QStandardPaths>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <optional>
#include <string_view>
#include <unistd.h>
#include <unordered_set>

using Safety = Advice::Safety;

namespace {

const std::unordered_set<std::string_view> &appCacheNames()
{
    static const std::unordered_set<std::string_view> names = {
        "Cache",     "Caches",        "CachedData",   "Code Cache", "GPUCache", "ShaderCache",
        "DawnCache", "GrShaderCache", "CacheStorage", "Crashpad",   "logs",     "Logs"};
    return names;
}

const std::unordered_set<std::string_view> &frameworkCacheNames()
{
    static const std::unordered_set<std::string_view> names = {
        ".next",    ".nuxt", ".turbo",  ".parcel-cache", ".svelte-kit",
        ".angular", ".expo", ".gradle", "DerivedData"};
    return names;
}

const std::unordered_set<std::string_view> &installerExtensions()
{
    static const std::unordered_set<std::string_view> extensions = {
        "dmg",     "pkg",        "iso", "xip", "msi", "exe", "zip",      "tar",
        "gz",      "tgz",        "rar", "7z",  "deb", "rpm", "appimage", "snap",
        "flatpak", "flatpakref", "run", "xz",  "zst", "bz2"};
    return extensions;
}

constexpr std::array<std::string_view, 6> projectMarkers = {"package.json",     "build.gradle",
                                                            "build.gradle.kts", "CMakeLists.txt",
                                                            "Package.swift",    "pyproject.toml"};

constexpr std::array<std::string_view, 7> mediaLibraryMarkers = {
    ".photoslibrary/", ".musiclibrary/", ".imovielibrary/", ".fcpbundle/",
    ".tvlibrary/",     ".band/",         ".logicx/"};

constexpr std::array<std::string_view, 15> packageCaches = {
    "/.gradle/caches",     "/.m2/repository",    "/go/pkg/mod",         "/.cargo/registry",
    "/.pub-cache",         "/.yarn/berry/cache", "/Library/pnpm/store", "/.pnpm-store",
    "/.bun/install/cache", "/.nuget/packages",   "/.conda/pkgs",        "/.cocoapods/repos",
    "/miniconda3/pkgs",    "/anaconda3/pkgs",    "/opt/anaconda3/pkgs"};

// An error (a missing folder, no permission) counts as absent. Links are followed, so a
// dangling marker is absent too.
bool exists(const std::string &path)
{
    return access(path.c_str(), F_OK) == 0;
}

// The extension of the last component, ASCII lower-cased; a leading dot starts no extension.
std::string lowerExtension(std::string_view path)
{
    const std::string_view name = Paths::lastComponent(path);
    const auto dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0)
        return {};
    std::string ext(name.substr(dot + 1));
    std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) {
        return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : char(c);
    });
    return ext;
}

class Rules
{
public:
    explicit Rules(const Advisor::Context &context)
        : m_context(context), m_home(context.home), m_lib(m_home + "/Library"),
          m_dev(m_lib + "/Developer"), m_trash(context.trash), m_now(context.now), m_linux(context)
    {}

    [[nodiscard]] std::optional<Verdict> folder(const Node &node, const std::string &path,
                                                const std::string &parentPath) const
    {
        const std::string &name = node.name();
        if (path == m_home + "/.Trash" || (!m_trash.empty() && path == m_trash))
            return Verdict::inTrash();
        if (path == m_dev + "/Xcode/DerivedData")
            return Verdict{Safety::safe, "Xcode build products. Rebuilt on your next build."};
        if (path == m_dev + "/Xcode/Archives")
            return Verdict{Safety::review,
                           "Old app archives. Keep the ones you still need for crash "
                           "symbolication."};
        if (path == m_dev + "/CoreSimulator/Caches")
            return Verdict{Safety::safe, "Simulator caches. Recreated automatically."};
        if (path == m_dev + "/CoreSimulator/Devices")
            return Verdict{Safety::review,
                           "iOS simulators and their data. Prefer `xcrun simctl delete "
                           "unavailable` to prune old ones."};
        if (path == m_lib + "/Logs")
            return Verdict{Safety::safe, "Log files. Apps write new ones as needed."};
        if (path == m_home + "/.npm")
            return Verdict{Safety::rebuild,
                           "npm download cache. Packages are re-downloaded when needed."};
#ifdef Q_OS_MACOS
        // Elsewhere it is the platform's cache folder, whose folders are judged one by one.
        if (path == m_home + "/.cache")
            return Verdict{Safety::rebuild,
                           "Tool caches (pip, Hugging Face, etc.). Re-downloaded when needed."};
#endif
        if (isPackageCache(path))
            return Verdict{Safety::rebuild,
                           "Package download cache. Re-downloaded on the next install."};
        if (path == m_home + "/.ollama/models")
            return Verdict{Safety::review,
                           "Local AI models. Re-download with `ollama pull` if you still use "
                           "them."};
        if (path == m_lib + "/Containers/com.docker.docker")
            return Verdict{Safety::review,
                           "Docker's disk image. Prefer `docker system prune` inside Docker "
                           "instead of trashing it.",
                           false};
        if (path == m_lib + "/Application Support/MobileSync/Backup")
            return Verdict{Safety::review,
                           "iPhone/iPad backups. Delete old ones from Finder › your device › "
                           "Manage Backups."};
        if (parentPath == m_lib + "/Caches")
            return Verdict{Safety::safe, "App cache. The app rebuilds it automatically."};
        if (parentPath.starts_with(m_dev + "/Xcode") && name.ends_with("DeviceSupport"))
            return Verdict{Safety::rebuild,
                           "Device debug symbols. Re-copied the next time you connect that "
                           "device."};
        if ((path.starts_with(m_lib + "/Application Support/") ||
             path.starts_with(m_lib + "/Containers/")) &&
            appCacheNames().contains(name))
            return Verdict{Safety::safe,
                           "App cache (browser, editor or chat app). Rebuilt on next launch."};
        if (name == "node_modules" && !parentPath.ends_with("/lib") &&
            exists(parentPath + "/package.json"))
            return Verdict{Safety::rebuild,
                           "npm packages for this project. `npm install` restores them."};
        if ((name == ".venv" || name == "venv") && exists(path + "/pyvenv.cfg"))
            return Verdict{Safety::rebuild,
                           "Python virtual environment. Recreate it from the project's "
                           "requirements."};
        if (name == "__pycache__")
            return Verdict{Safety::safe, "Compiled Python files. Regenerated automatically."};
        if (name == "target" && exists(parentPath + "/Cargo.toml"))
            return Verdict{Safety::rebuild, "Rust build output. `cargo build` recreates it."};
        if (frameworkCacheNames().contains(name) && !path.starts_with(m_home + "/.gradle"))
            return Verdict{Safety::safe, "Framework build cache. Recreated on the next build."};
        if ((name == "build" || name == "dist" || name == ".build") && hasProjectMarker(parentPath))
            return Verdict{Safety::rebuild, "Build output. Rebuilt from the project's sources."};
        if (path.starts_with(m_home + "/.config/") && parentPath != m_home + "/.config" &&
            appCacheNames().contains(name))
            return Verdict{Safety::safe,
                           "App cache (browser, editor or chat app). Rebuilt on next launch."};
        if (auto verdict = m_linux.folder(name, path, parentPath))
            return verdict;
        return ProjectOutputs::folder(node, path, parentPath, m_context);
    }

    [[nodiscard]] std::optional<std::pair<Safety, QString>> file(const BigFile &file) const
    {
        const std::string &path = file.path;
        const std::string ext = lowerExtension(path);
        if (ext == "ipsw")
            return std::pair{Safety::rebuild,
                             QStringLiteral("iOS/macOS firmware. Downloaded again when it's "
                                            "needed.")};
        if (!inUserFolder(path))
            return std::nullopt;
        for (const std::string_view marker : mediaLibraryMarkers) {
            if (path.find(marker) != std::string::npos)
                return std::nullopt;
        }
        const std::int64_t days = (m_now - file.modified) / 86'400;
        const std::string &downloads = m_context.userFolders[0];
        if (!downloads.empty() && path.starts_with(downloads + '/') &&
            installerExtensions().contains(ext)) {
            QString reason = QStringLiteral("Installer or archive in Downloads");
            if (days >= 8)
                reason += QStringLiteral(", ") + Advisor::ageText(days) + QStringLiteral(" old");
            reason += QStringLiteral(". Usually not needed once installed or unpacked.");
            return std::pair{Safety::review, reason};
        }
        if (file.size < Advisor::oldFileFloor || days < Advisor::oldFileDays)
            return std::nullopt;
        return std::pair{Safety::review, QStringLiteral("Big file not modified in ") +
                                             Advisor::ageText(days) + QStringLiteral(".")};
    }

private:
    [[nodiscard]] bool isPackageCache(const std::string &path) const
    {
        if (!path.starts_with(m_home))
            return false;
        const std::string_view rest = std::string_view(path).substr(m_home.size());
        return std::find(packageCaches.begin(), packageCaches.end(), rest) != packageCaches.end();
    }

    [[nodiscard]] static bool hasProjectMarker(const std::string &parentPath)
    {
        return std::any_of(projectMarkers.begin(), projectMarkers.end(), [&](std::string_view m) {
            return exists(parentPath + '/' + std::string(m));
        });
    }

    [[nodiscard]] bool inUserFolder(const std::string &path) const
    {
        for (const std::string &folder : m_context.userFolders) {
            if (!folder.empty() && path.starts_with(folder + '/'))
                return true;
        }
        return Paths::parent(path) == m_home;
    }

    const Advisor::Context &m_context;
    std::string m_home;
    std::string m_lib;
    std::string m_dev;
    std::string m_trash;
    std::int64_t m_now;
    LinuxRules m_linux;
};

struct Visit
{
    NodePtr node;
    std::string path;
    std::string parentPath;
};

// Depth-first, pre-order, children in their stored order; an explicit stack so that very deep
// trees cannot exhaust the thread's stack.
void walkFolders(const NodePtr &root, const Rules &rules, std::vector<Advice> &out)
{
    std::vector<Visit> stack;
    stack.push_back({root, root->basePath().value_or("/"), {}});
    while (!stack.empty()) {
        Visit v = std::move(stack.back());
        stack.pop_back();
        if (v.node->size() < Advisor::adviceFloor)
            continue;
        if (v.node->hasParent()) {
            if (auto verdict = rules.folder(*v.node, v.path, v.parentPath)) {
                out.push_back({v.node, v.path, v.node->size(), verdict->safety,
                               std::move(verdict->reason), verdict->actionable});
                continue;
            }
        }
        const auto &children = v.node->children();
        for (auto it = children.rbegin(); it != children.rend(); ++it) {
            std::string childPath = v.path == "/" ? std::string() : v.path;
            childPath += '/';
            childPath += (*it)->name();
            stack.push_back({*it, std::move(childPath), v.path});
        }
    }
}

} // namespace

std::string Advisor::Context::defaultHome()
{
    return Home::path();
}

std::int64_t Advisor::Context::defaultNow()
{
    return static_cast<std::int64_t>(std::time(nullptr));
}

std::string Advisor::Context::defaultTrash()
{
    return Home::trash();
}

std::string Advisor::Context::defaultCache()
{
    // A relative XDG_CACHE_HOME is invalid and ignored, as the base-directory rules say.
    if (const char *cache = std::getenv("XDG_CACHE_HOME"); cache && cache[0] == '/')
        return Paths::clean(cache);
    return Paths::absolute(".cache", Home::path());
}

std::array<std::string, 4> Advisor::Context::defaultUserFolders()
{
    constexpr std::array kinds = {QStandardPaths::DownloadLocation, QStandardPaths::DesktopLocation,
                                  QStandardPaths::DocumentsLocation,
                                  QStandardPaths::MoviesLocation};
    const std::string home = Home::path();
    std::array<std::string, 4> folders;
    for (std::size_t i = 0; i < kinds.size(); ++i) {
        const std::string folder = Paths::clean(
            QFile::encodeName(QStandardPaths::writableLocation(kinds[i])).toStdString());
        // xdg-user-dirs points a folder the user turned off at the home folder itself.
        if (folder.starts_with('/') && !Paths::isUnder(home, folder))
            folders[i] = folder;
    }
    return folders;
}

QString Advisor::ageText(std::int64_t days)
{
    if (days >= 730)
        return QString::number(days / 365) + QStringLiteral(" years");
    if (days >= 60)
        return QString::number(days / 30) + QStringLiteral(" months");
    return QString::number(days) + QStringLiteral(" days");
}

std::vector<Advice> Advisor::advise(const NodePtr &root, const std::vector<BigFile> &bigFiles,
                                    const Context &context)
{
    std::vector<Advice> result;
    if (!root)
        return result;
    const Rules rules(context);
    walkFolders(root, rules, result);

    std::vector<std::string> prefixes;
    prefixes.reserve(result.size());
    for (const Advice &a : result)
        prefixes.push_back(a.path + '/');

    for (const BigFile &file : bigFiles) {
        if (file.size < adviceFloor)
            continue;
        const bool inside =
            std::any_of(prefixes.begin(), prefixes.end(),
                        [&](const std::string &p) { return file.path.starts_with(p); });
        if (inside)
            continue;
        if (auto verdict = rules.file(file))
            result.push_back(
                {file, file.path, file.size, verdict->first, std::move(verdict->second), true});
    }

    std::stable_sort(result.begin(), result.end(),
                     [](const Advice &a, const Advice &b) { return a.size > b.size; });
    return result;
}
