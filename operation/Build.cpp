#include "operation/Build.h"

#include "controls/FieldLook.h"

namespace vss::operation {

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

userProperty* newProperty(QWidget* parent, const char* name, int left, int top, int width, int height,
                          const FieldLook& look) {
    auto* field = put(new userProperty(parent), name, left, top, width, height);
    field->setCaption(look.caption);
    field->setOptStr(look.unit);
    field->setDblScale(look.scale);
    field->setLocked(look.locked);
    return field;
}

userText* newValueField(QWidget* parent, const char* name, int left, int top, int width, int height,
                        const FieldLook& look) {
    auto* field = put(new userText(parent), name, left, top, width, height);
    field->setOptStr(look.unit);
    field->setDblScale(look.scale);
    field->setLocked(look.locked);
    return field;
}

void showText(QLineEdit* box, const QString& text) {
    if (box->text() != text)
        box->setText(text);
}

} // namespace vss::operation
