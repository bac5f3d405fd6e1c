// The wizard that takes the boundary conditions of a 3D case, one page a zone.
#pragma once

#include "dialogs/zone_walk.h"

#include <QWidget>
#include <memory>

namespace Ui {
class Boundary_Information_Win_3D;
}

/// Going on assigns the page to its zone; going back or cancelling assigns nothing and undoes nothing.
/// Unlike the 2D wizard it also restores the flow choice of a zone.
class Boundary_Information_Win_3D : public QWidget {
    Q_OBJECT

public:
    explicit Boundary_Information_Win_3D(QWidget* parent = nullptr);
    ~Boundary_Information_Win_3D() override;

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
    struct ZoneState;

    static ZoneState readZone(const fluvane::ZoneWalk& walk);
    void refresh();
    void refreshThermal(const ZoneState& state);
    void refreshFlow(const ZoneState& state);
    void goOn();
    void goBack();
    void showThermal(bool visible);
    void showVelocity(bool visible);
    QWidget* firstList() const;

    std::unique_ptr<Ui::Boundary_Information_Win_3D> ui;
    fluvane::ZoneWalk m_walk;
};
