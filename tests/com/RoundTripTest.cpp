// The client against the registered simulator server: the same run through COM and in-process must reach the
// instrument with the same calls and give back the same results; failures, creation and leaks.

#include "driver/Trace.h"
#include "com/ComClient.h"
#include "simulator/SimInstrument.h"
#include "tests/com/ComTestSupport.h"

#include <algorithm>
#include <regex>

namespace vss::com::test {
namespace {

using RoundTrip = ComTest;

// A backlash save stamps the wall-clock time, which may tick between the run in process and the run through
// COM: the dates read after a save are compared by their form only.
std::vector<std::string> withoutSaveTimes(std::vector<std::string> lines) {
    static const std::regex date(R"("\d{4}-\d\d-\d\d \d\d:\d\d:\d\d")");
    for (std::string& line : lines)
        if (line.starts_with("IDriverService.GetBacklashDate() -> "))
            line = std::regex_replace(line, date, "(a date)");
    return lines;
}

// The first line where two traces part, with its number; empty when they are the same.
std::string firstDifference(std::vector<std::string> actual, std::vector<std::string> expected) {
    actual = withoutSaveTimes(std::move(actual));
    expected = withoutSaveTimes(std::move(expected));
    const auto [a, e] = std::mismatch(actual.begin(), actual.end(), expected.begin(), expected.end());
    if (a == actual.end() && e == expected.end())
        return "";
    return "line " + std::to_string(a - actual.begin() + 1) + ": " + (a == actual.end() ? "(end)" : *a) +
           "\n expected: " + (e == expected.end() ? "(end)" : *e);
}

// Run on instruments that number their lists from 0 and from 1: the bounds cross with the lists.
class EveryOperation : public ComTest, public ::testing::WithParamInterface<std::int16_t> {};

TEST_P(EveryOperation, GivesTheSameResultsAndTraceAsInProcess) {
    const std::int16_t listLower = GetParam();
    sim::SimInstrument local(sim::SimOptions{.statePath = ":memory:", .listLower = listLower});
    {
        auto object = local.createObject();
        local.trace().clear();
        exerciseEveryOperation(*object);
    }
    const std::vector<std::string> expected = local.trace().lines();

    ServerInstrument server(listLower);
    auto client = std::make_shared<TraceBuffer>();
    server.clearTrace();
    {
        auto object = ComDriverObject::create(kProgId);
        exerciseEveryOperation(*WithTrace(object, client));
    }

    ASSERT_GT(expected.size(), 150u);
    // What the instrument saw through COM: the same calls with the same arguments, in the same order.
    EXPECT_EQ(firstDifference(server.trace(), expected), "");
    // What the client got back: the same results and the same failure descriptions.
    EXPECT_EQ(firstDifference(client->lines(), expected), "");
    if (listLower != 0) { // the lists' first index is in the trace, so the bounds crossed
        EXPECT_NE(std::find(expected.begin(), expected.end(),
                            "IDriverService.GetBacklashCompensationList() -> [1: \"A (ID to outer)\", "
                            "\"B (ID to inner)\", \"C (OD to inner)\", \"D (OD to outer)\", \"E (Home to Inner)\"]"),
                  expected.end());
    }
}

INSTANTIATE_TEST_SUITE_P(Lists, EveryOperation, ::testing::Values(std::int16_t{0}, std::int16_t{1}),
                         [](const ::testing::TestParamInfo<std::int16_t>& p) {
                             return "NumberedFrom" + std::to_string(p.param);
                         });

TEST_F(RoundTrip, DriverFailureArrivesWithTheDriversDescription) {
    ServerInstrument server;
    auto object = ComDriverObject::create(kProgId);
    auto driver = QueryInterface<IDriver>(*object);
    driver->Open("QTB::R2208C");
    server.failOperation("IDriver.GetState", "The instrument does not answer on QTB::R2208C.", 1);
    try {
        driver->GetState();
        FAIL() << "the injected failure did not arrive";
    } catch (const DriverError& e) {
        EXPECT_EQ(e.description(), "The instrument does not answer on QTB::R2208C.");
        EXPECT_LT(e.code(), 0);
    }
    EXPECT_NO_THROW(driver->GetState()); // failed once only

    // The instrument's own refusal crosses the same way.
    try {
        driver->Open("GPIB0::1");
        FAIL() << "an unknown resource was accepted";
    } catch (const DriverError& e) {
        EXPECT_NE(e.description().find("GPIB0::1"), std::string::npos) << e.description();
    }
}

TEST_F(RoundTrip, UnregisteredProgIdFailsWithTheSystemsDescription) {
    const char* missing = "Vlkd2208.NoSuchDriver";
    try {
        ComDriverObject::create(missing);
        FAIL() << "an unregistered ProgID created an object";
    } catch (const DriverError& e) {
        EXPECT_NE(e.description().find("\"Vlkd2208.NoSuchDriver\""), std::string::npos) << e.description();
        EXPECT_NE(e.description().find("no driver is registered"), std::string::npos) << e.description();
        EXPECT_NE(e.description().find("0x800401F3"), std::string::npos) << e.description();
        EXPECT_EQ(static_cast<std::uint32_t>(e.code()), 0x800401F3u);
    }
}

TEST_F(RoundTrip, AnIdentifierOutsideTheContractIsRefusedByName) {
    auto object = ComDriverObject::create(kProgId);
    const Guid stranger = Guid::parse("{00000000-1111-2222-3333-444444444444}");
    try {
        object->QueryInterface(stranger);
        FAIL();
    } catch (const DriverError& e) {
        EXPECT_NE(e.description().find("{00000000-1111-2222-3333-444444444444}"), std::string::npos);
    }
}

TEST_F(RoundTrip, TenThousandCallsLeaveNoStringArrayOrVariantBehind) {
    ServerInstrument server;
    auto object = ComDriverObject::create(kProgId);
    auto driver = QueryInterface<IDriver>(*object);
    auto service = QueryInterface<IDriverService>(*object);
    driver->Open("QTB::R2208C");
    const std::int16_t firstStageId = service->GetStagePropertyList().ids.at(0);
    server.failOperation("IDriverService.GetBacklashDate", "No backlash data.", -1);

    const AllocationCounts before = allocationCounts() + server.counts();
    for (int i = 0; i < 1000; ++i) {
        driver->GetLoadMethodList();                               // two lists
        driver->GetHardwareRevision();                             // a text
        service->SetHardwareRevision("HW " + std::to_string(i));   // a text in
        service->GetStagePropertyList();                           // three lists
        service->SetStageProperty(0, service->GetStageProperty(firstStageId)); // a value out and in
        service->SetPiezoCalCoef(service->GetPiezoCalCoef());      // a list of doubles out and in
        service->SetPiezoControlData(service->GetPiezoControlData()); // five lists out and in
        EXPECT_THROW(service->GetBacklashDate(), DriverError);     // a failure with its description
    }
    const AllocationCounts after = allocationCounts() + server.counts();

    EXPECT_GE(after.strings - before.strings, 5000);
    EXPECT_GE(after.arrays - before.arrays, 12000);
    EXPECT_EQ(after.strings - before.strings, after.stringFrees - before.stringFrees);
    EXPECT_EQ(after.arrays - before.arrays, after.arrayFrees - before.arrayFrees);
    EXPECT_EQ(after.variants - before.variants, after.variantFrees - before.variantFrees);
}

} // namespace
} // namespace vss::com::test
