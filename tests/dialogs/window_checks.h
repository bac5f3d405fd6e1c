// What the tests of the set-up dialogs share: state, meta-objects, message boxes, the step gate.
#pragma once

#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "mesh/run_gate.h"
#include "output/terminal.h"
#include "velocity/velocity_set.h"

#include <QApplication>
#include <QComboBox>
#include <QDoubleValidator>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMessageBox>
#include <QMetaMethod>
#include <QPushButton>
#include <QTimer>
#include <QtTest>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <initializer_list>
#include <thread>

/// Everything process-wide as at start-up.
inline void resetProcessState() {
    fluvane::caseSettings = {};
    fluvane::mesh.clear();
    fluvane::velocitySet = {};
    fluvane::setTerminalSink({});
    fluvane::takeProblems();
    QLocale::setDefault(QLocale::c());
}

/// The class's own methods in order, "signal ok()" or "slot Thermal()" and the like.
inline QStringList ownMethods(const QMetaObject& meta) {
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        const char* const kind = method.methodType() == QMetaMethod::Signal ? "signal "
                                 : method.methodType() == QMetaMethod::Slot ? "slot "
                                                                            : "other ";
        methods << QString::fromLatin1(kind + method.methodSignature());
    }
    return methods;
}

/// The widget of that name; the test ends with a message when there is none.
template <class Widget>
Widget* part(const QWidget& window, const char* name) {
    auto* const widget = window.findChild<Widget*>(QLatin1String(name));
    if (!widget)
        qFatal("no widget %s", name);
    return widget;
}

inline QLineEdit* field(const QWidget& window, const char* name) {
    return part<QLineEdit>(window, name);
}
inline QComboBox* list(const QWidget& window, const char* name) {
    return part<QComboBox>(window, name);
}
inline QPushButton* button(const QWidget& window, const char* name) {
    return part<QPushButton>(window, name);
}
inline QString labelText(const QWidget& window, const char* name) {
    return part<QLabel>(window, name)->text();
}

/// Whether the named widget shows when its window does.
inline bool shows(const QWidget& window, const char* name) {
    return part<QWidget>(window, name)->isVisibleTo(&window);
}

inline bool showsAll(const QWidget& window, std::initializer_list<const char*> names) {
    return std::all_of(names.begin(), names.end(), [&](const char* name) { return shows(window, name); });
}
inline bool showsNone(const QWidget& window, std::initializer_list<const char*> names) {
    return std::none_of(names.begin(), names.end(), [&](const char* name) { return shows(window, name); });
}

inline QStringList itemsOf(const QComboBox* box) {
    QStringList items;
    for (int i = 0; i < box->count(); ++i)
        items << box->itemText(i);
    return items;
}

inline void click(QPushButton* target) {
    QTest::mouseClick(target, Qt::LeftButton);
}

/// Replaces the text as a user does, through the validator.
inline void type(QLineEdit* target, const QString& text) {
    target->selectAll();
    QTest::keyClick(target, Qt::Key_Delete);
    QTest::keyClicks(target, text);
}

/// "bottom top decimals" of a field's validator, empty without one.
inline QString rangeOf(const QLineEdit* target) {
    const auto* const validator = qobject_cast<const QDoubleValidator*>(target->validator());
    return validator ? QStringLiteral("%1 %2 %3")
                           .arg(QString::number(validator->bottom()), QString::number(validator->top()))
                           .arg(validator->decimals())
                     : QString();
}

/// Presses OK on the next message box and keeps what it said.
class BoxAnswer {
public:
    BoxAnswer() {
        m_timer.setInterval(0);
        QObject::connect(&m_timer, &QTimer::timeout, [this] { look(); });
        m_timer.start();
    }
    int count = 0;
    QString text;
    QString title;
    int buttonCount = 0;
    QMessageBox::Icon icon = QMessageBox::NoIcon;

private:
    void look() {
        auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box || !box->isVisible())
            return;
        ++count;
        text = box->text();
        title = box->windowTitle();
        buttonCount = static_cast<int>(box->buttons().size());
        icon = box->icon();
        box->button(QMessageBox::Ok)->click();
    }
    QTimer m_timer;
};

/// Holds the step gate as a run does; `released` turns true just before it lets go.
class RunningStep {
public:
    RunningStep() {
        std::promise<void> held;
        std::future<void> isHeld = held.get_future();
        m_thread = std::thread([this, &held] {
            const fluvane::RunHold hold;
            held.set_value();
            std::this_thread::sleep_for(std::chrono::milliseconds(100));
            released = true;
        });
        isHeld.wait();
    }
    ~RunningStep() { m_thread.join(); }
    RunningStep(const RunningStep&) = delete;
    RunningStep& operator=(const RunningStep&) = delete;

    std::atomic<bool> released{false};

private:
    std::thread m_thread;
};

/// True when `act` waits for a running step and has let go of the gate whenever `signal` is emitted.
template <class Window, class Signal, class Act>
bool takesGate(Window& window, Signal signal, Act act) {
    bool waited = false;
    RunningStep step;
    const auto connection = QObject::connect(&window, signal, &window, [&] {
        waited = step.released;
        const fluvane::VisitorHold hold; // would never come back if the dialog still held the gate
    });
    act();
    QObject::disconnect(connection);
    return waited;
}

/// Records of a one-cell mesh made for another velocity count than the present one.
inline void makeMismatchedMesh() {
    fluvane::velocitySet.velocityCount = 9;
    fluvane::mesh.allocateCells2D(1);
    fluvane::velocitySet.velocityCount = 5;
}

/// Shows the window and waits until it gets the keys.
inline bool showActive(QWidget& window) {
    window.show();
    window.activateWindow();
    return QTest::qWaitForWindowActive(&window);
}
