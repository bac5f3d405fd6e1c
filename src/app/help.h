// The window with the operating steps of a case.
#pragma once

#include <QWidget>
#include <memory>

namespace Ui {
class HELP_Win;
}

/// Shows the operating steps of a case. It only says `ok`; its owner hides it.
class HELP_Win : public QWidget {
    Q_OBJECT

public:
    explicit HELP_Win(QWidget* parent = nullptr);
    ~HELP_Win() override;

signals:
    void ok();

private:
    std::unique_ptr<Ui::HELP_Win> ui;
};
