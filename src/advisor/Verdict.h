#pragma once

#include "advisor/Advice.h"

#include <QString>

// What a folder rule says about the folder it matched.
struct Verdict
{
    Advice::Safety safety;
    QString reason;
    bool actionable = true;

    // A Trash folder, on this file system or another: emptying it is the user's to do.
    [[nodiscard]] static Verdict inTrash()
    {
        return {Advice::Safety::review,
                QStringLiteral("Already in the Trash. Empty the Trash in your file manager to "
                               "actually free this space."),
                false};
    }
};
