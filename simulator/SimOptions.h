#pragma once

// The command-line options of the simulated instrument and of the driver call trace, described once for both
// programs: vsstool reads them with its option parser, vsstool-config with its own. Each program lists the
// options in its own order and with its own help text (vsstool writes sentences, vsstool-config the
// lower-case phrases of its usage text); an option a program does not offer has no place in its list.

#include "simulator/Factory.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vss {

enum class Program { Vsstool, VsstoolConfig };

struct SimOption {
    struct Listing {
        int place = 0; // the option's place in the program's list, from 1; 0: the program does not offer it
        std::string_view help;
    };

    std::string_view name;      // given as --name
    std::string_view valueName; // the value's name in the help ("FILE"); empty: a switch without a value
    Listing vsstool;
    Listing vsstoolConfig;
    // Sets the option in `options`; `value` is empty for a switch. Opening the trace file throws
    // std::exception with the reason when the file cannot be opened.
    void (*apply)(DriverOptions& options, const std::string& value);

    bool takesValue() const { return !valueName.empty(); }
    const Listing& in(Program program) const { return program == Program::Vsstool ? vsstool : vsstoolConfig; }
};

// The options the program offers, in the order its help lists them.
std::vector<const SimOption*> simOptions(Program program);

// The option that `argument` ("--sim-state") names among those the program offers; nullptr for any other.
const SimOption* findSimOption(Program program, std::string_view argument);

// The options' lines of a usage text, as vsstool-config prints them: the option and its value's name in the
// first 22 columns (on a line of its own when longer), the help from column 23, wrapped at 100 columns.
std::string simOptionsUsage(Program program);

// The options given on a command line with their values (empty for a switch), to be applied when the
// instrument session starts. An option given twice counts once, with its later value; an empty file name
// counts as not giving the option (no scenario, no trace), except for --sim-state, where applying it refuses it.
class SimArguments {
public:
    void set(const SimOption& option, std::string value);
    // Applies the options in the order they were first given; throws as SimOption::apply does.
    void applyTo(DriverOptions& options) const;

private:
    std::vector<std::pair<const SimOption*, std::string>> given_;
};

} // namespace vss
