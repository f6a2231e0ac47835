#include "advisor/ProjectOutputs.h"

#include "platform/Paths.h"

#include <algorithm>
#include <dirent.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

using Safety = Advice::Safety;

namespace {

struct Output
{
    std::string_view name;
    // Beside the folder: file names or relative paths, "*.ext" for any file with that extension,
    // separated by spaces; empty when the name alone is enough.
    std::string_view markers;
    Safety safety;
    const char *what;     // the first sentence, which the project's age may extend
    const char *comeback; // the second
};

constexpr std::string_view unity = "ProjectSettings/ProjectVersion.txt";
constexpr std::string_view dotnet = "*.csproj *.fsproj";

// Unity before .NET: a Unity project holds generated .csproj files too.
constexpr Output outputs[] = {
    {"target", "pom.xml", Safety::rebuild, "Maven build output", "`mvn package` recreates it."},
    {"target", "build.sbt", Safety::rebuild, "sbt build output", "`sbt compile` recreates it."},
    {".stack-work", "stack.yaml", Safety::rebuild, "Stack build output",
     "`stack build` recreates it."},
    {"dist-newstyle", "cabal.project *.cabal", Safety::rebuild, "Cabal build output",
     "`cabal build` recreates it."},
    {"_build", "mix.exs", Safety::rebuild, "Elixir build output", "`mix compile` recreates it."},
    {"deps", "mix.exs", Safety::rebuild, "Elixir dependencies",
     "`mix deps.get` fetches them again."},
    {"zig-cache", "build.zig", Safety::safe, "Zig build cache",
     "Recreated by the next `zig build`."},
    {".zig-cache", "build.zig", Safety::safe, "Zig build cache",
     "Recreated by the next `zig build`."},
    {"zig-out", "build.zig", Safety::rebuild, "Zig build output", "`zig build` recreates it."},
    {"Library", unity, Safety::rebuild, "Unity's imported assets",
     "Unity imports them again when it opens the project."},
    {"Temp", unity, Safety::rebuild, "Unity's temporary files",
     "Unity recreates them when it opens the project."},
    {"obj", unity, Safety::rebuild, "Unity's build files",
     "Unity recreates them when it opens the project."},
    {"bin", dotnet, Safety::rebuild, ".NET build output", "`dotnet build` recreates it."},
    {"obj", dotnet, Safety::rebuild, ".NET build files", "`dotnet build` recreates them."},
    {".dart_tool", "pubspec.yaml", Safety::rebuild, "Dart tool files",
     "`flutter pub get` or `dart pub get` recreates them."},
    {".godot", "project.godot", Safety::rebuild, "Godot's imported assets",
     "The editor imports them again when it opens the project."},
    {".terraform", "*.tf", Safety::rebuild, "Terraform providers and modules",
     "`terraform init` downloads them again."},
    {"Intermediate", "*.uproject", Safety::rebuild, "Unreal Engine build files",
     "The editor rebuilds them when it opens the project."},
    {"DerivedDataCache", "*.uproject", Safety::rebuild, "Unreal Engine's asset cache",
     "The editor rebuilds it when it opens the project."},
    {"Binaries", "*.uproject", Safety::rebuild, "Unreal Engine build output",
     "The editor rebuilds it when it opens the project."},
    {".pytest_cache", {}, Safety::safe, "pytest cache", "Recreated on the next test run."},
    {".mypy_cache", {}, Safety::safe, "mypy cache", "Recreated on the next type check."},
    {".ruff_cache", {}, Safety::safe, "Ruff cache", "Recreated on the next lint."},
    {".tox", {}, Safety::safe, "tox environments", "`tox` recreates them on its next run."},
    {".nox", {}, Safety::safe, "nox environments", "`nox` recreates them on its next run."},
};

std::vector<std::string> names(const std::string &folder)
{
    std::vector<std::string> out;
    if (DIR *dir = opendir(folder.c_str())) {
        while (const dirent *entry = readdir(dir))
            out.emplace_back(entry->d_name);
        closedir(dir);
    }
    return out;
}

// When the newest of the markers beside a folder changed, or nothing when there is none. An
// error counts as absent; links are followed.
class Markers
{
public:
    explicit Markers(const std::string &folder) : m_folder(folder) {}

    [[nodiscard]] std::optional<std::int64_t> newest(std::string_view markers)
    {
        std::optional<std::int64_t> newest;
        const auto note = [&](const std::string &name) {
            struct stat st;
            if (stat((m_folder + '/' + name).c_str(), &st) == 0)
                newest = std::max<std::int64_t>(newest.value_or(st.st_mtime), st.st_mtime);
        };
        while (!markers.empty()) {
            const auto space = markers.find(' ');
            const std::string_view marker = markers.substr(0, space);
            markers =
                space == std::string_view::npos ? std::string_view() : markers.substr(space + 1);
            if (!marker.starts_with('*')) {
                note(std::string(marker));
                continue;
            }
            if (!m_listing)
                m_listing = names(m_folder);
            for (const std::string &name : *m_listing) {
                if (name.size() > marker.size() - 1 && name.ends_with(marker.substr(1)))
                    note(name);
            }
        }
        return newest;
    }

private:
    const std::string &m_folder;
    std::optional<std::vector<std::string>> m_listing;
};

Verdict verdict(Safety safety, const char *what, const char *comeback,
                std::optional<std::int64_t> changed, std::int64_t now)
{
    QString reason = QString::fromUtf8(what);
    if (const std::int64_t days = changed ? (now - *changed) / 86'400 : 0; days > 90)
        reason += QStringLiteral(" of a project untouched for ") + Advisor::ageText(days);
    return {safety, reason + QStringLiteral(". ") + QString::fromUtf8(comeback)};
}

} // namespace

std::optional<Verdict> ProjectOutputs::folder(const Node &node, const std::string &path,
                                              const std::string &parentPath,
                                              const Advisor::Context &context)
{
    const std::string &name = node.name();
    Markers beside(parentPath);
    for (const Output &output : outputs) {
        if (name != output.name)
            continue;
        if (output.markers.empty())
            return verdict(output.safety, output.what, output.comeback, std::nullopt, context.now);
        if (const auto changed = beside.newest(output.markers))
            return verdict(output.safety, output.what, output.comeback, changed, context.now);
    }
    // A CMake build tree may have any name, so more evidence is asked for: someone who once ran
    // cmake in ~/Documents or in a repository must not be told to trash it.
    if (!node.child("CMakeFiles") || node.child(".git") || Paths::isUnder(context.home, path) ||
        parentPath == context.home)
        return std::nullopt;
    Markers inside(path);
    const auto changed = inside.newest("CMakeCache.txt");
    if (!changed || inside.newest("CMakeLists.txt"))
        return std::nullopt;
    return verdict(Safety::rebuild, "CMake build tree",
                   "Configuring and building the project again recreates it.", changed,
                   context.now);
}
