// The dimension dialog's reactions.
#include "dialogs/dimension.h"

#include "dialogs/case_settings.h"
#include "mesh/run_gate.h"
#include "ui_dimension.h"

Dimension_Win::Dimension_Win(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::Dimension_Win>()) {
    ui->setupUi(this);
    connect(ui->pushButton_2D, &QPushButton::clicked, this, [this] { choose(false); });
    connect(ui->pushButton_3D, &QPushButton::clicked, this, [this] { choose(true); });
    connect(ui->pushButton_cancel, &QPushButton::clicked, this, &Dimension_Win::cancel);
}

Dimension_Win::~Dimension_Win() = default;

void Dimension_Win::choose(bool is3D) {
    {
        const fluvane::VisitorHold hold;
        fluvane::caseSettings.is3D = is3D;
    }
    emit ok();
}

void Dimension_Win::closeEvent(QCloseEvent* event) {
    if (isVisible())
        emit cancel();
    QWidget::closeEvent(event);
}
