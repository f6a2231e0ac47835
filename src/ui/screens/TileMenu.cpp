#include "ui/screens/TileMenu.h"

#include "game/Game.h"
#include "platform/Desktop.h"
#include "session/Model.h"
#include "ui/screens/EmojiMenuStyle.h"

TileMenu::TileMenu(Model &model, Game &game, Tile tile, QWidget *parent)
    : QMenu(parent), m_model(model), m_game(game), m_tile(std::move(tile))
{
    auto *style = new EmojiMenuStyle;
    style->setParent(this);
    setStyle(style);
    if (const NodePtr *node = m_tile.folder()) {
        addFolderItems(*node);
    } else if (const BigFile *file = m_tile.file()) {
        addFileItems(*file);
    } else if (m_model.current()) {
        addAction(tr("Reveal Folder in File Manager"), this, [this] {
            if (const NodePtr &current = m_model.current())
                m_model.reveal(current->path());
        });
    }
    // A report's paths may be another machine's.
    for (QAction *a : actions())
        if (a->text().startsWith(tr("Reveal")))
            a->setEnabled(m_model.canReveal());
    if (const auto pending = m_model.slayRequest(m_tile)) {
        addSeparator();
        const QString slay = tr("⚔️ Slay (Move to Trash)…");
        addAction(EmojiMenuStyle::icon(EmojiMenuStyle::leadingEmoji(slay)), slay, this,
                  [this, pending = *pending] { m_model.setPending(pending); });
    }
}

void TileMenu::addFolderItems(const NodePtr &node)
{
    QAction *open = addAction(tr("Open"), this, [this, node] { m_model.go(node, m_game); });
    open->setEnabled(!node->children().empty());
    addAction(tr("Show on Map"), this, [this, node] { m_model.show(node, m_game); });
    addAction(tr("Reveal in File Manager"), this, [this, node] { m_model.reveal(node->path()); });
}

void TileMenu::addFileItems(const BigFile &file)
{
    addAction(tr("Reveal in File Manager"), this, [this, file] { m_model.reveal(file.path); });
    addAction(tr("Copy Path"), this, [path = file.path] { Desktop::copyPath(path); });
}
