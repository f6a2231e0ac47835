#pragma once

#include "advisor/Advice.h"
#include "scan/BigFile.h"
#include "scan/Node.h"

#include <QDateTime>
#include <QString>
#include <vector>

// Where the realm on show comes from: a scan just now, a remembered scan shown while the fresh
// one runs, or a report opened from a file (of this machine or another). Only a scan just now
// may be slain from.
struct RealmOrigin
{
    enum class Source { scan, remembered, report };
    Source source = Source::scan;
    QString host;
    QDateTime scanned;
    bool operator==(const RealmOrigin &) const = default;
};

// A realm read rather than scanned: its tree, big files and recommendations.
struct Realm
{
    NodePtr root;
    std::vector<BigFile> bigFiles;
    std::vector<Advice> advice;
    RealmOrigin origin;
};
