#include "kit/modGlobal.h"

namespace vss {

Globals& globals() {
    static Globals instance;
    return instance;
}

DriverHandles& handles() {
    return globals().handles;
}

void setUpGlobals() {
    Globals& g = globals();
    g.driverProgId = std::string(kDriverProgId);
    g.spindleSpeeds = {4000, 4200, 5400, 7200, 10000, 12000, 15000};
}

} // namespace vss
