// The window with the operating steps of a case.
#include "app/help.h"

#include "ui_help.h"

HELP_Win::HELP_Win(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::HELP_Win>()) {
    ui->setupUi(this);
    ui->textBrowser->setSource(QUrl(QStringLiteral("qrc:/Fluvane/help.html")));
    connect(ui->pushButton_ok, &QPushButton::clicked, this, &HELP_Win::ok);
}

HELP_Win::~HELP_Win() = default;
