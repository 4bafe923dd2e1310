#pragma once

// vsstool-config run as a process on simulated instruments, each with its own memory file.

#include "tests/storage/StorageTestSupport.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <utility>
#include <sys/wait.h>

#ifndef VSS_CONFIG_TOOL
#error "VSS_CONFIG_TOOL names the built vsstool-config"
#endif

namespace vss::test {

struct ToolRun {
    int exitCode = -1;
    std::string out;
    std::string err;
};

class ConfigToolFixture : public ::testing::Test {
protected:
    // The tool on the simulated instrument, as the user asks for it with --simulate.
    ToolRun run(const std::string& arguments, const std::string& input = "") {
        return runBare("--simulate " + arguments, input);
    }
    // The tool with exactly these arguments.
    ToolRun runBare(const std::string& arguments, const std::string& input = "") {
        const std::string in = dir_.write("stdin.txt", input);
        const std::string command = std::string(VSS_CONFIG_TOOL) + " " + arguments + " <" + in + " >" +
                                    dir_.path("out.txt") + " 2>" + dir_.path("err.txt");
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, readBytes(dir_.path("out.txt")),
                readBytes(dir_.path("err.txt"))};
    }
    std::string path(const std::string& name) const { return dir_.path(name); }
    std::string write(const std::string& name, const std::string& bytes) const { return dir_.write(name, bytes); }

    // Imports that change every group.
    static std::string importEveryGroup() {
        std::string imports;
        for (const char* group : {"setting", "customer", "stage-config", "spinstand", "spindle", "stage", "piezo",
                                  "piezo-control", "backlash"})
            imports += std::string(" import ") + group + " " + VSS_GOLDEN_DIR + "/" + group + ".csv";
        return imports;
    }

    // Instrument A with every group changed and saved, backed up into backup.csv.
    void prepareInstrumentA() {
        const ToolRun r = run("--quiet --sim-state " + path("a.txt") + importEveryGroup() + " save all backup " +
                              path("backup.csv"));
        ASSERT_EQ(r.exitCode, 0) << r.err;
    }

    // backup.csv with each `from` replaced by its `to`, written as `name`.
    std::string editedBackup(const std::string& name,
                             std::initializer_list<std::pair<std::string, std::string>> replacements) {
        std::string edited = readBytes(path("backup.csv"));
        for (const auto& [from, to] : replacements) {
            const auto at = edited.find(from);
            EXPECT_NE(at, std::string::npos) << from;
            if (at != std::string::npos)
                edited.replace(at, from.size(), to);
        }
        return write(name, edited);
    }

private:
    ScratchDir dir_;
};

inline int lineCount(const std::string& text) {
    return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
}

} // namespace vss::test
