#include "factory/frmBacklashCompen.h"

#include "factory/PropertyPage.h"
#include "kit/FormBuild.h"
#include "kit/modGlobal.h"

#include <string>

namespace vss {
namespace {

struct Entry {
    const char* caption;
    const char* hint;
};

constexpr std::array<Entry, frmBacklashCompen::kEntries> kEntryTexts{{
    {"A (ID to outer)", "Used when moving from ID to Outer direction"},
    {"B (ID to inner)", "Used when moving from ID to Innerdirection"},
    {"C (OD to inner)", "Used when moving from OD to Inner direction"},
    {"D (OD to outer)", "Used when moving from OD to Outer direction"},
    {"E (Home to Inner)", "Used when moving from Home to Inner direction"},
}};

} // namespace

frmBacklashCompen::frmBacklashCompen(QWidget* parent, bool viewOnly)
    : SettingsPage(parent, SettingGroup::BacklashCompensation, viewOnly) {
    setWindowTitle(QStringLiteral("Stage Backlash Compensation Data"));
    setClientSizeTwips(9120, 3435);
    QGroupBox* frmBacklashComp = newFrame(
        this, "frmBacklashComp", QStringLiteral("Backlash Compensation Pulse Counts"), 120, 120, 8880, 2100);
    for (int k = 0; k < kEntries; ++k) {
        const int top = 300 + k * 360;
        const std::string name = "usrBacklash_" + std::to_string(k);
        const std::string hint = "lblBacklashHint_" + std::to_string(k);
        usrBacklash_[k] = newProperty(frmBacklashComp, name.c_str(), 120, top, 3600, 300,
                                      {.caption = QString::fromLatin1(kEntryTexts[k].caption)});
        newLabel(frmBacklashComp, hint.c_str(), QString::fromLatin1(kEntryTexts[k].hint), 3840, top + 30,
                 4920, 255);
        connect(usrBacklash_[k], &userProperty::ChangeValue, this, [this, k] { usrBacklash_ChangeValue(k); });
    }
    usrPropBacklashDate_ = newProperty(this, "usrPropBacklashDate", 240, 2340, 5400, 300,
                                       {.caption = QStringLiteral("Last update"), .locked = true});
    usrPropBacklashDate_->setLayoutAuto(false); // room for the date, its editor in line with the values above
    usrPropBacklashDate_->setLabelWidth(1790);

    // Handled by addGroupRow: Save, Recall, Import and Export as on every settings page, Return closes.
    const GroupButtons row = addGroupRow({.top = 2940,
                                          .save = {1200, 975},
                                          .recall = {120, 975},
                                          .importButton = {2280, 975, "cmdImpBacklashDat"},
                                          .exportButton = {3360, 975, "cmdExpBacklashDat"},
                                          .returnButton = {8025, 975}},
                                         [this] { refresh(); });

    // Opening: the date first, then the values from the first entry to the last.
    showValue(usrPropBacklashDate_, handles().service->GetBacklashDate());
    usrPropBacklashDate_->setEnabled(!ViewOnly());
    for (int k = 0; k < kEntries; ++k) {
        showValue(usrBacklash_[k], handles().service->GetBacklashCompensation(static_cast<std::int16_t>(k)));
        usrBacklash_[k]->setEnabled(!ViewOnly());
    }
    applyViewOnly({row.exportButton, row.importButton, row.save, row.recall}, {});
}

// The values from the first entry to the last, then the date.
void frmBacklashCompen::refresh() {
    for (int k = 0; k < kEntries; ++k)
        showValue(usrBacklash_[k], handles().service->GetBacklashCompensation(static_cast<std::int16_t>(k)));
    showValue(usrPropBacklashDate_, handles().service->GetBacklashDate());
}

// Only the entry edited is written; the date shows the instrument's on the next refresh. A written value is
// not read back: once written it is the instrument's. A refused one is, so that the field shows what the
// instrument holds.
void frmBacklashCompen::usrBacklash_ChangeValue(int index) {
    userProperty* field = usrBacklash_[index];
    if (commitIgnored(*this) || !field->Edited())
        return;
    const auto entry = static_cast<std::int16_t>(index);
    writeValue([field, entry] { handles().service->SetBacklashCompensation(entry, int32Of(field->Value())); },
               [field] { showValue(field, field->Value()); },
               [field, entry] { showValue(field, handles().service->GetBacklashCompensation(entry)); });
}

} // namespace vss
