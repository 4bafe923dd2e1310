#include "operation/frmIni.h"

#include "controls/Twips.h"
#include "controls/UpDown.h"
#include "kit/FormBuild.h"
#include "kit/Gestures.h"
#include "kit/Messages.h"
#include "kit/Reads.h"
#include "kit/frmVersion.h"
#include "kit/modGlobal.h"
#include "operation/OperationLogic.h"
#include "operation/frmIniPiezo.h"
#include "operation/frmIniSetting.h"

#include <QComboBox>
#include <QMouseEvent>
#include <optional>

namespace vss {
namespace {

// The title bar and borders: the outer heights count them, the client area is the rest.
constexpr int kNonClientHeightTwips = 405;
constexpr int kClientWidthTwips = 10260;

// The spindle setting at home: text and the instrument's code, in list order.
constexpr std::pair<const char*, std::int32_t> kStatesAtHome[] = {
    {"Run", homestate::Run}, {"Standby", homestate::Standby}, {"Off (i.e. Media Change)", homestate::Stop}};

QString text(std::string_view s) {
    return QString::fromUtf8(s.data(), static_cast<qsizetype>(s.size()));
}

// A radius field of the position column: no caption to speak of, the value takes the row.
userProperty* radiusField(QWidget* frame, const char* name, int top, const QString& caption, bool locked) {
    userProperty* field = newProperty(frame, name, 1140, top, 1860, 300,
                                      {.caption = caption, .unit = "mm", .scale = 0.001, .locked = locked});
    field->setLayoutAuto(false);
    field->setLabelWidth(60);
    return field;
}

// A labelled read-only text box of the status frames; the box starts at boxLeft and ends 120 twips inside
// the frame.
QLineEdit* statusBox(QWidget* frame, const char* labelName, const QString& label, const char* name, int top,
                     int boxLeft) {
    newLabel(frame, labelName, label, 120, top + 30, boxLeft - 180, 255);
    return newTextBox(frame, name, boxLeft, top, pixelsToTwips(frame->width()) - boxLeft - 120, 300, true);
}

template <class W> FormFactory makeWindow() {
    return [](QWidget* parent) { return std::make_unique<W>(parent); };
}

} // namespace

frmIni::frmIni(QWidget* parent) : PollingForm(parent) {
    setWindowTitle(appTitle() + QStringLiteral(" : Operation Check"));
    build();
    setDirectControlsShown(false);
    for (const auto& [name, code] : kStatesAtHome)
        cmbStateAtHome_->addItem(QString::fromLatin1(name), code);
    cmbStateAtHome_->setCurrentIndex(-1); // until the instrument's code selects an entry
    refreshAll();
    InitPositionDefaults();
    startPolling();
}

void frmIni::build() {
    QGroupBox* frmSpeed =
        newFrame(this, "frmSpindleSpeed", QStringLiteral("Spindle Speed"), 120, 60, 3000, 1100);
    usrRpm_ = newValueField(frmSpeed, "usrRpm", 120, 270, 2460, 300, {.unit = "rpm"});
    connect(usrRpm_, &userText::ChangeValue, this, &frmIni::usrRpm_ChangeValue);
    auto* updnRpm = put(new UpDown(frmSpeed), "updnRpm", 2620, 270, 255, 300);
    connect(updnRpm, &UpDown::down, this, [this] { updnRpm_Click(-1); });
    connect(updnRpm, &UpDown::up, this, [this] { updnRpm_Click(+1); });
    updnRpm->setButtonNames(QStringLiteral("Speed up"), QStringLiteral("Speed down"));
    usrRpmMin_ = newValueField(frmSpeed, "usrRpmMin", 120, 660, 1320, 300,
                               {.caption = QStringLiteral("Lowest speed"), .unit = "rpm", .locked = true});
    usrRpmMax_ = newValueField(frmSpeed, "usrRpmMax", 1560, 660, 1320, 300,
                               {.caption = QStringLiteral("Highest speed"), .unit = "rpm", .locked = true});

    QGroupBox* frmHome =
        newFrame(this, "frmStateAtHome", QStringLiteral("Spindle Setting at Home"), 120, 1240, 3000, 700);
    cmbStateAtHome_ = put(new QComboBox(frmHome), "cmbStateAtHome", 120, 280, 2760, 315);
    connect(cmbStateAtHome_, &QComboBox::activated, this, &frmIni::cmbStateAtHome_Click);

    QGroupBox* frmInputs = newFrame(this, "frmEmergency", QStringLiteral("Emergency / Outer Cover Status"),
                                    120, 2020, 3000, 1100);
    txtEmergency_ =
        statusBox(frmInputs, "lblEmergency", QStringLiteral("Emergency"), "txtEmergency", 270, 1380);
    txtOuterCover_ =
        statusBox(frmInputs, "lblOuterCover", QStringLiteral("Outer Cover"), "txtOuterCover", 660, 1380);

    QGroupBox* frmState = newFrame(this, "frmState", QStringLiteral("State"), 3240, 60, 3660, 3060);
    txtState_ = statusBox(frmState, "lblState", QStringLiteral("State"), "txtState", 270, 1900);
    txtSpindleState_ =
        statusBox(frmState, "lblSpindleState", QStringLiteral("Spindle"), "txtSpindleState", 660, 1900);
    txtMediaChange_ = statusBox(frmState, "lblMediaChange", QStringLiteral("Media Change OK?"),
                                "txtMediaChange", 1050, 1900);
    usrTrack_ = newProperty(frmState, "usrTrack", 60, 1440, 3540, 300,
                            {.caption = QStringLiteral("Track"), .unit = " ", .locked = true});
    usrRadius_ =
        newProperty(frmState, "usrRadius", 60, 1830, 3540, 300,
                    {.caption = QStringLiteral("Radius"), .unit = "mm", .scale = 0.001, .locked = true});
    usrSkew_ = newProperty(frmState, "usrSkew", 60, 2220, 3540, 300,
                           {.caption = QStringLiteral("Skew"), .unit = "deg", .locked = true});
    usrInterlock_ = newProperty(frmState, "usrInterlock", 60, 2610, 3540, 300,
                                {.caption = QStringLiteral("Status"), .locked = true});

    QGroupBox* frmPosition =
        newFrame(this, "frmHeadPosition", QStringLiteral("Head Postion Control"), 7020, 60, 3120, 3060);
    QLabel* heading =
        newLabel(frmPosition, "lblRadius", QStringLiteral("--- Radius ---"), 1140, 260, 1860, 255);
    heading->setAlignment(Qt::AlignCenter);
    const QString blanks = QStringLiteral("  ");
    struct PositionRow {
        const char* button;
        const char* caption;
        const char* field;
        void (*click)(frmIni& panel);
    };
    constexpr PositionRow rows[] = {
        {"cmdPosInner", "Inner", "usrInnerRadius",
         [](frmIni& panel) { panel.moveToMeasurementPosition(stopper::Inner); }},
        {"cmdPosOuter", "Outer", "usrOuterRadius",
         [](frmIni& panel) { panel.moveToMeasurementPosition(stopper::Outer); }},
        {"cmdPos1", "Pos1", "usrPos1Radius", [](frmIni& panel) { panel.moveToPos(0); }},
        {"cmdPos2", "Pos2", "usrPos2Radius", [](frmIni& panel) { panel.moveToPos(1); }},
        {"cmdPos3", "Pos3", "usrPos3Radius", [](frmIni& panel) { panel.moveToPos(2); }},
        {"cmdLoad", "Load", "usrLoadRadius",
         [](frmIni& panel) { panel.command([] { handles().driver->Load(); }); }},
        {"cmdUnload", "Unload", "usrUnloadRadius",
         [](frmIni& panel) { panel.command([] { handles().driver->Unload(); }); }}};
    std::array<QPushButton*, 7> rowButtons{};
    std::array<userProperty*, 7> rowFields{};
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const int top = 540 + static_cast<int>(i) * 360;
        const bool loadRow = i >= 5;
        const bool posRow = i >= 2 && i < 5;
        rowButtons[i] =
            newButton(frmPosition, rows[i].button, QString::fromLatin1(rows[i].caption), 120, top, 975, 300);
        connect(rowButtons[i], &QPushButton::clicked, this, [this, click = rows[i].click] { click(*this); });
        rowFields[i] = radiusField(frmPosition, rows[i].field, top, loadRow ? QString() : blanks, !posRow);
    }
    std::copy_n(rowButtons.begin(), 5, positionButtons_.begin());
    usrInnerRadius_ = rowFields[0];
    usrOuterRadius_ = rowFields[1];
    std::copy_n(rowFields.begin() + 2, 3, usrPosRadius_.begin());
    usrLoadRadius_ = rowFields[5];
    usrUnloadRadius_ = rowFields[6];

    QPushButton* cmdPiezo = newButton(this, "cmdPiezo", QStringLiteral("Piezo Info"), 120, 3240, 1335, 375);
    connect(cmdPiezo, &QPushButton::clicked, this, [this] { openNeighbour(makeWindow<frmIniPiezo>()); });
    QPushButton* cmdSetting = newButton(this, "cmdSetting", QStringLiteral("Setting"), 1575, 3240, 1335, 375);
    connect(cmdSetting, &QPushButton::clicked, this, [this] { openNeighbour(makeWindow<frmIniSetting>()); });
    QPushButton* cmdReset = newButton(this, "cmdReset", QStringLiteral("Reset"), 3030, 3240, 1335, 375);
    connect(cmdReset, &QPushButton::clicked, this, &frmIni::cmdReset_Click);
    QPushButton* cmdVersion = newButton(this, "cmdVersion", QStringLiteral("Version"), 4485, 3240, 1335, 375);
    // The panel shows the version window in normal mode.
    connect(cmdVersion, &QPushButton::clicked, this, [this] { openNeighbour(makeWindow<frmVersion>()); });
    QPushButton* cmdReturn = newButton(this, "cmdReturn", QStringLiteral("Return"), 8805, 3240, 1335, 375);
    connect(cmdReturn, &QPushButton::clicked, this, &Form::accept);

    frmSpindleState_ =
        newFrame(this, "frmSpindleState", QStringLiteral("Spindle State"), 120, 4080, 4240, 1140);
    txtClamp_ = newTextBox(frmSpindleState_, "txtClamp", 120, 300, 1500, 300, true);
    txtMotor_ = newTextBox(frmSpindleState_, "txtMotor", 120, 720, 1500, 300, true);
    QPushButton* cmdSpindleRun =
        newButton(frmSpindleState_, "cmdSpindleRun", QStringLiteral("Run"), 1740, 280, 1140, 375);
    connect(cmdSpindleRun, &QPushButton::clicked, this, &frmIni::spindleRun);
    QPushButton* cmdSpindleStop =
        newButton(frmSpindleState_, "cmdSpindleStop", QStringLiteral("Standby"), 2980, 280, 1140, 375);
    connect(cmdSpindleStop, &QPushButton::clicked, this, &frmIni::spindleStandby);
    QPushButton* cmdSpindleOff = newButton(frmSpindleState_, "cmdSpindleOff",
                                           QStringLiteral("Off (i.e. Media Change)"), 1740, 700, 2380, 375);
    connect(cmdSpindleOff, &QPushButton::clicked, this, &frmIni::spindleOff);

    frmHeadLoader_ = newFrame(this, "frmHeadLoader", QStringLiteral("Head Loader"), 4480, 4080, 3000, 1140);
    txtHeadLoader_ = newTextBox(frmHeadLoader_, "txtHeadLoader", 120, 300, 1200, 300, true);
    QPushButton* cmdHeadLoaderUp =
        newButton(frmHeadLoader_, "cmdHeadLoaderUp", QStringLiteral("Up (unload)"), 1440, 280, 1440, 375);
    connect(cmdHeadLoaderUp, &QPushButton::clicked, this, [this] { setHeadLoader(false); });
    QPushButton* cmdHeadLoaderDn =
        newButton(frmHeadLoader_, "cmdHeadLoaderDn", QStringLiteral("Dn (load)"), 1440, 700, 1440, 375);
    connect(cmdHeadLoaderDn, &QPushButton::clicked, this, [this] { setHeadLoader(true); });

    // The panel is for watching: it opens with the focus on "Return", not in the speed field, so that a stray
    // key changes nothing.
    cmdReturn->setFocus();
}

bool frmIni::directControlsShown() const {
    return !frmSpindleState_->isHidden();
}

void frmIni::setDirectControlsShown(bool shown) {
    frmSpindleState_->setVisible(shown);
    frmHeadLoader_->setVisible(shown);
    setClientSizeTwips(kClientWidthTwips, (shown ? kTallHeightTwips : kHeightTwips) - kNonClientHeightTwips);
}

void frmIni::mousePressEvent(QMouseEvent* event) {
    if (menuGesture(event->button(), event->modifiers()) == MenuGesture::A)
        setDirectControlsShown(!directControlsShown());
    Form::mousePressEvent(event);
}

void frmIni::EnableAllControls() {
    Form::EnableAllControls();
    if (!isUnloaded()) // a command that the interlock cut short reads nothing more
        trapErrors([this] { refreshStatus(); });
}

// The timer has stopped already: the polling window stops it before the unload handler runs.
void frmIni::onUnload() {
    DisableAllControls();
}

// ---------------------------------------------------------------------------------------------------------------
// Polling

void frmIni::onPoll() {
    if (readOr([] { return handles().interlock->GetInterlock(); }, false)) {
        stopPolling(); // before the message, so that no second tick finds the interlock again
        showMessage("Interlock is detected.");
        // The interlock ends the whole check: a window opened from the panel closes with it.
        closeWindowsAbove();
        accept();
        return;
    }
    PollInputs();
}

void frmIni::PollInputs() {
    const bool interlock = readOr([] { return handles().interlock->GetInterlock(); }, false);
    usrInterlock_->setValue(Variant(interlock ? "FAIL" : "OK"));
    const bool emergency = readOr([] { return handles().service->GetEmergency(); }, false);
    showText(txtEmergency_, emergency ? QStringLiteral("Emergency") : QStringLiteral("Normal"));
    const bool coverOpen = readOr([] { return handles().service->GetOuterCover(); }, false);
    showText(txtOuterCover_, coverOpen ? QStringLiteral("Open") : QStringLiteral("Close"));
}

// ---------------------------------------------------------------------------------------------------------------
// Refreshing

void frmIni::refreshAll() {
    refreshStatus();
    refreshPosition();
    RefreshStateAtHome();
    RefreshSpeed();
    refreshSpeedRange();
    RefreshLoadPositions();
}

void frmIni::refreshStatus() {
    RefreshState();
    refreshPosition();
    RefreshSpindleState();
    RefreshStateAtHome();
    RefreshHeadLoader();
    RefreshMotor();
    RefreshClamp();
}

void frmIni::RefreshState() {
    const std::int32_t code = handles().driver->GetState();
    showText(txtState_, text(operation::stateText(code)));
    for (QPushButton* button : positionButtons_)
        button->setEnabled(operation::positionButtonsEnabled(code));
}

void frmIni::refreshPosition() {
    const HeadPosition at = handles().driver->GetPosition();
    usrTrack_->setValue(at.track);
    usrRadius_->setValue(at.radius);
    usrSkew_->setValue(at.skew);
}

void frmIni::RefreshSpindleState() {
    // A spindle state that cannot be read shows as an undefined one: both texts empty.
    const std::optional<std::int32_t> code =
        readOr([] { return std::optional<std::int32_t>(handles().service->GetSpindleState()); },
               std::optional<std::int32_t>());
    const operation::SpindleStateTexts texts =
        code ? operation::spindleStateTexts(*code) : operation::SpindleStateTexts{};
    showText(txtSpindleState_, text(texts.state));
    showText(txtMediaChange_, text(texts.mediaChange));
}

void frmIni::RefreshStateAtHome() {
    // A code that matches no entry shows no selection.
    homeState_ = handles().driver->GetHomeState();
    cmbStateAtHome_->setCurrentIndex(cmbStateAtHome_->findData(*homeState_));
}

void frmIni::RefreshHeadLoader() {
    const bool loaded = !handles().headLoader || handles().headLoader->GetHeadLoader();
    showText(txtHeadLoader_, loaded ? QStringLiteral("Load") : QStringLiteral("Unload"));
}

void frmIni::RefreshMotor() {
    showText(txtMotor_,
             handles().spindle->GetMotor() ? QStringLiteral("Motor On") : QStringLiteral("Motor Off"));
}

void frmIni::RefreshClamp() {
    showText(txtClamp_,
             handles().clamp->GetClamp() ? QStringLiteral("Clamp On") : QStringLiteral("Clamp Off"));
}

void frmIni::RefreshSpeed() {
    usrRpm_->setValue(handles().driver->GetSpindleSpeed());
}

void frmIni::refreshSpeedRange() {
    const SpeedRange range = handles().driver->GetSpeedRange();
    usrRpmMin_->setValue(range.min);
    usrRpmMax_->setValue(range.max);
}

void frmIni::RefreshLoadPositions() {
    IDriverLoadPosition& load = *handles().loadPosition;
    usrLoadRadius_->setValue(load.GetLoadPosition(loadposition::Load).position.radius);
    usrUnloadRadius_->setValue(load.GetLoadPosition(loadposition::Unload).position.radius);
    usrInnerRadius_->setValue(handles().service->GetMeasurementPosition(stopper::Inner).radius);
    usrOuterRadius_->setValue(handles().service->GetMeasurementPosition(stopper::Outer).radius);
}

void frmIni::InitPositionDefaults() {
    const double inner = handles().service->GetMeasurementPosition(stopper::Inner).radius;
    const double outer = handles().service->GetMeasurementPosition(stopper::Outer).radius;
    const operation::PositionDefaults defaults = operation::positionDefaults(inner, outer);
    usrPosRadius_[0]->setValue(defaults.pos1);
    usrPosRadius_[1]->setValue(defaults.pos2);
    usrPosRadius_[2]->setValue(defaults.pos3);
    for (std::size_t i = 0; i < posRadius_.size(); ++i)
        posRadius_[i] = usrPosRadius_[i]->Value().toDouble();
}

// ---------------------------------------------------------------------------------------------------------------
// Commands

void frmIni::openNeighbour(const FormFactory& make) {
    if (openModal(make) && !isUnloaded())
        trapErrors([this] { refreshAll(); });
}

void frmIni::moveToMeasurementPosition(std::int16_t index) {
    command(
        [index] {
            double radius = handles().service->GetMeasurementPosition(index).radius;
            handles().stage->MoveTo(radius);
        },
        [this] { refreshPosition(); });
}

void frmIni::moveToPos(int which) {
    const auto i = static_cast<std::size_t>(which);
    command([this, i] {
        double radius = usrPosRadius_[i]->Value().toDouble();
        handles().stage->MoveTo(radius);
        posRadius_[i] = usrPosRadius_[i]->Value().toDouble();
    });
}

// Run clamps the disk before it starts the motor.
void frmIni::spindleRun() {
    command([] {
        if (!handles().clamp->GetClamp())
            handles().clamp->SetClamp(true);
        if (!handles().spindle->GetMotor())
            handles().spindle->SetMotor(true);
    });
}

// Standby stops the motor before it clamps the disk.
void frmIni::spindleStandby() {
    command([] {
        if (handles().spindle->GetMotor())
            handles().spindle->SetMotor(false);
        if (!handles().clamp->GetClamp())
            handles().clamp->SetClamp(true);
    });
}

// Off stops the motor before it releases the disk.
void frmIni::spindleOff() {
    command([] {
        if (handles().spindle->GetMotor())
            handles().spindle->SetMotor(false);
        if (handles().clamp->GetClamp())
            handles().clamp->SetClamp(false);
    });
}

// Without a head loader the command only passes through the busy bracket.
void frmIni::setHeadLoader(bool down) {
    command([down] {
        if (handles().headLoader)
            handles().headLoader->SetHeadLoader(down);
    });
}

// Picking the entry of the setting the instrument has writes nothing.
void frmIni::cmbStateAtHome_Click(int index) {
    const std::int32_t code = cmbStateAtHome_->itemData(index).toInt();
    if (code == homeState_)
        return;
    command([code] { handles().driver->SetHomeState(code); });
}

// A speed typed and committed goes to the instrument as it is: the instrument decides whether it can run at
// it. A commit that leaves the speed as it was read (Enter on it, the keyboard passing through) sends
// nothing; a refused speed gives way to the instrument's, read again.
void frmIni::usrRpm_ChangeValue() {
    if (!usrRpm_->Edited())
        return;
    const std::int32_t rpm = usrRpm_->Value().int32();
    writeValue([this, rpm] { ApplySpeed(rpm); }, {}, [this] { RefreshSpeed(); });
}

// The stepped speed comes from the speed list, searched for the instrument's speed, within its range. The
// command reads the speed once itself (a failing read stops it); the stepping reads it again, and the range,
// with the defaults standing in for what cannot be read.
void frmIni::updnRpm_Click(int direction) {
    command([this, direction] {
        handles().driver->GetSpindleSpeed();
        const std::int32_t current =
            readOr([] { return handles().driver->GetSpindleSpeed(); }, operation::kDefaultSpeed);
        const SpeedRange range =
            readOr([] { return handles().driver->GetSpeedRange(); }, operation::kDefaultSpeedRange);
        ApplySpeed(operation::stepSpeed(globals().spindleSpeeds, current, range, direction));
    });
}

void frmIni::ApplySpeed(std::int32_t rpm) {
    handles().driver->SetSpindleSpeed(rpm);
    RefreshSpeed();
}

void frmIni::cmdReset_Click() {
    command(
        [this] {
            handles().driver->Reset();
            InitPositionDefaults();
        },
        [this] { refreshAll(); });
}

} // namespace vss
