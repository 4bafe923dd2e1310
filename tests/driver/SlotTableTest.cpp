// The operations of every interface in slot order, held here as the driver's binary contract lists them. The
// test fails when an operation is missing, renamed or moved, and when a call through the simulator does not
// reach the operation of that name or is traced under another name.

#include "tests/simulator/SimFixture.h"

#include <span>

namespace vss::test {
namespace {

struct Row {
    int slot;
    std::string_view name;
    void (*call)(DriverHandles&);
};

struct Table {
    std::string_view interfaceName;
    std::span<const OperationSlot> operations;
    std::vector<Row> rows;
};

const std::vector<Table>& contract() {
    static const std::vector<Table> tables{
    {"IDriver", IDriver::kOperations,
     {
        {3, "Open", [](DriverHandles& h) { h.driver->Open("x"); }},
        {4, "Close", [](DriverHandles& h) { h.driver->Close(); }},
        {7, "Initialize", [](DriverHandles& h) { h.driver->Initialize(); }},
        {8, "Reset", [](DriverHandles& h) { h.driver->Reset(); }},
        {9, "GetDiskSizeLimit", [](DriverHandles& h) { h.driver->GetDiskSizeLimit(); }},
        {10, "GetSpeedRange", [](DriverHandles& h) { h.driver->GetSpeedRange(); }},
        {11, "GetLoadMethodList", [](DriverHandles& h) { h.driver->GetLoadMethodList(); }},
        {12, "Load", [](DriverHandles& h) { h.driver->Load(); }},
        {13, "Unload", [](DriverHandles& h) { h.driver->Unload(); }},
        {15, "GetPosition", [](DriverHandles& h) { h.driver->GetPosition(); }},
        {18, "GetDataArea", [](DriverHandles& h) { h.driver->GetDataArea(); }},
        {19, "SetDataArea", [](DriverHandles& h) { h.driver->SetDataArea(0.02, std::int32_t{1}, 0.02); }},
        {20, "GetSpindleSpeed", [](DriverHandles& h) { h.driver->GetSpindleSpeed(); }},
        {21, "SetSpindleSpeed", [](DriverHandles& h) { h.driver->SetSpindleSpeed(std::int32_t{1}); }},
        {22, "GetHomeState", [](DriverHandles& h) { h.driver->GetHomeState(); }},
        {23, "SetHomeState", [](DriverHandles& h) { h.driver->SetHomeState(std::int32_t{1}); }},
        {24, "GetLoadMethod", [](DriverHandles& h) { h.driver->GetLoadMethod(); }},
        {25, "SetLoadMethod", [](DriverHandles& h) { h.driver->SetLoadMethod(std::int16_t{1}); }},
        {26, "GetState", [](DriverHandles& h) { h.driver->GetState(); }},
        {27, "GetFinePositionLimit", [](DriverHandles& h) { h.driver->GetFinePositionLimit(); }},
        {28, "GetHardwareRevision", [](DriverHandles& h) { h.driver->GetHardwareRevision(); }},
        {29, "GetFirmwareRevision", [](DriverHandles& h) { h.driver->GetFirmwareRevision(); }},
        {30, "GetDriverRevision", [](DriverHandles& h) { h.driver->GetDriverRevision(); }},
        {31, "GetSerialNumber", [](DriverHandles& h) { h.driver->GetSerialNumber(); }},
     }},
    {"IDriverPiezo", IDriverPiezo::kOperations,
     {
        {5, "GetPiezoReading", [](DriverHandles& h) { h.piezo->GetPiezoReading(); }},
     }},
    {"IDriverStage", IDriverStage::kOperations,
     {
        {3, "MoveTo", [](DriverHandles& h) { double r = 0.02; h.stage->MoveTo(r); }},
     }},
    {"IDriverLoadPosition", IDriverLoadPosition::kOperations,
     {
        {3, "GetLoadPosition", [](DriverHandles& h) { h.loadPosition->GetLoadPosition(std::int16_t{1}); }},
        {4, "SetLoadPosition", [](DriverHandles& h) { h.loadPosition->SetLoadPosition(std::int16_t{1}, PositionRecord{0.03, kNoSkew}, std::int32_t{1}); }},
     }},
    {"IDriverHeadLoader", IDriverHeadLoader::kOperations,
     {
        {3, "GetHeadLoader", [](DriverHandles& h) { h.headLoader->GetHeadLoader(); }},
        {4, "SetHeadLoader", [](DriverHandles& h) { h.headLoader->SetHeadLoader(true); }},
     }},
    {"IDriverSpindle", IDriverSpindle::kOperations,
     {
        {5, "GetMotor", [](DriverHandles& h) { h.spindle->GetMotor(); }},
        {6, "SetMotor", [](DriverHandles& h) { h.spindle->SetMotor(true); }},
        {7, "GetRotation", [](DriverHandles& h) { h.spindle->GetRotation(); }},
     }},
    {"IDriverClamp", IDriverClamp::kOperations,
     {
        {3, "GetClamp", [](DriverHandles& h) { h.clamp->GetClamp(); }},
        {4, "SetClamp", [](DriverHandles& h) { h.clamp->SetClamp(true); }},
     }},
    {"IDriverHeadFace", IDriverHeadFace::kOperations,
     {
        {3, "GetFace", [](DriverHandles& h) { h.headFace->GetFace(); }},
     }},
    {"IDriverIndex", IDriverIndex::kOperations,
     {
        {3, "GetIndexPolarity", [](DriverHandles& h) { h.index->GetIndexPolarity(); }},
     }},
    {"IDriverInterlock", IDriverInterlock::kOperations,
     {
        {3, "GetInterlock", [](DriverHandles& h) { h.interlock->GetInterlock(); }},
     }},
    {"IDriverDiskSize", IDriverDiskSize::kOperations,
     {
        {3, "GetDiskSizeRestriction", [](DriverHandles& h) { h.diskSize->GetDiskSizeRestriction(); }},
        {4, "SetDiskSizeRestriction", [](DriverHandles& h) { h.diskSize->SetDiskSizeRestriction(true); }},
     }},
    {"IDriverService", IDriverService::kOperations,
     {
        {4, "BeginService", [](DriverHandles& h) { h.service->BeginService(); }},
        {5, "ResetService", [](DriverHandles& h) { h.service->ResetService(); }},
        {8, "SetHardwareRevision", [](DriverHandles& h) { h.service->SetHardwareRevision("x"); }},
        {9, "GetHardwareRevision", [](DriverHandles& h) { h.service->GetHardwareRevision(); }},
        {10, "GetDriverRevision", [](DriverHandles& h) { h.service->GetDriverRevision(); }},
        {11, "GetFirmwareRevision", [](DriverHandles& h) { h.service->GetFirmwareRevision(); }},
        {12, "SetSerialNumber", [](DriverHandles& h) { h.service->SetSerialNumber("x"); }},
        {13, "GetSerialNumber", [](DriverHandles& h) { h.service->GetSerialNumber(); }},
        {14, "SetSettingUnknown", [](DriverHandles& h) { h.service->SetSettingUnknown(true); }},
        {15, "GetSettingUnknown", [](DriverHandles& h) { h.service->GetSettingUnknown(); }},
        {16, "GetSpinstandTypeList", [](DriverHandles& h) { h.service->GetSpinstandTypeList(); }},
        {17, "SetSpinstandType", [](DriverHandles& h) { h.service->SetSpinstandType(std::int16_t{1}); }},
        {18, "GetSpinstandType", [](DriverHandles& h) { h.service->GetSpinstandType(); }},
        {19, "SetHeadFace", [](DriverHandles& h) { h.service->SetHeadFace(std::int32_t{1}); }},
        {20, "GetHeadFace", [](DriverHandles& h) { h.service->GetHeadFace(); }},
        {21, "SetDiskSizeRange", [](DriverHandles& h) { h.service->SetDiskSizeRange(0.02, 0.02); }},
        {22, "GetDiskSizeRange", [](DriverHandles& h) { h.service->GetDiskSizeRange(); }},
        {23, "SetStopperPosition", [](DriverHandles& h) { h.service->SetStopperPosition(std::int16_t{1}, 0.02); }},
        {24, "GetStopperPosition", [](DriverHandles& h) { h.service->GetStopperPosition(std::int16_t{1}); }},
        {25, "GetMeasurementPosition", [](DriverHandles& h) { h.service->GetMeasurementPosition(std::int16_t{1}); }},
        {26, "SetStageGeometry", [](DriverHandles& h) { h.service->SetStageGeometry(std::int16_t{1}, 0.02); }},
        {27, "GetStageGeometry", [](DriverHandles& h) { h.service->GetStageGeometry(std::int16_t{1}); }},
        {28, "SetSpeedRange", [](DriverHandles& h) { h.service->SetSpeedRange(std::int32_t{1}, std::int32_t{1}); }},
        {29, "GetSpeedRange", [](DriverHandles& h) { h.service->GetSpeedRange(); }},
        {30, "SetSpindleState", [](DriverHandles& h) { h.service->SetSpindleState(std::int32_t{1}); }},
        {31, "GetSpindleState", [](DriverHandles& h) { h.service->GetSpindleState(); }},
        {32, "SetSpindleRpm", [](DriverHandles& h) { h.service->SetSpindleRpm(std::int32_t{1}); }},
        {33, "GetSpindleRpm", [](DriverHandles& h) { h.service->GetSpindleRpm(); }},
        {34, "MoveToPosition", [](DriverHandles& h) { h.service->MoveToPosition(std::int16_t{1}); }},
        {36, "GetStagePositionFlags", [](DriverHandles& h) { h.service->GetStagePositionFlags(); }},
        {37, "SetHeadLoaderState", [](DriverHandles& h) { h.service->SetHeadLoaderState(true); }},
        {38, "GetHeadLoaderState", [](DriverHandles& h) { h.service->GetHeadLoaderState(); }},
        {39, "SetLockdown", [](DriverHandles& h) { h.service->SetLockdown(true); }},
        {40, "GetLockdown", [](DriverHandles& h) { h.service->GetLockdown(); }},
        {41, "GetLockdownSensor", [](DriverHandles& h) { h.service->GetLockdownSensor(); }},
        {42, "SetStopper", [](DriverHandles& h) { h.service->SetStopper(true); }},
        {43, "GetStopper", [](DriverHandles& h) { h.service->GetStopper(); }},
        {44, "GetStopperSensors", [](DriverHandles& h) { h.service->GetStopperSensors(); }},
        {45, "SetStageMotor", [](DriverHandles& h) { h.service->SetStageMotor(std::int32_t{1}); }},
        {46, "GetStageMotor", [](DriverHandles& h) { h.service->GetStageMotor(); }},
        {47, "Jog", [](DriverHandles& h) { h.service->Jog(true, std::int32_t{1}); }},
        {48, "GetSpindleSet", [](DriverHandles& h) { h.service->GetSpindleSet(); }},
        {49, "GetVacuum", [](DriverHandles& h) { h.service->GetVacuum(); }},
        {50, "GetOuterCover", [](DriverHandles& h) { h.service->GetOuterCover(); }},
        {51, "GetEmergency", [](DriverHandles& h) { h.service->GetEmergency(); }},
        {52, "GetStageRegion", [](DriverHandles& h) { h.service->GetStageRegion(); }},
        {53, "SetPiezoSerial", [](DriverHandles& h) { h.service->SetPiezoSerial("x"); }},
        {54, "GetPiezoSerial", [](DriverHandles& h) { h.service->GetPiezoSerial(); }},
        {55, "SetPiezoLoop", [](DriverHandles& h) { h.service->SetPiezoLoop(true); }},
        {56, "GetPiezoLoop", [](DriverHandles& h) { h.service->GetPiezoLoop(); }},
        {57, "GetPiezoAdjustList", [](DriverHandles& h) { h.service->GetPiezoAdjustList(); }},
        {58, "SetPiezoAdjust", [](DriverHandles& h) { h.service->SetPiezoAdjust(std::int16_t{1}, std::int32_t{1}); }},
        {59, "GetPiezoAdjust", [](DriverHandles& h) { h.service->GetPiezoAdjust(std::int16_t{1}); }},
        {60, "GetPiezoCalCoefNames", [](DriverHandles& h) { h.service->GetPiezoCalCoefNames(); }},
        {61, "SetPiezoCalCoef", [](DriverHandles& h) { h.service->SetPiezoCalCoef(PiezoCalCoef{}); }},
        {62, "GetPiezoCalCoef", [](DriverHandles& h) { h.service->GetPiezoCalCoef(); }},
        {63, "GetPiezoCalData", [](DriverHandles& h) { h.service->GetPiezoCalData(); }},
        {64, "SetPiezoControlData", [](DriverHandles& h) { h.service->SetPiezoControlData(PiezoControlData{}); }},
        {65, "GetPiezoControlData", [](DriverHandles& h) { h.service->GetPiezoControlData(); }},
        {66, "GetPiezoBalanced", [](DriverHandles& h) { h.service->GetPiezoBalanced(); }},
        {67, "GetStagePropertyList", [](DriverHandles& h) { h.service->GetStagePropertyList(); }},
        {68, "GetStagePropertyChoices", [](DriverHandles& h) { h.service->GetStagePropertyChoices(std::int16_t{1}); }},
        {69, "SetStageProperty", [](DriverHandles& h) { h.service->SetStageProperty(std::int16_t{1}, Variant(std::int32_t{1})); }},
        {70, "GetStageProperty", [](DriverHandles& h) { h.service->GetStageProperty(std::int16_t{1}); }},
        {71, "GetBacklashCompensationList", [](DriverHandles& h) { h.service->GetBacklashCompensationList(); }},
        {72, "GetBacklashCompensation", [](DriverHandles& h) { h.service->GetBacklashCompensation(std::int16_t{1}); }},
        {73, "SetBacklashCompensation", [](DriverHandles& h) { h.service->SetBacklashCompensation(std::int16_t{1}, std::int32_t{1}); }},
        {74, "GetBacklashDate", [](DriverHandles& h) { h.service->GetBacklashDate(); }},
        {75, "GetSpindlePropertyList", [](DriverHandles& h) { h.service->GetSpindlePropertyList(); }},
        {76, "GetSpindlePropertyChoices", [](DriverHandles& h) { h.service->GetSpindlePropertyChoices(std::int16_t{1}); }},
        {77, "SetSpindleProperty", [](DriverHandles& h) { h.service->SetSpindleProperty(std::int16_t{1}, Variant(std::int32_t{1})); }},
        {78, "GetSpindleProperty", [](DriverHandles& h) { h.service->GetSpindleProperty(std::int16_t{1}); }},
        {79, "GetSpindleDriverItems", [](DriverHandles& h) { h.service->GetSpindleDriverItems(); }},
        {80, "GetSpindleDriverChoices", [](DriverHandles& h) { h.service->GetSpindleDriverChoices(std::int16_t{1}); }},
        {81, "GetSpindleDriver", [](DriverHandles& h) { h.service->GetSpindleDriver(std::int16_t{1}); }},
        {87, "SaveVersionData", [](DriverHandles& h) { h.service->SaveVersionData(); }},
        {88, "RecallVersionData", [](DriverHandles& h) { h.service->RecallVersionData(); }},
        {89, "SaveSpinstandConfiguration", [](DriverHandles& h) { h.service->SaveSpinstandConfiguration(); }},
        {90, "RecallSpinstandConfiguration", [](DriverHandles& h) { h.service->RecallSpinstandConfiguration(); }},
        {91, "SaveCustomerConfiguration", [](DriverHandles& h) { h.service->SaveCustomerConfiguration(); }},
        {92, "RecallCustomerConfiguration", [](DriverHandles& h) { h.service->RecallCustomerConfiguration(); }},
        {93, "SaveStageProperty", [](DriverHandles& h) { h.service->SaveStageProperty(); }},
        {94, "RecallStageProperty", [](DriverHandles& h) { h.service->RecallStageProperty(); }},
        {95, "SaveSpindleProperty", [](DriverHandles& h) { h.service->SaveSpindleProperty(); }},
        {96, "RecallSpindleProperty", [](DriverHandles& h) { h.service->RecallSpindleProperty(); }},
        {97, "SavePiezoData", [](DriverHandles& h) { h.service->SavePiezoData(); }},
        {98, "RecallPiezoData", [](DriverHandles& h) { h.service->RecallPiezoData(); }},
        {99, "SaveBacklashCompensation", [](DriverHandles& h) { h.service->SaveBacklashCompensation(); }},
        {100, "RecallBacklashCompensation", [](DriverHandles& h) { h.service->RecallBacklashCompensation(); }},
     }},
    };
    return tables;
}

TEST(SlotTable, EveryInterfaceListsTheContractsOperationsInSlotOrder) {
    ASSERT_EQ(contract().size(), kInterfaceNames.size());
    for (std::size_t t = 0; t < contract().size(); ++t) {
        const Table& table = contract()[t];
        EXPECT_EQ(table.interfaceName, kInterfaceNames[t]);
        ASSERT_EQ(table.operations.size(), table.rows.size()) << table.interfaceName;
        for (std::size_t i = 0; i < table.rows.size(); ++i) {
            EXPECT_EQ(table.operations[i].slot, table.rows[i].slot) << table.interfaceName << " " << table.rows[i].name;
            EXPECT_EQ(table.operations[i].name, table.rows[i].name) << table.interfaceName << " slot " << table.rows[i].slot;
        }
    }
}

class SlotTableCalls : public SimTest {};

TEST_F(SlotTableCalls, EachOperationIsReachedAndTracedUnderItsOwnName) {
    for (const Table& table : contract()) {
        for (const Row& row : table.rows) {
            const std::string name = std::string(table.interfaceName) + "." + std::string(row.name);
            sim.failOperation(name, "injected into " + name);
            EXPECT_EQ(failure([&] { row.call(h); }), "injected into " + name);
            const std::string line = lastLine();
            EXPECT_EQ(line.rfind(name + "(", 0), 0u) << line;
            EXPECT_NE(line.find(") !! injected into " + name), std::string::npos) << line;
        }
    }
}

} // namespace
} // namespace vss::test
