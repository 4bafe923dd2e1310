#include "driver/Trace.h"

#include "driver/FileName.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <stdexcept>
#include <system_error>
#include <tuple>
#include <type_traits>
#include <utility>

namespace vss {

// ---------------------------------------------------------------------------------------------------------------
// Sinks

void TraceBuffer::write(std::string_view line) {
    std::lock_guard lock(mutex_);
    if (lines_.size() == capacity_)
        lines_.pop_front();
    lines_.emplace_back(line);
}

std::vector<std::string> TraceBuffer::lines() const {
    std::lock_guard lock(mutex_);
    return {lines_.begin(), lines_.end()};
}

void TraceBuffer::clear() {
    std::lock_guard lock(mutex_);
    lines_.clear();
}

namespace {

// The trace goes to a regular file or to a new one. A named pipe would block the program until someone reads
// it, and a folder or a device is no file to keep a trace in.
std::filesystem::path traceFilePath(const std::string& path) {
    std::error_code ec;
    const std::filesystem::path file = pathFromUtf8(path);
    const auto status = std::filesystem::status(file, ec);
    if (std::filesystem::exists(status) && !std::filesystem::is_regular_file(status))
        throw std::runtime_error("The trace file " + path +
                                 " is not a regular file: name a new file, or a file to append to.");
    return file;
}

} // namespace

TraceFile::TraceFile(const std::string& path) : path_(path), out_(traceFilePath(path), std::ios::app) {
    if (!out_)
        throw std::runtime_error("Cannot open the trace file " + path + " for writing.");
}

void TraceFile::write(std::string_view line) {
    const std::lock_guard lock(mutex_);
    errno = 0;
    out_ << line << '\n';
    out_.flush();
    if (out_)
        return;
    if (lost_++ == 0)
        reason_ = errno != 0 ? std::generic_category().message(errno) : "the file system refused it";
    out_.clear(); // the next line is tried again: a disk that has room again takes it
}

std::string TraceFile::loss() const {
    const std::lock_guard lock(mutex_);
    if (lost_ == 0)
        return {};
    return std::to_string(lost_) + (lost_ == 1 ? " line" : " lines") +
           " of the driver call trace could not be written to " + path_ + ": " + reason_;
}

// ---------------------------------------------------------------------------------------------------------------
// Value formatting

namespace traceformat {

std::string number(double v) {
    std::array<char, 32> buf{};
    const auto [end, ec] = std::to_chars(buf.data(), buf.data() + buf.size(), v);
    if (ec != std::errc())
        return "?";
    return std::string(buf.data(), end);
}

std::string text(std::string_view s) {
    std::string out = "\"";
    for (const char c : s) {
        switch (c) {
        case '"':
            out += "\\\"";
            break;
        case '\\':
            out += "\\\\";
            break;
        case '\n':
            out += "\\n";
            break;
        case '\r':
            out += "\\r";
            break;
        case '\t':
            out += "\\t";
            break;
        default:
            out += c;
        }
    }
    out += '"';
    return out;
}

std::string value(const Variant& v) {
    const std::string type = std::string("(") + Variant::typeName(v.type()) + ")";
    switch (v.type()) {
    case Variant::Type::Empty:
        return "Empty";
    case Variant::Type::Null:
        return "Null";
    case Variant::Type::Int16:
        return type + std::to_string(v.int16());
    case Variant::Type::Int32:
        return type + std::to_string(v.int32());
    case Variant::Type::Double:
        return type + number(v.dbl());
    case Variant::Type::Bool:
        return type + (v.boolean() ? "true" : "false");
    case Variant::Type::Text:
        return type + text(v.text());
    }
    return "?";
}

} // namespace traceformat

namespace {

// Formatting of every argument and result type of the contract. A structure that the contract returns through
// several out values is written as those values in order; a PositionRecord is one value, {radius, skew}.
std::string fmt(bool v) { return v ? "true" : "false"; }
std::string fmt(std::int16_t v) { return std::to_string(v); }
std::string fmt(std::int32_t v) { return std::to_string(v); }
std::string fmt(double v) { return traceformat::number(v); }
std::string fmt(const std::string& v) { return traceformat::text(v); }
std::string fmt(const Variant& v) { return traceformat::value(v); }
std::string fmt(const PositionRecord& p) { return "{" + fmt(p.radius) + ", " + fmt(p.skew) + "}"; }

template <class T>
std::string fmt(const std::vector<T>& items) {
    std::string out = "[";
    for (std::size_t i = 0; i < items.size(); ++i)
        out += (i ? ", " : "") + fmt(items[i]);
    return out + "]";
}

std::string fmt(const HeadPosition& p);
std::string fmt(const DataArea& a);
std::string fmt(const LoadPosition& p);
std::string fmt(const SpeedRange& r);
std::string fmt(const DoubleRange& r);
std::string fmt(const NamedCodes& c);
std::string fmt(const NameList& l);
std::string fmt(const PropertyList& p);
std::string fmt(const StagePositionFlags& f);
std::string fmt(const StopperSensors& s);
std::string fmt(const PiezoCalCoef& c);
std::string fmt(const PiezoCalData& d);
std::string fmt(const PiezoControlData& d);

template <class... T>
std::string list(const T&... values) {
    std::string out;
    ((out += (out.empty() ? "" : ", ") + fmt(values)), ...);
    return out;
}

std::string fmt(const HeadPosition& p) { return list(p.track, p.radius, p.skew); }
std::string fmt(const DataArea& a) { return list(a.innerRadius, a.maxTrack, a.pitch); }
std::string fmt(const LoadPosition& p) { return list(p.position, p.rpm); }
std::string fmt(const SpeedRange& r) { return list(r.min, r.max); }
std::string fmt(const DoubleRange& r) { return list(r.min, r.max); }
std::string fmt(const NamedCodes& c) { return list(c.names, c.codes); }
// A list numbered from 0 is written as its elements alone; any other first index is written in front of them
// ("[1: 7, 8]", "[1:]" when empty).
std::string bounded(std::int16_t lower, std::string elements) {
    if (lower == 0)
        return elements;
    return elements.insert(1, std::to_string(lower) + (elements == "[]" ? ":" : ": "));
}
std::string fmt(const NameList& l) { return bounded(l.lower, fmt(l.names)); }
std::string fmt(const PropertyList& p) {
    return bounded(p.lower, fmt(p.ids)) + ", " + bounded(p.lower, fmt(p.names)) + ", " + bounded(p.lower, fmt(p.units));
}
std::string fmt(const StagePositionFlags& f) { return list(f.atHome, f.atInner, f.atOuter); }
std::string fmt(const StopperSensors& s) { return list(s.up, s.down); }
std::string fmt(const PiezoCalCoef& c) { return list(c.vmin, c.vmax, c.xmin, c.xmax, c.coef); }
std::string fmt(const PiezoCalData& d) { return list(d.volt, d.position); }
std::string fmt(const PiezoControlData& d) { return list(d.lth, d.ta, d.ks, d.lstep, d.tstep); }

// The two out values radius and skew of GetMeasurementPosition (not one record).
struct RadiusSkew {
    PositionRecord record;
};
std::string fmt(const RadiusSkew& r) { return list(r.record.radius, r.record.skew); }

// A description written on one line.
std::string oneLine(std::string s) {
    for (char& c : s)
        if (c == '\n' || c == '\r')
            c = ' ';
    return s;
}

// The common part of every tracing wrapper: writes the line of each call and its Release line.
class Tracer {
public:
    Tracer(std::string_view name, std::shared_ptr<TraceSink> sink, CallGate gate, CallGate after)
        : name_(name), sink_(std::move(sink)), gate_(std::move(gate)), after_(std::move(after)) {}
    ~Tracer() { sink_->write(std::string(name_) + ".Release()"); }
    Tracer(const Tracer&) = delete;
    Tracer& operator=(const Tracer&) = delete;

    // Writes "Interface.Operation(arguments)" followed by the results or the failure, and passes on what
    // `call` returned or threw.
    template <class F, class... A>
    auto operator()(std::string_view operation, F&& call, const A&... args) -> decltype(call()) {
        const std::string head =
            std::string(name_) + "." + std::string(operation) + "(" + list(args...) + ")";
        try {
            const std::string called = std::string(name_) + "." + std::string(operation);
            if (gate_)
                gate_(called);
            if constexpr (std::is_void_v<decltype(call())>) {
                call();
                if (after_)
                    after_(called);
                sink_->write(head);
            } else {
                auto result = call();
                if (after_)
                    after_(called);
                sink_->write(head + " -> " + fmt(result));
                return result;
            }
        } catch (const std::exception& e) {
            sink_->write(head + " !! " + oneLine(e.what()));
            throw;
        }
    }

private:
    std::string_view name_;
    std::shared_ptr<TraceSink> sink_;
    CallGate gate_;
    CallGate after_;
};

// One tracing wrapper per interface: each operation is one line that names it, forwards it and lists its arguments.
template <class I>
class Traced;

#define VSS_TRACE(op, ...) trace_(#op, [&] { return inner_->op(__VA_ARGS__); } __VA_OPT__(, ) __VA_ARGS__)

template <class I>
class TracedBase : public I {
public:
    TracedBase(std::shared_ptr<I> inner, std::shared_ptr<TraceSink> sink, CallGate gate, CallGate after)
        : inner_(std::move(inner)), trace_(I::kName, std::move(sink), std::move(gate), std::move(after)) {}

protected:
    std::shared_ptr<I> inner_;
    Tracer trace_;
};

template <>
class Traced<IDriver> final : public TracedBase<IDriver> {
public:
    using TracedBase::TracedBase;
    void Open(const std::string& resource) override { VSS_TRACE(Open, resource); }
    void Close() override { VSS_TRACE(Close); }
    void Initialize() override { VSS_TRACE(Initialize); }
    void Reset() override { VSS_TRACE(Reset); }
    DoubleRange GetDiskSizeLimit() override { return VSS_TRACE(GetDiskSizeLimit); }
    SpeedRange GetSpeedRange() override { return VSS_TRACE(GetSpeedRange); }
    NamedCodes GetLoadMethodList() override { return VSS_TRACE(GetLoadMethodList); }
    void Load() override { VSS_TRACE(Load); }
    void Unload() override { VSS_TRACE(Unload); }
    HeadPosition GetPosition() override { return VSS_TRACE(GetPosition); }
    DataArea GetDataArea() override { return VSS_TRACE(GetDataArea); }
    void SetDataArea(double innerRadius, std::int32_t maxTrack, double pitch) override {
        VSS_TRACE(SetDataArea, innerRadius, maxTrack, pitch);
    }
    std::int32_t GetSpindleSpeed() override { return VSS_TRACE(GetSpindleSpeed); }
    void SetSpindleSpeed(std::int32_t rpm) override { VSS_TRACE(SetSpindleSpeed, rpm); }
    std::int32_t GetHomeState() override { return VSS_TRACE(GetHomeState); }
    void SetHomeState(std::int32_t homeState) override { VSS_TRACE(SetHomeState, homeState); }
    std::int16_t GetLoadMethod() override { return VSS_TRACE(GetLoadMethod); }
    void SetLoadMethod(std::int16_t method) override { VSS_TRACE(SetLoadMethod, method); }
    std::int32_t GetState() override { return VSS_TRACE(GetState); }
    double GetFinePositionLimit() override { return VSS_TRACE(GetFinePositionLimit); }
    std::string GetHardwareRevision() override { return VSS_TRACE(GetHardwareRevision); }
    std::string GetFirmwareRevision() override { return VSS_TRACE(GetFirmwareRevision); }
    std::string GetDriverRevision() override { return VSS_TRACE(GetDriverRevision); }
    std::string GetSerialNumber() override { return VSS_TRACE(GetSerialNumber); }
};

template <>
class Traced<IDriverPiezo> final : public TracedBase<IDriverPiezo> {
public:
    using TracedBase::TracedBase;
    double GetPiezoReading() override { return VSS_TRACE(GetPiezoReading); }
};

template <>
class Traced<IDriverStage> final : public TracedBase<IDriverStage> {
public:
    using TracedBase::TracedBase;
    // The radius goes in as the argument and comes back as the radius reached.
    void MoveTo(double& radius) override {
        trace_("MoveTo", [&] { inner_->MoveTo(radius); return radius; }, radius);
    }
};

template <>
class Traced<IDriverLoadPosition> final : public TracedBase<IDriverLoadPosition> {
public:
    using TracedBase::TracedBase;
    LoadPosition GetLoadPosition(std::int16_t which) override { return VSS_TRACE(GetLoadPosition, which); }
    void SetLoadPosition(std::int16_t which, const PositionRecord& position, std::int32_t rpm) override {
        VSS_TRACE(SetLoadPosition, which, position, rpm);
    }
};

template <>
class Traced<IDriverHeadLoader> final : public TracedBase<IDriverHeadLoader> {
public:
    using TracedBase::TracedBase;
    bool GetHeadLoader() override { return VSS_TRACE(GetHeadLoader); }
    void SetHeadLoader(bool down) override { VSS_TRACE(SetHeadLoader, down); }
};

template <>
class Traced<IDriverSpindle> final : public TracedBase<IDriverSpindle> {
public:
    using TracedBase::TracedBase;
    bool GetMotor() override { return VSS_TRACE(GetMotor); }
    void SetMotor(bool on) override { VSS_TRACE(SetMotor, on); }
    std::int32_t GetRotation() override { return VSS_TRACE(GetRotation); }
};

template <>
class Traced<IDriverClamp> final : public TracedBase<IDriverClamp> {
public:
    using TracedBase::TracedBase;
    bool GetClamp() override { return VSS_TRACE(GetClamp); }
    void SetClamp(bool on) override { VSS_TRACE(SetClamp, on); }
};

template <>
class Traced<IDriverHeadFace> final : public TracedBase<IDriverHeadFace> {
public:
    using TracedBase::TracedBase;
    std::int32_t GetFace() override { return VSS_TRACE(GetFace); }
};

template <>
class Traced<IDriverIndex> final : public TracedBase<IDriverIndex> {
public:
    using TracedBase::TracedBase;
    bool GetIndexPolarity() override { return VSS_TRACE(GetIndexPolarity); }
};

template <>
class Traced<IDriverInterlock> final : public TracedBase<IDriverInterlock> {
public:
    using TracedBase::TracedBase;
    bool GetInterlock() override { return VSS_TRACE(GetInterlock); }
};

template <>
class Traced<IDriverDiskSize> final : public TracedBase<IDriverDiskSize> {
public:
    using TracedBase::TracedBase;
    bool GetDiskSizeRestriction() override { return VSS_TRACE(GetDiskSizeRestriction); }
    void SetDiskSizeRestriction(bool on) override { VSS_TRACE(SetDiskSizeRestriction, on); }
};

template <>
class Traced<IDriverService> final : public TracedBase<IDriverService> {
public:
    using TracedBase::TracedBase;
    void BeginService() override { VSS_TRACE(BeginService); }
    void ResetService() override { VSS_TRACE(ResetService); }
    void SetHardwareRevision(const std::string& revision) override { VSS_TRACE(SetHardwareRevision, revision); }
    std::string GetHardwareRevision() override { return VSS_TRACE(GetHardwareRevision); }
    std::string GetDriverRevision() override { return VSS_TRACE(GetDriverRevision); }
    std::string GetFirmwareRevision() override { return VSS_TRACE(GetFirmwareRevision); }
    void SetSerialNumber(const std::string& serial) override { VSS_TRACE(SetSerialNumber, serial); }
    std::string GetSerialNumber() override { return VSS_TRACE(GetSerialNumber); }
    void SetSettingUnknown(bool unknown) override { VSS_TRACE(SetSettingUnknown, unknown); }
    bool GetSettingUnknown() override { return VSS_TRACE(GetSettingUnknown); }
    NamedCodes GetSpinstandTypeList() override { return VSS_TRACE(GetSpinstandTypeList); }
    void SetSpinstandType(std::int16_t type) override { VSS_TRACE(SetSpinstandType, type); }
    std::int16_t GetSpinstandType() override { return VSS_TRACE(GetSpinstandType); }
    void SetHeadFace(std::int32_t face) override { VSS_TRACE(SetHeadFace, face); }
    std::int32_t GetHeadFace() override { return VSS_TRACE(GetHeadFace); }
    void SetDiskSizeRange(double min, double max) override { VSS_TRACE(SetDiskSizeRange, min, max); }
    DoubleRange GetDiskSizeRange() override { return VSS_TRACE(GetDiskSizeRange); }
    void SetStopperPosition(std::int16_t index, double position) override {
        VSS_TRACE(SetStopperPosition, index, position);
    }
    double GetStopperPosition(std::int16_t index) override { return VSS_TRACE(GetStopperPosition, index); }
    PositionRecord GetMeasurementPosition(std::int16_t index) override {
        return trace_("GetMeasurementPosition", [&] { return RadiusSkew{inner_->GetMeasurementPosition(index)}; },
                      index)
            .record;
    }
    void SetStageGeometry(std::int16_t index, double value) override { VSS_TRACE(SetStageGeometry, index, value); }
    double GetStageGeometry(std::int16_t index) override { return VSS_TRACE(GetStageGeometry, index); }
    void SetSpeedRange(std::int32_t min, std::int32_t max) override { VSS_TRACE(SetSpeedRange, min, max); }
    SpeedRange GetSpeedRange() override { return VSS_TRACE(GetSpeedRange); }
    void SetSpindleState(std::int32_t state) override { VSS_TRACE(SetSpindleState, state); }
    std::int32_t GetSpindleState() override { return VSS_TRACE(GetSpindleState); }
    void SetSpindleRpm(std::int32_t rpm) override { VSS_TRACE(SetSpindleRpm, rpm); }
    std::int32_t GetSpindleRpm() override { return VSS_TRACE(GetSpindleRpm); }
    void MoveToPosition(std::int16_t position) override { VSS_TRACE(MoveToPosition, position); }
    StagePositionFlags GetStagePositionFlags() override { return VSS_TRACE(GetStagePositionFlags); }
    void SetHeadLoaderState(bool up) override { VSS_TRACE(SetHeadLoaderState, up); }
    bool GetHeadLoaderState() override { return VSS_TRACE(GetHeadLoaderState); }
    void SetLockdown(bool lockdown) override { VSS_TRACE(SetLockdown, lockdown); }
    bool GetLockdown() override { return VSS_TRACE(GetLockdown); }
    bool GetLockdownSensor() override { return VSS_TRACE(GetLockdownSensor); }
    void SetStopper(bool up) override { VSS_TRACE(SetStopper, up); }
    bool GetStopper() override { return VSS_TRACE(GetStopper); }
    StopperSensors GetStopperSensors() override { return VSS_TRACE(GetStopperSensors); }
    void SetStageMotor(std::int32_t code) override { VSS_TRACE(SetStageMotor, code); }
    std::int32_t GetStageMotor() override { return VSS_TRACE(GetStageMotor); }
    void Jog(bool toInner, std::int32_t pulses) override { VSS_TRACE(Jog, toInner, pulses); }
    bool GetSpindleSet() override { return VSS_TRACE(GetSpindleSet); }
    bool GetVacuum() override { return VSS_TRACE(GetVacuum); }
    bool GetOuterCover() override { return VSS_TRACE(GetOuterCover); }
    bool GetEmergency() override { return VSS_TRACE(GetEmergency); }
    Variant GetStageRegion() override { return VSS_TRACE(GetStageRegion); }
    void SetPiezoSerial(const std::string& serial) override { VSS_TRACE(SetPiezoSerial, serial); }
    std::string GetPiezoSerial() override { return VSS_TRACE(GetPiezoSerial); }
    void SetPiezoLoop(bool closed) override { VSS_TRACE(SetPiezoLoop, closed); }
    bool GetPiezoLoop() override { return VSS_TRACE(GetPiezoLoop); }
    NameList GetPiezoAdjustList() override { return VSS_TRACE(GetPiezoAdjustList); }
    void SetPiezoAdjust(std::int16_t index, std::int32_t dac) override { VSS_TRACE(SetPiezoAdjust, index, dac); }
    std::int32_t GetPiezoAdjust(std::int16_t index) override { return VSS_TRACE(GetPiezoAdjust, index); }
    NameList GetPiezoCalCoefNames() override { return VSS_TRACE(GetPiezoCalCoefNames); }
    void SetPiezoCalCoef(const PiezoCalCoef& coef) override { VSS_TRACE(SetPiezoCalCoef, coef); }
    PiezoCalCoef GetPiezoCalCoef() override { return VSS_TRACE(GetPiezoCalCoef); }
    PiezoCalData GetPiezoCalData() override { return VSS_TRACE(GetPiezoCalData); }
    void SetPiezoControlData(const PiezoControlData& data) override { VSS_TRACE(SetPiezoControlData, data); }
    PiezoControlData GetPiezoControlData() override { return VSS_TRACE(GetPiezoControlData); }
    bool GetPiezoBalanced() override { return VSS_TRACE(GetPiezoBalanced); }
    PropertyList GetStagePropertyList() override { return VSS_TRACE(GetStagePropertyList); }
    NamedCodes GetStagePropertyChoices(std::int16_t id) override { return VSS_TRACE(GetStagePropertyChoices, id); }
    void SetStageProperty(std::int16_t index, const Variant& value) override {
        VSS_TRACE(SetStageProperty, index, value);
    }
    Variant GetStageProperty(std::int16_t id) override { return VSS_TRACE(GetStageProperty, id); }
    NameList GetBacklashCompensationList() override {
        return VSS_TRACE(GetBacklashCompensationList);
    }
    std::int32_t GetBacklashCompensation(std::int16_t index) override {
        return VSS_TRACE(GetBacklashCompensation, index);
    }
    void SetBacklashCompensation(std::int16_t index, std::int32_t value) override {
        VSS_TRACE(SetBacklashCompensation, index, value);
    }
    std::string GetBacklashDate() override { return VSS_TRACE(GetBacklashDate); }
    PropertyList GetSpindlePropertyList() override { return VSS_TRACE(GetSpindlePropertyList); }
    NamedCodes GetSpindlePropertyChoices(std::int16_t id) override {
        return VSS_TRACE(GetSpindlePropertyChoices, id);
    }
    void SetSpindleProperty(std::int16_t index, const Variant& value) override {
        VSS_TRACE(SetSpindleProperty, index, value);
    }
    Variant GetSpindleProperty(std::int16_t id) override { return VSS_TRACE(GetSpindleProperty, id); }
    PropertyList GetSpindleDriverItems() override { return VSS_TRACE(GetSpindleDriverItems); }
    NamedCodes GetSpindleDriverChoices(std::int16_t id) override { return VSS_TRACE(GetSpindleDriverChoices, id); }
    Variant GetSpindleDriver(std::int16_t index) override { return VSS_TRACE(GetSpindleDriver, index); }
    void SaveVersionData() override { VSS_TRACE(SaveVersionData); }
    void RecallVersionData() override { VSS_TRACE(RecallVersionData); }
    void SaveSpinstandConfiguration() override { VSS_TRACE(SaveSpinstandConfiguration); }
    void RecallSpinstandConfiguration() override { VSS_TRACE(RecallSpinstandConfiguration); }
    void SaveCustomerConfiguration() override { VSS_TRACE(SaveCustomerConfiguration); }
    void RecallCustomerConfiguration() override { VSS_TRACE(RecallCustomerConfiguration); }
    void SaveStageProperty() override { VSS_TRACE(SaveStageProperty); }
    void RecallStageProperty() override { VSS_TRACE(RecallStageProperty); }
    void SaveSpindleProperty() override { VSS_TRACE(SaveSpindleProperty); }
    void RecallSpindleProperty() override { VSS_TRACE(RecallSpindleProperty); }
    void SavePiezoData() override { VSS_TRACE(SavePiezoData); }
    void RecallPiezoData() override { VSS_TRACE(RecallPiezoData); }
    void SaveBacklashCompensation() override { VSS_TRACE(SaveBacklashCompensation); }
    void RecallBacklashCompensation() override { VSS_TRACE(RecallBacklashCompensation); }
};

#undef VSS_TRACE

using AllInterfaces = std::tuple<IDriver, IDriverPiezo, IDriverStage, IDriverLoadPosition, IDriverHeadLoader,
                                 IDriverSpindle, IDriverClamp, IDriverHeadFace, IDriverIndex, IDriverInterlock,
                                 IDriverDiskSize, IDriverService>;

// Calls visit(I*) with a null pointer of the interface type whose identifier is iid; false when none matches.
template <class Visit, std::size_t N = 0>
bool visitInterface(const Guid& iid, Visit&& visit) {
    if constexpr (N == std::tuple_size_v<AllInterfaces>) {
        return false;
    } else {
        using I = std::tuple_element_t<N, AllInterfaces>;
        if (I::kIid == iid) {
            visit(static_cast<I*>(nullptr));
            return true;
        }
        return visitInterface<Visit, N + 1>(iid, std::forward<Visit>(visit));
    }
}

std::string findName(const Guid& iid) {
    std::string name = iid.toString();
    visitInterface(iid, [&](auto* tag) { name = std::decay_t<decltype(*tag)>::kName; });
    return name;
}

class TracedObject final : public DriverObject {
public:
    TracedObject(std::shared_ptr<DriverObject> inner, std::shared_ptr<TraceSink> sink, CallGate gate,
                 CallGate after)
        : inner_(std::move(inner)), sink_(std::move(sink)), gate_(std::move(gate)),
          after_(std::move(after)) {}

    std::shared_ptr<Interface> QueryInterface(const Guid& iid) override {
        const std::string head = "CoDriver.QueryInterface(" + findName(iid) + ")";
        std::shared_ptr<Interface> result;
        try {
            if (gate_) {
                gate_(head); // a fault injected for this interface alone
                gate_("CoDriver.QueryInterface");
            }
            result = inner_->QueryInterface(iid);
        } catch (const std::exception& e) {
            sink_->write(head + " !! " + oneLine(e.what()));
            throw;
        }
        sink_->write(head + " -> " + iid.toString());
        std::shared_ptr<Interface> wrapped = result;
        visitInterface(iid, [&](auto* tag) {
            using I = std::decay_t<decltype(*tag)>;
            if (auto typed = std::dynamic_pointer_cast<I>(result))
                wrapped = std::make_shared<Traced<I>>(std::move(typed), sink_, gate_, after_);
        });
        return wrapped;
    }

private:
    std::shared_ptr<DriverObject> inner_;
    std::shared_ptr<TraceSink> sink_;
    CallGate gate_;
    CallGate after_;
};

} // namespace

std::shared_ptr<DriverObject> WithTrace(std::shared_ptr<DriverObject> inner, std::shared_ptr<TraceSink> sink,
                                        CallGate gate, CallGate after) {
    if (!inner || !sink)
        throw std::invalid_argument("WithTrace needs a driver object and a trace sink.");
    return std::make_shared<TracedObject>(std::move(inner), std::move(sink), std::move(gate),
                                          std::move(after));
}

std::shared_ptr<DriverObject> WithTrace(std::shared_ptr<DriverObject> inner, std::shared_ptr<TraceSink> sink) {
    return WithTrace(std::move(inner), std::move(sink), nullptr);
}

} // namespace vss
