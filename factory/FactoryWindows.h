#pragma once

// What the program needs from the factory windows: the directory's entries and the screenshot mode's scenes.

#include "kit/Navigation.h"

namespace vss {

// Puts the factory windows that are opened from outside this library into the directory.
void registerFactoryWindows(MenuWindows& windows);

// The factory windows for the screenshot mode.
ScreenshotScenes factoryScreenshots();

} // namespace vss
