#include "simulator/SimOptions.h"

#include "driver/Trace.h"

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace vss {
namespace {

constexpr SimOption kOptions[] = {
    {"simulate",
     "",
     {1, "Use the simulated instrument even where a driver is registered."},
     {1, "use the simulated instrument even where the driver is installed"},
     [](DriverOptions& options, const std::string&) { options.forceSimulator = true; }},
    {"sim-state",
     "FILE",
     {2, "The simulated instrument's non-volatile memory file."},
     {2, "the simulated instrument's non-volatile memory file"},
     [](DriverOptions& options, const std::string& file) {
         // An empty name would quietly pick the default memory file: another instrument than the one asked.
         if (file.empty())
             throw std::invalid_argument("the memory file name given with --sim-state is empty: name a file, "
                                         "or - for an instrument without one");
         options.simStatePath = file;
     }},
    {"power-cycle",
     "",
     {3, "Start the simulated instrument as after switching it off and on: its working values from its "
         "non-volatile memory."},
     {4, "start the simulated instrument as after switching it off and on: its working values from its "
         "non-volatile memory"},
     [](DriverOptions& options, const std::string&) { options.simPowerCycle = true; }},
    {"sim-delays",
     "",
     {4, "Give the simulated instrument realistic timing."},
     {},
     [](DriverOptions& options, const std::string&) { options.simDelays = true; }},
    {"sim-scenario",
     "FILE",
     {5, "Play the timed steps of the scenario FILE on the simulated instrument."},
     {3, "the simulated instrument's timed inputs and faults"},
     [](DriverOptions& options, const std::string& file) { options.simScenario = file; }},
    {"sim-one-based-lists",
     "",
     {6, "Number the simulated instrument's lists from 1, as some drivers do."},
     {5, "number the simulated instrument's lists from 1, as some drivers do"},
     [](DriverOptions& options, const std::string&) { options.simOneBasedLists = true; }},
    {"trace",
     "FILE",
     {7, "Write every driver call to FILE, one line each."},
     {6, "append every driver call to FILE"},
     [](DriverOptions& options, const std::string& file) {
         options.trace = std::make_shared<TraceFile>(file);
     }},
};

constexpr std::size_t kUsageColumn = 22;
constexpr std::size_t kUsageWidth = 100;

// Appends the words of `text`, starting at `column`, and breaks the line before a word that would pass the
// usage width; a continued line starts at the help's column.
void appendWrapped(std::string& out, std::size_t column, std::string_view text) {
    bool first = true;
    while (!text.empty()) {
        const std::size_t end = text.find(' ');
        const std::string_view word = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view{} : text.substr(end + 1);
        if (!first && column + 1 + word.size() > kUsageWidth) {
            out += '\n';
            out.append(kUsageColumn, ' ');
            column = kUsageColumn;
        } else if (!first) {
            out += ' ';
            ++column;
        }
        out += word;
        column += word.size();
        first = false;
    }
    out += '\n';
}

} // namespace

std::vector<const SimOption*> simOptions(Program program) {
    std::vector<const SimOption*> listed;
    for (const SimOption& option : kOptions)
        if (option.in(program).place > 0)
            listed.push_back(&option);
    std::ranges::sort(listed, {}, [program](const SimOption* option) { return option->in(program).place; });
    return listed;
}

const SimOption* findSimOption(Program program, std::string_view argument) {
    if (!argument.starts_with("--"))
        return nullptr;
    argument.remove_prefix(2);
    for (const SimOption& option : kOptions)
        if (option.name == argument && option.in(program).place > 0)
            return &option;
    return nullptr;
}

std::string simOptionsUsage(Program program) {
    std::string out;
    for (const SimOption* option : simOptions(program)) {
        std::string left = "  --" + std::string(option->name);
        if (option->takesValue())
            left += ' ' + std::string(option->valueName);
        out += left;
        // At least two blanks between the option and its help.
        if (left.size() + 2 > kUsageColumn) {
            out += '\n';
            out.append(kUsageColumn, ' ');
        } else {
            out.append(kUsageColumn - left.size(), ' ');
        }
        appendWrapped(out, kUsageColumn, option->in(program).help);
    }
    return out;
}

void SimArguments::set(const SimOption& option, std::string value) {
    const auto given = std::ranges::find(given_, &option, &std::pair<const SimOption*, std::string>::first);
    if (option.takesValue() && value.empty() && option.name != "sim-state") {
        if (given != given_.end())
            given_.erase(given);
    } else if (given != given_.end()) {
        given->second = std::move(value);
    } else {
        given_.emplace_back(&option, std::move(value));
    }
}

void SimArguments::applyTo(DriverOptions& options) const {
    for (const auto& [option, value] : given_)
        option->apply(options, value);
}

} // namespace vss
