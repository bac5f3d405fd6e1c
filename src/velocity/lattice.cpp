// The lattice dialog's fields and its confirmation.
#include "velocity/lattice.h"

#include "dialogs/number_fields.h"
#include "mesh/mesh.h"
#include "mesh/run_gate.h"
#include "output/terminal.h"
#include "ui_lattice.h"
#include "velocity/lattice_properties.h"

#include <QMessageBox>

Lattice_Win::Lattice_Win(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::Lattice_Win>()) {
    ui->setupUi(this);
    setNumberRange(ui->lineEdit_CFL, 0.0, 1.0);
    setNumberRange(ui->lineEdit_RT, 0.0, 100.0);
    ui->lineEdit_RT->setText(QString::number(1.0 / 3.0));
    connect(ui->pushButton_ok, &QPushButton::clicked, this, [this] { confirm(); });
    connect(ui->pushButton_cancel, &QPushButton::clicked, this, [this] {
        emit cancel();
        hide();
    });
}

Lattice_Win::~Lattice_Win() = default;

void Lattice_Win::confirm() {
    if (fluvane::mesh.cellCount > 0 && !fluvane::mesh.matchesVelocitySet()) {
        QMessageBox::information(this, tr("Error"),
                                 tr("The velocity file was read after the mesh: please read the mesh again"));
        return;
    }
    QStringList listing;
    {
        const fluvane::VisitorHold hold;
        fluvane::setLatticeProperties(numberIn(ui->lineEdit_CFL), numberIn(ui->lineEdit_RT));
        listing = fluvane::velocityListing();
    }
    for (const QString& line : qAsConst(listing))
        fluvane::appendTerminalLine(line);
    // The next window comes up before this one goes: the program never stands without a window.
    emit ok();
    hide();
}

void Lattice_Win::closeEvent(QCloseEvent* event) {
    if (isVisible())
        emit cancel();
    QWidget::closeEvent(event);
}
