// The wizard that takes the boundary conditions of a 2D case, one page a zone.
#pragma once

#include "dialogs/zone_walk.h"

#include <QWidget>
#include <memory>

namespace Ui {
class Boundary_Information_Win;
}

/// Going on assigns the page to its zone; going back or cancelling assigns nothing and undoes nothing.
class Boundary_Information_Win : public QWidget {
    Q_OBJECT

public:
    explicit Boundary_Information_Win(QWidget* parent = nullptr);
    ~Boundary_Information_Win() override;

    /// Shows the page of the zone where the wizard stands, filled from what the zone holds. To be called
    /// whenever the wizard is shown. The zone is the first one at first, later the one it was left at.
    void start();

    /// The next start is at the first zone: for a new mesh, of which no zone was seen yet.
    void startOver();

signals:
    void cancel();
    void ok();

public slots:
    void Thermal();
    void Flow_type();

protected:
    /// Closing by the title bar is cancelling.
    void closeEvent(QCloseEvent* event) override;

private:
    void refresh();
    void goOn();
    void goBack();
    void showThermal(bool visible);

    std::unique_ptr<Ui::Boundary_Information_Win> ui;
    fluvane::ZoneWalk m_walk;
};
