#pragma once

#include <QString>
#include <QStringList>
#include <QUrl>
#include <string>

// The desktop around the app: the file manager and URL handlers.
class Desktop
{
public:
    virtual ~Desktop() = default;

    // Shows the item selected in the file manager, else opens the folder that holds it.
    void reveal(const std::string &path);
    // Opens the Trash in the file manager, else the folder that holds the trashed items.
    void openTrash(const std::string &homeTrash);
    // A file: URL built from the path's bytes, so a name that is not UTF-8 still addresses its
    // own file.
    [[nodiscard]] static QUrl fileUrl(const std::string &path);
    // Puts the path on the clipboard, as text and as a file: URL.
    static void copyPath(const std::string &path);

protected:
    [[nodiscard]] virtual bool showItems(const QStringList &uris);
    [[nodiscard]] virtual bool openUrl(const QUrl &url);
};
