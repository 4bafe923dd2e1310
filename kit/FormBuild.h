#pragma once

// Building windows in code: every control is named and placed in twips inside its window or
// frame, and the value fields get their caption, unit, scale and lock in one call.

#include "controls/Twips.h"
#include "controls/userProperty.h"
#include "controls/userText.h"

#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QString>

namespace vss {

// Names a control and places it at left, top, width, height (twips) inside its parent.
template <class W> W* put(W* control, const char* name, int left, int top, int width, int height) {
    control->setObjectName(QString::fromLatin1(name));
    control->setGeometry(twipsRect(left, top, width, height));
    return control;
}

inline QGroupBox* newFrame(QWidget* parent, const char* name, const QString& caption, int left, int top,
                           int width, int height) {
    return put(new QGroupBox(caption, parent), name, left, top, width, height);
}

inline QPushButton* newButton(QWidget* parent, const char* name, const QString& caption, int left, int top,
                              int width, int height) {
    auto* button = put(new QPushButton(caption, parent), name, left, top, width, height);
    button->setAutoDefault(false);
    return button;
}

inline QLabel* newLabel(QWidget* parent, const char* name, const QString& caption, int left, int top,
                        int width, int height) {
    return put(new QLabel(caption, parent), name, left, top, width, height);
}

// A plain text box; a locked one is read-only and shows the button-face background.
QLineEdit* newTextBox(QWidget* parent, const char* name, int left, int top, int width, int height,
                      bool locked);
void setTextBoxLocked(QLineEdit* box, bool locked);

// How a value field shows its value.
struct FieldLook {
    QString caption{};  // labelled fields: the caption; value fields: the name screen readers give the field
    QString unit{};     // OptStr
    double scale = 1.0; // DblScale: shown = value / scale
    bool locked = false;
    int unitWidth = 450; // OptStrWidth, twips: room for "mm", "deg", "rpm"
};

userProperty* newProperty(QWidget* parent, const char* name, int left, int top, int width, int height,
                          const FieldLook& look);
userText* newValueField(QWidget* parent, const char* name, int left, int top, int width, int height,
                        const FieldLook& look);

// Shows a value read from the instrument in a field. Selecting a list entry this way raises no ChangeValue:
// a value shown is not a value the user committed.
void showValue(userProperty* field, const Variant& value);

// Sets a text box's text only when it differs, so that polling leaves an unchanged box alone.
void showText(QLineEdit* box, const QString& text);

} // namespace vss
