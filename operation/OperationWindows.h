#pragma once

// What the program needs from the operation windows: the menus' entries and the screenshot mode's scenes.

#include "kit/Navigation.h"

#include <QString>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

class QWidget;

namespace vss {

// Sets the main menu's "Operation Check" (the operation panel).
void registerOperationWindows(MenuWindows& windows);

// The operation windows for the screenshot mode.
ScreenshotScenes operationScreenshots();

} // namespace vss
