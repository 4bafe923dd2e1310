// The trace format that tests, the user's trace file and later checks read, the driver object's own events
// (query, release, creation), fault injection and creation by ProgID.

#include "tests/simulator/SimFixture.h"

#include "simulator/Factory.h"

namespace vss::test {
namespace {

TEST(TraceFormat, WritesValuesSoThatTheyReadBackTheSame) {
    EXPECT_EQ(traceformat::number(0.0125), "0.0125");
    EXPECT_EQ(traceformat::number(9.91e37), "9.91e+37");
    EXPECT_EQ(traceformat::number(0.1 + 0.2), "0.30000000000000004");
    EXPECT_EQ(traceformat::number(7200), "7200");
    EXPECT_EQ(traceformat::number(-5.6e-7), "-5.6e-07");
    EXPECT_EQ(traceformat::text("a \"b\" \\c\nd"), R"("a \"b\" \\c\nd")");
    EXPECT_EQ(traceformat::value(Variant(std::int16_t{3})), "(Integer)3");
    EXPECT_EQ(traceformat::value(Variant(std::int32_t{-3})), "(Long)-3");
    EXPECT_EQ(traceformat::value(Variant(2.5)), "(Double)2.5");
    EXPECT_EQ(traceformat::value(Variant(true)), "(Boolean)true");
    EXPECT_EQ(traceformat::value(Variant("x")), "(String)\"x\"");
    EXPECT_EQ(traceformat::value(Variant()), "Empty");
    EXPECT_EQ(traceformat::value(Variant::null()), "Null");
}

class TraceLines : public SimTest {};

TEST(TraceBuffer, KeepsTheNewestLinesUpToItsCapacity) {
    TraceBuffer buffer(3);
    for (const char* line : {"a", "b", "c", "d", "e"})
        buffer.write(line);
    EXPECT_EQ(buffer.lines(), (std::vector<std::string>{"c", "d", "e"}));
    buffer.clear();
    buffer.write("f");
    EXPECT_EQ(buffer.lines(), std::vector<std::string>{"f"});
}

TEST_F(TraceLines, WriteArgumentsAndResultsOfEveryShape) {
    open();
    sim.trace().clear();
    h.loadPosition->SetLoadPosition(loadposition::Load, {0.0125, kNoSkew}, -1);
    h.loadPosition->GetLoadPosition(loadposition::Load);
    h.service->GetMeasurementPosition(0);
    h.service->GetSpinstandTypeList();
    h.service->SetStageProperty(0, std::int16_t{1});
    h.service->GetSpindleDriverItems();
    h.service->SetSerialNumber("say \"hi\"");
    h.service->GetPiezoCalCoef();
    h.driver->GetDataArea();
    h.service->GetStopperSensors();
    EXPECT_EQ(sim.trace().lines(), (std::vector<std::string>{
                                       "IDriverLoadPosition.SetLoadPosition(1, {0.0125, 9.91e+37}, -1)",
                                       "IDriverLoadPosition.GetLoadPosition(1) -> {0.0125, -14.19}, 7200",
                                       "IDriverService.GetMeasurementPosition(0) -> 0.012, -15.2",
                                       "IDriverService.GetSpinstandTypeList() -> [\"Standard\", \"High Speed\", "
                                       "\"Compact\"], [0, 1, 2]",
                                       "IDriverService.SetStageProperty(0, (Integer)1)",
                                       "IDriverService.GetSpindleDriverItems() -> [0, 1], [\"Rotation\", \"Type\"], "
                                       "[\"\", \"\"]",
                                       "IDriverService.SetSerialNumber(\"say \\\"hi\\\"\")",
                                       "IDriverService.GetPiezoCalCoef() -> 0, 100, 0, 4e-06, [0, 4.1e-08, -1e-11, "
                                       "0, 0]",
                                       "IDriver.GetDataArea() -> 0.012, 50000, 5.6e-07",
                                       "IDriverService.GetStopperSensors() -> false, true",
                                   }));
}

// A list numbered from 0 is written as its elements; any other first index is written in front of them.
class TraceOfOneBasedLists : public SimTest {
protected:
    TraceOfOneBasedLists() : SimTest(sim::SimOptions{.statePath = ":memory:", .listLower = 1}) {}
};

TEST_F(TraceOfOneBasedLists, WritesTheFirstIndexOfEveryList) {
    open();
    sim.trace().clear();
    h.service->GetSpindleDriverItems();
    h.service->GetPiezoCalCoefNames();
    EXPECT_EQ(sim.trace().lines(),
              (std::vector<std::string>{
                  "IDriverService.GetSpindleDriverItems() -> [1: 0, 1], [1: \"Rotation\", \"Type\"], [1: \"\", \"\"]",
                  "IDriverService.GetPiezoCalCoefNames() -> [1: \"K0\", \"K1\", \"K2\", \"K3\", \"K4\"]",
              }));
}

TEST_F(TraceLines, WriteFailuresWithTheDriversDescription) {
    open();
    EXPECT_THROW(h.driver->SetSpindleSpeed(99999), DriverError);
    EXPECT_EQ(lastLine(), "IDriver.SetSpindleSpeed(99999) !! The spindle speed 99999 rpm is outside the range 4000 to "
                          "15000 rpm.");
}

TEST_F(TraceLines, RecordQueriesAndTheReleaseOfEachHandle) {
    sim.trace().clear();
    auto stage = QueryInterface<IDriverStage>(*object);
    auto copy = stage;
    EXPECT_EQ(lastLine(), "CoDriver.QueryInterface(IDriverStage) -> {463FDC52-FCE8-4245-AC5F-6A6B967527C0}");
    stage.reset();
    EXPECT_EQ(sim.trace().lines().size(), 1u); // a copy still holds the handle
    copy.reset();
    EXPECT_EQ(lastLine(), "IDriverStage.Release()");

    const Guid unknown = Guid::parse("{00000000-0000-0000-0000-000000000001}");
    const std::string refused = failure([&] { object->QueryInterface(unknown); });
    EXPECT_NE(refused.find("{00000000-0000-0000-0000-000000000001}"), std::string::npos) << refused;
    EXPECT_EQ(lastLine(), "CoDriver.QueryInterface({00000000-0000-0000-0000-000000000001}) !! " + refused);
}

TEST_F(TraceLines, AnswersEveryIdentifierWithItsOwnInterface) {
    EXPECT_NE(std::dynamic_pointer_cast<IDriverService>(object->QueryInterface(IDriverService::kIid)), nullptr);
    EXPECT_EQ(std::dynamic_pointer_cast<IDriver>(object->QueryInterface(IDriverService::kIid)), nullptr);
    EXPECT_NE(std::dynamic_pointer_cast<IDriverDiskSize>(object->QueryInterface(IDriverDiskSize::kIid)), nullptr);
}

TEST_F(TraceLines, InjectedFaultsFailOnceNTimesOrUntilCleared) {
    open();
    sim.failOperation("IDriver.GetState", "once");
    EXPECT_EQ(failure([&] { h.driver->GetState(); }), "once");
    EXPECT_EQ(failure([&] { h.driver->GetState(); }), "");

    sim.failOperation("IDriverInterlock.GetInterlock", "twice", 2);
    EXPECT_EQ(failure([&] { h.interlock->GetInterlock(); }), "twice");
    EXPECT_EQ(failure([&] { h.interlock->GetInterlock(); }), "twice");
    EXPECT_EQ(failure([&] { h.interlock->GetInterlock(); }), "");

    sim.failOperation("CoDriver.QueryInterface", "always", -1);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(failure([&] { QueryInterface<IDriver>(*object); }), "always");
    sim.clearFailures();
    EXPECT_NO_THROW(QueryInterface<IDriver>(*object));

    sim.failOperation("CoDriver.QueryInterface(IDriverIndex)", "this one only", -1);
    EXPECT_EQ(failure([&] { QueryInterface<IDriverIndex>(*object); }), "this one only");
    EXPECT_EQ(failure([&] { QueryInterface<IDriverClamp>(*object); }), "");
    sim.clearFailures();

    for (const char* typo : {"IDriver.Lode", "CoDriver.QueryInterface(IDriverIndx)", "CoDriver.QueryInterface()"})
        EXPECT_THROW(sim.failOperation(typo, "typo"), std::invalid_argument) << typo;
}

TEST(createDriverObject, ResolvesTheProgIdToTheSimulatorAndTracesTheCreation) {
    auto instrument = std::make_shared<sim::SimInstrument>(sim::SimOptions{":memory:", false, true});
    auto sink = std::make_shared<TraceBuffer>();
    DriverOptions options;
    options.simulator = instrument;
    options.trace = sink;

    auto object = createDriverObject(kDriverProgId, options);
    QueryInterface<IDriver>(*object)->Open(std::string(kDefaultResource));
    EXPECT_EQ(sink->lines(), (std::vector<std::string>{
                                 "CoDriver.Create(\"Vlkd2208.CoDriver\") -> simulator",
                                 "CoDriver.QueryInterface(IDriver) -> {AC6BD6DC-D3FE-46F8-A82E-ADA730955D46}",
                                 "IDriver.Open(\"QTB::R2208C\")",
                                 "IDriver.Release()",
                             }));
    EXPECT_EQ(instrument->trace().lines().size(), 3u); // the instrument's own trace saw the same calls

    const std::string refused = failure([&] { createDriverObject("Nobody.Driver", options); });
    EXPECT_EQ(refused, "Cannot create the driver object \"Nobody.Driver\": no driver is registered under this name.");
    EXPECT_EQ(sink->lines().back(), "CoDriver.Create(\"Nobody.Driver\") !! " + refused);
}

// Where the platform has registered drivers, the instrument's own ProgID unregistered is an error: a broken
// driver installation must not pass for the instrument. Only --simulate brings the simulator there.
TEST(createDriverObject, UsesOnlyTheRegisteredDriverWhereThePlatformHasOnesUnlessTheSimulatorIsForced) {
    auto registered = sim::SimInstrument(sim::SimOptions{":memory:", false, true}).createObject();
    int asked = 0;
    setPlatformResolver([&](std::string_view progId) -> std::shared_ptr<DriverObject> {
        ++asked;
        return progId == "Other.Driver" ? registered : nullptr;
    });
    DriverOptions options;
    options.simulator = std::make_shared<sim::SimInstrument>(sim::SimOptions{":memory:", false, true});
    EXPECT_EQ(createDriverObject("Other.Driver", options), registered);
    EXPECT_EQ(failure([&] { createDriverObject(kDriverProgId, options); }),
              "Cannot create the driver object \"Vlkd2208.CoDriver\": no driver is registered under this name.");
    options.forceSimulator = true;
    EXPECT_NE(createDriverObject(kDriverProgId, options), nullptr);
    EXPECT_THROW(createDriverObject("Other.Driver", options), DriverError);
    EXPECT_EQ(asked, 2);
    setPlatformResolver(nullptr);
}

} // namespace
} // namespace vss::test
