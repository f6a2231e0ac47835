#pragma once

#include <QAbstractNativeEventFilter>
#include <QObject>
#include <QPointer>
#include <QWindow>

// Whether a window can be seen: exposed (shown, not minimised) and, on X11 without a compositor,
// not fully covered by other windows, which Qt does not report. Animations pause while it cannot
// be seen, so a window in the background costs nothing.
class WindowExposure : public QObject, public QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    explicit WindowExposure(QObject *parent = nullptr);
    ~WindowExposure() override;

    // Follows `window` (a widget's windowHandle() once shown); the last one given counts.
    void watch(QWindow *window);
    [[nodiscard]] bool seen() const { return m_seen; }

    bool nativeEventFilter(const QByteArray &eventType, void *message, qintptr *result) override;

Q_SIGNALS:
    void changed();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void refresh();
    void askForVisibilityEvents();

    QPointer<QWindow> m_window;
    quint32 m_nativeId = 0;
    bool m_covered = false;
    bool m_seen = false;
};
