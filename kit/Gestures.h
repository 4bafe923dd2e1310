#pragma once

// The hidden mouse gestures on a window's background: A is the right button, B the left button, each with
// exactly Shift and Ctrl held (the position does not count). The main menu uses both to change its level; the
// operation panel uses A to show and hide its direct controls.

#include <Qt>

namespace vss {

enum class MenuGesture { None, A, B };

MenuGesture menuGesture(Qt::MouseButton button, Qt::KeyboardModifiers modifiers);

} // namespace vss
