#pragma once

// The service settings: the instrument's identity and its whole spinstand definition in one step. The model
// list is read from the spinstand catalogue each time the window opens; choosing a model (a click or Enter:
// moving through the list only selects) writes it to the instrument's working settings, "Recalled" (always
// last) stands for what the instrument holds. The serial number and the setting status are written as they
// are changed; Save and Recall store and reload all five setting groups. The view buttons open the
// configuration pages view-only; "Backlash Compensation" opens its page editable.

#include "kit/CommandForm.h"
#include "kit/Navigation.h"

#include <optional>

class QComboBox;
class QRadioButton;

namespace vss {

class userProperty;

class frmSerSet : public CommandForm {
    Q_OBJECT

public:
    explicit frmSerSet(QWidget* parent = nullptr);

private:
    void Form_Load();
    void refresh();
    void refreshSettingStatus();
    void selectRecalled();
    void cmbSpinstand_Click(int index);
    void usrSerialNumber_ChangeValue();
    void optSetting_Click(bool service);
    void cmdSave_Click();
    void cmdRecall_Click();
    void view(const ViewFactory& page);
    void cmdBacklashComp_Click();

    QComboBox* cmbSpinstand_;
    userProperty* usrSerialNumber_;
    userProperty* usrHardwareRevision_;
    QRadioButton* optService_;
    QRadioButton* optNormal_;
    std::optional<bool> settingUnknown_; // the setting status as the instrument last reported or accepted it
};

} // namespace vss
