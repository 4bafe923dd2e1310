// The CPU of the service panel while it polls the simulated instrument, for bench/poll_cpu.sh.

#include "service/frmSer.h"
#include "bench/support/PollProbe.h"

int main(int argc, char** argv) {
    return vss::bench::runPollProbe(argc, argv, vss::frmSer::kPollMs,
                                    [] { return std::make_unique<vss::frmSer>(); });
}
