#pragma once

// The stage property page: the instrument's stage properties, one row each, written at once and read back,
// and the way to the backlash compensation page. Save stores the group in the instrument's non-volatile
// memory.

#include "factory/PropertyPage.h"

namespace vss {

class frmFacSpinstandStage : public PropertyPage {
    Q_OBJECT

public:
    frmFacSpinstandStage(QWidget* parent, bool viewOnly);
};

} // namespace vss
