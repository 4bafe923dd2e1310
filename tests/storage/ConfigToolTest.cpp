// vsstool-config run as a process on simulated instruments, each with its own memory file.

#include "tests/storage/ConfigToolRun.h"

#include <sstream>

namespace vss {
namespace {

using test::lineCount;
using test::ToolRun;
using ConfigTool = test::ConfigToolFixture;

TEST_F(ConfigTool, BackupOnOneInstrumentAndRestoreOntoAnotherGivesEqualValues) {
    prepareInstrumentA();
    const std::string b = " --sim-state " + path("b.txt");

    const ToolRun declined = run(b + " restore " + path("backup.csv"), "n\n");
    EXPECT_EQ(declined.exitCode, 1) << "a declined restore says so in the exit status";
    EXPECT_NE(declined.out.find("%SpindleSpeed: instrument 7200, file 5400\n"), std::string::npos);
    EXPECT_NE(declined.out.find("nothing was changed"), std::string::npos);
    EXPECT_GT(lineCount(run(b + " --quiet diff " + path("backup.csv")).out), 50);

    const ToolRun restored = run(b + " --quiet restore " + path("backup.csv") + " diff " + path("backup.csv"), "y\n");
    EXPECT_EQ(restored.exitCode, 0) << restored.err;
    const auto prompt = restored.out.find("[y/N] ");
    ASSERT_NE(prompt, std::string::npos);
    EXPECT_EQ(restored.out.find("instrument", prompt), std::string::npos) << "the diff after the restore is empty";

    // Without save, an instrument switched off and on starts from its non-volatile copy again: only the groups
    // that have a save operation survive a save.
    EXPECT_GT(lineCount(run(b + " --power-cycle --quiet diff " + path("backup.csv")).out), 50);
    ASSERT_EQ(run(b + " --quiet --yes restore " + path("backup.csv") + " save all").exitCode, 0);
    const ToolRun after = run(b + " --power-cycle --quiet diff " + path("backup.csv"));
    EXPECT_EQ(after.exitCode, 1) << "values differ";
    std::istringstream lines(after.out);
    for (std::string line; std::getline(lines, line);)
        EXPECT_TRUE(line.starts_with("%SpindleSpeed:") || line.starts_with("%HomeState") ||
                    line.starts_with("%LoadMethod") || line.starts_with("%LoadPosition") ||
                    line.starts_with("%DataArea") || line.starts_with("%DiskSizeRestriction"))
            << line;
}

// A driver that numbers its lists from 1 reads and writes the same files: the points and entries are matched
// by their place in the list.
TEST_F(ConfigTool, ABackupMovesBetweenInstrumentsNumberingTheirListsFrom0AndFrom1) {
    prepareInstrumentA();
    const std::string b = " --sim-state " + path("b.txt");
    const std::string oneBased = b + " --sim-one-based-lists";
    const ToolRun restored = run(oneBased + " --quiet --yes restore " + path("backup.csv"));
    ASSERT_EQ(restored.exitCode, 0) << restored.err;
    const ToolRun same = run(oneBased + " --quiet diff " + path("backup.csv"));
    EXPECT_EQ(same.exitCode, 0) << same.out << same.err;
    EXPECT_EQ(same.out, "");
    ASSERT_EQ(run(oneBased + " --quiet backup " + path("again.csv")).exitCode, 0);
    EXPECT_EQ(run(b + " --quiet diff " + path("again.csv")).out, "") << "the same points, numbered from 0";
}

TEST_F(ConfigTool, DiffShowsExactlyTheDifferingValuesAndChangesNothing) {
    prepareInstrumentA();
    std::string edited = test::readBytes(path("backup.csv"));
    const auto replace = [&](const std::string& from, const std::string& to) {
        const auto at = edited.find(from);
        ASSERT_NE(at, std::string::npos) << from;
        edited.replace(at, from.size(), to);
    };
    replace("%SpindleSpeedRange\r\n3600,12000,", "%SpindleSpeedRange\r\n3600,12500,");
    replace("\"tRdy\",\"(Long)\",5007,", "\"tRdy\",\"(Long)\",5100,");
    replace("%BacklashCompensationData\r\n90,91,", "%BacklashCompensationData\r\n90,95,");
    write("edited.csv", edited);

    const std::string differences = "%SpindleSpeedRange Max: instrument 12000, file 12500\n"
                                    "%SpindleProperty tRdy: instrument (Long) 5007, file (Long) 5100\n"
                                    "%BacklashCompensationData 1: instrument 91, file 95\n";
    // In one session with the same changes as A, twice: the first diff changed nothing.
    const ToolRun diff = run("--quiet --sim-state " + path("c.txt") + importEveryGroup() + " diff " +
                             path("edited.csv") + " diff " + path("edited.csv"));
    EXPECT_EQ(diff.exitCode, 1) << diff.err;
    EXPECT_EQ(diff.err, "");
    EXPECT_EQ(diff.out, differences + differences);

    const ToolRun same = run("--sim-state " + path("a.txt") + " diff " + path("backup.csv"));
    EXPECT_EQ(same.exitCode, 0) << same.err;
    EXPECT_EQ(same.out, "no value differs\n");
}

TEST_F(ConfigTool, MessagesNameTheFileAndFieldAndSetTheExitCode) {
    const std::string bad = write("bad.csv", "%SpindleSpeedRange\r\n4000,fast,\r\n");
    const ToolRun messages = run("--quiet import spindle " + bad);
    EXPECT_EQ(messages.exitCode, 1);
    // The message, then the instrument's refusal of the range 4000..0 that was still sent.
    EXPECT_TRUE(messages.err.starts_with("error: Not Numeric Value(Long). (file " + bad + ", line 2, field 2)\n"))
        << messages.err;

    const ToolRun overflow = run("--quiet import spinstand " + write("big.csv", "%SpinstandType\r\n99999\r\n"));
    EXPECT_EQ(overflow.exitCode, 1);
    EXPECT_NE(overflow.err.find("line 2, field 1"), std::string::npos) << overflow.err;

    const ToolRun missing = run("import setting " + path("missing.csv") + " export setting " + path("x.csv"));
    EXPECT_EQ(missing.exitCode, 2);
    EXPECT_NE(missing.err.find("(file " + path("missing.csv") + ")"), std::string::npos) << missing.err;
    EXPECT_EQ(missing.out, "exported setting to " + path("x.csv") + "\n") << "the later action still ran";

    // A disk that fills up while the report is written (the device that is always full stands in for it).
    if (std::filesystem::exists("/dev/full")) {
        const ToolRun full = run("export setting /dev/full");
        EXPECT_EQ(full.exitCode, 2);
        EXPECT_EQ(full.err, "error: No space left on device (file /dev/full)\n");
        EXPECT_EQ(full.out, "");
    }

    // A file of no setting sections at all (binary junk, another program's file) changes nothing, and says so.
    std::string junk;
    for (int i = 0; i < 4096; ++i)
        junk += static_cast<char>((i * 7919) % 256);
    const std::string other = write("junk.bin", junk);
    const ToolRun none = run("import spindle " + other + " diff " + other);
    EXPECT_EQ(none.exitCode, 0) << none.err;
    EXPECT_EQ(none.out, "");
    EXPECT_EQ(none.err, "warning: " + other + " holds no section of the group spindle: nothing was imported\n" +
                            "warning: " + other + " holds no setting section: nothing to compare\n");
    const ToolRun noRestore = run("restore " + other + " save all");
    EXPECT_EQ(noRestore.exitCode, 1) << "a restore that restores nothing has failed";
    EXPECT_EQ(noRestore.out, "");
    EXPECT_EQ(noRestore.err, "error: " + other + " holds no setting section: nothing was restored\n");

    for (const char* usage : {"", "import piezo-info x.csv", "export nogroup x.csv", "save setting", "export",
                              "--frobnicate diff x.csv"})
        EXPECT_EQ(run(usage).exitCode, 2) << usage;
    EXPECT_EQ(run("--help").exitCode, 0);
}

// The shipped catalogue lies beside the tool; --catalogue reads another one.
TEST_F(ConfigTool, ModelsListsTheCatalogueAndApplyModelWritesAModelThatOnlySaveAllKeeps) {
    const ToolRun models = run("models");
    EXPECT_EQ(models.exitCode, 0) << models.err;
    EXPECT_EQ(models.out, "0: VSS-2208 Standard\n1: VSS-2208 High Speed\n2: VSS-2208 Compact\n");

    // The report header names the instrument's hardware revision, which the model sets.
    const std::string a = " --quiet --sim-state " + path("a.txt");
    const auto hardwareAfter = [&](const std::string& actions) {
        const ToolRun r = run(a + " " + actions + " export setting " + write("x.csv", ""));
        const std::string report = test::readBytes(path("x.csv"));
        return std::to_string(r.exitCode) + " " + report.substr(report.find("; Hardware : ") + 13, 8);
    };
    EXPECT_EQ(hardwareAfter("apply-model \"VSS-2208 Standard\""), "0 R2208C-B") << "no warning";
    EXPECT_EQ(hardwareAfter("apply-model 2"), "1 R2208K-A")
        << "a model for another spindle driver is warned about";
    EXPECT_EQ(hardwareAfter(""), "0 R2208K-A") << "the working values stay while the instrument is on";
    EXPECT_EQ(hardwareAfter("--power-cycle"), "0 R2208C-B") << "not saved";
    EXPECT_EQ(hardwareAfter("apply-model 2 save all"), "1 R2208K-A");
    EXPECT_EQ(hardwareAfter("--power-cycle"), "0 R2208K-A");
    const ToolRun warned = run(a + " apply-model 1");
    EXPECT_EQ(warned.err, "error: Warning : Invalid Spindle Driver.\n");

    const std::string other = write("other.ini", "; a test catalogue\n1\nName,\"Only one\"\n");
    EXPECT_EQ(run("--catalogue " + other + " models").out, "0: Only one\n");
}

TEST_F(ConfigTool, ACatalogueThatCannotBeUsedIsNamedAndNothingIsWritten) {
    const ToolRun gone = run("--catalogue " + path("none.ini") + " models");
    EXPECT_EQ(gone.exitCode, 2);
    EXPECT_EQ(gone.err, "error: The spinstand catalogue " + path("none.ini") +
                            " cannot be used: No such file or directory. (file " + path("none.ini") + ")\n");

    const std::string bad = write("bad.ini", "30000\nName,a\n");
    const ToolRun r = run("--catalogue " + bad + " --trace " + path("trace.txt") + " apply-model 0 save all");
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("the number of models is 30000"), std::string::npos) << r.err;
    EXPECT_NE(r.err.find("holds no model \"0\""), std::string::npos) << r.err;
    const std::string trace = test::readBytes(path("trace.txt"));
    EXPECT_EQ(trace.find("IDriverService.S"), std::string::npos) << "nothing set, nothing saved";

    for (const char* usage : {"apply-model", "models --catalogue"})
        EXPECT_EQ(run(usage).exitCode, 2) << usage;
}

} // namespace
} // namespace vss
