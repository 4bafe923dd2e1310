#include "app/frmTop.h"

#include "app/frmOpen.h"
#include "driver/DriverError.h"
#include "driver/Handles.h"
#include "kit/modGlobal.h"
#include "simulator/Factory.h"

#include <QFont>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <cstdio>
#include <cstdlib>

namespace vss {

frmTop::frmTop(QWidget* parent) : Form(parent) {
    setWindowTitle(appTitle());
    setClientSizeTwips(4815, 2160);

    QLabel* product =
        addLabel("lblCompanyProduct(0)", QStringLiteral("Velkor Spinstand Utility"), 240, 240, 4335, 480);
    QFont big = product->font();
    big.setPointSizeF(big.pointSizeF() * 1.5);
    big.setBold(true);
    product->setFont(big);
    product->setAlignment(Qt::AlignCenter);
    QLabel* model = addLabel("lblCompanyProduct(1)", QStringLiteral("R2208C"), 240, 780, 4335, 360);
    model->setAlignment(Qt::AlignCenter);

    QPushButton* cmdOpen = addButton("cmdOpen", QStringLiteral("Open"), 720, 1440, 1335, 435);
    connect(cmdOpen, &QPushButton::clicked, this, &frmTop::cmdOpen_Click);
    QPushButton* cmdExit = addButton("cmdExit", QStringLiteral("Exit"), 2760, 1440, 1335, 435);
    connect(cmdExit, &QPushButton::clicked, this, [] {
        // Ends the process at once: no window's unload handler runs and the driver is not called.
        std::fflush(nullptr);
        std::_Exit(EXIT_SUCCESS);
    });

    // The instrument to open; edit this default to address another instrument.
    txtRsrcString_ = new QLineEdit(
        QString::fromUtf8(kDefaultResource.data(), static_cast<qsizetype>(kDefaultResource.size())), this);
    place(txtRsrcString_, "txtRsrcString", 240, 1920, 1335, 285);
    txtRsrcString_->setVisible(false);
}

void frmTop::cmdOpen_Click() {
    Globals& g = globals();
    std::shared_ptr<DriverObject> object;
    const bool connected = trapErrors([&] {
        object = createDriverObject(g.driverProgId, g.driverOptions);
        acquireHandles(*object, g.handles);
    });
    if (!connected)
        return;

    runBusy([&] {
        g.handles.driver->Open(txtRsrcString_->text().toStdString());
        try {
            g.handles.service->BeginService();
        } catch (const DriverError&) {
            // A session whose service cannot begin is closed again, so that the instrument is not left held
            // open by a program that has no session on it.
            try {
                g.handles.driver->Close();
            } catch (const DriverError&) {
                // the first failure is the one reported
            }
            throw;
        }
        frmOpen menu(this);
        execModal(menu);
    });
    object.reset();
    releaseHandles(g.handles);
}

} // namespace vss
