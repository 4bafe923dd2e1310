#pragma once

// The factory menu: the spinstand and piezo settings and the version data, each opened modally.

#include "kit/Form.h"

namespace vss {

class frmFac : public Form {
    Q_OBJECT

public:
    explicit frmFac(QWidget* parent = nullptr);
};

} // namespace vss
