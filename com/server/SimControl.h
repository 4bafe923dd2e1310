#pragma once

// The simulator server's own interface beside the driver's twelve: what a demonstration or a test needs to drive
// the simulated instrument from outside the server (its inputs, injected failures, its call trace), and the
// server's allocation counts for leak checks.

#include "com/ComValues.h"
#include "com/RawInterfaces.h"

namespace vss::com {

// The simulator's class, registered under "Vlkd2208.CoDriver" by the server's self-registration.
inline constexpr Guid kSimulatorClsid = Guid::parse("{47E85834-3E6B-45F0-8AF8-73D87792759D}");
inline constexpr Guid kSimControlIid = Guid::parse("{25B974F0-B6C1-4797-9BC8-7A6A1EB7CA42}");

struct ISimControl : IUnknown {
    // Every call the instrument has seen since the last ClearTrace, one line each, joined by '\n'.
    virtual HRESULT STDMETHODCALLTYPE GetTrace(BSTR* lines) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearTrace() = 0;
    // input: the position in sim::Input (Interlock = 0 ... StopperDownSensor = 7).
    virtual HRESULT STDMETHODCALLTYPE SetInput(long input, VARIANT_BOOL value) = 0;
    // operation: "Interface.Operation"; times > 0: the next `times` calls, < 0: until ClearFailures.
    virtual HRESULT STDMETHODCALLTYPE FailOperation(BSTR operation, BSTR description, long times) = 0;
    virtual HRESULT STDMETHODCALLTYPE ClearFailures() = 0;
    // Driver objects created from now on run on a new instrument with this non-volatile file (":memory:": none)
    // whose lists start at index listLower (0, or 1 to play a driver that numbers its lists from 1).
    virtual HRESULT STDMETHODCALLTYPE RestartInstrument(BSTR statePath, long listLower) = 0;
    virtual HRESULT STDMETHODCALLTYPE GetAllocationCounts(AllocationCounts* counts) = 0;
};

} // namespace vss::com
