// The 2D boundary wizard's pages and steps.
#include "dialogs/boundary.h"

#include "dialogs/case_settings.h"
#include "dialogs/number_fields.h"
#include "dialogs/wizard_keys.h"
#include "mesh/mesh.h"
#include "mesh/run_gate.h"
#include "setup/boundary_assignment.h"
#include "ui_boundary.h"

namespace {

// What the list indices mean.
constexpr int outflow = 2;
constexpr int rotation = 1;
constexpr int adiabatic = 0;
constexpr int constantTemperature = 1;
constexpr int constantFlux = 2;
constexpr int enthalpyForm = 1;

/// What a page shows of its zone.
struct ZoneState {
    bool heatOn = false;
    bool hasFace = false;
    int thermalKind = adiabatic;
    double T = 0.0;
    double q = 0.0;
    double fl = 0.0;
};

/// Read from the zone's last face, in one hold so that it is of one instant.
ZoneState readZone(const fluvane::ZoneWalk& walk) {
    const fluvane::VisitorHold hold;
    ZoneState state;
    state.heatOn = fluvane::caseSettings.heatOn;
    const std::int32_t last = walk.endFace() - 1;
    if (last < 0 || static_cast<std::size_t>(last) >= fluvane::mesh.faces2D.size())
        return state;
    const fluvane::FaceRecord& face = fluvane::mesh.faces2D[static_cast<std::size_t>(last)];
    state.hasFace = true;
    state.thermalKind = face.thermalKind;
    state.T = face.T;
    state.q = face.q;
    state.fl = face.fl;
    return state;
}

} // namespace

Boundary_Information_Win::Boundary_Information_Win(QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::Boundary_Information_Win>()) {
    ui->setupUi(this);
    bindNextKeys(this, ui->pushButtonnext);
    const auto indexChanged = qOverload<int>(&QComboBox::currentIndexChanged);
    connect(ui->comboBox_flow_type, indexChanged, this, &Boundary_Information_Win::Flow_type);
    connect(ui->comboBox, indexChanged, this, &Boundary_Information_Win::Thermal);
    connect(ui->pushButtonnext, &QPushButton::clicked, this, [this] { goOn(); });
    connect(ui->pushButtonlast, &QPushButton::clicked, this, [this] { goBack(); });
    connect(ui->pushButtoncancel, &QPushButton::clicked, this, &Boundary_Information_Win::cancel);
}

Boundary_Information_Win::~Boundary_Information_Win() = default;

void Boundary_Information_Win::start() {
    refresh();
}

void Boundary_Information_Win::startOver() {
    m_walk = {};
}

void Boundary_Information_Win::refresh() {
    ui->labelBI->setText(m_walk.name());
    ui->pushButtonnext->setText(m_walk.onLastZone() ? tr("ok") : tr("next"));
    const ZoneState state = readZone(m_walk);
    showThermal(state.heatOn);
    if (state.heatOn && state.hasFace) {
        ui->comboBox->setCurrentIndex(state.thermalKind);
        if (state.thermalKind == constantTemperature) {
            ui->lineEdit_T->setText(QString::number(state.T));
            ui->lineEdit_fl->setText(QString::number(state.fl));
        } else if (state.thermalKind == constantFlux) {
            ui->lineEdit_T->setText(QString::number(state.q));
        }
    }
    // The list does not tell of an item it was already on; the rows have to match it all the same.
    if (state.heatOn)
        Thermal();
    leaveLineEdits(this, ui->comboBox_flow_type);
}

void Boundary_Information_Win::showThermal(bool visible) {
    ui->comboBox->setVisible(visible);
    ui->label_T->setVisible(visible);
    ui->lineEdit_T->setVisible(visible);
    if (!visible) {
        ui->label_fl->hide();
        ui->lineEdit_fl->hide();
    }
}

void Boundary_Information_Win::Flow_type() {
    const int kind = ui->comboBox_flow_type->currentIndex();
    const bool hasVelocity = kind != outflow;
    ui->label_ux->setVisible(hasVelocity);
    ui->lineEdit_ux->setVisible(hasVelocity);
    ui->label_uy->setVisible(hasVelocity);
    ui->lineEdit_uy->setVisible(hasVelocity);
    if (hasVelocity) {
        ui->label_ux->setText(kind == rotation ? tr("x") : tr("ux"));
        ui->label_uy->setText(kind == rotation ? tr("y") : tr("uy"));
    }
}

void Boundary_Information_Win::Thermal() {
    const int kind = ui->comboBox->currentIndex();
    const bool hasValue = kind != adiabatic;
    ui->label_T->setVisible(hasValue);
    ui->lineEdit_T->setVisible(hasValue);
    if (hasValue)
        ui->label_T->setText(kind == constantFlux ? tr("q") : tr("T"));
    // Deliberate: a constant flux leaves the fl row as it is.
    if (kind == constantFlux)
        return;
    const bool hasFraction = kind == constantTemperature && fluvane::caseSettings.thermalMode == enthalpyForm;
    ui->label_fl->setVisible(hasFraction);
    ui->lineEdit_fl->setVisible(hasFraction);
}

void Boundary_Information_Win::goOn() {
    if (fluvane::mesh.zoneCount < 1) {
        emit ok();
        return;
    }
    // Deliberate: what stands in hidden fields is sent as well.
    fluvane::BoundaryCondition c;
    c.firstFace = m_walk.firstFace();
    c.lastFace = m_walk.endFace();
    c.ux = numberIn(ui->lineEdit_ux);
    c.uy = numberIn(ui->lineEdit_uy);
    c.flowKind = ui->comboBox_flow_type->currentIndex();
    c.thermalKind = ui->comboBox->currentIndex();
    c.T = numberIn(ui->lineEdit_T);
    c.fl = numberIn(ui->lineEdit_fl);
    {
        const fluvane::VisitorHold hold;
        fluvane::assignBoundary2D(c.firstFace, c.lastFace, c.ux, c.uy, c.flowKind, c.thermalKind, c.T, c.fl);
    }
    if (m_walk.forward())
        refresh();
    else
        emit ok();
}

void Boundary_Information_Win::goBack() {
    m_walk.back();
    ui->pushButtonnext->setText(tr("Next"));
    refresh();
}

void Boundary_Information_Win::closeEvent(QCloseEvent* event) {
    if (isVisible())
        emit cancel();
    QWidget::closeEvent(event);
}
