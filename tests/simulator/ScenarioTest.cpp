// Scenario files: what the parser refuses (naming file and line), when the steps of a running scenario fall
// due, and their effect on the instrument through the driver. The factory refuses a scenario for a real
// driver.

#include "simulator/Scenario.h"

#include "driver/DriverError.h"
#include "simulator/Factory.h"
#include "simulator/SimulatedInstrument.h"
#include "tests/simulator/SimFixture.h"

#include <chrono>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace vss::test {
namespace {

using namespace std::chrono_literals;
using sim::ScenarioStep;

std::string refusal(const std::string& text) {
    try {
        sim::parseScenario(text, "drill.txt");
    } catch (const DriverError& e) {
        return e.description();
    }
    return "(accepted)";
}

TEST(Scenario, AWrongLineIsRefusedWithTheFileTheLineAndWhatIsWrong) {
    struct Case {
        std::string line;
        std::string says;
    };
    const std::vector<Case> cases{
        {"after 2s: fail IDriver.Lode once \"x\"", "unknown operation \"IDriver.Lode\""},
        {"when IDriver.Lode: set interlock on", "unknown operation \"IDriver.Lode\""},
        {"after 2s: set door on", "unknown input \"door\": the inputs are interlock, emergency"},
        {"after 2s: set interlock maybe", "\"on\" or \"off\""},
        {"after -2s: set interlock on", "bad time \"-2s\""},
        {"after 2: set interlock on", "bad time \"2\""},
        {"after 1.s: set interlock on", "bad time \"1.s\""},
        {"after 90000s: set interlock on", "24 hours at most"},
        {"after 99999999999s: set interlock on", "24 hours at most"},
        {"after 2s: fail IDriver.Load once", "the line ends where the failure's text"},
        {"after 2s: fail IDriver.Load once \"\"", "the failure's text is empty"},
        {"after 2s: fail IDriver.Load once \"   \"", "the failure's text is empty"},
        {"after 2s: fail IDriver.Load once \"" + std::string(501, 'x') + "\"",
         "501 characters long: 500 at most"},
        {"after 2s: fail IDriver.Load once unquoted", "double quotes"},
        {"after 2s: fail IDriver.Load once \"no end", "has no closing quote"},
        {"after 2s: fail IDriver.Load -1 times \"x\"", "bad count -1"},
        {"after 2s: fail IDriver.Load 0 times \"x\"", "bad count 0"},
        {"after 2s: fail IDriver.Load 1001 times \"x\"", "bad count 1001"},
        {"after 2s: fail IDriver.Load two times \"x\"", "bad count \"two\""},
        {"after 2s: fail IDriver.Load until \"x\"", "until cleared"},
        {"after 2s set interlock on", "a colon should follow the trigger"},
        {"at 2s: set interlock on", "a step starts with"},
        {"after 2s: open interlock", "unknown action \"open\""},
        {"after 2s: clear all now", "unexpected \"now\""},
        {"after 2s:", "the line ends where an action"},
        // A piece of the line is quoted escaped and cut short.
        {"after 2s: set \x1b[2J\x9b on", "unknown input \"\\x1B[2J\\x9B\": the inputs"},
        {"after 2s: set " + std::string(5000, 'd') + " on",
         "unknown input \"" + std::string(80, 'd') + "...\": the"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.line);
        // The wrong line is the third, after a comment and a good step: the file is refused as a whole.
        const std::string message = refusal("# drill\nafter 1s: set interlock on\n" + c.line + "\n");
        EXPECT_EQ(message.rfind("drill.txt, line 3: ", 0), 0u) << message;
        EXPECT_NE(message.find(c.says), std::string::npos) << message;
    }
}

TEST(Scenario, EveryTriggerAndActionIsReadAsWritten) {
    const sim::Scenario s = sim::parseScenario(
        "\xEF\xBB\xBF# comment after a byte-order mark\r\n"
        "\n"
        "  after 2.5s: set outer-cover on\r\n"
        "when IDriver.Load: fail IDriver.Load 2 times \"Load \\\"timed\\\" out\"\n"
        "when IDriverSpindle.SetMotor after 500ms: fail IDriver.Unload until cleared \"x\"\n"
        "after 0s: fail CoDriver.QueryInterface(IDriverIndex) once \"no index\"\n"
        "after 3s: clear IDriver.Load\n"
        "after 4s: clear all\n",
        "good.txt");
    ASSERT_EQ(s.steps.size(), 6u);
    EXPECT_EQ(s.name, "good.txt");
    EXPECT_EQ(s.steps[0].line, 3);
    EXPECT_EQ(s.steps[0].after, 2500ms);
    EXPECT_EQ(s.steps[0].input, sim::Input::OuterCover);
    EXPECT_TRUE(s.steps[0].value);
    EXPECT_EQ(s.steps[1].whenOperation, "IDriver.Load");
    EXPECT_EQ(s.steps[1].after, 0ms);
    EXPECT_EQ(s.steps[1].times, 2);
    EXPECT_EQ(s.steps[1].text, "Load \"timed\" out");
    EXPECT_EQ(s.steps[2].whenOperation, "IDriverSpindle.SetMotor");
    EXPECT_EQ(s.steps[2].after, 500ms);
    EXPECT_EQ(s.steps[2].times, -1);
    EXPECT_EQ(s.steps[3].operation, "CoDriver.QueryInterface(IDriverIndex)");
    EXPECT_EQ(s.steps[4].action, ScenarioStep::Action::Clear);
    EXPECT_EQ(s.steps[5].action, ScenarioStep::Action::ClearAll);
}

TEST(Scenario, TimedStepsFallDueOnceFromTheStartAndOperationStepsFromTheFirstCall) {
    const auto t0 = sim::ScenarioClock::time_point{} + 100s;
    sim::ScenarioRun run(sim::parseScenario("after 2s: set interlock on\n"
                                            "when IDriver.Load: set vacuum on\n"
                                            "when IDriver.Load after 1s: set emergency on\n"
                                            "after 0ms: clear all\n",
                                            "t"),
                         t0);
    const auto lines = [](const std::vector<ScenarioStep>& steps) {
        std::vector<int> l;
        for (const ScenarioStep& s : steps)
            l.push_back(s.line);
        return l;
    };
    EXPECT_EQ(lines(run.due(t0)), std::vector<int>{4});
    EXPECT_EQ(lines(run.due(t0 + 1s, "IDriver.Unload")), std::vector<int>{})
        << "another operation arms nothing";
    EXPECT_EQ(lines(run.due(t0 + 1500ms, "IDriver.Load")), std::vector<int>{2});
    EXPECT_EQ(lines(run.due(t0 + 2s, "IDriver.Load")), std::vector<int>{1}) << "a later call does not re-arm";
    EXPECT_EQ(lines(run.due(t0 + 2400ms)), std::vector<int>{});
    EXPECT_EQ(lines(run.due(t0 + 2500ms)), std::vector<int>{3}) << "one second after the first Load";
    EXPECT_EQ(run.stepsDone(), 4u);
    EXPECT_EQ(lines(run.due(t0 + 1h, "IDriver.Load")), std::vector<int>{});
}

class ScenarioOnInstrument : public SimTest {};

TEST_F(ScenarioOnInstrument, AHeadLoadThatTimesOutTwiceFailsTwiceWithTheTextThenLoads) {
    sim.runScenario(
        sim::parseScenario("when IDriver.Load: fail IDriver.Load 2 times \"Head load timed out.\"\n", "s"));
    openAndInitialize();
    h.clamp->SetClamp(true);
    h.spindle->SetMotor(true);
    for (int attempt = 0; attempt < 2; ++attempt) {
        try {
            h.driver->Load();
            ADD_FAILURE() << "attempt " << attempt << " loaded";
        } catch (const DriverError& e) {
            EXPECT_EQ(e.description(), "Head load timed out.");
        }
    }
    EXPECT_NO_THROW(h.driver->Load());
    EXPECT_TRUE(sim.readout().headsDown);
    EXPECT_EQ(sim.scenarioProgress().done, 1u);
}

TEST_F(ScenarioOnInstrument, InputsAndClearingApplyThroughTheInstrumentsOwnControls) {
    sim.runScenario(
        sim::parseScenario("when IDriver.Open: set interlock on\n"
                           "when IDriver.Open: fail IDriverInterlock.GetInterlock until cleared \"x\"\n"
                           "when IDriver.Initialize: clear IDriverInterlock.GetInterlock\n",
                           "s"));
    open();
    EXPECT_THROW(h.interlock->GetInterlock(), DriverError);
    EXPECT_THROW(h.interlock->GetInterlock(), DriverError);
    h.driver->Initialize();
    EXPECT_TRUE(h.interlock->GetInterlock());
    EXPECT_TRUE(sim.failures().empty());
}

// A real driver (here a test double the platform resolver returns) has no simulated instrument behind it: it
// shows no front panel and takes no scenario.
TEST(ScenarioFactory, ARealDriverTakesNoScenarioAndHasNoSimulatedInstrument) {
    auto registered = sim::SimInstrument(sim::SimOptions{":memory:", false, true}).createObject();
    setPlatformResolver([&](std::string_view) { return registered; });
    DriverOptions options;
    options.simulator = std::make_shared<sim::SimInstrument>(sim::SimOptions{":memory:", false, true});
    EXPECT_EQ(simulatedInstrument(options), nullptr);
    EXPECT_EQ(createDriverObject(kDriverProgId, options), registered);

    options.simScenario = "drill.txt";
    EXPECT_THROW(simulatedInstrument(options), DriverError);
    EXPECT_THROW(createDriverObject(kDriverProgId, options), DriverError);
    EXPECT_TRUE(options.simulator->scenarioProgress().name.empty());

    options.forceSimulator = true; // --simulate: the simulator plays it, and a missing file is refused
    EXPECT_THROW(simulatedInstrument(options), DriverError);
    setPlatformResolver(nullptr);
}

TEST(ScenarioFactory, AFolderIsNoScenario) {
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "vss-scenario-folder";
    std::filesystem::create_directories(folder);
    try {
        sim::readScenario(folder.string());
        ADD_FAILURE() << "a folder ran as a scenario without steps";
    } catch (const DriverError& e) {
        EXPECT_EQ(e.description(), "The scenario file " + folder.string() +
                                       " is not a regular file: name a file of scenario steps.");
    }
    std::filesystem::remove(folder);
}

TEST(ScenarioFactory, TheSimulatorStartsTheOptionsScenarioOnce) {
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "vss-scenario-once.txt";
    std::ofstream(file) << "when IDriver.Open: set interlock on\n";
    DriverOptions options;
    options.simulator = std::make_shared<sim::SimInstrument>(sim::SimOptions{":memory:", false, true});
    options.simScenario = file.string();
    EXPECT_EQ(simulatedInstrument(options), options.simulator);
    const auto object = createDriverObject(kDriverProgId, options);
    QueryInterface<IDriver>(*object)->Open(std::string(kDefaultResource));
    EXPECT_TRUE(options.simulator->input(sim::Input::Interlock));
    options.simulator->setInput(sim::Input::Interlock, false);
    createDriverObject(kDriverProgId, options); // a second session does not start it again
    EXPECT_EQ(options.simulator->scenarioProgress().done, 1u);
    std::filesystem::remove(file);
}

} // namespace
} // namespace vss::test
