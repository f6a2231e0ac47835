#pragma once

#include "platform/TrashCan.h"

// The freedesktop.org Trash (specification 1.0), our own rather than QFile::moveToTrash: Qt 6.4's
// loops forever when a trash's info folder cannot be written, follows symlinks and can move into
// ./files under the working directory.
//
// An item goes to the trash of its own file system: the home Trash, or on another file system
// $topdir/.Trash/$uid (when $topdir/.Trash is a sticky folder, not a link) or $topdir/.Trash-$uid.
// Its .trashinfo is created first, exclusively; then the item is moved with one rename(2) that
// never replaces anything. A failed move takes back that .trashinfo and nothing else: the layer
// never copies, and never removes what it did not create.
class FreedesktopTrash : public TrashCan
{
public:
    [[nodiscard]] Result moveToTrash(const std::string &path) override;

    // How many names ("x", "x.2", …) are tried before a move gives up.
    static constexpr int maxNames = 1000;
};
