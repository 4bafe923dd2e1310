// Runs a short session on the simulated instrument and prints the trace of every driver call:
// open, begin service, initialize, clamp, motor on, load, move, unload, close.
//
//   vss-demo [--sim-delays]

#include "simulator/Factory.h"
#include "driver/Handles.h"
#include "simulator/SimInstrument.h"

#include <cstring>
#include <iostream>

int main(int argc, char** argv) {
    using namespace vss;
    sim::SimOptions simOptions;
    simOptions.statePath = ":memory:";
    simOptions.delays = argc > 1 && std::strcmp(argv[1], "--sim-delays") == 0;
    auto instrument = std::make_shared<sim::SimInstrument>(simOptions);

    DriverOptions options;
    options.forceSimulator = true;
    options.simulator = instrument;
    try {
        auto object = createDriverObject(kDriverProgId, options);
        auto driver = QueryInterface<IDriver>(*object);
        auto service = QueryInterface<IDriverService>(*object);
        auto clamp = QueryInterface<IDriverClamp>(*object);
        auto spindle = QueryInterface<IDriverSpindle>(*object);
        auto stage = QueryInterface<IDriverStage>(*object);

        driver->Open(std::string(kDefaultResource));
        service->BeginService();
        driver->Initialize();
        driver->GetState();
        clamp->SetClamp(true);
        spindle->SetMotor(true);
        driver->GetState();
        driver->Load();
        driver->GetState();
        const PositionRecord inner = service->GetMeasurementPosition(0);
        double radius = inner.radius + 0.01;
        stage->MoveTo(radius);
        driver->GetPosition();
        driver->Unload();
        driver->GetState();
        driver->Close();
    } catch (const DriverError& e) {
        std::cerr << "vss-demo: " << e.description() << "\n";
    }
    for (const std::string& line : instrument->trace().lines())
        std::cout << line << "\n";
    return 0;
}
