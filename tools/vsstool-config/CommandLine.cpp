#include "tools/vsstool-config/CommandLine.h"

#include "storage/modConfigFile.h"

namespace vss::config {

namespace {

struct VerbDef {
    std::string_view word;
    Verb verb;
    bool takesGroup;
    bool takesFile;
    bool takesModel = false;
};

constexpr VerbDef kVerbs[] = {
    {"export", Verb::Export, true, true},
    {"import", Verb::Import, true, true},
    {"backup", Verb::Backup, false, true},
    {"restore", Verb::Restore, false, true},
    {"diff", Verb::Diff, false, true},
    {"save", Verb::Save, true, false},
    {"recall", Verb::Recall, true, false},
    {"models", Verb::Models, false, false},
    {"apply-model", Verb::ApplyModel, false, false, true},
};

std::string checkGroup(const VerbDef& verb, const std::string& group) {
    const bool saveOrRecall = verb.verb == Verb::Save || verb.verb == Verb::Recall;
    if (saveOrRecall && group == "all")
        return {};
    const GroupDef* def = findGroup(group);
    if (def == nullptr)
        return "unknown group \"" + group + "\" after " + std::string(verb.word);
    if (verb.verb == Verb::Import && def->importCode == 0)
        return "the group \"" + group + "\" can be exported but not imported";
    if (saveOrRecall && group == "setting")
        return "the group \"setting\" takes effect as it is set and has no save or recall";
    return {};
}

// The usage text before and after the options of the simulated instrument and the trace, whose lines come
// from their shared description.
constexpr std::string_view kUsageHead =
    "usage: vsstool-config [options] action...\n"
    "Backs up and restores the settings of one instrument. The actions run in order in one session.\n"
    "\n"
    "actions:\n"
    "  export GROUP FILE   append GROUP as a report to FILE\n"
    "  import GROUP FILE   apply the sections of FILE that GROUP takes\n"
    "  backup FILE         append every group to FILE as one report\n"
    "  restore FILE        apply every importable group of FILE; checks the values and shows the\n"
    "                      changes, asks, backs up the instrument beside FILE, then writes ranges\n"
    "                      and limits before the values they bound; a declined or failed restore\n"
    "                      ends the run\n"
    "  diff FILE           show each value of FILE that differs from the instrument; changes nothing\n"
    "  save GROUP|all      store the group in the instrument's non-volatile memory (all: every group\n"
    "                      and the version data)\n"
    "  recall GROUP|all    reload the group from the instrument's non-volatile memory\n"
    "  models              list the spinstand catalogue's models with their index\n"
    "  apply-model MODEL   write the catalogue model MODEL (its name or index) to the instrument's\n"
    "                      working settings; follow with \"save all\" to keep it\n"
    "\n"
    "groups: setting, customer, stage-config, spinstand, spindle, stage, piezo, piezo-control,\n"
    "        piezo-adjust, backlash, piezo-info (export only)\n"
    "\n"
    "options:\n";

constexpr std::string_view kUsageTail =
    "  --catalogue FILE    the spinstand catalogue (default: VssTool.ini beside the program)\n"
    "  --quiet             print only errors, warnings and differences\n"
    "  --yes               restore without asking\n"
    "  --help              show this text\n"
    "\n"
    "exit status: 0 no message, 1 messages were raised, a value differed in a diff, a restore was\n"
    "             declined or failed, or an import failed (which ends the run),\n"
    "             2 usage error, a file that could not be opened or written, or an instrument session\n"
    "             that could not start (such as a damaged memory file of the simulated instrument)\n"
    "(a warning, such as a file that holds no section of the group, leaves the status as it is)\n";

} // namespace

ParseResult parseCommandLine(const std::vector<std::string>& args) {
    CommandLine line;
    for (std::size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        auto value = [&](std::string& into) {
            if (i + 1 >= args.size())
                return false;
            into = args[++i];
            return true;
        };
        if (const SimOption* option = findSimOption(Program::VsstoolConfig, arg)) {
            std::string file;
            if (option->takesValue() && !value(file))
                return {std::nullopt, arg + " needs a file name"};
            line.simulator.set(*option, std::move(file));
        } else if (arg == "--catalogue") {
            if (!value(line.catalogue))
                return {std::nullopt, arg + " needs a file name"};
        } else if (arg == "--quiet") {
            line.quiet = true;
        } else if (arg == "--yes") {
            line.yes = true;
        } else if (arg == "--help" || arg == "-h") {
            line.help = true;
        } else if (arg.starts_with("--")) {
            return {std::nullopt, "unknown option " + arg};
        } else {
            const VerbDef* verb = nullptr;
            for (const VerbDef& v : kVerbs)
                if (v.word == arg)
                    verb = &v;
            if (verb == nullptr)
                return {std::nullopt, "unknown action \"" + arg + "\""};
            Action action{verb->verb, {}, {}, {}};
            if (verb->takesGroup && !value(action.group))
                return {std::nullopt, arg + " needs a group name"};
            if (verb->takesFile && !value(action.file))
                return {std::nullopt, arg + " needs a file name"};
            if (verb->takesModel && !value(action.model))
                return {std::nullopt, arg + " needs a model name or index"};
            if (verb->takesGroup) {
                if (std::string error = checkGroup(*verb, action.group); !error.empty())
                    return {std::nullopt, error};
            }
            line.actions.push_back(std::move(action));
        }
    }
    if (!line.help && line.actions.empty())
        return {std::nullopt, "no action given"};
    return {std::move(line), {}};
}

std::string_view usageText() {
    static const std::string text =
        std::string(kUsageHead) + simOptionsUsage(Program::VsstoolConfig) + std::string(kUsageTail);
    return text;
}

} // namespace vss::config
