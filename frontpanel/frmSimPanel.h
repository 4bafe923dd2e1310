#pragma once

// The simulated instrument's front panel: the instrument's side of the bench. It shows the instrument's state
// live and lets a person switch its inputs, make operations fail, switch the realistic delays, play a
// scenario and reset the non-volatile memory. It reaches the instrument directly, never through the driver:
// the tool's windows cannot tell a change made here from one the hardware made.

#include "simulator/Factory.h"
#include "simulator/SimInstrument.h"

#include <QString>
#include <QTimer>
#include <QWidget>
#include <array>
#include <functional>
#include <memory>
#include <optional>

class QCheckBox;
class QComboBox;
class QLineEdit;
class QListWidget;

namespace vss {

// The panel's questions to the person: a message, a yes/no confirmation, the scenario file to load (empty:
// cancelled). By default message boxes and a file dialog of the panel's own; tests answer them.
struct PanelPrompts {
    std::function<void(const QString& text)> tell;
    std::function<bool(const QString& question)> confirm;
    std::function<QString()> chooseScenario;
};

class frmSimPanel : public QWidget {
    Q_OBJECT

public:
    static constexpr int kPollMs = 200;

    explicit frmSimPanel(std::shared_ptr<sim::SimInstrument> instrument, QWidget* parent = nullptr);

    void setPrompts(PanelPrompts prompts) { prompts_ = std::move(prompts); }

private:
    void buildReadout();
    void buildInputs();
    void buildFailures();
    void buildScenario();
    void buildMemory();

    void refresh();
    void showFailures();
    void inputClicked(std::size_t index, bool on);
    void cmdFail_Click();
    void cmdClear_Click();
    void cmdClearAll_Click();
    void cmdLoadScenario_Click();
    void cmdResetMemory_Click();
    void cboRepeat_Changed();
    // The failure the fields describe, or nothing after telling the person what is wrong with it.
    std::optional<int> enteredCount();

    std::shared_ptr<sim::SimInstrument> instrument_;
    PanelPrompts prompts_;
    QTimer poll_;

    QLineEdit* txtState_ = nullptr;
    QLineEdit* txtSpindle_ = nullptr;
    QLineEdit* txtClamp_ = nullptr;
    QLineEdit* txtHeadLoader_ = nullptr;
    QLineEdit* txtRadius_ = nullptr;
    QLineEdit* txtSkew_ = nullptr;
    std::array<QCheckBox*, 5> chkInput_{};
    QComboBox* cboOperation_ = nullptr;
    QComboBox* cboRepeat_ = nullptr;
    QLineEdit* txtCount_ = nullptr;
    QLineEdit* txtFailText_ = nullptr;
    QListWidget* lstFailures_ = nullptr;
    QLineEdit* txtScenario_ = nullptr;
    QCheckBox* chkDelays_ = nullptr;
};

// The front panel of the instrument the options resolve to, not shown yet; nullptr when they resolve to the
// platform's driver, which has a front panel of its own. Throws DriverError when the options' scenario is
// refused (malformed, unreadable, or given for the platform's driver).
std::unique_ptr<frmSimPanel> frontPanelFor(const DriverOptions& options);

} // namespace vss
