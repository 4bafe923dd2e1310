#include "simulator/InstrumentLists.h"
#include "simulator/SimService.h"

namespace vss::sim {

std::shared_ptr<IDriverService> makeService(const InstrumentPtr& instrument) {
    return std::make_shared<SimService>(instrument);
}

// ---------------------------------------------------------------------------------------------------------------
// Session and identity

// The instrument takes service commands in any open session; beginning the service session prepares nothing.
void SimService::BeginService() {}
void SimService::ResetService() { m().resetService(); }

void SimService::SetHardwareRevision(const std::string& revision) {
    checkIdentityText("The hardware revision", revision);
    m().working.version.hardwareRevision = revision;
}
std::string SimService::GetHardwareRevision() { return m().working.version.hardwareRevision; }
std::string SimService::GetDriverRevision() { return kDriverRevision; }
std::string SimService::GetFirmwareRevision() { return kFirmwareRevision; }
void SimService::SetSerialNumber(const std::string& serial) {
    checkIdentityText("The serial number", serial);
    m().working.version.serialNumber = serial;
}
std::string SimService::GetSerialNumber() { return m().working.version.serialNumber; }

// ---------------------------------------------------------------------------------------------------------------
// Spinstand configuration

void SimService::SetSettingUnknown(bool unknown) { m().working.spinstand.settingUnknown = unknown; }
bool SimService::GetSettingUnknown() { return m().working.spinstand.settingUnknown; }
NamedCodes SimService::GetSpinstandTypeList() { return m().spinstandTypes; }
void SimService::SetSpinstandType(std::int16_t type) {
    checkCode("Spinstand type", m().spinstandTypes, type);
    m().working.spinstand.spinstandType = type;
}
std::int16_t SimService::GetSpinstandType() { return m().working.spinstand.spinstandType; }
void SimService::SetHeadFace(std::int32_t face) {
    checkHeadFace(face);
    m().working.spinstand.headFace = face;
}
std::int32_t SimService::GetHeadFace() { return m().working.spinstand.headFace; }
void SimService::SetDiskSizeRange(double min, double max) {
    checkDiskSizeRange(min, max);
    m().working.spinstand.diskSize = {min, max};
}
DoubleRange SimService::GetDiskSizeRange() { return m().working.spinstand.diskSize; }

// ---------------------------------------------------------------------------------------------------------------
// Customer configuration

void SimService::SetStopperPosition(std::int16_t index, double position) {
    checkStopperIndex(index);
    checkStopperAngle(position);
    m().working.customer.stopper[static_cast<std::size_t>(index)] = position;
}
double SimService::GetStopperPosition(std::int16_t index) {
    checkStopperIndex(index);
    return m().working.customer.stopper[static_cast<std::size_t>(index)];
}
PositionRecord SimService::GetMeasurementPosition(std::int16_t index) { return m().measurementPosition(index); }

namespace {
double& geometryValue(StageGeometry& g, std::int16_t index) {
    checkGeometryIndex(index);
    return index == geometry::Stage2Spindle ? g.stage2Spindle : index == geometry::Stage2Ref ? g.stage2Ref : g.stageOffset;
}
} // namespace

void SimService::SetStageGeometry(std::int16_t index, double value) {
    double& slot = geometryValue(m().working.customer.geometry, index);
    checkGeometry(index, value);
    slot = value;
}
double SimService::GetStageGeometry(std::int16_t index) {
    return geometryValue(m().working.customer.geometry, index);
}
void SimService::SetSpeedRange(std::int32_t min, std::int32_t max) { m().setSpeedRange(min, max); }
SpeedRange SimService::GetSpeedRange() { return m().working.spindle.speedRange; }

// ---------------------------------------------------------------------------------------------------------------
// Direct control

void SimService::SetSpindleState(std::int32_t state) { m().setSpindleState(state); }
std::int32_t SimService::GetSpindleState() { return m().spindleState(); }
// The service panel's speed is the same commanded speed as the measurement's.
void SimService::SetSpindleRpm(std::int32_t rpm) { m().setSpindleSpeed(rpm); }
std::int32_t SimService::GetSpindleRpm() { return m().measurement.spindleSpeed; }
void SimService::MoveToPosition(std::int16_t position) { m().moveToPosition(position); }
StagePositionFlags SimService::GetStagePositionFlags() { return m().positionFlags(); }
void SimService::SetHeadLoaderState(bool up) { m().setHeadsDown(!up); }
// The heads' position reads back whether or not a head loader is fitted.
bool SimService::GetHeadLoaderState() { return !m().hw.headsDown; }
void SimService::SetLockdown(bool lockdown) { m().setLockdown(lockdown); }
bool SimService::GetLockdown() { return m().hw.lockdown; }
bool SimService::GetLockdownSensor() { return m().input(Input::LockdownSensor); }
void SimService::SetStopper(bool up) { m().setStopper(up); }
bool SimService::GetStopper() { return m().hw.stopperUp; }
StopperSensors SimService::GetStopperSensors() {
    return {m().input(Input::StopperUpSensor), m().input(Input::StopperDownSensor)};
}
void SimService::SetStageMotor(std::int32_t code) { m().setStageMotor(code); }
std::int32_t SimService::GetStageMotor() { return m().hw.stageMotor; }
void SimService::Jog(bool toInner, std::int32_t pulses) { m().jog(toInner, pulses); }
bool SimService::GetSpindleSet() { return m().input(Input::SpindleSet); }
bool SimService::GetVacuum() { return m().input(Input::Vacuum); }
bool SimService::GetOuterCover() { return m().input(Input::OuterCover); }
bool SimService::GetEmergency() { return m().input(Input::Emergency); }
Variant SimService::GetStageRegion() { return Variant(m().region()); }

} // namespace vss::sim
