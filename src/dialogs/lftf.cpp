// The LFTF dialog's two buttons.
#include "dialogs/lftf.h"

#include "ui_lftf.h"

LFTF_Win::LFTF_Win(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::LFTF_Win>()) {
    ui->setupUi(this);
    connect(ui->pushButton_ok, &QPushButton::clicked, this, &LFTF_Win::ok);
    connect(ui->pushButton_cancel, &QPushButton::clicked, this, &LFTF_Win::cancel);
}

LFTF_Win::~LFTF_Win() = default;
