// The simulated instrument's session and state machine: what each command does to the state code, and which
// commands it refuses in which state.

#include "SimFixture.h"

namespace vss::test {
namespace {

using sim::Input;

class SimState : public SimTest {};

// Outside a session the instrument answers only its state (CLOSED); every other call is refused.
TEST_F(SimState, OpensOnlyOnItsResourceAndRefusesCallsOutsideASession) {
    EXPECT_EQ(h.driver->GetState(), state::Closed);
    EXPECT_EQ(failure([&] { h.driver->GetSerialNumber(); }), "The instrument session is not open: call Open first.");
    const std::string wrong = failure([&] { h.driver->Open("QTB::R9999"); });
    EXPECT_NE(wrong.find("\"QTB::R9999\""), std::string::npos) << wrong;
    EXPECT_NE(wrong.find("\"QTB::R2208C\""), std::string::npos) << wrong;
    EXPECT_EQ(h.driver->GetState(), state::Closed); // a failed Open opens nothing
    open();
    EXPECT_EQ(h.driver->GetState(), state::Uninitialized);
    h.driver->Close();
    EXPECT_EQ(h.driver->GetState(), state::Closed);
    EXPECT_EQ(failure([&] { h.service->GetSerialNumber(); }), "The instrument session is not open: call Open first.");
    EXPECT_NE(failure([&] { h.service->ResetService(); }), "");
}

TEST_F(SimState, WalksFromOpenThroughHomeToLoadedAndBack) {
    open();
    EXPECT_NE(failure([&] { h.driver->Reset(); }).find("not initialized"), std::string::npos);
    h.driver->Initialize();
    EXPECT_EQ(h.driver->GetState(), state::HomeOff); // the factory home state is "stop"
    h.clamp->SetClamp(true);
    EXPECT_EQ(h.driver->GetState(), state::HomeStandby);
    h.spindle->SetMotor(true);
    EXPECT_EQ(h.driver->GetState(), state::HomeRun);
    EXPECT_EQ(h.service->GetSpindleState(), spindlestate::Run);
    h.driver->Load();
    EXPECT_EQ(h.driver->GetState(), state::Loaded);
    EXPECT_DOUBLE_EQ(h.driver->GetPosition().radius, 0.03); // the factory load position
    h.driver->Unload();
    EXPECT_EQ(h.driver->GetState(), state::HomeOff); // back home, the spindle as set for home
    EXPECT_FALSE(h.spindle->GetMotor());
    EXPECT_FALSE(h.clamp->GetClamp());
}

TEST_F(SimState, HomeStateTakesEffectAtHomeAndAfterReset) {
    openAndInitialize();
    h.driver->SetHomeState(homestate::Run);
    EXPECT_EQ(h.driver->GetState(), state::HomeRun);
    h.driver->Load();
    h.driver->SetHomeState(homestate::Standby); // loaded: kept for the return home
    EXPECT_EQ(h.driver->GetState(), state::Loaded);
    h.driver->Reset();
    EXPECT_EQ(h.driver->GetState(), state::HomeStandby);
    EXPECT_EQ(h.service->GetSpindleState(), spindlestate::Standby);
}

// A home state the spindle cannot take now is refused and changes nothing: not the setting, not the clamp.
TEST_F(SimState, RefusedHomeStateLeavesSettingAndSpindleAsTheyWere) {
    openAndInitialize();
    sim.setInput(Input::OuterCover, true);
    EXPECT_NE(failure([&] { h.driver->SetHomeState(homestate::Run); }).find("outer cover is open"),
              std::string::npos);
    EXPECT_EQ(h.driver->GetHomeState(), homestate::Stop);
    EXPECT_FALSE(h.clamp->GetClamp()); // the clamp that went on before the motor was refused is off again
    EXPECT_FALSE(h.service->GetVacuum());
    EXPECT_EQ(h.driver->GetState(), state::HomeOff);
    sim.setInput(Input::OuterCover, false);

    h.driver->SetHomeState(homestate::Run);
    sim.setInput(Input::OuterCover, true);
    h.driver->SetHomeState(homestate::Standby); // stopping needs no closed cover
    EXPECT_EQ(h.driver->GetState(), state::HomeStandby);
    sim.setInput(Input::OuterCover, false);

    h.driver->SetHomeState(homestate::Stop);
    sim.setInput(Input::SpindleSet, false);
    EXPECT_NE(failure([&] { h.driver->SetHomeState(homestate::Standby); }).find("no disk"), std::string::npos);
    EXPECT_EQ(h.driver->GetHomeState(), homestate::Stop);
    EXPECT_EQ(h.driver->GetState(), state::HomeOff);
}

TEST_F(SimState, RefusesCommandsThatDoNotFitTheState) {
    openAndInitialize();
    double r = 0.02;
    EXPECT_NE(failure([&] { h.stage->MoveTo(r); }).find("the heads are not loaded"), std::string::npos);
    EXPECT_NE(failure([&] { h.driver->Load(); }).find("not running"), std::string::npos);
    EXPECT_NE(failure([&] { h.driver->Unload(); }).find("not loaded"), std::string::npos);
    EXPECT_NE(failure([&] { h.spindle->SetMotor(true); }).find("not clamped"), std::string::npos);
    h.clamp->SetClamp(true);
    h.spindle->SetMotor(true);
    EXPECT_NE(failure([&] { h.clamp->SetClamp(false); }).find("motor is running"), std::string::npos);
    h.driver->Load();
    EXPECT_NE(failure([&] { h.spindle->SetMotor(false); }).find("loaded"), std::string::npos);
    EXPECT_NE(failure([&] { h.driver->Load(); }).find("already loaded"), std::string::npos);
    EXPECT_NE(failure([&] { h.service->MoveToPosition(stageposition::Home); }).find("loaded"), std::string::npos);
    EXPECT_EQ(h.driver->GetState(), state::Loaded); // refusals change nothing
}

TEST_F(SimState, MovesStayBetweenTheStoppersAndReportTheRadiusReached) {
    loadHeads();
    double r = 0.025;
    h.stage->MoveTo(r);
    EXPECT_DOUBLE_EQ(r, 0.025);
    EXPECT_DOUBLE_EQ(h.driver->GetPosition().radius, 0.025);
    EXPECT_EQ(h.driver->GetPosition().track, 23214); // (0.025 - 0.012) / 5.6e-7
    double inner = h.service->GetMeasurementPosition(0).radius;
    h.stage->MoveTo(inner);
    EXPECT_TRUE(h.service->GetStagePositionFlags().atInner);
    double beyond = 0.041;
    const std::string refused = failure([&] { h.stage->MoveTo(beyond); });
    EXPECT_NE(refused.find("limited to the stoppers, 0.012 to 0.04 m"), std::string::npos) << refused;
}

TEST_F(SimState, MeasurementPositionsFollowStopperAnglesAndGeometry) {
    open();
    EXPECT_EQ(h.service->GetMeasurementPosition(0), (PositionRecord{0.012, -15.2}));
    EXPECT_EQ(h.service->GetMeasurementPosition(1), (PositionRecord{0.04, 9.44}));
    h.service->SetStopperPosition(stopper::Outer, 22.2711);
    EXPECT_DOUBLE_EQ(h.service->GetMeasurementPosition(1).radius, 0.03);
    h.service->SetStageGeometry(geometry::StageOffset, 6.0);
    EXPECT_GT(h.service->GetMeasurementPosition(1).radius, 0.03); // a longer arm reaches further out
}

TEST_F(SimState, BacklashMoveLoadsOutsideTheDiskOnlyWithoutRestriction) {
    loadHeads();
    h.driver->Unload();
    h.clamp->SetClamp(true);
    h.spindle->SetMotor(true);
    EXPECT_NE(failure([&] { h.loadPosition->SetLoadPosition(loadposition::Load, {0.05, kNoSkew}, -1); })
                  .find("disk size restriction"),
              std::string::npos);
    h.diskSize->SetDiskSizeRestriction(false);
    h.loadPosition->SetLoadPosition(loadposition::Load, {0.05, kNoSkew}, -1);
    h.driver->Load();
    double inner = h.service->GetMeasurementPosition(0).radius;
    h.stage->MoveTo(inner);
    double target = 0.02583;
    h.stage->MoveTo(target);
    EXPECT_DOUBLE_EQ(target, 0.02583);
    EXPECT_EQ(h.loadPosition->GetLoadPosition(loadposition::Load).rpm, 7200); // -1 kept the speed
}

// The backlash moves load at 0.05 m, beyond the disk, right after Initialize or Reset has stopped the spindle
// (home state "stop"): off the disk the heads load without it, over the disk they still need it spinning.
TEST_F(SimState, LoadNeedsTheSpindleOnlyOverTheDisk) {
    openAndInitialize();
    h.loadPosition->SetLoadPosition(loadposition::Load, {0.0475, kNoSkew}, -1); // the disk's edge
    EXPECT_NE(failure([&] { h.driver->Load(); }).find("not running"), std::string::npos);

    h.diskSize->SetDiskSizeRestriction(false);
    h.loadPosition->SetLoadPosition(loadposition::Load, {0.05, kNoSkew}, -1);
    h.driver->Load();
    EXPECT_EQ(h.driver->GetState(), state::Loaded);
    EXPECT_DOUBLE_EQ(h.driver->GetPosition().radius, 0.05);
    EXPECT_FALSE(h.spindle->GetMotor());
    double inner = h.service->GetMeasurementPosition(0).radius;
    EXPECT_NE(failure([&] { h.stage->MoveTo(inner); }).find("not spinning"), std::string::npos);

    h.driver->Reset(); // the next backlash move starts from a reset
    EXPECT_EQ(h.driver->GetState(), state::HomeOff);
    h.driver->Load();
    EXPECT_EQ(h.driver->GetState(), state::Loaded);
    h.driver->Unload();
    sim.setInput(Input::Interlock, true); // the other checks still hold off the disk
    EXPECT_NE(failure([&] { h.driver->Load(); }).find("interlock"), std::string::npos);
}

TEST_F(SimState, InputsGateMotionAndEmergencyNeedsANewInitialize) {
    openAndInitialize();
    h.clamp->SetClamp(true);
    sim.setInput(Input::OuterCover, true);
    EXPECT_TRUE(h.service->GetOuterCover());
    EXPECT_NE(failure([&] { h.spindle->SetMotor(true); }).find("outer cover is open"), std::string::npos);
    sim.setInput(Input::OuterCover, false);
    h.spindle->SetMotor(true);
    sim.setInput(Input::Interlock, true);
    EXPECT_TRUE(h.interlock->GetInterlock());
    EXPECT_NE(failure([&] { h.driver->Load(); }).find("interlock"), std::string::npos);
    sim.setInput(Input::Interlock, false);
    h.driver->Load();
    sim.setInput(Input::Emergency, true);
    EXPECT_EQ(h.driver->GetState(), state::Uninitialized);
    EXPECT_EQ(h.service->GetSpindleState(), spindlestate::Unknown);
    EXPECT_FALSE(h.spindle->GetMotor());
    EXPECT_NE(failure([&] { h.driver->Initialize(); }).find("emergency"), std::string::npos);
    sim.setInput(Input::Emergency, false);
    h.driver->Initialize();
    EXPECT_EQ(h.driver->GetState(), state::HomeOff); // initializing brings the spindle to its home state
}

TEST_F(SimState, ServiceDirectControlDrivesEveryActuator) {
    openAndInitialize();
    h.service->SetSpindleState(spindlestate::Unlock);
    EXPECT_EQ(h.service->GetSpindleState(), spindlestate::Unlock);
    h.service->SetSpindleState(spindlestate::Off);
    EXPECT_EQ(h.service->GetSpindleState(), spindlestate::Off);
    EXPECT_FALSE(h.service->GetVacuum());

    h.service->SetStopper(true);
    EXPECT_EQ(h.service->GetStopperSensors(), (StopperSensors{true, false}));
    h.service->SetLockdown(true);
    EXPECT_TRUE(h.service->GetLockdownSensor());
    h.service->SetStageMotor(0);

    h.service->MoveToPosition(stageposition::Inner); // frees the lockdown and powers the stage motor
    EXPECT_EQ(h.service->GetStagePositionFlags(), (StagePositionFlags{false, true, false}));
    EXPECT_FALSE(h.service->GetLockdown());
    EXPECT_EQ(h.service->GetStageMotor(), 1);
    EXPECT_EQ(h.service->GetStageRegion(), Variant(std::int16_t{2}));
    EXPECT_EQ(h.driver->GetState(), state::Other); // heads up away from home

    h.service->Jog(true, 101);
    EXPECT_EQ(h.service->GetStageRegion(), Variant(std::int16_t{3}));
    EXPECT_NE(failure([&] { h.service->Jog(true, 100000); }).find("end of its travel"), std::string::npos);
    h.service->MoveToPosition(stageposition::Home);
    EXPECT_TRUE(h.service->GetStagePositionFlags().atHome);

    h.service->SetHeadLoaderState(false); // down, at home: off the disk
    EXPECT_TRUE(h.headLoader->GetHeadLoader());
    EXPECT_EQ(h.driver->GetState(), state::Other);
    h.service->ResetService();
    EXPECT_TRUE(h.service->GetHeadLoaderState());
    EXPECT_EQ(h.driver->GetState(), state::HomeOff);
}

// The service panel's Reset is what brings the instrument up right after Open and after an emergency stop:
// it initializes, brings the stage home and frees it.
TEST_F(SimState, ServiceResetInitializesAfterOpenAndAfterAnEmergencyStop) {
    open();
    h.service->ResetService();
    EXPECT_EQ(h.driver->GetState(), state::HomeOff);

    h.service->Jog(true, 101);
    h.service->SetLockdown(true);
    sim.setInput(Input::Emergency, true);
    EXPECT_NE(failure([&] { h.service->ResetService(); }).find("emergency stop is active"), std::string::npos);
    EXPECT_EQ(h.driver->GetState(), state::Uninitialized);
    sim.setInput(Input::Emergency, false);
    h.service->ResetService();
    EXPECT_EQ(h.driver->GetState(), state::HomeOff);
    EXPECT_FALSE(h.service->GetLockdown());
    EXPECT_FALSE(h.service->GetLockdownSensor());
}

TEST_F(SimState, AnAbsentHeadLoaderFailsItsOperationsButStillAnswersTheQuery) {
    sim.setHeadLoaderPresent(false);
    auto loader = QueryInterface<IDriverHeadLoader>(*object);
    openAndInitialize();
    EXPECT_EQ(failure([&] { loader->GetHeadLoader(); }), "No head loader is installed on this instrument.");
    EXPECT_EQ(failure([&] { h.service->SetHeadLoaderState(false); }),
              "No head loader is installed on this instrument.");
    EXPECT_TRUE(h.service->GetHeadLoaderState());
}

TEST_F(SimState, PiezoBalancesOnlyWithTheLoopClosedAndTheZeroNearTheNull) {
    open();
    EXPECT_FALSE(h.service->GetPiezoBalanced());
    h.service->SetPiezoLoop(true);
    EXPECT_TRUE(h.service->GetPiezoBalanced());
    h.service->SetPiezoAdjust(0, 2100);
    EXPECT_FALSE(h.service->GetPiezoBalanced());
    h.service->SetPiezoAdjust(1, 2464); // moves the null point up by 52 counts
    EXPECT_TRUE(h.service->GetPiezoBalanced());
}

} // namespace
} // namespace vss::test
