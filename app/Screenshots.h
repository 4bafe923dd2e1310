#pragma once

// The screenshot mode: renders every window of this build, on the simulated instrument, to PNG files.

#include "simulator/Factory.h"

#include "kit/Navigation.h"

#include <QString>

namespace vss {

// Opens a session on the simulated instrument (in memory unless options name a state file), renders each
// window into dir as <window>.png with its caption drawn above it, closes the session and returns the exit
// code. Messages are printed to the error stream instead of waiting for the user.
int runScreenshots(const QString& dir, DriverOptions options);

// The windows the screenshot mode renders, in order, each with its file name; they read the session's handles
// when they are made.
ScreenshotScenes screenshotScenes();

} // namespace vss
