#pragma once

#include <QString>
#include <string>
#include <variant>

// Moves items to the Trash. The only way Dustmere ever changes the user's files.
class TrashCan
{
public:
    struct Moved
    {
        std::string trashedPath; // where the item now lies, inside a trash "files" folder
    };
    struct Failed
    {
        QString message; // one line, for the user
    };
    using Result = std::variant<Moved, Failed>;

    virtual ~TrashCan() = default;
    [[nodiscard]] virtual Result moveToTrash(const std::string &path) = 0;
};
