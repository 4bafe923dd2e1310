#include "piezo/frmPiezoAdjust.h"

#include "kit/FormBuild.h"
#include "kit/Reads.h"
#include "kit/SettingTransfer.h"
#include "kit/modGlobal.h"

#include <QCheckBox>
#include <algorithm>

namespace vss {
namespace {

constexpr int kRowPitch = 360;
constexpr int kRowHeight = 300;

} // namespace

AdjustRows::AdjustRows(QWidget* frame, int rows, int left, int top, int width)
    : inUse_(static_cast<std::size_t>(rows)) {
    for (int i = 0; i < rows; ++i) {
        const QByteArray name = "usrAdjust_" + QByteArray::number(i);
        rows_.push_back(
            newProperty(frame, name.constData(), left, top + i * kRowPitch, width, kRowHeight, {}));
    }
}

void AdjustRows::setLabels(const NameList& points) {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        const std::int64_t element = static_cast<std::int64_t>(i) - points.lower;
        inUse_[i] = element >= 0 && element < static_cast<std::int64_t>(points.size());
        rows_[i]->setVisible(inUse_[i]);
        if (inUse_[i])
            rows_[i]->setCaption(QString::fromStdString(points.names[static_cast<std::size_t>(element)]));
    }
}

void AdjustRows::refreshAll() {
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (inUse_[i])
            refresh(static_cast<int>(i));
    }
}

void AdjustRows::refresh(int index) {
    const std::int32_t dac = handles().service->GetPiezoAdjust(static_cast<std::int16_t>(index));
    showValue(rows_[static_cast<std::size_t>(index)], Variant(dac));
}

std::optional<std::int32_t> AdjustRows::edited(int index) const {
    const userProperty& row = *rows_[static_cast<std::size_t>(index)];
    const Variant value = row.Value();
    if (value.type() != Variant::Type::Int32 || !row.Edited())
        return std::nullopt;
    return value.int32();
}

void AdjustRows::write(int index, std::int32_t dac) {
    handles().service->SetPiezoAdjust(static_cast<std::int16_t>(index), dac);
}

int AdjustRows::bottomTwips(int rows, int top) {
    return top + (rows - 1) * kRowPitch + kRowHeight;
}

frmPiezoAdjust::frmPiezoAdjust(QWidget* parent) : PollingForm(parent) {
    setWindowTitle(QStringLiteral("Piezo DAC Adjust (Factory use only)"));
    chkPiezoLoop_ =
        put(new QCheckBox(QStringLiteral("Piezo Loop Close"), this), "chkPiezoLoop", 120, 240, 2400, 300);
    connect(chkPiezoLoop_, &QCheckBox::clicked, this, &frmPiezoAdjust::chkPiezoLoop_Click);
    QGroupBox* frmStatus = newFrame(this, "frmStatus", QStringLiteral("Loop Status"), 2640, 60, 2040, 720);
    txtBalanced_ = newTextBox(frmStatus, "txtBalanced", 120, 300, 1800, 300, true);
    txtBalanced_->setText(QStringLiteral("Unbalace"));
    txtBalanced_->setAccessibleName(QStringLiteral("Loop Status"));
    const int frameHeight = AdjustRows::bottomTwips(kAdjustRows, 300) + 180;
    QGroupBox* frmAdjust = newFrame(this, "frmAdjust", QStringLiteral("Adjust"), 120, 900, 4560, frameHeight);
    adjust_.emplace(frmAdjust, kAdjustRows, 120, 300, 4320);
    for (int i = 0; i < kAdjustRows; ++i) {
        connect(adjust_->rows()[static_cast<std::size_t>(i)], &userProperty::ChangeValue, this,
                [this, i] { usrAdjust_ChangeValue(i); });
    }
    const int buttonTop = 900 + frameHeight + 120;
    QPushButton* cmdExport =
        newButton(this, "cmdExport", QStringLiteral("Export"), 120, buttonTop, 1215, 375);
    connect(cmdExport, &QPushButton::clicked, this,
            [this] { exportSettingGroup(*this, SettingGroup::PiezoAdjustData); });
    QPushButton* cmdImport =
        newButton(this, "cmdImport", QStringLiteral("Import"), 1440, buttonTop, 1215, 375);
    connect(cmdImport, &QPushButton::clicked, this, &frmPiezoAdjust::cmdImport_Click);
    QPushButton* cmdReturn =
        newButton(this, "cmdReturn", QStringLiteral("Return"), 3705, buttonTop, 975, 375);
    connect(cmdReturn, &QPushButton::clicked, this, &frmPiezoAdjust::cmdReturn_Click);
    setClientSizeTwips(4800, buttonTop + 495);

    adjust_->setLabels(handles().service->GetPiezoAdjustList());
    refresh();
    startPolling();
}

void frmPiezoAdjust::refresh() {
    adjust_->refreshAll();
    chkPiezoLoop_->setChecked(handles().service->GetPiezoLoop());
}

// The poll does not turn the window busy: the factory edits while the status updates.
void frmPiezoAdjust::onPoll() {
    const bool balanced = readOr([] { return handles().service->GetPiezoBalanced(); }, false);
    showText(txtBalanced_, balanced ? QStringLiteral("Balanced") : QStringLiteral("Unbalance"));
}

// The loop is not read back after it is switched; a refused switch is, so that the box shows the loop as the
// instrument has it.
void frmPiezoAdjust::chkPiezoLoop_Click(bool checked) {
    writeValue([checked] { handles().service->SetPiezoLoop(checked); }, {},
               [this] { chkPiezoLoop_->setChecked(handles().service->GetPiezoLoop()); });
}

void frmPiezoAdjust::usrAdjust_ChangeValue(int index) {
    const std::optional<std::int32_t> dac = adjust_->edited(index);
    if (!dac) // no edit
        return;
    writeValue([this, index, dac] { adjust_->write(index, *dac); },
               [this, index] { adjust_->refresh(index); });
}

void frmPiezoAdjust::cmdImport_Click() {
    if (importSettingGroup(*this, SettingGroup::PiezoAdjustData) && !isUnloaded())
        trapErrors([this] { refresh(); });
}

void frmPiezoAdjust::cmdReturn_Click() {
    stopPolling();
    accept();
}

} // namespace vss
