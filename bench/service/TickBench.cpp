// One tick of the service panel's status timer on the simulated instrument without its delays: the nine reads
// of the spindle state, the inputs, the stage sensors and the region into the panel. Budget: 50 us.

#include "bench/support/SimSession.h"
#include "service/frmSer.h"

#include <QApplication>
#include <benchmark/benchmark.h>

namespace {

void BM_ServiceTick(benchmark::State& state) {
    vss::bench::SimSession session;
    vss::frmSer panel;
    for (auto _ : state)
        panel.tmrUpdate_Timer();
}
BENCHMARK(BM_ServiceTick)->Unit(benchmark::kMicrosecond);

// The same tick while the inputs and the stopper sensors change every time, so that every text is rewritten.
void BM_ServiceTickChangingInputs(benchmark::State& state) {
    using vss::sim::Input;
    vss::bench::SimSession session;
    vss::frmSer panel;
    bool on = false;
    for (auto _ : state) {
        on = !on;
        for (const Input input : {Input::Emergency, Input::OuterCover, Input::Vacuum, Input::SpindleSet,
                                  Input::LockdownSensor, Input::StopperUpSensor, Input::StopperDownSensor})
            session.instrument().setInput(input, on);
        panel.tmrUpdate_Timer();
    }
}
BENCHMARK(BM_ServiceTickChangingInputs)->Unit(benchmark::kMicrosecond);

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
