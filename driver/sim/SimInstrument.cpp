#include "driver/sim/SimInstrument.h"

#include "driver/FileName.h"
#include "driver/sim/SimInterfaces.h"

#include <cstdlib>
#include <filesystem>
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

} // namespace

struct SimInstrument::Impl {
    InstrumentPtr instrument;
};

SimInstrument::SimInstrument(SimOptions options)
    : impl_(std::make_unique<Impl>(Impl{std::make_shared<Instrument>(options)})) {}

SimInstrument::~SimInstrument() = default;

std::shared_ptr<DriverObject> SimInstrument::createObject() {
    InstrumentPtr instrument = impl_->instrument;
    return WithTrace(std::make_shared<SimObject>(instrument), instrument->trace(),
                     [instrument](std::string_view operation) { instrument->gate(operation); });
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
void SimInstrument::setDelays(bool on) { impl_->instrument->setDelays(on); }
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
