#include "session/Model.h"

#include "game/Game.h"
#include "platform/FreedesktopTrash.h"
#include "platform/Home.h"
#include "platform/Paths.h"
#include "scan/Fmt.h"
#include "session/RealmLoader.h"
#include "session/SlayRules.h"
#include "sound/Sound.h"

#include <QSysInfo>
#include <QtConcurrent/QtConcurrentRun>
#include <algorithm>

Model::Model(QObject *parent)
    : QObject(parent), m_scanPath(Home::path()), m_memory(new ScanMemory(SnapshotStore(), this)),
      m_loader(new RealmLoader(this)), m_trash(std::make_unique<FreedesktopTrash>()),
      m_desktop(std::make_unique<Desktop>())
{
    m_timer.setInterval(150);
    connect(&m_timer, &QTimer::timeout, this, &Model::tick);
    // Forgotten means forgotten: what grew since then is no longer known either.
    connect(m_memory, &ScanMemory::forgotten, this, [this] { setPrevious(nullptr); });
    connect(m_loader, &RealmLoader::loaded, this, &Model::showRealm);
    connect(m_loader, &RealmLoader::failed, this, &Model::openFailed);
}

Model::~Model()
{
    stop();
}

void Model::play(const Sound::Sfx &sfx) const
{
    if (m_play)
        m_play(sfx);
    else
        Sound::shared().play(sfx);
}

void Model::setScanPath(const std::string &spelled)
{
    // Node paths, the advisor, the protected-item rule and the Trash all build on this one.
    std::string path = Paths::absolute(spelled, Paths::currentFolder());
    if (path == m_scanPath)
        return;
    m_scanPath = std::move(path);
    Q_EMIT scanPathChanged();
}

void Model::setRoot(NodePtr root)
{
    m_root = std::move(root);
    Q_EMIT rootChanged();
}

void Model::setCurrent(NodePtr node)
{
    m_current = std::move(node);
    Q_EMIT currentChanged();
}

void Model::setScanning(bool scanning)
{
    if (scanning == m_scanning)
        return;
    m_scanning = scanning;
    Q_EMIT scanningChanged();
}

void Model::setProgress(Progress progress)
{
    if (progress == m_progress)
        return;
    m_progress = progress;
    Q_EMIT progressChanged();
}

void Model::setPartial(std::vector<NodePtr> partial)
{
    m_partial = std::move(partial);
    Q_EMIT partialChanged();
}

void Model::setPrevious(std::shared_ptr<const Snapshot> previous)
{
    if (previous == m_previous)
        return;
    m_previous = std::move(previous);
    Q_EMIT previousChanged();
}

void Model::setOrigin(RealmOrigin origin)
{
    if (origin == m_origin)
        return;
    m_origin = std::move(origin);
    Q_EMIT originChanged();
}

void Model::reopen(const std::string &root, Game &game)
{
    setScanPath(root);
    scan(game);
    m_loader->loadRemembered(m_memory->store(), m_scanPath);
}

void Model::open(const QString &file)
{
    stop();
    m_loader->loadFile(file);
}

void Model::showRealm(const Realm &realm)
{
    // The fresh scan finished first: it is what the user wants to see.
    if (realm.origin.source == RealmOrigin::Source::remembered && (!m_scanning || m_root))
        return;
    setOrigin(realm.origin);
    setPrevious(nullptr);
    m_bigFiles = realm.bigFiles;
    setRoot(realm.root);
    setCurrent(realm.root);
    setAdvice(realm.advice);
    setZoomLevel(0);
}

std::optional<std::int64_t> Model::grown(const Node &node) const
{
    return m_previous ? std::optional(m_previous->grown(node)) : std::nullopt;
}

std::optional<ScanEstimate::Guess> Model::estimate() const
{
    if (!m_scanning || !m_estimate)
        return std::nullopt;
    return m_estimate->at(m_progress, std::chrono::duration_cast<std::chrono::milliseconds>(
                                          std::chrono::steady_clock::now() - m_scanStarted));
}

void Model::setMetric(Metric metric)
{
    if (metric == m_metric)
        return;
    m_metric = metric;
    Q_EMIT metricChanged();
}

void Model::setMode(Mode mode)
{
    if (mode == m_mode)
        return;
    m_mode = mode;
    Q_EMIT modeChanged();
}

void Model::setHovered(std::optional<Tile> tile)
{
    m_hovered = std::move(tile);
    Q_EMIT hoveredChanged();
}

void Model::setAdvice(std::vector<Advice> advice)
{
    m_advice = std::move(advice);
    m_bountyPaths.clear();
    for (const Advice &a : m_advice)
        m_bountyPaths.insert(a.path);
    Q_EMIT adviceChanged();
}

void Model::setPending(std::optional<Pending> pending)
{
    m_pending = std::move(pending);
    Q_EMIT pendingChanged();
}

void Model::setError(std::optional<QString> error)
{
    m_error = std::move(error);
    Q_EMIT errorChanged();
}

void Model::setZoomLevel(int level)
{
    level = std::clamp(level, 0, maxZoomLevel);
    if (level == m_zoomLevel)
        return;
    m_zoomLevel = level;
    Q_EMIT zoomLevelChanged();
}

void Model::scan(Game &game)
{
    stop();
    m_loader->cancel();
    setOrigin({});
    auto scanner = std::make_shared<Scanner>();
    // The walk waits while this thread works, so the window stays smooth without a niceness
    // that would starve the walk on a busy machine.
    m_interface = std::make_unique<InterfaceWatch>();
    scanner->setForeground(m_interface->foreground());
    m_scanner = scanner;
    const std::string path = m_scanPath;
    // The last scan of this folder: its totals now, for a true progress, its tree at the end.
    const bool remember = m_memory->enabled();
    const std::optional<SnapshotSummary> known =
        remember ? m_memory->store().summary(path) : std::nullopt;
    m_estimate.reset();
    if (known)
        m_estimate.emplace(known->files, known->size);
    m_scanStarted = std::chrono::steady_clock::now();

    setScanning(true);
    setRoot(nullptr);
    setCurrent(nullptr);
    setHovered(std::nullopt);
    setAdvice({});
    m_bigFiles.clear();
    setPartial({});
    setProgress({});
    m_timer.start();

    const Advisor::Context context;
    QPointer<Game> weakGame(&game);
    const QDateTime started = QDateTime::currentDateTimeUtc();
    QtConcurrent::run([scanner, path, context, remember, store = m_memory->store(),
                       load = known.has_value(), started] {
        ScanResult result;
        result.root = scanner->scan(path);
        if (!result.root)
            return result;
        result.bigFiles = scanner->bigFiles();
        result.advice = Advisor::advise(result.root, result.bigFiles, context);
        if (load)
            result.previous = store.load(path);
        // Flattened here, while no other thread can reach the tree; a folder that could not be
        // read is not remembered as empty.
        if (remember && scanner->gaps().rootError == 0) {
            result.remember = SnapshotCodec::flatten(*result.root, result.bigFiles, started,
                                                     QSysInfo::machineHostName());
        }
        return result;
    }).then(this, [this, scanner, weakGame](ScanResult result) {
        // A scan that is already over when the continuation is attached would otherwise finish
        // inside scan() itself; observers expect to see it start first.
        QMetaObject::invokeMethod(
            this,
            [this, scanner, weakGame, result = std::move(result)]() mutable {
                finishScan(scanner, std::move(result), weakGame);
            },
            Qt::QueuedConnection);
    });
}

void Model::tick()
{
    if (!m_scanner)
        return;
    setProgress(m_scanner->progress());
    std::vector<NodePtr> completed = m_scanner->completed();
    // The map is rebuilt from `partial`, so it changes only when a folder finishes.
    if (completed.size() != m_partial.size())
        setPartial(std::move(completed));
}

void Model::finishScan(const std::shared_ptr<Scanner> &scanner, ScanResult result,
                       QPointer<Game> game)
{
    // A stopped or replaced scan changes nothing.
    if (!m_scanner || m_scanner != scanner)
        return;
    m_interface.reset();
    m_timer.stop();
    setScanning(false);
    if (!result.root)
        return;

    if (result.remember)
        m_memory->remember(std::move(*result.remember));
    // A remembered realm on show gives way to the fresh one where the user stands.
    const bool switchOver = m_origin.source == RealmOrigin::Source::remembered && m_current;
    const std::string place = switchOver ? m_current->path() : std::string();
    setOrigin({});
    setPrevious(result.previous ? std::make_shared<const Snapshot>(std::move(*result.previous))
                                : nullptr);
    m_bigFiles = std::move(result.bigFiles);
    setRoot(result.root);
    setCurrent(switchOver ? nearest(result.root, place) : result.root);
    setAdvice(std::move(result.advice));
    setPartial({});
    if (!switchOver)
        setZoomLevel(0);
    play(Sound::Sfx::scanDone());
    if (game)
        game->scanned(*m_root);
    if (m_advice.empty() || switchOver)
        return;

    setMode(Mode::bounties);
    std::uint64_t reclaimable = 0;
    for (const Advice &a : m_advice) {
        if (a.actionable)
            reclaimable += a.size;
    }
    if (game) {
        game->post(Toast::make(
            QStringLiteral("💰"), QStringLiteral("%1 bounties posted").arg(m_advice.size()),
            QStringLiteral("Up to %1 you could reclaim").arg(Fmt::bytes(reclaimable))));
    }
}

void Model::stop()
{
    if (m_scanner) {
        m_scanner->cancel();
        m_scanner.reset();
    }
    m_interface.reset();
    m_timer.stop();
    setScanning(false);
}

void Model::chooseFolder(Game &game)
{
    if (!m_chooseFolder)
        return;
    if (const std::optional<std::string> chosen = m_chooseFolder(m_scanPath)) {
        setScanPath(*chosen);
        scan(game);
    }
}

void Model::go(const NodePtr &node, Game &game)
{
    if (!node || node == m_current)
        return;
    setHovered(std::nullopt);
    const bool deeper = m_current ? m_current->depth() < node->depth() : node->depth() > 0;
    play(deeper ? Sound::Sfx::dive() : Sound::Sfx::up());
    setCurrent(node);
    game.visit(*node);
}

void Model::show(const NodePtr &node, Game &game)
{
    setMode(Mode::map);
    const NodePtr parent = node->parent();
    go(parent ? parent : node, game);
}

void Model::up()
{
    if (!m_current)
        return;
    NodePtr parent = m_current->parent();
    if (!parent)
        return;
    setHovered(std::nullopt);
    play(Sound::Sfx::up());
    setCurrent(std::move(parent));
}

void Model::zoom(int delta)
{
    const int level = std::clamp(m_zoomLevel + delta, 0, maxZoomLevel);
    if (level == m_zoomLevel)
        return;
    setZoomLevel(level);
    play(Sound::Sfx::click());
}

NodePtr Model::nearest(const NodePtr &root, std::string_view path)
{
    for (;; path = Paths::parent(path)) {
        if (NodePtr n = find(root, path))
            return n;
        if (!root->basePath() || path.size() <= root->basePath()->size())
            return root;
    }
}

NodePtr Model::find(const NodePtr &root, std::string_view atPath)
{
    if (!root || !root->basePath())
        return nullptr;
    const std::string &base = *root->basePath();
    if (atPath == base)
        return root;
    const std::string prefix = base == "/" ? std::string("/") : base + '/';
    if (atPath.substr(0, std::min(atPath.size(), prefix.size())) != prefix)
        return nullptr;
    NodePtr n = root;
    std::string_view rest = atPath.substr(base.size());
    while (!rest.empty()) {
        const std::size_t slash = rest.find('/');
        const std::string_view piece = rest.substr(0, slash);
        rest = slash == std::string_view::npos ? std::string_view() : rest.substr(slash + 1);
        if (piece.empty())
            continue;
        n = n->child(piece);
        if (!n)
            return nullptr;
    }
    return n;
}

bool Model::isDying(std::string_view path) const
{
    return m_dying && m_dying->path == path;
}

std::vector<Advice> Model::adviceUnder(std::string_view path) const
{
    std::vector<Advice> under;
    for (const Advice &a : m_advice) {
        if (Paths::isUnder(a.path, path))
            under.push_back(a);
    }
    return under;
}

std::vector<Tile> Model::tiles(int limit) const
{
    return makeTiles(m_current.get(), m_metric, limit);
}

std::vector<Tile> Model::rankedTiles(int limit, bool byGrowth) const
{
    if (!m_current)
        return {};
    GrowthOf growth;
    if (byGrowth && m_previous)
        growth = [previous = m_previous](const Node &n) { return previous->grown(n); };
    return withBigFiles(makeTiles(m_current.get(), m_metric, limit, growth), *m_current, m_bigFiles,
                        m_metric, limit);
}

void Model::reveal(const std::string &path)
{
    if (!canReveal()) {
        play(Sound::Sfx::denied());
        return;
    }
    m_desktop->reveal(path);
}

void Model::openTrash()
{
    m_desktop->openTrash(Home::trash());
}

void Model::setDying(std::optional<Dying> dying)
{
    m_dying = std::move(dying);
    Q_EMIT dyingChanged();
}

bool Model::canSlay(std::string_view path) const
{
    if (readOnly())
        return false;
    const std::optional<std::string> scanRoot = m_root ? m_root->basePath() : std::nullopt;
    return SlayRules::canSlay(path, Home::path(), scanRoot, Home::trash());
}

bool Model::canSlay(const Node &node) const
{
    return node.hasParent() && canSlay(node.path());
}

std::optional<Model::Pending> Model::slayRequest(const Tile &tile) const
{
    if (const NodePtr *node = tile.folder(); node && canSlay(**node))
        return PendingFolder{*node};
    if (const BigFile *file = tile.file(); file && canSlay(file->path))
        return PendingFile{*file};
    return std::nullopt;
}

bool Model::trash(const std::string &path, std::uint64_t bytes, Game &game, bool quiet)
{
    const TrashCan::Result result = m_trash->moveToTrash(path);
    if (const auto *failed = std::get_if<TrashCan::Failed>(&result)) {
        if (!quiet)
            setError(failed->message);
        return false;
    }
    game.noteTrashed(std::get<TrashCan::Moved>(result).trashedPath, bytes);
    return true;
}

void Model::slay(const NodePtr &node, Game &game)
{
    if (!node || !canSlay(*node) || m_dying) {
        play(Sound::Sfx::denied());
        return;
    }
    const std::string path = node->path();
    const std::uint64_t size = node->size();
    if (!trash(path, size, game, false)) {
        play(Sound::Sfx::denied());
        return;
    }
    const bool wasBounty = m_bountyPaths.contains(path);
    QPointer<Game> weakGame(&game);
    startDying(path, size, [this, node, size, wasBounty, weakGame] {
        if (weakGame)
            weakGame->slain({size}, wasBounty);
        detach(node);
    });
}

void Model::slay(const BigFile &file, Game &game)
{
    if (!canSlay(file.path) || m_dying) {
        play(Sound::Sfx::denied());
        return;
    }
    if (!trash(file.path, file.size, game, false)) {
        play(Sound::Sfx::denied());
        return;
    }
    QPointer<Game> weakGame(&game);
    startDying(file.path, file.size, [this, file, weakGame] {
        if (weakGame)
            weakGame->slain({file.size}, true);
        if (const NodePtr folder = node(Paths::parent(file.path)))
            folder->removeLooseFile(file.size);
    });
}

void Model::startDying(const std::string &path, std::uint64_t bytes, std::function<void()> onDone)
{
    setHovered(std::nullopt);
    play(Sound::Sfx::slay(Tiers::ofBytes(bytes)));
    setDying(Dying{path, Game::xpFor(bytes)});
    QTimer::singleShot(m_deathDuration, this, [this, path, onDone = std::move(onDone)] {
        onDone();
        forget(path);
        setDying(std::nullopt);
        Q_EMIT changed();
    });
}

void Model::slayAll(const std::vector<Advice> &items, Game &game)
{
    int failures = 0;
    std::vector<std::uint64_t> sizes;
    for (const Advice &item : items) {
        if (!item.actionable || !canSlay(item.path))
            continue;
        if (trash(item.path, item.size, game, true)) {
            sizes.push_back(item.size);
            removeFromTree(item);
        } else {
            ++failures;
        }
    }
    if (!sizes.empty())
        play(Sound::Sfx::slay(Tiers::ofBytes(*std::max_element(sizes.begin(), sizes.end()))));
    game.slain(sizes, true);
    if (failures >= 1) {
        play(Sound::Sfx::denied());
        setError(QStringLiteral("%1 item%2 couldn't be moved to the Trash (the system or another "
                                "app protects them).")
                     .arg(failures)
                     .arg(failures == 1 ? QString() : QStringLiteral("s")));
    }
    Q_EMIT changed();
}

void Model::removeFromTree(const Advice &item)
{
    if (const NodePtr folder = item.folder()) {
        detach(folder);
    } else if (const BigFile *file = item.file()) {
        if (const NodePtr parent = node(Paths::parent(file->path)))
            parent->removeLooseFile(file->size);
    }
    forget(item.path);
}

void Model::forget(std::string_view under)
{
    const auto isGone = [under](const auto &item) { return Paths::isUnder(item.path, under); };
    std::erase_if(m_bigFiles, isGone);
    std::vector<Advice> kept = m_advice;
    std::erase_if(kept, isGone);
    setAdvice(std::move(kept));
}

void Model::detach(const NodePtr &node)
{
    const NodePtr formerParent = node->parent();
    node->detach();
    // Standing in the folder that just went to the Trash (or inside it) leaves nothing to show;
    // step back out to where it was.
    for (NodePtr n = m_current; n; n = n->parent()) {
        if (n == node) {
            if (formerParent)
                setCurrent(formerParent);
            break;
        }
    }
}
