#pragma once

// The simulator's implementations of the twelve driver interfaces, each a thin face of one Instrument.

#include "driver/Interfaces.h"
#include "simulator/Instrument.h"

#include <memory>
#include <string_view>

namespace vss::sim {

using InstrumentPtr = std::shared_ptr<Instrument>;

// The revision texts that the instrument's firmware and this driver report.
inline constexpr const char* kFirmwareRevision = "2.14";
inline constexpr const char* kDriverRevision = "1.0.0 (simulator)";

// The interface with this identifier on the instrument, or nullptr when the driver has no such interface.
std::shared_ptr<Interface> makeInterface(const Guid& iid, const InstrumentPtr& instrument);

std::shared_ptr<IDriverService> makeService(const InstrumentPtr& instrument);

// True for "Interface.Operation" of the contract and for "CoDriver.QueryInterface".
bool isOperationName(std::string_view name);

} // namespace vss::sim
