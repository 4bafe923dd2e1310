#include "app/frmSerStageMotor.h"

#include <QPushButton>

namespace vss {

frmSerStageMotor::frmSerStageMotor(QWidget* parent) : Form(parent) {
    setWindowTitle(appTitle());
    setClientSizeTwips(3015, 615);
    QPushButton* cmdReturn = addButton("cmdReturn", QStringLiteral("Return"), 1020, 120, 975, 375);
    connect(cmdReturn, &QPushButton::clicked, this, &Form::accept);
}

} // namespace vss
