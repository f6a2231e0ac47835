#include "platform/FreedesktopTrash.h"

#include "platform/DisplayName.h"
#include "platform/Home.h"
#include "platform/Paths.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// A trash folder chosen for one item: it holds files/ and info/.
struct Bin
{
    std::string folder;
    std::string topdir; // empty for the home Trash, whose Path= lines are absolute
};

struct Refusal
{
    QString why;
};

QString reason(int error)
{
    return QString::fromLocal8Bit(std::strerror(error)).toLower();
}

// The device of the nearest folder on the way to `path` that exists.
std::optional<dev_t> deviceOf(std::string path)
{
    struct stat st;
    while (stat(path.c_str(), &st) != 0) {
        if (path == "/")
            return std::nullopt;
        path = std::string(Paths::parent(path));
    }
    return st.st_dev;
}

// The top of the file system that holds `path`: its highest folder on the same device.
std::string topdirOf(const std::string &path, dev_t device)
{
    std::string top(Paths::parent(path));
    while (top != "/") {
        const std::string up(Paths::parent(top));
        struct stat st;
        if (lstat(up.c_str(), &st) != 0 || st.st_dev != device)
            break;
        top = up;
    }
    return top;
}

// Creates a missing folder (0700); 0 when `path` is then a real folder, not a link to one, and
// belongs to us where that is asked for; else why not.
int ensureFolder(const std::string &path, bool mustOwn)
{
    if (mkdir(path.c_str(), 0700) != 0 && errno != EEXIST)
        return errno;
    struct stat st;
    if (lstat(path.c_str(), &st) != 0)
        return errno;
    if (!S_ISDIR(st.st_mode))
        return ENOTDIR;
    if (mustOwn && st.st_uid != getuid())
        return EPERM;
    return 0;
}

int ensureBin(const std::string &folder, bool mustOwn)
{
    int error = ensureFolder(folder, mustOwn);
    for (const char *sub : {"files", "info"}) {
        if (error == 0)
            error = ensureFolder(Paths::join(folder, sub), mustOwn);
    }
    return error;
}

// Creates the home Trash and the folders above it that are missing (0700, as the base-directory
// rules want). The home Trash itself may be a link the user made.
int ensureHomeBin(const std::string &trash)
{
    std::string partial;
    for (std::size_t slash = trash.find('/', 1); slash != std::string::npos;
         slash = trash.find('/', slash + 1)) {
        partial = trash.substr(0, slash);
        if (mkdir(partial.c_str(), 0700) != 0 && errno != EEXIST)
            return errno;
    }
    for (const std::string &folder :
         {trash, Paths::join(trash, "files"), Paths::join(trash, "info")}) {
        struct stat st;
        if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
            return errno;
        if (stat(folder.c_str(), &st) != 0)
            return errno;
        if (!S_ISDIR(st.st_mode))
            return ENOTDIR;
    }
    return 0;
}

std::variant<Bin, Refusal> binFor(const std::string &path, dev_t device)
{
    const std::string home = Home::trash();
    if (deviceOf(home) == device) {
        if (const int error = ensureHomeBin(home))
            return Refusal{
                QStringLiteral("the Trash folder can't be used (%1)").arg(reason(error))};
        return Bin{home, {}};
    }
    const std::string top = topdirOf(path, device);
    const std::string uid = std::to_string(getuid());
    const std::string shared = Paths::join(top, ".Trash");
    struct stat st;
    if (lstat(shared.c_str(), &st) == 0 && S_ISDIR(st.st_mode) && (st.st_mode & S_ISVTX) &&
        ensureBin(Paths::join(shared, uid), true) == 0)
        return Bin{Paths::join(shared, uid), top};
    const std::string own = Paths::join(top, ".Trash-" + uid);
    if (const int error = ensureBin(own, true)) {
        return Refusal{QStringLiteral("the drive it is on has no Trash Dustmere can use (%1)")
                           .arg(reason(error))};
    }
    return Bin{own, top};
}

std::string infoText(const std::string &path, const Bin &bin)
{
    std::string original = path;
    if (!bin.topdir.empty())
        original = path.substr(bin.topdir == "/" ? 1 : bin.topdir.size() + 1);
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    localtime_r(&now, &local);
    char date[32];
    std::strftime(date, sizeof date, "%Y-%m-%dT%H:%M:%S", &local);
    // Path= is escaped as in a URI, so a name with '%', spaces or line breaks reads back exactly.
    const std::string escaped =
        QByteArray::fromStdString(original).toPercentEncoding("/").toStdString();
    return "[Trash Info]\nPath=" + escaped + "\nDeletionDate=" + date + "\n";
}

// "name", then "name.2", "name.3", …, each short enough to take ".trashinfo" within NAME_MAX.
std::string candidate(std::string_view name, int n)
{
    const std::string suffix = n == 1 ? std::string() : "." + std::to_string(n);
    const std::size_t room = NAME_MAX - std::strlen(".trashinfo") - suffix.size();
    if (name.size() > room) {
        name = name.substr(0, room);
        // Cut at a character's start rather than inside a multi-byte one.
        while (!name.empty() && (static_cast<unsigned char>(name.back()) & 0xC0) == 0x80)
            name.remove_suffix(1);
        if (!name.empty() && static_cast<unsigned char>(name.back()) >= 0xC0)
            name.remove_suffix(1);
    }
    return std::string(name) + suffix;
}

bool writeAll(int fd, const std::string &text)
{
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t n = write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno == EINTR)
            continue;
        if (n == 0)
            errno = EIO; // nothing written and no reason given
        if (n <= 0)
            return false;
        done += std::size_t(n);
    }
    return true;
}

// rename(2) that never replaces an existing item; where the file system cannot promise that,
// the caller has just seen that nothing is there.
int moveWithoutReplacing(const std::string &from, const std::string &to)
{
    if (renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0)
        return 0;
    if (errno != EINVAL && errno != ENOSYS)
        return errno;
    return std::rename(from.c_str(), to.c_str()) == 0 ? 0 : errno;
}

QString moveFailure(int error)
{
    switch (error) {
    case EXDEV:
        return QStringLiteral("it lies on another file system than its Trash, and Dustmere moves "
                              "items, it never copies them");
    case EBUSY:
        return QStringLiteral("it is in use or a mount point");
    default:
        return reason(error);
    }
}

} // namespace

TrashCan::Result FreedesktopTrash::moveToTrash(const std::string &rawPath)
{
    const std::string path = Paths::clean(rawPath);
    const QString name = DisplayName::of(Paths::lastComponent(path));
    const auto failed = [&name](const QString &why) {
        return Failed{QStringLiteral("“%1” couldn't be moved to the Trash: %2.").arg(name, why)};
    };
    if (!path.starts_with('/') || path == "/")
        return failed(QStringLiteral("its path is not a full path"));

    // lstat: a symlink goes to the Trash as a link, even one that points nowhere.
    struct stat item;
    struct stat parent;
    if (lstat(path.c_str(), &item) != 0)
        return failed(reason(errno));
    const std::string folder(Paths::parent(path));
    if (lstat(folder.c_str(), &parent) != 0)
        return failed(reason(errno));
    if (parent.st_dev != item.st_dev)
        return failed(QStringLiteral("it is a mount point; unmount it instead"));

    const auto chosen = binFor(path, item.st_dev);
    if (const auto *refusal = std::get_if<Refusal>(&chosen))
        return failed(refusal->why);
    const Bin &bin = std::get<Bin>(chosen);
    if (Paths::isUnder(path, bin.folder) || Paths::isUnder(bin.folder, path))
        return failed(QStringLiteral("it is part of the Trash"));
    // Checked before anything is written, so a read-only drive or folder fails at once.
    for (const std::string &writable :
         {folder, Paths::join(bin.folder, "files"), Paths::join(bin.folder, "info")}) {
        if (access(writable.c_str(), W_OK | X_OK) != 0)
            return failed(reason(errno));
    }

    const std::string text = infoText(path, bin);
    const std::string_view base = Paths::lastComponent(path);
    for (int n = 1; n <= maxNames; ++n) {
        const std::string trashName = candidate(base, n);
        const std::string info = Paths::join(bin.folder, "info/" + trashName + ".trashinfo");
        const int fd =
            open(info.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
        if (fd < 0) {
            if (errno == EEXIST)
                continue;
            return failed(reason(errno));
        }
        // From here on the .trashinfo is ours, and the only thing a failure takes back.
        const std::string target = Paths::join(bin.folder, "files/" + trashName);
        struct stat st;
        if (lstat(target.c_str(), &st) == 0) { // an item left without its info keeps its name
            close(fd);
            unlink(info.c_str());
            continue;
        }
        int error = writeAll(fd, text) ? 0 : errno;
        if (close(fd) != 0 && error == 0)
            error = errno;
        if (error != 0) {
            unlink(info.c_str());
            return failed(reason(error));
        }
        if ((error = moveWithoutReplacing(path, target)) != 0) {
            unlink(info.c_str());
            if (error == EEXIST || error == ENOTEMPTY)
                continue;
            return failed(moveFailure(error));
        }
        return Moved{target};
    }
    return failed(QStringLiteral("the Trash already holds too many items of that name"));
}
