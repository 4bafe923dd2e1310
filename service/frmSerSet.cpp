#include "service/frmSerSet.h"

#include "kit/FormBuild.h"
#include "kit/Messages.h"
#include "kit/modGlobal.h"
#include "storage/modSsDefine.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QRadioButton>
#include <functional>

namespace vss {

namespace {

// The catalogue the program was started with; "VssTool.ini" beside the program when none was set.
std::string catalogueFile() {
    if (!globals().catalogueFile.empty())
        return globals().catalogueFile;
    return (QCoreApplication::applicationDirPath() + QLatin1Char('/') +
            QString::fromUtf8(kCatalogueFileName.data(), static_cast<qsizetype>(kCatalogueFileName.size())))
        .toStdString();
}

// The model list. Browsing the list writes nothing; a model is applied only when chosen. The keys that move
// through the closed list (arrows, Page Up and Down, Home, End, typing a name) only select; Enter chooses the
// model selected, and so does a click or Enter on an item of the open list, or the key that closes the open
// list (F4, Alt+Up, Alt+Down) on an item. Escape or a click elsewhere closes the open list, choosing nothing.
class ModelList : public QComboBox {
public:
    ModelList(QWidget* parent, std::function<void(int)> chosen)
        : QComboBox(parent), chosen_(std::move(chosen)) {
        connect(this, &QComboBox::activated, this, [this](int index) {
            if (!browsing_)
                chosen_(index);
        });
        // After the open list's own filter, so that this one sees its keys first.
        view()->installEventFilter(this);
    }

protected:
    void keyPressEvent(QKeyEvent* event) override {
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            event->accept();
            chosen_(currentIndex());
            return;
        }
        browse([&] { QComboBox::keyPressEvent(event); });
    }
    void inputMethodEvent(QInputMethodEvent* event) override {
        browse([&] { QComboBox::inputMethodEvent(event); });
    }
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == view() && event->type() == QEvent::ShortcutOverride &&
            closesOnItem(*static_cast<QKeyEvent*>(event))) {
            const int row = view()->currentIndex().row();
            hidePopup();
            if (row >= 0) {
                setCurrentIndex(row);
                chosen_(row);
            }
            return true;
        }
        return QComboBox::eventFilter(watched, event);
    }

private:
    void browse(const std::function<void()>& move) {
        browsing_ = true;
        move();
        browsing_ = false;
    }
    static bool closesOnItem(const QKeyEvent& key) {
        const bool alt = key.modifiers().testFlag(Qt::AltModifier);
        return (key.key() == Qt::Key_F4 && !alt) ||
               (alt && (key.key() == Qt::Key_Up || key.key() == Qt::Key_Down));
    }

    std::function<void(int)> chosen_;
    bool browsing_ = false;
};

} // namespace

frmSerSet::frmSerSet(QWidget* parent) : CommandForm(parent) {
    setWindowTitle(appTitle() + QStringLiteral(" (Service use only)"));
    setClientSizeTwips(5880, 4740);

    QLabel* lblSpinstand =
        newLabel(this, "lblSpinstand", QStringLiteral("Spinstand Model"), 120, 165, 1620, 255);
    cmbSpinstand_ = put(new ModelList(this, [this](int index) { cmbSpinstand_Click(index); }), "cmbSpinstand",
                        1800, 120, 3960, 315);
    lblSpinstand->setBuddy(cmbSpinstand_);
    usrSerialNumber_ = newProperty(this, "usrSerialNumber", 120, 600, 5640, 315, {});
    connect(usrSerialNumber_, &userProperty::ChangeValue, this, &frmSerSet::usrSerialNumber_ChangeValue);
    usrHardwareRevision_ = newProperty(this, "usrHardwareRevision", 120, 1020, 5640, 315, {});

    QGroupBox* frmSetting =
        newFrame(this, "frmSetting", QStringLiteral("Setting Status"), 120, 1440, 5640, 615);
    optService_ =
        put(new QRadioButton(QStringLiteral("Service"), frmSetting), "optSetting_1", 240, 270, 1215, 255);
    connect(optService_, &QRadioButton::clicked, this, [this] { optSetting_Click(true); });
    optNormal_ =
        put(new QRadioButton(QStringLiteral("Normal"), frmSetting), "optSetting_0", 2880, 270, 1215, 255);
    connect(optNormal_, &QRadioButton::clicked, this, [this] { optSetting_Click(false); });

    QPushButton* cmdSpinstand =
        newButton(this, "cmdSpinstand", QStringLiteral("View Spinstand Parameters"), 120, 2220, 2760, 375);
    connect(cmdSpinstand, &QPushButton::clicked, this, [this] { view(menuWindows().spinstandSettings); });
    QPushButton* cmdSpindle =
        newButton(this, "cmdSpindle", QStringLiteral("View Spindle Parameters"), 3000, 2220, 2760, 375);
    connect(cmdSpindle, &QPushButton::clicked, this, [this] { view(menuWindows().spindleProperty); });
    QPushButton* cmdStage =
        newButton(this, "cmdStage", QStringLiteral("View Stage Parameters"), 120, 2700, 2760, 375);
    connect(cmdStage, &QPushButton::clicked, this, [this] { view(menuWindows().stageProperty); });
    QPushButton* cmdCustomize =
        newButton(this, "cmdCustomize", QStringLiteral("View Measurement Position"), 3000, 2700, 2760, 375);
    connect(cmdCustomize, &QPushButton::clicked, this, [this] { view(menuWindows().measurementPositions); });
    QPushButton* cmdBacklashComp =
        newButton(this, "cmdBacklashComp", QStringLiteral("Backlash Compensation"), 120, 3180, 2760, 375);
    connect(cmdBacklashComp, &QPushButton::clicked, this, &frmSerSet::cmdBacklashComp_Click);
    QPushButton* cmdSave =
        newButton(this, "cmdSave", QStringLiteral("Save Setting to EEPROM"), 120, 3780, 2760, 375);
    connect(cmdSave, &QPushButton::clicked, this, &frmSerSet::cmdSave_Click);
    QPushButton* cmdRecall =
        newButton(this, "cmdRecall", QStringLiteral("Recall Setting from EEPROM"), 3000, 3780, 2760, 375);
    connect(cmdRecall, &QPushButton::clicked, this, &frmSerSet::cmdRecall_Click);
    QPushButton* cmdReturn = newButton(this, "cmdReturn", QStringLiteral("Return"), 4545, 4260, 1215, 375);
    connect(cmdReturn, &QPushButton::clicked, this, &Form::accept);

    Form_Load();
}

// The catalogue is read again at every opening, so that an edited file counts without a restart. A catalogue
// that cannot be used has said why and leaves only "Recalled".
void frmSerSet::Form_Load() {
    ReadSpinstandDefinitions(catalogueFile(), messageSink());
    usrHardwareRevision_->setCaption(QStringLiteral("Hardware Rev"));
    usrSerialNumber_->setCaption(QStringLiteral("Serial Number"));
    usrHardwareRevision_->setLocked(true);
    cmbSpinstand_->clear();
    for (std::int16_t i = 0;; ++i) {
        const std::string name = GetSpinstandName(i);
        if (name.empty())
            break;
        cmbSpinstand_->addItem(QString::fromStdString(name));
    }
    cmbSpinstand_->addItem(QStringLiteral("Recalled"));
    selectRecalled();
    trapErrors([this] { refresh(); });
}

void frmSerSet::refresh() {
    IDriverService& service = *handles().service;
    showValue(usrHardwareRevision_, Variant(service.GetHardwareRevision()));
    showValue(usrSerialNumber_, Variant(service.GetSerialNumber()));
    refreshSettingStatus();
}

void frmSerSet::refreshSettingStatus() {
    const bool unknown = handles().service->GetSettingUnknown();
    settingUnknown_ = unknown;
    optService_->setChecked(unknown);
    optNormal_->setChecked(!unknown);
}

void frmSerSet::selectRecalled() {
    cmbSpinstand_->setCurrentIndex(cmbSpinstand_->count() - 1);
}

// "Recalled" is what the instrument already holds: choosing it sends nothing.
void frmSerSet::cmbSpinstand_Click(int index) {
    if (index < 0 || index == cmbSpinstand_->count() - 1)
        return;
    // A model refused part-way has written some of its values: the page reads back what the instrument holds.
    writeValue(
        [index] {
            ApplySpinstandDefinition(static_cast<std::int16_t>(index), *handles().service, messageSink());
        },
        [this] { refresh(); });
}

// The field commits on every Enter and focus loss; only a new serial number is sent. It is not read back
// after it is written (once written, the text shown is the instrument's); a refused one is.
void frmSerSet::usrSerialNumber_ChangeValue() {
    const Variant value = usrSerialNumber_->Value();
    if (value.type() != Variant::Type::Text || !usrSerialNumber_->Edited())
        return;
    writeValue([&value] { handles().service->SetSerialNumber(value.text()); },
               [this, &value] { showValue(usrSerialNumber_, value); },
               [this] { showValue(usrSerialNumber_, Variant(handles().service->GetSerialNumber())); });
}

// Only the other status is sent: a click on the option already chosen writes nothing. A refused status is
// read back, so that the options show the instrument's.
void frmSerSet::optSetting_Click(bool service) {
    if (service == settingUnknown_)
        return;
    writeValue([service] { handles().service->SetSettingUnknown(service); },
               [this, service] { settingUnknown_ = service; }, [this] { refreshSettingStatus(); });
}

void frmSerSet::cmdSave_Click() {
    command([] {
        IDriverService& s = *handles().service;
        s.SaveVersionData();
        s.SaveSpinstandConfiguration();
        s.SaveSpindleProperty();
        s.SaveStageProperty();
        s.SaveCustomerConfiguration();
    });
}

void frmSerSet::cmdRecall_Click() {
    command(
        [] {
            IDriverService& s = *handles().service;
            s.RecallVersionData();
            s.RecallSpinstandConfiguration();
            s.RecallSpindleProperty();
            s.RecallStageProperty();
            s.RecallCustomerConfiguration();
        },
        [this] {
            selectRecalled();
            refresh();
        });
}

void frmSerSet::view(const ViewFactory& page) {
    openModal(withViewOnly(page, true));
}

// The backlash page is opened editable, and this window stays as it is while it is up.
void frmSerSet::cmdBacklashComp_Click() {
    const FormFactory make = withViewOnly(menuWindows().backlashCompensation, false);
    if (!make)
        return;
    trapErrors([&] {
        const std::unique_ptr<Form> page = make(this);
        execModal(*page);
    });
}

} // namespace vss
