#include "tests/com/ComTestSupport.h"

#include "driver/Handles.h"

#include <sstream>
#include <stdexcept>

namespace vss::com::test {

namespace {

IUnknown* createRaw() {
    CLSID clsid{};
    const std::wstring progId = toWide(kProgId);
    if (FAILED(CLSIDFromProgID(progId.c_str(), &clsid)))
        throw std::runtime_error("the simulator server is not registered");
    IUnknown* unknown = nullptr;
    if (FAILED(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IUnknown,
                                reinterpret_cast<void**>(&unknown))))
        throw std::runtime_error("the simulator server did not create its object");
    return unknown;
}

ISimControl* controlOf(IUnknown* object) {
    ISimControl* control = nullptr;
    if (FAILED(object->QueryInterface(toIid(kSimControlIid), reinterpret_cast<void**>(&control))))
        throw std::runtime_error("the simulator server has no control interface");
    return control;
}

void check(HRESULT hr, const char* what) {
    if (FAILED(hr))
        throw std::runtime_error(std::string("control call failed: ") + what);
}

// One call of the run: a DriverError is an outcome the traces record, nothing more.
template <class F>
void attempt(F f) {
    try {
        f();
    } catch (const DriverError&) {
    }
}

} // namespace

ServerInstrument::ServerInstrument(long listLower) {
    IUnknown* previous = createRaw();
    ISimControl* restart = controlOf(previous);
    Bstr memory(":memory:");
    const HRESULT hr = restart->RestartInstrument(memory.get(), listLower);
    restart->Release();
    previous->Release();
    check(hr, "RestartInstrument");
    object_ = createRaw();
    control_ = controlOf(object_);
}

ServerInstrument::~ServerInstrument() {
    control_->Release();
    object_->Release();
}

std::vector<std::string> ServerInstrument::trace() {
    Bstr text;
    check(control_->GetTrace(text.out()), "GetTrace");
    std::vector<std::string> lines;
    std::istringstream in(textOrEmpty(text.get()));
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

void ServerInstrument::clearTrace() {
    check(control_->ClearTrace(), "ClearTrace");
}

void ServerInstrument::failOperation(const std::string& operation, const std::string& description, long times) {
    Bstr op(operation), text(description);
    check(control_->FailOperation(op.get(), text.get(), times), "FailOperation");
}

AllocationCounts ServerInstrument::counts() {
    AllocationCounts c;
    check(control_->GetAllocationCounts(&c), "GetAllocationCounts");
    return c;
}

void exerciseEveryOperation(DriverObject& object) {
    DriverHandles h;
    acquireHandles(object, h);
    IDriver& d = *h.driver;
    IDriverService& s = *h.service;

    // A call before the session is open, then the session.
    attempt([&] { d.GetState(); });
    attempt([&] { d.Open("QTB::R2208C"); });
    attempt([&] { s.BeginService(); });
    attempt([&] { d.GetState(); });
    attempt([&] { d.Initialize(); });

    // Identity texts, with quotes and characters beyond ASCII on the way through.
    attempt([&] { s.SetHardwareRevision("HW \"B\" 2.1 µ"); });
    attempt([&] { d.GetHardwareRevision(); });
    attempt([&] { s.GetHardwareRevision(); });
    attempt([&] { d.GetFirmwareRevision(); });
    attempt([&] { s.GetFirmwareRevision(); });
    attempt([&] { d.GetDriverRevision(); });
    attempt([&] { s.GetDriverRevision(); });
    attempt([&] { s.SetSerialNumber("SN-0042"); });
    attempt([&] { d.GetSerialNumber(); });
    attempt([&] { s.GetSerialNumber(); });

    // Measurement settings.
    attempt([&] { d.GetDiskSizeLimit(); });
    attempt([&] { d.GetSpeedRange(); });
    attempt([&] { d.GetLoadMethodList(); });
    attempt([&] { d.SetLoadMethod(d.GetLoadMethod()); });
    attempt([&] {
        const DataArea a = d.GetDataArea();
        d.SetDataArea(a.innerRadius, a.maxTrack, a.pitch);
    });
    attempt([&] { d.GetFinePositionLimit(); });
    attempt([&] { d.SetHomeState(homestate::Standby); });
    attempt([&] { d.GetHomeState(); });
    attempt([&] { d.SetSpindleSpeed(5400); });
    attempt([&] { d.GetSpindleSpeed(); });
    attempt([&] { h.diskSize->SetDiskSizeRestriction(!h.diskSize->GetDiskSizeRestriction()); });
    attempt([&] {
        const LoadPosition p = h.loadPosition->GetLoadPosition(loadposition::Load);
        h.loadPosition->SetLoadPosition(loadposition::Load, {p.position.radius, kNoSkew}, -1);
    });
    attempt([&] { h.loadPosition->GetLoadPosition(loadposition::Unload); });
    attempt([&] { h.spindle->GetRotation(); });
    attempt([&] { h.headFace->GetFace(); });
    attempt([&] { h.index->GetIndexPolarity(); });

    // Operation: clamp, motor, load, move, unload.
    attempt([&] { h.interlock->GetInterlock(); });
    attempt([&] { h.clamp->SetClamp(true); });
    attempt([&] { h.clamp->GetClamp(); });
    attempt([&] { h.spindle->SetMotor(true); });
    attempt([&] { h.spindle->GetMotor(); });
    attempt([&] { h.headLoader->GetHeadLoader(); });
    attempt([&] { d.Load(); });
    attempt([&] { h.headLoader->SetHeadLoader(true); });
    attempt([&] { d.GetPosition(); });
    attempt([&] {
        double radius = s.GetMeasurementPosition(1).radius;
        h.stage->MoveTo(radius);
    });
    attempt([&] { h.piezo->GetPiezoReading(); });
    attempt([&] { d.Unload(); });
    attempt([&] { d.Reset(); });

    // Spinstand configuration.
    attempt([&] { s.SetSettingUnknown(s.GetSettingUnknown()); });
    attempt([&] { s.GetSpinstandTypeList(); });
    attempt([&] { s.SetSpinstandType(s.GetSpinstandType()); });
    attempt([&] { s.SetHeadFace(s.GetHeadFace()); });
    attempt([&] {
        const DoubleRange r = s.GetDiskSizeRange();
        s.SetDiskSizeRange(r.min, r.max);
    });
    attempt([&] {
        const PropertyList items = s.GetSpindleDriverItems();
        for (std::int16_t id : items.ids) {
            attempt([&] { s.GetSpindleDriverChoices(id); });
            attempt([&] { s.GetSpindleDriver(id); });
        }
    });

    // Customer configuration.
    for (std::int16_t i : {stopper::Inner, stopper::Outer}) {
        attempt([&] { s.SetStopperPosition(i, s.GetStopperPosition(i)); });
        attempt([&] { s.GetMeasurementPosition(i); });
    }
    for (std::int16_t i : {geometry::Stage2Spindle, geometry::Stage2Ref, geometry::StageOffset})
        attempt([&] { s.SetStageGeometry(i, s.GetStageGeometry(i)); });
    attempt([&] { s.GetStopperPosition(7); }); // out of range: the driver's refusal crosses too

    // Service panel: direct control and inputs.
    attempt([&] {
        const SpeedRange r = s.GetSpeedRange();
        s.SetSpeedRange(r.min, r.max);
    });
    attempt([&] { s.SetSpindleState(spindlestate::Standby); });
    attempt([&] { s.GetSpindleState(); });
    attempt([&] { s.SetSpindleRpm(7200); });
    attempt([&] { s.GetSpindleRpm(); });
    attempt([&] { s.MoveToPosition(stageposition::Outer); });
    attempt([&] { s.GetStagePositionFlags(); });
    attempt([&] { s.SetHeadLoaderState(true); });
    attempt([&] { s.GetHeadLoaderState(); });
    attempt([&] { s.SetLockdown(false); });
    attempt([&] { s.GetLockdown(); });
    attempt([&] { s.GetLockdownSensor(); });
    attempt([&] { s.SetStopper(true); });
    attempt([&] { s.GetStopper(); });
    attempt([&] { s.GetStopperSensors(); });
    attempt([&] { s.SetStageMotor(1); });
    attempt([&] { s.GetStageMotor(); });
    attempt([&] { s.Jog(true, 25); });
    attempt([&] { s.GetSpindleSet(); });
    attempt([&] { s.GetVacuum(); });
    attempt([&] { s.GetOuterCover(); });
    attempt([&] { s.GetEmergency(); });
    attempt([&] { s.GetStageRegion(); });
    attempt([&] { s.ResetService(); });

    // Piezo.
    attempt([&] { s.SetPiezoSerial("PZ-77"); });
    attempt([&] { s.GetPiezoSerial(); });
    attempt([&] { s.SetPiezoLoop(true); });
    attempt([&] { s.GetPiezoLoop(); });
    attempt([&] {
        const NameList points = s.GetPiezoAdjustList();
        for (std::size_t k = 0; k < points.size(); ++k) {
            const std::int16_t index = points.indexAt(k);
            attempt([&] { s.SetPiezoAdjust(index, s.GetPiezoAdjust(index) + 3); });
        }
    });
    attempt([&] { s.GetPiezoBalanced(); });
    attempt([&] { s.GetPiezoCalCoefNames(); });
    attempt([&] {
        PiezoCalCoef c = s.GetPiezoCalCoef();
        if (!c.coef.empty())
            c.coef.front() += 0.125;
        s.SetPiezoCalCoef(c);
    });
    attempt([&] { s.GetPiezoCalData(); });
    attempt([&] { s.SetPiezoControlData(s.GetPiezoControlData()); });

    // Property lists: every value read and written back, whatever its type.
    attempt([&] {
        const PropertyList list = s.GetStagePropertyList();
        for (std::size_t i = 0; i < list.ids.size(); ++i) {
            const std::int16_t id = list.ids[i];
            attempt([&] { s.GetStagePropertyChoices(id); });
            attempt([&] { s.SetStageProperty(static_cast<std::int16_t>(i), s.GetStageProperty(id)); });
        }
    });
    attempt([&] {
        const PropertyList list = s.GetSpindlePropertyList();
        for (std::size_t i = 0; i < list.ids.size(); ++i) {
            const std::int16_t id = list.ids[i];
            attempt([&] { s.GetSpindlePropertyChoices(id); });
            attempt([&] { s.SetSpindleProperty(static_cast<std::int16_t>(i), s.GetSpindleProperty(id)); });
        }
    });
    attempt([&] { s.SetStageProperty(0, Variant("not a number")); });
    attempt([&] {
        const NameList entries = s.GetBacklashCompensationList();
        for (std::size_t k = 0; k < entries.size(); ++k) {
            const std::int16_t index = entries.indexAt(k);
            attempt([&] { s.SetBacklashCompensation(index, s.GetBacklashCompensation(index) + 1); });
        }
    });
    attempt([&] { s.GetBacklashDate(); });

    // Every configuration group to non-volatile memory and back.
    attempt([&] { s.SaveVersionData(); });
    attempt([&] { s.RecallVersionData(); });
    attempt([&] { s.SaveSpinstandConfiguration(); });
    attempt([&] { s.RecallSpinstandConfiguration(); });
    attempt([&] { s.SaveCustomerConfiguration(); });
    attempt([&] { s.RecallCustomerConfiguration(); });
    attempt([&] { s.SaveStageProperty(); });
    attempt([&] { s.RecallStageProperty(); });
    attempt([&] { s.SaveSpindleProperty(); });
    attempt([&] { s.RecallSpindleProperty(); });
    attempt([&] { s.SavePiezoData(); });
    attempt([&] { s.RecallPiezoData(); });
    attempt([&] { s.SaveBacklashCompensation(); });
    attempt([&] { s.RecallBacklashCompensation(); });
    attempt([&] { s.GetBacklashDate(); });

    attempt([&] { d.Close(); });
}

} // namespace vss::com::test
