#include "ui/screens/FolderChooser.h"

#include "platform/Paths.h"

#include <QFile>
#include <QFileDialog>
#include <QPointer>
#include <dirent.h>
#include <sys/stat.h>

namespace {

// Qt hands back the chosen folder as text, which for a name that is not UTF-8 is not the name on
// disk. Each component that does not exist as spelled is matched against the folder's entries
// by how they read, and taken only when exactly one reads so.
std::optional<std::string> onDisk(const QString &chosen)
{
    std::string path = "/";
    for (const QString &piece : chosen.split(u'/', Qt::SkipEmptyParts)) {
        std::string name = QFile::encodeName(piece).toStdString();
        struct stat st;
        if (lstat(Paths::join(path, name).c_str(), &st) != 0) {
            std::optional<std::string> match;
            if (DIR *dir = opendir(path.c_str())) {
                while (const dirent *entry = readdir(dir)) {
                    if (QFile::decodeName(entry->d_name) != piece)
                        continue;
                    if (match) {
                        match.reset();
                        break;
                    }
                    match = entry->d_name;
                }
                closedir(dir);
            }
            if (!match)
                return std::nullopt;
            name = *match;
        }
        path = Paths::join(path, name);
    }
    return path;
}

} // namespace

Model::FolderChooser FolderChooser::dialog(QWidget *parent)
{
    return [owner =
                QPointer<QWidget>(parent)](const std::string &start) -> std::optional<std::string> {
        QFileDialog panel(owner ? owner->window() : nullptr);
        panel.setWindowTitle(QObject::tr("Choose a folder to scan"));
        panel.setFileMode(QFileDialog::Directory);
        panel.setOption(QFileDialog::ShowDirsOnly);
        panel.setAcceptMode(QFileDialog::AcceptOpen);
        panel.setLabelText(QFileDialog::Accept, QObject::tr("Scan"));
        panel.setDirectory(QFile::decodeName(QByteArray::fromStdString(start)));
        if (panel.exec() != QDialog::Accepted)
            return std::nullopt;
        const QStringList chosen = panel.selectedFiles();
        if (chosen.isEmpty())
            return std::nullopt;
        return onDisk(chosen.front());
    };
}
