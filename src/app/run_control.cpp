// The run-control dialog: how many threads and steps, how tight, how often to report.
#include "app/run_control.h"

#include "app/fit_label.h"
#include "dialogs/case_settings.h"
#include "dialogs/number_fields.h"
#include "ui_run_control.h"

#include <QIntValidator>

namespace {

// These restrict typing only; nothing asks on confirmation whether the text is acceptable.

void restrictToTolerance(QLineEdit* field) {
    setNumberRange(field, 0.0, 1e-6);
}

void restrictToIntegers(QLineEdit* field, int least, int most) {
    auto* const validator = new QIntValidator(least, most, field);
    validator->setLocale(localeOfNumbers());
    field->setValidator(validator);
}

} // namespace

NUM_Process_Win::NUM_Process_Win(QWidget* parent)
    : QWidget(parent), ui(std::make_unique<Ui::NUM_Process_Win>()) {
    ui->setupUi(this);
    restrictToIntegers(ui->lineEdit_Process, 1, 50);
    restrictToIntegers(ui->lineEdit_Time_Step, 0, 10000000);
    restrictToIntegers(ui->lineEdit_Terminal, 1, 100000);
    restrictToTolerance(ui->lineEdit_Error_U);
    restrictToTolerance(ui->lineEdit_Error_T);
    // Two fields lie over the end of their label.
    fitLabel(ui->label_Process, ui->label_Process->width());
    fitLabel(ui->label_Time_Step, ui->lineEdit_Time_Step->x() - ui->label_Time_Step->x());
    fitLabel(ui->label_Terminal, ui->label_Terminal->width());
    fitLabel(ui->label_Error_U, ui->lineEdit_Error_U->x() - ui->label_Error_U->x());
    fitLabel(ui->label_Error_T, ui->label_Error_T->width());
    connect(ui->pushButton_ok, &QPushButton::clicked, this, [this] { confirm(); });
    connect(ui->pushButton_cancel, &QPushButton::clicked, this, &NUM_Process_Win::cancel);
}

NUM_Process_Win::~NUM_Process_Win() = default;

void NUM_Process_Win::confirm() {
    emit ok(ui->lineEdit_Process->text().toInt(), numberIn(ui->lineEdit_Error_U),
            numberIn(ui->lineEdit_Error_T), ui->lineEdit_Time_Step->text().toInt(),
            ui->lineEdit_Terminal->text().toInt());
}

void NUM_Process_Win::Steady_or_transient() {
    const fluvane::CaseSettings& s = fluvane::caseSettings;
    const bool velocity = s.steadyState && s.flowOn != 0;
    const bool temperature = s.steadyState && s.heatOn;
    ui->label_Error_U->setVisible(velocity);
    ui->lineEdit_Error_U->setVisible(velocity);
    ui->label_Error_T->setVisible(temperature);
    ui->lineEdit_Error_T->setVisible(temperature);
}

void NUM_Process_Win::closeEvent(QCloseEvent* event) {
    if (isVisible())
        emit cancel();
    QWidget::closeEvent(event);
}
