#pragma once

// The layout arithmetic of the value fields, in twips, without any widget.

namespace vss {

// A horizontal extent in twips.
struct Span {
    int left = 0;
    int width = 0;
    int right() const { return left + width; }
    friend bool operator==(const Span&, const Span&) = default;
};

// The numeric text field: the unit caption takes a strip of optStrWidth at the right edge when there is
// a unit text and the text box the rest (never narrower than 0); without a unit text the box is whole.
struct UnitStripLayout {
    Span text;
    Span unit;
};
UnitStripLayout unitStripLayout(int innerWidth, bool hasUnitText, int optStrWidth);

// The labelled property field: the caption starts at 5.
//   layoutAuto: caption and editor both W / 2 - 10 wide (rounded to the nearest), so the row keeps a
//     margin of 5 on both sides and 10 between caption and editor;
//   otherwise: the caption is labelWidth wide and the editor W - labelWidth - 10, which makes the editor
//     end at W + 5: its right border lies beyond the row and is clipped, the look of the fixed-width rows.
// The editor starts 10 after the caption. Negative widths become 0.
struct PropertyRowLayout {
    Span caption;
    Span editor;
};
PropertyRowLayout propertyRowLayout(int innerWidth, bool layoutAuto, int labelWidth);

} // namespace vss
