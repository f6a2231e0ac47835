#pragma once

#include "sound/Sfx.h"

#include <QString>
#include <QUuid>
#include <optional>

// A short on-screen announcement; shown one at a time through the game's queue.
struct Toast
{
    QUuid id = QUuid::createUuid();
    QString emoji;
    QString title;
    QString subtitle;
    std::optional<Sound::Sfx> sound;

    [[nodiscard]] static Toast make(QString emoji, QString title, QString subtitle,
                                    std::optional<Sound::Sfx> sound = std::nullopt)
    {
        Toast t;
        t.emoji = std::move(emoji);
        t.title = std::move(title);
        t.subtitle = std::move(subtitle);
        t.sound = sound;
        return t;
    }

    bool operator==(const Toast &other) const { return id == other.id; }
};
