#include "factory/frmFacSpinstandSpindle.h"

#include "kit/FormBuild.h"
#include "kit/modGlobal.h"

namespace vss {

frmFacSpinstandSpindle::frmFacSpinstandSpindle(QWidget* parent, bool viewOnly)
    : PropertyPage(parent, SettingGroup::SpindleProperty, viewOnly,
                   {&IDriverService::GetSpindlePropertyList, &IDriverService::GetSpindlePropertyChoices,
                    &IDriverService::GetSpindleProperty, &IDriverService::SetSpindleProperty}) {
    setWindowTitle(QStringLiteral("Spindle Data (Factory use only)"));
    QGroupBox* frmSpindleProperty =
        buildPropertyFrame("frmSpindleProperty", QStringLiteral("Spindle Property"), 6);
    frmSpindleProperty->setGeometry(twipsRect(120, 120, kFrameWidth, rows().bottomTwips() + 180));

    const int rangeTop = 120 + rows().bottomTwips() + 300;
    QGroupBox* frmSpeedRange = newFrame(this, "frmSpeedRange", QString(), 120, rangeTop, kFrameWidth, 1020);
    const auto rpmRow = [&](const char* name, const QString& caption, int top) {
        userProperty* row =
            newProperty(frmSpeedRange, name, 120, top, kFrameWidth - 240, 300,
                        {.caption = caption, .unit = QStringLiteral("rpm"), .locked = ViewOnly()});
        row->setLabelAlignment(Qt::AlignRight | Qt::AlignVCenter);
        connect(row, &userProperty::ChangeValue, this, &frmFacSpinstandSpindle::WriteSpeedRange);
        return row;
    };
    usrRpmMin_ = rpmRow("usrRpmMin", QStringLiteral("min."), 300);
    usrRpmMax_ = rpmRow("usrRpmMax", QStringLiteral("max."), 660);

    addGroupButtons(rangeTop + 1140, [this] { RefreshSpindleAll(); });
    RefreshSpindleAll();
}

void frmFacSpinstandSpindle::RefreshSpindleAll() {
    rows().refreshAll();
    RefreshSpeedRange();
}

void frmFacSpinstandSpindle::RefreshSpeedRange() {
    const SpeedRange range = handles().service->GetSpeedRange();
    showValue(usrRpmMin_, range.min);
    showValue(usrRpmMax_, range.max);
}

// Either limit edited sends both, as the rows show them; the rows then show what the instrument kept, also
// after a refusal.
void frmFacSpinstandSpindle::WriteSpeedRange() {
    if (commitIgnored(*this) || !(usrRpmMin_->Edited() || usrRpmMax_->Edited()))
        return;
    writeValue(
        [this] {
            const std::int32_t min = int32Of(usrRpmMin_->Value());
            const std::int32_t max = int32Of(usrRpmMax_->Value());
            handles().service->SetSpeedRange(min, max);
        },
        [this] { RefreshSpeedRange(); });
}

} // namespace vss
