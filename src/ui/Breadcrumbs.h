#pragma once

#include <QScrollArea>

class Game;
class Model;
class QHBoxLayout;
class QLabel;
class QToolButton;
class TabularLabel;

// The trail from the scan root to the current folder; the deepest folder stays in view.
class Breadcrumbs : public QScrollArea
{
    Q_OBJECT

public:
    Breadcrumbs(Model &model, Game &game, QWidget *parent = nullptr);

    [[nodiscard]] QList<QToolButton *> crumbs() const;
    [[nodiscard]] TabularLabel *sizeLabel() const { return m_size; }
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void rebuild();
    void scrollToEnd();

    Model &m_model;
    Game &m_game;
    QWidget *m_content;
    QHBoxLayout *m_row;
    TabularLabel *m_size = nullptr;
};
