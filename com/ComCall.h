#pragma once

// The common shape of every client interface: it holds one raw interface pointer and the session that keeps the
// apartment and the object alive, makes each call through the raw slot, turns a failing result into DriverError
// and a malformed value into DriverError naming the operation and the fault.

#include "com/ComClient.h"
#include "com/ComValues.h"
#include "com/RawInterfaces.h"

#include <memory>
#include <string>
#include <string_view>

namespace vss::com {

struct ComDriverObject::Session {
    std::string name;          // the ProgID, or what stands for the object in messages
    IUnknown* unknown = nullptr;
    bool leaveApartment = false; // this session entered the thread's apartment and leaves it at the end

    Session() = default;
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session();
};

// "No such interface supported (0x80004002)", or `fallback` with the code when the system has no text.
std::string failureText(HRESULT hr, std::string_view fallback);

// Throws DriverError for a failed call: the driver's own description when it gives one through IErrorInfo,
// otherwise the system's text for the code with the code.
[[noreturn]] void throwCallFailure(HRESULT hr, IUnknown* itf, const IID& iid, std::string_view iface,
                                   std::string_view operation);

template <class I>
class ComInterface : public I {
public:
    using Raw = typename RawOf<I>::type;
    using Session = ComDriverObject::Session;

    ComInterface(Raw* raw, std::shared_ptr<Session> session) : raw_(raw), session_(std::move(session)) {}
    ~ComInterface() override { raw_->Release(); }
    ComInterface(const ComInterface&) = delete;
    ComInterface& operator=(const ComInterface&) = delete;

protected:
    template <class F, class... A>
    void call(std::string_view op, F f, A... args) {
        const HRESULT hr = (raw_->*f)(args...);
        if (FAILED(hr))
            throwCallFailure(hr, raw_, toIid(I::kIid), I::kName, op);
    }

    // One scalar result after the inputs.
    template <class Out, class F, class... A>
    Out get(std::string_view op, F f, A... in) {
        Out v{};
        call(op, f, in..., &v);
        return v;
    }
    template <class F, class... A>
    bool getBool(std::string_view op, F f, A... in) {
        return boolOf(get<VARIANT_BOOL>(op, f, in...));
    }
    template <class F>
    std::string getText(std::string_view op, F f) {
        Bstr s;
        call(op, f, s.out());
        return decode(op, [&] { return textOf(s.get(), "the text"); });
    }
    template <class F, class... A>
    Variant getValue(std::string_view op, F f, A... in) {
        OwnedVariant v;
        call(op, f, in..., v.out());
        return decode(op, [&] { return valueOf(v.get(), "the value"); });
    }
    template <class F>
    NameList getNameList(std::string_view op, F f) {
        OwnedVariant v;
        call(op, f, v.out());
        return decode(op, [&] {
            NameList r;
            r.names = textsOf(v.get(), "the list");
            r.lower = lowerOf(v.get(), "the list");
            return r;
        });
    }
    template <class F, class... A>
    NamedCodes getNamedCodes(std::string_view op, F f, A... in) {
        OwnedVariant names, codes;
        call(op, f, in..., names.out(), codes.out());
        return decode(op, [&] {
            NamedCodes r{textsOf(names.get(), "names"), shortsOf(codes.get(), "codes")};
            sameLength(r.names.size(), "names", r.codes.size(), "codes");
            return r;
        });
    }
    template <class F>
    PropertyList getPropertyList(std::string_view op, F f) {
        OwnedVariant ids, names, units;
        call(op, f, ids.out(), names.out(), units.out());
        return decode(op, [&] {
            PropertyList r{shortsOf(ids.get(), "ids"), textsOf(names.get(), "names"), textsOf(units.get(), "units"),
                           lowerOf(ids.get(), "ids")};
            sameLength(r.ids.size(), "ids", r.names.size(), "names");
            sameLength(r.ids.size(), "ids", r.units.size(), "units");
            sameLower(r.lower, "ids", lowerOf(names.get(), "names"), "names");
            sameLower(r.lower, "ids", lowerOf(units.get(), "units"), "units");
            return r;
        });
    }

    // Runs a conversion of the driver's results; a fault becomes DriverError naming the operation.
    template <class Fn>
    auto decode(std::string_view op, Fn fn) -> decltype(fn()) {
        try {
            return fn();
        } catch (const ValueFault& e) {
            throw DriverError(std::string(I::kName) + "." + std::string(op) + " returned a malformed result: " +
                              e.what() + ".");
        }
    }
    static void sameLower(std::int16_t a, const char* aName, std::int16_t b, const char* bName) {
        if (a != b)
            throw ValueFault(std::string(aName) + " start at index " + std::to_string(a) + " but " + bName +
                             " at " + std::to_string(b));
    }
    static void sameLength(std::size_t a, const char* aName, std::size_t b, const char* bName) {
        if (a != b)
            throw ValueFault(std::string(aName) + " has " + std::to_string(a) + " elements but " + bName + " has " +
                             std::to_string(b));
    }

    Raw* raw_;
    std::shared_ptr<Session> session_;
};

} // namespace vss::com
