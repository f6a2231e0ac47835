#include "platform/FreedesktopTrash.h"
#include "platform/Home.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QDir>
#include <QRegularExpression>
#include <sys/mount.h>
#include <sys/stat.h>

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

QStringList entries(const QByteArray &folder)
{
    return QDir(QFile::decodeName(folder))
        .entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden | QDir::System);
}

// Where a move landed, or the message of its failure.
QByteArray landed(const TrashCan::Result &result)
{
    if (const auto *moved = std::get_if<TrashCan::Moved>(&result))
        return QByteArray::fromStdString(moved->trashedPath);
    return "failed: " + std::get<TrashCan::Failed>(result).message.toUtf8();
}

QByteArray trash(const QByteArray &path)
{
    return landed(FreedesktopTrash().moveToTrash(path.toStdString()));
}

struct Environment
{
    QByteArray name;
    QByteArray saved = qgetenv(name);
    explicit Environment(QByteArray n) : name(std::move(n)) {}
    ~Environment() { qputenv(name, saved); }
};

// A tmpfs of our own, unmounted when done; nothing when mounting is refused here.
struct Mount
{
    QByteArray where;
    bool ok = false;
    explicit Mount(const QByteArray &at) : where(at)
    {
        makeDir(where);
        ok = mount("tmpfs", where.constData(), "tmpfs", 0, "size=8m") == 0;
    }
    ~Mount()
    {
        if (ok)
            umount2(where.constData(), MNT_DETACH);
    }
};

} // namespace

class TestTrash : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void homeTrashIsFoundFromTheEnvironment()
    {
        Environment data("XDG_DATA_HOME");
        const QByteArray home = qgetenv("HOME");
        const std::pair<const char *, QByteArray> rows[] = {
            {"/data/share/", "/data/share/Trash"},
            {"//data//share", "/data/share/Trash"},
            {"relative/share", home + "/.local/share/Trash"},
            {"", home + "/.local/share/Trash"}};
        for (const auto &[value, expected] : rows) {
            qputenv("XDG_DATA_HOME", value);
            QCOMPARE(QByteArray::fromStdString(Home::trash()), expected);
        }
    }

    // Names with '%', line breaks, bytes that are not UTF-8, a dangling link, a name too long
    // for its info file, and a name the Trash already holds: each moves whole, with its info.
    void movesIntoTheHomeTrashWithItsInfo()
    {
        Environment data("XDG_DATA_HOME");
        qputenv("XDG_DATA_HOME", sandbox("share/")); // a trailing slash changes nothing
        const QByteArray bin = sandbox("share/Trash");
        const QByteArray work = sandbox("work");
        makeDir(work);
        const QByteArray longName(255, 'n');
        const std::tuple<QByteArray, QByteArray, QByteArray> rows[] = {
            {"old build 100%", "old build 100%", "old%20build%20100%25"},
            {"two\nlines", "two\nlines", "two%0Alines"},
            {"bad\xff", "bad\xff", "bad%FF"},
            {"dangling", "dangling", "dangling"},
            {longName, QByteArray(245, 'n'), longName},
            {"old build 100%", "old build 100%.2", "old%20build%20100%25"}};
        const QRegularExpression date(
            QStringLiteral("\nDeletionDate=\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\n$"));
        for (const auto &[name, trashName, encoded] : rows) {
            if (name == "dangling")
                makeSymlink("/nowhere/at/all", work + "/" + name);
            else
                makeFile(work + "/" + name, 4096);
            QCOMPARE(trash(work + "/" + name), bin + "/files/" + trashName);
            QVERIFY(!exists(work + "/" + name));
            const QByteArray info = readFile(bin + "/info/" + trashName + ".trashinfo");
            QVERIFY2(info.startsWith("[Trash Info]\nPath=" + work + "/" + encoded + "\n"),
                     info.constData());
            QVERIFY2(QString::fromUtf8(info).contains(date), info);
        }
        struct stat st;
        QVERIFY(lstat(bin + "/files/dangling", &st) == 0 && S_ISLNK(st.st_mode));
    }

    void aMissingHomeTrashIsMadeWhereItBelongs()
    {
        Environment home("HOME");
        Environment data("XDG_DATA_HOME");
        const QByteArray bare = sandbox("bare home");
        makeDir(bare);
        makeFile(bare + "/item", 4096);
        qputenv("HOME", bare);
        qputenv("XDG_DATA_HOME", "relative"); // invalid, so ignored: never ./relative/Trash
        const QByteArray cwd = sandbox("cwd");
        makeDir(cwd);
        const QString previous = QDir::currentPath();
        QDir::setCurrent(QFile::decodeName(cwd));
        const QByteArray result = trash(bare + "/item");
        QDir::setCurrent(previous);
        QCOMPARE(result, bare + "/.local/share/Trash/files/item");
        QVERIFY(entries(cwd).isEmpty());
        struct stat st;
        QVERIFY(stat(bare + "/.local/share/Trash", &st) == 0 && (st.st_mode & 0777) == 0700);
    }

    // Nothing can be moved: the item stays, no info is left behind, no one's folder is removed,
    // and the answer comes at once rather than after an endless retry.
    void unwritableTrashesAndFoldersChangeNothing()
    {
        DUSTMERE_RUN_AS_NOBODY();
        const QByteArray bin = QByteArray::fromStdString(Home::trash());
        const QByteArray work = sandbox("locked");
        makeDir(work);
        makeDir(work + "/files");
        makeDir(work + "/info");
        makeFile(work + "/item", 4096);
        QVERIFY(trash(work + "/info").startsWith(bin)); // makes the home Trash
        makeDir(work + "/info");
        const std::pair<QByteArray, QByteArray> locked[] = {{bin + "/info", "permission denied"},
                                                            {bin + "/files", "permission denied"},
                                                            {work, "permission denied"}};
        for (const auto &[folder, why] : locked) {
            chmod(folder, 0500);
            const QByteArray result = trash(work + "/item");
            chmod(folder, 0700);
            QVERIFY2(result.startsWith("failed: “item” couldn't be moved to the Trash: " + why),
                     result);
            QVERIFY(exists(work + "/item"));
            QVERIFY(entries(bin + "/info") == QStringList{QStringLiteral("info.trashinfo")});
        }
        QVERIFY(exists(work + "/files") && exists(work + "/info"));
        QCOMPARE(trash(work + "/missing"),
                 QByteArray("failed: “missing” couldn't be moved to the Trash: no such file or "
                            "directory."));
    }

    void otherFileSystemsUseTheirOwnTrash()
    {
        const std::string uid = std::to_string(getuid());
        const Mount disk(sandbox("disk"));
        if (!disk.ok)
            QSKIP("mounting a tmpfs is refused here");
        const QByteArray top = disk.where;
        makeDir(top + "/cache");
        makeFile(top + "/cache/blob", 8192);
        const QByteArray own = top + "/.Trash-" + QByteArray::number(getuid());
        QCOMPARE(trash(top + "/cache"), own + "/files/cache");
        QVERIFY(exists(own + "/files/cache/blob"));
        QCOMPARE(readFile(own + "/info/cache.trashinfo").split('\n').at(1), "Path=cache");
        struct stat st;
        QVERIFY(lstat(own, &st) == 0 && (st.st_mode & 07777) == 0700);
        QVERIFY(
            trash(top).startsWith("failed: “disk” couldn't be moved to the Trash: it is a mount"));

        // A shared .Trash counts only when it is sticky.
        makeDir(top + "/.Trash");
        makeFile(top + "/plain", 4096);
        QCOMPARE(trash(top + "/plain"), own + "/files/plain");
        chmod(top + "/.Trash", 01777);
        makeDir(top + "/sub");
        makeFile(top + "/sub/logs", 4096);
        const QByteArray shared = top + "/.Trash/" + QByteArray::fromStdString(uid);
        QCOMPARE(trash(top + "/sub/logs"), shared + "/files/logs");
        QCOMPARE(readFile(shared + "/info/logs.trashinfo").split('\n').at(1), "Path=sub/logs");

        // Read-only with a trash already on it: a clear failure at once, nothing moved.
        makeFile(top + "/kept", 4096);
        if (mount(nullptr, top, nullptr, MS_REMOUNT | MS_RDONLY, nullptr) != 0)
            QSKIP("remounting read-only is refused here");
        QCOMPARE(
            trash(top + "/kept"),
            QByteArray("failed: “kept” couldn't be moved to the Trash: read-only file system."));
        QVERIFY(exists(top + "/kept"));
    }

    // A bind mount shares the device but not the mount: rename(2) refuses to cross, and the
    // move is undone by taking back only the info file it wrote.
    void aMoveThatCannotBeDoneLeavesNoTrace()
    {
        const QByteArray source = sandbox("source");
        const QByteArray bound = sandbox("bound");
        makeDir(source);
        makeDir(bound);
        makeDir(source + "/files");
        makeFile(source + "/item", 4096);
        if (mount(source, bound, nullptr, MS_BIND, nullptr) != 0)
            QSKIP("bind mounts are refused here");
        const QByteArray result = trash(bound + "/item");
        const bool kept = exists(source + "/item") && exists(source + "/files");
        umount2(bound, MNT_DETACH);
        QVERIFY2(result.contains("it lies on another file system than its Trash"), result);
        QVERIFY(kept);
        QVERIFY(entries(QByteArray::fromStdString(Home::trash()) + "/info")
                    .filter(QStringLiteral("item"))
                    .isEmpty());
    }
};

DUSTMERE_TEST_MAIN(TestTrash)
#include "test_trash.moc"
