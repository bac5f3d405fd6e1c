// The dialog that takes the phase-change parameters.
#pragma once

#include <QWidget>
#include <memory>

namespace Ui {
class Solid_liquid;
}

/// Its fields are filled once, from the settings at the time it is made. Confirming uses the thermal scale,
/// L and alpha as they then stand, so the physics dialog has to be confirmed before.
class Solid_liquid : public QWidget {
    Q_OBJECT

public:
    explicit Solid_liquid(QWidget* parent = nullptr);
    ~Solid_liquid() override;

signals:
    void ok();
    void cancel();

protected:
    /// Closing by the title bar is cancelling.
    void closeEvent(QCloseEvent* event) override;

private:
    void confirm();

    std::unique_ptr<Ui::Solid_liquid> ui;
};
