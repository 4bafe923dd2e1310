#pragma once

// Engineering notation: a double written with a fixed number of significant digits and an exponent that is a
// multiple of 3. The value fields show their doubles this way (through FieldText.h), and so do the piezo
// service window's tables of calibration and control data. The setting files write their numbers otherwise
// (storage/NumberText.h).

#include <cstdint>
#include <string>

namespace vss {

// The base-10 logarithm of a positive x: ln(x) / ln(10) in double precision, then rounded to single
// precision. The rounding is deliberate: ln(1000) / ln(10) is just below 3 in double precision but exactly 3
// in single precision, so exact powers of ten get the exponent of their own order. x <= 0 gives -inf or NaN.
float Log10(double x);

// `value` with `digits` significant digits in engineering notation:
//   n = floor(Log10(|value|)), e = floor(n / 3) * 3, r = n - e (0 for a zero value, and then e = 0),
//   mantissa m = value / 10^e written with p = digits - 1 - r places after the point,
//   followed by nothing (e = 0), "E+<e>" (e > 0) or "E<e>" (e < 0, the minus sign written).
// Examples with 4 digits: 0 -> "0.000", 12.5 -> "12.50", 123456 -> "123.5E+3", 0.5 -> "500.0E-3".
//
// - The point is always "." and there is no thousands grouping; negatives carry a leading "-".
// - Rounding: the mantissa is taken to 15 significant digits (what a double holds reliably), then rounded
//   to p places with halves away from zero, so 12.345 gives "12.35" although its binary value lies below.
// - There is no renormalisation after rounding: 999.96 with 4 digits gives "1000.0".
// - A negative number of places (digits smaller than r + 1, for example 250 with 1 digit) is clamped to 0:
//   the mantissa is written as a whole number ("250").
// - digits - 1 - r is 16-bit arithmetic: when it overflows (digits near -32768), std::overflow_error.
// - Infinities and NaN are written "Inf", "-Inf" and "NaN".
std::string FormatEngNumber(double value, std::int16_t digits);

} // namespace vss
