#include "support/TestSandbox.h"

#include "support/TreeBuilder.h"

#include <QDir>

namespace {
TestSandbox *current = nullptr;
}

TestSandbox::TestSandbox() : m_dir(QDir::tempPath() + QStringLiteral("/dustmere-test-XXXXXX"))
{
    if (!m_dir.isValid())
        qFatal("cannot create the test sandbox");
    const QString base = m_dir.path();
    for (const char *sub : {"home", "config", "data", "cache"})
        QDir(base).mkpath(QLatin1String(sub));
    qputenv("HOME", QFile::encodeName(base + QStringLiteral("/home")));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(base + QStringLiteral("/config")));
    qputenv("XDG_DATA_HOME", QFile::encodeName(base + QStringLiteral("/data")));
    qputenv("XDG_CACHE_HOME", QFile::encodeName(base + QStringLiteral("/cache")));
    current = this;
}

TestSandbox *TestSandbox::instance()
{
    return current;
}

TestSandbox::~TestSandbox()
{
    // QDir cannot remove names that are not valid UTF-8; the byte-level walk can.
    TreeBuilder::removeTree(QFile::encodeName(m_dir.path()));
    current = nullptr;
}
