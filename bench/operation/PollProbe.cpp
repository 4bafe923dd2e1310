// The CPU of the operation panel while it polls the simulated instrument, for bench/poll_cpu.sh.

#include "operation/frmIni.h"
#include "bench/support/PollProbe.h"

int main(int argc, char** argv) {
    return vss::bench::runPollProbe(argc, argv, vss::frmIni::kPollMs,
                                    [] { return std::make_unique<vss::frmIni>(); });
}
