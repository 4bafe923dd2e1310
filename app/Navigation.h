#pragma once

// Fills the directory of windows with every window of this build: the shell's own, then each window library's.

#include "kit/Navigation.h"

namespace vss {

void registerWindows(MenuWindows& windows);

} // namespace vss
