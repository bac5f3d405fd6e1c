// The dialog that takes the physics of a case.
#pragma once

#include "dialogs/solid_liquid.h"

#include <QWidget>
#include <memory>

namespace Ui {
class Initial_Win;
}

/// Shows the inputs that the chosen physics needs, keeps the choices consistent and hands them to the field
/// initialisation. Contents stay between openings.
class Initial_Win : public QWidget {
    Q_OBJECT

public:
    explicit Initial_Win(QWidget* parent = nullptr);
    ~Initial_Win() override;

signals:
    void ok();
    void cancel();

public slots:
    void Flow_type();
    void Phase_change();
    void Heat_transfer();
    void Thermal_Characteristics();

protected:
    /// Closing by the title bar is cancelling.
    void closeEvent(QCloseEvent* event) override;

private:
    void connectWidgets();
    void confirm();
    void openPhaseChange();
    void returnFromPhaseChange();
    void showFlowRows(bool visible);

    std::unique_ptr<Ui::Initial_Win> ui;
    Solid_liquid m_solidLiquid;
};
