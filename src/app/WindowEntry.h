#pragma once

#include "app/CommandLine.h"

// The window lives in a module loaded only when a window is wanted, so the headless report
// starts without mapping the GUI and audio stacks.
extern "C" {
using RunWindowFunction = int (*)(int argc, char *argv[], const CommandLine *commandLine);
int dustmere_run_window(int argc, char *argv[], const CommandLine *commandLine);
}
