#include "game/ToastQueue.h"

ToastQueue::ToastQueue(std::chrono::milliseconds showFor, SoundPlayer play, QObject *parent)
    : QObject(parent), m_play(std::move(play))
{
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    m_timer.setInterval(showFor);
    connect(&m_timer, &QTimer::timeout, this, &ToastQueue::showNext);
}

void ToastQueue::post(Toast toast)
{
    m_queue.push_back(std::move(toast));
    if (!m_current)
        showNext();
}

void ToastQueue::showNext()
{
    if (m_queue.empty()) {
        m_current.reset();
        Q_EMIT currentChanged();
        return;
    }
    m_current = std::move(m_queue.front());
    m_queue.pop_front();
    Q_EMIT currentChanged();
    if (m_current->sound && m_play)
        m_play(*m_current->sound);
    m_timer.start();
}
