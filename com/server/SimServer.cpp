// The simulated instrument as an in-process COM server: the class registered as "Vlkd2208.CoDriver" on a machine
// without the instrument, so that the tool (and the COM client's tests) run against it through COM.

#include "com/server/Served.h"
#include "com/server/ServedService.h"
#include "com/server/SimControl.h"
#include "simulator/SimInstrument.h"

#include <olectl.h>

#include <atomic>
#include <mutex>
#include <string>

namespace vss::com {

namespace {

HINSTANCE moduleHandle = nullptr;
std::atomic<long> liveObjects{0};
std::atomic<long> serverLocks{0};

// The instrument the server's objects run on: one per process, like the physical one. Its non-volatile file is
// the simulator's default, or the one named by the VSS_SIM_STATE environment variable.
std::mutex instrumentMutex;
std::shared_ptr<sim::SimInstrument> currentInstrument;

std::shared_ptr<sim::SimInstrument> newInstrument(std::string statePath, std::int16_t listLower = 0) {
    sim::SimOptions options;
    options.statePath = std::move(statePath);
    options.listLower = listLower;
    return std::make_shared<sim::SimInstrument>(options);
}

std::shared_ptr<sim::SimInstrument> instrument() {
    std::lock_guard lock(instrumentMutex);
    if (!currentInstrument) {
        wchar_t path[MAX_PATH];
        const DWORD n = GetEnvironmentVariableW(L"VSS_SIM_STATE", path, MAX_PATH);
        currentInstrument = newInstrument(n > 0 && n < MAX_PATH ? toUtf8(path, n) : std::string());
    }
    return currentInstrument;
}

class CoDriver final : public RefCounted<ISupportErrorInfo, ISimControl> {
public:
    CoDriver() : instrument_(instrument()), object_(instrument_->createObject()) { ++liveObjects; }
    ~CoDriver() override { --liveObjects; }
    CoDriver(const CoDriver&) = delete;
    CoDriver& operator=(const CoDriver&) = delete;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        if (result == nullptr)
            return E_POINTER;
        *result = nullptr;
        if (iid == IID_IUnknown || iid == IID_ISupportErrorInfo)
            *result = static_cast<ISupportErrorInfo*>(this);
        else if (iid == toIid(kSimControlIid))
            *result = static_cast<ISimControl*>(this);
        if (*result != nullptr) {
            AddRef();
            return S_OK;
        }
        return queryDriverInterface(iid, result);
    }

    HRESULT STDMETHODCALLTYPE InterfaceSupportsErrorInfo(REFIID) override { return S_OK; }

    HRESULT STDMETHODCALLTYPE GetTrace(BSTR* lines) override {
        return control([&] {
            std::string text;
            for (const std::string& line : instrument_->trace().lines())
                text += line + "\n";
            out(lines) = allocString(text);
        });
    }
    HRESULT STDMETHODCALLTYPE ClearTrace() override {
        return control([&] { instrument_->trace().clear(); });
    }
    HRESULT STDMETHODCALLTYPE SetInput(long input, VARIANT_BOOL value) override {
        return control([&] {
            if (input < 0 || input > static_cast<long>(sim::Input::StopperDownSensor))
                throw ValueFault("no input " + std::to_string(input));
            instrument_->setInput(static_cast<sim::Input>(input), boolOf(value));
        });
    }
    HRESULT STDMETHODCALLTYPE FailOperation(BSTR operation, BSTR description, long times) override {
        return control([&] { instrument_->failOperation(textOrEmpty(operation), textOrEmpty(description), times); });
    }
    HRESULT STDMETHODCALLTYPE ClearFailures() override {
        return control([&] { instrument_->clearFailures(); });
    }
    HRESULT STDMETHODCALLTYPE RestartInstrument(BSTR statePath, long listLower) override {
        return control([&] {
            if (listLower != 0 && listLower != 1)
                throw DriverError("The simulated instrument numbers its lists from 0 or 1, not " +
                                  std::to_string(listLower) + ".");
            auto fresh = newInstrument(textOrEmpty(statePath), static_cast<std::int16_t>(listLower));
            std::lock_guard lock(instrumentMutex);
            currentInstrument = std::move(fresh);
        });
    }
    HRESULT STDMETHODCALLTYPE GetAllocationCounts(AllocationCounts* counts) override {
        return control([&] { out(counts) = allocationCounts(); });
    }

private:
    template <class I>
    static HRESULT tearOff(CoDriver* self, void** result) {
        // The instrument's own interface is taken when the client asks, and dropped when the client lets go.
        auto target = vss::QueryInterface<I>(*self->object_);
        *result = static_cast<typename RawOf<I>::type*>(new Served<I>(static_cast<ISupportErrorInfo*>(self), target));
        return S_OK;
    }

    HRESULT queryDriverInterface(REFIID iid, void** result) {
        struct Entry {
            Guid id;
            HRESULT (*make)(CoDriver*, void**);
        };
        static constexpr Entry entries[] = {
            {IDriver::kIid, &tearOff<IDriver>},
            {IDriverPiezo::kIid, &tearOff<IDriverPiezo>},
            {IDriverStage::kIid, &tearOff<IDriverStage>},
            {IDriverLoadPosition::kIid, &tearOff<IDriverLoadPosition>},
            {IDriverHeadLoader::kIid, &tearOff<IDriverHeadLoader>},
            {IDriverSpindle::kIid, &tearOff<IDriverSpindle>},
            {IDriverClamp::kIid, &tearOff<IDriverClamp>},
            {IDriverHeadFace::kIid, &tearOff<IDriverHeadFace>},
            {IDriverIndex::kIid, &tearOff<IDriverIndex>},
            {IDriverInterlock::kIid, &tearOff<IDriverInterlock>},
            {IDriverDiskSize::kIid, &tearOff<IDriverDiskSize>},
            {IDriverService::kIid, &tearOff<IDriverService>},
        };
        for (const Entry& e : entries) {
            if (toIid(e.id) != iid)
                continue;
            try {
                return e.make(this, result);
            } catch (const std::exception& ex) {
                failWith(E_NOINTERFACE, iid, ex.what());
                return E_NOINTERFACE;
            }
        }
        return E_NOINTERFACE;
    }

    template <class F>
    HRESULT control(F f) noexcept {
        const IID iid = toIid(kSimControlIid);
        try {
            f();
            return S_OK;
        } catch (const NullOutPointer&) {
            return failWith(E_POINTER, iid, "A result pointer is null.");
        } catch (const ValueFault& e) {
            return failWith(E_INVALIDARG, iid, e.what());
        } catch (const std::exception& e) {
            return failWith(E_FAIL, iid, e.what());
        }
    }

    std::shared_ptr<sim::SimInstrument> instrument_;
    std::shared_ptr<DriverObject> object_;
};

class ClassFactory final : public IClassFactory {
public:
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        if (result == nullptr)
            return E_POINTER;
        if (iid == IID_IUnknown || iid == IID_IClassFactory) {
            *result = static_cast<IClassFactory*>(this);
            return S_OK;
        }
        *result = nullptr;
        return E_NOINTERFACE;
    }
    ULONG STDMETHODCALLTYPE AddRef() override { return 2; } // one static factory for the life of the module
    ULONG STDMETHODCALLTYPE Release() override { return 1; }

    HRESULT STDMETHODCALLTYPE CreateInstance(IUnknown* outer, REFIID iid, void** result) override {
        if (result == nullptr)
            return E_POINTER;
        *result = nullptr;
        if (outer != nullptr)
            return CLASS_E_NOAGGREGATION;
        CoDriver* object = nullptr;
        try {
            object = new CoDriver();
        } catch (const std::exception& e) {
            return failWith(E_FAIL, iid, std::string("The simulated instrument could not start: ") + e.what());
        }
        const HRESULT hr = object->QueryInterface(iid, result);
        object->Release();
        return hr;
    }
    HRESULT STDMETHODCALLTYPE LockServer(BOOL lock) override {
        serverLocks += lock ? 1 : -1;
        return S_OK;
    }
};
ClassFactory classFactory;

// ---- self-registration ----

constexpr const wchar_t* kProgId = L"Vlkd2208.CoDriver";

std::wstring clsidText() {
    return toWide(kSimulatorClsid.toString());
}

// Whom the driver's ProgID belongs to. The instrument's own driver registers under the same ProgID: a key that
// names another class, or that names no class this server can read (a key with only a CurVer, an unreadable
// key), is someone else's.
enum class ProgIdOwner { Nobody, Simulator, Other };

ProgIdOwner progIdOwner() {
    HKEY key = nullptr;
    const LONG opened = RegOpenKeyExW(HKEY_CLASSES_ROOT, kProgId, 0, KEY_READ, &key);
    if (opened == ERROR_FILE_NOT_FOUND)
        return ProgIdOwner::Nobody;
    if (opened != ERROR_SUCCESS)
        return ProgIdOwner::Other;
    wchar_t text[64] = {};
    DWORD size = sizeof(text);
    const LONG read = RegGetValueW(key, L"CLSID", nullptr, RRF_RT_REG_SZ, nullptr, text, &size);
    RegCloseKey(key);
    CLSID named{};
    if (read == ERROR_SUCCESS && SUCCEEDED(CLSIDFromString(text, &named)) && named == toIid(kSimulatorClsid))
        return ProgIdOwner::Simulator;
    return ProgIdOwner::Other;
}

LONG setValue(HKEY root, const std::wstring& key, const wchar_t* name, const std::wstring& value) {
    HKEY h = nullptr;
    LONG rc = RegCreateKeyExW(root, key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &h, nullptr);
    if (rc != ERROR_SUCCESS)
        return rc;
    rc = RegSetValueExW(h, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.c_str()),
                        static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t)));
    RegCloseKey(h);
    return rc;
}

} // namespace

} // namespace vss::com

using namespace vss::com;

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID) {
    if (reason == DLL_PROCESS_ATTACH) {
        moduleHandle = instance;
        DisableThreadLibraryCalls(instance);
    }
    return TRUE;
}

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID iid, void** result) {
    if (result == nullptr)
        return E_POINTER;
    *result = nullptr;
    if (clsid != toIid(kSimulatorClsid))
        return CLASS_E_CLASSNOTAVAILABLE;
    return classFactory.QueryInterface(iid, result);
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() {
    return liveObjects == 0 && serverLocks == 0 ? S_OK : S_FALSE;
}

HRESULT STDAPICALLTYPE DllRegisterServer() {
    wchar_t path[MAX_PATH];
    const DWORD n = GetModuleFileNameW(moduleHandle, path, MAX_PATH);
    if (n == 0 || n >= MAX_PATH)
        return SELFREG_E_CLASS;
    // Registering over the instrument's driver would take its ProgID; nothing is written then. Registering
    // again over the simulator's own registration is fine.
    if (progIdOwner() == ProgIdOwner::Other)
        return SELFREG_E_CLASS;
    const std::wstring progId = kProgId;
    const std::wstring clsidKey = L"CLSID\\" + clsidText();
    const LONG results[] = {
        setValue(HKEY_CLASSES_ROOT, progId, nullptr, L"CoDriver (simulated instrument)"),
        setValue(HKEY_CLASSES_ROOT, progId + L"\\CLSID", nullptr, clsidText()),
        setValue(HKEY_CLASSES_ROOT, clsidKey, nullptr, L"CoDriver (simulated instrument)"),
        setValue(HKEY_CLASSES_ROOT, clsidKey + L"\\ProgID", nullptr, progId),
        setValue(HKEY_CLASSES_ROOT, clsidKey + L"\\InprocServer32", nullptr, std::wstring(path, n)),
        setValue(HKEY_CLASSES_ROOT, clsidKey + L"\\InprocServer32", L"ThreadingModel", L"Apartment"),
    };
    for (LONG rc : results)
        if (rc != ERROR_SUCCESS)
            return SELFREG_E_CLASS;
    return S_OK;
}

// The simulator's class goes; the ProgID goes only while it still names that class (the instrument's driver may
// have been registered over it since).
HRESULT STDAPICALLTYPE DllUnregisterServer() {
    const bool ownsProgId = progIdOwner() == ProgIdOwner::Simulator;
    RegDeleteTreeW(HKEY_CLASSES_ROOT, (L"CLSID\\" + clsidText()).c_str());
    if (ownsProgId)
        RegDeleteTreeW(HKEY_CLASSES_ROOT, kProgId);
    return S_OK;
}

} // extern "C"
