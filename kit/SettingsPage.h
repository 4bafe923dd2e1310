#pragma once

// The shapes every settings page shares: the page edits one setting group of the instrument, may be opened
// view-only, and has some of the group buttons Save, Recall, Export and Import. A page states its own steps
// (what it refreshes, which controls view-only locks); the buttons' steps are the same on every page:
// - Save: in the busy bracket, the group's save operation (nothing is read back);
// - Recall: in the busy bracket, the group's recall operation; then the page's refresh;
// - Export: the group to the file the save dialog gives (the group's dialog title, the setting-file filter);
// - Import: the group from the file the open dialog gives; then, when the import ran to its end, the page's
//   refresh (a failed import ends the handler, as any failure does);
// - a cancelled file dialog ends Export and Import with nothing written and nothing read.
// A page opened view-only stays so until it closes: its locked fields write nothing, and the buttons it
// disabled stay disabled after any command (the busy bracket puts every control back as it found it).

#include "kit/CommandForm.h"
#include "storage/modConfigFile.h"

#include <functional>
#include <initializer_list>
#include <vector>

class QLineEdit;
class QPushButton;

namespace vss {

class userProperty;
class userText;

// A control that can be locked: a value field or a text box.
class Lockable {
public:
    Lockable(userText* field);
    Lockable(userProperty* field);
    Lockable(QLineEdit* box);
    void setLocked(bool locked) const { lock_(locked); }

private:
    std::function<void(bool)> lock_;
};

class SettingsPage : public CommandForm {
    Q_OBJECT

public:
    // Set by the opener before the page is shown (it is given to the constructor).
    bool ViewOnly() const { return viewOnly_; }
    SettingGroup group() const { return group_; }

protected:
    SettingsPage(QWidget* parent, SettingGroup group, bool viewOnly);

    struct GroupButtons {
        QPushButton* save = nullptr;
        QPushButton* recall = nullptr;
        QPushButton* exportButton = nullptr;
        QPushButton* importButton = nullptr;
        QPushButton* returnButton = nullptr; // placed by addGroupRow; connectGroupButtons leaves it alone
    };
    // Connects the buttons given; refresh is what Recall and Import read back afterwards.
    void connectGroupButtons(const GroupButtons& buttons, std::function<void()> refresh);

    // One button of the group row: its left edge and width in twips (a width of 0 leaves it out) and, where
    // the page names it otherwise, its object name.
    struct RowButton {
        int left = 0;
        int width = 0;
        const char* name = nullptr;
    };
    struct GroupRow {
        int top = 0;
        RowButton save, recall, importButton, exportButton, returnButton;
    };
    // Places the group row, 375 twips high, left to right (the order the focus follows): "Save", "Recall",
    // "Import" and "Export" connected as connectGroupButtons does, "Return" closing the page. What view-only
    // locks stays the page's own (applyViewOnly).
    GroupButtons addGroupRow(const GroupRow& row, std::function<void()> refresh);
    // The row of a page that has all five: Save, Recall, Import and Export from the left edge, 975 twips wide
    // with 105 between them, and Return at the right edge of a page pageWidth twips wide.
    static GroupRow fullRow(int top, int pageWidth) {
        return {.top = top,
                .save = {120, 975},
                .recall = {1200, 975},
                .importButton = {2280, 975},
                .exportButton = {3360, 975},
                .returnButton = {pageWidth - 1095, 975}};
    }

    // What view-only means on this page, declared once: the controls that are enabled only while the page is
    // editable, and the fields that are locked while it is view-only.
    void applyViewOnly(std::initializer_list<QWidget*> enabledWhenEditable,
                       std::initializer_list<Lockable> lockedWhenViewOnly);

private:
    SettingGroup group_;
    bool viewOnly_;
};

// Whether a field's commit on the page is to be left alone. A field raises its commit on every Enter and
// every loss of the focus, locked or not: no field of a view-only page writes, and nothing commits while the
// page is busy with a command.
inline bool commitIgnored(const SettingsPage& page) {
    return page.isBusy() || page.ViewOnly();
}

// The group's save and recall operations on the instrument's non-volatile memory. Groups that have none (the
// piezo control and adjust data, the customer stage configuration, the piezo information) throw
// std::logic_error: a page of such a group has no Save or Recall button.
void saveGroup(SettingGroup group);
void recallGroup(SettingGroup group);

} // namespace vss
