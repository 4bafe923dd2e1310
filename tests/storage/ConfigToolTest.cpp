// vsstool-config run as a process on simulated instruments, each with its own memory file.

#include "tests/storage/ConfigToolRun.h"

#include <filesystem>
#include <sstream>
#include <sys/stat.h>

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
    EXPECT_EQ(warned.err, "warning: Invalid Spindle Driver.\n");

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

// A named pipe would block the tool until someone opened its other end, and a folder would read as an empty
// file: both are refused at once, naming the file.
TEST_F(ConfigTool, APipeOrAFolderGivenAsAFileIsRefusedAtOnce) {
    const std::string pipe = path("pipe");
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    std::filesystem::create_directory(path("folder"));
    for (const std::string& file : {pipe, path("folder")}) {
        for (const char* option : {"--sim-scenario ", "--trace "}) {
            const ToolRun r = run(option + file + " backup " + path("b.csv"));
            EXPECT_EQ(r.exitCode, 2) << option << file;
            EXPECT_NE(r.err.find(file + " is not a regular file"), std::string::npos) << r.err;
            EXPECT_FALSE(std::filesystem::exists(path("b.csv")));
        }
    }
}

// A reader's or the instrument's sentence quoted in a message of its own keeps one full stop.
TEST_F(ConfigTool, ASentenceWithinAMessageEndsInOneFullStop) {
    const ToolRun catalogue = run("--catalogue /dev/null models");
    EXPECT_EQ(catalogue.exitCode, 2);
    EXPECT_EQ(catalogue.err,
              "error: The spinstand catalogue /dev/null cannot be used: /dev/null is not a regular "
              "file. (file /dev/null)\n");

    const std::string memory = path("m.txt");
    ASSERT_EQ(run("--sim-state " + memory + " save all").exitCode, 0);
    std::string text = test::readBytes(memory);
    const auto at = text.find("SpeedMin = ");
    ASSERT_NE(at, std::string::npos);
    write("m.txt", text.insert(at + 11, "9999"));
    const ToolRun damaged = run("--sim-state " + memory + " models");
    EXPECT_EQ(damaged.exitCode, 2);
    EXPECT_NE(damaged.err.find(" rpm. "), std::string::npos) << damaged.err;
    EXPECT_EQ(damaged.err.find(".."), std::string::npos) << damaged.err;
}

TEST_F(ConfigTool, TextsFromACatalogueAScenarioOrAFileReachTheTerminalEscapedAndCut) {
    const std::string catalogue = write("c.ini", "2\nName,\"Good\",\"Evil\x1b[2J\r\nerror: forged\"\n");
    const ToolRun models = run("--catalogue " + catalogue + " models");
    EXPECT_EQ(models.out, "0: Good\n1: Evil\\x1B[2J\\r\\nerror: forged\n");

    const std::string scenario =
        write("s.txt", "after 0s: fail IDriverService.SaveStageProperty once \"Busy\x1b[31m\x9b"
                       "2J\xe2\x80\xa8now\"\n");
    const ToolRun save =
        run("--sim-scenario " + scenario + " --sim-state " + path("m.txt") + " --quiet save all");
    EXPECT_EQ(save.exitCode, 1);
    EXPECT_EQ(save.err,
              "error: the stage property could not be saved: Busy\\x1B[31m\\x9B2J\\u2028now; saved before "
              "it: version data, spinstand configuration, spindle property; not saved: customer "
              "configuration, piezo data, backlash compensation\n");

    const std::string serial(100000, '7');
    const std::string file = write("long.csv", "%PiezoSerial\r\n\"" + serial + "\",\r\n");
    const std::string cut = "\"" + serial.substr(0, kQuoteLimit) + "...\"";
    const ToolRun imported = run("import piezo " + file);
    EXPECT_NE(imported.err.find(cut), std::string::npos) << "the instrument's refusal quotes it";
    EXPECT_LT(imported.err.size(), 1000u);
    const ToolRun diff = run("--quiet diff " + file);
    EXPECT_TRUE(diff.out.starts_with("%PiezoSerial: instrument ")) << diff.out;
    EXPECT_TRUE(diff.out.ends_with(", file " + cut + "\n")) << diff.out;
}

TEST_F(ConfigTool, ByteOrderMarksAreSkippedInEveryTextFileRead) {
    const std::string bom(kByteOrderMark);
    const ToolRun models = run("--catalogue " + write("c.ini", bom + "1\nName,Only\n") + " models");
    EXPECT_EQ(models.out, "0: Only\n") << models.err;

    const std::string memory = path("m.txt");
    ASSERT_EQ(run("--sim-state " + memory + " save all").exitCode, 0);
    write("m.txt", bom + test::readBytes(memory));
    const ToolRun r =
        run("--sim-state " + memory + " --sim-scenario " + write("s.txt", bom + "after 0s: clear all\n") +
            " import setting " + write("bom.csv", bom + "%SpindleSpeed\r\n5400,\r\n"));
    EXPECT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.out, "imported setting from " + path("bom.csv") + "\n");
}

// A diff that met a fault never says that no value differs.
TEST_F(ConfigTool, ADiffWithAStoppedSectionDoesNotSayThatNoValueDiffers) {
    const std::string file = write("f.csv", "%SpindleSpeed\r\n7200,\r\n%DataArea\r\n0.012,many,\r\n");
    const ToolRun diff = run("--sim-state " + path("a.txt") + " diff " + file);
    EXPECT_EQ(diff.exitCode, 1);
    EXPECT_EQ(diff.out, "");
    EXPECT_NE(diff.err.find("warning: " + file + " has faults (see above)"), std::string::npos) << diff.err;
}

// A driver failure while the instrument's lists are read fails the action with the driver's text: nothing is
// taken for imported, equal, restored or backed up.
TEST_F(ConfigTool, ADriverFailureWhileTheListsAreReadFailsTheActionWithTheDriversText) {
    const std::string scenario =
        write("s.txt", "when IDriver.Open: fail IDriverService.GetSpindlePropertyList until "
                       "cleared \"The list is not available.\"\n");
    const std::string spindle = std::string(VSS_GOLDEN_DIR) + "/spindle.csv";
    for (const std::string& action : {"import spindle " + spindle + " save spindle", "diff " + spindle,
                                      "--yes restore " + spindle, "backup " + path("b.csv")}) {
        const ToolRun r = run("--sim-state " + path("a.txt") + " --sim-scenario " + scenario + " " + action);
        EXPECT_EQ(r.exitCode, 1) << action;
        EXPECT_TRUE(r.err.starts_with("error: The list is not available.")) << action << ": " << r.err;
        EXPECT_EQ(r.out, "") << action;
    }
    EXPECT_FALSE(std::filesystem::exists(path("b.csv")));
}

// An import that stops part-way ends the run like a declined restore: what it left is never saved.
TEST_F(ConfigTool, AFaultyImportEndsTheRunAndIsNeverSaidToBeImported) {
    const std::string bad = write("bad.csv", "%SpindleSpeedRange\r\n4000,fast,\r\n");
    const ToolRun r = run("--sim-state " + path("a.txt") + " --trace " + path("t.txt") + " import spindle " +
                          bad + " save spindle");
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_EQ(r.out, "");
    EXPECT_NE(r.err.find("may be applied in part; no later action runs"), std::string::npos) << r.err;
    EXPECT_EQ(test::readBytes(path("t.txt")).find(".Save"), std::string::npos);
}

// A backup onto a disk that fills up leaves no file, or the file as it was, and says that nothing was
// written.
TEST_F(ConfigTool, ABackupThatDoesNotFitLeavesNoFileBehind) {
    const std::string kept = write("kept.csv", "; notes\r\n");
    const ToolRun r =
        runOnFullDisk("--sim-state " + path("a.txt") + " backup " + path("b.csv") + " backup " + kept, 4);
    EXPECT_EQ(r.exitCode, 2);
    for (const std::string& file : {path("b.csv"), kept})
        EXPECT_NE(r.err.find("Nothing was written to " + file + "."), std::string::npos) << r.err;
    EXPECT_EQ(test::readBytes(kept), "; notes\r\n");
    for (const auto& entry : std::filesystem::directory_iterator(path("")))
        EXPECT_EQ(entry.path().string().find("b.csv"), std::string::npos) << entry.path();
    EXPECT_EQ(run("diff " + path("b.csv")).exitCode, 2) << "no file for a diff to take as equal";
}

// A catalogue model is checked whole before its first write, and its defaults are warned about: in the
// console as in the service settings window.
TEST_F(ConfigTool, AModelIsCheckedWholeBeforeItsFirstWriteAndItsDefaultsAreWarnedAbout) {
    const std::string catalogue = write("c.ini", "1\nName,\"Reversed\"\nSpeedMin,20000\nSpeedMax,15000\n");
    const ToolRun r =
        run("--catalogue " + catalogue + " --trace " + path("t.txt") + " apply-model 0 save all");
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_TRUE(
        r.err.starts_with("warning: The model 0 \"Reversed\" takes defaults: HardwareRevision is not given"))
        << r.err;
    EXPECT_NE(
        r.err.find("\nerror: The model 0 \"Reversed\" cannot be applied: the speed range 20000 to 15000 rpm "
                   "(SpeedMin to SpeedMax) is empty. Nothing was written.\n"),
        std::string::npos)
        << r.err;
    const std::string trace = test::readBytes(path("t.txt"));
    EXPECT_EQ(trace.find("IDriverService.Set"), std::string::npos) << "nothing written";
    EXPECT_EQ(trace.find("IDriverService.Save"), std::string::npos);
}

} // namespace
} // namespace vss
