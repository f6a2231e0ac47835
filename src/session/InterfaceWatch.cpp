#include "session/InterfaceWatch.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

InterfaceWatch::InterfaceWatch()
{
    // Created by a scan that starts on this thread, awake.
    m_foreground->setBusy(true);
    // The end of work is the loop going to sleep; its start is the next event handled, which the
    // glib loop does not announce (it says "about to block" before it waits and dispatches).
    if (auto *dispatcher = QAbstractEventDispatcher::instance(thread()))
        connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, this,
                [f = m_foreground] { f->setBusy(false); });
    if (QCoreApplication::instance() && QCoreApplication::instance()->thread() == thread())
        QCoreApplication::instance()->installEventFilter(this);
}

InterfaceWatch::~InterfaceWatch()
{
    m_foreground->setBusy(false);
}

bool InterfaceWatch::eventFilter(QObject *, QEvent *)
{
    m_foreground->setBusy(true);
    return false;
}
