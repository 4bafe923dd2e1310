#pragma once

// How the menus make the windows they open. Each entry creates its window with the mode flag the menu sets
// (for example `ViewOnly` false for the measurement positions). An entry left empty is a window that is not
// part of this build: the button that would open it does nothing.

#include "app/Form.h"

namespace vss {

struct MenuWindows {
    FormFactory operationPanel;       // "Operation Check", once the instrument is prepared
    FormFactory measurementPositions; // "Measurement Position Settings"
    FormFactory servicePanel;         // "Service Operations"
    FormFactory serviceSettings;      // "Service Settings"
    FormFactory piezoAdjust;          // "Piezo Adjust"
    FormFactory spinstandSettings;    // factory menu "Spinstand Settings"
    FormFactory piezoSettings;        // factory menu "Piezo Settings"
    FormFactory version;              // factory menu "Version", in factory mode
};

// The process-wide table. Tests may put windows of their own into it.
MenuWindows& menuWindows();

} // namespace vss
