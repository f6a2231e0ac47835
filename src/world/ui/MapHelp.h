#pragma once

#include <QWidget>

// The map's help: how to play, the spells, and the key to the map's colours and marks.
class MapHelp : public QWidget
{
    Q_OBJECT

public:
    explicit MapHelp(QWidget *parent = nullptr);
};
