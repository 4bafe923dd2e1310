// A deliberately bad driver object: results that break the contract must come back as DriverError naming the
// operation and the fault, never as a crash or a wrong value.

#include "com/ComClient.h"
#include "com/server/Served.h"
#include "com/server/ServedService.h"
#include "simulator/SimInstrument.h"
#include "tests/com/ComTestSupport.h"

#include <functional>

namespace vss::com::test {
namespace {

// What the bad object does instead of the simulator, operation by operation; empty: what the simulator does.
struct Script {
    std::function<HRESULT(VARIANT* names, VARIANT* codes)> loadMethods;
    std::function<HRESULT(BSTR*)> hardwareRevision;
    std::function<HRESULT(VARIANT*)> stageProperty;
    std::function<HRESULT(VARIANT* names)> adjustList;
    std::function<HRESULT(VARIANT* ids, VARIANT* names, VARIANT* units)> spindleProperties;
    HRESULT loadResult = S_OK;
};

class BadDriver final : public Served<IDriver> {
public:
    BadDriver(IUnknown* outer, std::shared_ptr<vss::IDriver> target, const Script& script)
        : Served(outer, std::move(target)), script_(script) {}
    HRESULT STDMETHODCALLTYPE GetLoadMethodList(VARIANT* names, VARIANT* codes) override {
        return script_.loadMethods ? script_.loadMethods(names, codes) : Served::GetLoadMethodList(names, codes);
    }
    HRESULT STDMETHODCALLTYPE GetHardwareRevision(BSTR* r) override {
        return script_.hardwareRevision ? script_.hardwareRevision(r) : Served::GetHardwareRevision(r);
    }
    HRESULT STDMETHODCALLTYPE Load() override { return FAILED(script_.loadResult) ? script_.loadResult : Served::Load(); }

private:
    const Script& script_;
};

class BadService final : public Served<IDriverService> {
public:
    BadService(IUnknown* outer, std::shared_ptr<vss::IDriverService> target, const Script& script)
        : Served(outer, std::move(target)), script_(script) {}
    HRESULT STDMETHODCALLTYPE GetStageProperty(short id, VARIANT* v) override {
        return script_.stageProperty ? script_.stageProperty(v) : Served::GetStageProperty(id, v);
    }
    HRESULT STDMETHODCALLTYPE GetPiezoAdjustList(VARIANT* names) override {
        return script_.adjustList ? script_.adjustList(names) : Served::GetPiezoAdjustList(names);
    }
    HRESULT STDMETHODCALLTYPE GetSpindlePropertyList(VARIANT* ids, VARIANT* names, VARIANT* units) override {
        return script_.spindleProperties ? script_.spindleProperties(ids, names, units)
                                         : Served::GetSpindlePropertyList(ids, names, units);
    }

private:
    const Script& script_;
};

// Has only IDriver and IDriverService, and no error information.
class BadObject final : public RefCounted<IUnknown> {
public:
    explicit BadObject(Script script) : script_(std::move(script)), object_(instrument_.createObject()) {}

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID iid, void** result) override {
        *result = nullptr;
        if (iid == IID_IUnknown)
            *result = this, AddRef();
        else if (iid == toIid(IDriver::kIid))
            *result = static_cast<raw::IDriver*>(new BadDriver(this, vss::QueryInterface<IDriver>(*object_), script_));
        else if (iid == toIid(IDriverService::kIid))
            *result = static_cast<raw::IDriverService*>(
                new BadService(this, vss::QueryInterface<IDriverService>(*object_), script_));
        return *result != nullptr ? S_OK : E_NOINTERFACE;
    }

private:
    Script script_;
    sim::SimInstrument instrument_{sim::SimOptions{":memory:"}};
    std::shared_ptr<DriverObject> object_;
};

std::shared_ptr<ComDriverObject> badObject(Script script) {
    return ComDriverObject::attach(new BadObject(std::move(script)), "BadDriver");
}

// The description of the DriverError that f throws, or a note that it threw none.
template <class F>
std::string failureOf(F f) {
    try {
        f();
    } catch (const DriverError& e) {
        return e.description();
    }
    return "(no DriverError)";
}

VARIANT arrayVariant(VARTYPE vt, SAFEARRAY* array) {
    VARIANT v;
    VariantInit(&v);
    v.vt = static_cast<VARTYPE>(VT_ARRAY | vt);
    v.parray = array;
    return v;
}

VARIANT scalarLong(long value) {
    VARIANT v;
    VariantInit(&v);
    v.vt = VT_I4;
    v.lVal = value;
    return v;
}

VARIANT stringsWithNullAt(LONG nullIndex) {
    SAFEARRAY* a = SafeArrayCreateVector(VT_BSTR, 0, 2);
    for (LONG i = 0; i < 2; ++i)
        if (i != nullIndex)
            SafeArrayPutElement(a, &i, SysAllocString(L"Ramp")); // a copy goes in; this one is leaked in a test only
    return arrayVariant(VT_BSTR, a);
}

struct ListFault {
    const char* label;
    std::function<void(VARIANT* names, VARIANT* codes)> give;
    const char* expected;
};

using Malformed = ComTest;

TEST_F(Malformed, BrokenListsNameTheOperationAndTheFault) {
    const ListFault faults[] = {
        {"empty", [](VARIANT* n, VARIANT* c) { VariantInit(n), *c = listVariant(std::vector<std::int16_t>{1}); },
         "names is an empty VARIANT, not a list of texts"},
        {"scalar", [](VARIANT* n, VARIANT* c) { *n = scalarLong(3), *c = listVariant(std::vector<std::int16_t>{1}); },
         "names is a 32-bit integer, not a list of texts"},
        {"wrong element type",
         [](VARIANT* n, VARIANT* c) {
             *n = listVariant(std::vector<double>{1.5});
             *c = listVariant(std::vector<std::int16_t>{1});
         },
         "names is a list of doubles, not a list of texts"},
        {"two dimensions",
         [](VARIANT* n, VARIANT* c) {
             SAFEARRAYBOUND bounds[2] = {{2, 0}, {2, 0}};
             *n = arrayVariant(VT_BSTR, SafeArrayCreate(VT_BSTR, 2, bounds));
             *c = listVariant(std::vector<std::int16_t>{1, 2});
         },
         "names has 2 dimensions, not 1"},
        {"no array", [](VARIANT* n, VARIANT* c) { *n = arrayVariant(VT_BSTR, nullptr), *c = listVariant(std::vector<std::int16_t>{}); },
         "names is an array VARIANT without an array"},
        {"null text element",
         [](VARIANT* n, VARIANT* c) { *n = stringsWithNullAt(1), *c = listVariant(std::vector<std::int16_t>{1, 2}); },
         "names element 1 is a null string"},
        {"lengths differ",
         [](VARIANT* n, VARIANT* c) {
             *n = listVariant(std::vector<std::string>{"Ramp", "Drop"});
             *c = listVariant(std::vector<std::int16_t>{1});
         },
         "names has 2 elements but codes has 1"},
        {"codes of the wrong width",
         [](VARIANT* n, VARIANT* c) {
             *n = listVariant(std::vector<std::string>{"Ramp"});
             *c = arrayVariant(VT_I2, SafeArrayCreateVector(VT_I4, 0, 1)); // tagged 16-bit, holds 32-bit
         },
         "codes has elements of 4 bytes"},
        {"variant element of the wrong type",
         [](VARIANT* n, VARIANT* c) {
             SAFEARRAY* a = SafeArrayCreateVector(VT_VARIANT, 0, 1);
             LONG i = 0;
             VARIANT e = scalarLong(7);
             SafeArrayPutElement(a, &i, &e);
             *n = arrayVariant(VT_VARIANT, a);
             *c = listVariant(std::vector<std::int16_t>{1});
         },
         "names element 0 is a 32-bit integer, not a text"},
    };
    for (const ListFault& f : faults) {
        Script script;
        script.loadMethods = [&](VARIANT* n, VARIANT* c) {
            f.give(n, c);
            return S_OK;
        };
        auto driver = QueryInterface<IDriver>(*badObject(script));
        const std::string message = failureOf([&] { driver->GetLoadMethodList(); });
        EXPECT_EQ(message.rfind("IDriver.GetLoadMethodList returned a malformed result: ", 0), 0u) << f.label;
        EXPECT_NE(message.find(f.expected), std::string::npos) << f.label << ": " << message;
    }
}

TEST_F(Malformed, ListsOfVariantsWithAnyLowerBoundAreAccepted) {
    Script script;
    script.loadMethods = [](VARIANT* n, VARIANT* c) {
        SAFEARRAYBOUND from1{2, 1};
        SAFEARRAY* a = SafeArrayCreate(VT_VARIANT, 1, &from1);
        const wchar_t* texts[] = {L"Ramp", L"Drop"};
        for (LONG i = 1; i <= 2; ++i) {
            VARIANT e;
            VariantInit(&e);
            e.vt = VT_BSTR;
            e.bstrVal = SysAllocString(texts[i - 1]);
            SafeArrayPutElement(a, &i, &e);
            VariantClear(&e);
        }
        *n = arrayVariant(VT_VARIANT, a);
        *c = listVariant(std::vector<std::int16_t>{4, 9});
        return S_OK;
    };
    auto driver = QueryInterface<IDriver>(*badObject(script));
    const NamedCodes list = driver->GetLoadMethodList();
    EXPECT_EQ(list.names, (std::vector<std::string>{"Ramp", "Drop"}));
    EXPECT_EQ(list.codes, (std::vector<std::int16_t>{4, 9}));
}

// A list of texts whose indexes run from `lower`.
VARIANT textsFrom(LONG lower, std::initializer_list<const wchar_t*> texts) {
    SAFEARRAYBOUND bounds{static_cast<ULONG>(texts.size()), lower};
    SAFEARRAY* a = SafeArrayCreate(VT_BSTR, 1, &bounds);
    LONG i = lower;
    for (const wchar_t* text : texts) {
        BSTR copy = SysAllocString(text);
        SafeArrayPutElement(a, &i, copy); // puts a copy in
        SysFreeString(copy);
        ++i;
    }
    return arrayVariant(VT_BSTR, a);
}

TEST_F(Malformed, ListsKeepTheirFirstIndexWhichMustLeaveTheIndexesWithin16Bits) {
    Script script;
    LONG lower = 1;
    script.adjustList = [&](VARIANT* n) {
        *n = textsFrom(lower, {L"Zero", L"Gain"});
        return S_OK;
    };
    auto service = QueryInterface<IDriverService>(*badObject(script));
    EXPECT_EQ(service->GetPiezoAdjustList(), (NameList{1, {"Zero", "Gain"}}));
    lower = -3;
    EXPECT_EQ(service->GetPiezoAdjustList(), (NameList{-3, {"Zero", "Gain"}}));
    lower = 32766; // the last index is the last 16-bit one
    EXPECT_EQ(service->GetPiezoAdjustList(), (NameList{32766, {"Zero", "Gain"}}));
    lower = 32767;
    EXPECT_EQ(failureOf([&] { service->GetPiezoAdjustList(); }),
              "IDriverService.GetPiezoAdjustList returned a malformed result: the list has bounds 32767 to 32768, "
              "beyond the 16-bit indexes of the driver's operations.");
}

TEST_F(Malformed, PropertyListsWhoseArraysStartAtDifferentIndexesAreRefused) {
    Script script;
    script.spindleProperties = [](VARIANT* ids, VARIANT* names, VARIANT* units) {
        SAFEARRAYBOUND from1{1, 1};
        SAFEARRAY* a = SafeArrayCreate(VT_I2, 1, &from1);
        LONG at = 1;
        short id = 0;
        SafeArrayPutElement(a, &at, &id);
        *ids = arrayVariant(VT_I2, a);
        *names = textsFrom(1, {L"Accel"});
        *units = textsFrom(0, {L"rpm/s"});
        return S_OK;
    };
    auto service = QueryInterface<IDriverService>(*badObject(script));
    EXPECT_EQ(failureOf([&] { service->GetSpindlePropertyList(); }),
              "IDriverService.GetSpindlePropertyList returned a malformed result: ids start at index 1 but units "
              "at 0.");
}

TEST_F(Malformed, NullTextsAndUnsupportedValuesAreRefused) {
    Script script;
    script.hardwareRevision = [](BSTR* r) {
        *r = nullptr;
        return S_OK;
    };
    VARTYPE valueType = VT_DATE;
    script.stageProperty = [&](VARIANT* v) {
        VariantInit(v);
        v->vt = valueType; // a VT_BSTR stays without its string
        return S_OK;
    };
    auto object = badObject(script);
    auto driver = QueryInterface<IDriver>(*object);
    auto service = QueryInterface<IDriverService>(*object);

    EXPECT_EQ(failureOf([&] { driver->GetHardwareRevision(); }),
              "IDriver.GetHardwareRevision returned a malformed result: the text is a null string.");
    EXPECT_NE(failureOf([&] { service->GetStageProperty(0); })
                  .find("IDriverService.GetStageProperty returned a malformed result: the value is a VARIANT of type "
                        "0x0007"),
              std::string::npos);
    valueType = VT_BSTR;
    EXPECT_EQ(failureOf([&] { service->GetStageProperty(0); }),
              "IDriverService.GetStageProperty returned a malformed result: the value is a null string.");
}

TEST_F(Malformed, AFailureWithoutDescriptionGivesTheSystemTextOrTheOperationWithTheCode) {
    auto loadFailingWith = [](HRESULT hr) {
        Script script;
        script.loadResult = hr;
        auto driver = QueryInterface<IDriver>(*badObject(script));
        return failureOf([&] { driver->Load(); });
    };
    const std::string known = loadFailingWith(E_FAIL);
    EXPECT_NE(known.find("(0x80004005)"), std::string::npos) << known;

    const std::string unknown = loadFailingWith(static_cast<HRESULT>(0x80041234));
    EXPECT_NE(unknown.find("0x80041234"), std::string::npos) << unknown;
    EXPECT_NE(unknown.find("IDriver.Load"), std::string::npos) << unknown;
}

TEST_F(Malformed, AMissingInterfaceIsNamedWithItsIdentifier) {
    auto object = badObject({});
    const std::string message = failureOf([&] { QueryInterface<IDriverHeadLoader>(*object); });
    EXPECT_NE(message.find("\"BadDriver\" does not implement IDriverHeadLoader {7777B492-B8F0-4225-8E98-C34858E4D7ED}"),
              std::string::npos)
        << message;
}

} // namespace
} // namespace vss::com::test
