#pragma once

// The directory of windows that other windows open. The program fills it at start-up from every window
// library; a window opens another through it, so that no window library needs another one. An entry left empty
// is a window that is not part of this build: the button that would open it does nothing.

#include "kit/Form.h"

#include <QString>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace vss {

// Makes a page with its ViewOnly flag, which the opener sets before the page is shown.
using ViewFactory = std::function<std::unique_ptr<Form>(QWidget* parent, bool viewOnly)>;

struct MenuWindows {
    // The main menu.
    FormFactory operationPanel;       // "Operation Check", once the instrument is prepared
    ViewFactory measurementPositions; // "Measurement Position Settings" (ViewOnly false), service settings
    FormFactory servicePanel;         // "Service Operations"
    FormFactory serviceSettings;      // "Service Settings"
    FormFactory piezoAdjust;          // "Piezo Adjust"
    // The factory menu.
    ViewFactory spinstandSettings; // "Spinstand Settings" (ViewOnly false), service settings
    FormFactory piezoSettings;     // "Piezo Settings"
    FormFactory version;           // "Version", in factory mode
    // Opened from other windows.
    ViewFactory spindleProperty;      // service settings "View Spindle Parameters"
    ViewFactory stageProperty;        // service settings "View Stage Parameters"
    ViewFactory backlashCompensation; // service panel and service settings
    FormFactory piezoInformation;     // service panel "Piezo Data"
};

// A window for the screenshot mode, made with its parent, and the scenes of one window library, each with its
// file name (without ".png").
using ScreenshotMaker = std::function<std::unique_ptr<QWidget>(QWidget* parent)>;
using ScreenshotScenes = std::vector<std::pair<QString, ScreenshotMaker>>;

// The process-wide directory. Tests may put windows of their own into it.
MenuWindows& menuWindows();

// The factory of a page opened with the given ViewOnly flag; empty when the page is not part of this build.
FormFactory withViewOnly(const ViewFactory& make, bool viewOnly);

} // namespace vss
