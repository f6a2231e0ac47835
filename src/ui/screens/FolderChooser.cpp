#include "ui/screens/FolderChooser.h"

#include <QFile>
#include <QFileDialog>
#include <QPointer>

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
        std::string path = QFile::encodeName(chosen.front()).toStdString();
        while (path.size() > 1 && path.back() == '/')
            path.pop_back();
        return path;
    };
}
