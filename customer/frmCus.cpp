#include "customer/frmCus.h"

#include "customer/frmCusStageConfig.h"
#include "kit/FormBuild.h"
#include "kit/modGlobal.h"

namespace vss {
namespace {

constexpr int kFrameWidth = kCustomerFrameWidth;
constexpr int kButtonWidth = 900;
constexpr int kButtonHeight = 375;

} // namespace

frmCus::frmCus(QWidget* parent, bool viewOnly) : SettingsPage(parent, SettingGroup::Customer, viewOnly) {
    setWindowTitle(appTitle() + QStringLiteral(" : Measurement Position Settings"));
    static const char* const innerNames[3] = {"usrStopperID", "usrRadiusID", "usrSkewID"};
    static const char* const outerNames[3] = {"usrStopperOD", "usrRadiusOD", "usrSkewOD"};
    inner_ = buildPosition("frmInner", QStringLiteral("Inner"), 60, 0, innerNames);
    connect(inner_.stopper, &userText::ChangeValue, this, [this] { usrStopper_ChangeValue(inner_); });
    outer_ = buildPosition("frmOuter", QStringLiteral("Outer"), 60 + frameHeightTwips(3) + 60, 1, outerNames);
    connect(outer_.stopper, &userText::ChangeValue, this, [this] { usrStopper_ChangeValue(outer_); });
    const int stageTop = 60 + 2 * (frameHeightTwips(3) + 60);
    buildStage(stageTop);

    const int buttonsTop = stageTop + frameHeightTwips(3) + kButtonHeight + 60 + 120;
    const auto column = [](int index) {
        return SettingsPage::RowButton{120 + index * (kButtonWidth + 120), kButtonWidth};
    };
    // Handled by addGroupRow: Save, Recall, Import and Export as on every settings page, Return closes.
    const GroupButtons row = addGroupRow({.top = buttonsTop,
                                          .save = column(1),
                                          .recall = column(0),
                                          .importButton = column(2),
                                          .exportButton = column(3),
                                          .returnButton = {120 + kFrameWidth - kButtonWidth, kButtonWidth}},
                                         [this] { RefreshAll(); });
    setClientSizeTwips(kFrameWidth + 240, buttonsTop + kButtonHeight + 120);

    // Load: the buttons that change the configuration follow ViewOnly, "Return" is always usable; the
    // stoppers are locked while viewing, the derived fields always (set as they were built).
    applyViewOnly({row.exportButton, row.importButton, row.save, row.recall, cmdAdvanced_},
                  {inner_.stopper, outer_.stopper});
    // A page opened for viewing starts on "Return"; its locked stoppers write nothing.
    if (ViewOnly())
        row.returnButton->setFocus();
    RefreshAll();
}

frmCus::Position frmCus::buildPosition(const char* frameName, const QString& caption, int top,
                                       std::int16_t index, const char* const names[3]) {
    QGroupBox* frame = newFrame(this, frameName, caption, 120, top, kFrameWidth, frameHeightTwips(3));
    const QString deg = QStringLiteral("deg");
    // Both sides show the rows "Stopper", "Radius" and "Skew"; a screen reader names the side too.
    const auto row = [&](int i, const FieldLook& look) {
        userText* field = newCustomerRow(frame, names[i], i, look);
        field->setCaptionName(caption + QLatin1Char(' ') + look.caption.toLower()); // "Inner stopper"
        return field;
    };
    return {index, row(0, {.caption = QStringLiteral("Stopper"), .unit = deg}),
            row(1, {.caption = QStringLiteral("Radius"),
                    .unit = QStringLiteral("mm"),
                    .scale = 0.001,
                    .locked = true}),
            row(2, {.caption = QStringLiteral("Skew"), .unit = deg, .locked = true})};
}

void frmCus::buildStage(int top) {
    QGroupBox* frame = newFrame(this, "frmStage", QStringLiteral("Stage Configuration"), 120, top,
                                kFrameWidth, frameHeightTwips(3) + kButtonHeight + 60);
    const std::array<userText*, 3> fields = newStageGeometryRows(frame, true);
    usrTCSC_ = fields[0];
    usrTCRP_ = fields[1];
    usrOFST_ = fields[2];
    cmdAdvanced_ = newButton(frame, "cmdAdvanced", QStringLiteral("Advanced"), kCustomerFieldLeft,
                             frameHeightTwips(3), 1350, kButtonHeight);
    connect(cmdAdvanced_, &QPushButton::clicked, this, &frmCus::cmdAdvanced_Click);
}

// The stopper first, then the radius and skew the instrument derives from it.
void frmCus::refreshPosition(const Position& position) {
    IDriverService& service = *handles().service;
    position.stopper->setValue(service.GetStopperPosition(position.index));
    const PositionRecord derived = service.GetMeasurementPosition(position.index);
    position.radius->setValue(derived.radius);
    position.skew->setValue(derived.skew);
}

void frmCus::RefreshInner() {
    refreshPosition(inner_);
}

void frmCus::RefreshOuter() {
    refreshPosition(outer_);
}

// All three values are read before any field shows one.
void frmCus::RefreshStage() {
    IDriverService& service = *handles().service;
    const double tcsc = service.GetStageGeometry(geometry::Stage2Spindle);
    const double tcrp = service.GetStageGeometry(geometry::Stage2Ref);
    const double ofst = service.GetStageGeometry(geometry::StageOffset);
    usrTCSC_->setValue(tcsc);
    usrTCRP_->setValue(tcrp);
    usrOFST_->setValue(ofst);
}

void frmCus::RefreshAll() {
    RefreshInner();
    RefreshOuter();
    RefreshStage();
}

// An edited stopper is written and its side read back, also when the instrument refused it. A commit that
// leaves the stopper as it was read writes nothing, so that tabbing through the page never writes; the locked
// stoppers of a page opened view-only write nothing at all.
void frmCus::usrStopper_ChangeValue(const Position& position) {
    if (commitIgnored(*this) || !position.stopper->Edited())
        return;
    const double degrees = position.stopper->Value().toDouble();
    writeValue([&] { handles().service->SetStopperPosition(position.index, degrees); },
               [&] { refreshPosition(position); });
}

// The stage configuration page writes what it changes at once; this page shows the result when it returns.
void frmCus::cmdAdvanced_Click() {
    if (openModal([](QWidget* parent) { return std::make_unique<frmCusStageConfig>(parent); }))
        trapErrors([this] { RefreshAll(); });
}

} // namespace vss
