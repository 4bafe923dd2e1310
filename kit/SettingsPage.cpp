#include "kit/SettingsPage.h"

#include "controls/userProperty.h"
#include "controls/userText.h"
#include "kit/FormBuild.h"
#include "kit/SettingTransfer.h"
#include "kit/modGlobal.h"

#include <QLineEdit>
#include <QPushButton>
#include <algorithm>
#include <stdexcept>
#include <utility>

namespace vss {
namespace {

using GroupOperation = void (IDriverService::*)();

struct GroupMemory {
    GroupOperation save;
    GroupOperation recall;
};

GroupMemory groupMemory(SettingGroup group) {
    switch (group) {
    case SettingGroup::Customer:
        return {&IDriverService::SaveCustomerConfiguration, &IDriverService::RecallCustomerConfiguration};
    case SettingGroup::Spinstand:
        return {&IDriverService::SaveSpinstandConfiguration, &IDriverService::RecallSpinstandConfiguration};
    case SettingGroup::SpindleProperty:
        return {&IDriverService::SaveSpindleProperty, &IDriverService::RecallSpindleProperty};
    case SettingGroup::StageProperty:
        return {&IDriverService::SaveStageProperty, &IDriverService::RecallStageProperty};
    case SettingGroup::PiezoData:
        return {&IDriverService::SavePiezoData, &IDriverService::RecallPiezoData};
    case SettingGroup::BacklashCompensation:
        return {&IDriverService::SaveBacklashCompensation, &IDriverService::RecallBacklashCompensation};
    case SettingGroup::Setting:
    case SettingGroup::CustomerStageConfiguration:
    case SettingGroup::PiezoControlData:
    case SettingGroup::PiezoAdjustData:
    case SettingGroup::PiezoInformation:
        break;
    }
    throw std::logic_error("this setting group has no save and recall of its own");
}

} // namespace

Lockable::Lockable(userText* field) : lock_([field](bool locked) { field->setLocked(locked); }) {}
Lockable::Lockable(userProperty* field) : lock_([field](bool locked) { field->setLocked(locked); }) {}
Lockable::Lockable(QLineEdit* box) : lock_([box](bool locked) { setTextBoxLocked(box, locked); }) {}

void saveGroup(SettingGroup group) {
    (handles().service.get()->*groupMemory(group).save)();
}

void recallGroup(SettingGroup group) {
    (handles().service.get()->*groupMemory(group).recall)();
}

SettingsPage::SettingsPage(QWidget* parent, SettingGroup group, bool viewOnly)
    : CommandForm(parent), group_(group), viewOnly_(viewOnly) {}

void SettingsPage::connectGroupButtons(const GroupButtons& buttons, std::function<void()> refresh) {
    if (buttons.save) {
        groupMemory(group_); // a page of a group without non-volatile memory has no Save button
        connect(buttons.save, &QPushButton::clicked, this,
                [this] { command([this] { saveGroup(group_); }); });
    }
    if (buttons.recall) {
        connect(buttons.recall, &QPushButton::clicked, this,
                [this, refresh] { command([this] { recallGroup(group_); }, refresh); });
    }
    if (buttons.exportButton)
        connect(buttons.exportButton, &QPushButton::clicked, this,
                [this] { exportSettingGroup(*this, group_); });
    if (buttons.importButton) {
        connect(buttons.importButton, &QPushButton::clicked, this, [this, refresh] {
            if (importSettingGroup(*this, group_) && refresh && !isUnloaded())
                trapErrors(refresh);
        });
    }
}

SettingsPage::GroupButtons SettingsPage::addGroupRow(const GroupRow& row, std::function<void()> refresh) {
    struct Place {
        const RowButton* button;
        const char* name;
        const char* caption;
        QPushButton** made;
    };
    GroupButtons made;
    std::vector<Place> places = {{&row.save, "cmdSave", "Save", &made.save},
                                 {&row.recall, "cmdRecall", "Recall", &made.recall},
                                 {&row.importButton, "cmdImport", "Import", &made.importButton},
                                 {&row.exportButton, "cmdExport", "Export", &made.exportButton},
                                 {&row.returnButton, "cmdReturn", "Return", &made.returnButton}};
    std::erase_if(places, [](const Place& place) { return place.button->width == 0; });
    std::stable_sort(places.begin(), places.end(),
                     [](const Place& a, const Place& b) { return a.button->left < b.button->left; });
    for (const Place& place : places) {
        *place.made = newButton(this, place.button->name ? place.button->name : place.name,
                                QString::fromLatin1(place.caption), place.button->left, row.top,
                                place.button->width, 375);
    }
    connectGroupButtons(made, std::move(refresh));
    if (made.returnButton)
        connect(made.returnButton, &QPushButton::clicked, this, &Form::accept);
    return made;
}

void SettingsPage::applyViewOnly(std::initializer_list<QWidget*> enabledWhenEditable,
                                 std::initializer_list<Lockable> lockedWhenViewOnly) {
    for (QWidget* control : enabledWhenEditable)
        control->setEnabled(!viewOnly_);
    for (const Lockable& field : lockedWhenViewOnly)
        field.setLocked(viewOnly_);
}

} // namespace vss
