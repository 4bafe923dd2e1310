#pragma once

// What the section readers hand the values they read to. Importing sends them to the instrument
// (DriverTarget); comparing a file with the instrument records where they differ (see SettingDiff.h). The
// operations are the driver's set operations that an import calls, with the same arguments.

#include "driver/Handles.h"

#include <cstdint>
#include <string>

namespace vss {

enum class PropertyKind { Spindle, Stage };

class SettingTarget {
public:
    virtual ~SettingTarget() = default;

    virtual void SetSpindleSpeed(std::int32_t rpm) = 0;
    virtual void SetHomeState(std::int32_t homeState) = 0;
    virtual void SetLoadMethod(std::int16_t method) = 0;
    virtual void SetLoadPosition(std::int16_t which, const PositionRecord& position, std::int32_t rpm) = 0;
    virtual void SetDataArea(double innerRadius, std::int32_t maxTrack, double pitch) = 0;
    virtual void SetDiskSizeRestriction(bool on) = 0;
    virtual void SetStopperPosition(std::int16_t index, double position) = 0;
    virtual void SetStageGeometry(std::int16_t index, double value) = 0;
    virtual void SetSettingUnknown(bool unknown) = 0;
    virtual void SetSpinstandType(std::int16_t type) = 0;
    virtual void SetHeadFace(std::int32_t face) = 0;
    virtual void SetDiskSizeRange(double min, double max) = 0;
    virtual void SetSpeedRange(std::int32_t min, std::int32_t max) = 0;
    // `name` is the driver's name of the property at that position of its list.
    virtual void SetProperty(PropertyKind kind, std::int16_t id, const std::string& name, const Variant& value) = 0;
    virtual void SetPiezoSerial(const std::string& serial) = 0;
    virtual void SetPiezoCalCoef(const PiezoCalCoef& coef) = 0;
    virtual void SetPiezoAdjust(std::int16_t index, std::int32_t dac) = 0;
    virtual void SetPiezoControlData(const PiezoControlData& data) = 0;
    virtual void SetBacklashCompensation(std::int16_t index, std::int32_t value) = 0;
};

// Each handle the storage uses, or a DriverError naming the interface when the session lacks it.
IDriver& driverOf(const DriverHandles& handles);
IDriverLoadPosition& loadPositionOf(const DriverHandles& handles);
IDriverDiskSize& diskSizeOf(const DriverHandles& handles);
IDriverService& serviceOf(const DriverHandles& handles);

// Sends every value to the instrument.
class DriverTarget : public SettingTarget {
public:
    explicit DriverTarget(const DriverHandles& handles) : h_(handles) {}

    void SetSpindleSpeed(std::int32_t rpm) override { driverOf(h_).SetSpindleSpeed(rpm); }
    void SetHomeState(std::int32_t homeState) override { driverOf(h_).SetHomeState(homeState); }
    void SetLoadMethod(std::int16_t method) override { driverOf(h_).SetLoadMethod(method); }
    void SetLoadPosition(std::int16_t which, const PositionRecord& position, std::int32_t rpm) override {
        loadPositionOf(h_).SetLoadPosition(which, position, rpm);
    }
    void SetDataArea(double innerRadius, std::int32_t maxTrack, double pitch) override {
        driverOf(h_).SetDataArea(innerRadius, maxTrack, pitch);
    }
    void SetDiskSizeRestriction(bool on) override { diskSizeOf(h_).SetDiskSizeRestriction(on); }
    void SetStopperPosition(std::int16_t index, double position) override {
        serviceOf(h_).SetStopperPosition(index, position);
    }
    void SetStageGeometry(std::int16_t index, double value) override { serviceOf(h_).SetStageGeometry(index, value); }
    void SetSettingUnknown(bool unknown) override { serviceOf(h_).SetSettingUnknown(unknown); }
    void SetSpinstandType(std::int16_t type) override { serviceOf(h_).SetSpinstandType(type); }
    void SetHeadFace(std::int32_t face) override { serviceOf(h_).SetHeadFace(face); }
    void SetDiskSizeRange(double min, double max) override { serviceOf(h_).SetDiskSizeRange(min, max); }
    void SetSpeedRange(std::int32_t min, std::int32_t max) override { serviceOf(h_).SetSpeedRange(min, max); }
    void SetProperty(PropertyKind kind, std::int16_t id, const std::string&, const Variant& value) override {
        if (kind == PropertyKind::Spindle)
            serviceOf(h_).SetSpindleProperty(id, value);
        else
            serviceOf(h_).SetStageProperty(id, value);
    }
    void SetPiezoSerial(const std::string& serial) override { serviceOf(h_).SetPiezoSerial(serial); }
    void SetPiezoCalCoef(const PiezoCalCoef& coef) override { serviceOf(h_).SetPiezoCalCoef(coef); }
    void SetPiezoAdjust(std::int16_t index, std::int32_t dac) override { serviceOf(h_).SetPiezoAdjust(index, dac); }
    void SetPiezoControlData(const PiezoControlData& data) override { serviceOf(h_).SetPiezoControlData(data); }
    void SetBacklashCompensation(std::int16_t index, std::int32_t value) override {
        serviceOf(h_).SetBacklashCompensation(index, value);
    }

private:
    const DriverHandles& h_;
};

} // namespace vss
