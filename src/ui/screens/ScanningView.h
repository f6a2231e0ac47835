#pragma once

#include "platform/AdaptiveColor.h"
#include "ui/screens/SpringAnimation.h"

#include <QWidget>
#include <string>

class AmbientLayer;
class Game;
class MaterialCard;
class Meter;
class Model;
class QLabel;
class QPushButton;
class IslandRenderer;

// What the window shows while a scan runs: the sea, then the island of the folders finished so
// far, with a card that tells the progress and can stop the scan.
class ScanningView : public QWidget
{
    Q_OBJECT

public:
    static constexpr AdaptiveColor sea{0x6A9CC9, 0x10283F};
    static constexpr int cardBottom = 24;

    ScanningView(Model &model, Game &game, bool reduceMotion, QWidget *parent = nullptr);
    ~ScanningView() override;

    [[nodiscard]] QString heading() const;
    [[nodiscard]] QString status() const;
    [[nodiscard]] QPushButton *stopButton() const { return m_stop; }
    [[nodiscard]] MaterialCard *card() const { return m_card; }
    [[nodiscard]] Meter *meter() const { return m_meter; }
    // Whether the island of the finished folders is drawn (else the plain sea).
    [[nodiscard]] bool showsIsland() const;
    // The island is drawn on a worker thread; this waits for the drawing in progress.
    void waitForIsland();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void refreshText();
    void partialChanged();
    void rebuildIsland();
    void islandReady();
    void placeCard();
    [[nodiscard]] QString folderName() const;
    [[nodiscard]] std::string childPath(const std::string &name) const;

    Model &m_model;
    Game &m_game;
    bool m_reduceMotion;
    IslandRenderer *m_island;
    bool m_hasIsland = false;
    bool m_islandShown = false;
    bool m_islandStale = true;
    double m_islandOpacity = 0;
    SpringAnimation m_fadeIn;
    AmbientLayer *m_ambient;
    MaterialCard *m_card;
    QLabel *m_heading;
    QLabel *m_status;
    Meter *m_meter;
    QPushButton *m_stop;
};
