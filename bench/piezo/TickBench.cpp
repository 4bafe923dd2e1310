// One tick of the piezo adjust window's timer on the simulated instrument without its delays: the balance
// read and the status text. Budget: 50 us.

#include "bench/support/TickBench.h"
#include "kit/modGlobal.h"
#include "piezo/frmPiezoAdjust.h"

namespace {

using Window = vss::bench::TickedWindow<vss::frmPiezoAdjust>;

void BM_AdjustTimerTick(benchmark::State& state) {
    Window().run(state);
}
BENCHMARK(BM_AdjustTimerTick)->Unit(benchmark::kMicrosecond);

// The same tick while the loop opens and closes every time, so that the status text is rewritten.
void BM_AdjustTimerTickChangingBalance(benchmark::State& state) {
    Window().run(state,
                 [](vss::sim::SimInstrument&, bool closed) { vss::handles().service->SetPiezoLoop(closed); });
}
BENCHMARK(BM_AdjustTimerTickChangingBalance)->Unit(benchmark::kMicrosecond);

// A tick whose balance read fails: the failure is swallowed and counts as unbalanced.
void BM_AdjustTimerTickFailingRead(benchmark::State& state) {
    Window window;
    window.instrument().failOperation("IDriverService.GetPiezoBalanced", "no answer", -1);
    window.run(state);
}
BENCHMARK(BM_AdjustTimerTickFailingRead)->Unit(benchmark::kMicrosecond);

} // namespace
