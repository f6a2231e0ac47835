#pragma once

#include "advisor/Advice.h"
#include "advisor/Advisor.h"
#include "platform/Desktop.h"
#include "platform/TrashCan.h"
#include "scan/BigFile.h"
#include "scan/Node.h"
#include "scan/ScanEstimate.h"
#include "scan/Scanner.h"
#include "session/InterfaceWatch.h"
#include "session/Realm.h"
#include "session/ScanMemory.h"
#include "session/Tile.h"
#include "snapshot/Snapshot.h"
#include "sound/Sfx.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <variant>
#include <vector>

class Game;
class RealmLoader;

// One session of exploration: which folder is scanned, the scan's progress and partial results,
// the finished tree, where the user stands in it, how the level is shown, the advisor's
// recommendations and the state of a slay. Lives on the main thread; only the scan itself runs in
// the background.
class Model : public QObject
{
    Q_OBJECT

public:
    using Progress = Scanner::Progress;
    struct Dying
    {
        std::string path;
        std::int64_t xpt = 0;
        bool operator==(const Dying &) const = default;
    };
    // A slay awaiting confirmation.
    struct PendingFolder
    {
        NodePtr node;
    };
    struct PendingFile
    {
        BigFile file;
    };
    struct PendingBulk
    {
        std::vector<Advice> items;
    };
    using Pending = std::variant<PendingFolder, PendingFile, PendingBulk>;

    using SoundPlayer = std::function<void(const Sound::Sfx &)>;
    // Asks the user for a folder, starting at the given one; nullopt when cancelled.
    using FolderChooser = std::function<std::optional<std::string>(const std::string &start)>;

    static constexpr std::array<double, 5> zoomScales = {1.0, 1.5, 2.0, 3.0, 4.0};
    static constexpr int maxZoomLevel = 4;

    explicit Model(QObject *parent = nullptr);
    ~Model() override;

    [[nodiscard]] const std::string &scanPath() const { return m_scanPath; }
    [[nodiscard]] const NodePtr &root() const { return m_root; }
    [[nodiscard]] const NodePtr &current() const { return m_current; }
    [[nodiscard]] bool scanning() const { return m_scanning; }
    [[nodiscard]] Progress progress() const { return m_progress; }
    [[nodiscard]] Metric metric() const { return m_metric; }
    [[nodiscard]] Mode mode() const { return m_mode; }
    [[nodiscard]] const std::optional<Tile> &hovered() const { return m_hovered; }
    [[nodiscard]] const std::vector<Advice> &advice() const { return m_advice; }
    [[nodiscard]] const std::unordered_set<std::string> &bountyPaths() const
    {
        return m_bountyPaths;
    }
    [[nodiscard]] const std::optional<Pending> &pending() const { return m_pending; }
    [[nodiscard]] const std::optional<Dying> &dying() const { return m_dying; }
    [[nodiscard]] const std::optional<QString> &error() const { return m_error; }
    [[nodiscard]] const std::vector<NodePtr> &partial() const { return m_partial; }
    [[nodiscard]] int zoomLevel() const { return m_zoomLevel; }
    [[nodiscard]] double zoomScale() const { return zoomScales[std::size_t(m_zoomLevel)]; }
    [[nodiscard]] const std::shared_ptr<Scanner> &scanner() const { return m_scanner; }

    // Remembered scans: the last scan of the same folder before the one shown, if any.
    [[nodiscard]] ScanMemory &memory() const { return *m_memory; }
    [[nodiscard]] const std::shared_ptr<const Snapshot> &previous() const { return m_previous; }
    // Signed bytes `node` grew since the previous scan; none without one.
    [[nodiscard]] std::optional<std::int64_t> grown(const Node &node) const;
    // How far the running scan has come, when the folder was scanned before.
    [[nodiscard]] std::optional<ScanEstimate::Guess> estimate() const;

    // Where the realm on show comes from. Only a realm scanned just now can be slain from, and a
    // report's paths, another machine's perhaps, are not revealed either.
    [[nodiscard]] const RealmOrigin &origin() const { return m_origin; }
    [[nodiscard]] bool readOnly() const { return m_origin.source != RealmOrigin::Source::scan; }
    [[nodiscard]] bool canReveal() const { return m_origin.source != RealmOrigin::Source::report; }
    // Shows the remembered realm of a folder at once while a fresh scan of it runs; the fresh
    // realm then takes its place where the user stands.
    void reopen(const std::string &root, Game &game);
    // Shows a report or snapshot file, read-only; openFailed() says why not.
    void open(const QString &file);

    // Made absolute against the working folder and cleaned.
    void setScanPath(const std::string &path);
    void setMetric(Metric metric);
    void setMode(Mode mode);
    void setHovered(std::optional<Tile> tile);
    void setAdvice(std::vector<Advice> advice);
    void setPending(std::optional<Pending> pending);
    void setError(std::optional<QString> error);
    // Direct assignment, as "Fit Whole Realm" does: no sound.
    void setZoomLevel(int level);

    void scan(Game &game);
    void stop();
    void chooseFolder(Game &game);
    void go(const NodePtr &node, Game &game);
    void show(const NodePtr &node, Game &game);
    void up();
    void zoom(int delta);

    [[nodiscard]] NodePtr node(std::string_view atPath) const { return find(m_root, atPath); }
    // The node of root's tree for an absolute folder path.
    [[nodiscard]] static NodePtr find(const NodePtr &root, std::string_view path);
    // The node at the path, or its nearest ancestor in the tree; the root at worst.
    [[nodiscard]] static NodePtr nearest(const NodePtr &root, std::string_view path);
    [[nodiscard]] bool isDying(std::string_view path) const;
    [[nodiscard]] std::vector<Advice> adviceUnder(std::string_view path) const;
    [[nodiscard]] std::vector<Tile> tiles(int limit) const;
    // The tiles with `current`'s own big files listed before the loose files; by growth, the
    // folders that grew most come first (when there is a previous scan).
    [[nodiscard]] std::vector<Tile> rankedTiles(int limit, bool byGrowth = false) const;

    void reveal(const std::string &path);
    void openTrash();

    // Slaying: moving a folder, a big file or a batch of recommendations to the Trash.
    [[nodiscard]] bool canSlay(std::string_view path) const;
    [[nodiscard]] bool canSlay(const Node &node) const;
    // The confirmation a tile's slay asks for; nullopt when the tile may not be slain.
    [[nodiscard]] std::optional<Pending> slayRequest(const Tile &tile) const;
    void slay(const NodePtr &node, Game &game);
    void slay(const BigFile &file, Game &game);
    void slayAll(const std::vector<Advice> &items, Game &game);

    // Plays an effect through the session's sound player (the shared engine unless a test set one),
    // so views and tests hear the same thing.
    void play(const Sound::Sfx &sfx) const;
    void setSoundPlayer(SoundPlayer play) { m_play = std::move(play); }
    void setFolderChooser(FolderChooser chooser) { m_chooseFolder = std::move(chooser); }
    void setTrashCan(std::unique_ptr<TrashCan> trash) { m_trash = std::move(trash); }
    void setDesktop(std::unique_ptr<Desktop> desktop) { m_desktop = std::move(desktop); }
    void setDeathDuration(std::chrono::milliseconds d) { m_deathDuration = d; }

Q_SIGNALS:
    void scanPathChanged();
    void rootChanged();
    void currentChanged();
    void scanningChanged();
    void progressChanged();
    void metricChanged();
    void modeChanged();
    void hoveredChanged();
    void adviceChanged();
    void pendingChanged();
    void dyingChanged();
    void errorChanged();
    void partialChanged();
    void zoomLevelChanged();
    void previousChanged();
    void originChanged();
    void openFailed(const QString &message);
    // Any change the observers should redraw for (the end of a death, a batch slay).
    void changed();

private:
    struct ScanResult
    {
        NodePtr root;
        std::vector<BigFile> bigFiles;
        std::vector<Advice> advice;
        std::optional<Snapshot> previous;
        std::optional<SnapshotCodec::Flat> remember;
    };

    void setRoot(NodePtr root);
    void setCurrent(NodePtr node);
    void setScanning(bool scanning);
    void setProgress(Progress progress);
    void setPartial(std::vector<NodePtr> partial);
    void setPrevious(std::shared_ptr<const Snapshot> previous);
    void setOrigin(RealmOrigin origin);
    void showRealm(const Realm &realm);
    void tick();
    void finishScan(const std::shared_ptr<Scanner> &scanner, ScanResult result,
                    QPointer<Game> game);
    bool trash(const std::string &path, std::uint64_t bytes, Game &game, bool quiet);
    void startDying(const std::string &path, std::uint64_t bytes, std::function<void()> onDone);
    void removeFromTree(const Advice &item);
    // Drops the advice and the big files at or below a path that went to the Trash.
    void forget(std::string_view under);
    void detach(const NodePtr &node);
    void setDying(std::optional<Dying> dying);

    std::string m_scanPath;
    NodePtr m_root;
    NodePtr m_current;
    bool m_scanning = false;
    Progress m_progress;
    Metric m_metric = Metric::size;
    Mode m_mode = Mode::map;
    std::optional<Tile> m_hovered;
    std::vector<Advice> m_advice;
    std::vector<BigFile> m_bigFiles; // the scan's, less those slain since
    std::unordered_set<std::string> m_bountyPaths;
    std::optional<Pending> m_pending;
    std::optional<Dying> m_dying;
    std::optional<QString> m_error;
    std::vector<NodePtr> m_partial;
    int m_zoomLevel = 0;
    std::shared_ptr<Scanner> m_scanner;
    std::unique_ptr<InterfaceWatch> m_interface; // while a scan runs
    QTimer m_timer;
    ScanMemory *m_memory;
    RealmLoader *m_loader;
    RealmOrigin m_origin;
    std::shared_ptr<const Snapshot> m_previous;
    std::optional<ScanEstimate> m_estimate; // of the running scan
    std::chrono::steady_clock::time_point m_scanStarted;

    SoundPlayer m_play;
    FolderChooser m_chooseFolder;
    std::unique_ptr<TrashCan> m_trash;
    std::unique_ptr<Desktop> m_desktop;
    std::chrono::milliseconds m_deathDuration{550};
};
