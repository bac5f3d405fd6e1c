// The LFTF dialog, which the program never shows.
#include "dialogs/lftf.h"

#include "dialogs/physics.h"
#include "window_checks.h"

class LftfTest : public QObject {
    Q_OBJECT

private slots:
    void init() { resetProcessState(); }

    void ownsTheTwoSignalsAndNoSlot() {
        QCOMPARE(ownMethods(LFTF_Win::staticMetaObject), (QStringList{"signal ok()", "signal cancel()"}));
    }

    void itsButtonsEmitItsSignals() {
        LFTF_Win window;
        window.show();
        QSignalSpy ok(&window, &LFTF_Win::ok);
        QSignalSpy cancel(&window, &LFTF_Win::cancel);
        click(button(window, "pushButton_ok"));
        QCOMPARE(ok.count(), 1);
        QCOMPARE(cancel.count(), 0);
        click(button(window, "pushButton_cancel"));
        QCOMPARE(ok.count(), 1);
        QCOMPARE(cancel.count(), 1);
    }

    // Deliberate: nothing creates or shows it.
    void choosingLftfCreatesNoLftfWindow() {
        Initial_Win physics;
        physics.show();
        list(physics, "comboBox_Phase_change")->setCurrentIndex(2);
        click(button(physics, "pushButton_phase_change"));
        for (const QWidget* widget : QApplication::allWidgets())
            QVERIFY(!qobject_cast<const LFTF_Win*>(widget));
    }
};

QTEST_MAIN(LftfTest)
#include "lftf_test.moc"
