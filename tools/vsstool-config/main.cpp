// vsstool-config: backs up the settings of one instrument into setting files and restores them onto another,
// from the command line. See usageText() for the actions.

#include "tools/vsstool-config/CommandLine.h"
#include "tools/vsstool-config/ConfigTool.h"

#include <iostream>

int main(int argc, char** argv) {
    using namespace vss::config;
    const std::vector<std::string> args(argv + 1, argv + argc);
    const ParseResult parsed = parseCommandLine(args);
    if (!parsed.line) {
        std::cerr << "vsstool-config: " << parsed.error << "\n\n" << usageText();
        return 2;
    }
    if (parsed.line->help) {
        std::cout << usageText();
        return 0;
    }
    return runTool(*parsed.line, std::cin, std::cout, std::cerr);
}
