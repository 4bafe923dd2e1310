#include "factory/frmFacSpinstandStage.h"

#include "factory/frmBacklashCompen.h"
#include "kit/FormBuild.h"

namespace vss {

frmFacSpinstandStage::frmFacSpinstandStage(QWidget* parent, bool viewOnly)
    : PropertyPage(parent, SettingGroup::StageProperty, viewOnly,
                   {&IDriverService::GetStagePropertyList, &IDriverService::GetStagePropertyChoices,
                    &IDriverService::GetStageProperty, &IDriverService::SetStageProperty}) {
    setWindowTitle(QStringLiteral("Stage Data (Factory use only)"));
    QGroupBox* frmStageProperty = buildPropertyFrame("frmStageProperty", QStringLiteral("Stage Property"), 4);
    const int buttonTop = rows().bottomTwips() + 120;
    QPushButton* cmdBacklashCompen =
        newButton(frmStageProperty, "cmdBacklashCompen", QStringLiteral("Backlash Compensation Settings"),
                  kFrameWidth - 3120, buttonTop, 3000, 375);
    connect(cmdBacklashCompen, &QPushButton::clicked, this, [this] {
        openModal([viewOnly = ViewOnly()](QWidget* opener) -> std::unique_ptr<Form> {
            return std::make_unique<frmBacklashCompen>(opener, viewOnly);
        });
    });
    frmStageProperty->setGeometry(twipsRect(120, 120, kFrameWidth, buttonTop + 495));

    addGroupButtons(120 + buttonTop + 615, [this] { rows().refreshAll(); });
    rows().refreshAll();
}

} // namespace vss
