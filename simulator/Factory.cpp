#include "simulator/Factory.h"

#include "simulator/Scenario.h"
#include "simulator/SimInstrument.h"
#include "simulator/SimulatedInstrument.h"

#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace vss {

namespace {

std::mutex& factoryMutex() {
    static std::mutex m;
    return m;
}

PlatformResolver& platformResolver() {
    static PlatformResolver resolver;
    return resolver;
}

// The one instrument of the process when no simulator is given: made on first use from the options of that
// first call and kept, so that its state carries over from one session to the next as a real instrument's does.
std::shared_ptr<sim::SimInstrument> processInstrument(const DriverOptions& options) {
    static std::shared_ptr<sim::SimInstrument> instrument;
    if (!instrument) {
        // A malformed scenario is refused before the instrument exists.
        std::optional<sim::Scenario> scenario;
        if (!options.simScenario.empty())
            scenario = sim::readScenario(options.simScenario);
        sim::SimOptions simOptions;
        simOptions.statePath = options.simStatePath;
        simOptions.delays = options.simDelays;
        simOptions.powerCycle = options.simPowerCycle;
        simOptions.listLower = options.simOneBasedLists ? 1 : 0;
        instrument = std::make_shared<sim::SimInstrument>(simOptions);
        if (scenario)
            instrument->runScenario(std::move(*scenario));
    }
    return instrument;
}

// Whether the options resolve to the platform's driver. Only the simulated instrument plays scenarios.
bool usesPlatformDriver(const DriverOptions& options) {
    bool platform = false;
    {
        std::lock_guard lock(factoryMutex());
        platform = platformResolver() && !options.forceSimulator;
    }
    if (platform && !options.simScenario.empty())
        throw DriverError("The scenario " + options.simScenario +
                          " cannot run: the program uses the instrument's driver, and only the simulated "
                          "instrument plays scenarios (use --simulate).");
    return platform;
}

std::shared_ptr<sim::SimInstrument> simulatorFor(const DriverOptions& options) {
    if (!options.simulator) {
        std::lock_guard lock(factoryMutex());
        return processInstrument(options);
    }
    if (!options.simScenario.empty() && options.simulator->scenarioProgress().name.empty())
        options.simulator->runScenario(sim::readScenario(options.simScenario));
    return options.simulator;
}

void traceCreate(const DriverOptions& options, std::string_view progId, const std::string& outcome) {
    if (options.trace)
        options.trace->write("CoDriver.Create(" + traceformat::text(progId) + ") " + outcome);
}

std::shared_ptr<DriverObject> create(std::string_view progId, const DriverOptions& options, std::string& made) {
    PlatformResolver resolver;
    {
        std::lock_guard lock(factoryMutex());
        resolver = platformResolver();
    }
    if (usesPlatformDriver(options)) {
        // The platform has drivers of its own: what it cannot create is an error, not a simulation.
        auto object = resolver(progId);
        if (!object)
            throw DriverError("Cannot create the driver object \"" + std::string(progId) +
                              "\": no driver is registered under this name.");
        made = "driver";
        return object;
    }
    if (progId != kDriverProgId)
        throw DriverError("Cannot create the driver object \"" + std::string(progId) +
                          "\": no driver is registered under this name.");
    made = "simulator";
    return simulatorFor(options)->createObject();
}

} // namespace

std::shared_ptr<DriverObject> createDriverObject(std::string_view progId, const DriverOptions& options) {
    std::string made;
    std::shared_ptr<DriverObject> object;
    try {
        object = create(progId, options, made);
    } catch (const DriverError& e) {
        traceCreate(options, progId, "!! " + e.description());
        throw;
    }
    traceCreate(options, progId, "-> " + made);
    return options.trace ? WithTrace(std::move(object), options.trace) : object;
}

std::shared_ptr<sim::SimInstrument> simulatedInstrument(const DriverOptions& options) {
    if (usesPlatformDriver(options))
        return nullptr;
    return simulatorFor(options);
}

void setPlatformResolver(PlatformResolver resolver) {
    std::lock_guard lock(factoryMutex());
    platformResolver() = std::move(resolver);
}

} // namespace vss
