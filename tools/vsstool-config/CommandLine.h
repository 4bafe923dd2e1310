#pragma once

// The command line of vsstool-config: options, then actions that run in order in one instrument session.

#include "simulator/SimOptions.h"

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
    SimArguments simulator; // the simulated instrument's options and the trace, applied as the session starts
    std::string catalogue;  // the spinstand catalogue; empty: "VssTool.ini" beside the program
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
