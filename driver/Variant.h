#pragma once

#include <cstdint>
#include <string>
#include <variant>

namespace vss {

// A value of variable type as the driver passes it (property values, spindle driver items, the stage region).
// It keeps the distinctions the program relies on: a 16-bit integer selects a list editor, a 32-bit integer or a
// double a text field, a Boolean a check box; Empty (never assigned) and Null (no value) differ from each other.
class Variant {
public:
    enum class Type { Empty, Null, Int16, Int32, Double, Bool, Text };

    struct NullTag {
        friend constexpr bool operator==(NullTag, NullTag) = default;
    };

    Variant() = default;
    Variant(std::int16_t v) : value_(v) {}
    Variant(std::int32_t v) : value_(v) {}
    Variant(double v) : value_(v) {}
    Variant(bool v) : value_(v) {}
    Variant(std::string v) : value_(std::move(v)) {}
    Variant(const char* v) : value_(std::string(v)) {}

    static Variant null() {
        Variant v;
        v.value_ = NullTag{};
        return v;
    }

    Type type() const { return static_cast<Type>(value_.index()); }
    bool isEmpty() const { return type() == Type::Empty; }
    bool isNull() const { return type() == Type::Null; }
    bool isNumeric() const; // Int16, Int32, Double or Bool

    // Typed access; throws std::bad_variant_access when the type differs.
    std::int16_t int16() const { return std::get<std::int16_t>(value_); }
    std::int32_t int32() const { return std::get<std::int32_t>(value_); }
    double dbl() const { return std::get<double>(value_); }
    bool boolean() const { return std::get<bool>(value_); }
    const std::string& text() const { return std::get<std::string>(value_); }

    // The numeric value of a numeric variant (true is -1, false 0; Empty is 0); throws std::bad_variant_access
    // for Null and Text.
    double toDouble() const;

    // The program's comparison: numbers compare by value whatever their width (a 16-bit 3 equals a 32-bit 3 and
    // the double 3.0; true equals -1), texts compare exactly, Empty equals 0 and "", Null equals nothing (not
    // even Null), and a text never equals a number.
    bool equals(const Variant& other) const;

    // Same type and same value: what a round trip must preserve.
    friend bool operator==(const Variant& a, const Variant& b) { return a.value_ == b.value_; }

    static const char* typeName(Type t);

private:
    std::variant<std::monostate, NullTag, std::int16_t, std::int32_t, double, bool, std::string> value_;
};

} // namespace vss
