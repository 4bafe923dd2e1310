#include "app/Navigation.h"

namespace vss {

// Each window library adds its entry here, one line each, e.g.
//   .measurementPositions = [](QWidget* p) { auto w = std::make_unique<frmCus>(p); w->setViewOnly(false);
//   return w; },
MenuWindows& menuWindows() {
    static MenuWindows windows{};
    return windows;
}

} // namespace vss
