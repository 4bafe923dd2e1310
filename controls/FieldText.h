#pragma once

// The two directions between a field's value and its text, without any widget: the text a value is shown as,
// and the value a commit of typed text produces. The value fields only wire these to their text box.

#include "driver/Variant.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace vss {

// The shown text of a field value:
//   Null -> "", Int16/Int32 -> plain decimal, Double -> FormatEngNumber(value / dblScale, digits),
//   Text -> the text itself, Bool -> "True"/"False", Empty -> "".
std::string FormatValueText(const Variant& value, double dblScale, std::int16_t digits);

// Integers and doubles are right-aligned in their box, everything else left-aligned.
bool isRightAligned(Variant::Type type);

// A typed number. The grammar:
//   number   := blank* sign? mantissa exponent? blank*
//   sign     := "+" | "-"
//   mantissa := digit+ (point digit*)? | point digit+
//   point    := "." | decimalSeparator (the locale's separator, for example ",")
//   exponent := ("E" | "e") sign? digit+
//   blank    := " " | "\t"
// No blanks inside the number, no thousands grouping, no hexadecimal, no "inf" or "nan". A number beyond the
// range of a double (1e400, 1e-400) is rejected. Returns nullopt for any text that does not match.
std::optional<double> parseTypedNumber(std::string_view text, std::string_view decimalSeparator = ".");

// A typed number as an integer of the field's width: rounded to the nearest, halves away from zero (2.5 gives
// 3, -2.5 gives -3); nullopt when the rounded number lies outside the type's range.
std::optional<std::int16_t> toInt16(double number);
std::optional<std::int32_t> toInt32(double number);

// The value a field holding `current` takes when `text` is committed. The type never changes:
//   - a number converts into an Int16 or Int32 field (rejected outside its range), and into a Double field as
//     number * dblScale (rejected when that is not finite); numeric text is ignored by every other type;
//   - any other text is taken by a Text field as typed and ignored by every other type;
//   - a Null field takes nothing.
// Rejected text gives `current` back unchanged.
Variant valueFromTypedText(const Variant& current, std::string_view text, double dblScale,
                           std::string_view decimalSeparator = ".");

} // namespace vss
