#include "piezo/frmFacPiezo.h"

#include "kit/FormBuild.h"
#include "kit/modGlobal.h"
#include "piezo/frmFacPiezoControl.h"
#include "piezo/frmPiezoAdjust.h"

#include <algorithm>

namespace vss {
namespace {

constexpr int kRowPitch = 360;

// A number committed in a field, when it holds one.
std::optional<double> typedNumber(const Variant& value) {
    if (value.type() != Variant::Type::Double)
        return std::nullopt;
    return value.dbl();
}

} // namespace

frmFacPiezo::frmFacPiezo(QWidget* parent) : SettingsPage(parent, SettingGroup::PiezoData, false) {
    setWindowTitle(QStringLiteral("Piezo Data (Factory use only)"));
    build();
    setLabels();
    refreshAll();
}

frmFacPiezo::~frmFacPiezo() = default;

void frmFacPiezo::build() {
    usrPiezoSerial_ =
        newProperty(this, "usrPiezoSerial", 120, 120, 4320, 300, {.caption = QStringLiteral("Piezo Serial")});
    connect(usrPiezoSerial_, &userProperty::ChangeValue, this, &frmFacPiezo::usrPiezoSerial_ChangeValue);

    const int coefFrameHeight = 300 + kCoefRows * kRowPitch + 120;
    const int calFrameHeight = 1800 + coefFrameHeight + 120;
    QGroupBox* frmCal = newFrame(this, "frmCalibarationData", QStringLiteral("Calibration Data"), 120, 540,
                                 4320, calFrameHeight);
    // Every field of the calibration, the range and the coefficients, is handled by calibration_ChangeValue.
    const auto range = [this, frmCal](const char* label, const char* name, const char* caption, int top,
                                      const char* unit) {
        QLabel* lbl = newLabel(frmCal, label, QString::fromLatin1(caption), 120, top + 30, 900, 255);
        userText* field =
            newValueField(frmCal, name, 1080, top, 3120, 300, {.unit = QString::fromLatin1(unit)});
        connect(field, &userText::ChangeValue, this, &frmFacPiezo::calibration_ChangeValue);
        lbl->setBuddy(field);
        return field;
    };
    usrVmin_ = range("lblVmin", "usrVmin", "Vmin", 300, "V");
    usrVmax_ = range("lblVmax", "usrVmax", "Vmax", 660, "V");
    usrXmin_ = range("lblXmin", "usrXmin", "Xmin", 1020, "m");
    usrXmax_ = range("lblXmax", "usrXmax", "Xmax", 1380, "m");
    QGroupBox* frmCalCoef =
        newFrame(frmCal, "frmCalCoef", QStringLiteral("Coefficients"), 60, 1800, 4200, coefFrameHeight);
    for (int i = 0; i < kCoefRows; ++i) {
        const QByteArray name = "usrCalCoef_" + QByteArray::number(i);
        usrCalCoef_[static_cast<std::size_t>(i)] =
            newProperty(frmCalCoef, name.constData(), 120, 300 + i * kRowPitch, 3960, 300, {});
        connect(usrCalCoef_[static_cast<std::size_t>(i)], &userProperty::ChangeValue, this,
                &frmFacPiezo::calibration_ChangeValue);
    }

    const int adjustFrameHeight = AdjustRows::bottomTwips(kAdjustRows, 300) + 180;
    QGroupBox* frmAdjust =
        newFrame(this, "frmAdjust", QStringLiteral("Adjust"), 4560, 540, 4320, adjustFrameHeight);
    adjust_ = std::make_unique<AdjustRows>(frmAdjust, kAdjustRows, 120, 300, 4080);
    for (int i = 0; i < kAdjustRows; ++i) {
        connect(adjust_->rows()[static_cast<std::size_t>(i)], &userProperty::ChangeValue, this,
                [this, i] { usrAdjust_ChangeValue(i); });
    }

    const int controlTop = 540 + calFrameHeight + 120;
    const int controlFrameHeight = ControlDataFields::bottomTwips() + 600;
    QGroupBox* frmControlData = newFrame(this, "frmControlData", QStringLiteral("Control Data"), 120,
                                         controlTop, 8760, controlFrameHeight);
    control_ = std::make_unique<ControlDataFields>(frmControlData, true);
    QPushButton* cmdAdvanced = newButton(frmControlData, "cmdAdvanced", QStringLiteral("Advanced"), 7425,
                                         ControlDataFields::bottomTwips() + 120, 1215, 375);
    connect(cmdAdvanced, &QPushButton::clicked, this, &frmFacPiezo::cmdAdvanced_Click);

    const int buttonTop = controlTop + controlFrameHeight + 180;
    addGroupRow({.top = buttonTop,
                 .save = {120, 1215},
                 .recall = {1440, 1215},
                 .importButton = {4080, 1215},
                 .exportButton = {2760, 1215},
                 .returnButton = {7905, 975}},
                [this] { refreshAll(); });
    setClientSizeTwips(9000, buttonTop + 495);
}

void frmFacPiezo::setLabels() {
    // The coefficients pair with their names by position: the calibration array is numbered from 0.
    const std::vector<std::string> names = handles().service->GetPiezoCalCoefNames().names;
    for (std::size_t i = 0; i < usrCalCoef_.size(); ++i)
        usrCalCoef_[i]->setCaption(i < names.size() ? QString::fromStdString(names[i]) : QString());
    adjust_->setLabels(handles().service->GetPiezoAdjustList());
}

void frmFacPiezo::refreshAll() {
    showValue(usrPiezoSerial_, Variant(handles().service->GetPiezoSerial()));
    adjust_->refreshAll();
    refreshCalibration();
    refreshControlData();
}

// The rows in use follow the coefficients the instrument gives.
void frmFacPiezo::refreshCalibration() {
    const PiezoCalCoef cal = handles().service->GetPiezoCalCoef();
    usrVmin_->setValue(cal.vmin);
    usrVmax_->setValue(cal.vmax);
    usrXmin_->setValue(cal.xmin);
    usrXmax_->setValue(cal.xmax);
    calRead_ = cal;
    for (std::size_t i = 0; i < usrCalCoef_.size(); ++i) {
        usrCalCoef_[i]->setVisible(i < cal.coef.size());
        if (i < cal.coef.size())
            showValue(usrCalCoef_[i], Variant(cal.coef[i]));
    }
}

void frmFacPiezo::refreshControlData() {
    control_->show(handles().service->GetPiezoControlData());
}

// The calibration as the fields hold it, the coefficients without a row as read; nothing when a field holds
// no number (it was never read).
std::optional<PiezoCalCoef> frmFacPiezo::typedCalibration() const {
    PiezoCalCoef cal;
    const std::optional<double> range[] = {typedNumber(usrVmin_->Value()), typedNumber(usrVmax_->Value()),
                                           typedNumber(usrXmin_->Value()), typedNumber(usrXmax_->Value())};
    if (!std::all_of(std::begin(range), std::end(range), [](const auto& v) { return v.has_value(); }))
        return std::nullopt;
    cal.vmin = *range[0];
    cal.vmax = *range[1];
    cal.xmin = *range[2];
    cal.xmax = *range[3];
    cal.coef = calRead_.coef;
    for (std::size_t i = 0; i < cal.coef.size() && i < usrCalCoef_.size(); ++i) {
        const std::optional<double> typed = typedNumber(usrCalCoef_[i]->Value());
        if (!typed)
            return std::nullopt;
        cal.coef[i] = *typed;
    }
    return cal;
}

// Every edit below is written only when a field holds a value other than the one read, and read back also
// when the instrument refused it.
void frmFacPiezo::usrPiezoSerial_ChangeValue() {
    const Variant serial = usrPiezoSerial_->Value();
    if (serial.type() != Variant::Type::Text || !usrPiezoSerial_->Edited())
        return;
    // The serial is not read back after it is written: once written, the text shown is the instrument's.
    writeValue([&serial] { handles().service->SetPiezoSerial(serial.text()); },
               [this, &serial] { showValue(usrPiezoSerial_, serial); },
               [this] { showValue(usrPiezoSerial_, Variant(handles().service->GetPiezoSerial())); });
}

void frmFacPiezo::usrAdjust_ChangeValue(int index) {
    const std::optional<std::int32_t> dac = adjust_->edited(index);
    if (!dac)
        return;
    writeValue([this, index, dac] { adjust_->write(index, *dac); },
               [this, index] { adjust_->refresh(index); });
}

// Any field of the calibration writes the whole set in one call.
void frmFacPiezo::calibration_ChangeValue() {
    const std::optional<PiezoCalCoef> cal = typedCalibration();
    const auto edited = [](const auto* field) { return field->Edited(); };
    if (!cal || !(edited(usrVmin_) || edited(usrVmax_) || edited(usrXmin_) || edited(usrXmax_) ||
                  std::any_of(usrCalCoef_.begin(), usrCalCoef_.end(), edited)))
        return;
    writeValue([&cal] { handles().service->SetPiezoCalCoef(*cal); }, [this] { refreshCalibration(); });
}

void frmFacPiezo::cmdAdvanced_Click() {
    if (openModal([](QWidget* parent) { return std::make_unique<frmFacPiezoControl>(parent); }))
        trapErrors([this] { refreshControlData(); });
}

} // namespace vss
