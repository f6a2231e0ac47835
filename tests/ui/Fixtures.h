#pragma once

#include "game/Game.h"
#include "platform/Desktop.h"
#include "platform/Settings.h"
#include "platform/TrashCan.h"
#include "session/Model.h"
#include "support/TestSandbox.h"

#include <QTest>
#include <memory>
#include <string>
#include <vector>

// Shared pieces of the screen tests: a game and a model that play into a list instead of the
// speakers, and stand-ins for the file manager and the Trash that only take notes.
namespace Fixtures {

class RecordingDesktop : public Desktop
{
public:
    explicit RecordingDesktop(std::shared_ptr<QStringList> shown) : m_shown(std::move(shown)) {}

protected:
    bool showItems(const QStringList &uris) override
    {
        *m_shown += uris;
        return true;
    }
    bool openUrl(const QUrl &) override { return true; }

private:
    std::shared_ptr<QStringList> m_shown;
};

// Says yes to every move and moves nothing.
class NotingTrash : public TrashCan
{
public:
    explicit NotingTrash(std::shared_ptr<std::vector<std::string>> moved)
        : m_moved(std::move(moved))
    {}
    Result moveToTrash(const std::string &path) override
    {
        m_moved->push_back(path);
        return Moved{"/nowhere/Trash/files/" + path.substr(path.rfind('/') + 1)};
    }

private:
    std::shared_ptr<std::vector<std::string>> m_moved;
};

struct Session
{
    std::vector<Sound::Sfx> played;
    std::shared_ptr<QStringList> revealed = std::make_shared<QStringList>();
    std::shared_ptr<std::vector<std::string>> trashed =
        std::make_shared<std::vector<std::string>>();
    std::unique_ptr<Game> game;
    std::unique_ptr<Model> model;

    Session()
    {
        auto settings = Settings::open();
        settings->clear();
        settings->sync();
        Game::Options o;
        o.play = [](const Sound::Sfx &) {};
        o.toastDuration = std::chrono::hours(1);
        game = std::make_unique<Game>(o);
        model = std::make_unique<Model>();
        model->setSoundPlayer([this](const Sound::Sfx &s) { played.push_back(s); });
        model->setDesktop(std::make_unique<RecordingDesktop>(revealed));
        model->setTrashCan(std::make_unique<NotingTrash>(trashed));
    }

    // Scans a folder and waits for the result; the scan's own sounds are forgotten.
    bool scan(const QByteArray &folder)
    {
        model->setScanPath(folder.toStdString());
        model->scan(*game);
        if (!QTest::qWaitFor([this] { return !model->scanning(); }, 60'000))
            return false;
        played.clear();
        return model->root() != nullptr;
    }

    [[nodiscard]] NodePtr at(const std::string &relative) const
    {
        return model->node(*model->root()->basePath() + "/" + relative);
    }
};

inline QByteArray sandboxPath(const char *name)
{
    return QFile::encodeName(TestSandbox::instance()->root()) + "/" + name;
}

} // namespace Fixtures
