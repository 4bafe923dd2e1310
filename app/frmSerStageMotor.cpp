#include "app/frmSerStageMotor.h"

#include <QPushButton>

namespace vss {

frmSerStageMotor::frmSerStageMotor(QWidget* parent) : Form(parent) {
    setWindowTitle(appTitle());
    setClientSizeTwips(2415, 615);
    QPushButton* cmdReturn = addButton("cmdReturn", QStringLiteral("Return"), 720, 120, 975, 375);
    connect(cmdReturn, &QPushButton::clicked, this, &Form::accept);
}

} // namespace vss
