// A small dialog of the LFTF variant.
#pragma once

#include <QWidget>
#include <memory>

namespace Ui {
class LFTF_Win;
}

/// Deliberate: nothing creates or shows it. The variant is chosen by the third item of the physics dialog's
/// phase-change list.
class LFTF_Win : public QWidget {
    Q_OBJECT

public:
    explicit LFTF_Win(QWidget* parent = nullptr);
    ~LFTF_Win() override;

signals:
    void ok();
    void cancel();

private:
    std::unique_ptr<Ui::LFTF_Win> ui;
};
