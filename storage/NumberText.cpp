#include "storage/NumberText.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace vss::numbertext {

namespace {

// Beyond these decimal exponents the plain form gets very long and the E form is written instead.
constexpr int kPlainMinExponent = -10;
constexpr int kPlainMaxExponent = 14;

bool isBlank(char c) { return c == ' ' || c == '\t'; }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The 15 significant digits of a finite, non-zero value with trailing zeros removed, and its decimal exponent
// (the value is 0.d1d2... * 10^(exponent + 1), i.e. d1 sits at 10^exponent).
struct Digits {
    bool negative = false;
    std::string digits;
    int exponent = 0;
};

// The value in scientific form with 15 significant digits, [-]d.dddddddddddddde[+-]xx, whatever the C locale
// (the window program runs under the user's locale, whose decimal point may be a comma).
std::string scientific15(double value) {
    char buf[40];
    const auto result = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::scientific, 14);
    return std::string(buf, result.ptr);
}

Digits significantDigits(double value) {
    const std::string text = scientific15(value);
    const char* buf = text.c_str();
    Digits d;
    const char* p = buf;
    if (*p == '-') {
        d.negative = true;
        ++p;
    }
    for (; *p != 'e'; ++p)
        if (isDigit(*p))
            d.digits += *p;
    d.exponent = std::atoi(p + 1);
    while (d.digits.size() > 1 && d.digits.back() == '0')
        d.digits.pop_back();
    return d;
}

std::string plainForm(const Digits& d) {
    std::string out = d.negative ? "-" : "";
    if (d.exponent < 0) {
        out += "0.";
        out.append(static_cast<std::size_t>(-d.exponent - 1), '0');
        out += d.digits;
        return out;
    }
    const auto intDigits = static_cast<std::size_t>(d.exponent) + 1;
    if (d.digits.size() <= intDigits) {
        out += d.digits;
        out.append(intDigits - d.digits.size(), '0');
    } else {
        out.append(d.digits, 0, intDigits);
        out += '.';
        out.append(d.digits, intDigits);
    }
    return out;
}

std::string exponentForm(const Digits& d) {
    std::string out = d.negative ? "-" : "";
    out += d.digits[0];
    if (d.digits.size() > 1) {
        out += '.';
        out.append(d.digits, 1);
    }
    char exp[16];
    std::snprintf(exp, sizeof exp, "E%c%02d", d.exponent < 0 ? '-' : '+', std::abs(d.exponent));
    return out + exp;
}

// Checks the numeric syntax of an already trimmed text.
bool isNumericSyntax(std::string_view s) {
    std::size_t i = 0;
    if (i < s.size() && (s[i] == '+' || s[i] == '-'))
        ++i;
    std::size_t digits = 0;
    while (i < s.size() && isDigit(s[i])) {
        ++i;
        ++digits;
    }
    if (i < s.size() && s[i] == '.') {
        ++i;
        while (i < s.size() && isDigit(s[i])) {
            ++i;
            ++digits;
        }
    }
    if (digits == 0)
        return false;
    if (i < s.size() && (s[i] == 'e' || s[i] == 'E')) {
        ++i;
        if (i < s.size() && (s[i] == '+' || s[i] == '-'))
            ++i;
        std::size_t expDigits = 0;
        while (i < s.size() && isDigit(s[i])) {
            ++i;
            ++expDigits;
        }
        if (expDigits == 0)
            return false;
    }
    return i == s.size();
}

// For a syntactically numeric text whose value does not fit a double: true when it is too large (rather than
// too small). Compares the position of the first significant digit with the written exponent.
bool overflows(std::string_view s) {
    long position = 0; // power of ten of the first non-zero digit, before the exponent
    bool seenPoint = false;
    bool found = false;
    long intDigits = 0;
    long leadingFractionZeros = 0;
    std::size_t i = 0;
    for (; i < s.size() && s[i] != 'e' && s[i] != 'E'; ++i) {
        const char c = s[i];
        if (c == '.') {
            seenPoint = true;
        } else if (isDigit(c)) {
            if (!found && c != '0') {
                found = true;
                position = seenPoint ? -(leadingFractionZeros + 1) : 0;
            }
            if (!seenPoint && found)
                ++intDigits;
            if (seenPoint && !found)
                ++leadingFractionZeros;
        }
    }
    if (found && position == 0)
        position = intDigits - 1;
    long exponent = 0;
    if (i < s.size()) {
        const std::string_view e = s.substr(i + 1);
        const bool negative = !e.empty() && e.front() == '-';
        for (char c : e)
            if (isDigit(c) && exponent < 100000)
                exponent = exponent * 10 + (c - '0');
        if (negative)
            exponent = -exponent;
    }
    return position + exponent > 0;
}

} // namespace

std::string formatDouble(double value) {
    if (std::isnan(value))
        return "NaN";
    if (std::isinf(value))
        return value > 0 ? "Infinity" : "-Infinity";
    if (value == 0.0)
        return "0";
    const Digits d = significantDigits(value);
    if (d.exponent >= kPlainMinExponent && d.exponent <= kPlainMaxExponent)
        return plainForm(d);
    return exponentForm(d);
}

std::optional<double> parseNumber(std::string_view text) {
    std::string_view s = trimBlanks(text);
    if (!isNumericSyntax(s))
        return std::nullopt;
    const bool negative = s.front() == '-';
    if (s.front() == '+' || s.front() == '-')
        s.remove_prefix(1);
    double value = 0.0;
    const auto [end, ec] = std::from_chars(s.data(), s.data() + s.size(), value);
    if (ec == std::errc::result_out_of_range)
        value = overflows(s) ? std::numeric_limits<double>::infinity() : 0.0;
    else if (ec != std::errc() || end != s.data() + s.size())
        return std::nullopt;
    return negative ? -value : value;
}

std::optional<bool> parseBoolean(std::string_view text) {
    const std::string_view s = trimBlanks(text);
    auto equalsNoCase = [&](std::string_view word) {
        if (s.size() != word.size())
            return false;
        for (std::size_t i = 0; i < s.size(); ++i) {
            char c = s[i];
            if (c >= 'A' && c <= 'Z')
                c = static_cast<char>(c - 'A' + 'a');
            if (c != word[i])
                return false;
        }
        return true;
    };
    if (equalsNoCase("true"))
        return true;
    if (equalsNoCase("false"))
        return false;
    if (const auto number = parseNumber(s))
        return *number != 0.0;
    return std::nullopt;
}

std::string_view trimBlanks(std::string_view s) {
    while (!s.empty() && isBlank(s.front()))
        s.remove_prefix(1);
    while (!s.empty() && isBlank(s.back()))
        s.remove_suffix(1);
    return s;
}

double roundHalfEven(double value) { return std::nearbyint(value); }

double roundTo15Digits(double value) {
    if (!std::isfinite(value) || value == 0.0)
        return value;
    return *parseNumber(scientific15(value));
}

} // namespace vss::numbertext
