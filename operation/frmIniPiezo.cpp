#include "operation/frmIniPiezo.h"

#include "kit/FormBuild.h"
#include "kit/modGlobal.h"

namespace vss {

frmIniPiezo::frmIniPiezo(QWidget* parent) : Form(parent) {
    setWindowTitle(appTitle() + QStringLiteral(" : Piezo Information"));
    setClientSizeTwips(4095, 2880);

    QGroupBox* frmSerial = newFrame(this, "frmSerial", QStringLiteral("Piezo Serial"), 120, 60, 3855, 720);
    usrSerial_ = newValueField(frmSerial, "usrSerial", 120, 300, 3615, 300, {.locked = true});
    QGroupBox* frmResolutionCoef =
        newFrame(this, "frmResolutionCoef", QStringLiteral("Resolution Coef"), 120, 900, 3855, 1380);
    usrResolution_ = newProperty(frmResolutionCoef, "usrResolution", 120, 300, 3615, 300,
                                 {.caption = QStringLiteral("Resolution"), .locked = true});
    usrRadius_ =
        newProperty(frmResolutionCoef, "usrRadius", 120, 660, 3615, 300,
                    {.caption = QStringLiteral("Radius"), .unit = "mm", .scale = 0.001, .locked = true});
    usrSkew_ = newProperty(frmResolutionCoef, "usrSkew", 120, 1020, 3615, 300,
                           {.caption = QStringLiteral("Skew"), .unit = "deg", .locked = true});
    QPushButton* cmdReturn = newButton(this, "cmdReturn", QStringLiteral("Return"), 3000, 2400, 975, 375);
    connect(cmdReturn, &QPushButton::clicked, this, &Form::accept);

    // Two steps: a serial number that cannot be read still lets the position and the resolution be read.
    trapErrors([this] { usrSerial_->setValue(Variant(handles().service->GetPiezoSerial())); });
    trapErrors([this] {
        const HeadPosition at = handles().driver->GetPosition();
        usrRadius_->setValue(at.radius);
        usrSkew_->setValue(at.skew);
        usrResolution_->setValue(handles().piezo->GetPiezoReading());
    });
}

} // namespace vss
