#pragma once

#include <QFrame>
#include <QPointer>

// A panel attached below a widget that closes when the user clicks elsewhere or presses Escape.
class Popover : public QFrame
{
    Q_OBJECT

public:
    explicit Popover(QWidget *content, QWidget *parent = nullptr);

    void showBelow(QWidget *anchor);

Q_SIGNALS:
    void closed();

protected:
    void hideEvent(QHideEvent *event) override;
};
