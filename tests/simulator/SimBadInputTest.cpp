// Values outside the instrument's ranges and indexes that do not exist: each call fails with a description
// that names what was wrong and what is allowed, and changes nothing.

#include "SimFixture.h"

namespace vss::test {
namespace {

struct BadInput {
    const char* call;
    void (*run)(DriverHandles&);
    const char* says; // a part of the description
};

const BadInput kBadInputs[] = {
    {"stage property id", [](DriverHandles& h) { h.service->GetStageProperty(11); }, "identifiers are 0 to 10"},
    {"spindle property id", [](DriverHandles& h) { h.service->SetSpindleProperty(-1, std::int32_t{1}); },
     "identifiers are 0 to 12"},
    {"choices of a number", [](DriverHandles& h) { h.service->GetSpindlePropertyChoices(1); }, "takes a number"},
    {"coded value not a choice", [](DriverHandles& h) { h.service->SetSpindleProperty(0, std::int16_t{2}); },
     "allowed: 0 (CW), 1 (CCW)"},
    {"fraction for a whole number", [](DriverHandles& h) { h.service->SetStageProperty(9, 1.5); },
     "whole number"},
    {"property out of range", [](DriverHandles& h) { h.service->SetStageProperty(9, std::int32_t{60001}); },
     "outside the range 0 to 60000 ms"},
    {"text for a number", [](DriverHandles& h) { h.service->SetStageProperty(9, "soon"); }, "not the text \"soon\""},
    {"driver item index", [](DriverHandles& h) { h.service->GetSpindleDriver(2); }, "identifiers are 0 to 1"},
    {"stopper index", [](DriverHandles& h) { h.service->GetStopperPosition(2); }, "use 0 (inner) or 1 (outer)"},
    {"stopper angle", [](DriverHandles& h) { h.service->SetStopperPosition(0, 45.0); }, "outside the range 2 to 40"},
    {"measurement index", [](DriverHandles& h) { h.service->GetMeasurementPosition(-1); }, "use 0 (inner)"},
    {"geometry index", [](DriverHandles& h) { h.service->SetStageGeometry(3, 1.0); }, "0 (Stage2Spindle)"},
    {"geometry value", [](DriverHandles& h) { h.service->SetStageGeometry(0, 1.0); }, "outside the range 40 to 150"},
    {"adjust index", [](DriverHandles& h) { h.service->SetPiezoAdjust(6, 1); }, "indexes are 0 to 5"},
    {"adjust value", [](DriverHandles& h) { h.service->SetPiezoAdjust(0, 4096); }, "outside the range 0 to 4095"},
    {"backlash index", [](DriverHandles& h) { h.service->GetBacklashCompensation(5); }, "indexes are 0 to 4"},
    {"backlash value", [](DriverHandles& h) { h.service->SetBacklashCompensation(0, -1); }, "outside the range"},
    {"position selector", [](DriverHandles& h) { h.loadPosition->GetLoadPosition(0); }, "use 1 (load position)"},
    {"stage position code", [](DriverHandles& h) { h.service->MoveToPosition(3); }, "use 0 (home)"},
    {"spindle state code", [](DriverHandles& h) { h.service->SetSpindleState(-1); }, "3 (UNLOCK)"},
    {"home state", [](DriverHandles& h) { h.driver->SetHomeState(3); }, "1 (stop), 2 (standby) or 4 (run)"},
    {"load method", [](DriverHandles& h) { h.driver->SetLoadMethod(7); }, "allowed: 0 (Dynamic)"},
    {"spinstand type", [](DriverHandles& h) { h.service->SetSpinstandType(-2); }, "allowed: 0 (Standard)"},
    {"head face", [](DriverHandles& h) { h.service->SetHeadFace(2); }, "1 (down face) or 0 (up face)"},
    {"speed", [](DriverHandles& h) { h.service->SetSpindleRpm(3999); }, "outside the range 4000 to 15000 rpm"},
    {"speed range", [](DriverHandles& h) { h.service->SetSpeedRange(9000, 8000); }, "minimum must be below"},
    {"disk size range", [](DriverHandles& h) { h.service->SetDiskSizeRange(0.04, 0.03); }, "reversed"},
    {"data area pitch", [](DriverHandles& h) { h.driver->SetDataArea(0.012, 50000, 0.0); }, "track pitch 0 m"},
    {"data area beyond the disk", [](DriverHandles& h) { h.driver->SetDataArea(0.012, 1000000, 1e-6); },
     "beyond the largest disk radius"},
    {"load radius", [](DriverHandles& h) { h.loadPosition->SetLoadPosition(2, {0.2, kNoSkew}, -1); },
     "out of the stage's reach"},
    {"load speed", [](DriverHandles& h) { h.loadPosition->SetLoadPosition(2, {0.03, kNoSkew}, 0); }, "or -1"},
    {"calibration coefficients",
     [](DriverHandles& h) { h.service->SetPiezoCalCoef({0, 100, 0, 4e-6, {1, 2}}); }, "5 coefficients, not 2"},
    {"calibration ranges", [](DriverHandles& h) { h.service->SetPiezoCalCoef({100, 0, 0, 4e-6, {0, 0, 0, 0, 0}}); },
     "must be below Vmax"},
    {"control data rows", [](DriverHandles& h) { h.service->SetPiezoControlData({{1e-8}, {}, {}, {}, {}}); },
     "Lth needs 2 values, not 1"},
    {"identity text", [](DriverHandles& h) { h.service->SetSerialNumber(std::string(33, 'x')); },
     "at most 32 characters"},
    {"jog pulses", [](DriverHandles& h) { h.service->Jog(false, 0); }, "outside the range 1 to 100000"},
    {"stage motor code", [](DriverHandles& h) { h.service->SetStageMotor(2); }, "0 (off) or 1 (standby)"},
};

class SimBadInput : public SimTest {};

TEST_F(SimBadInput, IsRefusedWithADescriptionOfWhatIsAllowed) {
    openAndInitialize();
    const auto before = std::make_tuple(h.driver->GetState(), h.service->GetSpeedRange(), h.driver->GetDataArea(),
                                        h.service->GetPiezoCalCoef(), h.loadPosition->GetLoadPosition(2));
    for (const BadInput& bad : kBadInputs) {
        const std::string said = failure([&] { bad.run(h); });
        EXPECT_NE(said.find(bad.says), std::string::npos) << bad.call << ": " << said;
    }
    EXPECT_EQ(before, std::make_tuple(h.driver->GetState(), h.service->GetSpeedRange(), h.driver->GetDataArea(),
                                      h.service->GetPiezoCalCoef(), h.loadPosition->GetLoadPosition(2)));
}

// Some drivers number their lists from 1: the simulator plays one on request, and the indexes follow the lists.
class SimOneBasedLists : public SimTest {
protected:
    SimOneBasedLists() : SimTest(sim::SimOptions{.statePath = ":memory:", .listLower = 1}) {}
};

TEST_F(SimOneBasedLists, EveryListStartsAtOneAndTheIndexesBelowAndAboveAreRefused) {
    openAndInitialize();
    IDriverService& s = *h.service;
    for (const NameList& list : {s.GetPiezoAdjustList(), s.GetPiezoCalCoefNames(), s.GetBacklashCompensationList()})
        EXPECT_EQ(list.lower, 1);
    for (const PropertyList& list : {s.GetSpindlePropertyList(), s.GetStagePropertyList(), s.GetSpindleDriverItems()})
        EXPECT_EQ(list.lower, 1);
    EXPECT_NE(failure([&] { s.GetPiezoAdjust(0); }).find("indexes are 1 to 6"), std::string::npos);
    EXPECT_NE(failure([&] { s.SetPiezoAdjust(7, 1); }).find("indexes are 1 to 6"), std::string::npos);
    EXPECT_NE(failure([&] { s.SetBacklashCompensation(0, 1); }).find("indexes are 1 to 5"), std::string::npos);
    EXPECT_EQ(failure([&] { s.SetBacklashCompensation(5, 77); }), "");
    EXPECT_EQ(s.GetBacklashCompensation(5), 77);
    EXPECT_NE(lastLine().find("IDriverService.GetBacklashCompensation(5) -> 77"), std::string::npos) << lastLine();
}

} // namespace
} // namespace vss::test
