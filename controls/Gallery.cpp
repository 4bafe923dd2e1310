#include "controls/Gallery.h"

#include "controls/Twips.h"
#include "controls/userProperty.h"
#include "controls/userText.h"

#include <QFont>
#include <QLabel>
#include <QWidget>
#include <cstdint>
#include <initializer_list>
#include <type_traits>

namespace vss {

namespace {

// Geometry in twips: a column of row names, then one column per look.
constexpr int kMargin = 120;
constexpr int kNameWidth = 2500;
constexpr int kColumnWidth = 3300;
constexpr int kColumnGap = 150;
constexpr int kRowHeight = 300;
constexpr int kRowPitch = 405;
constexpr int kUnitWidth = 450; // room for "rpm" in the default font

enum class Look { Unlocked, Locked, Disabled };
constexpr Look kLooks[] = {Look::Unlocked, Look::Locked, Look::Disabled};
constexpr const char* kLookNames[] = {"Unlocked", "Locked", "Disabled"};

int columnLeft(int column) {
    return kMargin + kNameWidth + column * (kColumnWidth + kColumnGap);
}

template <typename Control> struct Row {
    const char* name;
    void (*setup)(Control&);
};

const Row<userText> kTextRows[] = {
    {"Null", [](userText&) {}},
    {"16-bit integer", [](userText& t) { t.setValue(std::int16_t{-1}); }},
    {"32-bit integer, rpm",
     [](userText& t) {
         t.setOptStr("rpm");
         t.setOptStrWidth(kUnitWidth);
         t.setValue(std::int32_t{7200});
     }},
    {"Double, mm",
     [](userText& t) {
         t.setDblScale(0.001);
         t.setOptStr("mm");
         t.setOptStrWidth(kUnitWidth);
         t.setValue(0.0125);
     }},
    {"Double, um",
     [](userText& t) {
         t.setDblScale(0.000001);
         t.setOptStr("um");
         t.setOptStrWidth(kUnitWidth);
         t.setValue(0.0000025);
     }},
    {"Double, engineering", [](userText& t) { t.setValue(123456.0); }},
    {"Text", [](userText& t) { t.setValue("Head 0 up"); }},
};

void fillDiskSizes(userProperty& p) {
    std::int16_t index = 0;
    for (const char* size : {"65 mm", "84 mm", "95 mm"}) {
        p.AddItem(size, index);
        p.setItemData(index, index);
        ++index;
    }
}

const Row<userProperty> kPropertyRows[] = {
    {"List",
     [](userProperty& p) {
         p.setCaption("Disk size");
         fillDiskSizes(p);
         p.setValue(std::int16_t{2});
     }},
    {"32-bit integer",
     [](userProperty& p) {
         p.setCaption("Spindle speed");
         p.setOptStr("rpm");
         p.setOptStrWidth(kUnitWidth);
         p.setValue(std::int32_t{5400});
     }},
    {"Double",
     [](userProperty& p) {
         p.setCaption("Radius");
         p.setDblScale(0.001);
         p.setOptStr("mm");
         p.setOptStrWidth(kUnitWidth);
         p.setValue(0.0225);
     }},
    {"Text",
     [](userProperty& p) {
         p.setCaption("Name");
         p.setValue("Spinstand");
     }},
    {"Check box",
     [](userProperty& p) {
         p.setCaption("Lockdown");
         p.setValue(true);
     }},
    {"Fixed label width",
     [](userProperty& p) {
         p.setCaption("Skew");
         p.setLayoutAuto(false);
         p.setLabelWidth(1200);
         p.setOptStr("deg");
         p.setOptStrWidth(kUnitWidth);
         p.setValue(-12.5);
     }},
    {"Label right-aligned",
     [](userProperty& p) {
         p.setCaption("Offset");
         p.setLabelAlignment(Qt::AlignRight);
         p.setValue(std::int32_t{-40});
     }},
};

QLabel* addLabel(QWidget* window, const QString& text, int left, int top, int width, bool heading = false) {
    auto* label = new QLabel(text, window);
    label->setGeometry(twipsRect(left, top, width, kRowHeight));
    if (heading) {
        QFont font = label->font();
        font.setBold(true);
        label->setFont(font);
    }
    return label;
}

// One section: a heading, then each row in every look. Returns the top of what follows.
template <typename Control, std::size_t N>
int addSection(QWidget* window, int top, const char* heading, const Row<Control> (&rows)[N]) {
    addLabel(window, heading, kMargin, top, kNameWidth, true);
    for (std::size_t column = 0; column < std::size(kLooks); ++column)
        addLabel(window, kLookNames[column], columnLeft(static_cast<int>(column)), top, kColumnWidth, true);
    top += kRowPitch;
    for (const Row<Control>& row : rows) {
        addLabel(window, row.name, kMargin, top, kNameWidth);
        for (std::size_t column = 0; column < std::size(kLooks); ++column) {
            auto* control = new Control(window);
            control->setGeometry(
                twipsRect(columnLeft(static_cast<int>(column)), top, kColumnWidth, kRowHeight));
            row.setup(*control);
            if constexpr (std::is_same_v<Control, userText>) // a field is named by its row and look
                control->setCaptionName(QStringLiteral("%1, %2").arg(QString::fromLatin1(row.name),
                                                                     QString::fromLatin1(kLookNames[column])));
            control->setLocked(kLooks[column] == Look::Locked);
            control->setEnabled(kLooks[column] != Look::Disabled);
        }
        top += kRowPitch;
    }
    return top + kRowPitch / 2;
}

} // namespace

QWidget* createControlsGallery(QWidget* parent) {
    auto* window = new QWidget(parent, Qt::Window);
    window->setWindowTitle("Velkor Spinstand Tool : Controls");
    int top = kMargin;
    top = addSection(window, top, "Numeric text field", kTextRows);
    top = addSection(window, top, "Labelled property field", kPropertyRows);
    window->setFixedSize(
        twipsSize(columnLeft(static_cast<int>(std::size(kLooks))) - kColumnGap + kMargin, top));
    return window;
}

} // namespace vss
