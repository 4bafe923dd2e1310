#pragma once

// A list of property rows built from what the instrument reports: one labelled property field per entry of
// the instrument's list, in list order, captioned with the entry's name and showing its unit text. A row whose
// value comes back as a 16-bit integer becomes a list of the instrument's choices for it (choice j at position
// j, its code as item data); every other row edits its value in a text field or a check box. The page decides
// what a row's commit does: the list hands it the row's index.

#include "controls/userProperty.h"
#include "driver/Types.h"
#include "driver/Variant.h"

#include <QObject>
#include <cstdint>
#include <functional>
#include <vector>

class QWidget;

namespace vss {

// Where the rows come from: the list, the choices of a coded entry and the value of one entry, each by the
// identifier that the list gives.
struct PropertySource {
    std::function<PropertyList()> list;
    std::function<NamedCodes(std::int16_t id)> choices;
    std::function<Variant(std::int16_t id)> read;
};

// Where and how the rows are placed inside their frame (twips), and how they show their values.
struct PropertyRowLook {
    int left = 120;
    int top = 300;
    int width = 4200;
    int rowHeight = 300;
    int pitch = 360;
    std::int16_t digits = 4; // significant digits of doubles
    bool locked = false;
    bool layoutAuto = true;
    std::int32_t labelWidth = 200; // twips, when layoutAuto is false
    std::int32_t unitWidth = 600;  // twips of the unit text
};

class PropertyRows : public QObject {
    Q_OBJECT

public:
    // The rows are created by build(), as children of frame named "<name>_<i>" (for example usrProperty_0).
    PropertyRows(QWidget* frame, const char* name, PropertySource source, PropertyRowLook look);

    // Reads the list, then for each entry from the first to the last: caption, unit, lock, digits; reads its
    // value, and for a 16-bit value the entry's choices; assigns the value read. Rows of an earlier build are
    // removed first.
    void build();

    // Reads one row's value again and shows it; refreshAll does every row in list order.
    void refreshRow(int index);
    void refreshAll();

    int count() const { return static_cast<int>(rows_.size()); }
    std::int16_t id(int index) const { return ids_.at(static_cast<std::size_t>(index)); }
    userProperty* row(int index) const { return rows_.at(static_cast<std::size_t>(index)); }
    // The value shown in a row, of the type the row holds.
    Variant value(int index) const { return row(index)->Value(); }
    void setLocked(bool locked);

    // The bottom of the last row, twips inside the frame (the top of the rows when there are none).
    int bottomTwips() const;

signals:
    // A row's value was committed by the user (a value shown by the list itself raises nothing).
    void rowChanged(int index);

private:
    void show(int index, const Variant& value);

    QWidget* frame_;
    const char* name_;
    PropertySource source_;
    PropertyRowLook look_;
    std::vector<std::int16_t> ids_;
    std::vector<userProperty*> rows_;
};

} // namespace vss
