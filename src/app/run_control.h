// The run-control dialog: how many threads and steps, how tight, how often to report.
#pragma once

#include <QWidget>
#include <memory>

namespace Ui {
class NUM_Process_Win;
}

/// Collects the five values that govern one run. Checks nothing: text that is not a number counts as 0.
class NUM_Process_Win : public QWidget {
    Q_OBJECT

public:
    explicit NUM_Process_Win(QWidget* parent = nullptr);
    ~NUM_Process_Win() override;

signals:
    /// @param Process     number of threads
    /// @param Error_U     tolerance of the velocity residual
    /// @param Error_T     tolerance of the temperature residual
    /// @param Time_Step   number of steps; 0 runs a steady case until it converges
    /// @param Terminal    steps between two reports
    void ok(int Process, double Error_U, double Error_T, int Time_Step, int Terminal);
    void cancel();

public slots:
    /// Shows the tolerances that the case as set up will use. Does not look at the dimension.
    void Steady_or_transient();

protected:
    /// Closing by the title bar is cancelling.
    void closeEvent(QCloseEvent* event) override;

private:
    void confirm();

    std::unique_ptr<Ui::NUM_Process_Win> ui;
};
