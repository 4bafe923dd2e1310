#pragma once

// The program's command line: the simulator, its state file and timing, the call trace, the spinstand
// catalogue, the screenshot mode.

#include "simulator/Factory.h"

#include <QString>
#include <QStringList>
#include <variant>

namespace vss {

struct CommandLine {
    DriverOptions driver;
    QString catalogueFile; // empty: "VssTool.ini" in the program's folder
    QString screenshotDir; // empty: run the program normally
};

// Parses the arguments (the program's name first). --help and --version print their text and give exit code
// 0; an unknown option or an unexpected argument prints the error and the usage text and gives exit code 2; a
// trace file that cannot be opened gives exit code 1. Everything is printed to the standard streams.
std::variant<CommandLine, int> parseCommandLine(const QStringList& arguments);

} // namespace vss
