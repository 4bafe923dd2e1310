#include "app/frmOpen.h"

#include "app/frmFac.h"
#include "controls/Twips.h"
#include "driver/Types.h"
#include "kit/Navigation.h"
#include "kit/modGlobal.h"

#include <QMouseEvent>
#include <QPushButton>

namespace vss {
namespace {

constexpr int kClientWidthTwips = 5415;
// The outer height counts the title bar and the borders; the client area is the rest.
constexpr int kNonClientHeightTwips = 405;

} // namespace

int nextMenuLevel(int level, MenuGesture gesture) {
    switch (level) {
    case 0:
        return gesture == MenuGesture::A ? 1 : 0;
    case 1:
        return gesture == MenuGesture::A ? 0 : gesture == MenuGesture::B ? 2 : 1;
    case 2:
        return gesture == MenuGesture::B ? 1 : 2;
    default:
        return 0;
    }
}

int menuHeightTwips(int level) {
    switch (level) {
    case 1:
        return 2535;
    case 2:
        return 3600;
    default:
        return 1455;
    }
}

void prepareOperationCheck(DriverHandles& h) {
    if (h.driver->GetState() == state::Uninitialized)
        h.driver->Initialize();
    else
        h.driver->Reset();
    try {
        if (h.headLoader)
            h.headLoader->GetHeadLoader();
    } catch (const DriverError&) {
        h.headLoader.reset();
    }
}

frmOpen::frmOpen(QWidget* parent) : Form(parent) {
    setWindowTitle(appTitle() + QStringLiteral(" : Main Menu"));

    // Created in tab order.
    QPushButton* cmdClose = addButton("cmdClose", QStringLiteral("Close"), 4320, 120, 975, 375);
    connect(cmdClose, &QPushButton::clicked, this, &Form::accept);
    QPushButton* cmdInitialize =
        addButton("cmdInitialize", QStringLiteral("Operation Check"), 120, 120, 2775, 375);
    connect(cmdInitialize, &QPushButton::clicked, this, &frmOpen::cmdInitialize_Click);
    QPushButton* cmdCustomize =
        addButton("cmdCustomize", QStringLiteral("Measurement Position Settings"), 120, 600, 2775, 375);
    connect(cmdCustomize, &QPushButton::clicked, this,
            [this] { openModal(withViewOnly(menuWindows().measurementPositions, false)); });
    QPushButton* cmdService =
        addButton("cmdService", QStringLiteral("Service Operations"), 120, 1200, 2775, 375);
    connect(cmdService, &QPushButton::clicked, this, [this] { openModal(menuWindows().servicePanel); });
    QPushButton* cmdFactory =
        addButton("cmdFactory", QStringLiteral("Factory Settings"), 120, 2280, 2775, 375);
    connect(cmdFactory, &QPushButton::clicked, this,
            [this] { openModal([](QWidget* p) { return std::make_unique<frmFac>(p); }); });
    QPushButton* cmdSerSet = addButton("cmdSerSet", QStringLiteral("Service Settings"), 120, 1680, 2775, 375);
    connect(cmdSerSet, &QPushButton::clicked, this, [this] { openModal(menuWindows().serviceSettings); });
    QPushButton* cmdPiezo = addButton("cmdPiezo", QStringLiteral("Piezo Adjust"), 120, 2760, 2775, 375);
    connect(cmdPiezo, &QPushButton::clicked, this, [this] { openModal(menuWindows().piezoAdjust); });

    setLevel(0);
}

// A button below the visible height is hidden as well, so that neither Tab nor a key reaches it until the
// gesture reveals it.
void frmOpen::setLevel(int level) {
    level_ = (level >= 0 && level <= 2) ? level : 0;
    const int clientHeight = menuHeightTwips(level_) - kNonClientHeightTwips;
    setFixedSize(twipsSize(kClientWidthTwips, clientHeight));
    for (QPushButton* button : findChildren<QPushButton*>(Qt::FindDirectChildrenOnly))
        button->setVisible(button->geometry().bottom() < height());
}

void frmOpen::mousePressEvent(QMouseEvent* event) {
    setLevel(nextMenuLevel(level_, menuGesture(event->button(), event->modifiers())));
    Form::mousePressEvent(event);
}

void frmOpen::cmdInitialize_Click() {
    const FormFactory& panel = menuWindows().operationPanel;
    if (!panel)
        return;
    runBusy([&] {
        prepareOperationCheck(handles());
        const std::unique_ptr<Form> target = panel(this);
        execModal(*target);
    });
}

void frmOpen::onUnload() {
    DisableAllControls();
    trapErrors([] { handles().driver->Close(); });
}

} // namespace vss
