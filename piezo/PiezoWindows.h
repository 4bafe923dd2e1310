#pragma once

// What the program needs from the piezo windows: the directory's entries and the screenshot mode's scenes.

#include "kit/Navigation.h"

namespace vss {

// Puts the piezo windows that are opened from outside this library into the directory.
void registerPiezoWindows(MenuWindows& windows);

// The piezo windows for the screenshot mode.
ScreenshotScenes piezoScreenshots();

} // namespace vss
