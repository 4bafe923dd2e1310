#pragma once

// The simulator's service interface: identity, configuration, direct control of every actuator, the piezo,
// the property lists, backlash compensation and the configuration groups. The definitions are split by area
// (ServiceControl.cpp, ServiceData.cpp).

#include "simulator/SimInterfaces.h"

namespace vss::sim {

class SimService final : public IDriverService {
public:
    explicit SimService(InstrumentPtr instrument) : instrument_(std::move(instrument)) {}

    void BeginService() override;
    void ResetService() override;
    void SetHardwareRevision(const std::string& revision) override;
    std::string GetHardwareRevision() override;
    std::string GetDriverRevision() override;
    std::string GetFirmwareRevision() override;
    void SetSerialNumber(const std::string& serial) override;
    std::string GetSerialNumber() override;
    void SetSettingUnknown(bool unknown) override;
    bool GetSettingUnknown() override;
    NamedCodes GetSpinstandTypeList() override;
    void SetSpinstandType(std::int16_t type) override;
    std::int16_t GetSpinstandType() override;
    void SetHeadFace(std::int32_t face) override;
    std::int32_t GetHeadFace() override;
    void SetDiskSizeRange(double min, double max) override;
    DoubleRange GetDiskSizeRange() override;
    void SetStopperPosition(std::int16_t index, double position) override;
    double GetStopperPosition(std::int16_t index) override;
    PositionRecord GetMeasurementPosition(std::int16_t index) override;
    void SetStageGeometry(std::int16_t index, double value) override;
    double GetStageGeometry(std::int16_t index) override;
    void SetSpeedRange(std::int32_t min, std::int32_t max) override;
    SpeedRange GetSpeedRange() override;
    void SetSpindleState(std::int32_t state) override;
    std::int32_t GetSpindleState() override;
    void SetSpindleRpm(std::int32_t rpm) override;
    std::int32_t GetSpindleRpm() override;
    void MoveToPosition(std::int16_t position) override;
    StagePositionFlags GetStagePositionFlags() override;
    void SetHeadLoaderState(bool up) override;
    bool GetHeadLoaderState() override;
    void SetLockdown(bool lockdown) override;
    bool GetLockdown() override;
    bool GetLockdownSensor() override;
    void SetStopper(bool up) override;
    bool GetStopper() override;
    StopperSensors GetStopperSensors() override;
    void SetStageMotor(std::int32_t code) override;
    std::int32_t GetStageMotor() override;
    void Jog(bool toInner, std::int32_t pulses) override;
    bool GetSpindleSet() override;
    bool GetVacuum() override;
    bool GetOuterCover() override;
    bool GetEmergency() override;
    Variant GetStageRegion() override;
    void SetPiezoSerial(const std::string& serial) override;
    std::string GetPiezoSerial() override;
    void SetPiezoLoop(bool closed) override;
    bool GetPiezoLoop() override;
    NameList GetPiezoAdjustList() override;
    void SetPiezoAdjust(std::int16_t index, std::int32_t dac) override;
    std::int32_t GetPiezoAdjust(std::int16_t index) override;
    NameList GetPiezoCalCoefNames() override;
    void SetPiezoCalCoef(const PiezoCalCoef& coef) override;
    PiezoCalCoef GetPiezoCalCoef() override;
    PiezoCalData GetPiezoCalData() override;
    void SetPiezoControlData(const PiezoControlData& data) override;
    PiezoControlData GetPiezoControlData() override;
    bool GetPiezoBalanced() override;
    PropertyList GetStagePropertyList() override;
    NamedCodes GetStagePropertyChoices(std::int16_t id) override;
    void SetStageProperty(std::int16_t index, const Variant& value) override;
    Variant GetStageProperty(std::int16_t id) override;
    NameList GetBacklashCompensationList() override;
    std::int32_t GetBacklashCompensation(std::int16_t index) override;
    void SetBacklashCompensation(std::int16_t index, std::int32_t value) override;
    std::string GetBacklashDate() override;
    PropertyList GetSpindlePropertyList() override;
    NamedCodes GetSpindlePropertyChoices(std::int16_t id) override;
    void SetSpindleProperty(std::int16_t index, const Variant& value) override;
    Variant GetSpindleProperty(std::int16_t id) override;
    PropertyList GetSpindleDriverItems() override;
    NamedCodes GetSpindleDriverChoices(std::int16_t id) override;
    Variant GetSpindleDriver(std::int16_t index) override;
    void SaveVersionData() override;
    void RecallVersionData() override;
    void SaveSpinstandConfiguration() override;
    void RecallSpinstandConfiguration() override;
    void SaveCustomerConfiguration() override;
    void RecallCustomerConfiguration() override;
    void SaveStageProperty() override;
    void RecallStageProperty() override;
    void SaveSpindleProperty() override;
    void RecallSpindleProperty() override;
    void SavePiezoData() override;
    void RecallPiezoData() override;
    void SaveBacklashCompensation() override;
    void RecallBacklashCompensation() override;

private:
    Instrument& m() { return *instrument_; }
    InstrumentPtr instrument_;
};

} // namespace vss::sim
