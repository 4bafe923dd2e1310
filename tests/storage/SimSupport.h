#pragma once

// A session on a simulated instrument with no memory file (its lists numbered from listLower), and a state that
// differs from the factory values in every group.

#include "driver/Handles.h"
#include "simulator/SimInstrument.h"

#include <memory>
#include <string>

namespace vss::test {

class SimSession {
public:
    explicit SimSession(std::int16_t listLower = 0)
        : instrument_(sim::SimOptions{.statePath = ":memory:", .listLower = listLower}),
          object_(instrument_.createObject()) {
        acquireHandles(*object_, handles);
        handles.driver->Open("QTB::R2208C");
        handles.service->BeginService();
    }
    ~SimSession() { handles.driver->Close(); }

    sim::SimInstrument& instrument() { return instrument_; }

    DriverHandles handles;

private:
    sim::SimInstrument instrument_;
    std::shared_ptr<DriverObject> object_;
};

// Changes every value that an import sets. Some values have more than 15 significant digits.
inline void setNonDefaultValues(const DriverHandles& h) {
    IDriver& d = *h.driver;
    IDriverService& s = *h.service;
    d.SetSpindleSpeed(5400);
    d.SetHomeState(homestate::Run);
    d.SetLoadMethod(d.GetLoadMethodList().codes.back());
    h.loadPosition->SetLoadPosition(loadposition::Load, {0.0325, 4.5}, 5400);
    h.loadPosition->SetLoadPosition(loadposition::Unload, {0.046, 12.5}, 4200);
    d.SetDataArea(0.0125, 48000, 0.00000061);
    h.diskSize->SetDiskSizeRestriction(false);

    s.SetStopperPosition(stopper::Outer, 28.5);
    s.SetStopperPosition(stopper::Inner, 9.0 + 1.0 / 3.0);
    s.SetStageGeometry(geometry::Stage2Spindle, 80.5);
    s.SetStageGeometry(geometry::Stage2Ref, 69.75);
    s.SetStageGeometry(geometry::StageOffset, 4.125);

    s.SetSettingUnknown(true);
    s.SetSpinstandType(s.GetSpinstandTypeList().codes.back());
    s.SetHeadFace(0);
    s.SetDiskSizeRange(0.0315, 0.0485);

    s.SetSpeedRange(3600, 12000);
    for (bool spindle : {true, false}) {
        const PropertyList list = spindle ? s.GetSpindlePropertyList() : s.GetStagePropertyList();
        for (std::int16_t id : list.ids) {
            const Variant now = spindle ? s.GetSpindleProperty(id) : s.GetStageProperty(id);
            Variant changed = now;
            if (now.type() == Variant::Type::Int16) {
                const NamedCodes choices = spindle ? s.GetSpindlePropertyChoices(id) : s.GetStagePropertyChoices(id);
                for (std::int16_t code : choices.codes)
                    if (code != now.int16())
                        changed = Variant(code);
            } else if (now.type() == Variant::Type::Int32) {
                changed = Variant(std::int32_t{now.int32() + 7});
            } else if (now.type() == Variant::Type::Double) {
                changed = Variant(now.dbl() * 1.25);
            } else if (now.type() == Variant::Type::Bool) {
                changed = Variant(!now.boolean());
            }
            if (spindle)
                s.SetSpindleProperty(id, changed);
            else
                s.SetStageProperty(id, changed);
        }
    }

    s.SetPiezoSerial("PZ-4711");
    PiezoCalCoef coef = s.GetPiezoCalCoef();
    coef.vmax = 120;
    coef.xmax = 0.0000045;
    for (double& c : coef.coef)
        c = c * 1.5 + 1e-13;
    s.SetPiezoCalCoef(coef);
    const NameList points = s.GetPiezoAdjustList();
    for (std::size_t k = 0; k < points.size(); ++k)
        s.SetPiezoAdjust(points.indexAt(k), 1000 + static_cast<std::int32_t>(k) * 3);
    PiezoControlData control = s.GetPiezoControlData();
    for (auto* column : {&control.lth, &control.ta, &control.ks, &control.lstep, &control.tstep})
        for (double& v : *column)
            v = v * 2 + 0.000000001;
    s.SetPiezoControlData(control);
    const NameList entries = s.GetBacklashCompensationList();
    for (std::size_t k = 0; k < entries.size(); ++k)
        s.SetBacklashCompensation(entries.indexAt(k), 90 + static_cast<std::int32_t>(k));
}

} // namespace vss::test
