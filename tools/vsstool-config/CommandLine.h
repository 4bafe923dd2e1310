#pragma once

// The command line of vsstool-config: options, then actions that run in order in one instrument session.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vss::config {

enum class Verb { Export, Import, Backup, Restore, Diff, Save, Recall, Models, ApplyModel };

struct Action {
    Verb verb;
    std::string group; // export, import, save, recall: a group name ("all" for save and recall)
    std::string file;  // export, import, backup, restore, diff
    std::string model; // apply-model: a model's name, or its index in the catalogue
};

struct CommandLine {
    bool simulate = false;
    bool powerCycle = false; // the simulated instrument starts from its non-volatile memory
    bool oneBasedLists = false; // the simulated instrument numbers its lists from 1
    std::string simState;
    std::string simScenario; // timed inputs and faults for the simulated instrument
    std::string trace;
    std::string catalogue; // the spinstand catalogue; empty: "VssTool.ini" beside the program
    bool quiet = false;
    bool yes = false;
    bool help = false;
    std::vector<Action> actions;
};

// The parsed line, or the reason it is not valid (a usage error).
struct ParseResult {
    std::optional<CommandLine> line;
    std::string error;
};

ParseResult parseCommandLine(const std::vector<std::string>& args);

std::string_view usageText();

} // namespace vss::config
