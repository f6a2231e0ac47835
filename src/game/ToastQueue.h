#pragma once

#include "game/Toast.h"

#include <QObject>
#include <QTimer>
#include <chrono>
#include <deque>
#include <functional>
#include <optional>

// Shows toasts one at a time, each for a fixed time, in the order they were posted.
class ToastQueue : public QObject
{
    Q_OBJECT

public:
    using SoundPlayer = std::function<void(const Sound::Sfx &)>;

    explicit ToastQueue(std::chrono::milliseconds showFor, SoundPlayer play,
                        QObject *parent = nullptr);

    void post(Toast toast);
    [[nodiscard]] const std::optional<Toast> &current() const { return m_current; }
    [[nodiscard]] std::size_t waiting() const { return m_queue.size(); }

Q_SIGNALS:
    void currentChanged();

private:
    void showNext();

    std::deque<Toast> m_queue;
    std::optional<Toast> m_current;
    QTimer m_timer;
    SoundPlayer m_play;
};
