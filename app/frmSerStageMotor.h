#pragma once

// A small service window with one "Return" button that closes it.

#include "kit/Form.h"

namespace vss {

class frmSerStageMotor : public Form {
    Q_OBJECT

public:
    explicit frmSerStageMotor(QWidget* parent = nullptr);
};

} // namespace vss
