// vsstool-config beside another program on one simulated instrument, on a full disk and interrupted at a
// prompt: what it said was done stays done, and a write that fails fails its action.

#include "tests/storage/ConfigToolRun.h"

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>
#include <unistd.h>

namespace vss {
namespace {

using test::readBytes;
using test::ToolRun;

bool has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class ConfigToolSession : public test::ConfigToolFixture {
protected:
    // No temporary file of the simulator is left in the folder.
    void expectNoTemporaryFile() {
        for (const auto& entry :
             std::filesystem::directory_iterator(std::filesystem::path(path("m.txt")).parent_path()))
            EXPECT_NE(entry.path().extension(), ".tmp") << entry.path();
    }

    const std::string golden = std::string(VSS_GOLDEN_DIR) + "/";
};

// The tool started in the background, waiting at its restore prompt.
class AtPrompt {
public:
    explicit AtPrompt(const std::string& arguments, const std::string& output) {
        int in[2] = {-1, -1};
        EXPECT_EQ(::pipe(in), 0);
        pid_ = ::fork();
        if (pid_ == 0) {
            ::dup2(in[0], 0);
            ::close(in[0]);
            ::close(in[1]);
            const std::string command =
                std::string("exec ") + VSS_CONFIG_TOOL + " --simulate " + arguments + " >" + output + " 2>&1";
            ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
            ::_exit(127);
        }
        ::close(in[0]);
        answer_ = in[1];
        for (int wait = 0; wait < 600 && !has(readBytes(output), "[y/N] "); ++wait)
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
        EXPECT_TRUE(has(readBytes(output), "[y/N] ")) << readBytes(output);
    }
    ~AtPrompt() { interrupt(); }
    pid_t pid() const { return pid_; }
    // Ctrl-C at the prompt.
    void interrupt() {
        if (pid_ <= 0)
            return;
        ::kill(pid_, SIGINT);
        ::close(answer_);
        ::waitpid(pid_, nullptr, 0);
        pid_ = -1;
    }

private:
    pid_t pid_ = -1;
    int answer_ = -1;
};

// A second program is refused with the first one's name while the first waits at its prompt, and what the
// first imported before the prompt stays imported when it is interrupted there.
TEST_F(ConfigToolSession, OneProgramAtATimeAndAnInterruptLosesNothingDone) {
    prepareInstrumentA();
    const std::string m = " --sim-state " + path("m.txt");
    AtPrompt first(m + " --quiet import backlash " + golden + "backlash.csv restore " + path("backup.csv"),
                   path("first.txt"));
    const ToolRun second = run(m + " import spindle " + golden + "spindle.csv");
    EXPECT_EQ(second.exitCode, 2);
    EXPECT_TRUE(has(second.err, "in use by vsstool-config (process " + std::to_string(first.pid()) + ")"))
        << second.err;

    first.interrupt();
    const ToolRun after = run(m + " --quiet diff " + golden + "backlash.csv");
    EXPECT_EQ(after.exitCode, 0) << after.out << after.err;
    expectNoTemporaryFile();
}

// A full disk and a lock that cannot be taken fail the import, with the file and the reason; the next program
// finds the values as they were.
TEST_F(ConfigToolSession, AWriteThatFailsFailsTheImport) {
    const std::string m = " --sim-state " + path("m.txt");
    const ToolRun full = runOnFullDisk(m + " import backlash " + golden + "backlash.csv", 2);
    EXPECT_NE(full.exitCode, 0);
    EXPECT_TRUE(has(full.err, path("m.txt.working") + ": File too large")) << full.err;
    EXPECT_FALSE(has(full.out, "imported")) << full.out;
    EXPECT_EQ(run(m + " --quiet diff " + golden + "backlash.csv").exitCode, 1)
        << "the values are as they were";
    expectNoTemporaryFile();

    std::filesystem::create_directory(path("n.txt.lock"));
    const ToolRun unlocked =
        run("--sim-state " + path("n.txt") + " import backlash " + golden + "backlash.csv");
    EXPECT_EQ(unlocked.exitCode, 2);
    EXPECT_TRUE(has(unlocked.err, "cannot lock its memory file " + path("n.txt"))) << unlocked.err;
}

// An empty memory file name and trace lines lost to a full disk are said, with the exit status of a file
// that could not be used.
TEST_F(ConfigToolSession, AnEmptyMemoryFileNameAndLostTraceLinesAreSaid) {
    const ToolRun empty = run("--sim-state '' backup " + path("b.csv"));
    EXPECT_EQ(empty.exitCode, 2);
    EXPECT_TRUE(has(empty.err, "--sim-state is empty")) << empty.err;
    EXPECT_FALSE(std::filesystem::exists(path("b.csv")));

    const std::string trace = write("trace.txt", std::string(1024, '#'));
    const ToolRun lost = runOnFullDisk(
        "--sim-state " + path("m.txt") + " --trace " + trace + " diff " + golden + "setting.csv", 2);
    EXPECT_EQ(lost.exitCode, 2);
    EXPECT_TRUE(
        has(lost.err, "of the driver call trace could not be written to " + trace + ": File too large"))
        << lost.err;
}

} // namespace
} // namespace vss
