// The scenario reader on arbitrary bytes. Every step it accepts must be one the instrument can apply, and a
// scenario it accepts must run to its end: a day after its start and after the first call of each operation
// it waits for, every step has fallen due exactly once. Then the scenario runs on a simulated instrument
// without a memory file through a short session.

#include "driver/DriverError.h"
#include "driver/Handles.h"
#include "simulator/Scenario.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

namespace {

using namespace vss::sim;

void checkSteps(const Scenario& scenario) {
    for (const ScenarioStep& step : scenario.steps) {
        if (step.after.count() < 0 || step.after > kMaxScenarioDelay)
            std::abort();
        if (step.action == ScenarioStep::Action::Fail &&
            !failureProblem(step.operation, step.text, step.times).empty())
            std::abort();
    }
}

void playToTheEnd(const Scenario& scenario) {
    const ScenarioClock::time_point start{};
    ScenarioRun run(scenario, start);
    std::size_t due = run.due(start).size();
    for (const ScenarioStep& step : scenario.steps)
        if (!step.whenOperation.empty())
            due += run.due(start, step.whenOperation).size();
    due += run.due(start + kMaxScenarioDelay).size();
    if (due != scenario.steps.size() || run.stepsDone() != run.stepCount() ||
        !run.due(start + 2 * kMaxScenarioDelay).empty())
        std::abort();
}

void runOnInstrument(Scenario scenario) {
    SimInstrument instrument(SimOptions{":memory:"});
    instrument.runScenario(std::move(scenario));
    instrument.advanceScenario();
    vss::DriverHandles handles;
    try {
        vss::acquireHandles(*instrument.createObject(), handles);
        handles.driver->Open("QTB::R2208C");
        handles.service->BeginService();
        handles.driver->Close();
    } catch (const vss::DriverError&) {
    }
    for (const InjectedFailure& failure : instrument.failures())
        if (!failureProblem(failure.operation, failure.description, failure.remaining < 0 ? -1 : 1).empty())
            std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Scenario scenario;
    try {
        scenario = parseScenario(std::string_view(reinterpret_cast<const char*>(data), size), "fuzz.txt");
    } catch (const vss::DriverError&) {
        return 0;
    }
    checkSteps(scenario);
    playToTheEnd(scenario);
    runOnInstrument(std::move(scenario));
    return 0;
}
