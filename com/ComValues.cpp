#include "com/ComValues.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <limits>
#include <new>

namespace vss::com {

namespace {

struct Counters {
    std::atomic<std::int64_t> strings{0}, stringFrees{0}, arrays{0}, arrayFrees{0}, variants{0}, variantFrees{0};
};
Counters counters;

const char* typeName(VARTYPE vt) {
    switch (vt) {
    case VT_EMPTY:
        return "an empty VARIANT";
    case VT_NULL:
        return "a Null VARIANT";
    case VT_I2:
        return "a 16-bit integer";
    case VT_I4:
        return "a 32-bit integer";
    case VT_R8:
        return "a double";
    case VT_BOOL:
        return "a Boolean";
    case VT_BSTR:
        return "a text";
    default:
        return nullptr;
    }
}

// "a VARIANT of type 0x2011" for types without a plain name.
std::string describe(VARTYPE vt) {
    if (const char* name = typeName(vt))
        return name;
    char buf[40];
    std::snprintf(buf, sizeof buf, "a VARIANT of type 0x%04X", static_cast<unsigned>(vt));
    return buf;
}

std::string elementName(VARTYPE vt) {
    switch (vt) {
    case VT_BSTR:
        return "texts";
    case VT_I2:
        return "16-bit integers";
    case VT_I4:
        return "32-bit integers";
    case VT_R8:
        return "doubles";
    case VT_BOOL:
        return "Booleans";
    default: {
        char buf[40];
        std::snprintf(buf, sizeof buf, "elements of type 0x%04X", static_cast<unsigned>(vt));
        return buf;
    }
    }
}

// Checks that v holds a one-dimensional array of `element` (or of VARIANTs) and calls take(index, pointer) for
// every element, after checking each VARIANT element's type and strings for null.
template <class Take>
void forEachElement(const VARIANT& v, VARTYPE element, std::string_view what, Take take) {
    const std::string expected = "a list of " + elementName(element);
    if ((v.vt & VT_ARRAY) == 0 || (v.vt & VT_BYREF) != 0)
        throw ValueFault(std::string(what) + " is " + describe(v.vt) + ", not " + expected);
    const VARTYPE tagged = static_cast<VARTYPE>(v.vt & VT_TYPEMASK);
    if (tagged != element && tagged != VT_VARIANT)
        throw ValueFault(std::string(what) + " is a list of " + elementName(tagged) + ", not " + expected);
    SAFEARRAY* array = v.parray;
    if (array == nullptr)
        throw ValueFault(std::string(what) + " is an array VARIANT without an array");
    const UINT dims = SafeArrayGetDim(array);
    if (dims != 1)
        throw ValueFault(std::string(what) + " has " + std::to_string(dims) + " dimensions, not 1");
    const UINT expectedSize = tagged == VT_VARIANT ? sizeof(VARIANT)
                              : element == VT_BSTR ? sizeof(BSTR)
                              : element == VT_I2   ? sizeof(SHORT)
                                                   : sizeof(double);
    if (SafeArrayGetElemsize(array) != expectedSize)
        throw ValueFault(std::string(what) + " has elements of " + std::to_string(SafeArrayGetElemsize(array)) +
                         " bytes, which do not fit " + expected);
    LONG lower = 0, upper = -1;
    if (FAILED(SafeArrayGetLBound(array, 1, &lower)) || FAILED(SafeArrayGetUBound(array, 1, &upper)))
        throw ValueFault(std::string(what) + " has unreadable bounds");
    if (upper < lower - 1)
        throw ValueFault(std::string(what) + " has bounds " + std::to_string(lower) + " to " + std::to_string(upper));
    void* data = nullptr;
    if (FAILED(SafeArrayAccessData(array, &data)))
        throw ValueFault(std::string(what) + " could not be read (the array is locked)");
    struct Unaccess {
        SAFEARRAY* a;
        ~Unaccess() { SafeArrayUnaccessData(a); }
    } unaccess{array};
    const auto count = static_cast<std::size_t>(static_cast<std::int64_t>(upper) - lower + 1);
    for (std::size_t i = 0; i < count; ++i) {
        const std::string at = std::string(what) + " element " + std::to_string(i);
        if (tagged == VT_VARIANT) {
            const VARIANT& e = static_cast<const VARIANT*>(data)[i];
            if (e.vt != element)
                throw ValueFault(at + " is " + describe(e.vt) + ", not " + describe(element));
            take(i, element == VT_BSTR  ? static_cast<const void*>(&e.bstrVal)
                    : element == VT_I2  ? static_cast<const void*>(&e.iVal)
                                        : static_cast<const void*>(&e.dblVal),
                 at);
        } else {
            take(i, static_cast<const char*>(data) + i * expectedSize, at);
        }
    }
}

template <class T, VARTYPE vt>
std::vector<T> numbersOf(const VARIANT& v, std::string_view what) {
    std::vector<T> out;
    forEachElement(v, vt, what, [&](std::size_t, const void* p, const std::string&) {
        out.push_back(*static_cast<const T*>(p));
    });
    return out;
}

template <class T>
VARIANT numberList(const std::vector<T>& values, VARTYPE vt, LONG lower) {
    SAFEARRAY* array = createVector(vt, static_cast<ULONG>(values.size()), lower);
    void* data = nullptr;
    if (!values.empty()) {
        SafeArrayAccessData(array, &data);
        std::copy(values.begin(), values.end(), static_cast<T*>(data));
        SafeArrayUnaccessData(array);
    }
    VARIANT v;
    VariantInit(&v);
    v.vt = static_cast<VARTYPE>(VT_ARRAY | vt);
    v.parray = array;
    counters.variants++;
    return v;
}

} // namespace

AllocationCounts allocationCounts() {
    return {counters.strings.load(), counters.stringFrees.load(), counters.arrays.load(),
            counters.arrayFrees.load(), counters.variants.load(), counters.variantFrees.load()};
}

BSTR allocString(std::string_view utf8) {
    const std::wstring wide = toWide(utf8);
    BSTR s = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (s == nullptr)
        throw std::bad_alloc();
    counters.strings++;
    return s;
}

void freeString(BSTR s) {
    if (s == nullptr)
        return;
    SysFreeString(s);
    counters.stringFrees++;
}

SAFEARRAY* createVector(VARTYPE elementType, ULONG count, LONG lower) {
    SAFEARRAY* array = SafeArrayCreateVector(elementType, lower, count);
    if (array == nullptr)
        throw std::bad_alloc();
    counters.arrays++;
    return array;
}

void destroyArray(SAFEARRAY* array) {
    if (array == nullptr)
        return;
    VARTYPE vt = VT_EMPTY;
    // Elements are freed here, through the counted functions, before the array itself goes.
    if (SUCCEEDED(SafeArrayGetVartype(array, &vt)) && (vt == VT_BSTR || vt == VT_VARIANT) &&
        SafeArrayGetDim(array) == 1) {
        LONG lower = 0, upper = -1;
        void* data = nullptr;
        if (SUCCEEDED(SafeArrayGetLBound(array, 1, &lower)) && SUCCEEDED(SafeArrayGetUBound(array, 1, &upper)) &&
            SUCCEEDED(SafeArrayAccessData(array, &data))) {
            for (LONG i = 0; i <= upper - lower; ++i) {
                if (vt == VT_BSTR) {
                    BSTR& s = static_cast<BSTR*>(data)[i];
                    freeString(s);
                    s = nullptr;
                } else {
                    clearVariant(static_cast<VARIANT*>(data)[i]);
                }
            }
            SafeArrayUnaccessData(array);
        }
    }
    SafeArrayDestroy(array);
    counters.arrayFrees++;
}

void clearVariant(VARIANT& v) {
    if (v.vt == VT_BSTR) {
        freeString(v.bstrVal);
        counters.variantFrees++;
    } else if ((v.vt & VT_ARRAY) != 0 && (v.vt & VT_BYREF) == 0) {
        destroyArray(v.parray);
        counters.variantFrees++;
    } else {
        VariantClear(&v);
    }
    VariantInit(&v);
}

std::string toUtf8(const wchar_t* text, std::size_t length) {
    if (length == 0)
        return {};
    const int n = WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), nullptr, 0, nullptr, nullptr);
    std::string out(static_cast<std::size_t>(n), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, static_cast<int>(length), out.data(), n, nullptr, nullptr);
    return out;
}

std::wstring toWide(std::string_view utf8) {
    if (utf8.empty())
        return {};
    const int n = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(n), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, utf8.data(), static_cast<int>(utf8.size()), out.data(), n);
    return out;
}

std::string textOf(BSTR s, std::string_view what) {
    if (s == nullptr)
        throw ValueFault(std::string(what) + " is a null string");
    return toUtf8(s, SysStringLen(s));
}

std::string textOrEmpty(BSTR s) {
    return s == nullptr ? std::string() : toUtf8(s, SysStringLen(s));
}

bool boolOf(VARIANT_BOOL b) noexcept {
    return b != VARIANT_FALSE;
}

std::vector<std::string> textsOf(const VARIANT& v, std::string_view what) {
    std::vector<std::string> out;
    forEachElement(v, VT_BSTR, what, [&](std::size_t, const void* p, const std::string& at) {
        out.push_back(textOf(*static_cast<const BSTR*>(p), at));
    });
    return out;
}

std::int16_t lowerOf(const VARIANT& v, std::string_view what) {
    LONG lower = 0, upper = -1;
    if ((v.vt & VT_ARRAY) == 0 || (v.vt & VT_BYREF) != 0 || v.parray == nullptr ||
        SafeArrayGetDim(v.parray) != 1 || FAILED(SafeArrayGetLBound(v.parray, 1, &lower)) ||
        FAILED(SafeArrayGetUBound(v.parray, 1, &upper)))
        throw ValueFault(std::string(what) + " is not a list with readable bounds");
    constexpr LONG kFirst = std::numeric_limits<std::int16_t>::min();
    constexpr LONG kLast = std::numeric_limits<std::int16_t>::max();
    if (lower < kFirst || lower > kLast || upper > kLast)
        throw ValueFault(std::string(what) + " has bounds " + std::to_string(lower) + " to " + std::to_string(upper) +
                         ", beyond the 16-bit indexes of the driver's operations");
    return static_cast<std::int16_t>(lower);
}

std::vector<std::int16_t> shortsOf(const VARIANT& v, std::string_view what) {
    return numbersOf<std::int16_t, VT_I2>(v, what);
}

std::vector<double> doublesOf(const VARIANT& v, std::string_view what) {
    return numbersOf<double, VT_R8>(v, what);
}

Variant valueOf(const VARIANT& v, std::string_view what) {
    switch (v.vt) {
    case VT_EMPTY:
        return Variant();
    case VT_NULL:
        return Variant::null();
    case VT_I2:
        return Variant(static_cast<std::int16_t>(v.iVal));
    case VT_I4:
        return Variant(static_cast<std::int32_t>(v.lVal));
    case VT_R8:
        return Variant(v.dblVal);
    case VT_BOOL:
        return Variant(boolOf(v.boolVal));
    case VT_BSTR:
        return Variant(textOf(v.bstrVal, what));
    default:
        throw ValueFault(std::string(what) + " is " + describe(v.vt) +
                         ", not a value (Empty, Null, integer, double, Boolean or text)");
    }
}

VARIANT listVariant(const std::vector<std::string>& values, LONG lower) {
    SAFEARRAY* array = createVector(VT_BSTR, static_cast<ULONG>(values.size()), lower);
    if (!values.empty()) {
        void* data = nullptr;
        SafeArrayAccessData(array, &data);
        try {
            for (std::size_t i = 0; i < values.size(); ++i)
                static_cast<BSTR*>(data)[i] = allocString(values[i]);
        } catch (...) {
            SafeArrayUnaccessData(array);
            destroyArray(array);
            throw;
        }
        SafeArrayUnaccessData(array);
    }
    VARIANT v;
    VariantInit(&v);
    v.vt = VT_ARRAY | VT_BSTR;
    v.parray = array;
    counters.variants++;
    return v;
}

VARIANT listVariant(const std::vector<std::int16_t>& values, LONG lower) {
    return numberList(values, VT_I2, lower);
}

VARIANT listVariant(const std::vector<double>& values) {
    return numberList(values, VT_R8, 0);
}

VARIANT valueVariant(const Variant& value) {
    VARIANT v;
    VariantInit(&v);
    switch (value.type()) {
    case Variant::Type::Empty:
        break;
    case Variant::Type::Null:
        v.vt = VT_NULL;
        break;
    case Variant::Type::Int16:
        v.vt = VT_I2;
        v.iVal = value.int16();
        break;
    case Variant::Type::Int32:
        v.vt = VT_I4;
        v.lVal = value.int32();
        break;
    case Variant::Type::Double:
        v.vt = VT_R8;
        v.dblVal = value.dbl();
        break;
    case Variant::Type::Bool:
        v.vt = VT_BOOL;
        v.boolVal = toVariantBool(value.boolean());
        break;
    case Variant::Type::Text:
        v.bstrVal = allocString(value.text());
        v.vt = VT_BSTR;
        counters.variants++;
        break;
    }
    return v;
}

std::string hexCode(HRESULT hr) {
    char buf[16];
    std::snprintf(buf, sizeof buf, "0x%08lX", static_cast<unsigned long>(hr));
    return buf;
}

} // namespace vss::com
