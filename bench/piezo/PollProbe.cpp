// Polls for a while and prints the process's CPU time spent polling: either the piezo adjust window on the
// simulated instrument ("adjust") or a bare dialog with a 200 ms timer that does nothing ("bare"). The script
// poll_cpu.sh runs both side by side and compares them.
//
//   piezo_poll_probe adjust|bare [seconds]

#include "bench/operation/SimSession.h"
#include "piezo/frmPiezoAdjust.h"

#include <QApplication>
#include <QDialog>
#include <QTimer>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <optional>

namespace {

double cpuSeconds() {
    return static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const bool adjustMode = argc > 1 && std::strcmp(argv[1], "adjust") == 0;
    const bool bareMode = argc > 1 && std::strcmp(argv[1], "bare") == 0;
    const int seconds = argc > 2 ? std::atoi(argv[2]) : 60;
    if ((!adjustMode && !bareMode) || seconds <= 0) {
        std::fprintf(stderr, "usage: piezo_poll_probe adjust|bare [seconds]\n");
        return 2;
    }
    QApplication app(argc, argv);

    std::optional<vss::bench::SimSession> session;
    std::unique_ptr<QDialog> window;
    QTimer bareTimer;
    if (adjustMode) {
        session.emplace();
        window = std::make_unique<vss::frmPiezoAdjust>();
    } else {
        window = std::make_unique<QDialog>();
        bareTimer.setInterval(vss::frmPiezoAdjust::kPollMs);
        QObject::connect(&bareTimer, &QTimer::timeout, [] {});
        bareTimer.start();
    }
    window->show();

    // The first second settles the window (first paint, first status); the steady polling is measured after
    // it, up to the quit: closing the window is not polling.
    double start = 0.0;
    double end = 0.0;
    QTimer::singleShot(1000, &app, [&start] { start = cpuSeconds(); });
    QTimer::singleShot(1000 + seconds * 1000, &app, [&end] {
        end = cpuSeconds();
        QCoreApplication::quit();
    });
    app.exec();
    std::printf("%s cpu_seconds=%.4f over %d s\n", adjustMode ? "adjust" : "bare", end - start, seconds);
    window.reset();
    return 0;
}
