#include "world/ui/WorldView.h"

#include "game/Game.h"
#include "game/Lore.h"
#include "magic/Magic.h"
#include "magic/Spell.h"
#include "magic/SpellCaster.h"
#include "magic/ui/AmbientLayer.h"
#include "magic/ui/SpellBar.h"
#include "platform/DisplayName.h"
#include "session/Model.h"
#include "world/Player.h"
#include "world/SteadyClock.h"
#include "world/ui/HeroLayer.h"
#include "world/ui/MapControls.h"
#include "world/ui/MiniMap.h"
#include "world/ui/RenameDialog.h"
#include "world/ui/WorldScene.h"

#include <QAbstractButton>
#include <QKeyEvent>
#include <QMessageBox>
#include <QMetaObject>
#include <QMouseEvent>
#include <QNativeGestureEvent>
#include <QPushButton>

namespace {

constexpr int padding = 10;
constexpr double pinchIn = 1.15;
constexpr double pinchOut = 0.87;

} // namespace

WorldView::WorldView(Model &model, Game &game, Magic &magic, bool reduceMotion, QWidget *parent)
    : WorldView(model, game, magic, reduceMotion, std::make_shared<SteadyClock>(), parent)
{}

WorldView::WorldView(Model &model, Game &game, Magic &magic, bool reduceMotion,
                     std::shared_ptr<Clock> clock, QWidget *parent)
    : QWidget(parent), m_model(model), m_game(game), m_magic(magic), m_reduceMotion(reduceMotion),
      m_player(std::make_unique<Player>(std::move(clock))),
      m_caster(std::make_unique<SpellCaster>(magic, model, game, *m_player)),
      m_scene(new WorldScene(model, game, *m_player, reduceMotion, this)),
      m_ambient(new AmbientLayer(reduceMotion, this)), m_miniMap(new MiniMap(*m_player, this)),
      m_controls(new MapControls(model, this)), m_spellBar(new SpellBar(magic, this))
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_AcceptTouchEvents, false);
    m_ambient->setAttribute(Qt::WA_TransparentForMouseEvents);
    connect(m_scene, &WorldScene::ticked, m_ambient, &AmbientLayer::pace);
    for (QAbstractButton *b : m_spellBar->findChildren<QAbstractButton *>())
        b->setFocusPolicy(Qt::NoFocus);
    m_spellBar->setFocusPolicy(Qt::NoFocus);

    m_scene->hero().setActions([this] { enter(); }, [this] { fight(); }, [this] { rename(); });

    connect(m_player.get(), &Player::footstep, this, [this] { m_model.play(Sound::Sfx::step()); });
    connect(m_player.get(), &Player::regionIndexChanged, this, &WorldView::refreshAccessibleNames);
    connect(m_spellBar, &SpellBar::castRequested, m_caster.get(), &SpellCaster::cast);
    connect(m_caster.get(), &SpellCaster::pendingFireChanged, this, &WorldView::pendingFireChanged);

    connect(&m_model, &Model::currentChanged, this, &WorldView::levelChanged);
    for (const auto signal :
         {&Model::zoomLevelChanged, &Model::metricChanged, &Model::adviceChanged, &Model::changed,
          &Model::rootChanged, &Model::previousChanged})
        connect(&m_model, signal, this, &WorldView::scheduleRebuild);
    for (const auto signal :
         {&Game::customNamesChanged, &Game::fantasyNamesChanged, &Game::seenChanged})
        connect(&m_game, signal, this, &WorldView::scheduleRebuild);
    connect(&m_game, &Game::heroNameChanged, this, &WorldView::refreshAccessibleNames);
    refreshAccessibleNames();
}

WorldView::~WorldView()
{
    // The hero's callback reaches into this view; the view's parts go first.
    m_player->setOnRegionChange({});
}

RenameDialog *WorldView::renameDialog() const
{
    return m_renameDialog;
}

QMessageBox *WorldView::fireballDialog() const
{
    return m_fireDialog;
}

QString WorldView::realmTitle() const
{
    const NodePtr &current = m_model.current();
    if (!current)
        return {};
    const std::string path = current->path();
    if (const std::optional<QString> custom = m_game.customName(path))
        return DisplayName::of(*custom);
    if (m_game.fantasyNames())
        return Lore::name(current->name(), Tiers::ofBytes(current->size()));
    return QStringLiteral("The Realm of ") + DisplayName::of(current->name());
}

void WorldView::scheduleRebuild()
{
    if (m_rebuildQueued)
        return;
    m_rebuildQueued = true;
    QMetaObject::invokeMethod(
        this,
        [this] {
            if (m_rebuildQueued)
                rebuild();
        },
        Qt::QueuedConnection);
}

void WorldView::rebuild()
{
    m_rebuildQueued = false;
    const QSizeF view = size();
    if (view.isEmpty())
        return;
    const double scale = m_model.zoomScale();
    const NodePtr &current = m_model.current();
    const std::string key = current ? current->path() : std::string("/");
    const WorldLayout layout = WorldLayout::build(
        m_model.tiles(int(40 * scale)), key, view * scale,
        [this](const std::string &path) { return m_game.hasSeen(path); },
        [this](const std::string &path) { return std::int64_t(m_model.adviceUnder(path).size()); },
        [this](const Tile &tile, std::optional<Tier> tier) {
            if (const NodePtr *folder = tile.folder(); folder && *folder)
                return m_game.placeName((*folder)->path(), tile.name, tier);
            return DisplayName::of(tile.name);
        },
        scale, [this](const Node &folder) { return m_model.grown(folder); });
    m_player->update(layout, view);
    m_scene->setWorld(layout, realmTitle());
    m_miniMap->setWorld(layout);
    placeOverlays();
    refreshAccessibleNames();
}

void WorldView::levelChanged()
{
    const NodePtr previous = m_player->lastNode();
    m_player->setLastNode(m_model.current());
    scheduleRebuild();
    // After the new island is in place: the queue runs the rebuild first.
    QMetaObject::invokeMethod(
        this, [this, previous] { placeAfterLevelChange(previous); }, Qt::QueuedConnection);
}

void WorldView::placeAfterLevelChange(const NodePtr &previous)
{
    const auto &layout = m_player->layout();
    if (!layout)
        return;
    if (previous) {
        for (const Region &r : layout->regions) {
            const NodePtr *folder = r.tile.folder();
            if (folder && *folder == previous) {
                m_player->jump(r.besideMonster());
                return;
            }
        }
    }
    m_player->jump(layout->land.center());
}

void WorldView::discovered(const std::optional<Region> &region)
{
    if (!region || !region->path)
        return;
    if (m_game.discover(*region->path)) {
        m_model.play(Sound::Sfx::discover());
        m_player->say(QStringLiteral("Discovered ") + region->title + QStringLiteral("! +3 XP"));
    }
}

void WorldView::enter()
{
    const std::optional<Region> region = m_player->currentRegion();
    const NodePtr *folder = region ? region->tile.folder() : nullptr;
    if (folder && *folder && !(*folder)->children().empty()) {
        m_model.go(*folder, m_game);
        return;
    }
    m_model.play(Sound::Sfx::denied());
}

void WorldView::leave()
{
    m_model.up();
}

void WorldView::fight()
{
    const std::optional<Region> region = m_player->currentRegion();
    const NodePtr *folder = region ? region->tile.folder() : nullptr;
    const bool slayable = folder && *folder && m_model.canSlay(**folder);
    if (m_model.readOnly()) {
        m_model.play(Sound::Sfx::denied());
        m_player->say(m_model.origin().source == RealmOrigin::Source::remembered
                          ? QStringLiteral("Wait for the fresh scan to fight")
                          : QStringLiteral("A report is only to look at"));
        return;
    }
    if (slayable && m_player->nearMonster()) {
        m_model.setPending(Model::PendingFolder{*folder});
        return;
    }
    m_model.play(Sound::Sfx::denied());
    if (folder && *folder)
        m_player->say(slayable ? QStringLiteral("Get closer to the monster")
                               : QStringLiteral("This one is protected"));
}

void WorldView::rename()
{
    const std::optional<Region> region = m_player->currentRegion();
    if (!region || !region->path)
        return;
    const QString name = m_game.customName(*region->path).value_or(region->title);
    m_renaming = region;
    if (m_renameDialog)
        m_renameDialog->deleteLater();
    auto *dialog = new RenameDialog(DisplayName::of(region->tile.name), name, this);
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_renameDialog = dialog;
    const std::string path = *region->path;
    connect(dialog, &RenameDialog::saveRequested, this,
            [this, path](const QString &text) { m_game.rename(path, text); });
    connect(dialog, &RenameDialog::defaultRequested, this,
            [this, path] { m_game.rename(path, QString()); });
    connect(dialog, &QDialog::finished, this, [this, dialog] {
        if (m_renameDialog == dialog)
            m_renaming.reset();
        setFocus();
    });
    dialog->open();
}

void WorldView::zoomIn()
{
    m_model.zoom(+1);
}

void WorldView::zoomOut()
{
    m_model.zoom(-1);
}

void WorldView::cast(int number)
{
    if (number < 1 || number > int(Spells::all.size()))
        return;
    m_caster->cast(Spells::all[std::size_t(number - 1)]);
}

void WorldView::pendingFireChanged()
{
    const auto &pending = m_caster->pendingFire();
    if (!pending) {
        if (m_fireDialog)
            m_fireDialog->close();
        return;
    }
    if (m_fireDialog)
        return;
    auto *box = new QMessageBox(this);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->setIcon(QMessageBox::Warning);
    box->setWindowTitle(SpellCaster::fireballTitle(*pending));
    box->setText(SpellCaster::fireballTitle(*pending));
    box->setInformativeText(SpellCaster::fireballMessage());
    QAbstractButton *burn =
        box->addButton(SpellCaster::fireballAction(), QMessageBox::DestructiveRole);
    box->addButton(QMessageBox::Cancel);
    box->setDefaultButton(QMessageBox::Cancel);
    m_fireDialog = box;
    connect(box, &QMessageBox::finished, this, [this, box, burn] {
        if (box->clickedButton() == burn)
            m_caster->confirmFireball();
        else
            m_caster->cancelFireball();
        setFocus();
    });
    box->open();
}

std::optional<QString> WorldView::movementKey(int key)
{
    switch (key) {
    case Qt::Key_Up:
    case Qt::Key_W:
        return QStringLiteral("up");
    case Qt::Key_Down:
    case Qt::Key_S:
        return QStringLiteral("down");
    case Qt::Key_Left:
    case Qt::Key_A:
        return QStringLiteral("left");
    case Qt::Key_Right:
    case Qt::Key_D:
        return QStringLiteral("right");
    default:
        return std::nullopt;
    }
}

void WorldView::keyPressEvent(QKeyEvent *event)
{
    const Qt::KeyboardModifiers chords = Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier;
    if (event->modifiers() & chords) {
        event->ignore();
        return;
    }
    const bool shift = event->modifiers() & Qt::ShiftModifier;
    if (const auto name = movementKey(event->key())) {
        m_player->key(*name, true, shift);
        event->accept();
        return;
    }
    if (event->isAutoRepeat()) {
        event->ignore();
        return;
    }
    switch (event->key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        enter();
        break;
    case Qt::Key_Escape:
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
        leave();
        break;
    case Qt::Key_F:
        fight();
        break;
    case Qt::Key_N:
        rename();
        break;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        zoomIn();
        break;
    case Qt::Key_Minus:
        zoomOut();
        break;
    case Qt::Key_1:
    case Qt::Key_2:
    case Qt::Key_3:
    case Qt::Key_4:
    case Qt::Key_5:
        cast(event->key() - Qt::Key_0);
        break;
    default:
        event->ignore();
        return;
    }
    event->accept();
}

void WorldView::keyReleaseEvent(QKeyEvent *event)
{
    const auto name = movementKey(event->key());
    if (!name ||
        (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))) {
        event->ignore();
        return;
    }
    // A release that belongs to auto-repeat is not the key going up: the press follows.
    if (!event->isAutoRepeat())
        m_player->key(*name, false, event->modifiers() & Qt::ShiftModifier);
    event->accept();
}

void WorldView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mousePressEvent(event);
        return;
    }
    setFocus(Qt::MouseFocusReason);
    m_player->walk(m_player->toWorld(event->position()));
    event->accept();
}

void WorldView::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        QWidget::mouseDoubleClickEvent(event);
        return;
    }
    setFocus(Qt::MouseFocusReason);
    m_player->jump(m_player->toWorld(event->position()));
    enter();
    event->accept();
}

bool WorldView::event(QEvent *event)
{
    if (event->type() == QEvent::NativeGesture) {
        const auto *gesture = static_cast<QNativeGestureEvent *>(event);
        switch (gesture->gestureType()) {
        case Qt::BeginNativeGesture:
            m_magnification = 1;
            break;
        case Qt::ZoomNativeGesture:
            m_magnification += gesture->value();
            break;
        case Qt::EndNativeGesture:
            if (m_magnification > pinchIn)
                zoomIn();
            else if (m_magnification < pinchOut)
                zoomOut();
            m_magnification = 1;
            break;
        default:
            return QWidget::event(event);
        }
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void WorldView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_scene->setGeometry(rect());
    m_ambient->setGeometry(rect());
    rebuild();
}

void WorldView::placeOverlays()
{
    const QSize mini = m_miniMap->sizeHint();
    m_miniMap->setGeometry(width() - padding - mini.width() + MiniMap::margin,
                           padding - MiniMap::margin, mini.width(), mini.height());
    const QSize controls = m_controls->sizeHint();
    m_controls->setGeometry(width() - padding - controls.width(),
                            height() - padding - controls.height(), controls.width(),
                            controls.height());
    const QSize bar = m_spellBar->sizeHint();
    m_spellBar->setGeometry((width() - bar.width()) / 2, height() - padding - bar.height(),
                            bar.width(), bar.height());
    // The hero keeps out from under the controls, by the half of his glyph.
    const int half = int(HeroLayer::glyphSize / 2) + 1;
    std::vector<QRectF> covered;
    QRegion controlsArea;
    for (const QWidget *w : {static_cast<QWidget *>(m_miniMap), static_cast<QWidget *>(m_controls),
                             static_cast<QWidget *>(m_spellBar)}) {
        covered.emplace_back(QRectF(w->geometry()).adjusted(-half, -half, half, half));
        controlsArea += w->geometry();
    }
    m_player->setCoveredAreas(std::move(covered));
    m_ambient->setCovered(controlsArea);
    m_ambient->lower();
    m_scene->lower();
}

void WorldView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    setFocus(Qt::OtherFocusReason);
    m_player->setOnRegionChange([this](const std::optional<Region> &r) { discovered(r); });
    m_player->setLastNode(m_model.current());
    if (!m_player->layout())
        rebuild();
    if (const auto &layout = m_player->layout())
        m_player->jump(layout->land.center());
}

void WorldView::focusOutEvent(QFocusEvent *event)
{
    m_player->releaseAll();
    QWidget::focusOutEvent(event);
}

void WorldView::refreshAccessibleNames()
{
    setAccessibleName(QStringLiteral("World map of ") + realmTitle());
    m_scene->setAccessibleName(m_scene->hero().accessibleLabel());
}
