#pragma once

// What the program needs from the service windows: the directory's entries and the screenshot mode's scenes.

#include "kit/Navigation.h"

namespace vss {

// Puts the service windows that are opened from outside this library into the directory.
void registerServiceWindows(MenuWindows& windows);

// The service windows for the screenshot mode.
ScreenshotScenes serviceScreenshots();

} // namespace vss
