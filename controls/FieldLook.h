#pragma once

// The look the value fields share: read-only editors have the button-face background, editable ones the
// window background, both taken from the application's palette.

#include "controls/FieldLayout.h"
#include "controls/Twips.h"

#include <QApplication>
#include <QComboBox>
#include <QPalette>
#include <QWidget>

namespace vss {

inline void showLockedBackground(QWidget* editor, bool locked) {
    const QColor colour = QApplication::palette(editor).color(locked ? QPalette::Button : QPalette::Base);
    // The style shades a drop-down list like a button, which looks the same locked or not: a locked list is
    // drawn flat instead, in the button face and without its arrow, as a read-only text box is, and as tall
    // as the style draws an editable one (a border and a padding of 1 on each side). The sheet goes first:
    // setting or clearing it puts back the palette the list had before.
    if (auto* list = qobject_cast<QComboBox*>(editor)) {
        list->setStyleSheet(QString());
        if (locked)
            list->setStyleSheet(QStringLiteral("QComboBox { background-color: %1;"
                                               " border: 1px solid palette(mid); border-radius: 2px;"
                                               " padding: 1px 3px; min-height: %2px; }"
                                               " QComboBox::drop-down { width: 0px; border: none; }"
                                               " QComboBox::down-arrow { image: none; }")
                                    .arg(colour.name())
                                    .arg(list->sizeHint().height() - 4));
    }
    QPalette palette = editor->palette();
    palette.setColor(QPalette::Base, colour);   // text boxes paint this
    palette.setColor(QPalette::Button, colour); // drop-down lists paint this
    editor->setPalette(palette);
}

// Places a child at a horizontal span given in twips, at the top, with a height in pixels. The span's edges
// are converted, as twipsRect does.
inline void placeAt(QWidget* child, Span span, int height) {
    const int left = twipsToPixels(span.left);
    child->setGeometry(left, 0, twipsToPixels(span.right()) - left, height);
}

} // namespace vss
