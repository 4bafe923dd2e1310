#pragma once

// The spindle property page: the instrument's spindle properties, one row each, and the spindle speed range.
// Every committed value goes to the instrument at once and is read back; Save stores the group in the
// instrument's non-volatile memory.

#include "factory/PropertyPage.h"

namespace vss {

class frmFacSpinstandSpindle : public PropertyPage {
    Q_OBJECT

public:
    frmFacSpinstandSpindle(QWidget* parent, bool viewOnly);

private:
    void RefreshSpindleAll();
    void RefreshSpeedRange();
    void WriteSpeedRange();

    userProperty* usrRpmMin_ = nullptr;
    userProperty* usrRpmMax_ = nullptr;
};

} // namespace vss
