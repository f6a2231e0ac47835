#include "support/TestSandbox.h"

#include "support/TreeBuilder.h"

#include <QCoreApplication>
#include <QDir>
#include <QProcess>

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

TestSandbox::Outcome TestSandbox::runAsNobody(const char *testFunction)
{
    QProcess child;
    child.start(QStringLiteral("setpriv"),
                {QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                 QStringLiteral("--clear-groups"), QCoreApplication::applicationFilePath(),
                 QString::fromLatin1(testFunction)});
    if (!child.waitForFinished(120'000))
        return {true, false, "the unprivileged run did not finish"};
    const QByteArray out = child.readAllStandardOutput() + child.readAllStandardError();
    // A run that never reached the test (no setpriv, an unreadable executable) prints no totals.
    if (child.exitStatus() != QProcess::NormalExit || !out.contains("Totals"))
        return {false, false, out};
    return {true, child.exitCode() == 0, out};
}

TestSandbox::~TestSandbox()
{
    // QDir cannot remove names that are not valid UTF-8; the byte-level walk can.
    TreeBuilder::removeTree(QFile::encodeName(m_dir.path()));
    current = nullptr;
}
