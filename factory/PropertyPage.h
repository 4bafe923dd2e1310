#pragma once

// The shape the spindle and the stage property pages share: a frame of property rows built from the
// instrument's list, each row written to the instrument as it is committed and read back, and the row of
// group buttons. A page adds what it has beyond the rows (the speed range, the backlash button).

#include "driver/Interfaces.h"
#include "kit/PropertyRows.h"
#include "kit/SettingsPage.h"

#include <cstdint>

class QGroupBox;

namespace vss {

// A value committed in a field as the 32-bit integer the instrument takes; throws when it does not fit.
std::int32_t int32Of(const Variant& value);

class PropertyPage : public SettingsPage {
    Q_OBJECT

public:
    // The instrument's operations for one family of properties.
    struct Family {
        PropertyList (IDriverService::*list)();
        NamedCodes (IDriverService::*choices)(std::int16_t id);
        Variant (IDriverService::*read)(std::int16_t id);
        void (IDriverService::*write)(std::int16_t id, const Variant& value);
    };

    PropertyRows& rows() const { return *rows_; }

protected:
    static constexpr int kPageWidth = 5640;
    static constexpr int kFrameWidth = kPageWidth - 240;

    PropertyPage(QWidget* parent, SettingGroup group, bool viewOnly, Family family);

    // The frame at the top of the page with one row per property of the family, rows locked while the page is
    // view-only. Returns the frame; its height is set by the page once it holds everything it holds.
    QGroupBox* buildPropertyFrame(const char* name, const QString& caption, std::int16_t digits);

    // Save, Recall, Import, Export and Return along the bottom at top (twips); sizes the page to end below
    // them. Import, Save and Recall are enabled only while the page is editable; refresh is what Recall and
    // Import read back.
    void addGroupButtons(int top, std::function<void()> refresh);

private:
    void usrProperty_ChangeValue(int index);

    Family family_;
    PropertyRows* rows_ = nullptr;
};

} // namespace vss
