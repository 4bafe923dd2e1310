// One tick of the operation panel's polling timer on the simulated instrument without its delays: the
// interlock read, then the interlock, emergency and outer-cover inputs into the panel. Budget: 50 us.

#include "bench/support/SimSession.h"
#include "operation/frmIni.h"

#include <QApplication>
#include <benchmark/benchmark.h>

namespace {

void BM_PanelTimerTick(benchmark::State& state) {
    vss::bench::SimSession session;
    vss::frmIni panel;
    for (auto _ : state)
        panel.tmrUpdate_Timer();
}
BENCHMARK(BM_PanelTimerTick)->Unit(benchmark::kMicrosecond);

// The same tick while the inputs change every time, so that every text is rewritten.
void BM_PanelTimerTickChangingInputs(benchmark::State& state) {
    vss::bench::SimSession session;
    vss::frmIni panel;
    bool on = false;
    for (auto _ : state) {
        on = !on;
        session.instrument().setInput(vss::sim::Input::Emergency, on);
        session.instrument().setInput(vss::sim::Input::OuterCover, on);
        panel.tmrUpdate_Timer();
    }
}
BENCHMARK(BM_PanelTimerTickChangingInputs)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
