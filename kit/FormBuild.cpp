#include "kit/FormBuild.h"

#include "controls/FieldLook.h"

#include <QSignalBlocker>

namespace vss {

QLineEdit* newTextBox(QWidget* parent, const char* name, int left, int top, int width, int height,
                      bool locked) {
    auto* box = put(new QLineEdit(parent), name, left, top, width, height);
    setTextBoxLocked(box, locked);
    return box;
}

void setTextBoxLocked(QLineEdit* box, bool locked) {
    box->setReadOnly(locked);
    showLockedBackground(box, locked);
}

namespace {

// Both value controls take the unit, the scale and the lock alike.
template <class Field> Field* withLook(Field* field, const FieldLook& look) {
    field->setOptStr(look.unit);
    field->setOptStrWidth(look.unitWidth);
    field->setDblScale(look.scale);
    field->setLocked(look.locked);
    return field;
}

} // namespace

userProperty* newProperty(QWidget* parent, const char* name, int left, int top, int width, int height,
                          const FieldLook& look) {
    auto* field = put(new userProperty(parent), name, left, top, width, height);
    field->setCaption(look.caption);
    return withLook(field, look);
}

userText* newValueField(QWidget* parent, const char* name, int left, int top, int width, int height,
                        const FieldLook& look) {
    auto* field = withLook(put(new userText(parent), name, left, top, width, height), look);
    if (!look.caption.isEmpty()) // a field without a label of its own is still named for screen readers
        field->setCaptionName(look.caption);
    return field;
}

void showValue(userProperty* field, const Variant& value) {
    const QSignalBlocker quiet(field);
    field->setValue(value);
}

void showText(QLineEdit* box, const QString& text) {
    if (box->text() != text)
        box->setText(text);
}

} // namespace vss
