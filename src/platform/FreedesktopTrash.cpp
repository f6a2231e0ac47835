#include "platform/FreedesktopTrash.h"

#include "platform/Home.h"
#include "platform/Paths.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QUrl>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <sys/stat.h>
#include <unistd.h>

namespace {

std::string parentOf(const std::string &path)
{
    return std::string(Paths::parent(path));
}

std::string nameOf(const std::string &path)
{
    return std::string(Paths::lastComponent(path));
}

QString shown(const std::string &bytes)
{
    return QFile::decodeName(QByteArray::fromStdString(bytes));
}

void makeDirs(const std::string &path, mode_t mode)
{
    std::string partial;
    for (std::size_t i = 1; i <= path.size(); ++i) {
        if (i == path.size() || path[i] == '/') {
            partial = path.substr(0, i);
            if (mkdir(partial.c_str(), mode) != 0 && errno != EEXIST)
                return;
        }
    }
}

// The trash specification wants Path= escaped as in URIs; Qt 6.4 writes it raw, which a file
// manager would misread for names holding '%'.
void escapeInfoPath(const std::string &infoPath, const std::string &original)
{
    QFile info(QFile::decodeName(QByteArray::fromStdString(infoPath)));
    if (!info.open(QIODevice::ReadOnly))
        return;
    QByteArray text = info.readAll();
    info.close();
    const qsizetype start = text.indexOf("\nPath=");
    if (start < 0)
        return;
    const qsizetype valueStart = start + 6;
    const qsizetype end = text.indexOf('\n', valueStart);
    const QByteArray raw = text.mid(valueStart, end < 0 ? -1 : end - valueStart);
    // Only a raw copy of the original path (absolute, or relative to a mount's top) is ours to fix.
    const std::string value = raw.toStdString();
    const bool isRaw =
        value == original || (original.size() > value.size() && original.ends_with("/" + value));
    if (!isRaw)
        return;
    text.replace(valueStart, raw.size(), QUrl::toPercentEncoding(QString::fromUtf8(raw), "/"));
    QSaveFile out(info.fileName());
    if (out.open(QIODevice::WriteOnly) && out.write(text) == text.size())
        out.commit();
}

} // namespace

std::string FreedesktopTrash::homeTrash()
{
    const char *data = std::getenv("XDG_DATA_HOME");
    const std::string base =
        data && data[0] == '/' ? std::string(data) : Home::path() + "/.local/share";
    return base + "/Trash";
}

bool FreedesktopTrash::isInsideTrashFiles(const std::string &path)
{
    if (path.empty() || path[0] != '/' || path.find("/../") != std::string::npos)
        return false;
    const std::string files = parentOf(path);
    if (nameOf(files) != "files")
        return false;
    const std::string trash = parentOf(files);
    if (trash == homeTrash())
        return true;
    const std::string uid = std::to_string(getuid());
    const std::string trashName = nameOf(trash);
    // A file system's own trash: $topdir/.Trash-$uid, or $topdir/.Trash/$uid.
    return trashName == ".Trash-" + uid ||
           (trashName == uid && nameOf(parentOf(trash)) == ".Trash");
}

TrashCan::Result FreedesktopTrash::moveToTrash(const std::string &path)
{
    const QString name = shown(nameOf(path));
    // Qt addresses files by QString. A name that is not valid UTF-8 would come back as a
    // different name, possibly another file's, so such an item is refused rather than risked.
    const QString qtPath = shown(path);
    if (QFile::encodeName(qtPath).toStdString() != path) {
        return Failed{QStringLiteral("“%1” has a name Dustmere can't pass to the Trash safely. "
                                     "Move it to the Trash from your file manager.")
                          .arg(name)};
    }
    struct stat st;
    if (lstat(path.c_str(), &st) != 0)
        return Failed{QStringLiteral("“%1” couldn't be moved to the Trash: %2.")
                          .arg(name, QString::fromLocal8Bit(std::strerror(errno)))};

    const std::string trash = homeTrash();
    makeDirs(trash + "/files", 0700);
    makeDirs(trash + "/info", 0700);

    QFile file(qtPath);
    if (!file.moveToTrash())
        return Failed{QStringLiteral("“%1” couldn't be moved to the Trash: %2.")
                          .arg(name, file.errorString())};

    const std::string landed = QFile::encodeName(file.fileName()).toStdString();
    if (isInsideTrashFiles(landed)) {
        escapeInfoPath(parentOf(parentOf(landed)) + "/info/" + nameOf(landed) + ".trashinfo", path);
        return Moved{landed};
    }

    // It went somewhere that is not a trash: put it back where it was.
    const std::string absolute =
        landed[0] == '/' ? landed
                         : QFile::encodeName(QFileInfo(file).absoluteFilePath()).toStdString();
    if (rename(absolute.c_str(), path.c_str()) == 0) {
        // Only the bookkeeping Qt wrote for the bogus move goes; the folders go only if empty.
        const std::string base = parentOf(parentOf(absolute));
        unlink((base + "/info/" + nameOf(absolute) + ".trashinfo").c_str());
        rmdir((base + "/info").c_str());
        rmdir((base + "/files").c_str());
    }
    return Failed{
        QStringLiteral("“%1” couldn't be moved to the Trash: no usable Trash folder was found.")
            .arg(name)};
}
