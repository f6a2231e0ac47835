#pragma once

#include "ui/ContentView.h"

#include <QMainWindow>
#include <QPointer>

class QMessageBox;

// The one window, "Dustmere", with its application menu (About, Quit) and its World menu.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    MainWindow(Model &model, Game &game, Magic &magic, ContentView::Options options,
               QWidget *parent = nullptr);

    [[nodiscard]] ContentView *content() const { return m_content; }
    [[nodiscard]] QMenu *appMenu() const { return m_app; }
    [[nodiscard]] QMenu *fileMenu() const { return m_file; }
    [[nodiscard]] QMenu *worldMenu() const { return m_world; }
    [[nodiscard]] QMessageBox *aboutBox() const { return m_about; }

private:
    void showAbout();

    ContentView *m_content;
    QMenu *m_app;
    QMenu *m_file;
    QMenu *m_world;
    QPointer<QMessageBox> m_about;
};
