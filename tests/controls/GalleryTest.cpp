#include "controls/Gallery.h"

#include "controls/userProperty.h"
#include "controls/userText.h"

#include <QWidget>
#include <gtest/gtest.h>
#include <memory>
#include <set>

// The gallery is what screenshots show: every control inside the window, every editor kind and look present.
TEST(ControlsGallery, ShowsEveryModeAndLookInsideTheWindow) {
    const std::unique_ptr<QWidget> window(vss::createControlsGallery());
    window->show();
    EXPECT_EQ(window->windowTitle(), "Velkor Spinstand Tool : Controls");

    std::set<vss::Variant::Type> textTypes;
    for (const auto* field : window->findChildren<vss::userText*>(Qt::FindDirectChildrenOnly)) {
        EXPECT_TRUE(window->rect().contains(field->geometry()));
        textTypes.insert(field->Value().type());
    }
    EXPECT_EQ(textTypes.size(), 5U); // null, 16-bit, 32-bit, double, text

    std::set<vss::Variant::Type> propertyTypes;
    int locked = 0;
    for (const auto* row : window->findChildren<vss::userProperty*>()) {
        EXPECT_TRUE(window->rect().contains(row->geometry()));
        propertyTypes.insert(row->Value().type());
        locked += row->Locked() ? 1 : 0;
    }
    EXPECT_EQ(propertyTypes.size(), 5U); // list, 32-bit, double, text, check box
    EXPECT_GT(locked, 0);
}
