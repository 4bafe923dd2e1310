// Every operation called by its index in the function table, with the argument shapes written out here rather
// than taken from the interface declarations: the call must reach the operation of that name in the instrument.

#include "tests/com/ComTestSupport.h"

#include <functional>
#include <map>
#include <set>
#include <tuple>

namespace vss::com::test {
namespace {

// Storage for one out argument; VARIANTs and BSTRs are freed after the call.
template <class T>
struct Out {
    T value{};
    T* ptr() { return &value; }
};
template <>
struct Out<VARIANT> {
    OwnedVariant value;
    VARIANT* ptr() { return value.out(); }
};
template <>
struct Out<BSTR> {
    Bstr value;
    BSTR* ptr() { return value.out(); }
};

using SlotCall = std::function<HRESULT(void* itf, void* fn)>;

// Calls fn(itf, in..., &out...) as a plain function whose first argument is the interface pointer.
template <class... O, class... I>
SlotCall args(I... in) {
    return [=](void* itf, void* fn) {
        std::tuple<Out<O>...> outs;
        return std::apply(
            [&](auto&... o) {
                using Fn = HRESULT(STDMETHODCALLTYPE*)(void*, I..., O*...);
                return reinterpret_cast<Fn>(fn)(itf, in..., o.ptr()...);
            },
            outs);
    };
}

// In-arguments that are lists: a VARIANT of doubles owned for the call's duration.
SlotCall withDoubles(std::function<HRESULT(void*, void*, VARIANT)> f) {
    return [f](void* itf, void* fn) {
        OwnedVariant list(listVariant(std::vector<double>{1.0, 2.0}));
        return f(itf, fn, list.get());
    };
}

struct Slot {
    const char* iface;
    Guid iid;
    int slot;
    std::string name;
    SlotCall call;
};

using VB = VARIANT_BOOL;
constexpr short s0 = 0;
constexpr long l0 = 0;
constexpr VB vbTrue = VARIANT_TRUE;

std::vector<Slot> slotTable() {
    const Guid d = IDriver::kIid, sv = IDriverService::kIid;
    std::vector<Slot> t = {
        {"IDriver", d, 3, "Open", args(static_cast<BSTR>(nullptr))},
        {"IDriver", d, 4, "Close", args()},
        {"IDriver", d, 7, "Initialize", args()},
        {"IDriver", d, 8, "Reset", args()},
        {"IDriver", d, 9, "GetDiskSizeLimit", args<double, double>()},
        {"IDriver", d, 10, "GetSpeedRange", args<long, long>()},
        {"IDriver", d, 11, "GetLoadMethodList", args<VARIANT, VARIANT>()},
        {"IDriver", d, 12, "Load", args()},
        {"IDriver", d, 13, "Unload", args()},
        {"IDriver", d, 15, "GetPosition", args<long, double, double>()},
        {"IDriver", d, 18, "GetDataArea", args<double, long, double>()},
        {"IDriver", d, 19, "SetDataArea", args(0.012, 50000L, 5.6e-7)},
        {"IDriver", d, 20, "GetSpindleSpeed", args<long>()},
        {"IDriver", d, 21, "SetSpindleSpeed", args(7200L)},
        {"IDriver", d, 22, "GetHomeState", args<long>()},
        {"IDriver", d, 23, "SetHomeState", args(2L)},
        {"IDriver", d, 24, "GetLoadMethod", args<short>()},
        {"IDriver", d, 25, "SetLoadMethod", args(s0)},
        {"IDriver", d, 26, "GetState", args<long>()},
        {"IDriver", d, 27, "GetFinePositionLimit", args<double>()},
        {"IDriver", d, 28, "GetHardwareRevision", args<BSTR>()},
        {"IDriver", d, 29, "GetFirmwareRevision", args<BSTR>()},
        {"IDriver", d, 30, "GetDriverRevision", args<BSTR>()},
        {"IDriver", d, 31, "GetSerialNumber", args<BSTR>()},
        {"IDriverPiezo", IDriverPiezo::kIid, 5, "GetPiezoReading", args<double>()},
        {"IDriverStage", IDriverStage::kIid, 3, "MoveTo", args<double>()},
        {"IDriverLoadPosition", IDriverLoadPosition::kIid, 3, "GetLoadPosition", args<PositionRecord, long>(short{1})},
        {"IDriverLoadPosition", IDriverLoadPosition::kIid, 4, "SetLoadPosition",
         [](void* itf, void* fn) {
             PositionRecord p{0.02, kNoSkew};
             using Fn = HRESULT(STDMETHODCALLTYPE*)(void*, short, PositionRecord*, long);
             return reinterpret_cast<Fn>(fn)(itf, 1, &p, -1);
         }},
        {"IDriverHeadLoader", IDriverHeadLoader::kIid, 3, "GetHeadLoader", args<VB>()},
        {"IDriverHeadLoader", IDriverHeadLoader::kIid, 4, "SetHeadLoader", args(vbTrue)},
        {"IDriverSpindle", IDriverSpindle::kIid, 5, "GetMotor", args<VB>()},
        {"IDriverSpindle", IDriverSpindle::kIid, 6, "SetMotor", args(vbTrue)},
        {"IDriverSpindle", IDriverSpindle::kIid, 7, "GetRotation", args<long>()},
        {"IDriverClamp", IDriverClamp::kIid, 3, "GetClamp", args<VB>()},
        {"IDriverClamp", IDriverClamp::kIid, 4, "SetClamp", args(vbTrue)},
        {"IDriverHeadFace", IDriverHeadFace::kIid, 3, "GetFace", args<long>()},
        {"IDriverIndex", IDriverIndex::kIid, 3, "GetIndexPolarity", args<VB>()},
        {"IDriverInterlock", IDriverInterlock::kIid, 3, "GetInterlock", args<VB>()},
        {"IDriverDiskSize", IDriverDiskSize::kIid, 3, "GetDiskSizeRestriction", args<VB>()},
        {"IDriverDiskSize", IDriverDiskSize::kIid, 4, "SetDiskSizeRestriction", args(vbTrue)},
        {"IDriverService", sv, 4, "BeginService", args()},
        {"IDriverService", sv, 5, "ResetService", args()},
        {"IDriverService", sv, 8, "SetHardwareRevision", args(static_cast<BSTR>(nullptr))},
        {"IDriverService", sv, 9, "GetHardwareRevision", args<BSTR>()},
        {"IDriverService", sv, 10, "GetDriverRevision", args<BSTR>()},
        {"IDriverService", sv, 11, "GetFirmwareRevision", args<BSTR>()},
        {"IDriverService", sv, 12, "SetSerialNumber", args(static_cast<BSTR>(nullptr))},
        {"IDriverService", sv, 13, "GetSerialNumber", args<BSTR>()},
        {"IDriverService", sv, 14, "SetSettingUnknown", args(vbTrue)},
        {"IDriverService", sv, 15, "GetSettingUnknown", args<VB>()},
        {"IDriverService", sv, 16, "GetSpinstandTypeList", args<VARIANT, VARIANT>()},
        {"IDriverService", sv, 17, "SetSpinstandType", args(s0)},
        {"IDriverService", sv, 18, "GetSpinstandType", args<short>()},
        {"IDriverService", sv, 19, "SetHeadFace", args(1L)},
        {"IDriverService", sv, 20, "GetHeadFace", args<long>()},
        {"IDriverService", sv, 21, "SetDiskSizeRange", args(0.02, 0.1)},
        {"IDriverService", sv, 22, "GetDiskSizeRange", args<double, double>()},
        {"IDriverService", sv, 23, "SetStopperPosition", args(s0, 10.0)},
        {"IDriverService", sv, 24, "GetStopperPosition", args<double>(s0)},
        {"IDriverService", sv, 25, "GetMeasurementPosition", args<double, double>(s0)},
        {"IDriverService", sv, 26, "SetStageGeometry", args(s0, 0.05)},
        {"IDriverService", sv, 27, "GetStageGeometry", args<double>(s0)},
        {"IDriverService", sv, 28, "SetSpeedRange", args(4000L, 15000L)},
        {"IDriverService", sv, 29, "GetSpeedRange", args<long, long>()},
        {"IDriverService", sv, 30, "SetSpindleState", args(l0)},
        {"IDriverService", sv, 31, "GetSpindleState", args<long>()},
        {"IDriverService", sv, 32, "SetSpindleRpm", args(7200L)},
        {"IDriverService", sv, 33, "GetSpindleRpm", args<long>()},
        {"IDriverService", sv, 34, "MoveToPosition", args(s0)},
        {"IDriverService", sv, 36, "GetStagePositionFlags", args<VB, VB, VB>()},
        {"IDriverService", sv, 37, "SetHeadLoaderState", args(vbTrue)},
        {"IDriverService", sv, 38, "GetHeadLoaderState", args<VB>()},
        {"IDriverService", sv, 39, "SetLockdown", args(vbTrue)},
        {"IDriverService", sv, 40, "GetLockdown", args<VB>()},
        {"IDriverService", sv, 41, "GetLockdownSensor", args<VB>()},
        {"IDriverService", sv, 42, "SetStopper", args(vbTrue)},
        {"IDriverService", sv, 43, "GetStopper", args<VB>()},
        {"IDriverService", sv, 44, "GetStopperSensors", args<VB, VB>()},
        {"IDriverService", sv, 45, "SetStageMotor", args(1L)},
        {"IDriverService", sv, 46, "GetStageMotor", args<long>()},
        {"IDriverService", sv, 47, "Jog", args(vbTrue, 10L)},
        {"IDriverService", sv, 48, "GetSpindleSet", args<VB>()},
        {"IDriverService", sv, 49, "GetVacuum", args<VB>()},
        {"IDriverService", sv, 50, "GetOuterCover", args<VB>()},
        {"IDriverService", sv, 51, "GetEmergency", args<VB>()},
        {"IDriverService", sv, 52, "GetStageRegion", args<VARIANT>()},
        {"IDriverService", sv, 53, "SetPiezoSerial", args(static_cast<BSTR>(nullptr))},
        {"IDriverService", sv, 54, "GetPiezoSerial", args<BSTR>()},
        {"IDriverService", sv, 55, "SetPiezoLoop", args(vbTrue)},
        {"IDriverService", sv, 56, "GetPiezoLoop", args<VB>()},
        {"IDriverService", sv, 57, "GetPiezoAdjustList", args<VARIANT>()},
        {"IDriverService", sv, 58, "SetPiezoAdjust", args(s0, 100L)},
        {"IDriverService", sv, 59, "GetPiezoAdjust", args<long>(s0)},
        {"IDriverService", sv, 60, "GetPiezoCalCoefNames", args<VARIANT>()},
        {"IDriverService", sv, 61, "SetPiezoCalCoef", withDoubles([](void* itf, void* fn, VARIANT coef) {
             using Fn = HRESULT(STDMETHODCALLTYPE*)(void*, double, double, double, double, VARIANT);
             return reinterpret_cast<Fn>(fn)(itf, 0.0, 100.0, 0.0, 1e-6, coef);
         })},
        {"IDriverService", sv, 62, "GetPiezoCalCoef", args<double, double, double, double, VARIANT>()},
        {"IDriverService", sv, 63, "GetPiezoCalData", args<VARIANT, VARIANT>()},
        {"IDriverService", sv, 64, "SetPiezoControlData", withDoubles([](void* itf, void* fn, VARIANT rows) {
             using Fn = HRESULT(STDMETHODCALLTYPE*)(void*, VARIANT, VARIANT, VARIANT, VARIANT, VARIANT);
             return reinterpret_cast<Fn>(fn)(itf, rows, rows, rows, rows, rows);
         })},
        {"IDriverService", sv, 65, "GetPiezoControlData", args<VARIANT, VARIANT, VARIANT, VARIANT, VARIANT>()},
        {"IDriverService", sv, 66, "GetPiezoBalanced", args<VB>()},
        {"IDriverService", sv, 67, "GetStagePropertyList", args<VARIANT, VARIANT, VARIANT>()},
        {"IDriverService", sv, 68, "GetStagePropertyChoices", args<VARIANT, VARIANT>(s0)},
        {"IDriverService", sv, 69, "SetStageProperty", args(s0, VARIANT{})},
        {"IDriverService", sv, 70, "GetStageProperty", args<VARIANT>(s0)},
        {"IDriverService", sv, 71, "GetBacklashCompensationList", args<VARIANT>()},
        {"IDriverService", sv, 72, "GetBacklashCompensation", args<long>(s0)},
        {"IDriverService", sv, 73, "SetBacklashCompensation", args(s0, 5L)},
        {"IDriverService", sv, 74, "GetBacklashDate", args<BSTR>()},
        {"IDriverService", sv, 75, "GetSpindlePropertyList", args<VARIANT, VARIANT, VARIANT>()},
        {"IDriverService", sv, 76, "GetSpindlePropertyChoices", args<VARIANT, VARIANT>(s0)},
        {"IDriverService", sv, 77, "SetSpindleProperty", args(s0, VARIANT{})},
        {"IDriverService", sv, 78, "GetSpindleProperty", args<VARIANT>(s0)},
        {"IDriverService", sv, 79, "GetSpindleDriverItems", args<VARIANT, VARIANT, VARIANT>()},
        {"IDriverService", sv, 80, "GetSpindleDriverChoices", args<VARIANT, VARIANT>(s0)},
        {"IDriverService", sv, 81, "GetSpindleDriver", args<VARIANT>(s0)},
    };
    const char* groups[] = {"VersionData",      "SpinstandConfiguration", "CustomerConfiguration", "StageProperty",
                            "SpindleProperty", "PiezoData",              "BacklashCompensation"};
    int slot = 87;
    for (const char* g : groups) {
        t.push_back({"IDriverService", sv, slot++, std::string("Save") + g, args()});
        t.push_back({"IDriverService", sv, slot++, std::string("Recall") + g, args()});
    }
    return t;
}

void* interfaceOf(IUnknown* object, const Guid& iid) {
    void* p = nullptr;
    EXPECT_EQ(object->QueryInterface(toIid(iid), &p), S_OK) << iid.toString();
    return p;
}

void* slotOf(void* itf, int slot) {
    return (*static_cast<void***>(itf))[slot];
}

using Slots = ComTest;

TEST_F(Slots, TheTableHereCoversExactlyTheContractsOperations) {
    std::set<std::tuple<std::string, int, std::string>> here, contract;
    for (const Slot& s : slotTable())
        here.emplace(s.iface, s.slot, s.name);
    auto add = [&](std::string_view iface, const auto& operations) {
        for (const OperationSlot& o : operations)
            contract.emplace(std::string(iface), o.slot, std::string(o.name));
    };
    add(IDriver::kName, IDriver::kOperations);
    add(IDriverPiezo::kName, IDriverPiezo::kOperations);
    add(IDriverStage::kName, IDriverStage::kOperations);
    add(IDriverLoadPosition::kName, IDriverLoadPosition::kOperations);
    add(IDriverHeadLoader::kName, IDriverHeadLoader::kOperations);
    add(IDriverSpindle::kName, IDriverSpindle::kOperations);
    add(IDriverClamp::kName, IDriverClamp::kOperations);
    add(IDriverHeadFace::kName, IDriverHeadFace::kOperations);
    add(IDriverIndex::kName, IDriverIndex::kOperations);
    add(IDriverInterlock::kName, IDriverInterlock::kOperations);
    add(IDriverDiskSize::kName, IDriverDiskSize::kOperations);
    add(IDriverService::kName, IDriverService::kOperations);
    EXPECT_EQ(here, contract);
}

TEST_F(Slots, EverySlotReachesTheOperationOfItsName) {
    ServerInstrument server;
    for (const Slot& s : slotTable()) {
        void* itf = interfaceOf(server.object(), s.iid);
        ASSERT_NE(itf, nullptr);
        server.clearTrace();
        s.call(itf, slotOf(itf, s.slot));
        const auto lines = server.trace();
        const std::string expected = std::string(s.iface) + "." + s.name + "(";
        ASSERT_EQ(lines.size(), 1u) << "slot " << s.slot << " of " << s.iface << " (" << s.name << ")";
        EXPECT_EQ(lines[0].rfind(expected, 0), 0u) << "slot " << s.slot << " of " << s.iface << " reached "
                                                    << lines[0] << ", not " << s.name;
        static_cast<IUnknown*>(itf)->Release();
    }
}

TEST_F(Slots, PlaceholderSlotsAnswerNotImplementedAndReachNothing) {
    ServerInstrument server;
    std::map<std::string, std::pair<Guid, std::set<int>>> used;
    for (const Slot& s : slotTable()) {
        used[s.iface].first = s.iid;
        used[s.iface].second.insert(s.slot);
    }
    int placeholders = 0;
    for (const auto& [iface, entry] : used) {
        void* itf = interfaceOf(server.object(), entry.first);
        ASSERT_NE(itf, nullptr);
        server.clearTrace();
        for (int slot = 3; slot < *entry.second.rbegin(); ++slot) {
            if (entry.second.count(slot) != 0)
                continue;
            ++placeholders;
            EXPECT_EQ(args()(itf, slotOf(itf, slot)), E_NOTIMPL) << iface << " slot " << slot;
        }
        EXPECT_TRUE(server.trace().empty()) << iface;
        static_cast<IUnknown*>(itf)->Release();
    }
    EXPECT_EQ(placeholders, 5 + 2 + 2 + 9); // IDriver, IDriverPiezo, IDriverSpindle, IDriverService
}

} // namespace
} // namespace vss::com::test
