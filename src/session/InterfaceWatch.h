#pragma once

#include "scan/Foreground.h"

#include <QObject>
#include <memory>

// Tells a scan's walkers whether this (the interface) thread is at work: from the first event it
// handles until its event loop is about to sleep again. Alive for one scan.
class InterfaceWatch : public QObject
{
    Q_OBJECT

public:
    InterfaceWatch();
    // Lets any waiting walker go for good.
    ~InterfaceWatch() override;

    [[nodiscard]] const std::shared_ptr<Foreground> &foreground() const { return m_foreground; }

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    std::shared_ptr<Foreground> m_foreground = std::make_shared<Foreground>();
};
