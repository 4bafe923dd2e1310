#pragma once

// COM values at the driver boundary: texts (BSTR), lists (VARIANT holding a SAFEARRAY) and values of variable
// type (VARIANT), converted to and from the program's types.
//
// Every BSTR, SAFEARRAY and owning VARIANT that this code makes or frees goes through the few functions below,
// which count what they do; a test compares the counts on both sides of a run to prove that nothing leaks.

#include "driver/Variant.h"

#include <windows.h>

#include <ole2.h>

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace vss::com {

// ---- the allocation-counting seam ----

struct AllocationCounts {
    std::int64_t strings = 0; // BSTRs made
    std::int64_t stringFrees = 0;
    std::int64_t arrays = 0; // SAFEARRAYs made
    std::int64_t arrayFrees = 0;
    std::int64_t variants = 0; // VARIANTs filled with a BSTR or an array
    std::int64_t variantFrees = 0;

    // Made minus freed, over all three kinds.
    std::int64_t outstanding() const {
        return strings - stringFrees + arrays - arrayFrees + variants - variantFrees;
    }
    AllocationCounts operator+(const AllocationCounts& o) const {
        return {strings + o.strings, stringFrees + o.stringFrees, arrays + o.arrays,
                arrayFrees + o.arrayFrees, variants + o.variants, variantFrees + o.variantFrees};
    }
};
AllocationCounts allocationCounts();

BSTR allocString(std::string_view utf8);
void freeString(BSTR s); // a null BSTR is nothing to free
SAFEARRAY* createVector(VARTYPE elementType, ULONG count, LONG lower = 0);
void destroyArray(SAFEARRAY* array); // frees the BSTR and VARIANT elements first
void clearVariant(VARIANT& v);       // frees what the VARIANT owns and leaves it VT_EMPTY

// A BSTR owned by this side.
class Bstr {
public:
    Bstr() = default;
    explicit Bstr(std::string_view utf8) : s_(allocString(utf8)) {}
    ~Bstr() { freeString(s_); }
    Bstr(const Bstr&) = delete;
    Bstr& operator=(const Bstr&) = delete;

    BSTR get() const { return s_; }
    BSTR* out() { // for an out parameter: frees what it held
        freeString(s_);
        s_ = nullptr;
        return &s_;
    }
    BSTR release() {
        BSTR s = s_;
        s_ = nullptr;
        return s;
    }

private:
    BSTR s_ = nullptr;
};

// A VARIANT owned by this side: cleared exactly once when it goes.
class OwnedVariant {
public:
    OwnedVariant() { VariantInit(&v_); }
    explicit OwnedVariant(VARIANT v) : v_(v) {}
    ~OwnedVariant() { clearVariant(v_); }
    OwnedVariant(const OwnedVariant&) = delete;
    OwnedVariant& operator=(const OwnedVariant&) = delete;

    const VARIANT& get() const { return v_; }
    VARIANT release() { // hands the VARIANT over to a receiver that owns it from now on
        VARIANT v = v_;
        VariantInit(&v_);
        return v;
    }
    VARIANT* out() {
        clearVariant(v_);
        return &v_;
    }

private:
    VARIANT v_;
};

// ---- conversions ----

// A value from the other side that is not what the contract says; the message names the fault.
class ValueFault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::string toUtf8(const wchar_t* text, std::size_t length);
std::wstring toWide(std::string_view utf8);

// Reading what the other side sent. `what` names the value in fault messages ("names", "the result").
std::string textOf(BSTR s, std::string_view what);         // a null BSTR is a fault
std::string textOrEmpty(BSTR s);                            // a null BSTR is the empty text (incoming arguments)
bool boolOf(VARIANT_BOOL b) noexcept;                       // any non-zero value is true
std::vector<std::string> textsOf(const VARIANT& v, std::string_view what);
// The lower bound of a list, checked to index its elements within 16 bits.
std::int16_t lowerOf(const VARIANT& v, std::string_view what);
std::vector<std::int16_t> shortsOf(const VARIANT& v, std::string_view what);
std::vector<double> doublesOf(const VARIANT& v, std::string_view what);
Variant valueOf(const VARIANT& v, std::string_view what);

// Making what this side sends; the receiver owns the result.
inline VARIANT_BOOL toVariantBool(bool b) noexcept { return b ? VARIANT_TRUE : VARIANT_FALSE; }
VARIANT listVariant(const std::vector<std::string>& values, LONG lower = 0);
VARIANT listVariant(const std::vector<std::int16_t>& values, LONG lower = 0);
VARIANT listVariant(const std::vector<double>& values);
VARIANT valueVariant(const Variant& value);

// "0x80004005".
std::string hexCode(HRESULT hr);

} // namespace vss::com
