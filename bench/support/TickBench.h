#pragma once

// The timer-tick benchmarks of the polling windows: a session on the simulated instrument without its delays,
// the window made on it, and one tick of the window's timer per iteration, as the timer runs it.

#include "bench/support/SimSession.h"

#include <benchmark/benchmark.h>

namespace vss::bench {

template <class Window> class TickedWindow {
public:
    // One tick per iteration, nothing changing between them.
    void run(benchmark::State& state) {
        for (auto _ : state)
            window_.pollOnce();
    }

    // One tick per iteration, each after change(instrument, on), where `on` turns on and off from one tick to
    // the next: what the instrument reports changes every time, so that the window rewrites its texts.
    template <class Change> void run(benchmark::State& state, Change change) {
        bool on = false;
        for (auto _ : state) {
            on = !on;
            change(session_.instrument(), on);
            window_.pollOnce();
        }
    }

    sim::SimInstrument& instrument() { return session_.instrument(); }

private:
    SimSession session_;
    Window window_; // made once the session is open, closed before it
};

} // namespace vss::bench
