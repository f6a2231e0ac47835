#pragma once

#include "platform/TrashCan.h"

// The freedesktop.org Trash through QFile::moveToTrash, guarded: Qt 6.4 reports success and
// drops the item into ./files/ under the working directory when ~/.local/share is missing, so
// the home Trash is created first and a move is accepted only when it landed inside a trash
// "files" folder. Items on another file system go to that file system's own trash.
class FreedesktopTrash : public TrashCan
{
public:
    [[nodiscard]] Result moveToTrash(const std::string &path) override;

    // $XDG_DATA_HOME/Trash, or ~/.local/share/Trash when XDG_DATA_HOME is unset or relative.
    [[nodiscard]] static std::string homeTrash();
    [[nodiscard]] static bool isInsideTrashFiles(const std::string &path);
};
