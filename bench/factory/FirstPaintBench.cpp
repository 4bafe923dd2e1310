// How long each factory page takes from its creation to its first paint on the simulated instrument without
// delays (its build reads the instrument's lists and values), and the same for a bare dialog holding as many
// controls (one text box per control of the page), measured alternately in one run. The counter "ratio" is
// the page's time over the bare dialog's; the budget is 1.5. "widgets" counts the page's widgets, the
// caption, text box, list and check box inside each property row included.

#include "bench/support/SimSession.h"
#include "factory/frmBacklashCompen.h"
#include "factory/frmFacSpinstand.h"
#include "factory/frmFacSpinstandSpindle.h"
#include "factory/frmFacSpinstandStage.h"

#include <QApplication>
#include <QDialog>
#include <QLineEdit>
#include <benchmark/benchmark.h>
#include <chrono>
#include <memory>

namespace {

using Clock = std::chrono::steady_clock;

// Waits for the widget's first paint after it is shown.
class FirstPaint : public QObject {
public:
    explicit FirstPaint(QWidget& widget) { widget.installEventFilter(this); }
    void wait() const {
        while (!painted_)
            QCoreApplication::processEvents(QEventLoop::AllEvents);
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            painted_ = true;
        return QObject::eventFilter(watched, event);
    }

private:
    bool painted_ = false;
};

template <class Make> double secondsToFirstPaint(Make make) {
    const Clock::time_point start = Clock::now();
    const std::unique_ptr<QWidget> window = make();
    const FirstPaint paint(*window);
    window->show();
    paint.wait();
    const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
    window->hide();
    return seconds;
}

// A dialog of the same size with `count` text boxes in rows and columns.
std::unique_ptr<QWidget> bareDialog(int count, QSize size) {
    auto dialog = std::make_unique<QDialog>();
    dialog->resize(size);
    for (int i = 0; i < count; ++i)
        (new QLineEdit(dialog.get()))->setGeometry(10 + (i % 4) * 90, 10 + (i / 4) * 26, 80, 22);
    return dialog;
}

template <class Page> void BM_FirstPaint(benchmark::State& state) {
    vss::bench::SimSession session;
    const bool viewOnly = false;
    int controls = 0;
    int widgets = 0; // every widget of the page, the parts of its composite value fields included
    QSize size;
    {
        Page probe(nullptr, viewOnly);
        controls = static_cast<int>(probe.controls().size());
        widgets = static_cast<int>(probe.template findChildren<QWidget*>().size());
        size = probe.size();
    }
    double pageSeconds = 0.0;
    double bareSeconds = 0.0;
    for (auto _ : state) {
        const double page = secondsToFirstPaint([&] { return std::make_unique<Page>(nullptr, viewOnly); });
        bareSeconds += secondsToFirstPaint([&] { return bareDialog(controls, size); });
        pageSeconds += page;
        state.SetIterationTime(page);
    }
    state.counters["controls"] = controls;
    state.counters["widgets"] = widgets;
    state.counters["bare_ms"] =
        benchmark::Counter(bareSeconds * 1e3 / static_cast<double>(state.iterations()));
    state.counters["ratio"] = bareSeconds > 0.0 ? pageSeconds / bareSeconds : 0.0;
}

BENCHMARK_TEMPLATE(BM_FirstPaint, vss::frmFacSpinstand)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_FirstPaint, vss::frmFacSpinstandSpindle)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_FirstPaint, vss::frmFacSpinstandStage)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK_TEMPLATE(BM_FirstPaint, vss::frmBacklashCompen)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
