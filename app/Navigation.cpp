#include "app/Navigation.h"

#include "customer/CustomerWindows.h"
#include "factory/FactoryWindows.h"
#include "kit/frmVersion.h"
#include "operation/OperationWindows.h"
#include "piezo/PiezoWindows.h"
#include "service/ServiceWindows.h"

namespace vss {

// The shell's own windows, then each window library registers the windows that are opened from outside it.
void registerWindows(MenuWindows& windows) {
    windows.version = [](QWidget* parent) { return std::make_unique<frmVersion>(parent, true); };
    registerOperationWindows(windows);
    registerCustomerWindows(windows);
    registerFactoryWindows(windows);
    registerPiezoWindows(windows);
    registerServiceWindows(windows);
}

} // namespace vss
