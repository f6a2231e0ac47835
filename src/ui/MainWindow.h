#pragma once

#include "ui/ContentView.h"

#include <QMainWindow>

// The one window, "Dustmere", with its World menu.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow(Model &model, Game &game, Magic &magic, ContentView::Options options,
               QWidget *parent = nullptr);

    [[nodiscard]] ContentView *content() const { return m_content; }
    [[nodiscard]] QMenu *worldMenu() const { return m_world; }

private:
    ContentView *m_content;
    QMenu *m_world;
};
