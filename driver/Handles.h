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

} // namespace vss
