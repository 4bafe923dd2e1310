#include "app/Navigation.h"

#include "app/frmVersion.h"
#include "operation/OperationWindows.h"

namespace vss {

// The shell's own windows, then each window library registers the windows the menus open from it, one line
// each.
MenuWindows& menuWindows() {
    static MenuWindows windows = [] {
        MenuWindows w;
        w.version = [](QWidget* parent) { return std::make_unique<frmVersion>(parent, true); };
        registerOperationWindows(w);
        return w;
    }();
    return windows;
}

} // namespace vss
