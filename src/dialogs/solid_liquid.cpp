// The phase-change dialog's fields and its confirmation.
#include "dialogs/solid_liquid.h"

#include "dialogs/case_settings.h"
#include "dialogs/number_fields.h"
#include "mesh/run_gate.h"
#include "ui_solid_liquid.h"

Solid_liquid::Solid_liquid(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::Solid_liquid>()) {
    ui->setupUi(this);
    setNumberRange(ui->lineEdit_Fl, 0.0, 1.0);
    setNumberRange(ui->lineEdit_Ste, 0.0, 100.0);
    setNumberRange(ui->lineEdit_Tl, -1.0, 1.0);
    setNumberRange(ui->lineEdit_Ts, -1.0, 1.0);
    const fluvane::CaseSettings& settings = fluvane::caseSettings;
    ui->lineEdit_Fl->setText(QStringLiteral("0"));
    ui->lineEdit_Ste->setText(QString::number(settings.Ste));
    ui->lineEdit_Tl->setText(QString::number(settings.Tl));
    // Deliberate: the solidus field, too, starts with the liquidus temperature.
    ui->lineEdit_Ts->setText(QString::number(settings.Tl));
    connect(ui->pushButton_ok, &QPushButton::clicked, this, [this] { confirm(); });
    connect(ui->pushButton_cancel, &QPushButton::clicked, this, &Solid_liquid::cancel);
}

Solid_liquid::~Solid_liquid() = default;

void Solid_liquid::confirm() {
    {
        const fluvane::VisitorHold hold;
        fluvane::setPhaseChange(numberIn(ui->lineEdit_Ste), numberIn(ui->lineEdit_Ts),
                                numberIn(ui->lineEdit_Tl), numberIn(ui->lineEdit_Fl));
    }
    emit ok();
}

void Solid_liquid::closeEvent(QCloseEvent* event) {
    if (isVisible())
        emit cancel();
    QWidget::closeEvent(event);
}
