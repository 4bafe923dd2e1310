#include "controls/FieldText.h"

#include "controls/FieldLayout.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <limits>

using vss::parseTypedNumber;
using vss::valueFromTypedText;
using vss::Variant;

TEST(TypedNumber, AcceptsBlanksSignPointsAndExponents) {
    const struct {
        const char* text;
        double number;
    } accepted[] = {{"25", 25},     {"  -12.5\t", -12.5}, {"+3", 3},     {".5", 0.5}, {"5.", 5},
                    {"1e3", 1000},  {"1.5E-3", 0.0015},   {"2e+2", 200}, {"007", 7},  {"-0", 0},
                    {"1,25", 1.25}, {"1e308", 1e308}};
    for (const auto& a : accepted)
        EXPECT_EQ(parseTypedNumber(a.text, ","), a.number) << a.text;
    // A multi-byte separator is matched as a whole.
    EXPECT_EQ(parseTypedNumber("1\u066B5", "\u066B"), 1.5);
}

TEST(TypedNumber, RejectsEverythingElse) {
    for (const char* text :
         {"",      "  ",   "abc", "-",   "+",     ".",     "e3",     "1e",     "1e+", "1 000", "- 5", "1.2.3",
          "1,000", "0x10", "inf", "nan", "12abc", "1e400", "-1e400", "1e-400", "--1", "1..2",  "\xff"})
        EXPECT_FALSE(parseTypedNumber(text)) << text;
}

TEST(TypedValue, ConvertsNumbersIntoTheFieldsOwnType) {
    EXPECT_EQ(valueFromTypedText(std::int16_t{1}, " 2.5 ", 1.0), Variant(std::int16_t{3}));
    EXPECT_EQ(valueFromTypedText(std::int16_t{1}, "-2.5", 1.0), Variant(std::int16_t{-3}));
    EXPECT_EQ(valueFromTypedText(std::int32_t{1}, "1e5", 1.0), Variant(std::int32_t{100000}));
    EXPECT_EQ(valueFromTypedText(0.0125, "25", 0.001), Variant(0.025));
    EXPECT_EQ(valueFromTypedText(1.0, "2,5", 1.0, ","), Variant(2.5));
}

TEST(TypedValue, KeepsTheValueForOutOfRangeAndMalformedText) {
    const Variant int16{std::int16_t{7}};
    const Variant int32{std::int32_t{7}};
    for (const char* text : {"32767.5", "-32768.5", "70000", "abc", "", "1e400"})
        EXPECT_EQ(valueFromTypedText(int16, text, 1.0), int16) << text;
    EXPECT_EQ(valueFromTypedText(int16, "-32768.4", 1.0), Variant(std::int16_t{-32768}));
    for (const char* text : {"2147483647.5", "-2147483649", "3e9", "x"})
        EXPECT_EQ(valueFromTypedText(int32, text, 1.0), int32) << text;
    EXPECT_EQ(valueFromTypedText(int32, "-2147483648", 1.0), Variant(std::int32_t{-2147483648}));
    // A number that overflows once scaled is rejected too.
    EXPECT_EQ(valueFromTypedText(1.0, "1e308", 1000.0), Variant(1.0));
}

TEST(TypedValue, LetsOnlyTextFieldsTakeTextAndNullFieldsNothing) {
    EXPECT_EQ(valueFromTypedText("old", "123", 1.0), Variant("old"));
    EXPECT_EQ(valueFromTypedText("old", "abc", 1.0), Variant("abc"));
    EXPECT_EQ(valueFromTypedText("old", "", 1.0), Variant(""));
    EXPECT_EQ(valueFromTypedText(true, "0", 1.0), Variant(true));
    EXPECT_TRUE(valueFromTypedText(Variant::null(), "abc", 1.0).isNull());
    EXPECT_TRUE(valueFromTypedText(Variant::null(), "12", 1.0).isNull());
}

TEST(TypedValue, ReadsBackWhatItShows) {
    for (const Variant& v :
         {Variant(std::int16_t{-32768}), Variant(std::int32_t{2147483647}), Variant("a b")})
        EXPECT_EQ(valueFromTypedText(v, vss::formatValueText(v, 1.0, 4), 1.0), v);
    // A double reads back to the digits shown, in stored units.
    const Variant shown = valueFromTypedText(0.0, vss::formatValueText(0.0123456, 0.001, 4), 0.001);
    EXPECT_NEAR(shown.dbl(), 0.01235, 1e-15);
}

TEST(FieldLayout, GivesTheUnitItsStripOnlyWhenThereIsAUnitText) {
    EXPECT_EQ(vss::unitStripLayout(3000, true, 300).text, (vss::Span{0, 2700}));
    EXPECT_EQ(vss::unitStripLayout(3000, true, 300).unit, (vss::Span{2700, 300}));
    EXPECT_EQ(vss::unitStripLayout(3000, false, 300).text, (vss::Span{0, 3000}));
    EXPECT_EQ(vss::unitStripLayout(3000, false, 300).unit.width, 0);
    EXPECT_EQ(vss::unitStripLayout(200, true, 300).text.width, 0);
}

TEST(FieldLayout, SplitsThePropertyRowInBothModes) {
    const auto half = vss::propertyRowLayout(3000, true, 200);
    EXPECT_EQ(half.caption, (vss::Span{5, 1490}));
    EXPECT_EQ(half.editor, (vss::Span{1505, 1490}));
    const auto fixed = vss::propertyRowLayout(3000, false, 1200);
    EXPECT_EQ(fixed.caption, (vss::Span{5, 1200}));
    EXPECT_EQ(fixed.editor, (vss::Span{1215, 1790}));
    EXPECT_EQ(fixed.editor.right(), 3005);
    EXPECT_EQ(vss::propertyRowLayout(3015, true, 200).caption.width, 1498);
}
