#pragma once

// The operation panel: the instrument's state, spindle, clamp, head loader, head position and inputs, and the
// commands of an operation check. Every command runs in the busy bracket, and the panel's own
// EnableAllControls refreshes the status afterwards, so the position buttons follow the state after every
// command, also one that failed. A 200 ms timer watches the interlock and the inputs; an interlock closes the
// panel, and any window opened from it, after one message. The direct spindle and head-loader controls lie
// below the panel's normal height and are revealed by a right click with Shift and Ctrl held on the
// background.

#include "kit/PollingForm.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>

class QComboBox;
class QGroupBox;
class QLineEdit;
class QPushButton;

namespace vss {

class userProperty;
class userText;

class frmIni : public PollingForm {
    Q_OBJECT

public:
    // Outer heights (title bar included) with the direct controls hidden and shown.
    static constexpr int kHeightTwips = 4450;
    static constexpr int kTallHeightTwips = 5760;

    // Loads the panel: lays it out, reads everything from the instrument and starts polling. A failing read
    // throws to the opener, which reports it.
    explicit frmIni(QWidget* parent = nullptr);

    bool directControlsShown() const;
    void setDirectControlsShown(bool shown);

    // Runs RefreshStatus after enabling; a failing read is reported.
    void EnableAllControls() override;

    // One tick of the polling timer.
    void tmrUpdate_Timer() { pollOnce(); }

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void onUnload() override;
    void onPoll() override;

private:
    void build();

    // Shows a neighbouring window modally, then reads everything again.
    void openNeighbour(const FormFactory& make);

    void refreshAll();
    void refreshStatus();
    void RefreshState();
    void refreshPosition();
    void RefreshSpindleState();
    void RefreshStateAtHome();
    void RefreshHeadLoader();
    void RefreshMotor();
    void RefreshClamp();
    void RefreshSpeed();
    void refreshSpeedRange();
    void RefreshLoadPositions();
    void InitPositionDefaults();
    void PollInputs();

    void moveToMeasurementPosition(std::int16_t index);
    void moveToPos(int which);
    void spindleRun();
    void spindleStandby();
    void spindleOff();
    void setHeadLoader(bool down);
    void cmbStateAtHome_Click(int index);
    void usrRpm_ChangeValue();
    void cmdReset_Click();
    void updnRpm_Click(int direction);
    void ApplySpeed(std::int32_t rpm);

    std::array<double, 3> posRadius_{};     // Pos1Radius..Pos3Radius, metres
    std::optional<std::int32_t> homeState_; // the spindle setting at home as last read

    userText* usrRpm_ = nullptr;
    userText* usrRpmMin_ = nullptr;
    userText* usrRpmMax_ = nullptr;
    QComboBox* cmbStateAtHome_ = nullptr;
    QLineEdit* txtEmergency_ = nullptr;
    QLineEdit* txtOuterCover_ = nullptr;
    QGroupBox* frmHeadLoader_ = nullptr;
    QLineEdit* txtHeadLoader_ = nullptr;
    QGroupBox* frmSpindleState_ = nullptr;
    QLineEdit* txtClamp_ = nullptr;
    QLineEdit* txtMotor_ = nullptr;
    QLineEdit* txtState_ = nullptr;
    QLineEdit* txtSpindleState_ = nullptr;
    QLineEdit* txtMediaChange_ = nullptr;
    userProperty* usrTrack_ = nullptr;
    userProperty* usrRadius_ = nullptr;
    userProperty* usrSkew_ = nullptr;
    userProperty* usrInterlock_ = nullptr;
    std::array<QPushButton*, 5> positionButtons_{}; // Inner, Outer, Pos1, Pos2, Pos3
    std::array<userProperty*, 3> usrPosRadius_{};   // Pos1..Pos3
    userProperty* usrInnerRadius_ = nullptr;
    userProperty* usrOuterRadius_ = nullptr;
    userProperty* usrLoadRadius_ = nullptr;
    userProperty* usrUnloadRadius_ = nullptr;
};

} // namespace vss
