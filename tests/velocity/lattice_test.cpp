// The lattice dialog.
#include "velocity/lattice.h"

#include "../dialogs/window_checks.h"

#include <cmath>

using fluvane::caseSettings;
using fluvane::velocitySet;

namespace {

/// Two velocities, at rest and along x.
void makeVelocitySet() {
    velocitySet.velocityCount = 2;
    velocitySet.xi2D[1] = {1.0, 2.0};
    velocitySet.xi3D[1] = {1.0, 2.0, 3.0};
    velocitySet.weights[0] = 0.75;
    velocitySet.weights[1] = 0.25;
}

} // namespace

class LatticeTest : public QObject {
    Q_OBJECT

private slots:
    void init() {
        resetProcessState();
        makeVelocitySet();
    }
    void cleanup() { resetProcessState(); }

    void ownsTheTwoSignalsAndNoSlot() {
        QCOMPARE(ownMethods(Lattice_Win::staticMetaObject), (QStringList{"signal ok()", "signal cancel()"}));
    }

    void textsDefaultsAndRangesAreInPlace() {
        const Lattice_Win window;
        QCOMPARE(window.windowTitle(), QString("Form"));
        QStringList labels;
        for (const QLabel* label : window.findChildren<QLabel*>())
            labels << label->text();
        QCOMPARE(labels, (QStringList{"CFL number(0~1.0)", "RT(>0)"}));
        QCOMPARE(field(window, "lineEdit_CFL")->text(), QString("0.4"));
        QCOMPARE(field(window, "lineEdit_RT")->text(), QString("0.333333"));
        QCOMPARE(rangeOf(field(window, "lineEdit_CFL")), QString("0 1 6"));
        QCOMPARE(rangeOf(field(window, "lineEdit_RT")), QString("0 100 6"));
        QCOMPARE(button(window, "pushButton_ok")->text(), QString("Ok"));
        QCOMPARE(button(window, "pushButton_ok")->shortcut(), QKeySequence("Return"));
        QCOMPARE(button(window, "pushButton_cancel")->text(), QString("Cancel"));
        QCOMPARE(button(window, "pushButton_cancel")->shortcut(), QKeySequence("Esc"));
    }

    void theDefaultsAreStoredAndTheVelocitiesScaled() {
        Lattice_Win window;
        window.show();
        QSignalSpy ok(&window, &Lattice_Win::ok);
        click(button(window, "pushButton_ok"));
        QCOMPARE(ok.count(), 1);
        QCOMPARE(caseSettings.CFL, 0.4);
        QCOMPARE(caseSettings.RT, 0.333333);
        QCOMPARE(caseSettings.soundSpeed, std::sqrt(0.333333));
        QCOMPARE(velocitySet.xi2D[1].x, std::sqrt(3 * 0.333333));
        QVERIFY(!window.isVisible());
    }

    // Deliberate: each confirmation scales once more.
    void confirmingTwiceScalesTwice() {
        Lattice_Win window;
        window.show();
        type(field(window, "lineEdit_RT"), "3");
        click(button(window, "pushButton_ok"));
        window.show();
        click(button(window, "pushButton_ok"));
        QCOMPARE(velocitySet.xi2D[1].x, 9.0);
        QCOMPARE(velocitySet.xi2D[1].y, 18.0);
    }

    void theListingIsSaidLineByLineBeforeOk() {
        QStringList lines;
        fluvane::setTerminalSink([&](const QString& line) { lines << line; });
        Lattice_Win window;
        window.show();
        type(field(window, "lineEdit_RT"), "3");
        int linesAtOk = 0;
        connect(&window, &Lattice_Win::ok, &window, [&] { linesAtOk = static_cast<int>(lines.size()); });
        click(button(window, "pushButton_ok"));
        QCOMPARE(lines,
                 (QStringList{"The discrete velocity information", "k=0   0  0  0.75", "k=1   3  6  0.25"}));
        QCOMPARE(linesAtOk, 3);
    }

    // Deliberate: the third number of a 3D line is the x component again.
    void theThirdNumberOfA3DLineIsXAgain() {
        caseSettings.is3D = true;
        QStringList lines;
        fluvane::setTerminalSink([&](const QString& line) { lines << line; });
        Lattice_Win window;
        window.show();
        type(field(window, "lineEdit_RT"), "3");
        click(button(window, "pushButton_ok"));
        QCOMPARE(lines.value(2), QString("k=1   3  6  3  0.25"));
        QCOMPARE(velocitySet.xi3D[1].z, 9.0);
    }

    void emptyFieldsGiveZero() {
        Lattice_Win window;
        window.show();
        field(window, "lineEdit_CFL")->clear();
        field(window, "lineEdit_RT")->clear();
        click(button(window, "pushButton_ok"));
        QCOMPARE(caseSettings.CFL, 0.0);
        QCOMPARE(caseSettings.soundSpeed, 0.0);
        QCOMPARE(velocitySet.xi2D[1].x, 0.0);
    }

    void numbersAreTypedWithAPointOnEveryDesktop() {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        Lattice_Win window;
        window.show();
        type(field(window, "lineEdit_CFL"), "0.9");
        click(button(window, "pushButton_ok"));
        QCOMPARE(caseSettings.CFL, 0.9);
    }

    void cancelStoresNothingAndCloses() {
        Lattice_Win window;
        QVERIFY(showActive(window));
        QSignalSpy ok(&window, &Lattice_Win::ok);
        QSignalSpy cancel(&window, &Lattice_Win::cancel);
        click(button(window, "pushButton_cancel"));
        QCOMPARE(cancel.count(), 1);
        QVERIFY(!window.isVisible());
        QVERIFY(showActive(window));
        QTest::keyClick(&window, Qt::Key_Escape);
        QTRY_COMPARE(cancel.count(), 2);
        window.show();
        window.close();
        QCOMPARE(cancel.count(), 3);
        QCOMPARE(ok.count(), 0);
        QCOMPARE(caseSettings.CFL, 0.0);
        QCOMPARE(velocitySet.xi2D[1].x, 1.0);
    }

    void returnConfirmsOnceFromANumberField() {
        Lattice_Win window;
        QVERIFY(showActive(window));
        QSignalSpy ok(&window, &Lattice_Win::ok);
        field(window, "lineEdit_RT")->setFocus();
        QTest::keyClick(window.focusWidget(), Qt::Key_Return);
        QTRY_COMPARE(ok.count(), 1);
        QTest::qWait(200);
        QCOMPARE(ok.count(), 1);
    }

    void recordsOfAnotherVelocitySetAreRefused() {
        makeMismatchedMesh();
        Lattice_Win window;
        window.show();
        QSignalSpy ok(&window, &Lattice_Win::ok);
        BoxAnswer answer;
        click(button(window, "pushButton_ok"));
        QCOMPARE(answer.count, 1);
        QCOMPARE(answer.title, QString("Error"));
        QVERIFY(answer.text.contains("read the mesh again"));
        QCOMPARE(answer.buttonCount, 1);
        QCOMPARE(answer.icon, QMessageBox::Information);
        QCOMPARE(ok.count(), 0);
        QCOMPARE(caseSettings.CFL, 0.0);
        QCOMPARE(velocitySet.xi2D[1].x, 1.0);
        QVERIFY(window.isVisible());
    }

    void confirmingWaitsForARunningStep() {
        Lattice_Win window;
        window.show();
        QVERIFY(takesGate(window, &Lattice_Win::ok, [&] { click(button(window, "pushButton_ok")); }));
    }
};

QTEST_MAIN(LatticeTest)
#include "lattice_test.moc"
