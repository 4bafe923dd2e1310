#pragma once

// The instrument driver contract: twelve interfaces of one driver object. Operation names, argument order and
// types follow the driver's binary contract; `kOperations` lists each interface's operations with their slots
// in the function table, in slot order (slots 0-2 are IUnknown's). The COM path's raw interfaces put every
// operation at that slot, and the slot tests hold them to this list; the simulator takes from it the operation
// names that injected failures and scenarios use.
//
// Units at this boundary: lengths in metres, skew in degrees, speeds in rpm (32-bit). Every failing operation
// throws DriverError with the driver's description.

#include "driver/DriverError.h"
#include "driver/Guid.h"
#include "driver/Types.h"
#include "driver/Variant.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace vss {

struct OperationSlot {
    int slot;
    std::string_view name;
};

// The common base of the twelve interfaces (the IUnknown of the contract).
class Interface {
public:
    virtual ~Interface() = default;

protected:
    Interface() = default;
    Interface(const Interface&) = default;
    Interface& operator=(const Interface&) = default;
};

class IDriver : public Interface {
public:
    static constexpr std::string_view kName = "IDriver";
    static constexpr Guid kIid = Guid::parse("{AC6BD6DC-D3FE-46F8-A82E-ADA730955D46}");
    static constexpr OperationSlot kOperations[] = {
        {3, "Open"},           {4, "Close"},          {7, "Initialize"},         {8, "Reset"},
        {9, "GetDiskSizeLimit"}, {10, "GetSpeedRange"}, {11, "GetLoadMethodList"}, {12, "Load"},
        {13, "Unload"},        {15, "GetPosition"},   {18, "GetDataArea"},       {19, "SetDataArea"},
        {20, "GetSpindleSpeed"}, {21, "SetSpindleSpeed"}, {22, "GetHomeState"},   {23, "SetHomeState"},
        {24, "GetLoadMethod"}, {25, "SetLoadMethod"}, {26, "GetState"},          {27, "GetFinePositionLimit"},
        {28, "GetHardwareRevision"}, {29, "GetFirmwareRevision"}, {30, "GetDriverRevision"},
        {31, "GetSerialNumber"},
    };

    virtual void Open(const std::string& resource) = 0;
    virtual void Close() = 0;
    virtual void Initialize() = 0;
    virtual void Reset() = 0;
    virtual DoubleRange GetDiskSizeLimit() = 0;
    virtual SpeedRange GetSpeedRange() = 0;
    virtual NamedCodes GetLoadMethodList() = 0;
    virtual void Load() = 0;
    virtual void Unload() = 0;
    virtual HeadPosition GetPosition() = 0;
    virtual DataArea GetDataArea() = 0;
    virtual void SetDataArea(double innerRadius, std::int32_t maxTrack, double pitch) = 0;
    virtual std::int32_t GetSpindleSpeed() = 0;
    virtual void SetSpindleSpeed(std::int32_t rpm) = 0;
    virtual std::int32_t GetHomeState() = 0; // homestate::Stop, Standby or Run
    virtual void SetHomeState(std::int32_t homeState) = 0;
    virtual std::int16_t GetLoadMethod() = 0;
    virtual void SetLoadMethod(std::int16_t method) = 0;
    virtual std::int32_t GetState() = 0; // a state:: code
    virtual double GetFinePositionLimit() = 0;
    virtual std::string GetHardwareRevision() = 0;
    virtual std::string GetFirmwareRevision() = 0;
    virtual std::string GetDriverRevision() = 0;
    virtual std::string GetSerialNumber() = 0;
};

class IDriverPiezo : public Interface {
public:
    static constexpr std::string_view kName = "IDriverPiezo";
    static constexpr Guid kIid = Guid::parse("{767B02A0-779C-49DB-A4B5-C559C7FF50CE}");
    static constexpr OperationSlot kOperations[] = {{5, "GetPiezoReading"}};

    // The piezo read-out of the operation check: the resolution coefficient.
    virtual double GetPiezoReading() = 0;
};

class IDriverStage : public Interface {
public:
    static constexpr std::string_view kName = "IDriverStage";
    static constexpr Guid kIid = Guid::parse("{463FDC52-FCE8-4245-AC5F-6A6B967527C0}");
    static constexpr OperationSlot kOperations[] = {{3, "MoveTo"}};

    // The radius is passed by reference; the driver may leave the radius it reached in it.
    virtual void MoveTo(double& radius) = 0;
};

class IDriverLoadPosition : public Interface {
public:
    static constexpr std::string_view kName = "IDriverLoadPosition";
    static constexpr Guid kIid = Guid::parse("{CECB1F49-A4A2-4EEF-BD39-8BC4327131B8}");
    static constexpr OperationSlot kOperations[] = {{3, "GetLoadPosition"}, {4, "SetLoadPosition"}};

    // which: loadposition::Load or loadposition::Unload. A skew of kNoSkew means no skew; rpm -1 keeps the speed.
    virtual LoadPosition GetLoadPosition(std::int16_t which) = 0;
    virtual void SetLoadPosition(std::int16_t which, const PositionRecord& position, std::int32_t rpm) = 0;
};

class IDriverHeadLoader : public Interface {
public:
    static constexpr std::string_view kName = "IDriverHeadLoader";
    static constexpr Guid kIid = Guid::parse("{7777B492-B8F0-4225-8E98-C34858E4D7ED}");
    static constexpr OperationSlot kOperations[] = {{3, "GetHeadLoader"}, {4, "SetHeadLoader"}};

    virtual bool GetHeadLoader() = 0; // true = loaded (down)
    virtual void SetHeadLoader(bool down) = 0;
};

class IDriverSpindle : public Interface {
public:
    static constexpr std::string_view kName = "IDriverSpindle";
    static constexpr Guid kIid = Guid::parse("{853DA840-0FF3-4283-8ACB-06E3E0B6A37A}");
    static constexpr OperationSlot kOperations[] = {{5, "GetMotor"}, {6, "SetMotor"}, {7, "GetRotation"}};

    virtual bool GetMotor() = 0;
    virtual void SetMotor(bool on) = 0;
    virtual std::int32_t GetRotation() = 0; // 1 = counter-clockwise
};

class IDriverClamp : public Interface {
public:
    static constexpr std::string_view kName = "IDriverClamp";
    static constexpr Guid kIid = Guid::parse("{BE209F41-5ED8-4454-9D76-08290E70B689}");
    static constexpr OperationSlot kOperations[] = {{3, "GetClamp"}, {4, "SetClamp"}};

    virtual bool GetClamp() = 0;
    virtual void SetClamp(bool on) = 0;
};

class IDriverHeadFace : public Interface {
public:
    static constexpr std::string_view kName = "IDriverHeadFace";
    static constexpr Guid kIid = Guid::parse("{C09F69B8-B1AF-42B7-BD80-ED9B5AA323EA}");
    static constexpr OperationSlot kOperations[] = {{3, "GetFace"}};

    virtual std::int32_t GetFace() = 0; // 1 = down
};

class IDriverIndex : public Interface {
public:
    static constexpr std::string_view kName = "IDriverIndex";
    static constexpr Guid kIid = Guid::parse("{5F7E0EF6-867A-48C0-9444-F0CAA63919DD}");
    static constexpr OperationSlot kOperations[] = {{3, "GetIndexPolarity"}};

    virtual bool GetIndexPolarity() = 0; // true = rising
};

class IDriverInterlock : public Interface {
public:
    static constexpr std::string_view kName = "IDriverInterlock";
    static constexpr Guid kIid = Guid::parse("{1C54F307-E7CD-43D6-BB7B-B2C2992D7C4E}");
    static constexpr OperationSlot kOperations[] = {{3, "GetInterlock"}};

    virtual bool GetInterlock() = 0; // true = interlock detected
};

class IDriverDiskSize : public Interface {
public:
    static constexpr std::string_view kName = "IDriverDiskSize";
    static constexpr Guid kIid = Guid::parse("{C4967E7C-427A-4A09-A1CB-67223BE8619A}");
    static constexpr OperationSlot kOperations[] = {{3, "GetDiskSizeRestriction"}, {4, "SetDiskSizeRestriction"}};

    virtual bool GetDiskSizeRestriction() = 0;
    virtual void SetDiskSizeRestriction(bool on) = 0;
};

class IDriverService : public Interface {
public:
    static constexpr std::string_view kName = "IDriverService";
    static constexpr Guid kIid = Guid::parse("{F777B082-3EBB-4691-8A1D-A3800998E4A3}");
    static constexpr OperationSlot kOperations[] = {
        {4, "BeginService"},
        {5, "ResetService"},
        {8, "SetHardwareRevision"},
        {9, "GetHardwareRevision"},
        {10, "GetDriverRevision"},
        {11, "GetFirmwareRevision"},
        {12, "SetSerialNumber"},
        {13, "GetSerialNumber"},
        {14, "SetSettingUnknown"},
        {15, "GetSettingUnknown"},
        {16, "GetSpinstandTypeList"},
        {17, "SetSpinstandType"},
        {18, "GetSpinstandType"},
        {19, "SetHeadFace"},
        {20, "GetHeadFace"},
        {21, "SetDiskSizeRange"},
        {22, "GetDiskSizeRange"},
        {23, "SetStopperPosition"},
        {24, "GetStopperPosition"},
        {25, "GetMeasurementPosition"},
        {26, "SetStageGeometry"},
        {27, "GetStageGeometry"},
        {28, "SetSpeedRange"},
        {29, "GetSpeedRange"},
        {30, "SetSpindleState"},
        {31, "GetSpindleState"},
        {32, "SetSpindleRpm"},
        {33, "GetSpindleRpm"},
        {34, "MoveToPosition"},
        {36, "GetStagePositionFlags"},
        {37, "SetHeadLoaderState"},
        {38, "GetHeadLoaderState"},
        {39, "SetLockdown"},
        {40, "GetLockdown"},
        {41, "GetLockdownSensor"},
        {42, "SetStopper"},
        {43, "GetStopper"},
        {44, "GetStopperSensors"},
        {45, "SetStageMotor"},
        {46, "GetStageMotor"},
        {47, "Jog"},
        {48, "GetSpindleSet"},
        {49, "GetVacuum"},
        {50, "GetOuterCover"},
        {51, "GetEmergency"},
        {52, "GetStageRegion"},
        {53, "SetPiezoSerial"},
        {54, "GetPiezoSerial"},
        {55, "SetPiezoLoop"},
        {56, "GetPiezoLoop"},
        {57, "GetPiezoAdjustList"},
        {58, "SetPiezoAdjust"},
        {59, "GetPiezoAdjust"},
        {60, "GetPiezoCalCoefNames"},
        {61, "SetPiezoCalCoef"},
        {62, "GetPiezoCalCoef"},
        {63, "GetPiezoCalData"},
        {64, "SetPiezoControlData"},
        {65, "GetPiezoControlData"},
        {66, "GetPiezoBalanced"},
        {67, "GetStagePropertyList"},
        {68, "GetStagePropertyChoices"},
        {69, "SetStageProperty"},
        {70, "GetStageProperty"},
        {71, "GetBacklashCompensationList"},
        {72, "GetBacklashCompensation"},
        {73, "SetBacklashCompensation"},
        {74, "GetBacklashDate"},
        {75, "GetSpindlePropertyList"},
        {76, "GetSpindlePropertyChoices"},
        {77, "SetSpindleProperty"},
        {78, "GetSpindleProperty"},
        {79, "GetSpindleDriverItems"},
        {80, "GetSpindleDriverChoices"},
        {81, "GetSpindleDriver"},
        {87, "SaveVersionData"},
        {88, "RecallVersionData"},
        {89, "SaveSpinstandConfiguration"},
        {90, "RecallSpinstandConfiguration"},
        {91, "SaveCustomerConfiguration"},
        {92, "RecallCustomerConfiguration"},
        {93, "SaveStageProperty"},
        {94, "RecallStageProperty"},
        {95, "SaveSpindleProperty"},
        {96, "RecallSpindleProperty"},
        {97, "SavePiezoData"},
        {98, "RecallPiezoData"},
        {99, "SaveBacklashCompensation"},
        {100, "RecallBacklashCompensation"},
    };

    // Session and identity.
    virtual void BeginService() = 0;
    virtual void ResetService() = 0;
    virtual void SetHardwareRevision(const std::string& revision) = 0;
    virtual std::string GetHardwareRevision() = 0;
    virtual std::string GetDriverRevision() = 0;
    virtual std::string GetFirmwareRevision() = 0;
    virtual void SetSerialNumber(const std::string& serial) = 0;
    virtual std::string GetSerialNumber() = 0;

    // Spinstand configuration.
    virtual void SetSettingUnknown(bool unknown) = 0; // true = Service/Unknown Setting, false = Normal
    virtual bool GetSettingUnknown() = 0;
    virtual NamedCodes GetSpinstandTypeList() = 0;
    virtual void SetSpinstandType(std::int16_t type) = 0;
    virtual std::int16_t GetSpinstandType() = 0;
    virtual void SetHeadFace(std::int32_t face) = 0; // 1 = down face, 0 = up face
    virtual std::int32_t GetHeadFace() = 0;
    virtual void SetDiskSizeRange(double min, double max) = 0;
    virtual DoubleRange GetDiskSizeRange() = 0;

    // Customer configuration: stoppers (stopper::Inner / Outer), measurement positions, stage geometry.
    virtual void SetStopperPosition(std::int16_t index, double position) = 0;
    virtual double GetStopperPosition(std::int16_t index) = 0;
    virtual PositionRecord GetMeasurementPosition(std::int16_t index) = 0; // 0 = inner (ID), 1 = outer (OD)
    virtual void SetStageGeometry(std::int16_t index, double value) = 0;   // geometry:: index
    virtual double GetStageGeometry(std::int16_t index) = 0;
    virtual void SetSpeedRange(std::int32_t min, std::int32_t max) = 0;
    virtual SpeedRange GetSpeedRange() = 0;

    // Direct control.
    virtual void SetSpindleState(std::int32_t state) = 0; // a spindlestate:: code
    virtual std::int32_t GetSpindleState() = 0;
    virtual void SetSpindleRpm(std::int32_t rpm) = 0;
    virtual std::int32_t GetSpindleRpm() = 0;
    virtual void MoveToPosition(std::int16_t position) = 0; // a stageposition:: code
    virtual StagePositionFlags GetStagePositionFlags() = 0;
    virtual void SetHeadLoaderState(bool up) = 0; // true = Up (Unload)
    virtual bool GetHeadLoaderState() = 0;
    virtual void SetLockdown(bool lockdown) = 0;
    virtual bool GetLockdown() = 0;
    virtual bool GetLockdownSensor() = 0;
    virtual void SetStopper(bool up) = 0;
    virtual bool GetStopper() = 0;
    virtual StopperSensors GetStopperSensors() = 0;
    virtual void SetStageMotor(std::int32_t code) = 0; // 0 = Off, 1 = Standby
    virtual std::int32_t GetStageMotor() = 0;
    virtual void Jog(bool toInner, std::int32_t pulses) = 0;
    virtual bool GetSpindleSet() = 0;
    virtual bool GetVacuum() = 0;
    virtual bool GetOuterCover() = 0; // true = open
    virtual bool GetEmergency() = 0;
    virtual Variant GetStageRegion() = 0;

    // Piezo.
    virtual void SetPiezoSerial(const std::string& serial) = 0;
    virtual std::string GetPiezoSerial() = 0;
    virtual void SetPiezoLoop(bool closed) = 0;
    virtual bool GetPiezoLoop() = 0;
    virtual NameList GetPiezoAdjustList() = 0; // one name per adjust point, with its index
    virtual void SetPiezoAdjust(std::int16_t index, std::int32_t dac) = 0;
    virtual std::int32_t GetPiezoAdjust(std::int16_t index) = 0;
    virtual NameList GetPiezoCalCoefNames() = 0;
    virtual void SetPiezoCalCoef(const PiezoCalCoef& coef) = 0;
    virtual PiezoCalCoef GetPiezoCalCoef() = 0;
    virtual PiezoCalData GetPiezoCalData() = 0;
    virtual void SetPiezoControlData(const PiezoControlData& data) = 0;
    virtual PiezoControlData GetPiezoControlData() = 0;
    virtual bool GetPiezoBalanced() = 0;

    // Stage and spindle properties, backlash compensation, spindle driver items.
    virtual PropertyList GetStagePropertyList() = 0;
    virtual NamedCodes GetStagePropertyChoices(std::int16_t id) = 0;
    virtual void SetStageProperty(std::int16_t index, const Variant& value) = 0;
    virtual Variant GetStageProperty(std::int16_t id) = 0;
    virtual NameList GetBacklashCompensationList() = 0; // one name per entry, with its index
    virtual std::int32_t GetBacklashCompensation(std::int16_t index) = 0;
    virtual void SetBacklashCompensation(std::int16_t index, std::int32_t value) = 0;
    virtual std::string GetBacklashDate() = 0;
    virtual PropertyList GetSpindlePropertyList() = 0;
    virtual NamedCodes GetSpindlePropertyChoices(std::int16_t id) = 0;
    virtual void SetSpindleProperty(std::int16_t index, const Variant& value) = 0;
    virtual Variant GetSpindleProperty(std::int16_t id) = 0;
    virtual PropertyList GetSpindleDriverItems() = 0;
    virtual NamedCodes GetSpindleDriverChoices(std::int16_t id) = 0;
    virtual Variant GetSpindleDriver(std::int16_t index) = 0; // 0 rotation, 1 type

    // Configuration groups: Save copies the working settings to non-volatile memory, Recall the other way.
    virtual void SaveVersionData() = 0;
    virtual void RecallVersionData() = 0;
    virtual void SaveSpinstandConfiguration() = 0;
    virtual void RecallSpinstandConfiguration() = 0;
    virtual void SaveCustomerConfiguration() = 0;
    virtual void RecallCustomerConfiguration() = 0;
    virtual void SaveStageProperty() = 0;
    virtual void RecallStageProperty() = 0;
    virtual void SaveSpindleProperty() = 0;
    virtual void RecallSpindleProperty() = 0;
    virtual void SavePiezoData() = 0;
    virtual void RecallPiezoData() = 0;
    virtual void SaveBacklashCompensation() = 0;
    virtual void RecallBacklashCompensation() = 0;
};

// The driver object: answers a query by interface identifier with that interface, or throws DriverError for an
// identifier it does not implement. A returned interface keeps the object alive.
class DriverObject {
public:
    virtual ~DriverObject() = default;
    virtual std::shared_ptr<Interface> QueryInterface(const Guid& iid) = 0;
};

// Typed query: QueryInterface<IDriverStage>(object).
template <class I>
std::shared_ptr<I> QueryInterface(DriverObject& object) {
    auto p = std::dynamic_pointer_cast<I>(object.QueryInterface(I::kIid));
    if (!p)
        throw DriverError(std::string("The driver object returned no ") + std::string(I::kName) + " interface.");
    return p;
}

// The twelve interface names in the order of the contract's list.
inline constexpr std::array<std::string_view, 12> kInterfaceNames{
    IDriver::kName,          IDriverPiezo::kName,     IDriverStage::kName,    IDriverLoadPosition::kName,
    IDriverHeadLoader::kName, IDriverSpindle::kName,  IDriverClamp::kName,    IDriverHeadFace::kName,
    IDriverIndex::kName,     IDriverInterlock::kName, IDriverDiskSize::kName, IDriverService::kName,
};

} // namespace vss
