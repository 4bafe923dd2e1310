#pragma once

// The service panel: direct control of every actuator through the service interface, the inputs and stage
// sensors watched every 200 ms, a stage jog by a pulse count, and the backlash measurement moves whose travel
// the engineer enters in the backlash compensation data.
//
// The option groups show what the instrument reports: the panel selects them from the instrument on load and
// after Reset (the stage options also after a stage move, a group also after a click the instrument refused)
// without sending anything; only a user's click sends.
// A failing read in the status tick never shows a message: that item goes blank until a read succeeds again.

#include "driver/Types.h"
#include "driver/Variant.h"
#include "kit/PollingForm.h"

#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

class QButtonGroup;
class QLineEdit;
class QPushButton;

namespace vss {

class userProperty;

class frmSer : public PollingForm {
    Q_OBJECT

public:
    // Loads the panel: lays it out, commands the stage motor off, selects the options from the instrument
    // and starts polling. A failing call is reported, and the panel opens after the message all the same.
    explicit frmSer(QWidget* parent = nullptr);

    // One tick of the status timer.
    void tmrUpdate_Timer() { pollOnce(); }

    // The backlash measurement moves: A to D go to a measurement position and on to a target radius, E only
    // loads the heads at the backlash load radius.
    struct BacklashMove {
        const char* name;
        const char* caption;
        std::optional<std::int16_t> start; // measurement position index; none: no move (E)
        double target = 0.0;               // metres
    };
    static constexpr double kBacklashLoadRadius = 0.05; // metres
    static const std::array<BacklashMove, 5> kBacklashMoves;

protected:
    void onPoll() override;
    void onUnload() override;

private:
    // An option group and the option that shows the instrument's state (-1: none).
    struct Options {
        QButtonGroup* group = nullptr;
        int shown = -1;
    };
    // The load position and disk size restriction a backlash move changes and puts back afterwards.
    struct LoadSetting {
        PositionRecord load;
        bool restriction = false;
    };

    void build();
    void buildSpindle(QWidget* frame);
    void buildStageJog(QWidget* frame);
    void buildBacklash(QWidget* parent);
    static QButtonGroup* newOptions(QWidget* frame, const char* name,
                                    std::initializer_list<std::pair<int, const char*>> options, int width);
    void sendOnClick(Options& options, std::function<void(int)> send, void (frmSer::*reread)());

    // Options from the instrument; nothing is sent.
    static void select(Options& options, int index);
    void refreshOptions();
    void refreshStageOptions();
    void showHeadLoaderOption();
    void showSpindleOption();
    void showStopperOption();
    void showLockdownOption();
    void showStageMotorOption();
    void refreshSpeed();
    void showRegion(const std::optional<Variant>& region);

    // Commands.
    void sendOption(Options& options, int index, const std::function<void(int)>& send,
                    const std::function<void()>& reread);
    void usrRpm_ChangeValue();
    void cmdPosition_Click(std::int16_t position);
    void cmdJogExec_Click();
    void cmdReset_Click();
    void runBacklashMove(const BacklashMove& move);
    static LoadSetting readLoadSetting();
    static void loadAtBacklashRadius();
    static void moveStage(std::int16_t start, double target);
    static std::string restoreLoadSetting(const LoadSetting& saved);

    userProperty* usrRpm_ = nullptr;
    userProperty* usrDir_ = nullptr;
    userProperty* usrCount1_ = nullptr;
    userProperty* usrPropRegion_ = nullptr;
    Options optSpindle_;
    Options optHeadLoader_;
    Options optStopper_;
    Options optLockdown_;
    Options optStageMotor_;
    std::array<QPushButton*, 3> cmdPosition_{}; // by position code: Home, Outer, Inner
    QPushButton* cmdJogExec_ = nullptr;
    std::array<QPushButton*, 5> cmdBacklash_{};
    QPushButton* cmdSetBacklashData_ = nullptr;
    QPushButton* cmdPiezo_ = nullptr;
    QPushButton* cmdReset_ = nullptr;
    QPushButton* cmdReturn_ = nullptr;
    QLineEdit* txtSpindleState_ = nullptr;
    QLineEdit* txtSpindleSet_ = nullptr;
    QLineEdit* txtVacuum_ = nullptr;
    QLineEdit* txtPosInner_ = nullptr;
    QLineEdit* txtPosOuter_ = nullptr;
    QLineEdit* txtPosHome_ = nullptr;
    QLineEdit* txtStopperUp_ = nullptr;
    QLineEdit* txtStopperDn_ = nullptr;
    QLineEdit* txtLockdown_ = nullptr;
    QLineEdit* txtEmergency_ = nullptr;
    QLineEdit* txtOuterCover_ = nullptr;
};

} // namespace vss
