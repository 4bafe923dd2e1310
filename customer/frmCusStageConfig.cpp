#include "customer/frmCusStageConfig.h"

#include "kit/SettingTransfer.h"
#include "kit/modGlobal.h"

namespace vss {
namespace {

constexpr int kFrameWidth = kCustomerFrameWidth;
constexpr int kRowPitch = 360;
constexpr int kFieldLeft = kCustomerFieldLeft;
constexpr int kButtonWidth = 900;
constexpr int kButtonHeight = 375;

} // namespace

userText* newCustomerRow(QWidget* frame, const char* name, int row, const FieldLook& look) {
    const int top = 300 + row * kRowPitch;
    const QByteArray labelName = QByteArray("lbl") + (name + 3); // usrTCSC: lblTCSC
    QLabel* label =
        newLabel(frame, labelName.constData(), look.caption, 120, top + 30, kFieldLeft - 240, 255);
    userText* field = newValueField(frame, name, kFieldLeft, top, 1800, 300, look);
    label->setBuddy(field);
    return field;
}

int frameHeightTwips(int rows) {
    return 300 + rows * kRowPitch + 60;
}

// The stage values are in millimetres at the instrument already.
std::array<userText*, 3> newStageGeometryRows(QWidget* frame, bool locked) {
    const auto geometryRow = [&](const char* name, const char* caption, int row) {
        return newCustomerRow(
            frame, name, row,
            {.caption = QString::fromLatin1(caption), .unit = QStringLiteral("mm"), .locked = locked});
    };
    return {geometryRow("usrTCSC", "Stage Center - Spindle Center", 0),
            geometryRow("usrTCRP", "Stage Center - Reference", 1),
            geometryRow("usrOFST", "Reference - Gap", 2)};
}

frmCusStageConfig::frmCusStageConfig(QWidget* parent) : CommandForm(parent) {
    setWindowTitle(appTitle() + QStringLiteral(" : Stage Configuration"));
    QGroupBox* frame = newFrame(this, "frmStage", QStringLiteral("Stage Configuration"), 120, 60, kFrameWidth,
                                frameHeightTwips(3));
    const std::array<userText*, 3> fields = newStageGeometryRows(frame, false);
    tcsc_ = {fields[0], geometry::Stage2Spindle};
    tcrp_ = {fields[1], geometry::Stage2Ref};
    ofst_ = {fields[2], geometry::StageOffset};
    for (const GeometryField* value : {&tcsc_, &tcrp_, &ofst_})
        connect(value->field, &userText::ChangeValue, this,
                [this, value] { usrGeometry_ChangeValue(*value); });

    const int buttonsTop = 60 + frameHeightTwips(3) + 120;
    const auto button = [&](const char* name, const char* caption, int left) {
        return newButton(this, name, QString::fromLatin1(caption), left, buttonsTop, kButtonWidth,
                         kButtonHeight);
    };
    QPushButton* cmdOK = button("cmdOK", "OK", 120);
    connect(cmdOK, &QPushButton::clicked, this, &Form::accept);
    QPushButton* cmdCancel = button("cmdCancel", "Cancel", 120 + kButtonWidth + 120);
    connect(cmdCancel, &QPushButton::clicked, this, &frmCusStageConfig::cmdCancel_Click);
    QPushButton* cmdImport = button("cmdImport", "Import", 120 + kFrameWidth - 2 * kButtonWidth - 120);
    connect(cmdImport, &QPushButton::clicked, this, &frmCusStageConfig::cmdImport_Click);
    QPushButton* cmdExport = button("cmdExport", "Export", 120 + kFrameWidth - kButtonWidth);
    connect(cmdExport, &QPushButton::clicked, this,
            [this] { exportSettingGroup(*this, SettingGroup::CustomerStageConfiguration); });
    setClientSizeTwips(kFrameWidth + 240, buttonsTop + kButtonHeight + 120);

    // Load: the values as they are now are what "Cancel" restores.
    IDriverService& service = *handles().service;
    for (const GeometryField* value : {&tcsc_, &tcrp_, &ofst_})
        atLoad_[static_cast<std::size_t>(value->index)] = service.GetStageGeometry(value->index);
    RefreshStageAll();
}

void frmCusStageConfig::refresh(const GeometryField& value) {
    value.field->setValue(handles().service->GetStageGeometry(value.index));
}

void frmCusStageConfig::RefreshTCSC() {
    refresh(tcsc_);
}

void frmCusStageConfig::RefreshTCRP() {
    refresh(tcrp_);
}

void frmCusStageConfig::RefreshOFST() {
    refresh(ofst_);
}

void frmCusStageConfig::RefreshStageAll() {
    RefreshTCSC();
    RefreshTCRP();
    RefreshOFST();
}

// An edited value is written and read back, also when the instrument refused it, so that the field shows what
// the instrument holds. A commit that leaves the value as it was read writes nothing.
void frmCusStageConfig::usrGeometry_ChangeValue(const GeometryField& value) {
    if (!value.field->Edited())
        return;
    const double typed = value.field->Value().toDouble();
    writeValue([&] { handles().service->SetStageGeometry(value.index, typed); }, [&] { refresh(value); });
}

// The load-time values go back in index order; a refused one stops the restore there and the page stays open.
void frmCusStageConfig::cmdCancel_Click() {
    command(
        [this] {
            for (std::size_t i = 0; i < atLoad_.size(); ++i)
                handles().service->SetStageGeometry(static_cast<std::int16_t>(i), atLoad_[i]);
        },
        [this] { accept(); });
}

void frmCusStageConfig::cmdImport_Click() {
    if (importSettingGroup(*this, SettingGroup::CustomerStageConfiguration))
        trapErrors([this] { RefreshStageAll(); });
}

} // namespace vss
