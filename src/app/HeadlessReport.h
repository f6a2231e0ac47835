#pragma once

#include "app/CommandLine.h"

#include <string>

// Scans an existing folder without a window and prints the report; returns the exit status.
int runHeadlessReport(const std::string &path, CommandLine::ReportFormat format,
                      std::optional<int> depth, std::optional<Scanner::Walk> walk);
