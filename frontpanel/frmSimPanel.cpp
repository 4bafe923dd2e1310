#include "frontpanel/frmSimPanel.h"

#include "driver/DriverError.h"
#include "driver/ShownText.h"
#include "driver/StateText.h"
#include "driver/Types.h"
#include "kit/FormBuild.h"
#include "simulator/Scenario.h"
#include "simulator/SimulatedInstrument.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileDialog>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <exception>

namespace vss {

namespace {

constexpr int kRow = 330; // a text row, twips

struct InputSwitch {
    sim::Input input;
    const char* caption;
};
// The panel's five switches, in the order of chkInput_0 to chkInput_4.
constexpr std::array<InputSwitch, 5> kSwitches{{
    {sim::Input::Interlock, "Interlock detected"},
    {sim::Input::Emergency, "Emergency stop pressed"},
    {sim::Input::OuterCover, "Outer cover open"},
    {sim::Input::Vacuum, "Vacuum on"},
    {sim::Input::SpindleSet, "Disk set on the spindle"},
}};

// A caption left of its field on the same row; the field takes the caption as its name for screen readers.
template <class W>
W* captioned(QWidget* parent, const char* labelName, const QString& caption, W* field,
             int labelWidth = 1140) {
    const QRect r = field->geometry();
    auto* label = new QLabel(caption, parent);
    label->setObjectName(QString::fromLatin1(labelName));
    label->setGeometry(r.left() - twipsToPixels(labelWidth + 60), r.top() + 2, twipsToPixels(labelWidth),
                       r.height());
    label->setBuddy(field);
    field->setAccessibleName(QString(caption).remove(QLatin1Char('&')));
    return field;
}

QLineEdit* readout(QGroupBox* frame, const char* name, const char* labelName, const QString& caption,
                   int left, int top) {
    QLineEdit* box = newTextBox(frame, name, left, top, 1860, kRow, true);
    box->setFocusPolicy(Qt::TabFocus); // read, not edited: reached with the keyboard only
    return captioned(frame, labelName, caption, box);
}

QString failureLine(const sim::InjectedFailure& f) {
    const QString times = f.remaining < 0    ? QStringLiteral("until cleared")
                          : f.remaining == 1 ? QStringLiteral("once more")
                                             : QStringLiteral("%1 more times").arg(f.remaining);
    return QStringLiteral("%1, %2: %3")
        .arg(QString::fromStdString(f.operation), times, QString::fromStdString(f.description));
}

} // namespace

frmSimPanel::frmSimPanel(std::shared_ptr<sim::SimInstrument> instrument, QWidget* parent)
    : QWidget(parent, Qt::Window), instrument_(std::move(instrument)) {
    setObjectName(QStringLiteral("frmSimPanel"));
    setWindowTitle(QStringLiteral("Simulated Instrument"));
    // The tool ends when its own windows close; the panel goes with it.
    setAttribute(Qt::WA_QuitOnClose, false);
    setFixedSize(twipsSize(6840, 7560));
    prompts_ = {
        [this](const QString& text) {
            // A scenario's or the simulator's text, under the one rule for outside texts.
            const QString shown = QString::fromStdString(shownText(text.toStdString()));
            QMessageBox box(QMessageBox::NoIcon, windowTitle(), shown, QMessageBox::Ok, this);
            box.setTextFormat(Qt::PlainText); // never read as markup
            box.setWindowModality(Qt::WindowModal);
            box.exec();
        },
        [this](const QString& question) {
            QMessageBox box(QMessageBox::Question, windowTitle(), question,
                            QMessageBox::Yes | QMessageBox::No, this);
            box.setTextFormat(Qt::PlainText);
            box.setDefaultButton(QMessageBox::No);
            box.setWindowModality(Qt::WindowModal);
            return box.exec() == QMessageBox::Yes;
        },
        [this] {
            QFileDialog dialog(this, QStringLiteral("Load Scenario"), QString(),
                               QStringLiteral("Scenarios (*.txt *.scenario);;All files (*)"));
            dialog.setWindowModality(Qt::WindowModal);
            dialog.setFileMode(QFileDialog::ExistingFile);
            return dialog.exec() == QDialog::Accepted ? dialog.selectedFiles().value(0) : QString();
        },
    };
    buildReadout();
    buildInputs();
    buildFailures();
    buildScenario();
    buildMemory();
    refresh();
    // The panel follows the instrument every 200 ms, and plays the scenario's timed steps on the same beat.
    poll_.setInterval(kPollMs);
    connect(&poll_, &QTimer::timeout, this, [this] {
        instrument_->advanceScenario();
        refresh();
    });
    poll_.start();
}

// ---------------------------------------------------------------------------------------------------------------
// Building

void frmSimPanel::buildReadout() {
    QGroupBox* frame = newFrame(this, "fraInstrument", QStringLiteral("Instrument"), 120, 120, 6600, 1500);
    txtState_ = readout(frame, "txtState", "lblState", QStringLiteral("State"), 1320, 300);
    txtSpindle_ = readout(frame, "txtSpindle", "lblSpindle", QStringLiteral("Spindle"), 4620, 300);
    txtClamp_ = readout(frame, "txtClamp", "lblClamp", QStringLiteral("Clamp"), 1320, 700);
    txtHeadLoader_ =
        readout(frame, "txtHeadLoader", "lblHeadLoader", QStringLiteral("Head loader"), 4620, 700);
    txtRadius_ = readout(frame, "txtRadius", "lblRadius", QStringLiteral("Radius"), 1320, 1100);
    txtSkew_ = readout(frame, "txtSkew", "lblSkew", QStringLiteral("Skew"), 4620, 1100);
}

void frmSimPanel::buildInputs() {
    QGroupBox* frame = newFrame(this, "fraInputs", QStringLiteral("Inputs"), 120, 1740, 6600, 1320);
    for (std::size_t i = 0; i < kSwitches.size(); ++i) {
        const std::string name = "chkInput_" + std::to_string(i);
        auto* box = put(new QCheckBox(QString::fromLatin1(kSwitches[i].caption), frame), name.c_str(),
                        i % 2 == 0 ? 240 : 3420, 300 + static_cast<int>(i / 2) * 340, 3060, kRow);
        connect(box, &QCheckBox::clicked, this, [this, i](bool on) { inputClicked(i, on); });
        chkInput_[i] = box;
    }
}

void frmSimPanel::buildFailures() {
    QGroupBox* frame = newFrame(this, "fraFailures", QStringLiteral("Failures"), 120, 3180, 6600, 2820);
    cboOperation_ = put(new QComboBox(frame), "cboOperation", 1320, 300, 5160, kRow);
    cboOperation_->setEditable(true);
    cboOperation_->setInsertPolicy(QComboBox::NoInsert);
    for (const std::string& op : sim::operationNames())
        cboOperation_->addItem(QString::fromStdString(op));
    cboOperation_->setCurrentText(QStringLiteral("IDriver.Load")); // the failure a person rehearses most
    captioned(frame, "lblOperation", QStringLiteral("&Operation"), cboOperation_);
    cboOperation_->lineEdit()->setAccessibleName(cboOperation_->accessibleName());

    // handled by cboRepeat_Changed, connected below once the count field it enables exists
    cboRepeat_ = put(new QComboBox(frame), "cboRepeat", 1320, 700, 1800, kRow);
    cboRepeat_->addItems(
        {QStringLiteral("Once"), QStringLiteral("N times"), QStringLiteral("Until cleared")});
    captioned(frame, "lblRepeat", QStringLiteral("&Repeat"), cboRepeat_);
    txtCount_ = newTextBox(frame, "txtCount", 3660, 700, 900, kRow, false);
    txtCount_->setText(QStringLiteral("2"));
    captioned(frame, "lblCount", QStringLiteral("&N"), txtCount_, 360);
    connect(cboRepeat_, &QComboBox::currentIndexChanged, this, [this] { cboRepeat_Changed(); });
    cboRepeat_Changed();

    txtFailText_ = newTextBox(frame, "txtFailText", 1320, 1100, 5160, kRow, false);
    txtFailText_->setMaxLength(static_cast<int>(sim::kMaxFailureText) + 1); // one over: refused, not cut
    captioned(frame, "lblFailText", QStringLiteral("&Text"), txtFailText_);

    connect(newButton(frame, "cmdFail", QStringLiteral("&Fail"), 1320, 1500, 1500, 360),
            &QPushButton::clicked, this, [this] { cmdFail_Click(); });
    connect(newButton(frame, "cmdClear", QStringLiteral("C&lear"), 2940, 1500, 1500, 360),
            &QPushButton::clicked, this, [this] { cmdClear_Click(); });
    connect(newButton(frame, "cmdClearAll", QStringLiteral("Clear &All"), 4560, 1500, 1500, 360),
            &QPushButton::clicked, this, [this] { cmdClearAll_Click(); });
    lstFailures_ = put(new QListWidget(frame), "lstFailures", 120, 1980, 6360, 720);
    lstFailures_->setAccessibleName(QStringLiteral("Failures set"));
}

void frmSimPanel::buildScenario() {
    QGroupBox* frame = newFrame(this, "fraScenario", QStringLiteral("Scenario"), 120, 6120, 6600, 780);
    txtScenario_ = newTextBox(frame, "txtScenario", 120, 300, 4560, kRow, true);
    txtScenario_->setFocusPolicy(Qt::TabFocus);
    txtScenario_->setAccessibleName(QStringLiteral("Scenario"));
    connect(newButton(frame, "cmdLoadScenario", QStringLiteral("Load &Scenario..."), 4800, 285, 1680, 360),
            &QPushButton::clicked, this, [this] { cmdLoadScenario_Click(); });
}

void frmSimPanel::buildMemory() {
    chkDelays_ =
        put(new QCheckBox(QStringLiteral("Realistic &delays"), this), "chkDelays", 240, 7050, 3000, kRow);
    connect(chkDelays_, &QCheckBox::clicked, this, [this](bool on) { instrument_->setDelays(on); });
    connect(newButton(this, "cmdResetMemory", QStringLiteral("Reset &Memory..."), 4740, 7035, 1980, 360),
            &QPushButton::clicked, this, [this] { cmdResetMemory_Click(); });
}

// ---------------------------------------------------------------------------------------------------------------
// Showing the instrument

void frmSimPanel::refresh() {
    const sim::PanelReadout r = instrument_->readout();
    showText(txtState_, QStringLiteral("0x%1 %2").arg(
                            QString::number(r.stateCode, 16).toUpper().rightJustified(4, QLatin1Char('0')),
                            QString::fromStdString(r.stateText)));
    showText(txtSpindle_, QString::fromLatin1(spindleStateText(r.spindleState)));
    showText(txtClamp_, r.clamp ? QStringLiteral("ON") : QStringLiteral("OFF"));
    showText(txtHeadLoader_, !r.headLoaderPresent ? QStringLiteral("NOT INSTALLED")
                             : r.headsDown        ? QStringLiteral("DOWN")
                                                  : QStringLiteral("UP"));
    showText(txtRadius_, QStringLiteral("%1 mm").arg(r.radius * 1000.0, 0, 'f', 3));
    showText(txtSkew_, QStringLiteral("%1 deg").arg(r.skew, 0, 'f', 2));
    for (std::size_t i = 0; i < kSwitches.size(); ++i)
        chkInput_[i]->setChecked(instrument_->input(kSwitches[i].input));
    chkDelays_->setChecked(instrument_->delays());
    showFailures();
    const sim::SimInstrument::ScenarioProgress s = instrument_->scenarioProgress();
    showText(txtScenario_, s.name.empty() ? QStringLiteral("none")
                                          : QStringLiteral("%1: %2 of %3 steps done")
                                                .arg(QString::fromStdString(s.name))
                                                .arg(s.done)
                                                .arg(s.total));
}

void frmSimPanel::showFailures() {
    QStringList lines;
    for (const sim::InjectedFailure& f : instrument_->failures())
        lines << failureLine(f);
    QStringList shown;
    for (int i = 0; i < lstFailures_->count(); ++i)
        shown << lstFailures_->item(i)->text();
    if (lines == shown)
        return; // the person's selection and scroll position stay
    lstFailures_->clear();
    lstFailures_->addItems(lines);
}

// ---------------------------------------------------------------------------------------------------------------
// Handlers

void frmSimPanel::inputClicked(std::size_t index, bool on) {
    instrument_->setInput(kSwitches[index].input, on);
    refresh();
}

void frmSimPanel::cboRepeat_Changed() {
    txtCount_->setEnabled(cboRepeat_->currentIndex() == 1);
}

std::optional<int> frmSimPanel::enteredCount() {
    if (cboRepeat_->currentIndex() == 0)
        return 1;
    if (cboRepeat_->currentIndex() == 2)
        return -1;
    bool whole = false;
    const int n = txtCount_->text().trimmed().toInt(&whole);
    if (!whole || n < 1 || n > sim::kMaxFailureCount) {
        prompts_.tell(QStringLiteral("Cannot set the failure: the count \"%1\" is not a number from 1 to %2.")
                          .arg(txtCount_->text())
                          .arg(sim::kMaxFailureCount));
        return std::nullopt;
    }
    return n;
}

void frmSimPanel::cmdFail_Click() {
    const std::string operation = cboOperation_->currentText().trimmed().toStdString();
    const std::string text = txtFailText_->text().toStdString();
    const std::optional<int> times = enteredCount();
    if (!times)
        return;
    if (const std::string problem = sim::failureProblem(operation, text, *times); !problem.empty()) {
        prompts_.tell(QStringLiteral("Cannot set the failure: %1.").arg(QString::fromStdString(problem)));
        return;
    }
    instrument_->failOperation(operation, text, *times);
    refresh();
}

void frmSimPanel::cmdClear_Click() {
    const std::string operation = cboOperation_->currentText().trimmed().toStdString();
    try {
        instrument_->failOperation(operation, {}, 0);
    } catch (const std::exception& e) {
        prompts_.tell(QString::fromStdString(e.what()));
    }
    refresh();
}

void frmSimPanel::cmdClearAll_Click() {
    instrument_->clearFailures();
    refresh();
}

void frmSimPanel::cmdLoadScenario_Click() {
    const QString path = prompts_.chooseScenario();
    if (path.isEmpty())
        return;
    try {
        instrument_->runScenario(sim::readScenario(path.toStdString()));
    } catch (const std::exception& e) {
        prompts_.tell(QString::fromStdString(e.what()));
    }
    refresh();
}

void frmSimPanel::cmdResetMemory_Click() {
    if (!prompts_.confirm(QStringLiteral("Reset the non-volatile memory to the factory values? Every setting "
                                         "saved on this instrument is lost.")))
        return;
    try {
        instrument_->resetNonVolatileMemory();
        prompts_.tell(QStringLiteral("The non-volatile memory holds the factory values. The working values "
                                     "take them with each Recall."));
    } catch (const std::exception& e) {
        prompts_.tell(QString::fromStdString(e.what()));
    }
}

std::unique_ptr<frmSimPanel> frontPanelFor(const DriverOptions& options) {
    std::shared_ptr<sim::SimInstrument> instrument = simulatedInstrument(options);
    return instrument ? std::make_unique<frmSimPanel>(std::move(instrument)) : nullptr;
}

} // namespace vss
