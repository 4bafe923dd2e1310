#include "com/ComClient.h"

#include "driver/ProgId.h"

#include "com/ComCall.h"

namespace vss::com {

namespace {

template <class I>
class Client;

template <>
class Client<IDriver> final : public ComInterface<IDriver> {
public:
    using ComInterface::ComInterface;
    void Open(const std::string& resource) override {
        Bstr r(resource);
        call("Open", &Raw::Open, r.get());
    }
    void Close() override { call("Close", &Raw::Close); }
    void Initialize() override { call("Initialize", &Raw::Initialize); }
    void Reset() override { call("Reset", &Raw::Reset); }
    DoubleRange GetDiskSizeLimit() override {
        DoubleRange r;
        call("GetDiskSizeLimit", &Raw::GetDiskSizeLimit, &r.min, &r.max);
        return r;
    }
    SpeedRange GetSpeedRange() override {
        long lo = 0, hi = 0;
        call("GetSpeedRange", &Raw::GetSpeedRange, &lo, &hi);
        return {lo, hi};
    }
    NamedCodes GetLoadMethodList() override { return getNamedCodes("GetLoadMethodList", &Raw::GetLoadMethodList); }
    void Load() override { call("Load", &Raw::Load); }
    void Unload() override { call("Unload", &Raw::Unload); }
    HeadPosition GetPosition() override {
        long track = 0;
        HeadPosition p;
        call("GetPosition", &Raw::GetPosition, &track, &p.radius, &p.skew);
        p.track = track;
        return p;
    }
    DataArea GetDataArea() override {
        long maxTrack = 0;
        DataArea a;
        call("GetDataArea", &Raw::GetDataArea, &a.innerRadius, &maxTrack, &a.pitch);
        a.maxTrack = maxTrack;
        return a;
    }
    void SetDataArea(double innerRadius, std::int32_t maxTrack, double pitch) override {
        call("SetDataArea", &Raw::SetDataArea, innerRadius, long{maxTrack}, pitch);
    }
    std::int32_t GetSpindleSpeed() override { return get<long>("GetSpindleSpeed", &Raw::GetSpindleSpeed); }
    void SetSpindleSpeed(std::int32_t rpm) override { call("SetSpindleSpeed", &Raw::SetSpindleSpeed, long{rpm}); }
    std::int32_t GetHomeState() override { return get<long>("GetHomeState", &Raw::GetHomeState); }
    void SetHomeState(std::int32_t s) override { call("SetHomeState", &Raw::SetHomeState, long{s}); }
    std::int16_t GetLoadMethod() override { return get<short>("GetLoadMethod", &Raw::GetLoadMethod); }
    void SetLoadMethod(std::int16_t m) override { call("SetLoadMethod", &Raw::SetLoadMethod, short{m}); }
    std::int32_t GetState() override { return get<long>("GetState", &Raw::GetState); }
    double GetFinePositionLimit() override { return get<double>("GetFinePositionLimit", &Raw::GetFinePositionLimit); }
    std::string GetHardwareRevision() override { return getText("GetHardwareRevision", &Raw::GetHardwareRevision); }
    std::string GetFirmwareRevision() override { return getText("GetFirmwareRevision", &Raw::GetFirmwareRevision); }
    std::string GetDriverRevision() override { return getText("GetDriverRevision", &Raw::GetDriverRevision); }
    std::string GetSerialNumber() override { return getText("GetSerialNumber", &Raw::GetSerialNumber); }
};

template <>
class Client<IDriverPiezo> final : public ComInterface<IDriverPiezo> {
public:
    using ComInterface::ComInterface;
    double GetPiezoReading() override { return get<double>("GetPiezoReading", &Raw::GetPiezoReading); }
};

template <>
class Client<IDriverStage> final : public ComInterface<IDriverStage> {
public:
    using ComInterface::ComInterface;
    void MoveTo(double& radius) override { call("MoveTo", &Raw::MoveTo, &radius); }
};

template <>
class Client<IDriverLoadPosition> final : public ComInterface<IDriverLoadPosition> {
public:
    using ComInterface::ComInterface;
    LoadPosition GetLoadPosition(std::int16_t which) override {
        com::PositionRecord p{};
        long rpm = 0;
        call("GetLoadPosition", &Raw::GetLoadPosition, short{which}, &p, &rpm);
        return {{p.radius, p.skew}, rpm};
    }
    void SetLoadPosition(std::int16_t which, const vss::PositionRecord& position, std::int32_t rpm) override {
        com::PositionRecord p{position.radius, position.skew};
        call("SetLoadPosition", &Raw::SetLoadPosition, short{which}, &p, long{rpm});
    }
};

template <>
class Client<IDriverHeadLoader> final : public ComInterface<IDriverHeadLoader> {
public:
    using ComInterface::ComInterface;
    bool GetHeadLoader() override { return getBool("GetHeadLoader", &Raw::GetHeadLoader); }
    void SetHeadLoader(bool down) override { call("SetHeadLoader", &Raw::SetHeadLoader, toVariantBool(down)); }
};

template <>
class Client<IDriverSpindle> final : public ComInterface<IDriverSpindle> {
public:
    using ComInterface::ComInterface;
    bool GetMotor() override { return getBool("GetMotor", &Raw::GetMotor); }
    void SetMotor(bool on) override { call("SetMotor", &Raw::SetMotor, toVariantBool(on)); }
    std::int32_t GetRotation() override { return get<long>("GetRotation", &Raw::GetRotation); }
};

template <>
class Client<IDriverClamp> final : public ComInterface<IDriverClamp> {
public:
    using ComInterface::ComInterface;
    bool GetClamp() override { return getBool("GetClamp", &Raw::GetClamp); }
    void SetClamp(bool on) override { call("SetClamp", &Raw::SetClamp, toVariantBool(on)); }
};

template <>
class Client<IDriverHeadFace> final : public ComInterface<IDriverHeadFace> {
public:
    using ComInterface::ComInterface;
    std::int32_t GetFace() override { return get<long>("GetFace", &Raw::GetFace); }
};

template <>
class Client<IDriverIndex> final : public ComInterface<IDriverIndex> {
public:
    using ComInterface::ComInterface;
    bool GetIndexPolarity() override { return getBool("GetIndexPolarity", &Raw::GetIndexPolarity); }
};

template <>
class Client<IDriverInterlock> final : public ComInterface<IDriverInterlock> {
public:
    using ComInterface::ComInterface;
    bool GetInterlock() override { return getBool("GetInterlock", &Raw::GetInterlock); }
};

template <>
class Client<IDriverDiskSize> final : public ComInterface<IDriverDiskSize> {
public:
    using ComInterface::ComInterface;
    bool GetDiskSizeRestriction() override { return getBool("GetDiskSizeRestriction", &Raw::GetDiskSizeRestriction); }
    void SetDiskSizeRestriction(bool on) override {
        call("SetDiskSizeRestriction", &Raw::SetDiskSizeRestriction, toVariantBool(on));
    }
};

template <>
class Client<IDriverService> final : public ComInterface<IDriverService> {
public:
    using ComInterface::ComInterface;

    void BeginService() override { call("BeginService", &Raw::BeginService); }
    void ResetService() override { call("ResetService", &Raw::ResetService); }
    void SetHardwareRevision(const std::string& revision) override {
        Bstr r(revision);
        call("SetHardwareRevision", &Raw::SetHardwareRevision, r.get());
    }
    std::string GetHardwareRevision() override { return getText("GetHardwareRevision", &Raw::GetHardwareRevision); }
    std::string GetDriverRevision() override { return getText("GetDriverRevision", &Raw::GetDriverRevision); }
    std::string GetFirmwareRevision() override { return getText("GetFirmwareRevision", &Raw::GetFirmwareRevision); }
    void SetSerialNumber(const std::string& serial) override {
        Bstr s(serial);
        call("SetSerialNumber", &Raw::SetSerialNumber, s.get());
    }
    std::string GetSerialNumber() override { return getText("GetSerialNumber", &Raw::GetSerialNumber); }

    void SetSettingUnknown(bool unknown) override {
        call("SetSettingUnknown", &Raw::SetSettingUnknown, toVariantBool(unknown));
    }
    bool GetSettingUnknown() override { return getBool("GetSettingUnknown", &Raw::GetSettingUnknown); }
    NamedCodes GetSpinstandTypeList() override {
        return getNamedCodes("GetSpinstandTypeList", &Raw::GetSpinstandTypeList);
    }
    void SetSpinstandType(std::int16_t type) override { call("SetSpinstandType", &Raw::SetSpinstandType, short{type}); }
    std::int16_t GetSpinstandType() override { return get<short>("GetSpinstandType", &Raw::GetSpinstandType); }
    void SetHeadFace(std::int32_t face) override { call("SetHeadFace", &Raw::SetHeadFace, long{face}); }
    std::int32_t GetHeadFace() override { return get<long>("GetHeadFace", &Raw::GetHeadFace); }
    void SetDiskSizeRange(double min, double max) override { call("SetDiskSizeRange", &Raw::SetDiskSizeRange, min, max); }
    DoubleRange GetDiskSizeRange() override {
        DoubleRange r;
        call("GetDiskSizeRange", &Raw::GetDiskSizeRange, &r.min, &r.max);
        return r;
    }

    void SetStopperPosition(std::int16_t index, double position) override {
        call("SetStopperPosition", &Raw::SetStopperPosition, short{index}, position);
    }
    double GetStopperPosition(std::int16_t index) override {
        return get<double>("GetStopperPosition", &Raw::GetStopperPosition, short{index});
    }
    vss::PositionRecord GetMeasurementPosition(std::int16_t index) override {
        vss::PositionRecord p;
        call("GetMeasurementPosition", &Raw::GetMeasurementPosition, short{index}, &p.radius, &p.skew);
        return p;
    }
    void SetStageGeometry(std::int16_t index, double value) override {
        call("SetStageGeometry", &Raw::SetStageGeometry, short{index}, value);
    }
    double GetStageGeometry(std::int16_t index) override {
        return get<double>("GetStageGeometry", &Raw::GetStageGeometry, short{index});
    }
    void SetSpeedRange(std::int32_t min, std::int32_t max) override {
        call("SetSpeedRange", &Raw::SetSpeedRange, long{min}, long{max});
    }
    SpeedRange GetSpeedRange() override {
        long lo = 0, hi = 0;
        call("GetSpeedRange", &Raw::GetSpeedRange, &lo, &hi);
        return {lo, hi};
    }

    void SetSpindleState(std::int32_t s) override { call("SetSpindleState", &Raw::SetSpindleState, long{s}); }
    std::int32_t GetSpindleState() override { return get<long>("GetSpindleState", &Raw::GetSpindleState); }
    void SetSpindleRpm(std::int32_t rpm) override { call("SetSpindleRpm", &Raw::SetSpindleRpm, long{rpm}); }
    std::int32_t GetSpindleRpm() override { return get<long>("GetSpindleRpm", &Raw::GetSpindleRpm); }
    void MoveToPosition(std::int16_t position) override {
        call("MoveToPosition", &Raw::MoveToPosition, short{position});
    }
    StagePositionFlags GetStagePositionFlags() override {
        VARIANT_BOOL home = 0, inner = 0, outer = 0;
        call("GetStagePositionFlags", &Raw::GetStagePositionFlags, &home, &inner, &outer);
        return {boolOf(home), boolOf(inner), boolOf(outer)};
    }
    void SetHeadLoaderState(bool up) override { call("SetHeadLoaderState", &Raw::SetHeadLoaderState, toVariantBool(up)); }
    bool GetHeadLoaderState() override { return getBool("GetHeadLoaderState", &Raw::GetHeadLoaderState); }
    void SetLockdown(bool lockdown) override { call("SetLockdown", &Raw::SetLockdown, toVariantBool(lockdown)); }
    bool GetLockdown() override { return getBool("GetLockdown", &Raw::GetLockdown); }
    bool GetLockdownSensor() override { return getBool("GetLockdownSensor", &Raw::GetLockdownSensor); }
    void SetStopper(bool up) override { call("SetStopper", &Raw::SetStopper, toVariantBool(up)); }
    bool GetStopper() override { return getBool("GetStopper", &Raw::GetStopper); }
    StopperSensors GetStopperSensors() override {
        VARIANT_BOOL up = 0, down = 0;
        call("GetStopperSensors", &Raw::GetStopperSensors, &up, &down);
        return {boolOf(up), boolOf(down)};
    }
    void SetStageMotor(std::int32_t code) override { call("SetStageMotor", &Raw::SetStageMotor, long{code}); }
    std::int32_t GetStageMotor() override { return get<long>("GetStageMotor", &Raw::GetStageMotor); }
    void Jog(bool toInner, std::int32_t pulses) override { call("Jog", &Raw::Jog, toVariantBool(toInner), long{pulses}); }
    bool GetSpindleSet() override { return getBool("GetSpindleSet", &Raw::GetSpindleSet); }
    bool GetVacuum() override { return getBool("GetVacuum", &Raw::GetVacuum); }
    bool GetOuterCover() override { return getBool("GetOuterCover", &Raw::GetOuterCover); }
    bool GetEmergency() override { return getBool("GetEmergency", &Raw::GetEmergency); }
    Variant GetStageRegion() override { return getValue("GetStageRegion", &Raw::GetStageRegion); }

    void SetPiezoSerial(const std::string& serial) override {
        Bstr s(serial);
        call("SetPiezoSerial", &Raw::SetPiezoSerial, s.get());
    }
    std::string GetPiezoSerial() override { return getText("GetPiezoSerial", &Raw::GetPiezoSerial); }
    void SetPiezoLoop(bool closed) override { call("SetPiezoLoop", &Raw::SetPiezoLoop, toVariantBool(closed)); }
    bool GetPiezoLoop() override { return getBool("GetPiezoLoop", &Raw::GetPiezoLoop); }
    NameList GetPiezoAdjustList() override {
        return getNameList("GetPiezoAdjustList", &Raw::GetPiezoAdjustList);
    }
    void SetPiezoAdjust(std::int16_t index, std::int32_t dac) override {
        call("SetPiezoAdjust", &Raw::SetPiezoAdjust, short{index}, long{dac});
    }
    std::int32_t GetPiezoAdjust(std::int16_t index) override {
        return get<long>("GetPiezoAdjust", &Raw::GetPiezoAdjust, short{index});
    }
    NameList GetPiezoCalCoefNames() override {
        return getNameList("GetPiezoCalCoefNames", &Raw::GetPiezoCalCoefNames);
    }
    void SetPiezoCalCoef(const PiezoCalCoef& c) override {
        OwnedVariant coef(listVariant(c.coef));
        call("SetPiezoCalCoef", &Raw::SetPiezoCalCoef, c.vmin, c.vmax, c.xmin, c.xmax, coef.get());
    }
    PiezoCalCoef GetPiezoCalCoef() override {
        PiezoCalCoef c;
        OwnedVariant coef;
        call("GetPiezoCalCoef", &Raw::GetPiezoCalCoef, &c.vmin, &c.vmax, &c.xmin, &c.xmax, coef.out());
        c.coef = decode("GetPiezoCalCoef", [&] { return doublesOf(coef.get(), "the coefficients"); });
        return c;
    }
    PiezoCalData GetPiezoCalData() override {
        OwnedVariant volt, position;
        call("GetPiezoCalData", &Raw::GetPiezoCalData, volt.out(), position.out());
        return decode("GetPiezoCalData", [&] {
            PiezoCalData d{doublesOf(volt.get(), "the voltages"), doublesOf(position.get(), "the positions")};
            sameLength(d.volt.size(), "the voltages", d.position.size(), "the positions");
            return d;
        });
    }
    void SetPiezoControlData(const PiezoControlData& d) override {
        OwnedVariant lth(listVariant(d.lth)), ta(listVariant(d.ta)), ks(listVariant(d.ks)),
            lstep(listVariant(d.lstep)), tstep(listVariant(d.tstep));
        call("SetPiezoControlData", &Raw::SetPiezoControlData, lth.get(), ta.get(), ks.get(), lstep.get(),
             tstep.get());
    }
    PiezoControlData GetPiezoControlData() override {
        OwnedVariant lth, ta, ks, lstep, tstep;
        call("GetPiezoControlData", &Raw::GetPiezoControlData, lth.out(), ta.out(), ks.out(), lstep.out(),
             tstep.out());
        return decode("GetPiezoControlData", [&] {
            PiezoControlData d{doublesOf(lth.get(), "Lth"), doublesOf(ta.get(), "Ta"), doublesOf(ks.get(), "Ks"),
                               doublesOf(lstep.get(), "Lstep"), doublesOf(tstep.get(), "Tstep")};
            for (const auto& [rows, name] : {std::pair{d.ta.size(), "Ta"}, std::pair{d.ks.size(), "Ks"},
                                             std::pair{d.lstep.size(), "Lstep"}, std::pair{d.tstep.size(), "Tstep"}})
                sameLength(d.lth.size(), "Lth", rows, name);
            return d;
        });
    }
    bool GetPiezoBalanced() override { return getBool("GetPiezoBalanced", &Raw::GetPiezoBalanced); }

    PropertyList GetStagePropertyList() override {
        return getPropertyList("GetStagePropertyList", &Raw::GetStagePropertyList);
    }
    NamedCodes GetStagePropertyChoices(std::int16_t id) override {
        return getNamedCodes("GetStagePropertyChoices", &Raw::GetStagePropertyChoices, short{id});
    }
    void SetStageProperty(std::int16_t index, const Variant& value) override {
        OwnedVariant v(valueVariant(value));
        call("SetStageProperty", &Raw::SetStageProperty, short{index}, v.get());
    }
    Variant GetStageProperty(std::int16_t id) override {
        return getValue("GetStageProperty", &Raw::GetStageProperty, short{id});
    }
    NameList GetBacklashCompensationList() override {
        return getNameList("GetBacklashCompensationList", &Raw::GetBacklashCompensationList);
    }
    std::int32_t GetBacklashCompensation(std::int16_t index) override {
        return get<long>("GetBacklashCompensation", &Raw::GetBacklashCompensation, short{index});
    }
    void SetBacklashCompensation(std::int16_t index, std::int32_t value) override {
        call("SetBacklashCompensation", &Raw::SetBacklashCompensation, short{index}, long{value});
    }
    std::string GetBacklashDate() override { return getText("GetBacklashDate", &Raw::GetBacklashDate); }
    PropertyList GetSpindlePropertyList() override {
        return getPropertyList("GetSpindlePropertyList", &Raw::GetSpindlePropertyList);
    }
    NamedCodes GetSpindlePropertyChoices(std::int16_t id) override {
        return getNamedCodes("GetSpindlePropertyChoices", &Raw::GetSpindlePropertyChoices, short{id});
    }
    void SetSpindleProperty(std::int16_t index, const Variant& value) override {
        OwnedVariant v(valueVariant(value));
        call("SetSpindleProperty", &Raw::SetSpindleProperty, short{index}, v.get());
    }
    Variant GetSpindleProperty(std::int16_t id) override {
        return getValue("GetSpindleProperty", &Raw::GetSpindleProperty, short{id});
    }
    PropertyList GetSpindleDriverItems() override {
        return getPropertyList("GetSpindleDriverItems", &Raw::GetSpindleDriverItems);
    }
    NamedCodes GetSpindleDriverChoices(std::int16_t id) override {
        return getNamedCodes("GetSpindleDriverChoices", &Raw::GetSpindleDriverChoices, short{id});
    }
    Variant GetSpindleDriver(std::int16_t index) override {
        return getValue("GetSpindleDriver", &Raw::GetSpindleDriver, short{index});
    }

    void SaveVersionData() override { call("SaveVersionData", &Raw::SaveVersionData); }
    void RecallVersionData() override { call("RecallVersionData", &Raw::RecallVersionData); }
    void SaveSpinstandConfiguration() override { call("SaveSpinstandConfiguration", &Raw::SaveSpinstandConfiguration); }
    void RecallSpinstandConfiguration() override {
        call("RecallSpinstandConfiguration", &Raw::RecallSpinstandConfiguration);
    }
    void SaveCustomerConfiguration() override { call("SaveCustomerConfiguration", &Raw::SaveCustomerConfiguration); }
    void RecallCustomerConfiguration() override {
        call("RecallCustomerConfiguration", &Raw::RecallCustomerConfiguration);
    }
    void SaveStageProperty() override { call("SaveStageProperty", &Raw::SaveStageProperty); }
    void RecallStageProperty() override { call("RecallStageProperty", &Raw::RecallStageProperty); }
    void SaveSpindleProperty() override { call("SaveSpindleProperty", &Raw::SaveSpindleProperty); }
    void RecallSpindleProperty() override { call("RecallSpindleProperty", &Raw::RecallSpindleProperty); }
    void SavePiezoData() override { call("SavePiezoData", &Raw::SavePiezoData); }
    void RecallPiezoData() override { call("RecallPiezoData", &Raw::RecallPiezoData); }
    void SaveBacklashCompensation() override { call("SaveBacklashCompensation", &Raw::SaveBacklashCompensation); }
    void RecallBacklashCompensation() override { call("RecallBacklashCompensation", &Raw::RecallBacklashCompensation); }
};

using Session = ComDriverObject::Session;

template <class I>
std::shared_ptr<Interface> queryFor(const std::shared_ptr<Session>& session) {
    void* p = nullptr;
    const HRESULT hr = session->unknown->QueryInterface(toIid(I::kIid), &p);
    if (FAILED(hr) || p == nullptr)
        throw DriverError("The driver object \"" + session->name + "\" does not implement " + std::string(I::kName) +
                              " " + I::kIid.toString() + ": " + failureText(hr, "no such interface") + ".",
                          hr);
    return std::make_shared<Client<I>>(static_cast<typename RawOf<I>::type*>(p), session);
}

struct InterfaceEntry {
    Guid iid;
    std::shared_ptr<Interface> (*query)(const std::shared_ptr<Session>&);
};
constexpr InterfaceEntry kInterfaces[] = {
    {IDriver::kIid, &queryFor<IDriver>},
    {IDriverPiezo::kIid, &queryFor<IDriverPiezo>},
    {IDriverStage::kIid, &queryFor<IDriverStage>},
    {IDriverLoadPosition::kIid, &queryFor<IDriverLoadPosition>},
    {IDriverHeadLoader::kIid, &queryFor<IDriverHeadLoader>},
    {IDriverSpindle::kIid, &queryFor<IDriverSpindle>},
    {IDriverClamp::kIid, &queryFor<IDriverClamp>},
    {IDriverHeadFace::kIid, &queryFor<IDriverHeadFace>},
    {IDriverIndex::kIid, &queryFor<IDriverIndex>},
    {IDriverInterlock::kIid, &queryFor<IDriverInterlock>},
    {IDriverDiskSize::kIid, &queryFor<IDriverDiskSize>},
    {IDriverService::kIid, &queryFor<IDriverService>},
};

// Enters a single-threaded apartment on the calling thread; true when the caller must leave it again.
bool enterApartment() {
    const HRESULT hr = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    if (hr == RPC_E_CHANGED_MODE)
        throw DriverError("The driver cannot be used from this thread: it is in a multithreaded COM apartment, and "
                          "the driver must be called from a single-threaded apartment.",
                          hr);
    if (FAILED(hr))
        throw DriverError("COM could not be initialised: " + failureText(hr, "initialisation failed") + ".", hr);
    return true; // S_OK and S_FALSE both count one entry
}

std::string systemText(HRESULT hr) {
    wchar_t* buffer = nullptr;
    const DWORD n = FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM |
                                       FORMAT_MESSAGE_IGNORE_INSERTS,
                                   nullptr, static_cast<DWORD>(hr), 0, reinterpret_cast<LPWSTR>(&buffer), 0, nullptr);
    std::string text = n > 0 && buffer != nullptr ? toUtf8(buffer, n) : std::string();
    if (buffer != nullptr)
        LocalFree(buffer);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' ' || text.back() == '.'))
        text.pop_back();
    return text;
}

// The description the object left for this interface's failed call, or "".
std::string errorInfoDescription(IUnknown* itf, const IID& iid) {
    ISupportErrorInfo* support = nullptr;
    if (FAILED(itf->QueryInterface(IID_ISupportErrorInfo, reinterpret_cast<void**>(&support))) || support == nullptr)
        return {};
    const bool supported = support->InterfaceSupportsErrorInfo(iid) == S_OK;
    support->Release();
    IErrorInfo* info = nullptr;
    if (!supported || GetErrorInfo(0, &info) != S_OK || info == nullptr)
        return {};
    // The description is the system's own string, not one of this program's counted ones.
    BSTR description = nullptr;
    std::string text;
    if (SUCCEEDED(info->GetDescription(&description)) && description != nullptr)
        text = toUtf8(description, SysStringLen(description));
    SysFreeString(description);
    info->Release();
    return text;
}

std::shared_ptr<Session> newSession(std::string_view name) {
    auto session = std::make_shared<Session>();
    session->name = name;
    session->leaveApartment = enterApartment();
    return session;
}

} // namespace

ComDriverObject::Session::~Session() {
    if (unknown != nullptr)
        unknown->Release();
    if (leaveApartment)
        CoUninitialize();
}

std::string failureText(HRESULT hr, std::string_view fallback) {
    std::string text = systemText(hr);
    if (text.empty())
        text = fallback;
    return text + " (" + hexCode(hr) + ")";
}

void throwCallFailure(HRESULT hr, IUnknown* itf, const IID& iid, std::string_view iface, std::string_view operation) {
    std::string description = errorInfoDescription(itf, iid);
    if (description.empty())
        description = failureText(hr, "The driver call " + std::string(iface) + "." + std::string(operation) +
                                          " failed");
    throw DriverError(description, hr);
}

std::shared_ptr<ComDriverObject> ComDriverObject::create(std::string_view progId) {
    auto session = newSession(progId);
    const std::string quoted = "\"" + std::string(progId) + "\"";
    CLSID clsid{};
    HRESULT hr = CLSIDFromProgID(toWide(progId).c_str(), &clsid);
    if (FAILED(hr)) {
        std::string hint;
        if (progId == kDriverProgId)
            hint = " Start the tool with --simulate to use the simulated instrument.";
        throw DriverError("Cannot create the driver object " + quoted + ": no driver is registered under this name: " +
                              failureText(hr, "unknown class") + "." + hint,
                          hr);
    }
    IUnknown* unknown = nullptr;
    const HRESULT inProcess =
        CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown, reinterpret_cast<void**>(&unknown));
    if (FAILED(inProcess)) {
        // A driver of the other bitness (or one registered as a local server) runs in its own process.
        hr = CoCreateInstance(clsid, nullptr, CLSCTX_LOCAL_SERVER, IID_IUnknown, reinterpret_cast<void**>(&unknown));
        if (FAILED(hr)) {
            const HRESULT shown = hr == REGDB_E_CLASSNOTREG ? inProcess : hr;
            throw DriverError("Cannot create the driver object " + quoted + ": " +
                                  failureText(shown, "the driver's class could not be started") + ".",
                              shown);
        }
    }
    session->unknown = unknown;
    return std::shared_ptr<ComDriverObject>(new ComDriverObject(std::move(session)));
}

std::shared_ptr<ComDriverObject> ComDriverObject::attach(IUnknown* object, std::string_view name) {
    std::shared_ptr<Session> session;
    try {
        session = newSession(name);
    } catch (...) {
        object->Release();
        throw;
    }
    session->unknown = object;
    return std::shared_ptr<ComDriverObject>(new ComDriverObject(std::move(session)));
}

std::shared_ptr<Interface> ComDriverObject::QueryInterface(const Guid& iid) {
    for (const InterfaceEntry& e : kInterfaces)
        if (e.iid == iid)
            return e.query(session_);
    throw DriverError("The driver object \"" + session_->name + "\" has no interface " + iid.toString() +
                      ": it is not one of the driver's twelve interfaces.");
}

} // namespace vss::com
