#include "world/ui/SceneAccessible.h"

#include "game/Game.h"
#include "session/Model.h"
#include "world/Player.h"
#include "world/ui/WorldScene.h"

#include <QAccessibleActionInterface>
#include <QPointer>

namespace {

// One entry of the map, found again by its territory's path each time it is asked, so it
// never holds on to a sprite the next island has replaced.
class Entry : public QAccessibleInterface, public QAccessibleActionInterface
{
public:
    // An empty path stands for the hero.
    Entry(WorldScene *scene, std::string path) : m_scene(scene), m_path(std::move(path)) {}

    [[nodiscard]] bool isValid() const override { return m_scene && (isHero() || sprite()); }
    [[nodiscard]] QObject *object() const override { return nullptr; }
    [[nodiscard]] QWindow *window() const override
    {
        return m_scene ? m_scene->window()->windowHandle() : nullptr;
    }
    [[nodiscard]] QAccessibleInterface *parent() const override
    {
        return m_scene ? QAccessible::queryAccessibleInterface(m_scene.data()) : nullptr;
    }
    [[nodiscard]] QAccessibleInterface *child(int) const override { return nullptr; }
    [[nodiscard]] int childCount() const override { return 0; }
    [[nodiscard]] int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    [[nodiscard]] QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    [[nodiscard]] QAccessibleInterface *focusChild() const override { return nullptr; }
    void setText(QAccessible::Text, const QString &) override {}
    [[nodiscard]] QAccessible::Role role() const override
    {
        return isHero() ? QAccessible::StaticText : QAccessible::Button;
    }
    [[nodiscard]] QAccessible::State state() const override { return {}; }

    [[nodiscard]] QString text(QAccessible::Text t) const override
    {
        if (t != QAccessible::Name || !m_scene)
            return {};
        if (isHero())
            return m_scene->hero().accessibleLabel();
        const MonsterSprite *s = sprite();
        return s ? s->region().title + QStringLiteral(", ") + Tiers::displayName(*s->region().tier)
                 : QString();
    }

    [[nodiscard]] QRect rect() const override
    {
        if (!m_scene)
            return {};
        QRectF area;
        if (isHero()) {
            const QPointF hero = m_scene->player().heroPoint();
            area = QRectF(hero.x() - 15, hero.y() - 15, 30, 30);
        } else if (const MonsterSprite *s = sprite()) {
            area = s->bounds();
        }
        const QRect local = area.translated(m_scene->offset()).toAlignedRect();
        return QRect(m_scene->mapToGlobal(local.topLeft()), local.size());
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ActionInterface && !isHero())
            return static_cast<QAccessibleActionInterface *>(this);
        return nullptr;
    }

    [[nodiscard]] QStringList actionNames() const override
    {
        QStringList names{QStringLiteral("Enter")};
        if (const NodePtr node = folder(); node && m_scene->model().canSlay(*node))
            names << QStringLiteral("Slay");
        return names;
    }
    [[nodiscard]] QString localizedActionDescription(const QString &name) const override
    {
        return name;
    }
    [[nodiscard]] QStringList keyBindingsForAction(const QString &) const override { return {}; }

    void doAction(const QString &name) override
    {
        const NodePtr node = folder();
        if (!node)
            return;
        Model &model = m_scene->model();
        if (name == QLatin1String("Enter"))
            model.go(node, m_scene->game());
        else if (name == QLatin1String("Slay") && model.canSlay(*node))
            model.setPending(Model::PendingFolder{node});
    }

private:
    [[nodiscard]] bool isHero() const { return m_path.empty(); }

    [[nodiscard]] const MonsterSprite *sprite() const
    {
        if (!m_scene)
            return nullptr;
        for (const MonsterSprite &s : m_scene->sprites()) {
            if (s.region().path == m_path)
                return &s;
        }
        return nullptr;
    }

    [[nodiscard]] NodePtr folder() const
    {
        const MonsterSprite *s = sprite();
        const NodePtr *node = s ? s->region().tile.folder() : nullptr;
        return node ? *node : nullptr;
    }

    QPointer<WorldScene> m_scene;
    std::string m_path;
};

QAccessibleInterface *factory(const QString &className, QObject *object)
{
    if (className == QLatin1String("WorldScene") && object && object->isWidgetType())
        return new SceneAccessible(static_cast<WorldScene *>(object));
    return nullptr;
}

QAccessibleInterface *entryFor(WorldScene *scene, const std::string &path)
{
    // One registered interface per entry and scene, kept for the scene's lifetime: assistive
    // technology refers to children by identity.
    const QString key = QStringLiteral("dustmereEntry:") + QString::fromStdString(path);
    const QVariant id = scene->property(key.toUtf8().constData());
    if (id.isValid()) {
        if (QAccessibleInterface *known = QAccessible::accessibleInterface(id.toUInt()))
            return known;
    }
    auto *entry = new Entry(scene, path);
    const QAccessible::Id made = QAccessible::registerAccessibleInterface(entry);
    scene->setProperty(key.toUtf8().constData(), made);
    QObject::connect(scene, &QObject::destroyed,
                     [made] { QAccessible::deleteAccessibleInterface(made); });
    return entry;
}

} // namespace

SceneAccessible::SceneAccessible(WorldScene *scene) : QAccessibleWidget(scene, QAccessible::Pane) {}

void SceneAccessible::install()
{
    static const bool installed = [] {
        QAccessible::installFactory(factory);
        return true;
    }();
    Q_UNUSED(installed);
}

WorldScene *SceneAccessible::scene() const
{
    return static_cast<WorldScene *>(widget());
}

int SceneAccessible::childCount() const
{
    return QAccessibleWidget::childCount() + 1 + int(scene()->sprites().size());
}

QAccessibleInterface *SceneAccessible::child(int index) const
{
    const int widgets = QAccessibleWidget::childCount();
    if (index < widgets)
        return QAccessibleWidget::child(index);
    index -= widgets;
    if (index == 0)
        return entryFor(scene(), {});
    const auto &sprites = scene()->sprites();
    if (index - 1 >= int(sprites.size()))
        return nullptr;
    return entryFor(scene(), sprites[std::size_t(index - 1)].region().path.value_or(std::string()));
}

int SceneAccessible::indexOfChild(const QAccessibleInterface *child) const
{
    for (int i = 0; i < childCount(); ++i) {
        if (this->child(i) == child)
            return i;
    }
    return -1;
}
