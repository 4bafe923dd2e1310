#include "kit/Gestures.h"

namespace vss {

MenuGesture menuGesture(Qt::MouseButton button, Qt::KeyboardModifiers modifiers) {
    const Qt::KeyboardModifiers held = modifiers & (Qt::ShiftModifier | Qt::ControlModifier | Qt::AltModifier);
    if (held != (Qt::ShiftModifier | Qt::ControlModifier))
        return MenuGesture::None;
    if (button == Qt::RightButton)
        return MenuGesture::A;
    if (button == Qt::LeftButton)
        return MenuGesture::B;
    return MenuGesture::None;
}

} // namespace vss
