#include "operation/frmIniSetting.h"

#include "kit/FormBuild.h"
#include "kit/SettingTransfer.h"
#include "kit/modGlobal.h"

#include <QCheckBox>
#include <QComboBox>

namespace vss {
namespace {

constexpr int kRowWidth = 3240;

userProperty* row(QWidget* frame, const char* name, int top, const FieldLook& look) {
    return newProperty(frame, name, 60, top, kRowWidth, 300, look);
}

} // namespace

frmIniSetting::frmIniSetting(QWidget* parent) : CommandForm(parent) {
    setWindowTitle(appTitle() + QStringLiteral(" : Settings"));
    setClientSizeTwips(7560, 5835);
    build();
    FillLoadMethodList();
    refreshAll();
}

void frmIniSetting::build() {
    QGroupBox* frmLoadMethod =
        newFrame(this, "frmLoadMethod", QStringLiteral("Load Method"), 120, 60, 3600, 700);
    cmbLoadMethod_ = put(new QComboBox(frmLoadMethod), "cmbLoadMethod", 120, 280, 3360, 315);
    connect(cmbLoadMethod_, &QComboBox::activated, this, &frmIniSetting::cmbLoadMethod_Click);

    QGroupBox* frmLoadPosition =
        newFrame(this, "frmLoadPosition", QStringLiteral("Load/Unload Position"), 120, 840, 3600, 2580);
    const FieldLook radius{.caption = QStringLiteral("Radius"), .unit = "mm", .scale = 0.001};
    const FieldLook skew{.caption = QStringLiteral("Skew"), .unit = "deg", .locked = true};
    QGroupBox* frmLoad = newFrame(frmLoadPosition, "frmLoad", QStringLiteral("Load"), 60, 240, 3480, 900);
    usrLoadRadius_ = newProperty(frmLoad, "usrLoadRadius", 60, 240, 3360, 300, radius);
    usrLoadSkew_ = newProperty(frmLoad, "usrLoadSkew", 60, 580, 3360, 300, skew);
    QGroupBox* frmUnload =
        newFrame(frmLoadPosition, "frmUnload", QStringLiteral("Unload"), 60, 1200, 3480, 900);
    usrUnloadRadius_ = newProperty(frmUnload, "usrUnloadRadius", 60, 240, 3360, 300, radius);
    usrUnloadSkew_ = newProperty(frmUnload, "usrUnloadSkew", 60, 580, 3360, 300, skew);
    QPushButton* cmdLoadPosition =
        newButton(frmLoadPosition, "cmdLoadPosition", QStringLiteral("Set"), 1260, 2160, 1095, 315);
    connect(cmdLoadPosition, &QPushButton::clicked, this, &frmIniSetting::cmdLoadPosition_Click);
    QPushButton* cmdLoadPositionReset =
        newButton(frmLoadPosition, "cmdLoadPositionReset", QStringLiteral("Reset"), 2400, 2160, 1095, 315);
    connect(cmdLoadPositionReset, &QPushButton::clicked, this,
            [this] { command([this] { RefreshLoadPosition(); }); });

    QGroupBox* frmDataArea = newFrame(this, "frmDataArea", QStringLiteral("Data Area"), 3840, 60, 3600, 2160);
    // The outer radius follows every committed edit of the data area at once, before anything is sent.
    usrInnerRadius_ = row(frmDataArea, "usrInnerRadius", 300,
                          {.caption = QStringLiteral("Inner Radius"), .unit = "mm", .scale = 0.001});
    connect(usrInnerRadius_, &userProperty::ChangeValue, this, &frmIniSetting::UpdateOuterRadius);
    usrMaxTrack_ =
        row(frmDataArea, "usrMaxTrack", 660, {.caption = QStringLiteral("Max Track #"), .unit = " "});
    connect(usrMaxTrack_, &userProperty::ChangeValue, this, &frmIniSetting::UpdateOuterRadius);
    usrPitch_ = row(frmDataArea, "usrPitch", 1020,
                    {.caption = QStringLiteral("Track Pitch"), .unit = "um", .scale = 0.000001});
    connect(usrPitch_, &userProperty::ChangeValue, this, &frmIniSetting::UpdateOuterRadius);
    usrOuterRadius_ =
        row(frmDataArea, "usrOuterRadius", 1380,
            {.caption = QStringLiteral("Outer Radius"), .unit = "mm", .scale = 0.001, .locked = true});
    QPushButton* cmdDataArea =
        newButton(frmDataArea, "cmdDataArea", QStringLiteral("Set"), 1260, 1740, 1095, 315);
    connect(cmdDataArea, &QPushButton::clicked, this, &frmIniSetting::cmdDataArea_Click);
    QPushButton* cmdDataAreaReset =
        newButton(frmDataArea, "cmdDataAreaReset", QStringLiteral("Reset"), 2400, 1740, 1095, 315);
    connect(cmdDataAreaReset, &QPushButton::clicked, this,
            [this] { command([this] { RefreshDataArea(); }); });

    QGroupBox* frmRestriction = newFrame(this, "frmDiskSizeRestriction",
                                         QStringLiteral("DiskSizeRestriction"), 3840, 2280, 3600, 640);
    chkDiskSizeRestrictionOn_ = put(new QCheckBox(QStringLiteral("Restriction OFF"), frmRestriction),
                                    "chkDiskSizeRestrictionOn", 120, 260, 3360, 300);
    connect(chkDiskSizeRestrictionOn_, &QCheckBox::clicked, this,
            &frmIniSetting::chkDiskSizeRestrictionOn_Click);

    QGroupBox* frmDiskSize =
        newFrame(this, "frmDiskSize", QStringLiteral("Disk Size"), 3840, 3000, 3600, 1040);
    const FieldLook diskSize{.unit = "mm", .scale = 0.001, .locked = true};
    newLabel(frmDiskSize, "lblDiskSizeMin", QStringLiteral("Min"), 120, 310, 1500, 255);
    usrDiskSizeMin_ = newValueField(frmDiskSize, "usrDiskSizeMin", 1680, 280, 1800, 300, diskSize);
    newLabel(frmDiskSize, "lblDiskSizeMax", QStringLiteral("Max"), 120, 670, 1500, 255);
    usrDiskSizeMax_ = newValueField(frmDiskSize, "usrDiskSizeMax", 1680, 640, 1800, 300, diskSize);

    QGroupBox* frmMisc = newFrame(this, "frmMisc", QStringLiteral("Misc"), 120, 3480, 3600, 1760);
    newLabel(frmMisc, "lblSpindle", QStringLiteral("Spindle Direction"), 120, 310, 1800, 255);
    txtSpindle_ = newTextBox(frmMisc, "txtSpindle", 1980, 280, 1500, 300, true);
    newLabel(frmMisc, "lblFace", QStringLiteral("Face"), 120, 670, 1800, 255);
    txtFace_ = newTextBox(frmMisc, "txtFace", 1980, 640, 1500, 300, true);
    newLabel(frmMisc, "lblIndexPolarity", QStringLiteral("Index Polarity"), 120, 1030, 1800, 255);
    txtIndexPolarity_ = newTextBox(frmMisc, "txtIndexPolarity", 1980, 1000, 1500, 300, true);
    newLabel(frmMisc, "lblFinePositionLimit", QStringLiteral("Fine Position Limit"), 120, 1390, 1800, 255);
    usrFinePositionLimit_ = newValueField(frmMisc, "usrFinePositionLimit", 1980, 1360, 1500, 300,
                                          {.unit = "um", .scale = 0.000001, .locked = true});

    QPushButton* cmdExport = newButton(this, "cmdExport", QStringLiteral("Export"), 120, 5340, 1215, 375);
    connect(cmdExport, &QPushButton::clicked, this,
            [this] { exportSettingGroup(*this, SettingGroup::Setting); });
    QPushButton* cmdImport = newButton(this, "cmdImport", QStringLiteral("Import"), 1440, 5340, 1215, 375);
    connect(cmdImport, &QPushButton::clicked, this, &frmIniSetting::cmdImport_Click);
    QPushButton* cmdReturn = newButton(this, "cmdReturn", QStringLiteral("Return"), 6465, 5340, 975, 375);
    connect(cmdReturn, &QPushButton::clicked, this, &Form::accept);
}

void frmIniSetting::FillLoadMethodList() {
    const NamedCodes methods = handles().driver->GetLoadMethodList();
    for (std::size_t i = 0; i < methods.names.size() && i < methods.codes.size(); ++i)
        cmbLoadMethod_->addItem(QString::fromStdString(methods.names[i]), static_cast<int>(methods.codes[i]));
}

void frmIniSetting::refreshAll() {
    RefreshDataArea();
    RefreshMisc();
    RefreshLoadPosition();
    RefreshLoadMethod();
}

void frmIniSetting::RefreshDataArea() {
    const DataArea area = handles().driver->GetDataArea();
    usrInnerRadius_->setValue(area.innerRadius);
    usrMaxTrack_->setValue(area.maxTrack);
    usrPitch_->setValue(area.pitch);
    UpdateOuterRadius();
}

void frmIniSetting::UpdateOuterRadius() {
    const double inner = usrInnerRadius_->Value().toDouble();
    const double maxTrack = usrMaxTrack_->Value().toDouble();
    const double pitch = usrPitch_->Value().toDouble();
    usrOuterRadius_->setValue(inner + maxTrack * pitch);
}

void frmIniSetting::RefreshMisc() {
    const DriverHandles& h = handles();
    txtFace_->setText(h.headFace->GetFace() == 1 ? QStringLiteral("DOWN") : QStringLiteral("UP"));
    txtSpindle_->setText(h.spindle->GetRotation() == 1 ? QStringLiteral("CCW") : QStringLiteral("CW"));
    txtIndexPolarity_->setText(h.index->GetIndexPolarity() ? QStringLiteral("Rising")
                                                           : QStringLiteral("Falling"));
    usrFinePositionLimit_->setValue(h.driver->GetFinePositionLimit());
    const DoubleRange limit = h.driver->GetDiskSizeLimit();
    usrDiskSizeMin_->setValue(limit.min);
    usrDiskSizeMax_->setValue(limit.max);
}

void frmIniSetting::RefreshLoadPosition() {
    IDriverLoadPosition& positions = *handles().loadPosition;
    const PositionRecord load = positions.GetLoadPosition(loadposition::Load).position;
    usrLoadRadius_->setValue(load.radius);
    usrLoadSkew_->setValue(load.skew);
    const PositionRecord unload = positions.GetLoadPosition(loadposition::Unload).position;
    usrUnloadRadius_->setValue(unload.radius);
    usrUnloadSkew_->setValue(unload.skew);
    showRestriction();
}

// The box is checked while the restriction is off.
void frmIniSetting::showRestriction() {
    chkDiskSizeRestrictionOn_->setChecked(!handles().diskSize->GetDiskSizeRestriction());
}

void frmIniSetting::RefreshLoadMethod() {
    loadMethod_ = handles().driver->GetLoadMethod();
    cmbLoadMethod_->setCurrentIndex(cmbLoadMethod_->findData(static_cast<int>(*loadMethod_)));
}

// Every write below is read back also when the instrument refused it, so that no field goes on showing a
// refused value.

// Picking the entry of the method the instrument has writes nothing.
void frmIniSetting::cmbLoadMethod_Click(int index) {
    const auto method = static_cast<std::int16_t>(cmbLoadMethod_->itemData(index).toInt());
    if (method == loadMethod_)
        return;
    writeValue([method] { handles().driver->SetLoadMethod(method); }, [this] { RefreshLoadMethod(); });
}

// Only the radii are sent: the skew is left to the instrument and so is the spindle speed (-1).
void frmIniSetting::cmdLoadPosition_Click() {
    const double load = usrLoadRadius_->Value().toDouble();
    const double unload = usrUnloadRadius_->Value().toDouble();
    writeValue(
        [load, unload] {
            IDriverLoadPosition& positions = *handles().loadPosition;
            positions.SetLoadPosition(loadposition::Load, {load, kNoSkew}, -1);
            positions.SetLoadPosition(loadposition::Unload, {unload, kNoSkew}, -1);
        },
        [this] { RefreshLoadPosition(); });
}

void frmIniSetting::cmdDataArea_Click() {
    const double inner = usrInnerRadius_->Value().toDouble();
    const auto maxTrack = static_cast<std::int32_t>(usrMaxTrack_->Value().toDouble());
    const double pitch = usrPitch_->Value().toDouble();
    writeValue([=] { handles().driver->SetDataArea(inner, maxTrack, pitch); }, [this] { RefreshDataArea(); });
}

// Checked means the restriction is off. It is not read back after it is written; a refused one is.
void frmIniSetting::chkDiskSizeRestrictionOn_Click(bool checked) {
    writeValue([checked] { handles().diskSize->SetDiskSizeRestriction(!checked); }, {},
               [this] { showRestriction(); });
}

void frmIniSetting::cmdImport_Click() {
    if (importSettingGroup(*this, SettingGroup::Setting))
        trapErrors([this] { refreshAll(); });
}

} // namespace vss
