#pragma once

#include "scan/Scanner.h"

#include <QString>
#include <QStringList>
#include <optional>
#include <variant>

// What the user asked for on the command line.
struct CommandLine
{
    enum class ReportFormat { text, json };
    enum class Appearance { system, light, dark };

    std::optional<QString> scanPath;
    std::optional<ReportFormat> report;
    std::optional<int> depth;
    std::optional<Scanner::Walk> walk;
    Appearance appearance = Appearance::system;
    bool reduceMotion = false;
    bool help = false;
    bool version = false;

    struct Error
    {
        QString message;
    };

    // args excludes the program name.
    [[nodiscard]] static std::variant<CommandLine, Error> parse(const QStringList &args);
    [[nodiscard]] static QString usage();
};
