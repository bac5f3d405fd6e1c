// The dialog that takes the lattice properties of a case.
#pragma once

#include <QWidget>
#include <memory>

namespace Ui {
class Lattice_Win;
}

/// Confirming stores CFL and RT, scales the velocity set and lists it in the terminal. Deliberate: each
/// confirmation scales once more; the velocity file is expected to be read in between.
class Lattice_Win : public QWidget {
    Q_OBJECT

public:
    explicit Lattice_Win(QWidget* parent = nullptr);
    ~Lattice_Win() override;

signals:
    void ok();
    void cancel();

protected:
    /// Closing by the title bar is cancelling.
    void closeEvent(QCloseEvent* event) override;

private:
    void confirm();

    std::unique_ptr<Ui::Lattice_Win> ui;
};
