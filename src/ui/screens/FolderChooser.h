#pragma once

#include "session/Model.h"

class QWidget;

// The open panel behind "Choose Folder…": folders only, confirmed with "Scan".
namespace FolderChooser {

// A chooser for Model::setFolderChooser. The dialog is modal to `parent`'s window when given.
[[nodiscard]] Model::FolderChooser dialog(QWidget *parent = nullptr);

} // namespace FolderChooser
