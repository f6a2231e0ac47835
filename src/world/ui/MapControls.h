#pragma once

#include <QWidget>

class Model;
class Popover;
class QToolButton;

// Zoom in, zoom out and the help popover, in a column at the map's bottom right.
class MapControls : public QWidget
{
    Q_OBJECT

public:
    explicit MapControls(Model &model, QWidget *parent = nullptr);

    [[nodiscard]] bool help() const { return m_help; }
    void setHelp(bool shown);

    [[nodiscard]] QToolButton *zoomInButton() const { return m_in; }
    [[nodiscard]] QToolButton *zoomOutButton() const { return m_out; }
    [[nodiscard]] QToolButton *helpButton() const { return m_info; }
    [[nodiscard]] Popover *helpPopover() const { return m_popover; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void refresh();

    Model &m_model;
    QToolButton *m_in;
    QToolButton *m_out;
    QToolButton *m_info;
    Popover *m_popover = nullptr; // a child, made on first use
    bool m_help = false;
};
