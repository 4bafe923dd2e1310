#pragma once

// vsstool-config run as a process on simulated instruments, each with its own memory file.

#include "tests/storage/StorageTestSupport.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <string>
#include <sys/wait.h>
#include <thread>
#include <utility>

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
    // The tool with exactly these arguments, after the shell commands `before`. A run that hangs is ended
    // after a minute (exit code 124). The simulator's default memory file lies in the test's folder: tests
    // that run side by side would otherwise share one instrument, which one program at a time holds.
    ToolRun runBare(const std::string& arguments, const std::string& input = "",
                    const std::string& before = "") {
        const std::string in = dir_.write("stdin.txt", input);
        const std::string command = "(" + before + "XDG_DATA_HOME=" + dir_.path("data") + " timeout 60 " +
                                    std::string(VSS_CONFIG_TOOL) + " " + arguments + ") <" + in + " >" +
                                    dir_.path("out.txt") + " 2>" + dir_.path("err.txt");
        return finished(std::system(command.c_str()));
    }
    // The tool on a disk that takes no file beyond `blocks` blocks of 512 bytes: a write past that fails with
    // "File too large", as one onto a full disk fails, and the program goes on.
    ToolRun runOnFullDisk(const std::string& arguments, int blocks) {
        return runBare("--simulate " + arguments, "",
                       "trap '' XFSZ; ulimit -f " + std::to_string(blocks) + "; ");
    }
    // The tool with its answer to the prompt typed only after `meanwhile` has run, once the prompt is shown.
    ToolRun runAnswering(const std::string& arguments, const std::string& answer,
                         const std::function<void()>& meanwhile) {
        std::filesystem::remove(dir_.path("out.txt"));
        const std::string command = "XDG_DATA_HOME=" + dir_.path("data") + " timeout 60 " +
                                    std::string(VSS_CONFIG_TOOL) + " --simulate " + arguments + " >" +
                                    dir_.path("out.txt") + " 2>" + dir_.path("err.txt");
        std::FILE* tool = popen(command.c_str(), "w");
        for (int waited = 0;
             waited < 1000 && readBytes(dir_.path("out.txt")).find("[y/N] ") == std::string::npos; ++waited)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        meanwhile();
        std::fputs(answer.c_str(), tool);
        return finished(pclose(tool));
    }
    ToolRun finished(int status) const {
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
