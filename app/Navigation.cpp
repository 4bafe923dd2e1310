#include "app/Navigation.h"

#include "operation/OperationWindows.h"

namespace vss {

// Each window library registers the windows the menus open from it, one line each.
MenuWindows& menuWindows() {
    static MenuWindows windows = [] {
        MenuWindows w;
        registerOperationWindows(w);
        return w;
    }();
    return windows;
}

} // namespace vss
