#include "factory/frmFacSpinstand.h"

#include "factory/PropertyPage.h"
#include "factory/frmFacSpinstandSpindle.h"
#include "factory/frmFacSpinstandStage.h"
#include "kit/FormBuild.h"
#include "kit/PropertyRows.h"
#include "kit/modGlobal.h"

#include <QCheckBox>
#include <QComboBox>
#include <stdexcept>
#include <string>

namespace vss {
namespace {

constexpr int kPageWidth = 5640;
constexpr int kFrameWidth = kPageWidth - 240;

// The row has no count of its entries of its own: its list editor is asked.
int listCount(const userProperty& row) {
    const auto* list = row.findChild<const QComboBox*>(QStringLiteral("cmb"));
    return list ? list->count() : 0;
}

// A list row's commit: its value is the selected entry's item data, and the code sent is the item data of the
// entry at the position equal to that value. Where codes equal positions this is the selected code.
std::int32_t codeAtSelectedPosition(const userProperty& row) {
    const Variant selected = row.Value();
    if (selected.type() != Variant::Type::Int16)
        throw std::runtime_error("No entry selected");
    const std::int16_t position = selected.int16();
    if (position < 0 || position >= listCount(row))
        throw std::out_of_range("Invalid list index " + std::to_string(position));
    return row.ItemData(position);
}

PropertySource spindleDriverItems() {
    return {
        .list = [] { return handles().service->GetSpindleDriverItems(); },
        .choices = [](std::int16_t id) { return handles().service->GetSpindleDriverChoices(id); },
        .read = [](std::int16_t id) { return handles().service->GetSpindleDriver(id); },
    };
}

template <class Page> FormFactory pageOf(bool viewOnly) {
    return [viewOnly](QWidget* parent) -> std::unique_ptr<Form> {
        return std::make_unique<Page>(parent, viewOnly);
    };
}

} // namespace

frmFacSpinstand::frmFacSpinstand(QWidget* parent, bool viewOnly)
    : SettingsPage(parent, SettingGroup::Spinstand, viewOnly) {
    setWindowTitle(QStringLiteral("Spinstand Data (Factory use only)"));
    const bool locked = ViewOnly();
    usrSsType_ = newProperty(this, "usrSsType", 120, 120, kFrameWidth, 300,
                             {.caption = QStringLiteral("Spinstand Type"), .locked = locked});
    usrSsType_->setLayoutAuto(false);
    usrSsType_->setLabelWidth(1400);
    connect(usrSsType_, &userProperty::ChangeValue, this, &frmFacSpinstand::usrSsType_ChangeValue);
    usrHeadFace_ = newProperty(this, "usrHeadFace", 120, 480, kFrameWidth, 300,
                               {.caption = QStringLiteral("Head Face"), .locked = locked});
    connect(usrHeadFace_, &userProperty::ChangeValue, this, &frmFacSpinstand::usrHeadFace_ChangeValue);
    usrHeadFace_->AddItem(QStringLiteral("UP"), 0);
    usrHeadFace_->setItemData(0, 0);
    usrHeadFace_->AddItem(QStringLiteral("DOWN"), 1);
    usrHeadFace_->setItemData(1, 1);

    QGroupBox* frmDiskSize =
        newFrame(this, "frmDiskSize", QStringLiteral("Disk Size"), 120, 840, kFrameWidth, 1020);
    const auto radiusRow = [&](const char* name, const QString& caption, int top) {
        userProperty* row =
            newProperty(frmDiskSize, name, 120, top, kFrameWidth - 240, 300,
                        {.caption = caption, .unit = QStringLiteral("mm"), .scale = 0.001, .locked = locked});
        row->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
        connect(row, &userProperty::ChangeValue, this, &frmFacSpinstand::WriteDiskSize);
        return row;
    };
    usrDiskSizeMin_ = radiusRow("usrDiskSizeMin", QStringLiteral("min. radius"), 300);
    usrDiskSizeMax_ = radiusRow("usrDiskSizeMax", QStringLiteral("max. radius"), 660);

    chkSettingUnknown_ = put(new QCheckBox(QStringLiteral("Unknown Setting"), this), "chkSettingUnknown", 240,
                             1980, 3000, 300);
    connect(chkSettingUnknown_, &QCheckBox::clicked, this, &frmFacSpinstand::chkSettingUnknown_Click);
    QGroupBox* frmSpindleDriver =
        newFrame(this, "frmSpindleDriver", QStringLiteral("Spindle Driver"), 120, 2400, kFrameWidth, 600);
    usrProperty_ = new PropertyRows(frmSpindleDriver, "usrProperty", spindleDriverItems(),
                                    {.left = 120, .width = kFrameWidth - 240, .locked = true});

    BuildSpinstandTypeList();
    usrProperty_->build(); // the driver rows are always locked
    const int frameHeight = usrProperty_->bottomTwips() + 180;
    frmSpindleDriver->setGeometry(twipsRect(120, 2400, kFrameWidth, frameHeight));

    const int pagesTop = 2400 + frameHeight + 120;
    QPushButton* cmdSpindle =
        newButton(this, "cmdSpindle", QStringLiteral("Spindle"), 120, pagesTop, 1215, 375);
    connect(cmdSpindle, &QPushButton::clicked, this,
            [this] { openModal(pageOf<frmFacSpinstandSpindle>(ViewOnly())); });
    QPushButton* cmdStage = newButton(this, "cmdStage", QStringLiteral("Stage"), 1440, pagesTop, 1215, 375);
    connect(cmdStage, &QPushButton::clicked, this,
            [this] { openModal(pageOf<frmFacSpinstandStage>(ViewOnly())); });
    const int buttonsTop = pagesTop + 615;
    // Handled by addGroupRow: Save, Recall, Import and Export as on every settings page, Return closes.
    const GroupButtons row = addGroupRow(fullRow(buttonsTop, kPageWidth), [this] { RefreshSpinstandAll(); });
    setClientSizeTwips(kPageWidth, buttonsTop + 495);

    applyViewOnly({cmdStage, row.exportButton, row.importButton, row.save, row.recall, chkSettingUnknown_},
                  {});

    RefreshSpinstandAll();
}

// Entry j shows the j-th name and carries the j-th code.
void frmFacSpinstand::BuildSpinstandTypeList() {
    const NamedCodes types = handles().service->GetSpinstandTypeList();
    for (std::size_t j = 0; j < types.names.size() && j < types.codes.size(); ++j) {
        usrSsType_->AddItem(QString::fromStdString(types.names[j]), static_cast<std::int16_t>(j));
        usrSsType_->setItemData(static_cast<std::int16_t>(j), types.codes[j]);
    }
}

void frmFacSpinstand::RefreshSpinstandAll() {
    RefreshSettingUnknown();
    RefreshSpinstandType();
    RefreshHeadFace();
    RefreshDiskSize();
    usrProperty_->refreshAll();
}

void frmFacSpinstand::RefreshSettingUnknown() {
    chkSettingUnknown_->setChecked(handles().service->GetSettingUnknown());
}

void frmFacSpinstand::RefreshSpinstandType() {
    showValue(usrSsType_, handles().service->GetSpinstandType());
}

// The head face is shown as the list's 16-bit code.
void frmFacSpinstand::RefreshHeadFace() {
    // Any face but the up face (0) is the down face (1), as the setting file writes it.
    const bool downFace = handles().service->GetHeadFace() != 0;
    showValue(usrHeadFace_, static_cast<std::int16_t>(downFace ? 1 : 0));
}

void frmFacSpinstand::RefreshDiskSize() {
    const DoubleRange range = handles().service->GetDiskSizeRange();
    showValue(usrDiskSizeMin_, range.min);
    showValue(usrDiskSizeMax_, range.max);
}

// Each edit is written and read back, also after a refusal; a commit that leaves its row as it was read (the
// entry already selected picked again, a radius tabbed through) writes nothing.
void frmFacSpinstand::usrSsType_ChangeValue() {
    if (commitIgnored(*this) || !usrSsType_->Edited())
        return;
    writeValue(
        [this] {
            handles().service->SetSpinstandType(
                static_cast<std::int16_t>(codeAtSelectedPosition(*usrSsType_)));
        },
        [this] { RefreshSpinstandType(); });
}

void frmFacSpinstand::usrHeadFace_ChangeValue() {
    if (commitIgnored(*this) || !usrHeadFace_->Edited())
        return;
    writeValue([this] { handles().service->SetHeadFace(codeAtSelectedPosition(*usrHeadFace_)); },
               [this] { RefreshHeadFace(); });
}

// Either radius edited sends both, as the rows show them.
void frmFacSpinstand::WriteDiskSize() {
    if (commitIgnored(*this) || !(usrDiskSizeMin_->Edited() || usrDiskSizeMax_->Edited()))
        return;
    writeValue(
        [this] {
            const double min = usrDiskSizeMin_->Value().toDouble();
            const double max = usrDiskSizeMax_->Value().toDouble();
            handles().service->SetDiskSizeRange(min, max);
        },
        [this] { RefreshDiskSize(); });
}

void frmFacSpinstand::chkSettingUnknown_Click(bool checked) {
    writeValue([checked] { handles().service->SetSettingUnknown(checked); },
               [this] { RefreshSettingUnknown(); });
}

} // namespace vss
