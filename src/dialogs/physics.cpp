// The physics dialog's reactions and its confirmation.
#include "dialogs/physics.h"

#include "dialogs/case_settings.h"
#include "dialogs/number_fields.h"
#include "mesh/mesh.h"
#include "mesh/run_gate.h"
#include "setup/initial_fields.h"
#include "ui_physics.h"

#include <QMessageBox>

namespace {

// What the list indices mean.
constexpr int forced = 0;
constexpr int natural = 1;
constexpr int conductionOnly = 2;
constexpr int considered = 1;
constexpr int lftf = 2;

constexpr double topReynolds = 2000.0;
constexpr double topRayleigh = 1e6;

} // namespace

Initial_Win::Initial_Win(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::Initial_Win>()) {
    ui->setupUi(this);
    setNumberRange(ui->lineEdit_L, 0.0, 1000.0);
    setNumberRange(ui->lineEdit_Ma, 0.0, 0.3);
    setNumberRange(ui->lineEdit_Pr, 0.0, 1000.0);
    setNumberRange(ui->lineEdit_Re_or_Ra, 0.0, topReynolds);
    connectWidgets();
}

Initial_Win::~Initial_Win() = default;

// Deliberate: the two porous controls are connected to nothing and have no effect on a case.
void Initial_Win::connectWidgets() {
    const auto indexChanged = qOverload<int>(&QComboBox::currentIndexChanged);
    connect(ui->comboBox_flow, indexChanged, this, &Initial_Win::Flow_type);
    connect(ui->comboBox_heat_transfer, indexChanged, this, &Initial_Win::Heat_transfer);
    connect(ui->comboBox_Phase_change, indexChanged, this, &Initial_Win::Phase_change);
    connect(ui->comboBox_thermal_charactestics, indexChanged, this, &Initial_Win::Thermal_Characteristics);
    connect(ui->pushButton_ok, &QPushButton::clicked, this, [this] { confirm(); });
    connect(ui->pushButton_cancel, &QPushButton::clicked, this, &Initial_Win::cancel);
    connect(ui->pushButton_phase_change, &QPushButton::clicked, this, [this] { openPhaseChange(); });
    connect(&m_solidLiquid, &Solid_liquid::ok, this, [this] { returnFromPhaseChange(); });
    connect(&m_solidLiquid, &Solid_liquid::cancel, this, [this] { returnFromPhaseChange(); });
}

void Initial_Win::Flow_type() {
    const int flow = ui->comboBox_flow->currentIndex();
    if (flow == forced) {
        showFlowRows(true);
        ui->label_Pr->setText(tr("Pr"));
        ui->label_Ra_or_Re->setText(tr("Re"));
        setNumberRange(ui->lineEdit_Re_or_Ra, 0.0, topReynolds);
    } else if (flow == natural) {
        showFlowRows(true);
        ui->label_Pr->setText(tr("Pr"));
        ui->label_Ra_or_Re->setText(tr("Ra"));
        setNumberRange(ui->lineEdit_Re_or_Ra, 0.0, topRayleigh);
        ui->comboBox_heat_transfer->setCurrentIndex(considered);
    } else if (flow == conductionOnly) {
        showFlowRows(false);
        ui->label_Pr->setText(tr("alpha"));
        ui->comboBox_heat_transfer->setCurrentIndex(considered);
    }
}

void Initial_Win::showFlowRows(bool visible) {
    for (QWidget* widget :
         {static_cast<QWidget*>(ui->label_Ma), static_cast<QWidget*>(ui->lineEdit_Ma),
          static_cast<QWidget*>(ui->label_Ra_or_Re), static_cast<QWidget*>(ui->lineEdit_Re_or_Ra)})
        widget->setVisible(visible);
    // Conduction hides the two rows only; the reference velocity's label stays as it is.
    if (visible)
        ui->label_U_show->setVisible(true);
}

void Initial_Win::Phase_change() {
    const int phase = ui->comboBox_Phase_change->currentIndex();
    const bool changes = phase == considered || phase == lftf;
    if (changes)
        ui->comboBox_heat_transfer->setCurrentIndex(considered);
    ui->pushButton_phase_change->setVisible(changes);
}

void Initial_Win::Heat_transfer() {
    // Natural convection and phase change cannot run without heat transfer. Deliberate: LFTF does not force
    // it here.
    if (ui->comboBox_flow->currentIndex() == natural ||
        ui->comboBox_Phase_change->currentIndex() == considered)
        ui->comboBox_heat_transfer->setCurrentIndex(considered);
    const bool heat = ui->comboBox_heat_transfer->currentIndex() == considered;
    ui->label_Pr->setVisible(heat);
    ui->lineEdit_Pr->setVisible(heat);
    ui->label_dt_or_q->setVisible(heat);
    ui->lineEdit_dt_or_q->setVisible(heat);
    ui->label_thermal_characteristic->setVisible(heat);
    ui->comboBox_thermal_charactestics->setVisible(heat);
}

void Initial_Win::Thermal_Characteristics() {
    const int kind = ui->comboBox_thermal_charactestics->currentIndex();
    ui->label_dt_or_q->setText(kind == 0 ? tr("dT") : kind == 1 ? tr("q") : tr("Source"));
}

void Initial_Win::openPhaseChange() {
    const int phase = ui->comboBox_Phase_change->currentIndex();
    if (phase != considered && phase != lftf)
        return;
    m_solidLiquid.show();
    hide();
}

void Initial_Win::returnFromPhaseChange() {
    show();
    m_solidLiquid.hide();
}

void Initial_Win::confirm() {
    if (fluvane::mesh.cellCount > 0 && !fluvane::mesh.matchesVelocitySet()) {
        QMessageBox::information(this, tr("Error"),
                                 tr("The velocity file was read after the mesh: please read the mesh again"));
        return;
    }
    {
        const fluvane::VisitorHold hold;
        fluvane::initialiseFields(
            numberIn(ui->lineEdit_L), numberIn(ui->lineEdit_Ma), numberIn(ui->lineEdit_Pr),
            numberIn(ui->lineEdit_Re_or_Ra), numberIn(ui->lineEdit_dt_or_q),
            ui->comboBox_flow->currentIndex(), ui->comboBox_heat_transfer->currentIndex(),
            ui->comboBox_thermal_charactestics->currentIndex(), ui->comboBox_Phase_change->currentIndex(),
            ui->comboBox_time->currentIndex());
        const fluvane::CaseSettings& settings = fluvane::caseSettings;
        ui->label_U_show->setText(QStringLiteral("U0 = %1").arg(QString::number(settings.U0)));
        ui->label_tau_f_show->setText(QStringLiteral("tau_f = %1").arg(QString::number(settings.tauF)));
        ui->label_tau_g_show->setText(QStringLiteral("tau_g = %1").arg(QString::number(settings.tauG)));
    }
    emit ok();
}

void Initial_Win::closeEvent(QCloseEvent* event) {
    if (isVisible())
        emit cancel();
    QWidget::closeEvent(event);
}
