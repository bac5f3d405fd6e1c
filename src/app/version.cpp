// The window with the release notes.
#include "app/version.h"

#include "ui_version.h"

Version_Win::Version_Win(QWidget* parent) : QWidget(parent), ui(std::make_unique<Ui::Version_Win>()) {
    ui->setupUi(this);
    ui->textBrowser->setSource(QUrl(QStringLiteral("qrc:/Fluvane/version.html")));
    connect(ui->pushButton_ok, &QPushButton::clicked, this, &Version_Win::ok);
}

Version_Win::~Version_Win() = default;
