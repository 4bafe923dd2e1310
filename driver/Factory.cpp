#include "driver/Factory.h"

#include "driver/sim/SimInstrument.h"

#include <mutex>
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
        sim::SimOptions simOptions;
        simOptions.statePath = options.simStatePath;
        simOptions.delays = options.simDelays;
        simOptions.powerCycle = options.simPowerCycle;
        instrument = std::make_shared<sim::SimInstrument>(simOptions);
    }
    return instrument;
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
    if (resolver && !options.forceSimulator) {
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
    std::shared_ptr<sim::SimInstrument> instrument = options.simulator;
    if (!instrument) {
        std::lock_guard lock(factoryMutex());
        instrument = processInstrument(options);
    }
    made = "simulator";
    return instrument->createObject();
}

} // namespace

std::shared_ptr<DriverObject> CreateDriverObject(std::string_view progId, const DriverOptions& options) {
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

void SetPlatformResolver(PlatformResolver resolver) {
    std::lock_guard lock(factoryMutex());
    platformResolver() = std::move(resolver);
}

} // namespace vss
