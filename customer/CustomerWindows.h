#pragma once

// What the program needs from the customer windows: the directory's entries and the screenshot mode's scenes.

#include "kit/Navigation.h"

namespace vss {

// Puts the customer windows that are opened from outside this library into the directory.
void registerCustomerWindows(MenuWindows& windows);

// The customer windows for the screenshot mode.
ScreenshotScenes customerScreenshots();

} // namespace vss
