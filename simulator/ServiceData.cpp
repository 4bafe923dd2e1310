#include "simulator/InstrumentLists.h"
#include "simulator/SimService.h"

namespace vss::sim {

// ---------------------------------------------------------------------------------------------------------------
// Piezo

void SimService::SetPiezoSerial(const std::string& serial) {
    checkIdentityText("The piezo serial number", serial);
    m().working.piezo.serial = serial;
}
std::string SimService::GetPiezoSerial() { return m().working.piezo.serial; }
void SimService::SetPiezoLoop(bool closed) { m().hw.piezoLoop = closed; }
bool SimService::GetPiezoLoop() { return m().hw.piezoLoop; }
NameList SimService::GetPiezoAdjustList() { return {m().listLower(), piezoAdjustNames()}; }
// The bias point's DAC is eleven bits wide: a value above its top count is kept at the top count.
constexpr std::size_t kBiasPoint = 4;
constexpr std::int32_t kBiasTop = 2047;

void SimService::SetPiezoAdjust(std::int16_t index, std::int32_t dac) {
    const std::size_t slot = adjustSlot(index, m().listLower());
    checkAdjust(dac);
    m().working.piezo.adjust[slot] = slot == kBiasPoint && dac > kBiasTop ? kBiasTop : dac;
}
std::int32_t SimService::GetPiezoAdjust(std::int16_t index) {
    return m().working.piezo.adjust[adjustSlot(index, m().listLower())];
}
NameList SimService::GetPiezoCalCoefNames() { return {m().listLower(), piezoCalCoefNames()}; }
void SimService::SetPiezoCalCoef(const PiezoCalCoef& coef) {
    checkCalCoef(coef);
    m().working.piezo.calCoef = coef;
}
PiezoCalCoef SimService::GetPiezoCalCoef() { return m().working.piezo.calCoef; }
PiezoCalData SimService::GetPiezoCalData() { return m().working.piezo.calData; }
void SimService::SetPiezoControlData(const PiezoControlData& data) {
    checkControlData(data);
    m().working.piezo.control = data;
}
PiezoControlData SimService::GetPiezoControlData() { return m().working.piezo.control; }
bool SimService::GetPiezoBalanced() { return m().piezoBalanced(); }

// ---------------------------------------------------------------------------------------------------------------
// Properties, backlash compensation, spindle driver items

namespace {
Variant& valueAt(std::vector<Variant>& values, std::int16_t id) { return values[static_cast<std::size_t>(id)]; }
} // namespace

PropertyList SimService::GetStagePropertyList() { return stageProperties().list(m().listLower()); }
NamedCodes SimService::GetStagePropertyChoices(std::int16_t id) { return stageProperties().choices(id); }
void SimService::SetStageProperty(std::int16_t index, const Variant& value) {
    valueAt(m().working.stage.values, index) = stageProperties().checked(index, value);
}
Variant SimService::GetStageProperty(std::int16_t id) {
    stageProperties().at(id);
    return valueAt(m().working.stage.values, id);
}

NameList SimService::GetBacklashCompensationList() { return {m().listLower(), backlashNames()}; }
std::int32_t SimService::GetBacklashCompensation(std::int16_t index) {
    return m().working.backlash.values[backlashSlot(index, m().listLower())];
}
void SimService::SetBacklashCompensation(std::int16_t index, std::int32_t value) {
    const std::size_t slot = backlashSlot(index, m().listLower());
    checkBacklash(value);
    m().working.backlash.values[slot] = value;
}
std::string SimService::GetBacklashDate() { return m().working.backlash.date; }

PropertyList SimService::GetSpindlePropertyList() { return spindleProperties().list(m().listLower()); }
NamedCodes SimService::GetSpindlePropertyChoices(std::int16_t id) { return spindleProperties().choices(id); }
void SimService::SetSpindleProperty(std::int16_t index, const Variant& value) {
    valueAt(m().working.spindle.values, index) = spindleProperties().checked(index, value);
}
Variant SimService::GetSpindleProperty(std::int16_t id) {
    spindleProperties().at(id);
    return valueAt(m().working.spindle.values, id);
}

PropertyList SimService::GetSpindleDriverItems() { return spindleDriverItems().list(m().listLower()); }
NamedCodes SimService::GetSpindleDriverChoices(std::int16_t id) { return spindleDriverItems().choices(id); }
Variant SimService::GetSpindleDriver(std::int16_t index) { return spindleDriverItems().at(index).factory; }

// ---------------------------------------------------------------------------------------------------------------
// Configuration groups

void SimService::SaveVersionData() { m().save(Group::VersionData); }
void SimService::RecallVersionData() { m().recall(Group::VersionData); }
void SimService::SaveSpinstandConfiguration() { m().save(Group::SpinstandConfiguration); }
void SimService::RecallSpinstandConfiguration() { m().recall(Group::SpinstandConfiguration); }
void SimService::SaveCustomerConfiguration() { m().save(Group::CustomerConfiguration); }
void SimService::RecallCustomerConfiguration() { m().recall(Group::CustomerConfiguration); }
void SimService::SaveStageProperty() { m().save(Group::StageProperty); }
void SimService::RecallStageProperty() { m().recall(Group::StageProperty); }
void SimService::SaveSpindleProperty() { m().save(Group::SpindleProperty); }
void SimService::RecallSpindleProperty() { m().recall(Group::SpindleProperty); }
void SimService::SavePiezoData() { m().save(Group::PiezoData); }
void SimService::RecallPiezoData() { m().recall(Group::PiezoData); }
void SimService::SaveBacklashCompensation() { m().save(Group::BacklashCompensation); }
void SimService::RecallBacklashCompensation() { m().recall(Group::BacklashCompensation); }

} // namespace vss::sim
