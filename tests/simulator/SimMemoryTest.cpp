// The configuration groups: Save and Recall of every group, the memory file that keeps the non-volatile copy
// between runs, and what happens when that file is damaged.

#include "SimFixture.h"

#include "simulator/Settings.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <utility>

#ifndef _WIN32
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace vss::test {
namespace {

namespace fs = std::filesystem;

// One group: its Save and Recall, a change to its working copy and a read that shows whether it took.
struct GroupCase {
    const char* name;
    std::function<void(IDriverService&)> save, recall, change;
    std::function<std::string(IDriverService&)> read;
};

std::string str(double v) { return traceformat::number(v); }

const std::vector<GroupCase>& groups() {
    static const std::vector<GroupCase> cases{
        {"version data", &IDriverService::SaveVersionData, &IDriverService::RecallVersionData,
         [](IDriverService& s) { s.SetSerialNumber("SN-42"); }, [](IDriverService& s) { return s.GetSerialNumber(); }},
        {"spinstand configuration", &IDriverService::SaveSpinstandConfiguration,
         &IDriverService::RecallSpinstandConfiguration, [](IDriverService& s) { s.SetDiskSizeRange(0.02, 0.03); },
         [](IDriverService& s) { return str(s.GetDiskSizeRange().max); }},
        {"customer configuration", &IDriverService::SaveCustomerConfiguration,
         &IDriverService::RecallCustomerConfiguration, [](IDriverService& s) { s.SetStopperPosition(0, 10.5); },
         [](IDriverService& s) { return str(s.GetStopperPosition(0)); }},
        {"stage property", &IDriverService::SaveStageProperty, &IDriverService::RecallStageProperty,
         [](IDriverService& s) { s.SetStageProperty(9, std::int32_t{4321}); },
         [](IDriverService& s) { return traceformat::value(s.GetStageProperty(9)); }},
        {"spindle property", &IDriverService::SaveSpindleProperty, &IDriverService::RecallSpindleProperty,
         [](IDriverService& s) {
             s.SetSpindleProperty(3, 12500.5);
             s.SetSpeedRange(5000, 9000);
         },
         [](IDriverService& s) {
             return traceformat::value(s.GetSpindleProperty(3)) + " " + std::to_string(s.GetSpeedRange().max);
         }},
        {"piezo data", &IDriverService::SavePiezoData, &IDriverService::RecallPiezoData,
         [](IDriverService& s) {
             s.SetPiezoAdjust(5, 7);
             PiezoControlData d = s.GetPiezoControlData();
             d.ks[1] = 0.000125;
             s.SetPiezoControlData(d);
         },
         [](IDriverService& s) {
             return std::to_string(s.GetPiezoAdjust(5)) + " " + str(s.GetPiezoControlData().ks[1]);
         }},
        {"backlash compensation", &IDriverService::SaveBacklashCompensation,
         &IDriverService::RecallBacklashCompensation, [](IDriverService& s) { s.SetBacklashCompensation(4, 99); },
         [](IDriverService& s) { return std::to_string(s.GetBacklashCompensation(4)); }},
    };
    return cases;
}

class SimMemory : public SimTest {};

TEST_F(SimMemory, RecallUndoesUnsavedChangesAndSaveKeepsThemForEachGroup) {
    open();
    for (const GroupCase& g : groups()) {
        IDriverService& s = *h.service;
        const std::string factory = g.read(s);
        g.change(s);
        const std::string changed = g.read(s);
        ASSERT_NE(changed, factory) << g.name;
        g.recall(s);
        EXPECT_EQ(g.read(s), factory) << g.name;
        g.change(s);
        g.save(s);
        g.change(s);
        g.recall(s);
        EXPECT_EQ(g.read(s), changed) << g.name;
    }
}

TEST_F(SimMemory, SavingTheBacklashGroupStampsItsDate) {
    open();
    const std::string before = h.service->GetBacklashDate();
    h.service->SaveBacklashCompensation();
    EXPECT_NE(h.service->GetBacklashDate(), before);
    EXPECT_EQ(h.service->GetBacklashDate().size(), std::string("2024-01-15 09:30:00").size());
}

TEST(SettingsText, WritesAndReadsBackEveryValueExactly) {
    sim::Settings s = sim::Settings::factory();
    s.version.serialNumber = "quote \" and \\ back";
    s.customer.geometry.stageOffset = 0.1 + 0.2; // needs all 17 digits
    s.piezo.calCoef.coef[2] = -1.2345678901234567e-11;
    s.spindle.values[3] = Variant(1234.5);
    s.backlash.values[0] = 7;
    EXPECT_EQ(sim::readSettings(sim::writeSettings(s)), s);
    sim::WorkingValues working{s, {}};
    working.measurement.spindleSpeed = 5400;
    working.measurement.positions[1].position.skew = 12.5;
    working.measurement.diskSizeRestriction = false;
    EXPECT_EQ(sim::readWorkingValues(sim::writeWorkingValues(working)), working);
}

TEST(SettingsText, AFileCutShortIsDamagedEvenWhereItEndsOnAWholeLine) {
    const std::string good = sim::writeSettings(sim::Settings::factory());
    const std::string cut = good.substr(0, good.find("[PiezoData]"));
    try {
        sim::readSettings(cut);
        FAIL() << "a file without its last groups was taken";
    } catch (const sim::SettingsError& e) {
        EXPECT_NE(e.message.find("cut short"), std::string::npos) << e.message;
    }
    EXPECT_THROW(sim::readSettings(good + "[End]\n"), sim::SettingsError);
}

TEST(SettingsText, ReportsTheLineOfWhatIsWrong) {
    const std::string good = sim::writeSettings(sim::Settings::factory());
    const auto damage = [&](const std::string& from, const std::string& to) {
        std::string text = good;
        text.replace(text.find(from), from.size(), to);
        try {
            sim::readSettings(text);
        } catch (const sim::SettingsError& e) {
            return std::to_string(e.line) + ": " + e.message;
        }
        return std::string("no error");
    };
    const auto lineOf = [&](const std::string& key) {
        return std::to_string(1 + std::count(good.begin(), good.begin() + static_cast<long>(good.find(key)), '\n'));
    };
    EXPECT_EQ(damage("SpeedMin = 4000", "SpeedMin = fast"),
              lineOf("SpeedMin") + ": SpeedMin: \"fast\" is not a number");
    EXPECT_EQ(damage("tMove = 5000", "tMove = 90000").substr(0, lineOf("tMove").size() + 2), lineOf("tMove") + ": ");
    EXPECT_EQ(damage("HeadFace = 1", "Headface = 1"),
              lineOf("HeadFace") + ": unknown key Headface in section [SpinstandConfiguration]");
    EXPECT_EQ(damage("[PiezoData]", "[Piezo]"), lineOf("[PiezoData]") + ": unknown section [Piezo]");
    // A pair that is wrong only together is reported at its section's header.
    EXPECT_EQ(damage("SpeedMax = 15000", "SpeedMax = 3000").substr(0, lineOf("[SpindleProperty]").size()),
              lineOf("[SpindleProperty]"));
}

// Measurement settings that the instrument's operations refuse (a NaN pitch once made the head position an
// undefined conversion) make a working-values file damaged.
TEST(SettingsText, WorkingValuesTheInstrumentWouldRefuseAreDamaged) {
    const std::string good = sim::writeWorkingValues({sim::Settings::factory(), {}});
    const std::vector<std::pair<std::string, std::string>> damages{
        {"Pitch = 5.6e-07", "Pitch = nan"},
        {"Pitch = 5.6e-07", "Pitch = 0"},
        {"InnerRadius = 0.012", "InnerRadius = inf"},
        {"LoadSkew = 9.91e+37", "LoadSkew = -nan"},
        {"UnloadRadius = 0.045", "UnloadRadius = nan"},
        {"HomeState = 1", "HomeState = 3"},
        {"LoadMethod = 0", "LoadMethod = 7"},
        {"UnloadRpm = 7200", "UnloadRpm = -7"},
    };
    for (const auto& [from, to] : damages) {
        std::string text = good;
        text.replace(text.find(from), from.size(), to);
        EXPECT_THROW(sim::readWorkingValues(text), sim::SettingsError) << to;
    }
}

// An instrument whose memory lives in a file of a fresh temporary folder.
class SimMemoryFile : public ::testing::Test {
protected:
    SimMemoryFile() {
        dir = fs::temp_directory_path() /
              ("vss-sim-" + std::string(::testing::UnitTest::GetInstance()->current_test_info()->name()));
        fs::remove_all(dir);
        path = (dir / "memory.txt").string();
    }
    ~SimMemoryFile() override { fs::remove_all(dir); }

    std::string fileText() const {
        std::ifstream in(path);
        std::stringstream s;
        s << in.rdbuf();
        return s.str();
    }

    fs::path dir;
    std::string path;
};

// An instrument on the memory file, opened; `powerCycle` as the option of that name.
struct Program {
    Program(const std::string& path, bool powerCycle = false)
        : sim([&] {
              sim::SimOptions options{path, false, true};
              options.powerCycle = powerCycle;
              return options;
          }()),
          h(queryAll(*sim.createObject())) {
        h.driver->Open("QTB::R2208C");
    }
    sim::SimInstrument sim;
    DriverHandles h;
};

TEST_F(SimMemoryFile, WorkingValuesOfEveryGroupPassToTheNextProgramUntilAPowerCycle) {
    {
        Program first(path);
        EXPECT_FALSE(fs::exists(path)); // nothing is written to non-volatile memory before a Save
        first.h.service->SetSerialNumber("SN-7");
        first.h.service->SaveVersionData();
        first.h.service->SetHardwareRevision("unsaved");
        first.h.driver->SetSpindleSpeed(5400); // the Setting group, which no Save keeps
        first.h.service->SetStopperPosition(0, 10.5);
    }
    {
        Program next(path);
        EXPECT_EQ(next.h.service->GetHardwareRevision(), "unsaved");
        EXPECT_EQ(next.h.driver->GetSpindleSpeed(), 5400);
        EXPECT_EQ(next.h.service->GetStopperPosition(0), 10.5);
        next.h.service->RecallVersionData(); // the non-volatile copy is still there
        EXPECT_EQ(next.h.service->GetHardwareRevision(), "R2208C-B");
        next.h.service->SetHardwareRevision("unsaved again");
    }
    Program afterPowerCycle(path, true);
    EXPECT_EQ(afterPowerCycle.h.service->GetSerialNumber(), "SN-7");
    EXPECT_EQ(afterPowerCycle.h.service->GetHardwareRevision(), "R2208C-B");
    EXPECT_EQ(afterPowerCycle.h.driver->GetSpindleSpeed(), 7200);
    EXPECT_FALSE(fs::exists(path + ".tmp"));
}

#ifndef _WIN32
// Another program on the same instrument: `program` runs in a child process, which keeps what it left open until
// the object goes and then ends without closing anything, as an interrupted program does. With `fileLimit` the
// child writes no file past that many bytes, as on a full disk.
class OtherProgram {
public:
    explicit OtherProgram(const std::function<std::string()>& program, rlim_t fileLimit = 0) {
        int said[2] = {-1, -1};
        int go[2] = {-1, -1};
        if (::pipe(said) != 0 || ::pipe(go) != 0)
            throw std::runtime_error("no pipe for the other program");
        pid_ = ::fork();
        if (pid_ == 0) {
            ::close(said[0]);
            ::close(go[1]);
            if (fileLimit > 0) {
                std::signal(SIGXFSZ, SIG_IGN);
                const rlimit limit{fileLimit, fileLimit};
                ::setrlimit(RLIMIT_FSIZE, &limit);
            }
            std::string text;
            try {
                text = program();
            } catch (const std::exception& e) {
                text = std::string("threw: ") + e.what();
            }
            [[maybe_unused]] const ssize_t written = ::write(said[1], text.data(), text.size());
            ::close(said[1]);
            char c = 0;
            while (::read(go[0], &c, 1) > 0) {
            }
            ::_exit(0);
        }
        ::close(said[1]);
        ::close(go[0]);
        go_ = go[1];
        char buffer[512];
        for (ssize_t n = 0; (n = ::read(said[0], buffer, sizeof buffer)) > 0;)
            said_.append(buffer, static_cast<std::size_t>(n));
        ::close(said[0]);
    }
    ~OtherProgram() { end(); }
    void end() {
        if (go_ < 0)
            return;
        ::close(go_);
        go_ = -1;
        ::waitpid(pid_, nullptr, 0);
    }
    const std::string& said() const { return said_; }
    pid_t pid() const { return pid_; }

private:
    pid_t pid_ = -1;
    int go_ = -1;
    std::string said_;
};

// One program at a time: a second one is refused with the name of the first, and takes the instrument as the
// first left it, although that one ended without closing its session.
TEST_F(SimMemoryFile, ASecondProgramIsRefusedUntilTheFirstEndsAndThenFindsItsWork) {
    OtherProgram first([&] {
        auto* holds = new Program(path); // never closed
        holds->h.service->SetSerialNumber("SN-first");
        holds->h.service->SaveVersionData();
        holds->h.service->SetBacklashCompensation(4, 99);
        return std::string();
    });
    ASSERT_EQ(first.said(), "");
    sim::SimInstrument second(sim::SimOptions{path, false, true});
    auto h = queryAll(*second.createObject());
    const std::string refused = failure([&] { h.driver->Open("QTB::R2208C"); });
    EXPECT_NE(refused.find("in use by simulator_tests (process " + std::to_string(first.pid()) + ")"),
              std::string::npos)
        << refused;
    EXPECT_THROW(second.resetNonVolatileMemory(), DriverError) << "the front panel's reset is refused too";

    first.end();
    h.driver->Open("QTB::R2208C");
    EXPECT_EQ(h.service->GetBacklashCompensation(4), 99);
    h.service->SetSerialNumber("SN-second");
    h.service->RecallVersionData();
    EXPECT_EQ(h.service->GetSerialNumber(), "SN-first");
}

// A program that keeps its instrument between sessions (the window program) takes, at each Open, the working
// values and the memory as the program before it left them, and writes over neither.
TEST_F(SimMemoryFile, EachSessionTakesTheFilesAsTheyStand) {
    Program window(path);
    window.h.service->SetStopperPosition(0, 10.5);
    window.h.driver->Close();
    OtherProgram([&] {
        Program other(path);
        other.h.service->SetSerialNumber("SN-other");
        other.h.service->SaveVersionData();
        other.h.service->SetHardwareRevision("unsaved");
        return std::string();
    });
    window.h.driver->Open("QTB::R2208C");
    EXPECT_EQ(window.h.service->GetHardwareRevision(), "unsaved");
    EXPECT_EQ(window.h.service->GetStopperPosition(0), 10.5);
    window.h.service->RecallVersionData();
    EXPECT_EQ(window.h.service->GetSerialNumber(), "SN-other");
}

// On a full disk a change fails its call with the file and the reason, and is undone; a save fails the same
// way and leaves the memory file as it was; no temporary file is left behind.
TEST_F(SimMemoryFile, AWriteThatFailsFailsItsCallAndLeavesNoTemporaryFile) {
    { Program(path).h.service->SaveVersionData(); }
    const std::string saved = fileText();
    const OtherProgram full(
        [&] {
            Program p(path);
            return failure([&] { p.h.service->SetBacklashCompensation(4, 99); }) + "\n" +
                   std::to_string(p.h.service->GetBacklashCompensation(4)) + "\n" +
                   failure([&] { p.h.service->SaveVersionData(); });
        },
        512);
    const std::string working = path + ".working";
    const std::string factory = std::to_string(sim::Settings::factory().backlash.values[4]);
    EXPECT_EQ(full.said(),
              "The simulator cannot write its working values file " + working +
                  ": File too large. The instrument keeps the values it had before this call.\n" + factory +
                  "\nThe simulator cannot write its memory file " + path + ": File too large.");
    EXPECT_EQ(fileText(), saved);
    for (const auto& entry : fs::directory_iterator(dir))
        EXPECT_NE(entry.path().extension(), ".tmp") << entry.path();
    EXPECT_EQ(std::to_string(Program(path).h.service->GetBacklashCompensation(4)), factory);
}
#endif

// A read-only memory file is never replaced; a link is written through, and every path to one file shares the
// instrument's lock.
TEST_F(SimMemoryFile, AReadOnlyFileIsRefusedAndALinkIsWrittenThrough) {
    { Program(path).h.service->SaveVersionData(); }
    fs::permissions(path, fs::perms::owner_read);
    {
        Program p(path);
        p.h.service->SetSerialNumber("SN-9");
        EXPECT_NE(failure([&] { p.h.service->SaveVersionData(); }).find(path + " is read-only"),
                  std::string::npos);
    }
    EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read);
    EXPECT_EQ(fileText().find("SN-9"), std::string::npos);

    fs::permissions(path, fs::perms::owner_read | fs::perms::owner_write);
    const std::string link = (dir / "link.txt").string();
    fs::create_symlink(path, link);
    Program throughLink(link);
    throughLink.h.service->SaveVersionData();
    EXPECT_TRUE(fs::is_symlink(link));
    EXPECT_NE(fileText().find("SN-9"), std::string::npos);
    sim::SimInstrument direct(sim::SimOptions{path, false, true});
    EXPECT_NE(
        failure([&] { queryAll(*direct.createObject()).driver->Open("QTB::R2208C"); }).find("in use by"),
        std::string::npos);
}

// A file that is no memory file, or working values that cannot be read, are refused with a plain message
// rather than taken as factory values or read into memory whole.
TEST_F(SimMemoryFile, FilesThatCannotBeTakenAreRefusedInPlainWords) {
    const struct {
        std::string file;
        std::uintmax_t size; // of zero bytes, beyond the text
        std::string text, said;
    } cases[] = {
        {"memory.txt", 0, "", "memory.txt is empty"},
        {"memory.txt", 64u << 20, "", "memory.txt is 67108864 bytes long"},
        {"memory.txt.working", 0, "garbage\n", "memory.txt.working is damaged at line 1"},
    };
    for (const auto& c : cases) {
        fs::remove_all(dir);
        fs::create_directories(dir);
        std::ofstream(dir / c.file, std::ios::binary) << c.text;
        if (c.size > 0)
            fs::resize_file(dir / c.file, c.size);
        sim::SimInstrument instrument(sim::SimOptions{path, false, true});
        const std::string refused =
            failure([&] { queryAll(*instrument.createObject()).driver->Open("QTB::R2208C"); });
        EXPECT_NE(refused.find(c.said), std::string::npos) << refused;
    }
}

TEST_F(SimMemoryFile, AFileCutShortIsReportedAndNeverSavedOver) {
    fs::create_directories(dir);
    sim::Settings saved = sim::Settings::factory();
    saved.piezo.serial = "PZ-9";
    const std::string whole = sim::writeSettings(saved);
    const std::string cut = whole.substr(0, whole.find("Serial = "));
    std::ofstream(path, std::ios::binary) << cut;

    sim::SimInstrument instrument(sim::SimOptions{path, false, true});
    auto h = queryAll(*instrument.createObject());
    EXPECT_NE(failure([&] { h.driver->Open("QTB::R2208C"); }).find("cut short"), std::string::npos);
    EXPECT_NE(failure([&] { h.service->SaveVersionData(); }), "");
    EXPECT_EQ(fileText(), cut);
}

TEST_F(SimMemoryFile, ADirectoryGivenAsTheMemoryFileIsRefusedAtTheStart) {
    fs::create_directories(path);
    sim::SimInstrument instrument(sim::SimOptions{path, false, true});
    auto h = queryAll(*instrument.createObject());
    EXPECT_NE(failure([&] { h.driver->Open("QTB::R2208C"); }).find(path + " is not a regular file"),
              std::string::npos);
}

TEST_F(SimMemoryFile, ADamagedFileFailsOpenWithItsLineAndIsNeverSavedOver) {
    fs::create_directories(dir);
    std::string text = sim::writeSettings(sim::Settings::factory());
    text.replace(text.find("Stage2Ref = 70"), 14, "Stage2Ref = 7O");
    std::ofstream(path) << text;
    const std::string damagedLine =
        std::to_string(1 + std::count(text.begin(), text.begin() + static_cast<long>(text.find("Stage2Ref")), '\n'));

    sim::SimInstrument instrument(sim::SimOptions{path, false, true});
    auto h = queryAll(*instrument.createObject());
    const std::string refused = failure([&] { h.driver->Open("QTB::R2208C"); });
    EXPECT_EQ(refused.rfind("The simulator's memory file " + path + " is damaged at line " + damagedLine + ": ", 0),
              0u)
        << refused;
    EXPECT_EQ(fileText(), text);

    // Repaired in place: the next Open reads it and saving works again.
    text.replace(text.find("Stage2Ref = 7O"), 14, "Stage2Ref = 71");
    std::ofstream(path) << text;
    h.driver->Open("QTB::R2208C");
    EXPECT_EQ(h.service->GetStageGeometry(geometry::Stage2Ref), 71.0);

    // Damaged again behind the instrument's back: Save refuses and leaves the file alone.
    std::ofstream(path, std::ios::app) << "garbage\n";
    const std::string before = fileText();
    EXPECT_NE(failure([&] { h.service->SaveVersionData(); }).find("is damaged at line"), std::string::npos);
    EXPECT_EQ(fileText(), before);
}

} // namespace
} // namespace vss::test
