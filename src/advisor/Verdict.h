#pragma once

#include "advisor/Advice.h"

#include <QString>

// What a folder rule says about the folder it matched.
struct Verdict
{
    Advice::Safety safety;
    QString reason;
    bool actionable = true;
};
