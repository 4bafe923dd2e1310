// One tick of the service panel's status timer on the simulated instrument without its delays: the nine reads
// of the spindle state, the inputs, the stage sensors and the region into the panel. Budget: 50 us.

#include "bench/support/TickBench.h"
#include "service/frmSer.h"

namespace {

using Panel = vss::bench::TickedWindow<vss::frmSer>;

void BM_ServiceTick(benchmark::State& state) {
    Panel().run(state);
}
BENCHMARK(BM_ServiceTick)->Unit(benchmark::kMicrosecond);

// The same tick while the inputs and the stopper sensors change every time, so that every text is rewritten.
void BM_ServiceTickChangingInputs(benchmark::State& state) {
    using vss::sim::Input;
    Panel().run(state, [](vss::sim::SimInstrument& instrument, bool on) {
        for (const Input input : {Input::Emergency, Input::OuterCover, Input::Vacuum, Input::SpindleSet,
                                  Input::LockdownSensor, Input::StopperUpSensor, Input::StopperDownSensor})
            instrument.setInput(input, on);
    });
}
BENCHMARK(BM_ServiceTickChangingInputs)->Unit(benchmark::kMicrosecond);

} // namespace
