#include "kit/PropertyRows.h"

#include "kit/FormBuild.h"

#include <QSignalBlocker>
#include <algorithm>
#include <string>

namespace vss {

PropertyRows::PropertyRows(QWidget* frame, const char* name, PropertySource source, PropertyRowLook look)
    : QObject(frame), frame_(frame), name_(name), source_(std::move(source)), look_(look) {}

void PropertyRows::build() {
    for (userProperty* row : rows_)
        delete row;
    rows_.clear();
    ids_.clear();

    const PropertyList list = source_.list();
    const std::size_t n = std::min({list.ids.size(), list.names.size()});
    for (std::size_t i = 0; i < n; ++i) {
        const int index = static_cast<int>(i);
        const std::string rowName = std::string(name_) + "_" + std::to_string(i);
        userProperty* row = newProperty(
            frame_, rowName.c_str(), look_.left, look_.top + index * look_.pitch, look_.width, look_.rowHeight,
            {.caption = QString::fromStdString(list.names[i]),
             .unit = i < list.units.size() ? QString::fromStdString(list.units[i]) : QString(),
             .locked = look_.locked,
             .unitWidth = look_.unitWidth});
        row->setLayoutAuto(look_.layoutAuto);
        row->setLabelWidth(look_.labelWidth);
        row->setDigitNum(look_.digits);
        row->show();
        rows_.push_back(row);
        ids_.push_back(list.ids[i]);

        const Variant value = source_.read(list.ids[i]);
        if (value.type() == Variant::Type::Int16) {
            const NamedCodes choices = source_.choices(list.ids[i]);
            for (std::size_t j = 0; j < choices.names.size() && j < choices.codes.size(); ++j) {
                row->AddItem(QString::fromStdString(choices.names[j]), static_cast<std::int16_t>(j));
                row->setItemData(static_cast<std::int16_t>(j), choices.codes[j]);
            }
        }
        show(index, value);
        connect(row, &userProperty::ChangeValue, this, [this, index] { emit rowChanged(index); });
    }
}

void PropertyRows::refreshRow(int index) {
    show(index, source_.read(id(index)));
}

void PropertyRows::refreshAll() {
    for (int i = 0; i < count(); ++i)
        refreshRow(i);
}

void PropertyRows::setLocked(bool locked) {
    look_.locked = locked;
    for (userProperty* row : rows_)
        row->setLocked(locked);
}

int PropertyRows::bottomTwips() const {
    return rows_.empty() ? look_.top : look_.top + (count() - 1) * look_.pitch + look_.rowHeight;
}

// A value shown from the instrument is no commit: the list's own selection notice is held back.
void PropertyRows::show(int index, const Variant& value) {
    showValue(row(index), value);
}

} // namespace vss
