#pragma once

// Creating the driver object by its ProgID. Once a program has set the platform's resolver (on Windows,
// vsstool and vsstool-config call setPlatformResolver(com::ComDriverObject::create)), the ProgID resolves
// through it to the registered driver, and a ProgID that is not registered is an error. Without a resolver
// (Linux), and whenever the user forces it (--simulate), "Vlkd2208.CoDriver" resolves to the simulated
// instrument.

#include "driver/Interfaces.h"
#include "driver/ProgId.h"
#include "driver/Trace.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace vss {

namespace sim {
class SimInstrument;
}

struct DriverOptions {
    bool forceSimulator = false;          // --simulate
    std::string simStatePath;             // --sim-state FILE; empty: the simulator's default path
    bool simDelays = false;               // --sim-delays: realistic timing
    bool simPowerCycle = false;           // --power-cycle: working values from non-volatile memory
    std::string simScenario;              // --sim-scenario FILE: timed inputs and faults of the simulator
    bool simOneBasedLists = false;        // --sim-one-based-lists: the simulator numbers its lists from 1
    std::shared_ptr<TraceSink> trace;     // --trace FILE: every driver call, one line each
    // The instrument to simulate; when empty, one process-wide instrument made from the options above.
    std::shared_ptr<sim::SimInstrument> simulator;
};

// Creates the driver object for progId. Throws DriverError with a clear description when the ProgID resolves
// to nothing.
std::shared_ptr<DriverObject> createDriverObject(std::string_view progId, const DriverOptions& options);

// The platform's own resolver (the COM client on Windows): returns the object or throws DriverError with the
// system's description when it cannot be created (nullptr counts as not registered).
using PlatformResolver = std::function<std::shared_ptr<DriverObject>(std::string_view progId)>;
void setPlatformResolver(PlatformResolver resolver);

} // namespace vss
