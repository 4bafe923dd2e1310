#pragma once

// A SettingTarget that records each call as text, for reader tests that need no instrument.

#include "storage/NumberText.h"
#include "storage/SettingTarget.h"

#include <string>
#include <vector>

namespace vss::test {

class RecordingTarget : public SettingTarget {
public:
    std::vector<std::string> calls;

    void SetSpindleSpeed(std::int32_t rpm) override { add("SetSpindleSpeed", {n(rpm)}); }
    void SetHomeState(std::int32_t s) override { add("SetHomeState", {n(s)}); }
    void SetLoadMethod(std::int16_t m) override { add("SetLoadMethod", {n(m)}); }
    void SetLoadPosition(std::int16_t which, const PositionRecord& p, std::int32_t rpm) override {
        add("SetLoadPosition", {n(which), d(p.radius), d(p.skew), n(rpm)});
    }
    void SetDataArea(double r, std::int32_t t, double p) override { add("SetDataArea", {d(r), n(t), d(p)}); }
    void SetDiskSizeRestriction(bool on) override { add("SetDiskSizeRestriction", {b(on)}); }
    void SetStopperPosition(std::int16_t i, double p) override { add("SetStopperPosition", {n(i), d(p)}); }
    void SetStageGeometry(std::int16_t i, double v) override { add("SetStageGeometry", {n(i), d(v)}); }
    void SetSettingUnknown(bool u) override { add("SetSettingUnknown", {b(u)}); }
    void SetSpinstandType(std::int16_t t) override { add("SetSpinstandType", {n(t)}); }
    void SetHeadFace(std::int32_t f) override { add("SetHeadFace", {n(f)}); }
    void SetDiskSizeRange(double lo, double hi) override { add("SetDiskSizeRange", {d(lo), d(hi)}); }
    void SetSpeedRange(std::int32_t lo, std::int32_t hi) override { add("SetSpeedRange", {n(lo), n(hi)}); }
    void SetProperty(PropertyKind k, std::int16_t id, const std::string& name, const Variant& v) override {
        add(k == PropertyKind::Spindle ? "SetSpindleProperty" : "SetStageProperty",
            {n(id), name, v.isNumeric() ? d(v.toDouble()) : "empty"});
    }
    void SetPiezoSerial(const std::string& s) override { add("SetPiezoSerial", {s}); }
    void SetPiezoCalCoef(const PiezoCalCoef& c) override {
        std::vector<std::string> args{d(c.vmin), d(c.vmax), d(c.xmin), d(c.xmax)};
        for (double v : c.coef)
            args.push_back(d(v));
        add("SetPiezoCalCoef", args);
    }
    void SetPiezoAdjust(std::int16_t i, std::int32_t dac) override { add("SetPiezoAdjust", {n(i), n(dac)}); }
    void SetPiezoControlData(const PiezoControlData& data) override {
        add("SetPiezoControlData", {n(static_cast<std::int32_t>(data.lth.size()))});
    }
    void SetBacklashCompensation(std::int16_t i, std::int32_t v) override {
        add("SetBacklashCompensation", {n(i), n(v)});
    }

private:
    static std::string n(std::int32_t v) { return std::to_string(v); }
    static std::string d(double v) { return numbertext::formatDouble(v); }
    static std::string b(bool v) { return v ? "true" : "false"; }
    void add(const std::string& op, const std::vector<std::string>& args) {
        std::string call = op + "(";
        for (std::size_t i = 0; i < args.size(); ++i)
            call += (i ? "," : "") + args[i];
        calls.push_back(call + ")");
    }
};

} // namespace vss::test
