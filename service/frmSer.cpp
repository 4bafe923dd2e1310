#include "service/frmSer.h"

#include "driver/DriverError.h"
#include "driver/StateText.h"
#include "kit/FormBuild.h"
#include "kit/Messages.h"
#include "kit/Navigation.h"
#include "kit/modGlobal.h"

#include <QButtonGroup>
#include <QRadioButton>
#include <exception>

namespace vss {
namespace {

constexpr int kClientWidthTwips = 9960;
constexpr int kClientHeightTwips = 6420;
constexpr int kRowTwips = 330; // one option or status row inside a frame

QString latin(const char* text) {
    return QString::fromLatin1(text);
}

// A read of the status tick: nothing when the instrument does not answer.
template <class Read> auto tryRead(Read read) -> std::optional<decltype(read())> {
    try {
        return read();
    } catch (const DriverError&) {
        return std::nullopt;
    }
}

QString flagText(const std::optional<bool>& flag, const char* set, const char* clear) {
    return flag ? latin(*flag ? set : clear) : QString();
}

// A read-only status box that has no label of its own: screen readers get its role from name.
QLineEdit* statusBox(QWidget* frame, const char* objectName, const QString& spokenName,
                     const QString& initial, int left, int top, int width) {
    QLineEdit* box = newTextBox(frame, objectName, left, top, width, 300, true);
    box->setAccessibleName(spokenName);
    box->setText(initial);
    return box;
}

// A labelled read-only status box: the label left of the box on its row names it.
QLineEdit* labelledBox(QWidget* frame, const char* labelName, const char* caption, const char* objectName,
                       int labelLeft, int top, int boxLeft, int boxWidth) {
    QLabel* label =
        newLabel(frame, labelName, latin(caption), labelLeft, top + 30, boxLeft - labelLeft - 60, 255);
    QLineEdit* box = newTextBox(frame, objectName, boxLeft, top, boxWidth, 300, true);
    label->setBuddy(box);
    return box;
}

} // namespace

const std::array<frmSer::BacklashMove, 5> frmSer::kBacklashMoves = {{
    {"cmdBacklashA", "A (ID->OUTER)", stopper::Inner, 0.02583},
    {"cmdBacklashB", "B (ID->INNER)", stopper::Inner, 0.01411},
    {"cmdBacklashC", "C (OD->INNER)", stopper::Outer, 0.02209},
    {"cmdBacklashD", "D (OD->OUTER)", stopper::Outer, 0.03401},
    {"cmdBacklashE", "E(HOME->INNER)", std::nullopt, 0.0},
}};

frmSer::frmSer(QWidget* parent) : PollingForm(parent) {
    setWindowTitle(appTitle() + QStringLiteral(" (Service use only)"));
    build();
    // A refusal while the panel loads is reported, and the panel opens all the same: it is where the engineer
    // puts the instrument right.
    trapErrors([this] {
        handles().service->SetStageMotor(0);
        refreshOptions();
    });
    startPolling();
}

// ---------------------------------------------------------------------------------------------------------------
// Building

void frmSer::build() {
    setClientSizeTwips(kClientWidthTwips, kClientHeightTwips);

    QGroupBox* frmDirect =
        newFrame(this, "frmDirect", QStringLiteral("Direct Operations"), 120, 60, 6240, 5700);
    buildSpindle(frmDirect);

    QGroupBox* frmHeadLoader =
        newFrame(frmDirect, "frmHeadLoader", QStringLiteral("Head Loader"), 3140, 240, 2980, 1000);
    optHeadLoader_.group =
        newOptions(frmHeadLoader, "optHeadLoader", {{1, "Down (Load)"}, {0, "Up (Unload)"}}, 1800);
    sendOnClick(
        optHeadLoader_, [](int index) { handles().service->SetHeadLoaderState(index == 0); },
        &frmSer::showHeadLoaderOption);
    txtSpindleSet_ =
        labelledBox(frmDirect, "lblSpindleSet", "Spindle Set", "txtSpindleSet", 3260, 1340, 4620, 1500);
    txtVacuum_ = labelledBox(frmDirect, "lblVacuum", "Vacuum", "txtVacuum", 3260, 1700, 4620, 1500);

    QGroupBox* frmPosition =
        newFrame(frmDirect, "frmPosition", QStringLiteral("Stage Position"), 120, 2060, 2900, 1560);
    struct PositionRow {
        std::int16_t code;
        const char* caption;
        const char* box;
        const char* initial;
        const char* spoken;
    };
    static constexpr PositionRow positions[] = {
        {stageposition::Inner, "Inner", "txtPosInner", "Innter", "Inner sensor"},
        {stageposition::Outer, "Outer", "txtPosOuter", "Outer", "Outer sensor"},
        {stageposition::Home, "Home", "txtPosHome", "Home", "Home sensor"},
    };
    std::array<QLineEdit*, 3> positionBoxes{};
    for (std::size_t i = 0; i < std::size(positions); ++i) {
        const PositionRow& row = positions[i];
        const int top = 300 + static_cast<int>(i) * 420;
        const std::string name = "cmdPosition_" + std::to_string(row.code);
        QPushButton* button = newButton(frmPosition, name.c_str(), latin(row.caption), 120, top, 1200, 375);
        connect(button, &QPushButton::clicked, this, [this, code = row.code] { cmdPosition_Click(code); });
        cmdPosition_[static_cast<std::size_t>(row.code)] = button;
        positionBoxes[i] =
            statusBox(frmPosition, row.box, latin(row.spoken), latin(row.initial), 1440, top + 37, 1340);
    }
    txtPosInner_ = positionBoxes[0];
    txtPosOuter_ = positionBoxes[1];
    txtPosHome_ = positionBoxes[2];

    QGroupBox* frmStopper =
        newFrame(frmDirect, "frmStopper", QStringLiteral("Stopper"), 3140, 2060, 2980, 1000);
    optStopper_.group = newOptions(frmStopper, "optStopper", {{0, "Up"}, {1, "Down"}}, 1200);
    sendOnClick(
        optStopper_, [](int index) { handles().service->SetStopper(index == 0); },
        &frmSer::showStopperOption);
    txtStopperUp_ = statusBox(frmStopper, "txtStopperUp", QStringLiteral("Stopper up sensor"),
                              QStringLiteral("Stopper Up"), 1440, 270, 1420);
    txtStopperDn_ = statusBox(frmStopper, "txtStopperDn", QStringLiteral("Stopper down sensor"),
                              QStringLiteral("Stopper Dn"), 1440, 600, 1420);

    QGroupBox* frmLockdown =
        newFrame(frmDirect, "frmLockdown", QStringLiteral("Lockdown"), 120, 3700, 2900, 1000);
    optLockdown_.group = newOptions(frmLockdown, "optLockdown", {{1, "Free"}, {0, "Lockdown"}}, 1300);
    sendOnClick(
        optLockdown_, [](int index) { handles().service->SetLockdown(index == 0); },
        &frmSer::showLockdownOption);
    txtLockdown_ =
        statusBox(frmLockdown, "txtLockdown", QStringLiteral("Lockdown sensor"), QString(), 1440, 270, 1340);

    QGroupBox* frmStage =
        newFrame(frmDirect, "frmStage", QStringLiteral("Stage Motor"), 3140, 3700, 2980, 1000);
    optStageMotor_.group = newOptions(frmStage, "optStageMotor", {{0, "Off"}, {1, "Standby"}}, 1300);
    sendOnClick(
        optStageMotor_, [](int index) { handles().service->SetStageMotor(index); },
        &frmSer::showStageMotorOption);

    buildStageJog(frmDirect);

    QGroupBox* frmExternal = newFrame(this, "frmExternal", QStringLiteral("External"), 6480, 60, 3360, 1100);
    txtEmergency_ =
        labelledBox(frmExternal, "lblEmergency", "Emergency", "txtEmergency", 120, 270, 1560, 1680);
    txtOuterCover_ =
        labelledBox(frmExternal, "lblOuterCover", "Outer Cover", "txtOuterCover", 120, 660, 1560, 1680);

    QGroupBox* frmRegion = newFrame(this, "frmStagePosArea", QStringLiteral("Region"), 6480, 1240, 3360, 720);
    usrPropRegion_ = newProperty(frmRegion, "usrPropRegion", 60, 290, 3240, 300,
                                 {.caption = QStringLiteral("Region"), .locked = true, .unitWidth = 0});

    buildBacklash(this);

    cmdPiezo_ = newButton(this, "cmdPiezo", QStringLiteral("Piezo Data"), 120, 5900, 1500, 375);
    connect(cmdPiezo_, &QPushButton::clicked, this, [this] { openModal(menuWindows().piezoInformation); });
    cmdReset_ = newButton(this, "cmdReset", QStringLiteral("Reset"), 1740, 5900, 1500, 375);
    connect(cmdReset_, &QPushButton::clicked, this, &frmSer::cmdReset_Click);
    cmdReturn_ = newButton(this, "cmdReturn", QStringLiteral("Return"), 8340, 5900, 1500, 375);
    connect(cmdReturn_, &QPushButton::clicked, this, &Form::accept);
    // The panel opens with the focus on "Return", not in the speed field, so that a stray key sends nothing.
    cmdReturn_->setFocus();
}

void frmSer::buildSpindle(QWidget* frame) {
    QGroupBox* frmSpindle =
        newFrame(frame, "frmSpindle", QStringLiteral("Spindle Motor"), 120, 240, 2900, 1740);
    usrRpm_ = newProperty(frmSpindle, "usrRpm", 60, 270, 2780, 300,
                          {.caption = QStringLiteral("Speed"), .unit = QStringLiteral("rpm")});
    connect(usrRpm_, &userProperty::ChangeValue, this, &frmSer::usrRpm_ChangeValue);
    txtSpindleState_ =
        statusBox(frmSpindle, "txtSpindleState", QStringLiteral("Spindle state"), QString(), 1500, 660, 1280);
    optSpindle_.group = newOptions(frmSpindle, "optSpindle", {{2, "Run"}, {1, "Standby"}, {0, "Off"}}, 1300);
    sendOnClick(
        optSpindle_, [](int index) { handles().service->SetSpindleState(index); },
        &frmSer::showSpindleOption);
    // The options stand under the speed, beside the state.
    for (QAbstractButton* option : optSpindle_.group->buttons())
        option->move(option->x(), option->y() + twipsToPixels(390));
}

void frmSer::buildStageJog(QWidget* frame) {
    QGroupBox* frmStageJog =
        newFrame(frame, "frmStageJog", QStringLiteral("Stage Jog"), 120, 4780, 6000, 800);
    usrDir_ =
        newProperty(frmStageJog, "usrDir", 60, 300, 2460, 315, {.caption = QStringLiteral("Direction")});
    usrDir_->setLayoutAuto(false);
    usrDir_->setLabelWidth(650);
    usrDir_->AddItem(QStringLiteral("To Inner"), 0);
    usrDir_->setItemData(0, 0);
    usrDir_->AddItem(QStringLiteral("To Home"), 1);
    usrDir_->setItemData(1, 1);
    showValue(usrDir_, Variant(std::int16_t{0}));
    usrCount1_ =
        newProperty(frmStageJog, "usrCount1", 2640, 300, 2040, 300, {.caption = QStringLiteral("Pulse")});
    usrCount1_->setValue(Variant(std::int32_t{101}));
    cmdJogExec_ = newButton(frmStageJog, "cmdJogExec", QStringLiteral("Move"), 4800, 270, 1080, 375);
    connect(cmdJogExec_, &QPushButton::clicked, this, &frmSer::cmdJogExec_Click);
}

void frmSer::buildBacklash(QWidget* parent) {
    QGroupBox* frmBacklash =
        newFrame(parent, "frmBacklashOpe", QStringLiteral("Backlash Compensation"), 6480, 2040, 3360, 2880);
    for (std::size_t i = 0; i < kBacklashMoves.size(); ++i) {
        cmdBacklash_[i] = newButton(frmBacklash, kBacklashMoves[i].name, latin(kBacklashMoves[i].caption),
                                    120, 300 + static_cast<int>(i) * 420, 3120, 375);
        connect(cmdBacklash_[i], &QPushButton::clicked, this,
                [this, i] { runBacklashMove(kBacklashMoves[i]); });
    }
    cmdSetBacklashData_ = newButton(frmBacklash, "cmdSetBacklashData", QStringLiteral("Set Backlash Data"),
                                    120, 2400, 3120, 375);
    connect(cmdSetBacklashData_, &QPushButton::clicked, this,
            [this] { openModal(withViewOnly(menuWindows().backlashCompensation, false)); });
}

// Options stacked in a frame, each named after its index, which is also its id in the group.
QButtonGroup* frmSer::newOptions(QWidget* frame, const char* name,
                                 std::initializer_list<std::pair<int, const char*>> options, int width) {
    auto* group = new QButtonGroup(frame);
    int top = 270;
    for (const auto& [index, caption] : options) {
        const std::string objectName = std::string(name) + "_" + std::to_string(index);
        group->addButton(
            put(new QRadioButton(latin(caption), frame), objectName.c_str(), 120, top, width, 300), index);
        top += kRowTwips;
    }
    return group;
}

// A user's click on one of the group's options sends it: the option's index decides the argument (the head
// loader, lockdown and stopper send true for index 0). reread selects the option from the instrument.
void frmSer::sendOnClick(Options& options, std::function<void(int)> send, void (frmSer::*reread)()) {
    connect(options.group, &QButtonGroup::idClicked, this,
            [this, &options, send = std::move(send), reread](int index) {
                sendOption(options, index, send, [this, reread] { (this->*reread)(); });
            });
}

// ---------------------------------------------------------------------------------------------------------------
// Options from the instrument

// Selects the option of an index, or none when no option has it; a selection made here sends nothing.
void frmSer::select(Options& options, int index) {
    options.shown = index;
    options.group->setExclusive(false);
    for (QAbstractButton* option : options.group->buttons())
        option->setChecked(options.group->id(option) == index);
    options.group->setExclusive(true);
}

void frmSer::refreshOptions() {
    refreshSpeed();
    showStopperOption();
    showHeadLoaderOption();
    showLockdownOption();
    showSpindleOption();
    showStageMotorOption();
}

// What a stage move changes: the stopper, the lockdown and the stage motor.
void frmSer::refreshStageOptions() {
    showStopperOption();
    showLockdownOption();
    showStageMotorOption();
}

void frmSer::showHeadLoaderOption() {
    select(optHeadLoader_, handles().service->GetHeadLoaderState() ? 0 : 1);
}

// The spindle options' indices are the state codes: a state that no option stands for (unlocked, unknown)
// leaves all three cleared.
void frmSer::showSpindleOption() {
    select(optSpindle_, handles().service->GetSpindleState());
}

void frmSer::showStopperOption() {
    select(optStopper_, handles().service->GetStopper() ? 0 : 1);
}

void frmSer::showLockdownOption() {
    select(optLockdown_, handles().service->GetLockdown() ? 0 : 1);
}

void frmSer::showStageMotorOption() {
    select(optStageMotor_, handles().service->GetStageMotor() == 1 ? 1 : 0);
}

void frmSer::refreshSpeed() {
    showValue(usrRpm_, Variant(handles().service->GetSpindleRpm()));
}

// ---------------------------------------------------------------------------------------------------------------
// Status tick

// While a command, or a window opened from the panel, runs, the panel's status waits for it.
void frmSer::onPoll() {
    if (isBusy())
        return;
    IDriverService& service = *handles().service;
    const auto state = tryRead([&] { return service.GetSpindleState(); });
    showText(txtSpindleState_, state ? QString::fromLatin1(spindleStateText(*state)) : QString());
    showText(txtEmergency_, flagText(tryRead([&] { return service.GetEmergency(); }), "Emergency", "Normal"));
    showText(txtOuterCover_, flagText(tryRead([&] { return service.GetOuterCover(); }), "Open", "Close"));
    showText(txtVacuum_, flagText(tryRead([&] { return service.GetVacuum(); }), "ON", "OFF"));
    showText(txtSpindleSet_, flagText(tryRead([&] { return service.GetSpindleSet(); }), "ON", "OFF"));
    showText(txtLockdown_, flagText(tryRead([&] { return service.GetLockdownSensor(); }), "LOCK", "FREE"));

    const auto stopper = tryRead([&] { return service.GetStopperSensors(); });
    showText(txtStopperUp_, stopper && stopper->up ? QStringLiteral("UP") : QString());
    showText(txtStopperDn_, stopper && stopper->down ? QStringLiteral("DN") : QString());

    const auto flags = tryRead([&] { return service.GetStagePositionFlags(); });
    showText(txtPosHome_, flags && flags->atHome ? QStringLiteral("HOME") : QString());
    showText(txtPosInner_, flags && flags->atInner ? QStringLiteral("INNER") : QString());
    showText(txtPosOuter_, flags && flags->atOuter ? QStringLiteral("OUTER") : QString());

    showRegion(tryRead([&] { return service.GetStageRegion(); }));
}

// The region code shows as a number: a 16-bit code would turn the field into a list without entries.
void frmSer::showRegion(const std::optional<Variant>& region) {
    if (!region) {
        showValue(usrPropRegion_, Variant(std::string()));
        return;
    }
    const Variant& value = *region;
    showValue(usrPropRegion_,
              value.type() == Variant::Type::Int16 ? Variant(std::int32_t{value.int16()}) : value);
}

// ---------------------------------------------------------------------------------------------------------------
// Commands

// A refused option gives way to the instrument's state, read again; when that read fails too, to the option
// that showed it before the click.
void frmSer::sendOption(Options& options, int index, const std::function<void(int)>& send,
                        const std::function<void()>& reread) {
    writeValue([&] { send(index); }, [&] { options.shown = index; },
               [&] {
                   select(options, options.shown);
                   reread();
               });
}

// A speed typed and committed is sent and read back, also when the instrument refused it; text that is not a
// whole number in range leaves the field's value as it was. A commit that leaves the speed as it was read
// sends nothing.
void frmSer::usrRpm_ChangeValue() {
    const Variant typed = usrRpm_->Value();
    if (typed.type() != Variant::Type::Int32 || !usrRpm_->Edited())
        return;
    const std::int32_t rpm = typed.int32();
    writeValue([rpm] { handles().service->SetSpindleRpm(rpm); }, [this] { refreshSpeed(); });
}

void frmSer::cmdPosition_Click(std::int16_t position) {
    command([position] { handles().service->MoveToPosition(position); }, [this] { refreshStageOptions(); });
}

void frmSer::cmdJogExec_Click() {
    const std::int32_t pulses = usrCount1_->Value().int32();
    const bool toInner = usrDir_->Value().int16() == 0;
    command([toInner, pulses] { handles().service->Jog(toInner, pulses); },
            [this] { refreshStageOptions(); });
}

void frmSer::cmdReset_Click() {
    command(
        [] {
            handles().service->ResetService();
            handles().service->SetStageMotor(0);
        },
        [this] { refreshOptions(); });
}

// The move starts from a defined state and loads the heads at the backlash load radius with the disk size
// restriction off. The load position and the restriction are put back whether or not the move got through:
// a failure shows its own message first, then one that names what could not be put back.
void frmSer::runBacklashMove(const BacklashMove& move) {
    runBusy([&] {
        IDriver& driver = *handles().driver;
        if (driver.GetState() == state::Uninitialized)
            driver.Initialize();
        else
            driver.Reset();
        const LoadSetting saved = readLoadSetting();
        std::exception_ptr failure;
        try {
            loadAtBacklashRadius();
            if (move.start)
                moveStage(*move.start, move.target);
        } catch (...) {
            failure = std::current_exception();
        }
        const std::string notRestored = restoreLoadSetting(saved);
        if (failure && !notRestored.empty()) {
            try {
                std::rethrow_exception(failure);
            } catch (const std::exception& e) {
                showMessage(e.what()); // the move's own failure first, then what could not be put back
            }
        } else if (failure) {
            std::rethrow_exception(failure);
        }
        if (!notRestored.empty())
            throw DriverError(notRestored);
    });
}

frmSer::LoadSetting frmSer::readLoadSetting() {
    return {handles().loadPosition->GetLoadPosition(loadposition::Load).position,
            handles().diskSize->GetDiskSizeRestriction()};
}

void frmSer::loadAtBacklashRadius() {
    handles().diskSize->SetDiskSizeRestriction(false);
    handles().loadPosition->SetLoadPosition(loadposition::Load, {kBacklashLoadRadius, kNoSkew}, -1);
    handles().driver->Load();
}

void frmSer::moveStage(std::int16_t start, double target) {
    double radius = handles().service->GetMeasurementPosition(start).radius;
    handles().stage->MoveTo(radius);
    radius = target;
    handles().stage->MoveTo(radius);
}

// Puts back each part on its own; returns what could not be put back, with the instrument's reasons.
std::string frmSer::restoreLoadSetting(const LoadSetting& saved) {
    std::string problems;
    const auto attempt = [&problems](const QString& what, const std::function<void()>& step) {
        try {
            step();
        } catch (const std::exception& e) {
            problems +=
                (problems.empty() ? "" : " ") + what.toStdString() + " could not be put back: " + e.what();
        }
    };
    // The load position goes back exactly as it was read, its skew with its radius: a skew of its own is
    // kept.
    attempt(QStringLiteral("The load position (radius %1 mm)").arg(saved.load.radius * 1000.0),
            [&saved] { handles().loadPosition->SetLoadPosition(loadposition::Load, saved.load, -1); });
    attempt(QStringLiteral("The disk size restriction (%1)").arg(saved.restriction ? "on" : "off"),
            [&saved] { handles().diskSize->SetDiskSizeRestriction(saved.restriction); });
    return problems;
}

// The stage motor is left off however the panel closes; the timer has stopped already.
void frmSer::onUnload() {
    DisableAllControls();
    trapErrors([] { handles().service->SetStageMotor(0); });
}

} // namespace vss
