#pragma once

#include "app/CommandLine.h"

#include <string>

// Scans an existing folder without a window and prints the report as the command line asks;
// returns the exit status.
int runHeadlessReport(const std::string &path, const CommandLine &cl);
