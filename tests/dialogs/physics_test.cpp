// The physics dialog.
#include "dialogs/physics.h"

#include "window_checks.h"

namespace {

/// The phase-change dialog that the physics dialog owns.
Solid_liquid* phaseChangeWindow() {
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* const window = qobject_cast<Solid_liquid*>(widget))
            return window;
    return nullptr;
}

const auto heatRows = {"label_Pr",
                       "lineEdit_Pr",
                       "label_dt_or_q",
                       "lineEdit_dt_or_q",
                       "label_thermal_characteristic",
                       "comboBox_thermal_charactestics"};
const auto flowRows = {"label_Ma", "lineEdit_Ma", "label_Ra_or_Re", "lineEdit_Re_or_Ra"};

} // namespace

class PhysicsTest : public QObject {
    Q_OBJECT

private slots:
    void init() { resetProcessState(); }

    void ownsTheSignalsAndSlotsInOrder() {
        QCOMPARE(ownMethods(Initial_Win::staticMetaObject),
                 (QStringList{"signal ok()", "signal cancel()", "slot Flow_type()", "slot Phase_change()",
                              "slot Heat_transfer()", "slot Thermal_Characteristics()"}));
    }

    void listsHoldTheirItemsInOrder() {
        const Initial_Win window;
        const QStringList noneOrConsidered{"None", "Considered"};
        QCOMPARE(itemsOf(list(window, "comboBox_flow")), (QStringList{"Forced", "Natural", "None"}));
        QCOMPARE(itemsOf(list(window, "comboBox_heat_transfer")), noneOrConsidered);
        QCOMPARE(itemsOf(list(window, "comboBox_Phase_change")), (QStringList{"None", "Considered", "LFTF"}));
        QCOMPARE(itemsOf(list(window, "comboBox_time")), (QStringList{"Steady", "Transient"}));
        QCOMPARE(itemsOf(list(window, "comboBox_thermal_charactestics")), (QStringList{"dT", "q", "Source"}));
        QCOMPARE(itemsOf(list(window, "comboBox_Porous")), noneOrConsidered);
        for (const QComboBox* box : window.findChildren<QComboBox*>())
            QCOMPARE(box->currentIndex(), 0);
    }

    void listsAreLabelled() {
        const Initial_Win window;
        QStringList texts;
        for (const QLabel* label : window.findChildren<QLabel*>())
            texts << label->text();
        for (const char* text : {"Flow type", "Heat transfer", "Phase change", "Time type", "Porous"})
            QVERIFY2(texts.contains(QLatin1String(text)), text);
        QCOMPARE(labelText(window, "label_thermal_characteristic"), QString("Thermal Characteristic"));
    }

    void fieldsHaveTheirDefaultsAndRanges_data() {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("range");
        QTest::newRow("L") << "lineEdit_L"
                           << "10"
                           << "0 1000 6";
        QTest::newRow("Ma") << "lineEdit_Ma"
                            << "0.1"
                            << "0 0.3 6";
        QTest::newRow("Pr") << "lineEdit_Pr"
                            << "1"
                            << "0 1000 6";
        QTest::newRow("Re") << "lineEdit_Re_or_Ra"
                            << "1000"
                            << "0 2000 6";
        QTest::newRow("dT") << "lineEdit_dt_or_q"
                            << "1"
                            << "";
    }
    void fieldsHaveTheirDefaultsAndRanges() {
        QFETCH(QString, name);
        QFETCH(QString, text);
        QFETCH(QString, range);
        const Initial_Win window;
        QCOMPARE(field(window, qPrintable(name))->text(), text);
        QCOMPARE(rangeOf(field(window, qPrintable(name))), range);
    }

    void buttonsAndLabelsHaveTheirTexts() {
        const Initial_Win window;
        QCOMPARE(button(window, "pushButton_ok")->text(), QString("Ok"));
        QCOMPARE(button(window, "pushButton_ok")->shortcut(), QKeySequence("Return"));
        QCOMPARE(button(window, "pushButton_cancel")->text(), QString("Cancel"));
        QCOMPARE(button(window, "pushButton_cancel")->shortcut(), QKeySequence("Esc"));
        QCOMPARE(button(window, "pushButton_phase_change")->text(), QString("Phase Change"));
        QCOMPARE(button(window, "pushButton_phase_change")->shortcut(), QKeySequence("C"));
        QCOMPARE(button(window, "pushButton_porous")->text(), QString("Porous"));
        QCOMPARE(labelText(window, "label_Ma"), QString("Ma"));
        QCOMPARE(labelText(window, "label_Pr"), QString("Pr"));
        QCOMPARE(labelText(window, "label_Ra_or_Re"), QString("Re"));
        QCOMPARE(labelText(window, "label_dt_or_q"), QString("dT"));
        for (const char* name : {"label_L", "label_U_show", "label_tau_f_show", "label_tau_g_show"})
            QVERIFY(!labelText(window, name).isEmpty());
    }

    void rowsFitTheFirstItemsAtTheStart() {
        const Initial_Win window;
        QVERIFY(showsAll(window, flowRows));
        QVERIFY(showsAll(window, {"label_L", "lineEdit_L", "label_U_show"}));
        QVERIFY(showsNone(window, heatRows));
        QVERIFY(!shows(window, "pushButton_phase_change"));
    }

    void naturalFlowConsidersHeatAndAsksForRa() {
        const Initial_Win window;
        list(window, "comboBox_flow")->setCurrentIndex(1);
        QCOMPARE(list(window, "comboBox_heat_transfer")->currentIndex(), 1);
        QCOMPARE(labelText(window, "label_Ra_or_Re"), QString("Ra"));
        QCOMPARE(labelText(window, "label_Pr"), QString("Pr"));
        QCOMPARE(rangeOf(field(window, "lineEdit_Re_or_Ra")), QString("0 1e+06 6"));
        QVERIFY(showsAll(window, flowRows));
        QVERIFY(showsAll(window, heatRows));
    }

    void conductionHidesMaAndReAndAsksForAlpha() {
        const Initial_Win window;
        list(window, "comboBox_flow")->setCurrentIndex(2);
        QVERIFY(showsNone(window, flowRows));
        QCOMPARE(labelText(window, "label_Pr"), QString("alpha"));
        QCOMPARE(list(window, "comboBox_heat_transfer")->currentIndex(), 1);
        QVERIFY(showsAll(window, heatRows));
    }

    void forcedFlowBringsTheRowsBackAndLeavesTheHeatChoice() {
        const Initial_Win window;
        list(window, "comboBox_flow")->setCurrentIndex(1);
        list(window, "comboBox_flow")->setCurrentIndex(2);
        part<QLabel>(window, "label_U_show")->hide();
        list(window, "comboBox_flow")->setCurrentIndex(0);
        QVERIFY(showsAll(window, flowRows));
        QVERIFY(shows(window, "label_U_show"));
        QCOMPARE(labelText(window, "label_Pr"), QString("Pr"));
        QCOMPARE(labelText(window, "label_Ra_or_Re"), QString("Re"));
        QCOMPARE(rangeOf(field(window, "lineEdit_Re_or_Ra")), QString("0 2000 6"));
        QCOMPARE(list(window, "comboBox_heat_transfer")->currentIndex(), 1);
    }

    void heatTransferShowsAndHidesItsRows() {
        const Initial_Win window;
        list(window, "comboBox_heat_transfer")->setCurrentIndex(1);
        QVERIFY(showsAll(window, heatRows));
        list(window, "comboBox_heat_transfer")->setCurrentIndex(0);
        QVERIFY(showsNone(window, heatRows));
    }

    void naturalFlowAndPhaseChangeKeepHeatTransferOn() {
        const Initial_Win window;
        list(window, "comboBox_flow")->setCurrentIndex(1);
        list(window, "comboBox_heat_transfer")->setCurrentIndex(0);
        QCOMPARE(list(window, "comboBox_heat_transfer")->currentIndex(), 1);
        QVERIFY(showsAll(window, heatRows));
        list(window, "comboBox_flow")->setCurrentIndex(0);
        list(window, "comboBox_Phase_change")->setCurrentIndex(1);
        list(window, "comboBox_heat_transfer")->setCurrentIndex(0);
        QCOMPARE(list(window, "comboBox_heat_transfer")->currentIndex(), 1);
        QVERIFY(showsAll(window, heatRows));
    }

    // Deliberate: LFTF switches heat transfer on when it is chosen but does not keep it on.
    void lftfDoesNotKeepHeatTransferOn() {
        const Initial_Win window;
        list(window, "comboBox_Phase_change")->setCurrentIndex(2);
        QCOMPARE(list(window, "comboBox_heat_transfer")->currentIndex(), 1);
        list(window, "comboBox_heat_transfer")->setCurrentIndex(0);
        QCOMPARE(list(window, "comboBox_heat_transfer")->currentIndex(), 0);
        QVERIFY(showsNone(window, heatRows));
    }

    void thePhaseChangeButtonShowsWithAPhaseChange() {
        const Initial_Win window;
        QComboBox* const phase = list(window, "comboBox_Phase_change");
        for (const int index : {1, 0, 2}) {
            phase->setCurrentIndex(index);
            QCOMPARE(shows(window, "pushButton_phase_change"), index != 0);
        }
    }

    void theThermalCharacteristicRelabelsTheScale() {
        const Initial_Win window;
        QComboBox* const kind = list(window, "comboBox_thermal_charactestics");
        kind->setCurrentIndex(1);
        QCOMPARE(labelText(window, "label_dt_or_q"), QString("q"));
        kind->setCurrentIndex(2);
        QCOMPARE(labelText(window, "label_dt_or_q"), QString("Source"));
        kind->setCurrentIndex(0);
        QCOMPARE(labelText(window, "label_dt_or_q"), QString("dT"));
    }

    void thePhaseChangeDialogTakesThePlaceOfThisOne_data() {
        QTest::addColumn<int>("phase");
        QTest::addColumn<QString>("answer");
        QTest::newRow("considered, ok") << 1 << "pushButton_ok";
        QTest::newRow("considered, cancel") << 1 << "pushButton_cancel";
        QTest::newRow("LFTF, ok") << 2 << "pushButton_ok";
    }
    void thePhaseChangeDialogTakesThePlaceOfThisOne() {
        QFETCH(int, phase);
        QFETCH(QString, answer);
        Initial_Win window;
        window.show();
        QSignalSpy ok(&window, &Initial_Win::ok);
        QSignalSpy cancel(&window, &Initial_Win::cancel);
        Solid_liquid* const phaseChange = phaseChangeWindow();
        QVERIFY(phaseChange);
        QVERIFY(!phaseChange->isVisible());
        list(window, "comboBox_Phase_change")->setCurrentIndex(phase);
        click(button(window, "pushButton_phase_change"));
        QVERIFY(phaseChange->isVisible());
        QVERIFY(!window.isVisible());
        click(button(*phaseChange, qPrintable(answer)));
        QVERIFY(!phaseChange->isVisible());
        QVERIFY(window.isVisible());
        QCOMPARE(ok.count() + cancel.count(), 0);
    }

    void thePhaseChangeButtonOpensNothingWithoutAPhaseChange() {
        Initial_Win window;
        window.show();
        button(window, "pushButton_phase_change")->click();
        QVERIFY(window.isVisible());
        QVERIFY(!phaseChangeWindow()->isVisible());
    }

    void theLetterCOpensThePhaseChange() {
        Initial_Win window;
        QVERIFY(showActive(window));
        list(window, "comboBox_Phase_change")->setCurrentIndex(1);
        list(window, "comboBox_Phase_change")->setFocus();
        QTest::keyClick(window.focusWidget(), Qt::Key_C);
        QTRY_VERIFY(phaseChangeWindow()->isVisible());
    }

    void okHandsEverythingToTheFieldInitialisation() {
        fluvane::caseSettings.soundSpeed = 0.5;
        fluvane::caseSettings.RT = 0.25;
        Initial_Win window;
        window.show();
        type(field(window, "lineEdit_L"), "4");
        type(field(window, "lineEdit_Ma"), "0.2");
        list(window, "comboBox_heat_transfer")->setCurrentIndex(1);
        type(field(window, "lineEdit_Pr"), "0.5");
        type(field(window, "lineEdit_Re_or_Ra"), "200");
        type(field(window, "lineEdit_dt_or_q"), "-3.5");
        list(window, "comboBox_thermal_charactestics")->setCurrentIndex(2);
        list(window, "comboBox_Phase_change")->setCurrentIndex(2);
        list(window, "comboBox_time")->setCurrentIndex(0);
        const fluvane::CaseSettings& s = fluvane::caseSettings;
        double U0AtOk = 0.0;
        connect(&window, &Initial_Win::ok, &window, [&] { U0AtOk = s.U0; });
        click(button(window, "pushButton_ok"));
        QCOMPARE(U0AtOk, 0.1);
        QCOMPARE(s.L, 4.0);
        QCOMPARE(s.Ma, 0.2);
        QCOMPARE(s.Pr, 0.5);
        QCOMPARE(s.Re, 200.0);
        QCOMPARE(s.dT, -3.5);
        QCOMPARE(s.thermalScaleKind, 2);
        QCOMPARE(s.heatSource, -3.5);
        QCOMPARE(int{s.flowOn}, 1);
        QVERIFY(s.heatOn);
        QCOMPARE(s.thermalMode, 1);
        QVERIFY(s.lftfOn);
        QVERIFY(s.steadyState);
        QCOMPARE(s.niu, 0.1 * 4.0 / 200.0);
        QCOMPARE(labelText(window, "label_U_show"), QString("U0 = 0.1"));
        QCOMPARE(labelText(window, "label_tau_f_show"), QString("tau_f = 0.008"));
        QCOMPARE(labelText(window, "label_tau_g_show"), QString("tau_g = 0.016"));
    }

    void listIndicesArePassedOn() {
        fluvane::caseSettings.soundSpeed = 0.5;
        fluvane::caseSettings.RT = 0.25;
        fluvane::caseSettings.steadyState = true;
        Initial_Win window;
        window.show();
        list(window, "comboBox_flow")->setCurrentIndex(1);
        list(window, "comboBox_time")->setCurrentIndex(1);
        list(window, "comboBox_thermal_charactestics")->setCurrentIndex(1);
        list(window, "comboBox_Phase_change")->setCurrentIndex(1);
        type(field(window, "lineEdit_Re_or_Ra"), "1e5");
        click(button(window, "pushButton_ok"));
        const fluvane::CaseSettings& s = fluvane::caseSettings;
        QVERIFY(s.buoyancyOn);
        QCOMPARE(s.Ra, 1e5);
        QVERIFY(!s.steadyState);
        QCOMPARE(s.thermalScaleKind, 1);
        QCOMPARE(s.thermalMode, 1);
        QVERIFY(!s.lftfOn);
    }

    // Deliberate: the porous option has no effect on a case.
    void thePorousControlsAreInert() {
        Initial_Win window;
        window.show();
        QSignalSpy ok(&window, &Initial_Win::ok);
        QSignalSpy cancel(&window, &Initial_Win::cancel);
        click(button(window, "pushButton_ok"));
        const fluvane::CaseSettings without = fluvane::caseSettings;
        list(window, "comboBox_Porous")->setCurrentIndex(1);
        click(button(window, "pushButton_porous"));
        QVERIFY(window.isVisible());
        QVERIFY(shows(window, "pushButton_porous"));
        QVERIFY(shows(window, "comboBox_Porous"));
        QCOMPARE(ok.count(), 1);
        QCOMPARE(cancel.count(), 0);
        click(button(window, "pushButton_ok"));
        const fluvane::CaseSettings& with = fluvane::caseSettings;
        QCOMPARE(with.flowOn, without.flowOn);
        QCOMPARE(with.heatOn, without.heatOn);
        QCOMPARE(with.thermalMode, without.thermalMode);
        QCOMPARE(with.U0, without.U0);
        QCOMPARE(with.lftfOn, without.lftfOn);
    }

    void emptyFieldsGiveZero() {
        Initial_Win window;
        window.show();
        list(window, "comboBox_heat_transfer")->setCurrentIndex(1);
        for (const char* name : {"lineEdit_L", "lineEdit_Ma", "lineEdit_Pr", "lineEdit_dt_or_q"})
            field(window, name)->clear();
        click(button(window, "pushButton_ok"));
        QCOMPARE(fluvane::caseSettings.L, 0.0);
        QCOMPARE(fluvane::caseSettings.Ma, 0.0);
        QCOMPARE(fluvane::caseSettings.Pr, 0.0);
        QCOMPARE(fluvane::caseSettings.dT, 0.0);
    }

    void numbersAreTypedWithAPointOnEveryDesktop() {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        Initial_Win window;
        window.show();
        type(field(window, "lineEdit_Ma"), "0.25");
        QCOMPARE(field(window, "lineEdit_Ma")->text(), QString("0.25"));
        QVERIFY(field(window, "lineEdit_Ma")->hasAcceptableInput());
        type(field(window, "lineEdit_L"), "1e-9");
        QCOMPARE(field(window, "lineEdit_L")->text(), QString("1e-9"));
        click(button(window, "pushButton_ok"));
        QCOMPARE(fluvane::caseSettings.Ma, 0.25);
        QCOMPARE(fluvane::caseSettings.L, 1e-9);
    }

    void aCommaCannotBeTyped_data() {
        QTest::addColumn<QLocale>("locale");
        QTest::newRow("C") << QLocale::c();
        QTest::newRow("German") << QLocale(QLocale::German, QLocale::Germany);
    }
    void aCommaCannotBeTyped() {
        QFETCH(QLocale, locale);
        QLocale::setDefault(locale);
        const Initial_Win window;
        type(field(window, "lineEdit_L"), "1,5");
        QCOMPARE(field(window, "lineEdit_L")->text(), QString("15"));
    }

    void contentsStayBetweenOpenings() {
        Initial_Win window;
        window.show();
        list(window, "comboBox_flow")->setCurrentIndex(1);
        type(field(window, "lineEdit_Ma"), "0.05");
        window.hide();
        window.show();
        QCOMPARE(list(window, "comboBox_flow")->currentIndex(), 1);
        QCOMPARE(field(window, "lineEdit_Ma")->text(), QString("0.05"));
    }

    void recordsOfAnotherVelocitySetAreRefused() {
        makeMismatchedMesh();
        Initial_Win window;
        window.show();
        QSignalSpy ok(&window, &Initial_Win::ok);
        BoxAnswer answer;
        click(button(window, "pushButton_ok"));
        QCOMPARE(answer.count, 1);
        QCOMPARE(answer.title, QString("Error"));
        QVERIFY(answer.text.contains("read the mesh again"));
        QCOMPARE(answer.buttonCount, 1);
        QCOMPARE(answer.icon, QMessageBox::Information);
        QCOMPARE(ok.count(), 0);
        QCOMPARE(fluvane::caseSettings.Ma, 0.0);
        QVERIFY(window.isVisible());
    }

    void confirmingWaitsForARunningStep() {
        Initial_Win window;
        window.show();
        QVERIFY(takesGate(window, &Initial_Win::ok, [&] { click(button(window, "pushButton_ok")); }));
    }

    void returnConfirmsOnceFromANumberField() {
        Initial_Win window;
        QVERIFY(showActive(window));
        QSignalSpy ok(&window, &Initial_Win::ok);
        field(window, "lineEdit_L")->setFocus();
        QTest::keyClick(window.focusWidget(), Qt::Key_Return);
        QTRY_COMPARE(ok.count(), 1);
        QTest::qWait(200);
        QCOMPARE(ok.count(), 1);
    }

    void escapeTheButtonAndTheTitleBarCancel() {
        Initial_Win window;
        QVERIFY(showActive(window));
        QSignalSpy ok(&window, &Initial_Win::ok);
        QSignalSpy cancel(&window, &Initial_Win::cancel);
        QTest::keyClick(&window, Qt::Key_Escape);
        QTRY_COMPARE(cancel.count(), 1);
        click(button(window, "pushButton_cancel"));
        QCOMPARE(cancel.count(), 2);
        window.close();
        QCOMPARE(cancel.count(), 3);
        QCOMPARE(ok.count(), 0);
    }
};

QTEST_MAIN(PhysicsTest)
#include "physics_test.moc"
