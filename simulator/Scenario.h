#pragma once

// Scenario files: timed steps that play the instrument's side without a person at the front panel. One step a
// line, a trigger, a colon and an action:
//
//     # a head load that times out twice
//     when IDriver.Load: fail IDriver.Load 2 times "Head load timed out."
//     when IDriverSpindle.SetMotor after 2.5s: set interlock on
//     after 30s: clear all
//
// Triggers: "after T" (T after the scenario is loaded), "when OPERATION" (just before the first call of that
// operation runs) and "when OPERATION after T" (T after that first call). T is a number with "s" or "ms".
// Actions: "set INPUT on|off", "fail OPERATION once|N times|until cleared "TEXT"", "clear OPERATION",
// "clear all". A file with any wrong line is refused as a whole, naming the file and the line.

#include "simulator/SimInstrument.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vss::sim {

using ScenarioClock = std::chrono::steady_clock;

inline constexpr std::size_t kMaxFailureText = 500;
inline constexpr int kMaxFailureCount = 1000;
inline constexpr std::chrono::milliseconds kMaxScenarioDelay{24 * 3600 * 1000};

struct ScenarioStep {
    enum class Action { SetInput, Fail, Clear, ClearAll };

    int line = 0;
    std::string whenOperation; // empty: timed from the loading of the scenario
    std::chrono::milliseconds after{0};
    Action action = Action::SetInput;
    Input input = Input::Interlock; // SetInput
    bool value = false;             // SetInput
    std::string operation;          // Fail, Clear
    std::string text;               // Fail
    int times = 1;                  // Fail: > 0 that many calls, < 0 until cleared
};

struct Scenario {
    std::string name; // the file's name, for messages and the front panel
    std::vector<ScenarioStep> steps;
};

// Parses a scenario's text. Throws DriverError "<name>, line <n>: <what is wrong>." at the first wrong line.
Scenario parseScenario(std::string_view text, const std::string& name);
// Reads and parses a scenario file. Throws DriverError when it cannot be read or is malformed.
Scenario readScenario(const std::string& path);

// The inputs a person or a scenario switches, by the names scenarios use ("interlock", "outer-cover", ...).
struct InputName {
    Input input;
    std::string_view name;
};
const std::vector<InputName>& switchableInputs();
std::optional<Input> inputNamed(std::string_view name);

// Every operation a failure can be set on, as the trace names them ("IDriver.Load").
const std::vector<std::string>& operationNames();

// What is wrong with a failure a person or a scenario asks for, or empty when nothing is: an unknown
// operation, a count of 0 or less than -1 or above kMaxFailureCount, an empty, blank, multi-line or enormous
// text.
std::string failureProblem(std::string_view operation, std::string_view text, int times);

// A scenario as it runs: which steps are due at a time, given the operation being called (if any).
class ScenarioRun {
public:
    ScenarioRun(Scenario scenario, ScenarioClock::time_point start);

    // The steps due at `now`, in file order, each returned once. `calling` is the operation about to run:
    // its first call arms the steps that wait for it.
    std::vector<ScenarioStep> due(ScenarioClock::time_point now, std::string_view calling = {});

    const std::string& name() const { return scenario_.name; }
    std::size_t stepCount() const { return scenario_.steps.size(); }
    std::size_t stepsDone() const;

private:
    struct Progress {
        std::optional<ScenarioClock::time_point> armedAt;
        bool done = false;
    };
    Scenario scenario_;
    ScenarioClock::time_point start_;
    std::vector<Progress> progress_;
};

} // namespace vss::sim
