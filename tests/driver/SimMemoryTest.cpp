// The configuration groups: Save and Recall of every group, the memory file that keeps the non-volatile copy
// between runs, and what happens when that file is damaged.

#include "SimFixture.h"

#include "driver/sim/Settings.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

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

TEST_F(SimMemoryFile, SavedGroupsSurviveTheInstrumentAndUnsavedChangesDoNot) {
    {
        sim::SimInstrument first(sim::SimOptions{path, false, true});
        auto h = queryAll(*first.createObject());
        h.driver->Open("QTB::R2208C");
        EXPECT_FALSE(fs::exists(path)); // nothing is written before a Save
        h.service->SetSerialNumber("SN-7");
        h.service->SaveVersionData();
        h.service->SetHardwareRevision("unsaved");
    }
    sim::SimInstrument second(sim::SimOptions{path, false, true});
    auto h = queryAll(*second.createObject());
    h.driver->Open("QTB::R2208C");
    EXPECT_EQ(h.service->GetSerialNumber(), "SN-7");
    EXPECT_EQ(h.service->GetHardwareRevision(), "R2208C-B");
    EXPECT_FALSE(fs::exists(path + ".tmp"));
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
