// Times the island: building the layout of a level of 160 tiles, and painting one frame of the
// map while the hero walks at zoom 4 in a 1440 × 900 view (the island itself is cached; a frame
// is its visible part plus the monsters, the hero and the ambient overlay).
//
//   world_bench [--frames=N]
// prints "layout-build-ms <x>" and "frame-ms <y>" (means, in milliseconds).

#include "game/Game.h"
#include "magic/ui/AmbientLayer.h"
#include "platform/Appearance.h"
#include "session/Model.h"
#include "world/ManualClock.h"
#include "world/Player.h"
#include "world/WorldLayout.h"
#include "world/ui/WorldScene.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QImage>
#include <QPainter>
#include <QTemporaryDir>
#include <cstdio>

namespace {

// A level of 240 folders of assorted sizes (so 160 shown plus the rest), every tier present.
NodePtr level()
{
    NodePtr root = Node::create("bench");
    root->setBasePath("/bench");
    for (int i = 0; i < 240; ++i) {
        NodePtr n = Node::create("folder-" + std::to_string(i), root);
        n->addLoose(std::uint64_t(120e9 / ((i + 1) * (i + 1) * 0.7)) + 4096);
        n->finish();
        root->appendChild(n);
    }
    root->addLoose(3'000'000'000ULL);
    root->finish();
    return root;
}

QString title(const Tile &t, std::optional<Tier>)
{
    return QFile::decodeName(QByteArray::fromStdString(t.name));
}

WorldLayout build(const std::vector<Tile> &tiles, QSizeF size)
{
    return WorldLayout::build(
        tiles, "/bench", size, [](const std::string &p) { return p.back() % 3 != 0; },
        [](const std::string &p) { return std::int64_t(p.back() == '7' ? 2 : 0); }, title);
}

} // namespace

int main(int argc, char *argv[])
{
    // Game reads and writes its settings; keep them away from the user's.
    QTemporaryDir sandbox;
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(sandbox.path()));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int frames = 300;
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (arg.startsWith("--frames="))
            frames = std::max(1, arg.mid(9).toInt());
    }

    const QSizeF view(1440, 900);
    const double zoom = 4.0;
    const QSizeF world = view * zoom;
    const NodePtr root = level();
    const std::vector<Tile> tiles = makeTiles(root.get(), Metric::size, int(40 * zoom));

    constexpr int builds = 50;
    (void)build(tiles, world);
    QElapsedTimer timer;
    timer.start();
    WorldLayout layout;
    for (int i = 0; i < builds; ++i)
        layout = build(tiles, world);
    const double buildMs = double(timer.nsecsElapsed()) / 1e6 / builds;

    Game game;
    Model model;
    model.setSoundPlayer([](const Sound::Sfx &) {});
    auto clock = std::make_shared<ManualClock>(0);
    Player player(clock);
    player.update(layout, view);
    WorldScene scene(model, game, player, false);
    scene.setPalette(Appearance::palette(Appearance::Scheme::light));
    scene.resize(view.toSize());
    scene.setWorld(layout, QStringLiteral("The Bench"));
    AmbientLayer ambient(false);

    QImage target(view.toSize(), QImage::Format_ARGB32_Premultiplied);
    const QRectF all(QPointF(0, 0), view);
    {
        QPainter warm(&target); // draws the island into its cache once
        scene.paintFrame(warm, all);
    }
    player.jump(QPointF(layout.land.left() + 40, layout.land.center().y()));
    player.key(QStringLiteral("right"), true, false);

    double total = 0;
    for (int i = 0; i < frames; ++i) {
        clock->advance(1.0 / 60);
        timer.restart();
        player.tick();
        QPainter painter(&target);
        scene.paintFrame(painter, all);
        ambient.paintFrame(painter, view, clock->now(), false);
        painter.end();
        total += double(timer.nsecsElapsed()) / 1e6;
    }
    std::printf("layout-build-ms %.3f\n", buildMs);
    std::printf("frame-ms %.3f\n", total / frames);
    return 0;
}
