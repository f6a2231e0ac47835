#include "ui/screens/ScanningView.h"

#include "game/Game.h"
#include "game/Lore.h"
#include "game/Tier.h"
#include "magic/ui/AmbientLayer.h"
#include "platform/Appearance.h"
#include "platform/DisplayName.h"
#include "platform/Paths.h"
#include "platform/Spring.h"
#include "scan/Fmt.h"
#include "session/Model.h"
#include "ui/screens/MaterialCard.h"
#include "ui/screens/Meter.h"
#include "ui/screens/SwayingBroom.h"
#include "ui/screens/TextStyle.h"
#include "world/ui/IslandRenderer.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QShortcut>
#include <QVBoxLayout>
#include <algorithm>
#include <unordered_set>

ScanningView::ScanningView(Model &model, Game &game, bool reduceMotion, QWidget *parent)
    : QWidget(parent), m_model(model), m_game(game), m_reduceMotion(reduceMotion),
      m_island(new IslandRenderer(this)), m_ambient(new AmbientLayer(reduceMotion, this)),
      m_card(new MaterialCard(14, this))
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Scanning"));

    auto *row = new QHBoxLayout(m_card);
    row->setContentsMargins(18, 12, 18, 12);
    row->setSpacing(14);
    row->addWidget(new SwayingBroom(reduceMotion, m_card));
    auto *column = new QVBoxLayout;
    column->setSpacing(2);
    m_heading = new QLabel(m_card);
    m_heading->setFont(TextStyle::headline());
    column->addWidget(m_heading);
    m_status = new QLabel(m_card);
    m_status->setFont(TextStyle::callout());
    TextStyle::makeSecondary(m_status);
    column->addWidget(m_status);
    m_meter = new Meter(m_card);
    m_meter->setReduceMotion(reduceMotion);
    m_meter->setFixedHeight(8);
    m_meter->setTint(Tiers::landColor(Tier::dragon));
    column->addWidget(m_meter);
    row->addLayout(column);
    m_stop = new QPushButton(tr("Stop"), m_card);
    m_stop->setToolTip(tr("Stop (Esc)"));
    connect(m_stop, &QPushButton::clicked, &m_model, &Model::stop);
    // A button's own shortcut clicks it 100 ms later; the cancel key should stop at once.
    auto *cancel = new QShortcut(QKeySequence(Qt::Key_Escape), this);
    connect(cancel, &QShortcut::activated, m_stop, &QPushButton::click);
    row->addWidget(m_stop);

    m_fadeIn.setSpring(Spring(0.5, 0.8));
    connect(&m_fadeIn, &QVariantAnimation::valueChanged, this, [this](const QVariant &v) {
        m_islandOpacity = std::clamp(v.toDouble(), 0.0, 1.0);
        update();
    });

    connect(m_island, &IslandRenderer::ready, this, &ScanningView::islandReady);
    connect(&m_model, &Model::progressChanged, this, &ScanningView::refreshText);
    connect(&m_model, &Model::scanPathChanged, this, [this] {
        m_islandStale = true;
        refreshText();
    });
    connect(&m_model, &Model::partialChanged, this, &ScanningView::partialChanged);
    for (const auto signal : {&Game::fantasyNamesChanged, &Game::customNamesChanged}) {
        connect(&m_game, signal, this, [this] {
            m_islandStale = true;
            update();
        });
    }
    refreshText();
    partialChanged();
}

ScanningView::~ScanningView() = default;

QString ScanningView::folderName() const
{
    return DisplayName::of(Node::rootName(m_model.scanPath()));
}

std::string ScanningView::childPath(const std::string &name) const
{
    return Paths::join(m_model.scanPath(), name);
}

QString ScanningView::heading() const
{
    return m_heading->text();
}

QString ScanningView::status() const
{
    return m_status->text();
}

void ScanningView::refreshText()
{
    m_heading->setText(tr("Charting %1…").arg(folderName()));
    const Model::Progress progress = m_model.progress();
    QString status = tr("%1 territories charted · %2 files · %3")
                         .arg(m_model.partial().size())
                         .arg(Fmt::count(progress.files), Fmt::bytes(progress.bytes));
    // A folder scanned before tells how far this scan has come.
    const std::optional<ScanEstimate::Guess> guess = m_model.estimate();
    if (guess)
        status = ScanEstimate::text(*guess) + QStringLiteral(" · ") + status;
    m_status->setText(status);
    m_meter->setVisible(guess.has_value());
    if (guess) {
        // A new scan starts from nothing rather than sliding back.
        const double done = guess->percent / 100.0;
        if (done < m_meter->value())
            m_meter->jumpTo(done);
        else if (done > m_meter->value())
            m_meter->setValue(done);
    }
    placeCard();
}

void ScanningView::partialChanged()
{
    m_hasIsland = !m_model.partial().empty();
    m_islandStale = true;
    if (!m_hasIsland) {
        m_fadeIn.stop();
        m_islandOpacity = 0;
        m_islandShown = false;
        m_island->clear();
    }
    refreshText();
    update();
}

bool ScanningView::showsIsland() const
{
    return m_hasIsland && !m_island->image().isNull();
}

void ScanningView::waitForIsland()
{
    if (m_islandStale)
        rebuildIsland();
    m_island->waitForIdle();
}

void ScanningView::islandReady()
{
    if (!m_hasIsland)
        return;
    if (!m_islandShown) {
        m_islandShown = true;
        if (m_reduceMotion || !isVisible()) {
            m_islandOpacity = 1;
        } else {
            m_islandOpacity = 0;
            m_fadeIn.run(0, 1);
        }
    }
    update();
}

// Laying out and drawing a whole island takes longer than a frame; it is done on a worker from
// copies of what it needs, while the previous island stays on screen.
void ScanningView::rebuildIsland()
{
    m_islandStale = false;
    if (!m_hasIsland)
        return;
    std::vector<Tile> tiles;
    std::unordered_set<std::string> explored;
    for (const NodePtr &node : m_model.partial()) {
        if (node->size() == 0)
            continue;
        tiles.push_back(Tile{node->name(), Tile::Folder{node}, node->name(), double(node->size())});
        if (const std::string path = childPath(node->name()); m_game.hasSeen(path))
            explored.insert(path);
    }
    std::stable_sort(tiles.begin(), tiles.end(),
                     [](const Tile &a, const Tile &b) { return a.value > b.value; });
    IslandRenderer::Request request;
    request.layout = [tiles = std::move(tiles), explored = std::move(explored),
                      base = m_model.scanPath(), names = m_game.customNames(),
                      fantasy = m_game.fantasyNames(), size = QSizeF(size())] {
        const auto title = [&](const Tile &tile, std::optional<Tier> tier) {
            if (!tile.folder())
                return DisplayName::of(tile.name);
            return Lore::placeName(Paths::join(base, tile.name), tile.name, tier, names, fantasy);
        };
        return WorldLayout::build(
            tiles, base, size, [&explored](const std::string &p) { return explored.contains(p); },
            [](const std::string &) { return std::int64_t(0); }, title);
    };
    request.title = tr("Charting %1").arg(folderName());
    request.size = size();
    request.dpr = devicePixelRatioF();
    request.colors = WorldPalette::of(palette());
    m_island->request(std::move(request));
}

void ScanningView::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.fillRect(rect(), Appearance::resolve(sea, palette()));
    if (!m_hasIsland)
        return;
    if (m_islandStale)
        rebuildIsland();
    const QImage &island = m_island->image();
    if (island.isNull() || m_islandOpacity <= 0)
        return;
    p.setOpacity(m_islandOpacity);
    p.drawImage(QPointF(0, 0), island);
}

void ScanningView::placeCard()
{
    // A label's new text invalidates only the card's outer layout; activating it refreshes the
    // nested column too, which would otherwise size the card by the old, shorter text.
    m_card->layout()->activate();
    const QSize hint = m_card->sizeHint();
    const int w = std::min(hint.width(), width() - 24);
    m_card->setGeometry((width() - w) / 2, height() - cardBottom - hint.height(), w, hint.height());
}

void ScanningView::resizeEvent(QResizeEvent *)
{
    m_ambient->setGeometry(rect());
    m_islandStale = true;
    placeCard();
}

void ScanningView::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange) {
        m_islandStale = true;
        update();
    }
    QWidget::changeEvent(event);
}

void ScanningView::showEvent(QShowEvent *)
{
    m_ambient->setGeometry(rect());
    m_card->raise();
    placeCard();
}
