#include "platform/WindowExposure.h"

#include <QCoreApplication>
#include <QEvent>
#include <QGuiApplication>

#if DUSTMERE_HAVE_XCB
#include <xcb/xcb.h>
#endif

WindowExposure::WindowExposure(QObject *parent) : QObject(parent)
{
    QCoreApplication::instance()->installNativeEventFilter(this);
}

WindowExposure::~WindowExposure()
{
    if (QCoreApplication::instance())
        QCoreApplication::instance()->removeNativeEventFilter(this);
}

void WindowExposure::watch(QWindow *window)
{
    if (window == m_window)
        return;
    if (m_window)
        m_window->removeEventFilter(this);
    m_window = window;
    m_covered = false;
    m_nativeId = 0;
    if (window) {
        window->installEventFilter(this);
        askForVisibilityEvents();
    }
    refresh();
}

bool WindowExposure::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Expose:
    case QEvent::Show:
    case QEvent::Hide:
    case QEvent::WindowStateChange:
        refresh(); // Qt updates the window's state before it sends these
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void WindowExposure::refresh()
{
    const bool seen = m_window && m_window->isExposed() &&
                      m_window->visibility() != QWindow::Minimized &&
                      m_window->visibility() != QWindow::Hidden && !m_covered;
    if (seen == m_seen)
        return;
    m_seen = seen;
    Q_EMIT changed();
}

// X11 tells a window it is fully covered only when asked to, and Qt does not ask.
void WindowExposure::askForVisibilityEvents()
{
#if DUSTMERE_HAVE_XCB
    const auto *x11 =
        qGuiApp ? qGuiApp->nativeInterface<QNativeInterface::QX11Application>() : nullptr;
    if (!x11 || !x11->connection())
        return;
    xcb_connection_t *c = x11->connection();
    m_nativeId = quint32(m_window->winId());
    const xcb_get_window_attributes_cookie_t cookie = xcb_get_window_attributes(c, m_nativeId);
    xcb_get_window_attributes_reply_t *reply = xcb_get_window_attributes_reply(c, cookie, nullptr);
    if (!reply)
        return;
    const uint32_t mask = reply->your_event_mask | XCB_EVENT_MASK_VISIBILITY_CHANGE;
    free(reply);
    xcb_change_window_attributes(c, m_nativeId, XCB_CW_EVENT_MASK, &mask);
    xcb_flush(c);
#endif
}

bool WindowExposure::nativeEventFilter(const QByteArray &eventType, void *message, qintptr *)
{
#if DUSTMERE_HAVE_XCB
    if (m_nativeId == 0 || eventType != "xcb_generic_event_t")
        return false;
    const auto *event = static_cast<const xcb_generic_event_t *>(message);
    if ((event->response_type & 0x7f) != XCB_VISIBILITY_NOTIFY)
        return false;
    const auto *visibility = reinterpret_cast<const xcb_visibility_notify_event_t *>(event);
    if (visibility->window == m_nativeId) {
        m_covered = visibility->state == XCB_VISIBILITY_FULLY_OBSCURED;
        refresh();
    }
#else
    Q_UNUSED(eventType)
    Q_UNUSED(message)
#endif
    return false;
}
