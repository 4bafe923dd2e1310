#pragma once

// The text form of numbers in setting files: how a number is written and which field texts read as numbers or
// Booleans. Locale-independent: "." is always the decimal point.

#include <optional>
#include <string>
#include <string_view>

namespace vss::numbertext {

// Up to 15 significant digits, no trailing zeros, plain decimal (2.5, 100, 0.0125) unless the plain form would
// be very long, then the E form (9.91E+37, 1.5E-12).
std::string formatDouble(double value);

// The value of a numeric field: optional sign, digits with an optional decimal point, optional exponent,
// surrounding blanks allowed. nullopt when the text is not numeric. A numeric text beyond the range of a double
// gives +-infinity.
std::optional<double> parseNumber(std::string_view text);

// "True"/"False" in any letter case, or a number (0 false, any other true). nullopt when neither.
std::optional<bool> parseBoolean(std::string_view text);

// The text without leading and trailing blanks (spaces, tabs).
std::string_view trimBlanks(std::string_view text);

// Rounds to the nearest whole number, halves to the even neighbour.
double roundHalfEven(double value);

// The value rounded to 15 significant digits: what a written number reads back as.
double roundTo15Digits(double value);

} // namespace vss::numbertext
