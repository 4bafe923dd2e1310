#include "controls/modConvUtil.h"

#include <gtest/gtest.h>
#include <limits>
#include <stdexcept>

using vss::FormatEngNumber;

namespace {

struct Case {
    double value;
    std::int16_t digits;
    const char* text;
};

void expectAll(std::initializer_list<Case> cases) {
    for (const Case& c : cases)
        EXPECT_EQ(FormatEngNumber(c.value, c.digits), c.text) << c.value << " with " << c.digits << " digits";
}

} // namespace

TEST(FormatEngNumber, WritesTheWorkedValuesAndExactPowersOfTen) {
    expectAll({{0, 4, "0.000"},
               {1.5, 4, "1.500"},
               {12.5, 4, "12.50"},
               {-12.5, 4, "-12.50"},
               {123456, 4, "123.5E+3"},
               {1000, 4, "1.000E+3"},
               {0.5, 4, "500.0E-3"},
               {0.001, 4, "1.000E-3"},
               {1e6, 4, "1.000E+6"},
               {1e9, 4, "1.000E+9"},
               {1e-6, 4, "1.000E-6"},
               {1e-9, 4, "1.000E-9"},
               {1e15, 4, "1.000E+15"},
               {0.0125, 4, "12.50E-3"},
               {-0.5, 4, "-500.0E-3"},
               {0.09, 4, "90.00E-3"}});
}

TEST(FormatEngNumber, RoundsHalvesAwayFromZeroWithoutRenormalisingAndClampsNegativePlaces) {
    // 12.345 and 2.675 lie just below their decimal value in binary.
    expectAll(
        {{999.96, 4, "1000.0"}, {0.99996, 4, "1000.0E-3"}, {-999.96e3, 4, "-1000.0E+3"}}); // no renormalising
    expectAll({{12.345, 4, "12.35"}, {2.675, 3, "2.68"}, {-2.5, 1, "-3"}, {0.012345 / 0.001, 4, "12.35"}});
    expectAll(
        {{250, 1, "250"}, {250, 3, "250"}, {25, 0, "25"}, {3, -5, "3"}, {1.5, 20, "1.5000000000000000000"}});
    EXPECT_THROW(FormatEngNumber(250, -32768), std::overflow_error);
    EXPECT_THROW(FormatEngNumber(25, -32767), std::overflow_error);
}

TEST(FormatEngNumber, CoversTheWholeRangeOfADouble) {
    constexpr double kInf = std::numeric_limits<double>::infinity();
    expectAll({{9.91e37, 4, "99.10E+36"},
               {1.7976931348623157e308, 4, "179.8E+306"},
               {5e-324, 4, "4.941E-324"},
               {-0.0, 4, "0.000"},
               {kInf, 4, "Inf"},
               {-kInf, 4, "-Inf"},
               {std::numeric_limits<double>::quiet_NaN(), 4, "NaN"}});
}
