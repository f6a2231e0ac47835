#pragma once

#include "scan/Scanner.h"

#include <QString>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// What the user asked for on the command line.
struct CommandLine
{
    enum class ReportFormat { text, json };
    enum class Appearance { system, light, dark };

    // The folder exactly as given, bytes; an empty one starts nothing.
    std::optional<std::string> scanPath;
    std::optional<ReportFormat> report;
    // A report or snapshot to show read-only in the window, as given.
    std::optional<std::string> openFile;
    std::optional<int> depth;
    std::optional<Scanner::Walk> walk;
    Appearance appearance = Appearance::system;
    bool reduceMotion = false;
    // Read and write remembered scans (growth since the last scan, true progress).
    bool remember = true;
    bool help = false;
    bool version = false;

    struct Error
    {
        QString message;
    };

    // args excludes the program name; they stay bytes, as the system passed them.
    [[nodiscard]] static std::variant<CommandLine, Error>
    parse(const std::vector<std::string> &args);
    [[nodiscard]] static QString usage();
    // The folder a spelling names: "~" and "~/…" in the home folder, anything relative in the
    // working folder; absolute and clean.
    [[nodiscard]] static std::string folder(const std::string &spelled, const std::string &home,
                                            const std::string &workingFolder);
};
