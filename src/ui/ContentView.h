#pragma once

#include <QMessageBox>
#include <QPointer>
#include <QWidget>
#include <optional>

class Game;
class Magic;
class Model;
class QStackedWidget;
class TopBar;

// The content of the one window: the top bar over the main area chosen by the session's state,
// toasts and confetti over everything, and the two modal questions (slay? / it failed).
class ContentView : public QWidget
{
    Q_OBJECT

public:
    struct Options
    {
        std::optional<std::string> scanPath; // the folder named on the command line, clean
        std::optional<QString> settingsKept; // where damaged settings were just set aside
        bool reduceMotion = false;
        std::optional<QString> openFile{}; // a report to show read-only at start
    };

    ContentView(Model &model, Game &game, Magic &magic, Options options, QWidget *parent = nullptr);
    ~ContentView() override;

    [[nodiscard]] TopBar *topBar() const { return m_topBar; }
    [[nodiscard]] QWidget *mainArea() const;
    [[nodiscard]] QMessageBox *slayConfirmation() const { return m_confirm; }
    [[nodiscard]] QMessageBox *errorAlert() const { return m_alert; }
    void showOpenFailed(const QString &message);
    // "Charting…" while scanning, else the current folder's name, else empty.
    [[nodiscard]] QString subtitle() const;

Q_SIGNALS:
    void subtitleChanged(const QString &subtitle);

protected:
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void chooseMainArea();
    void askToSlay();
    void showError();
    void tellSettingsKept(const QString &backup);
    void placeOverlays();

    Model &m_model;
    Game &m_game;
    Options m_options;
    bool m_shown = false;
    TopBar *m_topBar;
    QStackedWidget *m_stack;
    QWidget *m_welcome;
    QWidget *m_scanning;
    QWidget *m_world;
    QWidget *m_ranking;
    QWidget *m_bounties;
    QWidget *m_toast;
    QWidget *m_confetti;
    QPointer<QMessageBox> m_confirm;
    QPointer<QMessageBox> m_alert;
};
