// vsstool-config's restore never leaves an instrument half-restored without saying so, and the tool's own
// conventions: exit statuses, one prefix per message, escaped texts.

#include "tests/storage/ConfigToolRun.h"

#include <filesystem>
#include <regex>

namespace vss {
namespace {

using test::ToolRun;
using ConfigRestore = test::ConfigToolFixture;

// The backups that restores took beside the restored files of the folder.
std::vector<std::string> backupsIn(const std::string& folder) {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().filename().string().find("-before-restore-") != std::string::npos)
            found.push_back(entry.path().string());
    return found;
}

TEST_F(ConfigRestore, ADeclinedOrRefusedRestoreRunsNothingAfterIt) {
    prepareInstrumentA();
    const std::string b = " --sim-state " + path("b.txt") + " --trace " + path("trace.txt");
    const std::string piezo = std::string(VSS_GOLDEN_DIR) + "/piezo.csv";

    const ToolRun declined =
        run(b + " import piezo " + piezo + " restore " + path("backup.csv") + " save all", "n\n");
    EXPECT_EQ(declined.exitCode, 1);
    EXPECT_NE(declined.out.find("restore cancelled; nothing was changed\n"), std::string::npos);
    EXPECT_EQ(declined.out.find("saved"), std::string::npos) << declined.out;
    EXPECT_EQ(test::readBytes(path("trace.txt")).find("IDriverService.Save"), std::string::npos);
    EXPECT_TRUE(backupsIn(path("")).empty()) << "a declined restore takes no backup";

    // A value outside the instrument's lists or ranges is found before anything is written: here a spindle
    // speed beyond the file's own speed range, and a load method the instrument does not offer.
    const std::string bad = editedBackup("bad.csv", {{"%SpindleSpeed\r\n5400,", "%SpindleSpeed\r\n12500,"},
                                                     {"%LoadMethod\r\n2,", "%LoadMethod\r\n77,"}});
    std::filesystem::remove(path("trace.txt"));
    const ToolRun refused = run(b + " --yes restore " + bad + " save all");
    EXPECT_EQ(refused.exitCode, 1);
    EXPECT_NE(refused.err.find("%SpindleSpeed 12500 rpm lies outside the speed range 3600 to 12000 rpm"),
              std::string::npos)
        << refused.err;
    EXPECT_NE(refused.err.find("%LoadMethod 77 is not"), std::string::npos) << refused.err;
    const std::string trace = test::readBytes(path("trace.txt"));
    EXPECT_EQ(trace.find(".Set"), std::string::npos) << "nothing written";
    EXPECT_EQ(trace.find(".Save"), std::string::npos);
    EXPECT_TRUE(backupsIn(path("")).empty());
}

// The spindle speed of the file lies below the target's speed range but within the file's own: the range is
// written first.
TEST_F(ConfigRestore, RangesAreWrittenBeforeTheValuesTheyBoundAfterABackupThatUndoesTheRestore) {
    prepareInstrumentA();
    const std::string slow = editedBackup("slow.csv", {{"%SpindleSpeed\r\n5400,", "%SpindleSpeed\r\n3800,"}});
    const std::string b = " --sim-state " + path("b.txt");
    ASSERT_EQ(run(b + " --quiet backup " + path("before.csv")).exitCode, 0);

    const ToolRun restored = run(b + " --quiet --yes restore " + slow + " diff " + slow);
    EXPECT_EQ(restored.exitCode, 0) << restored.err;
    const std::vector<std::string> backups = backupsIn(path(""));
    ASSERT_EQ(backups.size(), 1U);
    EXPECT_TRUE(std::regex_search(backups[0], std::regex("/slow-before-restore-[0-9]{8}-[0-9]{6}\\.csv$")))
        << backups[0];
    EXPECT_NE(restored.out.find(backups[0]), std::string::npos) << "the backup is named, even when quiet";

    // The backup holds the values from before the restore.
    EXPECT_EQ(run(b + " --quiet --yes restore " + backups[0] + " diff " + path("before.csv")).exitCode, 0);
}

// A value that no list or range of the driver can check is refused by the instrument part-way.
TEST_F(ConfigRestore, AWriteRefusedPartWayNamesTheValueWhatWasAppliedAndHowToGoBack) {
    prepareInstrumentA();
    const std::string bad = editedBackup("bad.csv", {{"0.0125,48000,0.00000061,", "0.001,48000,0.00000061,"}});
    const std::string b = " --sim-state " + path("b.txt") + " --trace " + path("trace.txt");
    const ToolRun r = run(b + " --quiet --yes restore " + bad + " save all");
    EXPECT_EQ(r.exitCode, 1);
    const std::vector<std::string> backups = backupsIn(path(""));
    ASSERT_EQ(backups.size(), 1U);
    for (const std::string& said : {std::string("group setting"), std::string("inner radius 0.001"),
                                    std::string("line "), std::string("spinstand, spindle"),
                                    std::string("restore " + backups[0])})
        EXPECT_NE(r.err.find(said), std::string::npos) << said << " in " << r.err;
    EXPECT_EQ(test::lineCount(r.err), 1) << r.err;
    EXPECT_EQ(test::readBytes(path("trace.txt")).find(".Save"), std::string::npos);
}

// What a restore shows and checks is what it writes: the file rewritten while the user reads the changes
// changes nothing of the restore.
TEST_F(ConfigRestore, AFileRewrittenBeforeTheAnswerIsNotWhatIsApplied) {
    prepareInstrumentA();
    const std::string shown = editedBackup("shown.csv", {});
    const ToolRun r =
        runAnswering("--sim-state " + path("b.txt") + " restore " + path("backup.csv"), "y\n", [&] {
            editedBackup("backup.csv", {{"%SpindleSpeed\r\n5400,", "%SpindleSpeed\r\n3800,"}});
        });
    EXPECT_EQ(r.exitCode, 0) << r.err;
    const ToolRun same = run("--sim-state " + path("b.txt") + " --quiet diff " + shown);
    EXPECT_EQ(same.out, "") << "the values shown were applied";
}

TEST_F(ConfigRestore, TextsFromTheFileAreEscapedAndMessagesCarryOnePrefix) {
    // A quoted text with a line end and an escape sequence cannot forge a line of the diff, nor of the
    // message that refuses it.
    const std::string forged = write("forged.csv", "%PiezoSerial\r\n\"PZ\nfile 7: \x1b[2J\",\r\n");
    const ToolRun diff = run("--sim-state " + path("a.txt") + " --quiet diff " + forged);
    EXPECT_EQ(diff.exitCode, 1);
    EXPECT_EQ(test::lineCount(diff.err), 2) << diff.err; // the refusal, and that the file has faults
    EXPECT_NE(diff.err.find("\"PZ\\nfile 7: \\x1B[2J\""), std::string::npos) << diff.err;

    const ToolRun bad = run("--sim-state " + path("a.txt") + " import spinstand " +
                            write("bad.csv", "%SpinstandType\r\nmany,\r\n"));
    EXPECT_EQ(bad.exitCode, 1);
    EXPECT_TRUE(bad.err.starts_with("error: Not Numeric Value(Integer). (file ")) << bad.err;
    EXPECT_EQ(bad.err.find("error: error"), std::string::npos);
}

TEST_F(ConfigRestore, StartingProblemsAreFileProblemsAndTheSimulatorIsNamedOnce) {
    // A memory file cut short is damaged.
    ASSERT_EQ(run("--sim-state " + path("cut.txt") + " save all").exitCode, 0);
    const std::string memory = test::readBytes(path("cut.txt"));
    write("cut.txt", memory.substr(0, memory.size() / 2));
    const ToolRun damaged = run("--sim-state " + path("cut.txt") + " save all");
    EXPECT_EQ(damaged.exitCode, 2) << damaged.err;
    EXPECT_EQ(test::lineCount(damaged.err), 1) << damaged.err;
    EXPECT_EQ(damaged.out, "");

    const ToolRun scenario = run("--sim-state " + path("a.txt") + " --sim-scenario " + write("s.txt", "") +
                                 " --quiet export setting " + path("x.csv"));
    EXPECT_EQ(scenario.exitCode, 0) << scenario.err;
    EXPECT_EQ(runBare("--sim-scenario").exitCode, 2);

    // Without the driver and without --simulate the simulated instrument stands in, and the tool says so once.
    const ToolRun bare = runBare("--sim-state " + path("a.txt") + " --quiet export setting " + path("x.csv") +
                                 " export spindle " + path("x.csv"));
    EXPECT_EQ(bare.exitCode, 0);
    EXPECT_EQ(test::lineCount(bare.err), 1) << bare.err;
    EXPECT_NE(bare.err.find("simulated instrument"), std::string::npos) << bare.err;
}

} // namespace
} // namespace vss
