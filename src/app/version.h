// The window with the release notes.
#pragma once

#include <QWidget>
#include <memory>

namespace Ui {
class Version_Win;
}

/// Shows the release notes and the program's picture. It only says `ok`; its owner hides it.
class Version_Win : public QWidget {
    Q_OBJECT

public:
    explicit Version_Win(QWidget* parent = nullptr);
    ~Version_Win() override;

signals:
    void ok();

private:
    std::unique_ptr<Ui::Version_Win> ui;
};
