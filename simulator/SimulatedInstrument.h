#pragma once

// The simulated instrument behind the driver objects that createDriverObject makes, for the instrument's own
// front panel (frontpanel/) and the screenshot mode: the panel plays the instrument's side and so reaches the
// instrument directly, never through the driver.

#include "simulator/Factory.h"
#include "simulator/SimInstrument.h"

#include <memory>

namespace vss {

// The instrument that createDriverObject(kDriverProgId, options) makes its objects on, or nullptr when the
// options resolve to the platform's driver. The first time an instrument is resolved with a scenario in the
// options, that scenario starts on it. Throws DriverError when the scenario is malformed or cannot be read,
// and when a scenario is given but the options resolve to the platform's driver: the options are refused
// before anything runs.
std::shared_ptr<sim::SimInstrument> simulatedInstrument(const DriverOptions& options);

} // namespace vss
