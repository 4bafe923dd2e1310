#include "driver/Factory.h"
#include "driver/com/ComClient.h"

namespace vss::com {

void InstallPlatformResolver() {
    SetPlatformResolver([](std::string_view progId) -> std::shared_ptr<DriverObject> {
        return ComDriverObject::create(progId);
    });
}

} // namespace vss::com
