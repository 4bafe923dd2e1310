#include "piezo/frmSerPiezo.h"

#include "controls/modConvUtil.h"
#include "kit/FormBuild.h"
#include "kit/SettingTransfer.h"
#include "kit/modGlobal.h"

#include <QHeaderView>
#include <QTableWidget>
#include <vector>

namespace vss {
namespace {

constexpr std::int16_t kDigits = 4;
constexpr int kGridRowHeight = 300; // twips

QString engineering(double value) {
    return QString::fromStdString(FormatEngNumber(value, kDigits));
}

QTableWidget* newGrid(QWidget* frame, const char* name, const QString& accessibleName, int top, int height) {
    auto* grid = put(new QTableWidget(frame), name, 120, top, 4920, height);
    grid->setAccessibleName(accessibleName);
    grid->setEditTriggers(QAbstractItemView::NoEditTriggers);
    grid->setTabKeyNavigation(false);    // Tab leaves the grid; the arrows walk its cells
    grid->setCornerButtonEnabled(false); // nothing to select in a report
    grid->verticalHeader()->setDefaultSectionSize(twipsToPixels(kGridRowHeight));
    return grid;
}

// Shortens a grid to whole rows, so that the last row it shows is never cut in half; its top stays.
void showWholeRows(QTableWidget* grid) {
    const int frame = 2 * grid->frameWidth();
    const QHeaderView* header = grid->horizontalHeader();
    const int headerHeight = header->isHidden() ? 0 : header->sizeHint().height();
    const int row = grid->verticalHeader()->defaultSectionSize();
    const int rows = (grid->height() - frame - headerHeight) / row;
    grid->resize(grid->width(), frame + headerHeight + rows * row);
}

void setCell(QTableWidget* grid, int row, int column, const QString& text) {
    auto* cell = new QTableWidgetItem(text);
    cell->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
    grid->setItem(row, column, cell);
}

struct ControlRow {
    const char* name;
    const char* unit;
    std::vector<double> PiezoControlData::*values;
};

constexpr ControlRow kControlRows[] = {
    {"Lth", "m", &PiezoControlData::lth},     {"Ta", "s", &PiezoControlData::ta},
    {"Ks", "m/s", &PiezoControlData::ks},     {"Lstep", "m", &PiezoControlData::lstep},
    {"Tstep", "s", &PiezoControlData::tstep},
};
constexpr int kControlColumns = 2;

} // namespace

frmSerPiezo::frmSerPiezo(QWidget* parent) : CommandForm(parent) {
    setWindowTitle(appTitle() + QStringLiteral(" : Piezo Information"));
    setClientSizeTwips(5400, 6960);

    QGroupBox* frmSerial = newFrame(this, "frmSerial", QStringLiteral("Piezo Serial"), 120, 60, 5160, 720);
    usrSerial_ = newValueField(frmSerial, "usrSerial", 120, 300, 4920, 300,
                               {.caption = QStringLiteral("Piezo Serial"), .locked = true});
    QGroupBox* frmPiezoCal =
        newFrame(this, "frmPiezoCal", QStringLiteral("Piezo Calibration Data"), 120, 900, 5160, 3000);
    grdPiezoCal_ = newGrid(frmPiezoCal, "grdPiezoCal", QStringLiteral("Piezo Calibration Data"), 300, 2580);
    grdPiezoCal_->setColumnCount(2);
    grdPiezoCal_->horizontalHeader()->hide(); // the grid's first row carries the column captions
    grdPiezoCal_->verticalHeader()->hide();
    grdPiezoCal_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    QGroupBox* frmPiezoControl =
        newFrame(this, "frmPiezoControl", QStringLiteral("Piezo Control Data"), 120, 4020, 5160, 2280);
    grdPiezoControl_ =
        newGrid(frmPiezoControl, "grdPiezoControl", QStringLiteral("Piezo Control Data"), 300, 1860);
    grdPiezoControl_->setColumnCount(kControlColumns);
    grdPiezoControl_->setRowCount(static_cast<int>(std::size(kControlRows)));
    grdPiezoControl_->setHorizontalHeaderLabels({QStringLiteral("0"), QStringLiteral("1")});
    for (int r = 0; r < grdPiezoControl_->rowCount(); ++r)
        grdPiezoControl_->setVerticalHeaderItem(
            r, new QTableWidgetItem(QString::fromLatin1(kControlRows[r].name)));
    grdPiezoControl_->horizontalHeader()->setSectionResizeMode(QHeaderView::Stretch);
    showWholeRows(grdPiezoCal_);
    showWholeRows(grdPiezoControl_);
    QPushButton* cmdExport = newButton(this, "cmdExport", QStringLiteral("Export"), 120, 6420, 1215, 375);
    connect(cmdExport, &QPushButton::clicked, this,
            [this] { exportSettingGroup(*this, SettingGroup::PiezoInformation); });
    QPushButton* cmdReturn = newButton(this, "cmdReturn", QStringLiteral("Return"), 4305, 6420, 975, 375);
    connect(cmdReturn, &QPushButton::clicked, this, &Form::accept);

    usrSerial_->setValue(Variant(handles().service->GetPiezoSerial()));
    fillCalibrationGrid();
    fillControlGrid();
}

// Row 0 holds the captions, row i + 1 the point i. A position without its voltage (or the other way round)
// leaves its cell empty.
void frmSerPiezo::fillCalibrationGrid() {
    const PiezoCalData cal = handles().service->GetPiezoCalData();
    const std::size_t points = std::max(cal.volt.size(), cal.position.size());
    grdPiezoCal_->setRowCount(static_cast<int>(points) + 1);
    for (int column = 0; column < 2; ++column) {
        auto* caption =
            new QTableWidgetItem(column == 0 ? QStringLiteral("Volt(V)") : QStringLiteral("Position(m)"));
        caption->setFlags(Qt::ItemIsEnabled);
        QFont bold = caption->font();
        bold.setBold(true);
        caption->setFont(bold);
        grdPiezoCal_->setItem(0, column, caption);
    }
    for (std::size_t i = 0; i < points; ++i) {
        const int row = static_cast<int>(i) + 1;
        if (i < cal.volt.size())
            setCell(grdPiezoCal_, row, 0, engineering(cal.volt[i]));
        if (i < cal.position.size())
            setCell(grdPiezoCal_, row, 1, engineering(cal.position[i]));
    }
}

// The unit follows the number directly.
void frmSerPiezo::fillControlGrid() {
    const PiezoControlData control = handles().service->GetPiezoControlData();
    for (int r = 0; r < grdPiezoControl_->rowCount(); ++r) {
        const ControlRow& quantity = kControlRows[r];
        const std::vector<double>& values = control.*quantity.values;
        for (int c = 0; c < kControlColumns && static_cast<std::size_t>(c) < values.size(); ++c)
            setCell(grdPiezoControl_, r, c,
                    engineering(values[static_cast<std::size_t>(c)]) + QString::fromLatin1(quantity.unit));
    }
}

} // namespace vss
