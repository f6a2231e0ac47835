#include "advisor/LinuxRules.h"

#include "platform/Paths.h"

#include <algorithm>
#include <string_view>

using Safety = Advice::Safety;

namespace {

struct Place
{
    std::string_view path; // below the home folder, or a name in the cache folder
    Safety safety;
    const char *reason; // UTF-8
    bool actionable = true;
};

const char *const appCache = "App cache. The app rebuilds it automatically.";
const char *const packageCache = "Package download cache. Re-downloaded on the next install.";
const char *const compilerCache = "Compiler cache. Filled again by your next builds.";
const char *const models =
    "Downloaded AI models. Fetched again the next time a program loads them, which can take long.";

constexpr Place homePlaces[] = {
    {"/.cargo/git", Safety::rebuild,
     "Cargo's copies of git dependencies. `cargo fetch` downloads them again."},
    {"/.local/share/pnpm/store", Safety::rebuild,
     "pnpm package store. `pnpm install` downloads the packages again."},
    {"/.gradle/wrapper/dists", Safety::rebuild,
     "Gradle versions downloaded by the wrapper. The next build downloads the one it needs."},
    {"/.ivy2/cache", Safety::rebuild, "Ivy dependency cache. Re-downloaded on the next build."},
    {"/.sbt/boot", Safety::rebuild,
     "sbt's launcher files. Re-downloaded the next time you run `sbt`."},
    {"/.local/share/virtualenvs", Safety::rebuild,
     "Pipenv virtual environments. `pipenv install` recreates a project's."},
    {"/.vscode-server", Safety::rebuild,
     "VS Code's remote server and extensions. Reinstalled on the next remote connection."},
    {"/.rustup/toolchains", Safety::review,
     "Rust toolchains. Keep the ones you build with; `rustup toolchain install` brings one "
     "back."},
    {"/.pyenv/versions", Safety::review,
     "Python versions installed with pyenv. Keep the ones your projects use; `pyenv install` "
     "brings one back."},
    {"/.nvm/versions", Safety::review,
     "Node.js versions installed with nvm. Keep the ones your projects use; `nvm install` brings "
     "one back."},
    {"/.sdkman/candidates", Safety::review,
     "SDKs installed with SDKMAN!. Keep the ones you use; `sdk install` brings one back."},
    {"/.android/avd", Safety::review,
     "Android emulators and their data. Prefer deleting old ones in Android Studio's Device "
     "Manager."},
    {"/.local/share/containers", Safety::review,
     "Podman's images and containers. Prefer `podman system prune` instead of trashing them.",
     false},
    {"/.local/share/docker", Safety::review,
     "Docker's images and containers. Prefer `docker system prune` instead of trashing them.",
     false},
};

// Sub-folders of the cache folder that cost more than an app's cache to bring back.
constexpr Place cacheKinds[] = {
    {"pip", Safety::rebuild,
     "pip download cache. Packages are re-downloaded on the next `pip install`."},
    {"pypoetry", Safety::rebuild,
     "Poetry's package cache and environments. `poetry install` recreates them."},
    {"pipenv", Safety::rebuild, packageCache},
    {"uv", Safety::rebuild, packageCache},
    {"yarn", Safety::rebuild,
     "Yarn download cache. Packages are re-downloaded on the next `yarn install`."},
    {"pnpm", Safety::rebuild, packageCache},
    {"deno", Safety::rebuild, packageCache},
    {"composer", Safety::rebuild, packageCache},
    {"coursier", Safety::rebuild, packageCache},
    {"go-build", Safety::rebuild, "Go build cache. Filled again by your next `go build`."},
    {"bazel", Safety::rebuild, "Bazel's build outputs and downloads. Rebuilt by `bazel build`."},
    {"ccache", Safety::rebuild, compilerCache},
    {"sccache", Safety::rebuild, compilerCache},
    {"JetBrains", Safety::rebuild,
     "IDE caches and indexes. Rebuilt when the IDE next opens your projects."},
    {"ms-playwright", Safety::rebuild,
     "Browsers for Playwright tests. `npx playwright install` downloads them again."},
    {"huggingface", Safety::review, models},
    {"torch", Safety::review, models},
    {"whisper", Safety::review, models},
    {"lm-studio", Safety::review, models},
    {"gpt4all", Safety::review, models},
    {"llama.cpp", Safety::review, models},
};

Verdict verdict(const Place &place)
{
    return {place.safety, QString::fromUtf8(place.reason), place.actionable};
}

bool isNumber(std::string_view s)
{
    return !s.empty() &&
           std::all_of(s.begin(), s.end(), [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

LinuxRules::LinuxRules(const Advisor::Context &context)
    : m_home(context.home),
      m_cache(Paths::isUnder(context.home, context.cache) ? std::string() : context.cache),
      m_flatpaks(m_home + "/.var/app"), m_snaps(m_home + "/snap")
{}

std::optional<Verdict> LinuxRules::folder(const std::string &name, const std::string &path,
                                          const std::string &parentPath) const
{
    if (path.starts_with(m_home)) {
        const std::string_view rest = std::string_view(path).substr(m_home.size());
        for (const Place &place : homePlaces) {
            if (rest == place.path)
                return verdict(place);
        }
    }
    // Like ~/Library/Caches: not advised as a whole, each app's folder on its own.
    if (!m_cache.empty() && parentPath == m_cache) {
        for (const Place &kind : cacheKinds) {
            if (name == kind.path)
                return verdict(kind);
        }
        return Verdict{Safety::safe, appCache};
    }
    const std::string_view grandparent = Paths::parent(parentPath);
    const bool flatpak = name == "cache" && grandparent == m_flatpaks;
    const bool snap = name == ".cache" && Paths::lastComponent(parentPath) == "common" &&
                      Paths::parent(grandparent) == m_snaps;
    if (flatpak || snap)
        return Verdict{Safety::safe, appCache};
    if (name == "shadercache" && Paths::lastComponent(parentPath) == "steamapps")
        return Verdict{Safety::safe,
                       "Shaders Steam compiled for your games. Compiled again when a game needs "
                       "them."};
    // Other file systems' Trash folders: $topdir/.Trash-$uid and $topdir/.Trash/$uid.
    if ((name.starts_with(".Trash-") && isNumber(std::string_view(name).substr(7))) ||
        (isNumber(name) && Paths::lastComponent(parentPath) == ".Trash"))
        return Verdict::inTrash();
    return std::nullopt;
}
