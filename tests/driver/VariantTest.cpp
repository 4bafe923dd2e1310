#include "driver/Interfaces.h"

#include <gtest/gtest.h>

using vss::Guid;
using vss::Variant;

TEST(Variant, KeepsTheTypeItWasGiven) {
    EXPECT_EQ(Variant().type(), Variant::Type::Empty);
    EXPECT_EQ(Variant::null().type(), Variant::Type::Null);
    EXPECT_EQ(Variant(std::int16_t{3}).type(), Variant::Type::Int16);
    EXPECT_EQ(Variant(std::int32_t{3}).type(), Variant::Type::Int32);
    EXPECT_EQ(Variant(3.0).type(), Variant::Type::Double);
    EXPECT_EQ(Variant(true).type(), Variant::Type::Bool);
    EXPECT_EQ(Variant("x").type(), Variant::Type::Text);
}

TEST(Variant, ComparesNumbersByValueAcrossWidths) {
    EXPECT_TRUE(Variant(std::int16_t{3}).equals(std::int32_t{3}));
    EXPECT_TRUE(Variant(std::int16_t{3}).equals(3.0));
    EXPECT_TRUE(Variant(true).equals(std::int16_t{-1}));
    EXPECT_FALSE(Variant(std::int16_t{3}).equals(std::int32_t{4}));
    // Same value, different type: equal for the program, not identical.
    EXPECT_FALSE(Variant(std::int16_t{3}) == Variant(std::int32_t{3}));
}

TEST(Variant, NullEqualsNothingAndTextNeverEqualsANumber) {
    EXPECT_FALSE(Variant::null().equals(Variant::null()));
    EXPECT_FALSE(Variant::null().equals(std::int32_t{0}));
    EXPECT_FALSE(Variant("3").equals(std::int32_t{3}));
    EXPECT_TRUE(Variant().equals(std::int32_t{0}));
    EXPECT_TRUE(Variant().equals(""));
    EXPECT_FALSE(Variant().equals("x"));
    EXPECT_TRUE(Variant("abc").equals("abc"));
    EXPECT_FALSE(Variant("abc").equals("ABC"));
}

TEST(Guid, ParsesAndPrintsTheRegistryForm) {
    constexpr Guid g = Guid::parse("{ac6bd6dc-d3fe-46f8-a82e-ada730955d46}");
    EXPECT_EQ(g, vss::IDriver::kIid);
    EXPECT_EQ(g.toString(), "{AC6BD6DC-D3FE-46F8-A82E-ADA730955D46}");
    EXPECT_THROW(Guid::parse("AC6BD6DC-D3FE-46F8-A82E-ADA730955D46"), std::invalid_argument);
    EXPECT_THROW(Guid::parse("{AC6BD6DC-D3FE-46F8-A82E-ADA730955D4G}"), std::invalid_argument);
}

TEST(Guid, TheTwelveIdentifiersDiffer) {
    const Guid ids[] = {vss::IDriver::kIid,           vss::IDriverPiezo::kIid,    vss::IDriverStage::kIid,
                        vss::IDriverLoadPosition::kIid, vss::IDriverHeadLoader::kIid, vss::IDriverSpindle::kIid,
                        vss::IDriverClamp::kIid,      vss::IDriverHeadFace::kIid, vss::IDriverIndex::kIid,
                        vss::IDriverInterlock::kIid,  vss::IDriverDiskSize::kIid, vss::IDriverService::kIid};
    for (std::size_t i = 0; i < std::size(ids); ++i)
        for (std::size_t j = i + 1; j < std::size(ids); ++j)
            EXPECT_NE(ids[i], ids[j]) << i << " " << j;
}
