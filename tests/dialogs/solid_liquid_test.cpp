// The phase-change dialog.
#include "dialogs/solid_liquid.h"

#include "window_checks.h"

class SolidLiquidTest : public QObject {
    Q_OBJECT

private slots:
    void init() { resetProcessState(); }

    void ownsTheTwoSignalsAndNoSlot() {
        QCOMPARE(ownMethods(Solid_liquid::staticMetaObject), (QStringList{"signal ok()", "signal cancel()"}));
    }

    void fieldsStartFromTheSettings() {
        const Solid_liquid window;
        QCOMPARE(field(window, "lineEdit_Fl")->text(), QString("0"));
        QCOMPARE(field(window, "lineEdit_Ste")->text(), QString("1"));
        QCOMPARE(field(window, "lineEdit_Tl")->text(), QString("0"));
        QCOMPARE(field(window, "lineEdit_Ts")->text(), QString("0"));
    }

    // Deliberate: the solidus field, too, starts with the liquidus temperature.
    void theSolidusFieldIsFilledFromTheLiquidusTemperature() {
        fluvane::caseSettings.Ts = -0.25;
        fluvane::caseSettings.Tl = 0.12345678;
        fluvane::caseSettings.Ste = 0.045;
        fluvane::caseSettings.Fl0 = 0.5;
        const Solid_liquid window;
        QCOMPARE(field(window, "lineEdit_Ts")->text(), QString("0.123457"));
        QCOMPARE(field(window, "lineEdit_Tl")->text(), QString("0.123457"));
        QCOMPARE(field(window, "lineEdit_Ste")->text(), QString("0.045"));
        QCOMPARE(field(window, "lineEdit_Fl")->text(), QString("0"));
    }

    void fieldsAreFilledOnceAndKeepTheirTextsBetweenOpenings() {
        Solid_liquid window;
        window.show();
        type(field(window, "lineEdit_Ste"), "0.25");
        click(button(window, "pushButton_cancel"));
        window.hide();
        fluvane::caseSettings.Tl = 0.5;
        fluvane::caseSettings.Ste = 7.0;
        window.show();
        QCOMPARE(field(window, "lineEdit_Ste")->text(), QString("0.25"));
        QCOMPARE(field(window, "lineEdit_Tl")->text(), QString("0"));
        QCOMPARE(field(window, "lineEdit_Ts")->text(), QString("0"));
    }

    void fieldsHaveTheirRanges() {
        const Solid_liquid window;
        QCOMPARE(rangeOf(field(window, "lineEdit_Fl")), QString("0 1 6"));
        QCOMPARE(rangeOf(field(window, "lineEdit_Ste")), QString("0 100 6"));
        QCOMPARE(rangeOf(field(window, "lineEdit_Tl")), QString("-1 1 6"));
        QCOMPARE(rangeOf(field(window, "lineEdit_Ts")), QString("-1 1 6"));
        for (const char* name : {"label_Tm", "label_Tm_2", "label_Ste", "label_Fl"})
            QVERIFY(!labelText(window, name).isEmpty());
    }

    void okSetsThePhaseChangeUp() {
        fluvane::caseSettings.dT = 3.0;
        Solid_liquid window;
        window.show();
        QSignalSpy ok(&window, &Solid_liquid::ok);
        QSignalSpy cancel(&window, &Solid_liquid::cancel);
        type(field(window, "lineEdit_Ts"), "-0.2");
        type(field(window, "lineEdit_Tl"), "0.4");
        type(field(window, "lineEdit_Ste"), "0.5");
        type(field(window, "lineEdit_Fl"), "0.75");
        click(button(window, "pushButton_ok"));
        QCOMPARE(ok.count(), 1);
        QCOMPARE(cancel.count(), 0);
        const fluvane::CaseSettings& s = fluvane::caseSettings;
        QCOMPARE(s.Ts, -0.2);
        QCOMPARE(s.Tl, 0.4);
        QCOMPARE(s.Ste, 0.5);
        QCOMPARE(s.Fl0, 0.75);
        QCOMPARE(s.Tm, (-0.2 + 0.4) / 2 + 0.0001);
        QCOMPARE(s.latentHeat, 6.0);
        QCOMPARE(s.Hliquidus, 2.0 * 0.0001 + 6.0);
    }

    void equalTemperaturesOfZeroGiveTheFixedMushyRange() {
        Solid_liquid window;
        window.show();
        click(button(window, "pushButton_ok"));
        QCOMPARE(fluvane::caseSettings.Tm, 0.0001);
        QCOMPARE(fluvane::caseSettings.dTm, 0.0001);
    }

    void aHeatSourceLeavesTheLatentHeat() {
        fluvane::caseSettings.thermalScaleKind = 2;
        Solid_liquid window;
        window.show();
        click(button(window, "pushButton_ok"));
        QCOMPARE(fluvane::caseSettings.latentHeat, 0.0);
        QCOMPARE(fluvane::caseSettings.Hliquidus, 2.0 * 0.0001);
    }

    void emptyFieldsGiveZero() {
        Solid_liquid window;
        window.show();
        fluvane::caseSettings.thermalScaleKind = 2; // no division by the Stefan number
        for (const char* name : {"lineEdit_Ts", "lineEdit_Tl", "lineEdit_Ste", "lineEdit_Fl"})
            field(window, name)->clear();
        click(button(window, "pushButton_ok"));
        QCOMPARE(fluvane::caseSettings.Ste, 0.0);
        QCOMPARE(fluvane::caseSettings.Ts, 0.0);
    }

    void cancelSetsNothing() {
        Solid_liquid window;
        window.show();
        QSignalSpy ok(&window, &Solid_liquid::ok);
        QSignalSpy cancel(&window, &Solid_liquid::cancel);
        type(field(window, "lineEdit_Ste"), "0.5");
        click(button(window, "pushButton_cancel"));
        QCOMPARE(ok.count(), 0);
        QCOMPARE(cancel.count(), 1);
        QCOMPARE(fluvane::caseSettings.Ste, 1.0);
        QCOMPARE(fluvane::caseSettings.dTm, 0.0);
    }

    void confirmingWaitsForARunningStep() {
        Solid_liquid window;
        window.show();
        QVERIFY(takesGate(window, &Solid_liquid::ok, [&] { click(button(window, "pushButton_ok")); }));
    }

    void closingByTheTitleBarCancels() {
        Solid_liquid window;
        window.show();
        QSignalSpy cancel(&window, &Solid_liquid::cancel);
        window.close();
        QCOMPARE(cancel.count(), 1);
    }
};

QTEST_MAIN(SolidLiquidTest)
#include "solid_liquid_test.moc"
