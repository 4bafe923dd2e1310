#include "operation/OperationLogic.h"

#include <array>
#include <gtest/gtest.h>

using namespace vss::operation;

namespace {
constexpr std::array<std::int32_t, 7> kSpeeds{4000, 4200, 5400, 7200, 10000, 12000, 15000};
constexpr vss::SpeedRange kWide{4000, 15000};
} // namespace

TEST(OperationState, EveryCodeHasItsTextAndUnknownCodesReadOther) {
    const std::pair<std::int32_t, std::string_view> cases[] = {
        {0x1000, "CLOSED"},  {0x2000, "OPEN"},      {0x2100, "UNINITIALIZED"}, {0x2200, "INITIALIZED"},
        {0x2210, "AT HOME"}, {0x2211, "HOME(OFF)"}, {0x2212, "HOME(STANDBY)"}, {0x2214, "HOME(RUN)"},
        {0x2220, "LOADED"},  {0x2240, "OTHER"},     {0x3000, "OTHER"},         {0, "OTHER"}};
    for (const auto& [code, text] : cases)
        EXPECT_EQ(stateText(code), text) << std::hex << code;
}

TEST(OperationState, OnlyLoadedEnablesThePositionButtons) {
    EXPECT_TRUE(positionButtonsEnabled(0x2220));
    for (std::int32_t code : {0x2214, 0x2210, 0x2100, 0x2240, 0x2221})
        EXPECT_FALSE(positionButtonsEnabled(code)) << std::hex << code;
}

TEST(OperationState, SpindleStateTextsIncludingUndefinedCodes) {
    EXPECT_EQ(spindleStateTexts(0).state, "OFF");
    EXPECT_EQ(spindleStateTexts(0).mediaChange, "Yes");
    EXPECT_EQ(spindleStateTexts(3).state, "UNLOCK");
    EXPECT_EQ(spindleStateTexts(3).mediaChange, "No");
    EXPECT_EQ(spindleStateTexts(-1).state, "UNKNOWN");
    EXPECT_EQ(spindleStateTexts(5).state, "");
    EXPECT_EQ(spindleStateTexts(5).mediaChange, "");
    // The code is compared as a 16-bit value.
    EXPECT_EQ(spindleStateTexts(0x10002).state, "RUN");
}

TEST(SpeedStepping, ASpeedNotInTheListStepsFromTheNextLargerEntry) {
    EXPECT_EQ(stepSpeed(kSpeeds, 5000, kWide, -1), 4200);
    EXPECT_EQ(stepSpeed(kSpeeds, 5000, kWide, +1), 7200);
}

TEST(SpeedStepping, EndsOfTheListAreLimitedByTheRange) {
    EXPECT_EQ(stepSpeed(kSpeeds, 4000, vss::SpeedRange{4100, 15000}, -1), 4100);   // index -1 gives 0, raised
    EXPECT_EQ(stepSpeed(kSpeeds, 15000, vss::SpeedRange{4000, 14000}, +1), 14000); // index 7 cut back to 6
    EXPECT_EQ(stepSpeed(kSpeeds, 7200, vss::SpeedRange{4000, 8000}, +1), 8000);
    EXPECT_EQ(stepSpeed(kSpeeds, 20000, kWide, +1), 15000);
}

TEST(SpeedStepping, AnIndexPastTheEndIsCutBackForTheCaller) {
    std::int16_t index = IndexOfSpeed(kSpeeds, 16000);
    EXPECT_EQ(index, 7);
    EXPECT_EQ(SpeedAtIndex(kSpeeds, index, kWide), 15000);
    EXPECT_EQ(index, 6);
    std::int16_t below = -1;
    EXPECT_EQ(SpeedAtIndex(kSpeeds, below, vss::SpeedRange{0, 8000}), 0);
    EXPECT_EQ(below, -1);
}

TEST(PositionDefaults, AreThreePointZeroFiveMillimetresInsideEachEndAndTheMiddle) {
    const auto d = positionDefaults(0.012, 0.040);
    EXPECT_NEAR(d.pos1, 0.01505, 1e-12);
    EXPECT_NEAR(d.pos2, 0.026, 1e-12);
    EXPECT_NEAR(d.pos3, 0.03695, 1e-12);
}
