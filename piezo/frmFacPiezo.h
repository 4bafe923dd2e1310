#pragma once

// The factory piezo data window: the actuator's serial number, its calibration (voltage and position range
// and the coefficients), the DAC adjust values and, read-only, the control data that "Advanced" edits. Every
// edit is written to the instrument at once and read back; the calibration is always written as a whole set.
// Save and Recall store and reload the piezo data in the instrument's non-volatile memory.
//
// The instrument's lists decide how many coefficient and adjust rows are in use: rows beyond a list are
// hidden, and entries beyond the rows are not shown. A calibration edit sends as many coefficients as the
// instrument last gave, the ones without a row as they were read.

#include "driver/Types.h"
#include "kit/SettingsPage.h"

#include <array>
#include <memory>
#include <optional>

namespace vss {

class AdjustRows;
class ControlDataFields;
class userProperty;
class userText;

class frmFacPiezo : public SettingsPage {
    Q_OBJECT

public:
    static constexpr int kCoefRows = 5;
    static constexpr int kAdjustRows = 6;

    explicit frmFacPiezo(QWidget* parent = nullptr);
    ~frmFacPiezo() override;

private:
    void build();
    void setLabels();
    void refreshAll();
    void refreshCalibration();
    void refreshControlData();
    std::optional<PiezoCalCoef> typedCalibration() const;

    void usrPiezoSerial_ChangeValue();
    void usrAdjust_ChangeValue(int index);
    void calibration_ChangeValue();
    void cmdAdvanced_Click();

    userProperty* usrPiezoSerial_ = nullptr;
    userText* usrVmin_ = nullptr;
    userText* usrVmax_ = nullptr;
    userText* usrXmin_ = nullptr;
    userText* usrXmax_ = nullptr;
    std::array<userProperty*, kCoefRows> usrCalCoef_{};
    std::unique_ptr<AdjustRows> adjust_;
    std::unique_ptr<ControlDataFields> control_;
    // The calibration as last read: the coefficients beyond the rows are written back as they were read.
    PiezoCalCoef calRead_;
};

} // namespace vss
