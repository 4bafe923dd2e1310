// The CPU of the piezo adjust window while it polls the simulated instrument, for bench/poll_cpu.sh.

#include "piezo/frmPiezoAdjust.h"
#include "bench/support/PollProbe.h"

int main(int argc, char** argv) {
    return vss::bench::runPollProbe(argc, argv, vss::frmPiezoAdjust::kPollMs,
                                    [] { return std::make_unique<vss::frmPiezoAdjust>(); });
}
