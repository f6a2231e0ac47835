#include "platform/FreedesktopTrash.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QDir>
#include <QProcess>
#include <QUrl>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace TreeBuilder;

namespace {

QByteArray sandbox(const QByteArray &sub)
{
    return QFile::encodeName(TestSandbox::instance()->root()) + '/' + sub;
}

bool exists(const QByteArray &path)
{
    struct stat st;
    return lstat(path.constData(), &st) == 0;
}

QByteArray readAll(const QByteArray &path)
{
    QFile f(QFile::decodeName(path));
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Runs the work inside a scratch working directory, so a stray ./files/ would be seen.
struct ScratchCwd
{
    QString previous = QDir::currentPath();
    QByteArray dir;
    explicit ScratchCwd(const QByteArray &path) : dir(path)
    {
        makeDir(path);
        QDir::setCurrent(QFile::decodeName(path));
    }
    ~ScratchCwd() { QDir::setCurrent(previous); }
    [[nodiscard]] bool clean() const { return QDir(QFile::decodeName(dir)).isEmpty(); }
};

} // namespace

class TestTrash : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void movesIntoTheHomeTrashWithItsInfo()
    {
        const QByteArray folder = sandbox("work");
        makeDir(folder);
        makeDir(folder + "/old build 100%");
        makeFile(folder + "/old build 100%/x", 4096);
        ScratchCwd cwd(sandbox("cwd1"));

        FreedesktopTrash trash;
        const auto result = trash.moveToTrash((folder + "/old build 100%").toStdString());
        QVERIFY(std::holds_alternative<TrashCan::Moved>(result));
        const QByteArray home = QByteArray::fromStdString(FreedesktopTrash::homeTrash());
        QCOMPARE(home, qgetenv("XDG_DATA_HOME") + "/Trash");
        const QByteArray landed =
            QByteArray::fromStdString(std::get<TrashCan::Moved>(result).trashedPath);
        QCOMPARE(landed, home + "/files/old build 100%");
        QVERIFY(exists(landed + "/x"));
        QVERIFY(!exists(folder + "/old build 100%"));
        const QByteArray info = readAll(home + "/info/old build 100%.trashinfo");
        QVERIFY(info.startsWith("[Trash Info]\n"));
        QVERIFY2(info.contains("\nPath=" + folder + "/old%20build%20100%25\n"), info.constData());
        QVERIFY(info.contains("DeletionDate="));
        QVERIFY(cwd.clean());
        QVERIFY(FreedesktopTrash::isInsideTrashFiles(landed.toStdString()));
    }

    void missingLocalShareStillUsesTheHomeTrash()
    {
        const QByteArray home = sandbox("bare home");
        makeDir(home);
        makeFile(home + "/item", 4096);
        const QByteArray savedHome = qgetenv("HOME");
        const QByteArray savedData = qgetenv("XDG_DATA_HOME");
        qputenv("HOME", home);
        qunsetenv("XDG_DATA_HOME");
        ScratchCwd cwd(sandbox("cwd2"));
        const auto result = FreedesktopTrash().moveToTrash((home + "/item").toStdString());
        qputenv("HOME", savedHome);
        qputenv("XDG_DATA_HOME", savedData);

        QVERIFY(std::holds_alternative<TrashCan::Moved>(result));
        QCOMPARE(QByteArray::fromStdString(std::get<TrashCan::Moved>(result).trashedPath),
                 home + "/.local/share/Trash/files/item");
        QVERIFY(cwd.clean()); // never ./files under the working directory
    }

    void anUnusableTrashPutsNothingAnywhere()
    {
        const QByteArray item = sandbox("stays");
        makeFile(item, 4096);
        const QByteArray savedData = qgetenv("XDG_DATA_HOME");
        qputenv("XDG_DATA_HOME", "/proc/dustmere-cannot-exist");
        ScratchCwd cwd(sandbox("cwd3"));
        const auto result = FreedesktopTrash().moveToTrash(item.toStdString());
        qputenv("XDG_DATA_HOME", savedData);
        QVERIFY(std::holds_alternative<TrashCan::Failed>(result));
        QVERIFY(exists(item));
        QVERIFY(cwd.clean());
    }

    void refusesNamesThatAreNotUtf8()
    {
        const QByteArray dir = sandbox("names");
        makeDir(dir);
        makeFile(dir + "/bad\xffname", 4096);
        makeFile(dir + "/bad\xef\xbf\xbdname", 4096); // what the bad name decodes to
        const auto result = FreedesktopTrash().moveToTrash((dir + "/bad\xffname").toStdString());
        QVERIFY(std::holds_alternative<TrashCan::Failed>(result));
        QVERIFY(
            std::get<TrashCan::Failed>(result).message.contains(QStringLiteral("file manager")));
        QVERIFY(exists(dir + "/bad\xffname"));
        QVERIFY(exists(dir + "/bad\xef\xbf\xbdname"));
    }

    void aMissingItemFails()
    {
        const auto result = FreedesktopTrash().moveToTrash(sandbox("gone").toStdString());
        QVERIFY(std::holds_alternative<TrashCan::Failed>(result));
        QVERIFY(std::get<TrashCan::Failed>(result).message.startsWith(
            QStringLiteral("“gone” couldn't")));
    }

    void anotherFileSystemUsesItsOwnTrash()
    {
        const QByteArray mnt = sandbox("mnt");
        makeDir(mnt);
        if (mount("tmpfs", mnt.constData(), "tmpfs", 0, "size=8m") != 0)
            QSKIP("mounting a tmpfs is refused here");
        makeDir(mnt + "/cache");
        makeFile(mnt + "/cache/blob", 8192);
        const auto result = FreedesktopTrash().moveToTrash((mnt + "/cache").toStdString());
        const QByteArray own = mnt + "/.Trash-" + QByteArray::number(getuid());
        const bool inOwn =
            exists(own + "/files/cache/blob") && exists(own + "/info/cache.trashinfo");
        umount2(mnt.constData(), MNT_DETACH);
        QVERIFY(std::holds_alternative<TrashCan::Moved>(result));
        QCOMPARE(QByteArray::fromStdString(std::get<TrashCan::Moved>(result).trashedPath),
                 own + "/files/cache");
        QVERIFY(inOwn);
    }

    void onlyTrashFoldersCountAsTrash()
    {
        const std::string uid = std::to_string(getuid());
        QVERIFY(FreedesktopTrash::isInsideTrashFiles("/media/disk/.Trash-" + uid + "/files/x"));
        QVERIFY(FreedesktopTrash::isInsideTrashFiles("/media/disk/.Trash/" + uid + "/files/x"));
        QVERIFY(!FreedesktopTrash::isInsideTrashFiles("./files/x"));
        QVERIFY(!FreedesktopTrash::isInsideTrashFiles("/tmp/work/files/x"));
        QVERIFY(!FreedesktopTrash::isInsideTrashFiles("/media/disk/.Trash-99999999/files/x"));
    }
};

DUSTMERE_TEST_MAIN(TestTrash)
#include "test_trash.moc"
