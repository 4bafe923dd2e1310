#pragma once

// The spinstand configuration page: spinstand type, head face, disk size range, the "Unknown Setting" flag
// and the spindle driver's identification items (read only). It opens the spindle and stage property pages.
// Every edited value goes to the instrument at once; Save stores the group in the instrument's
// non-volatile memory.

#include "kit/SettingsPage.h"

class QCheckBox;

namespace vss {

class PropertyRows;

class frmFacSpinstand : public SettingsPage {
    Q_OBJECT

public:
    frmFacSpinstand(QWidget* parent, bool viewOnly);

private:
    void BuildSpinstandTypeList();
    void RefreshDiskSize();
    void RefreshHeadFace();
    void RefreshSettingUnknown();
    void RefreshSpinstandType();
    void RefreshSpinstandAll();
    void WriteDiskSize();

    void usrSsType_ChangeValue();
    void usrHeadFace_ChangeValue();
    void chkSettingUnknown_Click(bool checked);

    userProperty* usrSsType_ = nullptr;
    userProperty* usrHeadFace_ = nullptr;
    userProperty* usrDiskSizeMin_ = nullptr;
    userProperty* usrDiskSizeMax_ = nullptr;
    QCheckBox* chkSettingUnknown_ = nullptr;
    PropertyRows* usrProperty_ = nullptr;
};

} // namespace vss
