#pragma once

// One driver interface of the server's object: a tear-off made when the client asks for the interface and gone
// when the client lets it go. It forwards IUnknown to the object and every operation to the same interface of a
// driver object in this process (the simulated instrument), converting the COM values on the way. A failure comes
// back as a failing result with the description in the thread's error information.

#include "com/ComValues.h"
#include "com/RawInterfaces.h"

#include <atomic>
#include <memory>
#include <new>
#include <string>

namespace vss::com {

// Records a failure for the calling thread's error information and returns hr.
HRESULT failWith(HRESULT hr, const IID& iid, const std::string& description);

// Thrown for a null out pointer.
struct NullOutPointer {};

template <class P>
P& out(P* p) {
    if (p == nullptr)
        throw NullOutPointer{};
    return *p;
}

// The reference count of a COM object that deletes itself when its last reference is released. Interfaces are
// the COM interfaces it implements; the count starts at one, the reference of whoever made it.
template <class... Interfaces>
class RefCounted : public Interfaces... {
public:
    ULONG STDMETHODCALLTYPE AddRef() override { return ++refs_; }
    ULONG STDMETHODCALLTYPE Release() override {
        const ULONG left = --refs_;
        if (left == 0)
            delete this;
        return left;
    }

protected:
    RefCounted() = default;
    virtual ~RefCounted() = default;
    RefCounted(const RefCounted&) = delete;
    RefCounted& operator=(const RefCounted&) = delete;

private:
    std::atomic<ULONG> refs_{1};
};

template <class I>
class ServedBase : public RefCounted<typename RawOf<I>::type> {
public:
    // Holds a reference to `outer` (the object) for its whole life; starts with one reference of its own.
    ServedBase(IUnknown* outer, std::shared_ptr<I> target) : outer_(outer), target_(std::move(target)) {
        outer_->AddRef();
    }
    ~ServedBase() override { outer_->Release(); }
    ServedBase(const ServedBase&) = delete;
    ServedBase& operator=(const ServedBase&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** object) override {
        return outer_->QueryInterface(iid, object);
    }

protected:
    // Runs one operation: S_OK, or the failure with its description.
    template <class F>
    HRESULT serve(F f) noexcept {
        const IID iid = toIid(I::kIid);
        try {
            f(*target_);
            return S_OK;
        } catch (const DriverError& e) {
            return failWith(E_FAIL, iid, e.description());
        } catch (const ValueFault& e) {
            return failWith(E_INVALIDARG, iid, std::string(I::kName) + ": " + e.what() + ".");
        } catch (const NullOutPointer&) {
            return failWith(E_POINTER, iid, std::string(I::kName) + ": a result pointer is null.");
        } catch (const std::bad_alloc&) {
            return failWith(E_OUTOFMEMORY, iid, "Out of memory.");
        } catch (const std::exception& e) {
            return failWith(E_UNEXPECTED, iid, e.what());
        }
    }

private:
    IUnknown* outer_;
    std::shared_ptr<I> target_;
};

template <class I>
class Served;

template <>
class Served<IDriver> : public ServedBase<IDriver> {
public:
    using ServedBase::ServedBase;
    HRESULT STDMETHODCALLTYPE Open(BSTR r) override { return serve([&](vss::IDriver& d) { d.Open(textOrEmpty(r)); }); }
    HRESULT STDMETHODCALLTYPE Close() override { return serve([](vss::IDriver& d) { d.Close(); }); }
    HRESULT STDMETHODCALLTYPE Initialize() override { return serve([](vss::IDriver& d) { d.Initialize(); }); }
    HRESULT STDMETHODCALLTYPE Reset() override { return serve([](vss::IDriver& d) { d.Reset(); }); }
    HRESULT STDMETHODCALLTYPE GetDiskSizeLimit(double* min, double* max) override {
        return serve([&](vss::IDriver& d) {
            auto& lo = out(min);
            auto& hi = out(max);
            const DoubleRange r = d.GetDiskSizeLimit();
            lo = r.min;
            hi = r.max;
        });
    }
    HRESULT STDMETHODCALLTYPE GetSpeedRange(long* min, long* max) override {
        return serve([&](vss::IDriver& d) {
            auto& lo = out(min);
            auto& hi = out(max);
            const SpeedRange r = d.GetSpeedRange();
            lo = r.min;
            hi = r.max;
        });
    }
    HRESULT STDMETHODCALLTYPE GetLoadMethodList(VARIANT* names, VARIANT* codes) override {
        return serve([&](vss::IDriver& d) { giveNamedCodes(d.GetLoadMethodList(), names, codes); });
    }
    HRESULT STDMETHODCALLTYPE Load() override { return serve([](vss::IDriver& d) { d.Load(); }); }
    HRESULT STDMETHODCALLTYPE Unload() override { return serve([](vss::IDriver& d) { d.Unload(); }); }
    HRESULT STDMETHODCALLTYPE GetPosition(long* track, double* radius, double* skew) override {
        return serve([&](vss::IDriver& d) {
            auto& t = out(track);
            auto& r = out(radius);
            auto& s = out(skew);
            const HeadPosition p = d.GetPosition();
            t = p.track;
            r = p.radius;
            s = p.skew;
        });
    }
    HRESULT STDMETHODCALLTYPE GetDataArea(double* innerRadius, long* maxTrack, double* pitch) override {
        return serve([&](vss::IDriver& d) {
            auto& r = out(innerRadius);
            auto& m = out(maxTrack);
            auto& p = out(pitch);
            const DataArea a = d.GetDataArea();
            r = a.innerRadius;
            m = a.maxTrack;
            p = a.pitch;
        });
    }
    HRESULT STDMETHODCALLTYPE SetDataArea(double innerRadius, long maxTrack, double pitch) override {
        return serve([&](vss::IDriver& d) { d.SetDataArea(innerRadius, maxTrack, pitch); });
    }
    HRESULT STDMETHODCALLTYPE GetSpindleSpeed(long* rpm) override {
        return serve([&](vss::IDriver& d) { out(rpm) = d.GetSpindleSpeed(); });
    }
    HRESULT STDMETHODCALLTYPE SetSpindleSpeed(long rpm) override {
        return serve([&](vss::IDriver& d) { d.SetSpindleSpeed(rpm); });
    }
    HRESULT STDMETHODCALLTYPE GetHomeState(long* s) override {
        return serve([&](vss::IDriver& d) { out(s) = d.GetHomeState(); });
    }
    HRESULT STDMETHODCALLTYPE SetHomeState(long s) override { return serve([&](vss::IDriver& d) { d.SetHomeState(s); }); }
    HRESULT STDMETHODCALLTYPE GetLoadMethod(short* m) override {
        return serve([&](vss::IDriver& d) { out(m) = d.GetLoadMethod(); });
    }
    HRESULT STDMETHODCALLTYPE SetLoadMethod(short m) override { return serve([&](vss::IDriver& d) { d.SetLoadMethod(m); }); }
    HRESULT STDMETHODCALLTYPE GetState(long* s) override { return serve([&](vss::IDriver& d) { out(s) = d.GetState(); }); }
    HRESULT STDMETHODCALLTYPE GetFinePositionLimit(double* l) override {
        return serve([&](vss::IDriver& d) { out(l) = d.GetFinePositionLimit(); });
    }
    HRESULT STDMETHODCALLTYPE GetHardwareRevision(BSTR* s) override {
        return serve([&](vss::IDriver& d) { giveText(d.GetHardwareRevision(), s); });
    }
    HRESULT STDMETHODCALLTYPE GetFirmwareRevision(BSTR* s) override {
        return serve([&](vss::IDriver& d) { giveText(d.GetFirmwareRevision(), s); });
    }
    HRESULT STDMETHODCALLTYPE GetDriverRevision(BSTR* s) override {
        return serve([&](vss::IDriver& d) { giveText(d.GetDriverRevision(), s); });
    }
    HRESULT STDMETHODCALLTYPE GetSerialNumber(BSTR* s) override {
        return serve([&](vss::IDriver& d) { giveText(d.GetSerialNumber(), s); });
    }

    // Shared with the service interface.
    static void giveText(const std::string& text, BSTR* target) {
        BSTR& t = out(target);
        t = allocString(text);
    }
    static void giveNamedCodes(const NamedCodes& list, VARIANT* names, VARIANT* codes) {
        VARIANT& n = out(names);
        VARIANT& c = out(codes);
        OwnedVariant namesV(listVariant(list.names)), codesV(listVariant(list.codes));
        n = namesV.release();
        c = codesV.release();
    }
};

template <>
class Served<IDriverPiezo> : public ServedBase<IDriverPiezo> {
public:
    using ServedBase::ServedBase;
    HRESULT STDMETHODCALLTYPE GetPiezoReading(double* r) override {
        return serve([&](vss::IDriverPiezo& p) { out(r) = p.GetPiezoReading(); });
    }
};

template <>
class Served<IDriverStage> : public ServedBase<IDriverStage> {
public:
    using ServedBase::ServedBase;
    HRESULT STDMETHODCALLTYPE MoveTo(double* radius) override {
        return serve([&](vss::IDriverStage& s) { s.MoveTo(out(radius)); });
    }
};

template <>
class Served<IDriverLoadPosition> : public ServedBase<IDriverLoadPosition> {
public:
    using ServedBase::ServedBase;
    HRESULT STDMETHODCALLTYPE GetLoadPosition(short which, com::PositionRecord* position, long* rpm) override {
        return serve([&](vss::IDriverLoadPosition& l) {
            auto& p = out(position);
            auto& r = out(rpm);
            const LoadPosition lp = l.GetLoadPosition(which);
            p = {lp.position.radius, lp.position.skew};
            r = lp.rpm;
        });
    }
    HRESULT STDMETHODCALLTYPE SetLoadPosition(short which, com::PositionRecord* position, long rpm) override {
        return serve([&](vss::IDriverLoadPosition& l) {
            const com::PositionRecord& p = out(position);
            l.SetLoadPosition(which, {p.radius, p.skew}, rpm);
        });
    }
};

template <>
class Served<IDriverHeadLoader> : public ServedBase<IDriverHeadLoader> {
public:
    using ServedBase::ServedBase;
    HRESULT STDMETHODCALLTYPE GetHeadLoader(VARIANT_BOOL* down) override {
        return serve([&](vss::IDriverHeadLoader& h) { out(down) = toVariantBool(h.GetHeadLoader()); });
    }
    HRESULT STDMETHODCALLTYPE SetHeadLoader(VARIANT_BOOL down) override {
        return serve([&](vss::IDriverHeadLoader& h) { h.SetHeadLoader(boolOf(down)); });
    }
};

template <>
class Served<IDriverSpindle> : public ServedBase<IDriverSpindle> {
public:
    using ServedBase::ServedBase;
    HRESULT STDMETHODCALLTYPE GetMotor(VARIANT_BOOL* on) override {
        return serve([&](vss::IDriverSpindle& s) { out(on) = toVariantBool(s.GetMotor()); });
    }
    HRESULT STDMETHODCALLTYPE SetMotor(VARIANT_BOOL on) override {
        return serve([&](vss::IDriverSpindle& s) { s.SetMotor(boolOf(on)); });
    }
    HRESULT STDMETHODCALLTYPE GetRotation(long* r) override {
        return serve([&](vss::IDriverSpindle& s) { out(r) = s.GetRotation(); });
    }
};

template <>
class Served<IDriverClamp> : public ServedBase<IDriverClamp> {
public:
    using ServedBase::ServedBase;
    HRESULT STDMETHODCALLTYPE GetClamp(VARIANT_BOOL* on) override {
        return serve([&](vss::IDriverClamp& c) { out(on) = toVariantBool(c.GetClamp()); });
    }
    HRESULT STDMETHODCALLTYPE SetClamp(VARIANT_BOOL on) override {
        return serve([&](vss::IDriverClamp& c) { c.SetClamp(boolOf(on)); });
    }
};

template <>
class Served<IDriverHeadFace> : public ServedBase<IDriverHeadFace> {
public:
    using ServedBase::ServedBase;
    HRESULT STDMETHODCALLTYPE GetFace(long* face) override {
        return serve([&](vss::IDriverHeadFace& h) { out(face) = h.GetFace(); });
    }
};

template <>
class Served<IDriverIndex> : public ServedBase<IDriverIndex> {
public:
    using ServedBase::ServedBase;
    HRESULT STDMETHODCALLTYPE GetIndexPolarity(VARIANT_BOOL* rising) override {
        return serve([&](vss::IDriverIndex& i) { out(rising) = toVariantBool(i.GetIndexPolarity()); });
    }
};

template <>
class Served<IDriverInterlock> : public ServedBase<IDriverInterlock> {
public:
    using ServedBase::ServedBase;
    HRESULT STDMETHODCALLTYPE GetInterlock(VARIANT_BOOL* detected) override {
        return serve([&](vss::IDriverInterlock& i) { out(detected) = toVariantBool(i.GetInterlock()); });
    }
};

template <>
class Served<IDriverDiskSize> : public ServedBase<IDriverDiskSize> {
public:
    using ServedBase::ServedBase;
    HRESULT STDMETHODCALLTYPE GetDiskSizeRestriction(VARIANT_BOOL* on) override {
        return serve([&](vss::IDriverDiskSize& s) { out(on) = toVariantBool(s.GetDiskSizeRestriction()); });
    }
    HRESULT STDMETHODCALLTYPE SetDiskSizeRestriction(VARIANT_BOOL on) override {
        return serve([&](vss::IDriverDiskSize& s) { s.SetDiskSizeRestriction(boolOf(on)); });
    }
};

} // namespace vss::com
