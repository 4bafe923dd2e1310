#include "controls/modConvUtil.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <stdexcept>

namespace vss {

float Log10(double x) {
    return static_cast<float>(std::log(x) / std::log(10.0));
}

namespace {

// The engineering exponent e and the number of digits before the point less one (r).
struct Order {
    int e = 0;
    int r = 0;
};

Order orderOf(double value) {
    if (value == 0.0)
        return {};
    const int n = static_cast<int>(std::floor(Log10(std::fabs(value))));
    const int e = static_cast<int>(std::floor(n / 3.0)) * 3;
    return {e, n - e};
}

double mantissaOf(double value, int e) {
    // Below about 1e-300 the power of ten itself is no longer a normal double: divide in two steps.
    if (e < -300)
        return (value * 1e300) / std::pow(10.0, e + 300);
    return value / std::pow(10.0, e);
}

// Places after the point: digits - 1 - r in 16-bit arithmetic, a negative result clamped to 0.
int placesAfterPoint(std::int16_t digits, int r) {
    const int p = digits - 1 - r;
    if (p < std::numeric_limits<std::int16_t>::min())
        throw std::overflow_error("FormatEngNumber: arithmetic overflow in the number of places (digits " +
                                  std::to_string(digits) + ")");
    return p < 0 ? 0 : p;
}

// |m| with exactly `places` digits after the point, rounded half away from zero at 15 significant digits.
std::string fixedPlaces(double m, int places) {
    constexpr int kSignificant = 15;
    char buf[32];
    // d.dddddddddddddde+XX, with a point whatever the C locale
    *std::to_chars(buf, buf + sizeof buf - 1, std::fabs(m), std::chars_format::scientific, kSignificant - 1).ptr =
        '\0';
    std::string digits(1, buf[0]);
    digits.append(buf + 2, kSignificant - 1);
    int intDigits = std::atoi(buf + kSignificant + 2) + 1; // digits before the point

    if (intDigits < 1) {
        digits.insert(0, static_cast<std::size_t>(1 - intDigits), '0');
        intDigits = 1;
    }
    const auto keep = static_cast<std::size_t>(intDigits + places);
    if (digits.size() <= keep)
        digits.append(keep + 1 - digits.size(), '0');

    const bool roundUp = digits[keep] >= '5';
    digits.resize(keep);
    if (roundUp) {
        std::size_t i = keep;
        while (i > 0 && digits[i - 1] == '9')
            digits[--i] = '0';
        if (i == 0) {
            digits.insert(0, 1, '1');
            ++intDigits;
        } else {
            ++digits[i - 1];
        }
    }

    // Leading zeros of the whole part go, one stays before the point.
    std::size_t lead = 0;
    while (lead + 1 < static_cast<std::size_t>(intDigits) && digits[lead] == '0')
        ++lead;
    std::string s = digits.substr(lead, static_cast<std::size_t>(intDigits) - lead);
    if (places > 0) {
        s += '.';
        s.append(digits, static_cast<std::size_t>(intDigits));
    }
    return s;
}

} // namespace

std::string FormatEngNumber(double value, std::int16_t digits) {
    if (std::isnan(value))
        return "NaN";
    if (std::isinf(value))
        return value < 0 ? "-Inf" : "Inf";

    const Order order = orderOf(value);
    const int places = placesAfterPoint(digits, order.r);
    const double m = mantissaOf(value, order.e);

    // Built by appending: GCC 12 warns falsely (-Wrestrict) about prepending to a temporary string.
    std::string s = m < 0 ? "-" : "";
    s += fixedPlaces(m, places);
    if (order.e != 0) {
        s += order.e > 0 ? "E+" : "E";
        s += std::to_string(order.e);
    }
    return s;
}

} // namespace vss
