#include "app/frmFac.h"

#include "kit/Navigation.h"

#include <QPushButton>

namespace vss {

frmFac::frmFac(QWidget* parent) : Form(parent) {
    setWindowTitle(appTitle() + QStringLiteral(" (Factory use only)"));
    setClientSizeTwips(4815, 2040);

    QPushButton* cmdSpinstand =
        addButton("cmdSpinstand", QStringLiteral("Spinstand Settings"), 1020, 120, 2775, 375);
    connect(cmdSpinstand, &QPushButton::clicked, this,
            [this] { openModal(withViewOnly(menuWindows().spinstandSettings, false)); });
    QPushButton* cmdPiezo = addButton("cmdPiezo", QStringLiteral("Piezo Settings"), 1020, 600, 2775, 375);
    connect(cmdPiezo, &QPushButton::clicked, this, [this] { openModal(menuWindows().piezoSettings); });
    QPushButton* cmdVersion = addButton("cmdVersion", QStringLiteral("Version"), 1020, 1080, 2775, 375);
    connect(cmdVersion, &QPushButton::clicked, this, [this] { openModal(menuWindows().version); });
    QPushButton* cmdReturn = addButton("cmdReturn", QStringLiteral("Return"), 2820, 1560, 975, 375);
    connect(cmdReturn, &QPushButton::clicked, this, &Form::accept);
}

} // namespace vss
