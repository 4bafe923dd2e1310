#pragma once

// An instrument session on an in-memory simulated instrument, with the process-wide handles filled the way
// "Open" fills them, for the windows' benchmarks.

#include "kit/modGlobal.h"
#include "driver/Handles.h"
#include "simulator/SimInstrument.h"

#include <memory>

namespace vss::bench {

class SimSession {
public:
    SimSession() {
        setUpGlobals();
        DriverObject& o = *object_;
        DriverHandles& h = handles();
        acquireHandles(o, h);
        h.driver->Open("QTB::R2208C");
        h.service->BeginService();
        h.driver->Initialize();
    }
    ~SimSession() {
        handles().driver->Close();
        handles() = {};
    }
    SimSession(const SimSession&) = delete;
    SimSession& operator=(const SimSession&) = delete;

    sim::SimInstrument& instrument() { return sim_; }

private:
    sim::SimInstrument sim_{sim::SimOptions{":memory:"}};
    std::shared_ptr<DriverObject> object_ = sim_.createObject();
};

} // namespace vss::bench
