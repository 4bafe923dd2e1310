#pragma once

// The look the value fields share: read-only editors have the button-face background, editable ones the
// window background, both taken from the application's palette.

#include "controls/FieldLayout.h"
#include "controls/Twips.h"

#include <QApplication>
#include <QPalette>
#include <QWidget>

namespace vss {

inline void showLockedBackground(QWidget* editor, bool locked) {
    const QPalette system = QApplication::palette(editor);
    const QColor colour = system.color(locked ? QPalette::Button : QPalette::Base);
    QPalette palette = editor->palette();
    palette.setColor(QPalette::Base, colour);   // text boxes paint this
    palette.setColor(QPalette::Button, colour); // drop-down lists paint this
    editor->setPalette(palette);
}

// Places a child at a horizontal span given in twips, at the top, with a height in pixels.
inline void placeAt(QWidget* child, Span span, int height) {
    child->setGeometry(twipsToPixels(span.left), 0, twipsToPixels(span.width), height);
}

} // namespace vss
