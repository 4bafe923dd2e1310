#pragma once

// Taking the twelve interfaces of a driver object into the session's handles, and emptying them again.

#include "driver/Handles.h"
#include "driver/Interfaces.h"

namespace vss {

// Queries object for the twelve interfaces, each stored as soon as it arrives, in the session's order: the
// service interface before the disk-size interface. A failing query throws DriverError; the handles filled
// before it stay filled.
void acquireHandles(DriverObject& object, DriverHandles& handles);

// Empties the handles in the session's order. The disk-size handle keeps its reference until the next session
// replaces it.
void releaseHandles(DriverHandles& handles);

} // namespace vss
