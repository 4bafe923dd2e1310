#pragma once

// A window that shows both value controls in every mode, unlocked, locked and disabled: for screenshots and
// for judging the look at a glance.

class QWidget;

namespace vss {

QWidget* createControlsGallery(QWidget* parent = nullptr);

} // namespace vss
