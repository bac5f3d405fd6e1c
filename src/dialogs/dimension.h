// The dialog that asks whether a case is two- or three-dimensional.
#pragma once

#include <QWidget>
#include <memory>

namespace Ui {
class Dimension_Win;
}

/// Choosing a dimension is the confirmation: `is3D` is written before `ok` is emitted.
class Dimension_Win : public QWidget {
    Q_OBJECT

public:
    explicit Dimension_Win(QWidget* parent = nullptr);
    ~Dimension_Win() override;

signals:
    void cancel();
    void ok();

protected:
    /// Closing by the title bar is cancelling.
    void closeEvent(QCloseEvent* event) override;

private:
    void choose(bool is3D);

    std::unique_ptr<Ui::Dimension_Win> ui;
};
