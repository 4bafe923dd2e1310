#pragma once

// A simulated instrument with no memory file and a driver object on it, with its twelve handles.

#include "driver/Handles.h"
#include "simulator/SimInstrument.h"

#include <gtest/gtest.h>

#include <string>

namespace vss::test {

inline DriverHandles queryAll(DriverObject& o) {
    return {QueryInterface<IDriver>(o),           QueryInterface<IDriverPiezo>(o),
            QueryInterface<IDriverStage>(o),      QueryInterface<IDriverLoadPosition>(o),
            QueryInterface<IDriverHeadLoader>(o), QueryInterface<IDriverSpindle>(o),
            QueryInterface<IDriverClamp>(o),      QueryInterface<IDriverHeadFace>(o),
            QueryInterface<IDriverIndex>(o),      QueryInterface<IDriverInterlock>(o),
            QueryInterface<IDriverDiskSize>(o),   QueryInterface<IDriverService>(o)};
}

class SimTest : public ::testing::Test {
protected:
    explicit SimTest(const std::string& statePath = ":memory:")
        : SimTest(sim::SimOptions{statePath, false, true}) {}
    explicit SimTest(const sim::SimOptions& options)
        : sim(options), object(sim.createObject()), h(queryAll(*object)) {}

    void open() { h.driver->Open("QTB::R2208C"); }
    void openAndInitialize() {
        open();
        h.driver->Initialize();
    }
    // Loaded with the spindle running: where measurements happen.
    void loadHeads() {
        openAndInitialize();
        h.clamp->SetClamp(true);
        h.spindle->SetMotor(true);
        h.driver->Load();
    }
    std::string lastLine() {
        const auto lines = sim.trace().lines();
        return lines.empty() ? std::string() : lines.back();
    }

    sim::SimInstrument sim;
    std::shared_ptr<DriverObject> object;
    DriverHandles h;
};

// The description of the DriverError that call throws, or "" when it does not throw.
template <class F>
std::string failure(F&& call) {
    try {
        call();
    } catch (const DriverError& e) {
        return e.description();
    }
    return "";
}

} // namespace vss::test
