#include "driver/Variant.h"

namespace vss {

bool Variant::isNumeric() const {
    switch (type()) {
    case Type::Int16:
    case Type::Int32:
    case Type::Double:
    case Type::Bool:
        return true;
    default:
        return false;
    }
}

double Variant::toDouble() const {
    switch (type()) {
    case Type::Empty:
        return 0.0;
    case Type::Int16:
        return int16();
    case Type::Int32:
        return int32();
    case Type::Double:
        return dbl();
    case Type::Bool:
        return boolean() ? -1.0 : 0.0;
    default:
        throw std::bad_variant_access();
    }
}

bool Variant::equals(const Variant& other) const {
    if (isNull() || other.isNull())
        return false;
    if (isEmpty() && other.isEmpty())
        return true;
    const bool thisText = type() == Type::Text;
    const bool otherText = other.type() == Type::Text;
    if (thisText && otherText)
        return text() == other.text();
    if (thisText || otherText) {
        // Empty equals the empty text; otherwise a text never equals a number.
        const Variant& t = thisText ? *this : other;
        const Variant& n = thisText ? other : *this;
        return n.isEmpty() && t.text().empty();
    }
    return toDouble() == other.toDouble();
}

const char* Variant::typeName(Type t) {
    switch (t) {
    case Type::Empty:
        return "Empty";
    case Type::Null:
        return "Null";
    case Type::Int16:
        return "Integer";
    case Type::Int32:
        return "Long";
    case Type::Double:
        return "Double";
    case Type::Bool:
        return "Boolean";
    case Type::Text:
        return "String";
    }
    return "?";
}

} // namespace vss
