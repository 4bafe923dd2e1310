#pragma once

// The driver's twelve interfaces as COM sees them: each derives from IUnknown (slots 0-2) and has every operation
// at its slot in the function table. A slot the driver does not document is kept as a placeholder (SlotN) so that
// every later slot stays where it is; placeholders answer E_NOTIMPL and are never called by the program.
//
// Shapes at the binary boundary (the one place where they are written down):
//   - texts: BSTR in, BSTR* out; a returned null BSTR is a fault, an incoming null BSTR is the empty text
//   - Booleans: VARIANT_BOOL, true = VARIANT_TRUE (-1), false = VARIANT_FALSE (0)
//   - int16: short; int32: long (32 bits on Windows); reals: double
//   - an operation with several results returns them through out pointers in the order of its result structure
//     (GetPosition: track, radius, skew; GetDataArea: inner radius, max track, pitch; ranges: min, max)
//   - a list is a VARIANT holding a one-dimensional SAFEARRAY (any lower bound) of BSTR, short (VT_I2) or double
//     (VT_R8); an array of VARIANTs whose elements all have that type is accepted as well. Lists that belong
//     together (names with codes, ids with names and units) have the same length
//   - IDriverStage::MoveTo takes its radius by reference (double*); the driver may leave the reached radius in it
//   - the position record is passed as PositionRecord* both ways
//   - a value of variable type (property values, spindle driver items, the stage region) is a VARIANT of type
//     VT_EMPTY, VT_NULL, VT_I2, VT_I4, VT_R8, VT_BOOL or VT_BSTR
//   - piezo calibration coefficients: vmin, vmax, xmin, xmax, then the coefficients as a list of doubles
//   - piezo calibration data: voltages, positions (two lists of doubles)
//   - piezo control data: Lth, Ta, Ks, Lstep, Tstep, each a list of doubles with one element per row
//   - inputs of list type are passed as VARIANT by value, owned by the caller
// Every out VARIANT and BSTR belongs to the caller afterwards, which frees it exactly once.

#include "driver/Guid.h"
#include "driver/Interfaces.h"

#include <windows.h>

#include <ole2.h>

namespace vss::com {

// The position record: a radius in metres and a skew in degrees (kNoSkew when no skew is given).
struct PositionRecord {
    double radius;
    double skew;
};
static_assert(sizeof(PositionRecord) == 16);

constexpr IID toIid(const vss::Guid& g) {
    return IID{g.data1, g.data2, g.data3, {g.data4[0], g.data4[1], g.data4[2], g.data4[3], g.data4[4], g.data4[5],
                                           g.data4[6], g.data4[7]}};
}

namespace raw {

#define VSS_SLOT(n)                                                                                                    \
    virtual HRESULT STDMETHODCALLTYPE Slot##n() { return E_NOTIMPL; }

struct IDriver : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE Open(BSTR resource) = 0;                                   // 3
    virtual HRESULT STDMETHODCALLTYPE Close() = 0;                                               // 4
    VSS_SLOT(5)
    VSS_SLOT(6)
    virtual HRESULT STDMETHODCALLTYPE Initialize() = 0;                                          // 7
    virtual HRESULT STDMETHODCALLTYPE Reset() = 0;                                               // 8
    virtual HRESULT STDMETHODCALLTYPE GetDiskSizeLimit(double* min, double* max) = 0;            // 9
    virtual HRESULT STDMETHODCALLTYPE GetSpeedRange(long* minRpm, long* maxRpm) = 0;             // 10
    virtual HRESULT STDMETHODCALLTYPE GetLoadMethodList(VARIANT* names, VARIANT* codes) = 0;     // 11
    virtual HRESULT STDMETHODCALLTYPE Load() = 0;                                                // 12
    virtual HRESULT STDMETHODCALLTYPE Unload() = 0;                                              // 13
    VSS_SLOT(14)
    virtual HRESULT STDMETHODCALLTYPE GetPosition(long* track, double* radius, double* skew) = 0; // 15
    VSS_SLOT(16)
    VSS_SLOT(17)
    virtual HRESULT STDMETHODCALLTYPE GetDataArea(double* innerRadius, long* maxTrack, double* pitch) = 0; // 18
    virtual HRESULT STDMETHODCALLTYPE SetDataArea(double innerRadius, long maxTrack, double pitch) = 0;    // 19
    virtual HRESULT STDMETHODCALLTYPE GetSpindleSpeed(long* rpm) = 0;                            // 20
    virtual HRESULT STDMETHODCALLTYPE SetSpindleSpeed(long rpm) = 0;                             // 21
    virtual HRESULT STDMETHODCALLTYPE GetHomeState(long* homeState) = 0;                         // 22
    virtual HRESULT STDMETHODCALLTYPE SetHomeState(long homeState) = 0;                          // 23
    virtual HRESULT STDMETHODCALLTYPE GetLoadMethod(short* method) = 0;                          // 24
    virtual HRESULT STDMETHODCALLTYPE SetLoadMethod(short method) = 0;                           // 25
    virtual HRESULT STDMETHODCALLTYPE GetState(long* state) = 0;                                 // 26
    virtual HRESULT STDMETHODCALLTYPE GetFinePositionLimit(double* limit) = 0;                   // 27
    virtual HRESULT STDMETHODCALLTYPE GetHardwareRevision(BSTR* revision) = 0;                   // 28
    virtual HRESULT STDMETHODCALLTYPE GetFirmwareRevision(BSTR* revision) = 0;                   // 29
    virtual HRESULT STDMETHODCALLTYPE GetDriverRevision(BSTR* revision) = 0;                     // 30
    virtual HRESULT STDMETHODCALLTYPE GetSerialNumber(BSTR* serial) = 0;                         // 31
};

struct IDriverPiezo : IUnknown {
    VSS_SLOT(3)
    VSS_SLOT(4)
    virtual HRESULT STDMETHODCALLTYPE GetPiezoReading(double* resolution) = 0; // 5
};

struct IDriverStage : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE MoveTo(double* radius) = 0; // 3
};

struct IDriverLoadPosition : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetLoadPosition(short which, PositionRecord* position, long* rpm) = 0; // 3
    virtual HRESULT STDMETHODCALLTYPE SetLoadPosition(short which, PositionRecord* position, long rpm) = 0;  // 4
};

struct IDriverHeadLoader : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetHeadLoader(VARIANT_BOOL* down) = 0; // 3
    virtual HRESULT STDMETHODCALLTYPE SetHeadLoader(VARIANT_BOOL down) = 0;  // 4
};

struct IDriverSpindle : IUnknown {
    VSS_SLOT(3)
    VSS_SLOT(4)
    virtual HRESULT STDMETHODCALLTYPE GetMotor(VARIANT_BOOL* on) = 0; // 5
    virtual HRESULT STDMETHODCALLTYPE SetMotor(VARIANT_BOOL on) = 0;  // 6
    virtual HRESULT STDMETHODCALLTYPE GetRotation(long* rotation) = 0; // 7
};

struct IDriverClamp : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetClamp(VARIANT_BOOL* on) = 0; // 3
    virtual HRESULT STDMETHODCALLTYPE SetClamp(VARIANT_BOOL on) = 0;  // 4
};

struct IDriverHeadFace : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetFace(long* face) = 0; // 3
};

struct IDriverIndex : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetIndexPolarity(VARIANT_BOOL* rising) = 0; // 3
};

struct IDriverInterlock : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetInterlock(VARIANT_BOOL* detected) = 0; // 3
};

struct IDriverDiskSize : IUnknown {
    virtual HRESULT STDMETHODCALLTYPE GetDiskSizeRestriction(VARIANT_BOOL* on) = 0; // 3
    virtual HRESULT STDMETHODCALLTYPE SetDiskSizeRestriction(VARIANT_BOOL on) = 0;  // 4
};

struct IDriverService : IUnknown {
    VSS_SLOT(3)
    virtual HRESULT STDMETHODCALLTYPE BeginService() = 0;                                         // 4
    virtual HRESULT STDMETHODCALLTYPE ResetService() = 0;                                         // 5
    VSS_SLOT(6)
    VSS_SLOT(7)
    virtual HRESULT STDMETHODCALLTYPE SetHardwareRevision(BSTR revision) = 0;                     // 8
    virtual HRESULT STDMETHODCALLTYPE GetHardwareRevision(BSTR* revision) = 0;                    // 9
    virtual HRESULT STDMETHODCALLTYPE GetDriverRevision(BSTR* revision) = 0;                      // 10
    virtual HRESULT STDMETHODCALLTYPE GetFirmwareRevision(BSTR* revision) = 0;                    // 11
    virtual HRESULT STDMETHODCALLTYPE SetSerialNumber(BSTR serial) = 0;                           // 12
    virtual HRESULT STDMETHODCALLTYPE GetSerialNumber(BSTR* serial) = 0;                          // 13
    virtual HRESULT STDMETHODCALLTYPE SetSettingUnknown(VARIANT_BOOL unknown) = 0;                // 14
    virtual HRESULT STDMETHODCALLTYPE GetSettingUnknown(VARIANT_BOOL* unknown) = 0;               // 15
    virtual HRESULT STDMETHODCALLTYPE GetSpinstandTypeList(VARIANT* names, VARIANT* codes) = 0;   // 16
    virtual HRESULT STDMETHODCALLTYPE SetSpinstandType(short type) = 0;                           // 17
    virtual HRESULT STDMETHODCALLTYPE GetSpinstandType(short* type) = 0;                          // 18
    virtual HRESULT STDMETHODCALLTYPE SetHeadFace(long face) = 0;                                 // 19
    virtual HRESULT STDMETHODCALLTYPE GetHeadFace(long* face) = 0;                                // 20
    virtual HRESULT STDMETHODCALLTYPE SetDiskSizeRange(double min, double max) = 0;               // 21
    virtual HRESULT STDMETHODCALLTYPE GetDiskSizeRange(double* min, double* max) = 0;             // 22
    virtual HRESULT STDMETHODCALLTYPE SetStopperPosition(short index, double position) = 0;       // 23
    virtual HRESULT STDMETHODCALLTYPE GetStopperPosition(short index, double* position) = 0;      // 24
    virtual HRESULT STDMETHODCALLTYPE GetMeasurementPosition(short index, double* radius, double* skew) = 0; // 25
    virtual HRESULT STDMETHODCALLTYPE SetStageGeometry(short index, double value) = 0;            // 26
    virtual HRESULT STDMETHODCALLTYPE GetStageGeometry(short index, double* value) = 0;           // 27
    virtual HRESULT STDMETHODCALLTYPE SetSpeedRange(long min, long max) = 0;                      // 28
    virtual HRESULT STDMETHODCALLTYPE GetSpeedRange(long* min, long* max) = 0;                    // 29
    virtual HRESULT STDMETHODCALLTYPE SetSpindleState(long state) = 0;                            // 30
    virtual HRESULT STDMETHODCALLTYPE GetSpindleState(long* state) = 0;                           // 31
    virtual HRESULT STDMETHODCALLTYPE SetSpindleRpm(long rpm) = 0;                                // 32
    virtual HRESULT STDMETHODCALLTYPE GetSpindleRpm(long* rpm) = 0;                               // 33
    virtual HRESULT STDMETHODCALLTYPE MoveToPosition(short position) = 0;                         // 34
    VSS_SLOT(35)
    virtual HRESULT STDMETHODCALLTYPE GetStagePositionFlags(VARIANT_BOOL* atHome, VARIANT_BOOL* atInner,
                                                            VARIANT_BOOL* atOuter) = 0;           // 36
    virtual HRESULT STDMETHODCALLTYPE SetHeadLoaderState(VARIANT_BOOL up) = 0;                    // 37
    virtual HRESULT STDMETHODCALLTYPE GetHeadLoaderState(VARIANT_BOOL* up) = 0;                   // 38
    virtual HRESULT STDMETHODCALLTYPE SetLockdown(VARIANT_BOOL lockdown) = 0;                     // 39
    virtual HRESULT STDMETHODCALLTYPE GetLockdown(VARIANT_BOOL* lockdown) = 0;                    // 40
    virtual HRESULT STDMETHODCALLTYPE GetLockdownSensor(VARIANT_BOOL* locked) = 0;                // 41
    virtual HRESULT STDMETHODCALLTYPE SetStopper(VARIANT_BOOL up) = 0;                            // 42
    virtual HRESULT STDMETHODCALLTYPE GetStopper(VARIANT_BOOL* up) = 0;                           // 43
    virtual HRESULT STDMETHODCALLTYPE GetStopperSensors(VARIANT_BOOL* up, VARIANT_BOOL* down) = 0; // 44
    virtual HRESULT STDMETHODCALLTYPE SetStageMotor(long code) = 0;                               // 45
    virtual HRESULT STDMETHODCALLTYPE GetStageMotor(long* code) = 0;                              // 46
    virtual HRESULT STDMETHODCALLTYPE Jog(VARIANT_BOOL toInner, long pulses) = 0;                 // 47
    virtual HRESULT STDMETHODCALLTYPE GetSpindleSet(VARIANT_BOOL* on) = 0;                        // 48
    virtual HRESULT STDMETHODCALLTYPE GetVacuum(VARIANT_BOOL* on) = 0;                            // 49
    virtual HRESULT STDMETHODCALLTYPE GetOuterCover(VARIANT_BOOL* open) = 0;                      // 50
    virtual HRESULT STDMETHODCALLTYPE GetEmergency(VARIANT_BOOL* emergency) = 0;                  // 51
    virtual HRESULT STDMETHODCALLTYPE GetStageRegion(VARIANT* region) = 0;                        // 52
    virtual HRESULT STDMETHODCALLTYPE SetPiezoSerial(BSTR serial) = 0;                            // 53
    virtual HRESULT STDMETHODCALLTYPE GetPiezoSerial(BSTR* serial) = 0;                           // 54
    virtual HRESULT STDMETHODCALLTYPE SetPiezoLoop(VARIANT_BOOL closed) = 0;                      // 55
    virtual HRESULT STDMETHODCALLTYPE GetPiezoLoop(VARIANT_BOOL* closed) = 0;                     // 56
    virtual HRESULT STDMETHODCALLTYPE GetPiezoAdjustList(VARIANT* names) = 0;                     // 57
    virtual HRESULT STDMETHODCALLTYPE SetPiezoAdjust(short index, long dac) = 0;                  // 58
    virtual HRESULT STDMETHODCALLTYPE GetPiezoAdjust(short index, long* dac) = 0;                 // 59
    virtual HRESULT STDMETHODCALLTYPE GetPiezoCalCoefNames(VARIANT* names) = 0;                   // 60
    virtual HRESULT STDMETHODCALLTYPE SetPiezoCalCoef(double vmin, double vmax, double xmin, double xmax,
                                                      VARIANT coef) = 0;                          // 61
    virtual HRESULT STDMETHODCALLTYPE GetPiezoCalCoef(double* vmin, double* vmax, double* xmin, double* xmax,
                                                      VARIANT* coef) = 0;                         // 62
    virtual HRESULT STDMETHODCALLTYPE GetPiezoCalData(VARIANT* volt, VARIANT* position) = 0;      // 63
    virtual HRESULT STDMETHODCALLTYPE SetPiezoControlData(VARIANT lth, VARIANT ta, VARIANT ks, VARIANT lstep,
                                                          VARIANT tstep) = 0;                     // 64
    virtual HRESULT STDMETHODCALLTYPE GetPiezoControlData(VARIANT* lth, VARIANT* ta, VARIANT* ks, VARIANT* lstep,
                                                          VARIANT* tstep) = 0;                    // 65
    virtual HRESULT STDMETHODCALLTYPE GetPiezoBalanced(VARIANT_BOOL* balanced) = 0;               // 66
    virtual HRESULT STDMETHODCALLTYPE GetStagePropertyList(VARIANT* ids, VARIANT* names, VARIANT* units) = 0; // 67
    virtual HRESULT STDMETHODCALLTYPE GetStagePropertyChoices(short id, VARIANT* names, VARIANT* codes) = 0; // 68
    virtual HRESULT STDMETHODCALLTYPE SetStageProperty(short index, VARIANT value) = 0;           // 69
    virtual HRESULT STDMETHODCALLTYPE GetStageProperty(short id, VARIANT* value) = 0;             // 70
    virtual HRESULT STDMETHODCALLTYPE GetBacklashCompensationList(VARIANT* names) = 0;            // 71
    virtual HRESULT STDMETHODCALLTYPE GetBacklashCompensation(short index, long* value) = 0;      // 72
    virtual HRESULT STDMETHODCALLTYPE SetBacklashCompensation(short index, long value) = 0;       // 73
    virtual HRESULT STDMETHODCALLTYPE GetBacklashDate(BSTR* date) = 0;                            // 74
    virtual HRESULT STDMETHODCALLTYPE GetSpindlePropertyList(VARIANT* ids, VARIANT* names, VARIANT* units) = 0; // 75
    virtual HRESULT STDMETHODCALLTYPE GetSpindlePropertyChoices(short id, VARIANT* names, VARIANT* codes) = 0; // 76
    virtual HRESULT STDMETHODCALLTYPE SetSpindleProperty(short index, VARIANT value) = 0;         // 77
    virtual HRESULT STDMETHODCALLTYPE GetSpindleProperty(short id, VARIANT* value) = 0;           // 78
    virtual HRESULT STDMETHODCALLTYPE GetSpindleDriverItems(VARIANT* ids, VARIANT* names, VARIANT* units) = 0; // 79
    virtual HRESULT STDMETHODCALLTYPE GetSpindleDriverChoices(short id, VARIANT* names, VARIANT* codes) = 0; // 80
    virtual HRESULT STDMETHODCALLTYPE GetSpindleDriver(short index, VARIANT* value) = 0;          // 81
    VSS_SLOT(82)
    VSS_SLOT(83)
    VSS_SLOT(84)
    VSS_SLOT(85)
    VSS_SLOT(86)
    virtual HRESULT STDMETHODCALLTYPE SaveVersionData() = 0;                                      // 87
    virtual HRESULT STDMETHODCALLTYPE RecallVersionData() = 0;                                    // 88
    virtual HRESULT STDMETHODCALLTYPE SaveSpinstandConfiguration() = 0;                           // 89
    virtual HRESULT STDMETHODCALLTYPE RecallSpinstandConfiguration() = 0;                         // 90
    virtual HRESULT STDMETHODCALLTYPE SaveCustomerConfiguration() = 0;                            // 91
    virtual HRESULT STDMETHODCALLTYPE RecallCustomerConfiguration() = 0;                          // 92
    virtual HRESULT STDMETHODCALLTYPE SaveStageProperty() = 0;                                    // 93
    virtual HRESULT STDMETHODCALLTYPE RecallStageProperty() = 0;                                  // 94
    virtual HRESULT STDMETHODCALLTYPE SaveSpindleProperty() = 0;                                  // 95
    virtual HRESULT STDMETHODCALLTYPE RecallSpindleProperty() = 0;                                // 96
    virtual HRESULT STDMETHODCALLTYPE SavePiezoData() = 0;                                        // 97
    virtual HRESULT STDMETHODCALLTYPE RecallPiezoData() = 0;                                      // 98
    virtual HRESULT STDMETHODCALLTYPE SaveBacklashCompensation() = 0;                             // 99
    virtual HRESULT STDMETHODCALLTYPE RecallBacklashCompensation() = 0;                           // 100
};

#undef VSS_SLOT

} // namespace raw

// The contract interface that a raw interface carries: RawOf<vss::IDriverStage> is raw::IDriverStage.
template <class I> struct RawOf;
#define VSS_RAW_OF(name)                                                                                               \
    template <> struct RawOf<vss::name> {                                                                              \
        using type = raw::name;                                                                                        \
    };
VSS_RAW_OF(IDriver)
VSS_RAW_OF(IDriverPiezo)
VSS_RAW_OF(IDriverStage)
VSS_RAW_OF(IDriverLoadPosition)
VSS_RAW_OF(IDriverHeadLoader)
VSS_RAW_OF(IDriverSpindle)
VSS_RAW_OF(IDriverClamp)
VSS_RAW_OF(IDriverHeadFace)
VSS_RAW_OF(IDriverIndex)
VSS_RAW_OF(IDriverInterlock)
VSS_RAW_OF(IDriverDiskSize)
VSS_RAW_OF(IDriverService)
#undef VSS_RAW_OF

} // namespace vss::com
