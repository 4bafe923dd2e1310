#include "simulator/SimInstrument.h"

#include "driver/FileName.h"
#include "driver/StateText.h"
#include "simulator/Instrument.h"
#include "simulator/Scenario.h"
#include "simulator/SimInterfaces.h"

#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <optional>
#include <stdexcept>

namespace vss::sim {

namespace {

// One session of the tool on the instrument: the driver object the tool creates.
class SimObject final : public DriverObject {
public:
    explicit SimObject(InstrumentPtr instrument) : instrument_(std::move(instrument)) {}

    std::shared_ptr<Interface> QueryInterface(const Guid& iid) override {
        if (auto i = makeInterface(iid, instrument_))
            return i;
        std::string names;
        for (const std::string_view n : kInterfaceNames)
            names += (names.empty() ? "" : ", ") + std::string(n);
        throw DriverError("The driver object has no interface " + iid.toString() + "; it implements " + names + ".");
    }

private:
    InstrumentPtr instrument_;
};

// The scenario that runs on an instrument. Driver objects keep it as they keep the instrument: a session may
// outlive the SimInstrument it was created on.
class ScenarioPlayer {
public:
    explicit ScenarioPlayer(InstrumentPtr instrument) : instrument_(std::move(instrument)) {}

    void run(Scenario scenario) {
        const std::lock_guard lock(mutex_);
        run_.emplace(std::move(scenario), ScenarioClock::now());
    }

    // Applies the steps due now through the instrument's own controls; `calling` is the operation about to run.
    void advance(std::string_view calling = {}) {
        std::vector<ScenarioStep> steps;
        {
            const std::lock_guard lock(mutex_);
            if (!run_)
                return;
            steps = run_->due(ScenarioClock::now(), calling);
        }
        for (const ScenarioStep& step : steps)
            apply(step);
    }

    SimInstrument::ScenarioProgress progress() const {
        const std::lock_guard lock(mutex_);
        if (!run_)
            return {};
        return {run_->name(), run_->stepsDone(), run_->stepCount()};
    }

private:
    void apply(const ScenarioStep& step) {
        switch (step.action) {
        case ScenarioStep::Action::SetInput:
            instrument_->setInput(step.input, step.value);
            return;
        case ScenarioStep::Action::Fail:
            instrument_->failOperation(step.operation, step.text, step.times);
            return;
        case ScenarioStep::Action::Clear:
            instrument_->failOperation(step.operation, {}, 0);
            return;
        case ScenarioStep::Action::ClearAll:
            instrument_->clearFailures();
            return;
        }
    }

    InstrumentPtr instrument_;
    mutable std::mutex mutex_;
    std::optional<ScenarioRun> run_;
};

} // namespace

struct SimInstrument::Impl {
    InstrumentPtr instrument;
    std::shared_ptr<ScenarioPlayer> scenario = std::make_shared<ScenarioPlayer>(instrument);
};

SimInstrument::SimInstrument(SimOptions options)
    : impl_(std::make_unique<Impl>(Impl{std::make_shared<Instrument>(options)})) {}

SimInstrument::~SimInstrument() = default;

std::shared_ptr<DriverObject> SimInstrument::createObject() {
    InstrumentPtr instrument = impl_->instrument;
    std::shared_ptr<ScenarioPlayer> scenario = impl_->scenario;
    return WithTrace(
        std::make_shared<SimObject>(instrument), instrument->trace(),
        [instrument, scenario](std::string_view operation) {
            scenario->advance(operation); // a step armed by this call applies to it already
            instrument->gate(operation);
        },
        [instrument](std::string_view) { instrument->keepChanges(); });
}

void SimInstrument::setInput(Input input, bool value) { impl_->instrument->setInput(input, value); }
bool SimInstrument::input(Input input) const { return impl_->instrument->input(input); }

void SimInstrument::failOperation(std::string_view operation, std::string description, int times) {
    if (!isOperationName(operation))
        throw std::invalid_argument("No driver operation is called \"" + std::string(operation) +
                                    "\": name it Interface.Operation, as in the trace.");
    impl_->instrument->failOperation(operation, std::move(description), times);
}

void SimInstrument::clearFailures() { impl_->instrument->clearFailures(); }
std::vector<InjectedFailure> SimInstrument::failures() const { return impl_->instrument->failures(); }
void SimInstrument::setDelays(bool on) { impl_->instrument->setDelays(on); }
bool SimInstrument::delays() const { return impl_->instrument->delays(); }
void SimInstrument::resetNonVolatileMemory() { impl_->instrument->resetNonVolatile(); }
void SimInstrument::runScenario(Scenario scenario) { impl_->scenario->run(std::move(scenario)); }
void SimInstrument::advanceScenario() { impl_->scenario->advance(); }
SimInstrument::ScenarioProgress SimInstrument::scenarioProgress() const { return impl_->scenario->progress(); }

PanelReadout SimInstrument::readout() const {
    const Instrument& i = *impl_->instrument;
    const HeadPosition where = i.position();
    PanelReadout r;
    r.stateCode = i.stateCode();
    r.stateText = std::string(stateText(r.stateCode));
    r.spindleState = i.spindleState();
    r.clamp = i.hw.clamp;
    r.headsDown = i.hw.headsDown;
    r.headLoaderPresent = i.headLoaderPresent();
    r.radius = where.radius;
    r.skew = where.skew;
    return r;
}

void SimInstrument::setHeadLoaderPresent(bool present) { impl_->instrument->setHeadLoaderPresent(present); }
TraceBuffer& SimInstrument::trace() { return *impl_->instrument->trace(); }

std::string SimInstrument::defaultStatePath() {
    namespace fs = std::filesystem;
    fs::path base;
#ifdef _WIN32
    if (const wchar_t* appData = _wgetenv(L"APPDATA"))
        base = appData;
#else
    if (const char* xdg = std::getenv("XDG_DATA_HOME"); xdg && *xdg)
        base = xdg;
    else if (const char* home = std::getenv("HOME"))
        base = fs::path(home) / ".local" / "share";
#endif
    if (base.empty())
        base = fs::current_path();
    return utf8FromPath(base / "VelkorSpinstand" / "simulator-nonvolatile.txt");
}

} // namespace vss::sim
