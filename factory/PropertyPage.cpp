#include "factory/PropertyPage.h"

#include "kit/FormBuild.h"
#include "kit/modGlobal.h"

#include <cmath>
#include <limits>
#include <stdexcept>

namespace vss {

std::int32_t int32Of(const Variant& value) {
    if (value.type() == Variant::Type::Int32)
        return value.int32();
    const double rounded = std::round(value.toDouble());
    if (!(rounded >= std::numeric_limits<std::int32_t>::min() &&
          rounded <= std::numeric_limits<std::int32_t>::max()))
        throw std::out_of_range("Overflow");
    return static_cast<std::int32_t>(rounded);
}

PropertyPage::PropertyPage(QWidget* parent, SettingGroup group, bool viewOnly, Family family)
    : SettingsPage(parent, group, viewOnly), family_(family) {}

QGroupBox* PropertyPage::buildPropertyFrame(const char* name, const QString& caption, std::int16_t digits) {
    QGroupBox* frame = newFrame(this, name, caption, 120, 120, kFrameWidth, 600);
    const Family f = family_;
    PropertySource source{
        .list = [f] { return (handles().service.get()->*f.list)(); },
        .choices = [f](std::int16_t id) { return (handles().service.get()->*f.choices)(id); },
        .read = [f](std::int16_t id) { return (handles().service.get()->*f.read)(id); },
    };
    rows_ =
        new PropertyRows(frame, "usrProperty", std::move(source),
                         {.left = 120, .width = kFrameWidth - 240, .digits = digits, .locked = ViewOnly()});
    rows_->build();
    connect(rows_, &PropertyRows::rowChanged, this, &PropertyPage::usrProperty_ChangeValue);
    return frame;
}

void PropertyPage::addGroupButtons(int top, std::function<void()> refresh) {
    // Handled by addGroupRow: Save, Recall, Import and Export as on every settings page, Return closes.
    const GroupButtons row = addGroupRow(fullRow(top, kPageWidth), std::move(refresh));
    applyViewOnly({row.importButton, row.save, row.recall}, {});
    setClientSizeTwips(kPageWidth, top + 495);
}

// An edited row's value goes out with the type it has; the row then shows what the instrument kept, also
// after a refusal. A commit that leaves the row as it was read writes nothing.
void PropertyPage::usrProperty_ChangeValue(int index) {
    if (!isBusy() &&
        ViewOnly()) // a check box is never locked: a click on it shows the instrument's value again
        trapErrors([this, index] { rows_->refreshRow(index); });
    if (commitIgnored(*this) || !rows_->row(index)->Edited())
        return;
    const std::int16_t id = rows_->id(index);
    const Variant value = rows_->value(index);
    const Family f = family_;
    const auto refresh = [this, index] { rows_->refreshRow(index); };
    writeValue(rows_->row(index), [f, id, value] { (handles().service.get()->*f.write)(id, value); }, refresh,
               refresh);
}

} // namespace vss
