#pragma once

// The simulated instrument: what the tool runs on where the platform has no drivers (Linux) or when asked to
// (--simulate), what operators train on and what every test runs against. One SimInstrument is one physical
// instrument; driver objects created on it are sessions of the tool. Its non-volatile memory persists in a
// human-readable text file, and its working values persist beside it from one program to the next until a power
// cycle (SimOptions::powerCycle). One program at a time holds an instrument that has a memory file: from Open to
// Close, and another program's Open is refused with the holder's name (MemoryFile).

#include "driver/Interfaces.h"
#include "driver/Trace.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vss::sim {

struct SimOptions {
    std::string statePath;          // non-volatile file; empty: defaultStatePath(); "-" or ":memory:": none
    bool delays = false;            // realistic timing of loads, moves and spin-ups
    bool headLoaderPresent = true;  // false: every IDriverHeadLoader operation fails
    std::vector<std::int16_t> spinstandTypeCodes{}; // the codes of the spinstand type list; empty: 0, 1, 2
    // Start as after switching the instrument off and on: the working values come from non-volatile memory
    // instead of from the last program's session. Programs offer it as a command-line option.
    bool powerCycle = false;
    // The first index of the lists the driver gives (piezo adjust points, calibration coefficient names,
    // backlash entries, properties): 0, or 1 to play a driver that numbers its lists from 1.
    std::int16_t listLower = 0;
};

// Inputs that the instrument reads from its sensors; tests and demonstrations set them at run time.
enum class Input {
    Interlock,
    Emergency,
    OuterCover,
    Vacuum,
    SpindleSet,
    LockdownSensor,
    StopperUpSensor,
    StopperDownSensor,
};

// A failure set on an operation: its text and how many calls it has left (< 0: until cleared).
struct InjectedFailure {
    std::string operation;
    std::string description;
    int remaining = 0;
};

// What the instrument's front panel shows, read without a driver call.
struct PanelReadout {
    std::int32_t stateCode = 0;
    std::string stateText;
    std::int32_t spindleState = 0;
    bool clamp = false;
    bool headsDown = false;
    bool headLoaderPresent = true;
    double radius = 0.0; // m
    double skew = 0.0;   // degrees
};


struct Scenario;

class SimInstrument {
public:
    explicit SimInstrument(SimOptions options = {});
    ~SimInstrument();
    SimInstrument(const SimInstrument&) = delete;
    SimInstrument& operator=(const SimInstrument&) = delete;

    // A new driver object on this instrument. Every call through it is written to trace().
    std::shared_ptr<DriverObject> createObject();

    // Inputs.
    void setInput(Input input, bool value);
    bool input(Input input) const;

    // Fault injection. `operation` is "Interface.Operation" as in the trace ("IDriver.Load"), or a query as in the
    // trace, for every query ("CoDriver.QueryInterface") or for one interface's ("CoDriver.QueryInterface(IDriverIndex)").
    // times > 0: fail the next `times` calls; times < 0: fail until cleared.
    void failOperation(std::string_view operation, std::string description, int times = 1);
    void clearFailures();

    std::vector<InjectedFailure> failures() const;

    void setDelays(bool on);
    bool delays() const;
    void setHeadLoaderPresent(bool present);

    PanelReadout readout() const;

    // Writes the factory values over the non-volatile memory (and its file); the working values stay as they
    // are until a Recall. Throws DriverError when the memory file cannot be written or is damaged, or another
    // program holds the instrument.
    void resetNonVolatileMemory();

    // Scenarios. A scenario replaces the one running; its timed steps are applied when a driver call passes
    // the instrument's gate and whenever advanceScenario() is called (the front panel does on its timer).
    void runScenario(Scenario scenario);
    void advanceScenario();
    // The running scenario's name and progress; name empty when none has been loaded.
    struct ScenarioProgress {
        std::string name;
        std::size_t done = 0;
        std::size_t total = 0;
    };
    ScenarioProgress scenarioProgress() const;

    // Every call made on this instrument's driver objects, in the trace format.
    TraceBuffer& trace();

    // Default non-volatile file: the user's data directory (XDG_DATA_HOME or ~/.local/share, %APPDATA% on
    // Windows) / "VelkorSpinstand" / "simulator-nonvolatile.txt".
    static std::string defaultStatePath();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace vss::sim
