// The 3D boundary wizard's pages and steps.
#include "dialogs/boundary_3d.h"

#include "dialogs/case_settings.h"
#include "dialogs/number_fields.h"
#include "dialogs/wizard_keys.h"
#include "mesh/mesh.h"
#include "mesh/run_gate.h"
#include "setup/boundary_assignment.h"
#include "ui_boundary_3d.h"

namespace {

// What the list indices mean.
constexpr int translation = 0;
constexpr int rotation = 1;
constexpr int outflow = 2;
constexpr int adiabatic = 0;
constexpr int constantTemperature = 1;
constexpr int constantFlux = 2;

} // namespace

/// What a page shows of its zone; the direction is the wall velocity in units of U0.
struct Boundary_Information_Win_3D::ZoneState {
    bool heatOn = false;
    bool flowOn = false;
    bool hasFace = false;
    bool hasDirection = false;
    int thermalKind = adiabatic;
    int flowKind = translation;
    double T = 0.0;
    double q = 0.0;
    double ux = 0.0;
    double uy = 0.0;
    double uz = 0.0;
};

Boundary_Information_Win_3D::Boundary_Information_Win_3D(QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::Boundary_Information_Win_3D>()) {
    ui->setupUi(this);
    bindNextKeys(this, ui->pushButtonnext);
    const auto indexChanged = qOverload<int>(&QComboBox::currentIndexChanged);
    connect(ui->comboBox_flow_type, indexChanged, this, &Boundary_Information_Win_3D::Flow_type);
    connect(ui->comboBox, indexChanged, this, &Boundary_Information_Win_3D::Thermal);
    connect(ui->pushButtonnext, &QPushButton::clicked, this, [this] { goOn(); });
    connect(ui->pushButtonlast, &QPushButton::clicked, this, [this] { goBack(); });
    connect(ui->pushButtoncancel, &QPushButton::clicked, this, &Boundary_Information_Win_3D::cancel);
}

Boundary_Information_Win_3D::~Boundary_Information_Win_3D() = default;

void Boundary_Information_Win_3D::start() {
    refresh();
}

void Boundary_Information_Win_3D::startOver() {
    m_walk = {};
}

/// Read from the zone's last face, in one hold so that it is of one instant.
Boundary_Information_Win_3D::ZoneState Boundary_Information_Win_3D::readZone(const fluvane::ZoneWalk& walk) {
    const fluvane::VisitorHold hold;
    const fluvane::CaseSettings& settings = fluvane::caseSettings;
    ZoneState state;
    state.heatOn = settings.heatOn;
    state.flowOn = settings.flowOn != 0;
    const std::int32_t last = walk.endFace() - 1;
    if (last < 0 || static_cast<std::size_t>(last) >= fluvane::mesh.faces3D.size())
        return state;
    const fluvane::FaceRecord3D& face = fluvane::mesh.faces3D[static_cast<std::size_t>(last)];
    state.hasFace = true;
    state.thermalKind = face.thermalKind;
    state.flowKind = face.flowKind;
    state.T = face.T;
    state.q = face.q;
    // At rest (Ma = 0) no direction can be told from the stored velocity.
    if (settings.U0 != 0.0) {
        state.hasDirection = true;
        state.ux = face.u / settings.U0;
        state.uy = face.v / settings.U0;
        state.uz = face.w / settings.U0;
    }
    return state;
}

void Boundary_Information_Win_3D::refresh() {
    ui->labelBI->setText(m_walk.name());
    ui->pushButtonnext->setText(m_walk.onLastZone() ? tr("ok") : tr("next"));
    const ZoneState state = readZone(m_walk);
    refreshThermal(state);
    refreshFlow(state);
    leaveLineEdits(this, firstList());
}

void Boundary_Information_Win_3D::refreshThermal(const ZoneState& state) {
    showThermal(state.heatOn);
    if (!state.heatOn)
        return;
    if (state.hasFace) {
        ui->comboBox->setCurrentIndex(state.thermalKind);
        if (state.thermalKind == constantTemperature)
            ui->lineEdit_T->setText(QString::number(state.T));
        else if (state.thermalKind == constantFlux)
            ui->lineEdit_T->setText(QString::number(state.q));
    }
    // The list does not tell of an item it was already on; the row has to match it all the same.
    Thermal();
}

void Boundary_Information_Win_3D::refreshFlow(const ZoneState& state) {
    ui->comboBox_flow_type->setVisible(state.flowOn);
    showVelocity(state.flowOn);
    if (!state.flowOn)
        return;
    if (state.hasFace) {
        ui->comboBox_flow_type->setCurrentIndex(state.flowKind);
        if (state.flowKind != outflow && state.hasDirection) {
            ui->lineEdit_ux->setText(QString::number(state.ux));
            ui->lineEdit_uy->setText(QString::number(state.uy));
            // Deliberate: a translating wall fills ux and uy but not uz. A rotating one fills all three, so
            // that its data survive another walk through the pages.
            if (state.flowKind == rotation)
                ui->lineEdit_uz->setText(QString::number(state.uz));
        }
    }
    Flow_type();
}

void Boundary_Information_Win_3D::showThermal(bool visible) {
    ui->comboBox->setVisible(visible);
    ui->label_T->setVisible(visible);
    ui->lineEdit_T->setVisible(visible);
}

void Boundary_Information_Win_3D::showVelocity(bool visible) {
    ui->label_ux->setVisible(visible);
    ui->lineEdit_ux->setVisible(visible);
    ui->label_uy->setVisible(visible);
    ui->lineEdit_uy->setVisible(visible);
    ui->label_uz->setVisible(visible);
    ui->lineEdit_uz->setVisible(visible);
}

QWidget* Boundary_Information_Win_3D::firstList() const {
    if (!ui->comboBox_flow_type->isHidden())
        return ui->comboBox_flow_type;
    if (!ui->comboBox->isHidden())
        return ui->comboBox;
    return ui->pushButtonnext;
}

void Boundary_Information_Win_3D::Flow_type() {
    const int kind = ui->comboBox_flow_type->currentIndex();
    showVelocity(kind != outflow);
    if (kind == outflow)
        return;
    ui->label_ux->setText(kind == rotation ? tr("x") : tr("ux"));
    ui->label_uy->setText(kind == rotation ? tr("y") : tr("uy"));
    ui->label_uz->setText(kind == rotation ? tr("z") : tr("uz"));
}

void Boundary_Information_Win_3D::Thermal() {
    const int kind = ui->comboBox->currentIndex();
    const bool hasValue = kind != adiabatic;
    ui->label_T->setVisible(hasValue);
    ui->lineEdit_T->setVisible(hasValue);
    if (hasValue)
        ui->label_T->setText(kind == constantFlux ? tr("q") : tr("T"));
}

void Boundary_Information_Win_3D::goOn() {
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
    c.uz = numberIn(ui->lineEdit_uz);
    c.flowKind = ui->comboBox_flow_type->currentIndex();
    c.thermalKind = ui->comboBox->currentIndex();
    c.T = numberIn(ui->lineEdit_T);
    {
        const fluvane::VisitorHold hold;
        fluvane::assignBoundary3D(c.firstFace, c.lastFace, c.ux, c.uy, c.uz, c.flowKind, c.thermalKind, c.T);
    }
    if (m_walk.forward())
        refresh();
    else
        emit ok();
}

void Boundary_Information_Win_3D::goBack() {
    m_walk.back();
    ui->pushButtonnext->setText(tr("Next"));
    refresh();
}

void Boundary_Information_Win_3D::closeEvent(QCloseEvent* event) {
    if (isVisible())
        emit cancel();
    QWidget::closeEvent(event);
}
