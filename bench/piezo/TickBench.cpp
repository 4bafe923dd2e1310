// One tick of the piezo adjust window's timer on the simulated instrument without its delays: the balance
// read and the status text. Budget: 50 us.

#include "bench/support/SimSession.h"
#include "kit/modGlobal.h"
#include "piezo/frmPiezoAdjust.h"

#include <QApplication>
#include <benchmark/benchmark.h>

namespace {

void BM_AdjustTimerTick(benchmark::State& state) {
    vss::bench::SimSession session;
    vss::frmPiezoAdjust window;
    for (auto _ : state)
        window.pollOnce();
}
BENCHMARK(BM_AdjustTimerTick)->Unit(benchmark::kMicrosecond);

// The same tick while the loop opens and closes every time, so that the status text is rewritten.
void BM_AdjustTimerTickChangingBalance(benchmark::State& state) {
    vss::bench::SimSession session;
    vss::frmPiezoAdjust window;
    bool closed = false;
    for (auto _ : state) {
        closed = !closed;
        vss::handles().service->SetPiezoLoop(closed);
        window.pollOnce();
    }
}
BENCHMARK(BM_AdjustTimerTickChangingBalance)->Unit(benchmark::kMicrosecond);

// A tick whose balance read fails: the failure is swallowed and counts as unbalanced.
void BM_AdjustTimerTickFailingRead(benchmark::State& state) {
    vss::bench::SimSession session;
    vss::frmPiezoAdjust window;
    session.instrument().failOperation("IDriverService.GetPiezoBalanced", "no answer", -1);
    for (auto _ : state)
        window.pollOnce();
}
BENCHMARK(BM_AdjustTimerTickFailingRead)->Unit(benchmark::kMicrosecond);

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
