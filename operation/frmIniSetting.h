#pragma once

// The measurement settings: the head load method, the load and unload positions, the data area and the disk
// size restriction, with the spindle direction, head face, index polarity, fine position limit and allowed
// disk size shown read-only. Export and Import save and load the "Setting" group.

#include "kit/CommandForm.h"

#include <cstdint>
#include <optional>

class QCheckBox;
class QComboBox;
class QLineEdit;

namespace vss {

class userProperty;
class userText;

class frmIniSetting : public CommandForm {
    Q_OBJECT

public:
    explicit frmIniSetting(QWidget* parent = nullptr);

private:
    void build();
    void FillLoadMethodList();
    void refreshAll();
    void RefreshDataArea();
    void RefreshMisc();
    void RefreshLoadPosition();
    void RefreshLoadMethod();
    void showRestriction();
    void UpdateOuterRadius();

    void cmbLoadMethod_Click(int index);
    void cmdLoadPosition_Click();
    void cmdDataArea_Click();
    void chkDiskSizeRestrictionOn_Click(bool checked);
    void cmdImport_Click();

    QComboBox* cmbLoadMethod_ = nullptr;
    userProperty* usrLoadRadius_ = nullptr;
    userProperty* usrLoadSkew_ = nullptr;
    userProperty* usrUnloadRadius_ = nullptr;
    userProperty* usrUnloadSkew_ = nullptr;
    userProperty* usrInnerRadius_ = nullptr;
    userProperty* usrMaxTrack_ = nullptr;
    userProperty* usrPitch_ = nullptr;
    userProperty* usrOuterRadius_ = nullptr;
    QCheckBox* chkDiskSizeRestrictionOn_ = nullptr;
    userText* usrDiskSizeMin_ = nullptr;
    userText* usrDiskSizeMax_ = nullptr;
    QLineEdit* txtSpindle_ = nullptr;
    QLineEdit* txtFace_ = nullptr;
    QLineEdit* txtIndexPolarity_ = nullptr;
    userText* usrFinePositionLimit_ = nullptr;
    std::optional<std::int16_t> loadMethod_; // as last read
};

} // namespace vss
