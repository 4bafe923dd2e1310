#pragma once

// The service interface of the server's object (see Served.h).

#include "com/server/Served.h"

namespace vss::com {

template <>
class Served<IDriverService> : public ServedBase<IDriverService> {
    using S = vss::IDriverService;

public:
    using ServedBase::ServedBase;

    HRESULT STDMETHODCALLTYPE BeginService() override { return serve([](S& s) { s.BeginService(); }); }
    HRESULT STDMETHODCALLTYPE ResetService() override { return serve([](S& s) { s.ResetService(); }); }
    HRESULT STDMETHODCALLTYPE SetHardwareRevision(BSTR r) override {
        return serve([&](S& s) { s.SetHardwareRevision(textOrEmpty(r)); });
    }
    HRESULT STDMETHODCALLTYPE GetHardwareRevision(BSTR* r) override {
        return serve([&](S& s) { giveText(s.GetHardwareRevision(), r); });
    }
    HRESULT STDMETHODCALLTYPE GetDriverRevision(BSTR* r) override {
        return serve([&](S& s) { giveText(s.GetDriverRevision(), r); });
    }
    HRESULT STDMETHODCALLTYPE GetFirmwareRevision(BSTR* r) override {
        return serve([&](S& s) { giveText(s.GetFirmwareRevision(), r); });
    }
    HRESULT STDMETHODCALLTYPE SetSerialNumber(BSTR n) override {
        return serve([&](S& s) { s.SetSerialNumber(textOrEmpty(n)); });
    }
    HRESULT STDMETHODCALLTYPE GetSerialNumber(BSTR* n) override {
        return serve([&](S& s) { giveText(s.GetSerialNumber(), n); });
    }

    HRESULT STDMETHODCALLTYPE SetSettingUnknown(VARIANT_BOOL u) override {
        return serve([&](S& s) { s.SetSettingUnknown(boolOf(u)); });
    }
    HRESULT STDMETHODCALLTYPE GetSettingUnknown(VARIANT_BOOL* u) override {
        return serve([&](S& s) { out(u) = toVariantBool(s.GetSettingUnknown()); });
    }
    HRESULT STDMETHODCALLTYPE GetSpinstandTypeList(VARIANT* names, VARIANT* codes) override {
        return serve([&](S& s) { giveNamedCodes(s.GetSpinstandTypeList(), names, codes); });
    }
    HRESULT STDMETHODCALLTYPE SetSpinstandType(short t) override { return serve([&](S& s) { s.SetSpinstandType(t); }); }
    HRESULT STDMETHODCALLTYPE GetSpinstandType(short* t) override {
        return serve([&](S& s) { out(t) = s.GetSpinstandType(); });
    }
    HRESULT STDMETHODCALLTYPE SetHeadFace(long f) override { return serve([&](S& s) { s.SetHeadFace(f); }); }
    HRESULT STDMETHODCALLTYPE GetHeadFace(long* f) override { return serve([&](S& s) { out(f) = s.GetHeadFace(); }); }
    HRESULT STDMETHODCALLTYPE SetDiskSizeRange(double min, double max) override {
        return serve([&](S& s) { s.SetDiskSizeRange(min, max); });
    }
    HRESULT STDMETHODCALLTYPE GetDiskSizeRange(double* min, double* max) override {
        return serve([&](S& s) { givePair(s.GetDiskSizeRange(), min, max); });
    }

    HRESULT STDMETHODCALLTYPE SetStopperPosition(short i, double p) override {
        return serve([&](S& s) { s.SetStopperPosition(i, p); });
    }
    HRESULT STDMETHODCALLTYPE GetStopperPosition(short i, double* p) override {
        return serve([&](S& s) { out(p) = s.GetStopperPosition(i); });
    }
    HRESULT STDMETHODCALLTYPE GetMeasurementPosition(short i, double* radius, double* skew) override {
        return serve([&](S& s) { givePair(s.GetMeasurementPosition(i), radius, skew); });
    }
    HRESULT STDMETHODCALLTYPE SetStageGeometry(short i, double v) override {
        return serve([&](S& s) { s.SetStageGeometry(i, v); });
    }
    HRESULT STDMETHODCALLTYPE GetStageGeometry(short i, double* v) override {
        return serve([&](S& s) { out(v) = s.GetStageGeometry(i); });
    }
    HRESULT STDMETHODCALLTYPE SetSpeedRange(long min, long max) override {
        return serve([&](S& s) { s.SetSpeedRange(min, max); });
    }
    HRESULT STDMETHODCALLTYPE GetSpeedRange(long* min, long* max) override {
        return serve([&](S& s) { givePair(s.GetSpeedRange(), min, max); });
    }

    HRESULT STDMETHODCALLTYPE SetSpindleState(long v) override { return serve([&](S& s) { s.SetSpindleState(v); }); }
    HRESULT STDMETHODCALLTYPE GetSpindleState(long* v) override {
        return serve([&](S& s) { out(v) = s.GetSpindleState(); });
    }
    HRESULT STDMETHODCALLTYPE SetSpindleRpm(long v) override { return serve([&](S& s) { s.SetSpindleRpm(v); }); }
    HRESULT STDMETHODCALLTYPE GetSpindleRpm(long* v) override { return serve([&](S& s) { out(v) = s.GetSpindleRpm(); }); }
    HRESULT STDMETHODCALLTYPE MoveToPosition(short p) override { return serve([&](S& s) { s.MoveToPosition(p); }); }
    HRESULT STDMETHODCALLTYPE GetStagePositionFlags(VARIANT_BOOL* home, VARIANT_BOOL* inner,
                                                    VARIANT_BOOL* outer) override {
        return serve([&](S& s) {
            auto& h = out(home);
            auto& i = out(inner);
            auto& o = out(outer);
            const StagePositionFlags f = s.GetStagePositionFlags();
            h = toVariantBool(f.atHome);
            i = toVariantBool(f.atInner);
            o = toVariantBool(f.atOuter);
        });
    }
    HRESULT STDMETHODCALLTYPE SetHeadLoaderState(VARIANT_BOOL v) override {
        return serve([&](S& s) { s.SetHeadLoaderState(boolOf(v)); });
    }
    HRESULT STDMETHODCALLTYPE GetHeadLoaderState(VARIANT_BOOL* v) override {
        return serve([&](S& s) { out(v) = toVariantBool(s.GetHeadLoaderState()); });
    }
    HRESULT STDMETHODCALLTYPE SetLockdown(VARIANT_BOOL v) override { return serve([&](S& s) { s.SetLockdown(boolOf(v)); }); }
    HRESULT STDMETHODCALLTYPE GetLockdown(VARIANT_BOOL* v) override {
        return serve([&](S& s) { out(v) = toVariantBool(s.GetLockdown()); });
    }
    HRESULT STDMETHODCALLTYPE GetLockdownSensor(VARIANT_BOOL* v) override {
        return serve([&](S& s) { out(v) = toVariantBool(s.GetLockdownSensor()); });
    }
    HRESULT STDMETHODCALLTYPE SetStopper(VARIANT_BOOL v) override { return serve([&](S& s) { s.SetStopper(boolOf(v)); }); }
    HRESULT STDMETHODCALLTYPE GetStopper(VARIANT_BOOL* v) override {
        return serve([&](S& s) { out(v) = toVariantBool(s.GetStopper()); });
    }
    HRESULT STDMETHODCALLTYPE GetStopperSensors(VARIANT_BOOL* up, VARIANT_BOOL* down) override {
        return serve([&](S& s) {
            auto& u = out(up);
            auto& d = out(down);
            const StopperSensors x = s.GetStopperSensors();
            u = toVariantBool(x.up);
            d = toVariantBool(x.down);
        });
    }
    HRESULT STDMETHODCALLTYPE SetStageMotor(long c) override { return serve([&](S& s) { s.SetStageMotor(c); }); }
    HRESULT STDMETHODCALLTYPE GetStageMotor(long* c) override { return serve([&](S& s) { out(c) = s.GetStageMotor(); }); }
    HRESULT STDMETHODCALLTYPE Jog(VARIANT_BOOL toInner, long pulses) override {
        return serve([&](S& s) { s.Jog(boolOf(toInner), pulses); });
    }
    HRESULT STDMETHODCALLTYPE GetSpindleSet(VARIANT_BOOL* v) override {
        return serve([&](S& s) { out(v) = toVariantBool(s.GetSpindleSet()); });
    }
    HRESULT STDMETHODCALLTYPE GetVacuum(VARIANT_BOOL* v) override {
        return serve([&](S& s) { out(v) = toVariantBool(s.GetVacuum()); });
    }
    HRESULT STDMETHODCALLTYPE GetOuterCover(VARIANT_BOOL* v) override {
        return serve([&](S& s) { out(v) = toVariantBool(s.GetOuterCover()); });
    }
    HRESULT STDMETHODCALLTYPE GetEmergency(VARIANT_BOOL* v) override {
        return serve([&](S& s) { out(v) = toVariantBool(s.GetEmergency()); });
    }
    HRESULT STDMETHODCALLTYPE GetStageRegion(VARIANT* v) override {
        return serve([&](S& s) { giveValue(s.GetStageRegion(), v); });
    }

    HRESULT STDMETHODCALLTYPE SetPiezoSerial(BSTR n) override {
        return serve([&](S& s) { s.SetPiezoSerial(textOrEmpty(n)); });
    }
    HRESULT STDMETHODCALLTYPE GetPiezoSerial(BSTR* n) override {
        return serve([&](S& s) { giveText(s.GetPiezoSerial(), n); });
    }
    HRESULT STDMETHODCALLTYPE SetPiezoLoop(VARIANT_BOOL c) override { return serve([&](S& s) { s.SetPiezoLoop(boolOf(c)); }); }
    HRESULT STDMETHODCALLTYPE GetPiezoLoop(VARIANT_BOOL* c) override {
        return serve([&](S& s) { out(c) = toVariantBool(s.GetPiezoLoop()); });
    }
    HRESULT STDMETHODCALLTYPE GetPiezoAdjustList(VARIANT* names) override {
        return serve([&](S& s) { giveList(s.GetPiezoAdjustList(), names); });
    }
    HRESULT STDMETHODCALLTYPE SetPiezoAdjust(short i, long dac) override {
        return serve([&](S& s) { s.SetPiezoAdjust(i, dac); });
    }
    HRESULT STDMETHODCALLTYPE GetPiezoAdjust(short i, long* dac) override {
        return serve([&](S& s) { out(dac) = s.GetPiezoAdjust(i); });
    }
    HRESULT STDMETHODCALLTYPE GetPiezoCalCoefNames(VARIANT* names) override {
        return serve([&](S& s) { giveList(s.GetPiezoCalCoefNames(), names); });
    }
    HRESULT STDMETHODCALLTYPE SetPiezoCalCoef(double vmin, double vmax, double xmin, double xmax,
                                              VARIANT coef) override {
        return serve([&](S& s) { s.SetPiezoCalCoef({vmin, vmax, xmin, xmax, doublesOf(coef, "the coefficients")}); });
    }
    HRESULT STDMETHODCALLTYPE GetPiezoCalCoef(double* vmin, double* vmax, double* xmin, double* xmax,
                                              VARIANT* coef) override {
        return serve([&](S& s) {
            auto& v0 = out(vmin);
            auto& v1 = out(vmax);
            auto& x0 = out(xmin);
            auto& x1 = out(xmax);
            VARIANT& c = out(coef);
            const PiezoCalCoef p = s.GetPiezoCalCoef();
            c = listVariant(p.coef);
            v0 = p.vmin;
            v1 = p.vmax;
            x0 = p.xmin;
            x1 = p.xmax;
        });
    }
    HRESULT STDMETHODCALLTYPE GetPiezoCalData(VARIANT* volt, VARIANT* position) override {
        return serve([&](S& s) {
            VARIANT& v = out(volt);
            VARIANT& p = out(position);
            const PiezoCalData d = s.GetPiezoCalData();
            OwnedVariant voltV(listVariant(d.volt)), positionV(listVariant(d.position));
            v = voltV.release();
            p = positionV.release();
        });
    }
    HRESULT STDMETHODCALLTYPE SetPiezoControlData(VARIANT lth, VARIANT ta, VARIANT ks, VARIANT lstep,
                                                  VARIANT tstep) override {
        return serve([&](S& s) {
            s.SetPiezoControlData({doublesOf(lth, "Lth"), doublesOf(ta, "Ta"), doublesOf(ks, "Ks"),
                                   doublesOf(lstep, "Lstep"), doublesOf(tstep, "Tstep")});
        });
    }
    HRESULT STDMETHODCALLTYPE GetPiezoControlData(VARIANT* lth, VARIANT* ta, VARIANT* ks, VARIANT* lstep,
                                                  VARIANT* tstep) override {
        return serve([&](S& s) {
            VARIANT* targets[] = {&out(lth), &out(ta), &out(ks), &out(lstep), &out(tstep)};
            const PiezoControlData d = s.GetPiezoControlData();
            OwnedVariant lists[] = {OwnedVariant(listVariant(d.lth)), OwnedVariant(listVariant(d.ta)),
                                    OwnedVariant(listVariant(d.ks)), OwnedVariant(listVariant(d.lstep)),
                                    OwnedVariant(listVariant(d.tstep))};
            for (int i = 0; i < 5; ++i)
                *targets[i] = lists[i].release();
        });
    }
    HRESULT STDMETHODCALLTYPE GetPiezoBalanced(VARIANT_BOOL* b) override {
        return serve([&](S& s) { out(b) = toVariantBool(s.GetPiezoBalanced()); });
    }

    HRESULT STDMETHODCALLTYPE GetStagePropertyList(VARIANT* ids, VARIANT* names, VARIANT* units) override {
        return serve([&](S& s) { givePropertyList(s.GetStagePropertyList(), ids, names, units); });
    }
    HRESULT STDMETHODCALLTYPE GetStagePropertyChoices(short id, VARIANT* names, VARIANT* codes) override {
        return serve([&](S& s) { giveNamedCodes(s.GetStagePropertyChoices(id), names, codes); });
    }
    HRESULT STDMETHODCALLTYPE SetStageProperty(short i, VARIANT v) override {
        return serve([&](S& s) { s.SetStageProperty(i, valueOf(v, "the value")); });
    }
    HRESULT STDMETHODCALLTYPE GetStageProperty(short id, VARIANT* v) override {
        return serve([&](S& s) { giveValue(s.GetStageProperty(id), v); });
    }
    HRESULT STDMETHODCALLTYPE GetBacklashCompensationList(VARIANT* names) override {
        return serve([&](S& s) { giveList(s.GetBacklashCompensationList(), names); });
    }
    HRESULT STDMETHODCALLTYPE GetBacklashCompensation(short i, long* v) override {
        return serve([&](S& s) { out(v) = s.GetBacklashCompensation(i); });
    }
    HRESULT STDMETHODCALLTYPE SetBacklashCompensation(short i, long v) override {
        return serve([&](S& s) { s.SetBacklashCompensation(i, v); });
    }
    HRESULT STDMETHODCALLTYPE GetBacklashDate(BSTR* d) override {
        return serve([&](S& s) { giveText(s.GetBacklashDate(), d); });
    }
    HRESULT STDMETHODCALLTYPE GetSpindlePropertyList(VARIANT* ids, VARIANT* names, VARIANT* units) override {
        return serve([&](S& s) { givePropertyList(s.GetSpindlePropertyList(), ids, names, units); });
    }
    HRESULT STDMETHODCALLTYPE GetSpindlePropertyChoices(short id, VARIANT* names, VARIANT* codes) override {
        return serve([&](S& s) { giveNamedCodes(s.GetSpindlePropertyChoices(id), names, codes); });
    }
    HRESULT STDMETHODCALLTYPE SetSpindleProperty(short i, VARIANT v) override {
        return serve([&](S& s) { s.SetSpindleProperty(i, valueOf(v, "the value")); });
    }
    HRESULT STDMETHODCALLTYPE GetSpindleProperty(short id, VARIANT* v) override {
        return serve([&](S& s) { giveValue(s.GetSpindleProperty(id), v); });
    }
    HRESULT STDMETHODCALLTYPE GetSpindleDriverItems(VARIANT* ids, VARIANT* names, VARIANT* units) override {
        return serve([&](S& s) { givePropertyList(s.GetSpindleDriverItems(), ids, names, units); });
    }
    HRESULT STDMETHODCALLTYPE GetSpindleDriverChoices(short id, VARIANT* names, VARIANT* codes) override {
        return serve([&](S& s) { giveNamedCodes(s.GetSpindleDriverChoices(id), names, codes); });
    }
    HRESULT STDMETHODCALLTYPE GetSpindleDriver(short i, VARIANT* v) override {
        return serve([&](S& s) { giveValue(s.GetSpindleDriver(i), v); });
    }

    HRESULT STDMETHODCALLTYPE SaveVersionData() override { return serve([](S& s) { s.SaveVersionData(); }); }
    HRESULT STDMETHODCALLTYPE RecallVersionData() override { return serve([](S& s) { s.RecallVersionData(); }); }
    HRESULT STDMETHODCALLTYPE SaveSpinstandConfiguration() override {
        return serve([](S& s) { s.SaveSpinstandConfiguration(); });
    }
    HRESULT STDMETHODCALLTYPE RecallSpinstandConfiguration() override {
        return serve([](S& s) { s.RecallSpinstandConfiguration(); });
    }
    HRESULT STDMETHODCALLTYPE SaveCustomerConfiguration() override {
        return serve([](S& s) { s.SaveCustomerConfiguration(); });
    }
    HRESULT STDMETHODCALLTYPE RecallCustomerConfiguration() override {
        return serve([](S& s) { s.RecallCustomerConfiguration(); });
    }
    HRESULT STDMETHODCALLTYPE SaveStageProperty() override { return serve([](S& s) { s.SaveStageProperty(); }); }
    HRESULT STDMETHODCALLTYPE RecallStageProperty() override { return serve([](S& s) { s.RecallStageProperty(); }); }
    HRESULT STDMETHODCALLTYPE SaveSpindleProperty() override { return serve([](S& s) { s.SaveSpindleProperty(); }); }
    HRESULT STDMETHODCALLTYPE RecallSpindleProperty() override {
        return serve([](S& s) { s.RecallSpindleProperty(); });
    }
    HRESULT STDMETHODCALLTYPE SavePiezoData() override { return serve([](S& s) { s.SavePiezoData(); }); }
    HRESULT STDMETHODCALLTYPE RecallPiezoData() override { return serve([](S& s) { s.RecallPiezoData(); }); }
    HRESULT STDMETHODCALLTYPE SaveBacklashCompensation() override {
        return serve([](S& s) { s.SaveBacklashCompensation(); });
    }
    HRESULT STDMETHODCALLTYPE RecallBacklashCompensation() override {
        return serve([](S& s) { s.RecallBacklashCompensation(); });
    }

private:
    static void giveText(const std::string& text, BSTR* target) { Served<vss::IDriver>::giveText(text, target); }
    static void giveNamedCodes(const NamedCodes& list, VARIANT* names, VARIANT* codes) {
        Served<vss::IDriver>::giveNamedCodes(list, names, codes);
    }
    static void giveList(const NameList& list, VARIANT* target) {
        VARIANT& t = out(target);
        t = listVariant(list.names, list.lower);
    }
    static void giveValue(const Variant& value, VARIANT* target) {
        VARIANT& t = out(target);
        t = valueVariant(value);
    }
    template <class Pair, class T>
    static void givePair(const Pair& p, T* first, T* second) {
        auto& a = out(first);
        auto& b = out(second);
        if constexpr (requires { p.radius; }) {
            a = p.radius;
            b = p.skew;
        } else {
            a = p.min;
            b = p.max;
        }
    }
    static void givePropertyList(const PropertyList& list, VARIANT* ids, VARIANT* names, VARIANT* units) {
        VARIANT& i = out(ids);
        VARIANT& n = out(names);
        VARIANT& u = out(units);
        OwnedVariant idsV(listVariant(list.ids, list.lower)), namesV(listVariant(list.names, list.lower)),
            unitsV(listVariant(list.units, list.lower));
        i = idsV.release();
        n = namesV.release();
        u = unitsV.release();
    }
};

} // namespace vss::com
