#include "piezo/frmFacPiezoControl.h"

#include "kit/FormBuild.h"
#include "kit/modGlobal.h"

#include <algorithm>
#include <vector>

namespace vss {
namespace {

struct Quantity {
    const char* name;
    const char* label;
    const char* field;
    const char* unit;
    std::vector<double> PiezoControlData::*rows;
};

constexpr Quantity kControlQuantities[ControlDataFields::kQuantities] = {
    {"Lth", "lblCtrlLth", "usrCtrlLth", "m", &PiezoControlData::lth},
    {"Ta", "lblCtrlTa", "usrCtrlTa", "s", &PiezoControlData::ta},
    {"Ks", "lblCtrlKs", "usrCtrlKs", "m/s", &PiezoControlData::ks},
    {"Lstep", "lblCtrlLstep", "usrCtrlLstep", "m", &PiezoControlData::lstep},
    {"Tstep", "lblCtrlTstep", "usrCtrlTstep", "s", &PiezoControlData::tstep},
};

// The grid inside its frame, twips.
constexpr int kRowLabelLeft = 120;
constexpr int kFirstColumn = 480;
constexpr int kColumnPitch = 1620;
constexpr int kFieldWidth = 1560;
constexpr int kLabelTop = 270;
constexpr int kFirstRowTop = 570;
constexpr int kRowPitch = 360;
constexpr int kRowHeight = 300;

QByteArray indexedName(const char* name, int index) {
    return QByteArray(name) + '_' + QByteArray::number(index);
}

} // namespace

ControlDataFields::ControlDataFields(QWidget* frame, bool locked) {
    for (int q = 0; q < kQuantities; ++q) {
        const Quantity& quantity = kControlQuantities[q];
        newLabel(frame, quantity.label, QString::fromLatin1(quantity.name), kFirstColumn + q * kColumnPitch,
                 kLabelTop, kFieldWidth, 255);
    }
    for (int r = 0; r < kRows; ++r) {
        const int top = kFirstRowTop + r * kRowPitch;
        newLabel(frame, indexedName("lbl", r).constData(), QString::number(r), kRowLabelLeft, top + 30, 300,
                 255);
        for (int q = 0; q < kQuantities; ++q) {
            const Quantity& quantity = kControlQuantities[q];
            const FieldLook look{.caption =
                                     QStringLiteral("%1 %2").arg(QString::fromLatin1(quantity.name)).arg(r),
                                 .unit = QString::fromLatin1(quantity.unit),
                                 .locked = locked};
            fields_[static_cast<std::size_t>(r)][static_cast<std::size_t>(q)] =
                newValueField(frame, indexedName(quantity.field, r).constData(),
                              kFirstColumn + q * kColumnPitch, top, kFieldWidth, kRowHeight, look);
        }
    }
}

int ControlDataFields::bottomTwips() {
    return kFirstRowTop + (kRows - 1) * kRowPitch + kRowHeight;
}

void ControlDataFields::show(const PiezoControlData& data) {
    for (int q = 0; q < kQuantities; ++q) {
        const std::vector<double>& rows = data.*kControlQuantities[q].rows;
        for (int r = 0; r < kRows; ++r) {
            const auto row = static_cast<std::size_t>(r);
            field(q, r)->setValue(row < rows.size() ? Variant(rows[row]) : Variant::null());
        }
    }
}

PiezoControlData ControlDataFields::edited(PiezoControlData read) const {
    for (int q = 0; q < kQuantities; ++q) {
        std::vector<double>& rows = read.*kControlQuantities[q].rows;
        for (int r = 0; r < kRows && static_cast<std::size_t>(r) < rows.size(); ++r) {
            const Variant value = field(q, r)->Value();
            if (value.type() == Variant::Type::Double)
                rows[static_cast<std::size_t>(r)] = value.dbl();
        }
    }
    return read;
}

bool ControlDataFields::anyEdited() const {
    return std::any_of(fields_.begin(), fields_.end(), [](const auto& row) {
        return std::any_of(row.begin(), row.end(), [](const userText* f) { return f->Edited(); });
    });
}

frmFacPiezoControl::frmFacPiezoControl(QWidget* parent)
    : SettingsPage(parent, SettingGroup::PiezoControlData, false) {
    setWindowTitle(QStringLiteral("Piezo Control Data (Factory use only)"));
    const int frameHeight = ControlDataFields::bottomTwips() + 180;
    setClientSizeTwips(8760, frameHeight + 780);

    QGroupBox* frmControlData =
        newFrame(this, "frmControlData", QStringLiteral("Control Data"), 120, 120, 8520, frameHeight);
    fields_ = std::make_unique<ControlDataFields>(frmControlData, false);
    for (int r = 0; r < ControlDataFields::kRows; ++r) {
        for (int q = 0; q < ControlDataFields::kQuantities; ++q)
            connect(fields_->field(q, r), &userText::ChangeValue, this,
                    &frmFacPiezoControl::field_ChangeValue);
    }
    const int buttonTop = frameHeight + 240;
    QPushButton* cmdOK = newButton(this, "cmdOK", QStringLiteral("OK"), 120, buttonTop, 1215, 375);
    connect(cmdOK, &QPushButton::clicked, this, &Form::accept);
    QPushButton* cmdCancel =
        newButton(this, "cmdCancel", QStringLiteral("Cancel"), 1440, buttonTop, 1215, 375);
    connect(cmdCancel, &QPushButton::clicked, this, &frmFacPiezoControl::cmdCancel_Click);
    // Export and Import are the page's group buttons, connected together right after both.
    QPushButton* cmdExport =
        newButton(this, "cmdExport", QStringLiteral("Export"), 6105, buttonTop, 1215, 375);
    QPushButton* cmdImport =
        newButton(this, "cmdImport", QStringLiteral("Import"), 7425, buttonTop, 1215, 375);
    connectGroupButtons({.exportButton = cmdExport, .importButton = cmdImport}, [this] { refresh(); });

    fields_->field(0, 1)->hide(); // Lth and Tstep have row 0 only
    fields_->field(4, 1)->hide();

    restore_ = handles().service->GetPiezoControlData();
    refresh();
}

frmFacPiezoControl::~frmFacPiezoControl() = default;

void frmFacPiezoControl::refresh() {
    shown_ = handles().service->GetPiezoControlData();
    fields_->show(shown_);
}

// The whole set is written, the hidden rows with what was read, and read back also when the instrument
// refused it. A commit that leaves every field as it was read (the keyboard passing through) writes nothing.
void frmFacPiezoControl::field_ChangeValue() {
    if (!fields_->anyEdited())
        return;
    const PiezoControlData edited = fields_->edited(shown_);
    writeValue([&edited] { handles().service->SetPiezoControlData(edited); }, [this] { refresh(); });
}

void frmFacPiezoControl::cmdCancel_Click() {
    if (runBusy([this] { handles().service->SetPiezoControlData(restore_); }))
        reject();
}

} // namespace vss
