#include "simulator/InstrumentLists.h"
#include "simulator/SimInterfaces.h"

#include <cmath>
#include <tuple>

namespace vss::sim {

namespace {

// What every face of the instrument holds: the instrument.
class Face {
public:
    explicit Face(InstrumentPtr instrument) : m_(std::move(instrument)) {}

protected:
    Instrument& m() { return *m_; }

private:
    InstrumentPtr m_;
};

class SimDriver final : public IDriver, Face {
public:
    using Face::Face;
    void Open(const std::string& resource) override { m().open(resource); }
    void Close() override { m().close(); }
    void Initialize() override { m().initialize(); }
    void Reset() override { m().reset(); }
    DoubleRange GetDiskSizeLimit() override { return m().working.spinstand.diskSize; }
    SpeedRange GetSpeedRange() override { return m().working.spindle.speedRange; }
    NamedCodes GetLoadMethodList() override { return loadMethods(); }
    void Load() override { m().load(); }
    void Unload() override { m().unload(); }
    HeadPosition GetPosition() override { return m().position(); }
    DataArea GetDataArea() override { return m().measurement.dataArea; }
    void SetDataArea(double innerRadius, std::int32_t maxTrack, double pitch) override {
        const DataArea area{innerRadius, maxTrack, pitch};
        checkDataArea(area);
        m().measurement.dataArea = area;
    }
    std::int32_t GetSpindleSpeed() override { return m().measurement.spindleSpeed; }
    void SetSpindleSpeed(std::int32_t rpm) override { m().setSpindleSpeed(rpm); }
    std::int32_t GetHomeState() override { return m().measurement.homeState; }
    void SetHomeState(std::int32_t homeState) override { m().setHomeState(homeState); }
    std::int16_t GetLoadMethod() override { return m().measurement.loadMethod; }
    void SetLoadMethod(std::int16_t method) override {
        checkCode("Load method", loadMethods(), method);
        m().measurement.loadMethod = method;
    }
    std::int32_t GetState() override { return m().stateCode(); }
    // The piezo's reach either side of its mid-stroke.
    double GetFinePositionLimit() override {
        const PiezoCalCoef& c = m().working.piezo.calCoef;
        return std::round((c.xmax - c.xmin) / 2.0 * 1e10) / 1e10;
    }
    std::string GetHardwareRevision() override { return m().working.version.hardwareRevision; }
    std::string GetFirmwareRevision() override { return kFirmwareRevision; }
    std::string GetDriverRevision() override { return kDriverRevision; }
    std::string GetSerialNumber() override { return m().working.version.serialNumber; }
};

class SimPiezo final : public IDriverPiezo, Face {
public:
    using Face::Face;
    double GetPiezoReading() override { return m().piezoResolution(); }
};

class SimStage final : public IDriverStage, Face {
public:
    using Face::Face;
    void MoveTo(double& radius) override { m().moveTo(radius); }
};

class SimLoadPosition final : public IDriverLoadPosition, Face {
public:
    using Face::Face;
    LoadPosition GetLoadPosition(std::int16_t which) override { return m().loadPosition(which); }
    void SetLoadPosition(std::int16_t which, const PositionRecord& position, std::int32_t rpm) override {
        m().setLoadPosition(which, position, rpm);
    }
};

class SimHeadLoader final : public IDriverHeadLoader, Face {
public:
    using Face::Face;
    bool GetHeadLoader() override { return m().hw.headsDown; }
    void SetHeadLoader(bool down) override { m().setHeadsDown(down); }
};

class SimSpindle final : public IDriverSpindle, Face {
public:
    using Face::Face;
    bool GetMotor() override { return m().hw.motor; }
    void SetMotor(bool on) override { m().setMotor(on); }
    std::int32_t GetRotation() override { return static_cast<std::int32_t>(m().working.spindle.values[0].toDouble()); }
};

class SimClamp final : public IDriverClamp, Face {
public:
    using Face::Face;
    bool GetClamp() override { return m().hw.clamp; }
    void SetClamp(bool on) override { m().setClamp(on); }
};

class SimHeadFace final : public IDriverHeadFace, Face {
public:
    using Face::Face;
    std::int32_t GetFace() override { return m().working.spinstand.headFace; }
};

// The index pulse of the spindle driver rises at the index mark.
class SimIndex final : public IDriverIndex, Face {
public:
    using Face::Face;
    bool GetIndexPolarity() override { return true; }
};

class SimInterlock final : public IDriverInterlock, Face {
public:
    using Face::Face;
    bool GetInterlock() override { return m().input(Input::Interlock); }
};

class SimDiskSize final : public IDriverDiskSize, Face {
public:
    using Face::Face;
    bool GetDiskSizeRestriction() override { return m().measurement.diskSizeRestriction; }
    void SetDiskSizeRestriction(bool on) override { m().setDiskSizeRestriction(on); }
};

template <class I, class Impl>
struct Entry {
    using Interface = I;
    using Implementation = Impl;
};

using Entries = std::tuple<Entry<IDriver, SimDriver>, Entry<IDriverPiezo, SimPiezo>, Entry<IDriverStage, SimStage>,
                           Entry<IDriverLoadPosition, SimLoadPosition>, Entry<IDriverHeadLoader, SimHeadLoader>,
                           Entry<IDriverSpindle, SimSpindle>, Entry<IDriverClamp, SimClamp>,
                           Entry<IDriverHeadFace, SimHeadFace>, Entry<IDriverIndex, SimIndex>,
                           Entry<IDriverInterlock, SimInterlock>, Entry<IDriverDiskSize, SimDiskSize>>;

template <std::size_t N = 0>
std::shared_ptr<Interface> make(const Guid& iid, const InstrumentPtr& instrument) {
    if constexpr (N == std::tuple_size_v<Entries>) {
        return iid == IDriverService::kIid ? std::static_pointer_cast<Interface>(makeService(instrument)) : nullptr;
    } else {
        using E = std::tuple_element_t<N, Entries>;
        if (E::Interface::kIid == iid)
            return std::static_pointer_cast<typename E::Interface>(
                std::make_shared<typename E::Implementation>(instrument));
        return make<N + 1>(iid, instrument);
    }
}

template <class I>
bool inTable(std::string_view name) {
    const std::string_view prefix = I::kName;
    if (name.size() <= prefix.size() + 1 || !name.starts_with(prefix) || name[prefix.size()] != '.')
        return false;
    for (const OperationSlot& op : I::kOperations)
        if (op.name == name.substr(prefix.size() + 1))
            return true;
    return false;
}

} // namespace

std::shared_ptr<Interface> makeInterface(const Guid& iid, const InstrumentPtr& instrument) {
    return make(iid, instrument);
}

bool isOperationName(std::string_view name) {
    constexpr std::string_view query = "CoDriver.QueryInterface";
    if (name.starts_with(query) && name.size() > query.size() + 2 && name[query.size()] == '(' && name.back() == ')') {
        const std::string_view interfaceName = name.substr(query.size() + 1, name.size() - query.size() - 2);
        return std::find(kInterfaceNames.begin(), kInterfaceNames.end(), interfaceName) != kInterfaceNames.end();
    }
    return name == query || inTable<IDriver>(name) || inTable<IDriverPiezo>(name) ||
           inTable<IDriverStage>(name) || inTable<IDriverLoadPosition>(name) || inTable<IDriverHeadLoader>(name) ||
           inTable<IDriverSpindle>(name) || inTable<IDriverClamp>(name) || inTable<IDriverHeadFace>(name) ||
           inTable<IDriverIndex>(name) || inTable<IDriverInterlock>(name) || inTable<IDriverDiskSize>(name) ||
           inTable<IDriverService>(name);
}

} // namespace vss::sim
