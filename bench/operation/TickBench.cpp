// One tick of the operation panel's polling timer on the simulated instrument without its delays: the
// interlock read, then the interlock, emergency and outer-cover inputs into the panel. Budget: 50 us.

#include "bench/support/TickBench.h"
#include "operation/frmIni.h"

namespace {

using Panel = vss::bench::TickedWindow<vss::frmIni>;

void BM_PanelTimerTick(benchmark::State& state) {
    Panel().run(state);
}
BENCHMARK(BM_PanelTimerTick)->Unit(benchmark::kMicrosecond);

// The same tick while the inputs change every time, so that every text is rewritten.
void BM_PanelTimerTickChangingInputs(benchmark::State& state) {
    Panel().run(state, [](vss::sim::SimInstrument& instrument, bool on) {
        instrument.setInput(vss::sim::Input::Emergency, on);
        instrument.setInput(vss::sim::Input::OuterCover, on);
    });
}
BENCHMARK(BM_PanelTimerTickChangingInputs)->Unit(benchmark::kMicrosecond);

} // namespace
