#include "controls/FieldText.h"

#include "controls/FieldLayout.h"

#include <gtest/gtest.h>

using vss::parseTypedNumber;
using vss::valueFromTypedText;
using vss::Variant;

TEST(TypedNumber, AcceptsBlanksSignPointsAndExponentsAndNothingElse) {
    const std::pair<const char*, double> accepted[] = {
        {"25", 25},         {"  -12.5\t", -12.5}, {"+3", 3}, {".5", 0.5},   {"5.", 5},
        {"1.5E-3", 0.0015}, {"2e+2", 200},        {"-0", 0}, {"1,25", 1.25}};
    for (const auto& [text, number] : accepted)
        EXPECT_EQ(parseTypedNumber(text, ","), number) << text;
    EXPECT_EQ(parseTypedNumber("1\u066B5", "\u066B"), 1.5);

    for (const char* text :
         {"",      "  ",    "abc",  "-",   ".",   "e3",    "1e",    "1e+",    "1 000", "- 5",
          "1.2.3", "1,000", "0x10", "inf", "nan", "12abc", "1e400", "1e-400", "--1",   "\xff"})
        EXPECT_FALSE(parseTypedNumber(text)) << text;
}

TEST(TypedValue, ConvertsNumbersIntoTheFieldsOwnTypeWithinItsRange) {
    EXPECT_EQ(valueFromTypedText(std::int16_t{1}, " 2.5 ", 1.0), Variant(std::int16_t{3}));
    EXPECT_EQ(valueFromTypedText(std::int16_t{1}, "-32768.4", 1.0), Variant(std::int16_t{-32768}));
    EXPECT_EQ(valueFromTypedText(std::int32_t{1}, "-2147483648", 1.0), Variant(std::int32_t{-2147483648}));
    EXPECT_EQ(valueFromTypedText(1.0, "2,5", 1.0, ","), Variant(2.5));

    const Variant int16{std::int16_t{7}}, int32{std::int32_t{7}};
    for (const char* text : {"32767.5", "-32768.5", "70000"})
        EXPECT_EQ(valueFromTypedText(int16, text, 1.0), int16) << text;
    for (const char* text : {"2147483647.5", "-2147483649", "3e9"})
        EXPECT_EQ(valueFromTypedText(int32, text, 1.0), int32) << text;
    // A number that overflows once scaled is rejected too.
    EXPECT_EQ(valueFromTypedText(1.0, "1e308", 1000.0), Variant(1.0));
}

TEST(TypedValue, NeverChangesTheTypeOfTheFieldsValue) {
    for (const Variant& kind : {Variant(std::int16_t{1}), Variant(std::int32_t{1}), Variant(1.0),
                                Variant("x"), Variant(true), Variant::null(), Variant()})
        for (const char* text :
             {"", "-", "1e999", "-32769", "2147483648", "0x1F", "12abc", "3.5", "\xc2\xb5m"})
            EXPECT_EQ(valueFromTypedText(kind, text, 1e-300, ",").type(), kind.type()) << text;
}

TEST(TypedValue, ReadsBackWhatItShows) {
    for (const Variant& v :
         {Variant(std::int16_t{-32768}), Variant(std::int32_t{2147483647}), Variant("a b")})
        EXPECT_EQ(valueFromTypedText(v, vss::FormatValueText(v, 1.0, 4), 1.0), v);
    const Variant shown = valueFromTypedText(0.0, vss::FormatValueText(0.0123456, 0.001, 4), 0.001);
    EXPECT_NEAR(shown.dbl(), 0.01235, 1e-15);
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
