#include "controls/FieldText.h"

#include "controls/modConvUtil.h"

#include <charconv>
#include <cmath>
#include <limits>

namespace vss {

std::string FormatValueText(const Variant& value, double dblScale, std::int16_t digits) {
    switch (value.type()) {
    case Variant::Type::Int16:
        return std::to_string(value.int16());
    case Variant::Type::Int32:
        return std::to_string(value.int32());
    case Variant::Type::Double:
        return FormatEngNumber(value.dbl() / dblScale, digits);
    case Variant::Type::Text:
        return value.text();
    case Variant::Type::Bool:
        return value.boolean() ? "True" : "False";
    case Variant::Type::Empty:
    case Variant::Type::Null:
        break;
    }
    return {};
}

bool isRightAligned(Variant::Type type) {
    return type == Variant::Type::Int16 || type == Variant::Type::Int32 || type == Variant::Type::Double;
}

namespace {

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}
bool isBlank(char c) {
    return c == ' ' || c == '\t';
}

// Reads the grammar's tokens from the front of the text and builds the number as std::from_chars reads it.
class NumberScanner {
public:
    NumberScanner(std::string_view text, std::string_view separator) : rest_(text), separator_(separator) {}

    std::optional<double> scan() {
        skipBlanks();
        sign();
        const std::size_t whole = digits();
        std::size_t fraction = 0;
        if (point()) {
            normalised_ += '.';
            fraction = digits();
        }
        if (whole + fraction == 0)
            return std::nullopt;
        if (!rest_.empty() && (rest_.front() == 'E' || rest_.front() == 'e')) {
            rest_.remove_prefix(1);
            normalised_ += 'e';
            sign();
            if (digits() == 0)
                return std::nullopt;
        }
        skipBlanks();
        if (!rest_.empty())
            return std::nullopt;
        return convert();
    }

private:
    void skipBlanks() {
        while (!rest_.empty() && isBlank(rest_.front()))
            rest_.remove_prefix(1);
    }

    void sign() {
        if (!rest_.empty() && (rest_.front() == '+' || rest_.front() == '-')) {
            if (rest_.front() == '-')
                normalised_ += '-';
            rest_.remove_prefix(1);
        }
    }

    std::size_t digits() {
        std::size_t count = 0;
        while (!rest_.empty() && isDigit(rest_.front())) {
            normalised_ += rest_.front();
            rest_.remove_prefix(1);
            ++count;
        }
        return count;
    }

    bool point() {
        for (std::string_view p : {std::string_view("."), separator_}) {
            if (!p.empty() && rest_.starts_with(p)) {
                rest_.remove_prefix(p.size());
                return true;
            }
        }
        return false;
    }

    std::optional<double> convert() const {
        double number = 0;
        const char* end = normalised_.data() + normalised_.size();
        const auto [ptr, ec] = std::from_chars(normalised_.data(), end, number);
        if (ec != std::errc() || ptr != end || !std::isfinite(number))
            return std::nullopt;
        return number;
    }

    std::string_view rest_;
    std::string_view separator_;
    std::string normalised_;
};

template <typename Int> std::optional<Int> toInt(double number) {
    const double rounded = std::round(number);
    if (!(rounded >= std::numeric_limits<Int>::min() && rounded <= std::numeric_limits<Int>::max()))
        return std::nullopt;
    return static_cast<Int>(rounded);
}

template <typename Int> Variant intOr(const Variant& current, std::optional<Int> converted) {
    return converted ? Variant(*converted) : current;
}

} // namespace

std::optional<double> parseTypedNumber(std::string_view text, std::string_view decimalSeparator) {
    return NumberScanner(text, decimalSeparator).scan();
}

std::optional<std::int16_t> toInt16(double number) {
    return toInt<std::int16_t>(number);
}
std::optional<std::int32_t> toInt32(double number) {
    return toInt<std::int32_t>(number);
}

Variant valueFromTypedText(const Variant& current, std::string_view text, double dblScale,
                           std::string_view decimalSeparator) {
    const std::optional<double> number = parseTypedNumber(text, decimalSeparator);
    if (!number)
        return current.type() == Variant::Type::Text ? Variant(std::string(text)) : current;

    switch (current.type()) {
    case Variant::Type::Int16:
        return intOr(current, toInt16(*number));
    case Variant::Type::Int32:
        return intOr(current, toInt32(*number));
    case Variant::Type::Double: {
        const double scaled = *number * dblScale;
        return std::isfinite(scaled) ? Variant(scaled) : current;
    }
    default:
        return current;
    }
}

} // namespace vss
