#include "kit/Navigation.h"

namespace vss {

MenuWindows& menuWindows() {
    static MenuWindows windows;
    return windows;
}

FormFactory withViewOnly(const ViewFactory& make, bool viewOnly) {
    if (!make)
        return {};
    return [make, viewOnly](QWidget* parent) { return make(parent, viewOnly); };
}

} // namespace vss
