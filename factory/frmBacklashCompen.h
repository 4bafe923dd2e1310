#pragma once

// The stage's five backlash compensation values (motor pulses, one per kind of direction change) and the date
// of their last update. Each edit goes to the instrument at once; Save stores the group in the instrument's
// non-volatile memory, Recall reloads it; Export and Import move it to and from a setting file.

#include "kit/SettingsPage.h"

#include <array>

namespace vss {

class frmBacklashCompen : public SettingsPage {
    Q_OBJECT

public:
    static constexpr int kEntries = 5;

    frmBacklashCompen(QWidget* parent, bool viewOnly);

private:
    void refresh();
    void usrBacklash_ChangeValue(int index);

    std::array<userProperty*, kEntries> usrBacklash_{};
    userProperty* usrPropBacklashDate_ = nullptr;
};

} // namespace vss
