#pragma once

// The twelve interface handles of one driver object, as the program keeps them for a session. An empty handle
// is legal: an empty headLoader means the instrument has no head loader.

#include "driver/Interfaces.h"

#include <memory>

namespace vss {

struct DriverHandles {
    std::shared_ptr<IDriver> driver;
    std::shared_ptr<IDriverPiezo> piezo;
    std::shared_ptr<IDriverStage> stage;
    std::shared_ptr<IDriverLoadPosition> loadPosition;
    std::shared_ptr<IDriverHeadLoader> headLoader;
    std::shared_ptr<IDriverSpindle> spindle;
    std::shared_ptr<IDriverClamp> clamp;
    std::shared_ptr<IDriverHeadFace> headFace;
    std::shared_ptr<IDriverIndex> index;
    std::shared_ptr<IDriverInterlock> interlock;
    std::shared_ptr<IDriverDiskSize> diskSize;
    std::shared_ptr<IDriverService> service;
};

// Queries object for the twelve interfaces, each stored as soon as it arrives, in the session's order: the
// service interface before the disk-size interface. A failing query throws DriverError; the handles filled
// before it stay filled.
void acquireHandles(DriverObject& object, DriverHandles& handles);

// Empties the handles in the session's order. The disk-size handle keeps its reference until the next session
// replaces it.
void releaseHandles(DriverHandles& handles);

} // namespace vss
