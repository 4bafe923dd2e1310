#pragma once

// A polling window's CPU, measured by the process itself: the probe polls for a while and prints the CPU time it
// spent, either running the window on the simulated instrument ("window") or a bare dialog with a 200 ms timer
// that does nothing ("bare"). bench/poll_cpu.sh runs both side by side and compares them.
//
//   <area>_poll_probe window|bare [seconds]

#include "bench/support/SimSession.h"

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <functional>
#include <memory>
#include <optional>

namespace vss::bench {

inline double cpuSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// Makes the window to poll once the session is open.
using PollingWindow = std::function<std::unique_ptr<QDialog>()>;

inline int runPollProbe(int argc, char** argv, int pollMs, const PollingWindow& make) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const bool windowMode = argc > 1 && std::strcmp(argv[1], "window") == 0;
    const bool bareMode = argc > 1 && std::strcmp(argv[1], "bare") == 0;
    const int seconds = argc > 2 ? std::atoi(argv[2]) : 60;
    if ((!windowMode && !bareMode) || seconds <= 0) {
        std::fprintf(stderr, "usage: %s window|bare [seconds]\n", argv[0]);
        return 2;
    }
    QApplication app(argc, argv);

    std::optional<SimSession> session;
    std::unique_ptr<QDialog> window;
    QTimer bareTimer;
    if (windowMode) {
        session.emplace();
        window = make();
    } else {
        window = std::make_unique<QDialog>();
        bareTimer.setInterval(pollMs);
        QObject::connect(&bareTimer, &QTimer::timeout, [] {});
        bareTimer.start();
    }
    window->show();

    // The first second settles the window (first paint, first texts); the steady polling is measured after
    // it, up to the quit: closing the window is not polling.
    double start = 0.0;
    double end = 0.0;
    QTimer::singleShot(1000, &app, [&start] { start = cpuSeconds(); });
    QTimer::singleShot(1000 + seconds * 1000, &app, [&end] {
        end = cpuSeconds();
        QCoreApplication::quit();
    });
    app.exec();
    std::printf("%s cpu_seconds=%.4f over %d s\n", windowMode ? "window" : "bare", end - start, seconds);
    window.reset();
    return 0;
}

} // namespace vss::bench
