// The 2D boundary wizard.
#include "dialogs/boundary.h"

#include "window_checks.h"

using fluvane::caseSettings;
using fluvane::FaceRecord;
using fluvane::mesh;

namespace {

/// Two interior faces, then zones of 2, 1 and 3 faces.
void makeMesh() {
    mesh.faces2D = fluvane::HugeArray<FaceRecord>(8);
    mesh.interiorFaceCount = 2;
    mesh.zoneCount = 3;
    mesh.zoneLastFace[0] = 4;
    mesh.zoneLastFace[1] = 5;
    mesh.zoneLastFace[2] = 8;
    mesh.zoneNames = {"(45 (3 wall left)())", "(45 (4 wall right)())", "(45 (5 wall <b>top</b>)())"};
}

/// What a face holds that a page assigns.
QString stateOf(std::size_t index) {
    const FaceRecord& f = mesh.faces2D[index];
    return QStringLiteral("u %1 v %2 flow %3 thermal %4 T %5 q %6 fl %7")
        .arg(QString::number(f.u), QString::number(f.v))
        .arg(f.flowKind)
        .arg(f.thermalKind)
        .arg(QString::number(f.T), QString::number(f.q), QString::number(f.fl));
}

const QString untouched = "u 0 v 0 flow 0 thermal 0 T 0 q 0 fl 0";
const auto velocityRows = {"label_ux", "lineEdit_ux", "label_uy", "lineEdit_uy"};
const auto valueRow = {"label_T", "lineEdit_T"};
const auto fractionRow = {"label_fl", "lineEdit_fl"};

QString page(const QWidget& window) {
    return labelText(window, "labelBI");
}

} // namespace

class BoundaryTest : public QObject {
    Q_OBJECT

private slots:
    void init() {
        resetProcessState();
        makeMesh();
    }

    void ownsTheSignalsAndSlotsInOrder() {
        QCOMPARE(ownMethods(Boundary_Information_Win::staticMetaObject),
                 (QStringList{"signal cancel()", "signal ok()", "slot Thermal()", "slot Flow_type()"}));
    }

    void widgetsStandInDeclarationOrder() {
        const Boundary_Information_Win window;
        QStringList names;
        for (const QWidget* child : window.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
            names << child->objectName();
        QCOMPARE(names,
                 (QStringList{"comboBox_flow_type", "label_ux", "lineEdit_ux", "label_uy", "lineEdit_uy",
                              "comboBox", "label_T", "lineEdit_T", "label_fl", "lineEdit_fl", "labelBI",
                              "labelBI_infor", "pushButtonlast", "pushButtonnext", "pushButtoncancel"}));
    }

    void textsAreInPlaceBeforeTheFirstPage() {
        const Boundary_Information_Win window;
        QCOMPARE(window.windowTitle(), QString("Form"));
        QCOMPARE(window.font().family(), QString("Times New Roman"));
        QCOMPARE(itemsOf(list(window, "comboBox_flow_type")),
                 (QStringList{"No Slip->Translation", "No_Slip->Rotation", "Outflow"}));
        QCOMPARE(itemsOf(list(window, "comboBox")), (QStringList{"Adiabat", "Constant T", "Constant flux"}));
        QCOMPARE(labelText(window, "label_ux"), QString("ux"));
        QCOMPARE(labelText(window, "label_uy"), QString("uy"));
        QCOMPARE(labelText(window, "label_T"), QString("T"));
        QCOMPARE(labelText(window, "label_fl"), QString("fl"));
        QCOMPARE(page(window), QString("TextLabel"));
        QCOMPARE(labelText(window, "labelBI_infor"), QString("ux*ux+uy*uy=1"));
        QCOMPARE(button(window, "pushButtonlast")->text(), QString("Last"));
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("Next"));
        QCOMPARE(button(window, "pushButtoncancel")->text(), QString("Cancel"));
    }

    void nextWalksTheZonesAndCompletesAfterTheLast() {
        Boundary_Information_Win window;
        window.show();
        window.start();
        QSignalSpy ok(&window, &Boundary_Information_Win::ok);
        QPushButton* const next = button(window, "pushButtonnext");
        for (std::size_t zone = 0; zone < 3; ++zone) {
            QCOMPARE(page(window), mesh.zoneNames[zone]);
            QCOMPARE(next->text(), QString(zone == 2 ? "ok" : "next"));
            QCOMPARE(ok.count(), 0);
            click(next);
        }
        QCOMPARE(ok.count(), 1);
        QCOMPARE(page(window), mesh.zoneNames[2]);
    }

    void aZoneNameIsPlainText() {
        const Boundary_Information_Win window;
        QCOMPARE(part<QLabel>(window, "labelBI")->textFormat(), Qt::PlainText);
    }

    void aPageIsAssignedToTheFacesOfItsZoneOnly() {
        caseSettings.U0 = 0.5;
        caseSettings.heatOn = true;
        caseSettings.thermalMode = 1;
        Boundary_Information_Win window;
        window.show();
        window.start();
        type(field(window, "lineEdit_ux"), "0.6");
        type(field(window, "lineEdit_uy"), "-0.8");
        list(window, "comboBox_flow_type")->setCurrentIndex(1);
        list(window, "comboBox")->setCurrentIndex(1);
        type(field(window, "lineEdit_T"), "1.5");
        type(field(window, "lineEdit_fl"), "0.25");
        click(button(window, "pushButtonnext"));
        for (const std::size_t i : {2U, 3U})
            QCOMPARE(stateOf(i), QString("u 0.3 v -0.4 flow 1 thermal 1 T 1.5 q 0 fl 0.25"));
        for (const std::size_t i : {0U, 1U, 4U, 5U, 6U, 7U})
            QCOMPARE(stateOf(i), untouched);
        list(window, "comboBox")->setCurrentIndex(2);
        type(field(window, "lineEdit_T"), "7");
        click(button(window, "pushButtonnext"));
        QCOMPARE(stateOf(4), QString("u 0.3 v -0.4 flow 1 thermal 2 T 0 q 7 fl 0.25"));
        QCOMPARE(stateOf(5), untouched);
    }

    void aMeshWithOneZoneCompletesWithOneClick() {
        mesh.zoneCount = 1;
        Boundary_Information_Win window;
        window.show();
        window.start();
        QSignalSpy ok(&window, &Boundary_Information_Win::ok);
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("ok"));
        type(field(window, "lineEdit_ux"), "1");
        click(button(window, "pushButtonnext"));
        QCOMPARE(ok.count(), 1);
        QCOMPARE(mesh.faces2D[2].u, 1.0);
        QCOMPARE(mesh.faces2D[3].u, 1.0);
        QCOMPARE(mesh.faces2D[4].u, 0.0);
    }

    void aMeshWithoutZonesCompletesAtOnceAndAssignsNothing() {
        mesh.zoneCount = 0;
        mesh.zoneNames.clear();
        Boundary_Information_Win window;
        window.show();
        window.start();
        QSignalSpy ok(&window, &Boundary_Information_Win::ok);
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("ok"));
        type(field(window, "lineEdit_ux"), "1");
        click(button(window, "pushButtonlast"));
        click(button(window, "pushButtonnext"));
        QCOMPARE(ok.count(), 1);
        for (std::size_t i = 0; i < 8; ++i)
            QCOMPARE(stateOf(i), untouched);
    }

    void anEmptyMeshCompletesAtOnce() {
        mesh.clear();
        caseSettings.heatOn = true;
        Boundary_Information_Win window;
        window.show();
        window.start();
        QSignalSpy ok(&window, &Boundary_Information_Win::ok);
        click(button(window, "pushButtonnext"));
        QCOMPARE(ok.count(), 1);
    }

    // Deliberate: the zone index is not reset when the wizard is opened again.
    void theIndexStaysWhereTheWizardWasLeft() {
        Boundary_Information_Win window;
        window.show();
        window.start();
        click(button(window, "pushButtonnext"));
        click(button(window, "pushButtoncancel"));
        window.start();
        QCOMPARE(page(window), mesh.zoneNames[1]);
        click(button(window, "pushButtonnext"));
        click(button(window, "pushButtonnext"));
        window.start();
        QCOMPARE(page(window), mesh.zoneNames[2]);
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("ok"));
    }

    void aMeshWithFewerZonesOpensOnItsLastZone() {
        Boundary_Information_Win window;
        window.show();
        window.start();
        for (int i = 0; i < 3; ++i)
            click(button(window, "pushButtonnext"));
        mesh.zoneCount = 2;
        mesh.zoneNames.resize(2);
        window.start();
        QCOMPARE(page(window), mesh.zoneNames[1]);
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("ok"));
        type(field(window, "lineEdit_ux"), "1");
        QSignalSpy ok(&window, &Boundary_Information_Win::ok);
        click(button(window, "pushButtonnext"));
        QCOMPARE(ok.count(), 1);
        QCOMPARE(mesh.faces2D[4].u, 1.0);
        QCOMPARE(mesh.faces2D[5].u, 0.0);
    }

    void lastGoesBackWithoutAssigning() {
        caseSettings.heatOn = true;
        Boundary_Information_Win window;
        window.show();
        window.start();
        list(window, "comboBox")->setCurrentIndex(1);
        type(field(window, "lineEdit_T"), "3");
        click(button(window, "pushButtonnext"));
        type(field(window, "lineEdit_ux"), "1");
        list(window, "comboBox")->setCurrentIndex(2);
        type(field(window, "lineEdit_T"), "9");
        click(button(window, "pushButtonlast"));
        QCOMPARE(page(window), mesh.zoneNames[0]);
        QCOMPARE(stateOf(4), untouched);
        QCOMPARE(list(window, "comboBox")->currentIndex(), 1);
        QCOMPARE(field(window, "lineEdit_T")->text(), QString("3"));
    }

    void lastOnTheFirstPageStaysThere() {
        Boundary_Information_Win window;
        window.show();
        window.start();
        type(field(window, "lineEdit_ux"), "1");
        click(button(window, "pushButtonlast"));
        click(button(window, "pushButtonlast"));
        QCOMPARE(page(window), mesh.zoneNames[0]);
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("next"));
        for (std::size_t i = 0; i < 8; ++i)
            QCOMPARE(stateOf(i), untouched);
        click(button(window, "pushButtonnext"));
        QCOMPARE(page(window), mesh.zoneNames[1]);
    }

    void lastFromTheOkPageSaysNextAgain() {
        Boundary_Information_Win window;
        window.show();
        window.start();
        click(button(window, "pushButtonnext"));
        click(button(window, "pushButtonnext"));
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("ok"));
        click(button(window, "pushButtonlast"));
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("next"));
    }

    void cancelKeepsWhatWasAssigned() {
        Boundary_Information_Win window;
        window.show();
        window.start();
        QSignalSpy ok(&window, &Boundary_Information_Win::ok);
        QSignalSpy cancel(&window, &Boundary_Information_Win::cancel);
        type(field(window, "lineEdit_ux"), "1");
        click(button(window, "pushButtonnext"));
        click(button(window, "pushButtoncancel"));
        QCOMPARE(cancel.count(), 1);
        QCOMPARE(ok.count(), 0);
        QCOMPARE(mesh.faces2D[2].u, 1.0);
        QCOMPARE(mesh.faces2D[4].u, 0.0);
    }

    // Deliberate: what stands in hidden fields is sent as well.
    void withoutHeatTheThermalPartIsHiddenButSent() {
        caseSettings.heatOn = true;
        caseSettings.thermalMode = 1;
        Boundary_Information_Win window;
        window.show();
        window.start();
        list(window, "comboBox")->setCurrentIndex(1);
        type(field(window, "lineEdit_T"), "3");
        type(field(window, "lineEdit_fl"), "0.5");
        caseSettings.heatOn = false;
        window.start();
        QVERIFY(!shows(window, "comboBox"));
        QVERIFY(showsNone(window, valueRow));
        QVERIFY(showsNone(window, fractionRow));
        click(button(window, "pushButtonnext"));
        QVERIFY(!shows(window, "comboBox"));
        QVERIFY(showsNone(window, valueRow));
        QCOMPARE(stateOf(2), QString("u 0 v 0 flow 0 thermal 1 T 3 q 0 fl 0.5"));
    }

    // Deliberate: what stands in hidden fields is sent as well.
    void outflowHidesTheVelocityButSendsIt() {
        Boundary_Information_Win window;
        window.show();
        window.start();
        type(field(window, "lineEdit_ux"), "0.6");
        type(field(window, "lineEdit_uy"), "0.8");
        list(window, "comboBox_flow_type")->setCurrentIndex(2);
        QVERIFY(showsNone(window, velocityRows));
        click(button(window, "pushButtonnext"));
        QCOMPARE(stateOf(2), QString("u 0.6 v 0.8 flow 2 thermal 0 T 0 q 0 fl 0"));
    }

    void rotationRelabelsTheVelocityRows() {
        const Boundary_Information_Win window;
        QComboBox* const flow = list(window, "comboBox_flow_type");
        flow->setCurrentIndex(1);
        QVERIFY(showsAll(window, velocityRows));
        QCOMPARE(labelText(window, "label_ux"), QString("x"));
        QCOMPARE(labelText(window, "label_uy"), QString("y"));
        flow->setCurrentIndex(2);
        flow->setCurrentIndex(0);
        QVERIFY(showsAll(window, velocityRows));
        QCOMPARE(labelText(window, "label_ux"), QString("ux"));
        QCOMPARE(labelText(window, "label_uy"), QString("uy"));
    }

    void theThermalListShowsTheRowsItNeeds() {
        caseSettings.heatOn = true;
        Boundary_Information_Win window;
        window.start();
        QComboBox* const thermal = list(window, "comboBox");
        QVERIFY(shows(window, "comboBox"));
        thermal->setCurrentIndex(1);
        QVERIFY(showsAll(window, valueRow));
        QVERIFY(showsNone(window, fractionRow));
        QCOMPARE(labelText(window, "label_T"), QString("T"));
        thermal->setCurrentIndex(2);
        QVERIFY(showsAll(window, valueRow));
        QVERIFY(showsNone(window, fractionRow));
        QCOMPARE(labelText(window, "label_T"), QString("q"));
        thermal->setCurrentIndex(0);
        QVERIFY(showsNone(window, valueRow));
        QVERIFY(showsNone(window, fractionRow));
    }

    // Deliberate: a constant flux leaves the fl row as it is.
    void theEnthalpyFormAsksForTheWallFraction() {
        caseSettings.heatOn = true;
        caseSettings.thermalMode = 1;
        Boundary_Information_Win window;
        window.start();
        QComboBox* const thermal = list(window, "comboBox");
        thermal->setCurrentIndex(2);
        QVERIFY(showsNone(window, fractionRow));
        thermal->setCurrentIndex(1);
        QVERIFY(showsAll(window, fractionRow));
        thermal->setCurrentIndex(2);
        QVERIFY(showsAll(window, fractionRow));
        thermal->setCurrentIndex(0);
        QVERIFY(showsNone(window, fractionRow));
    }

    void aPageIsFilledFromTheLastFaceOfItsZone() {
        caseSettings.heatOn = true;
        caseSettings.thermalMode = 1;
        mesh.faces2D[2].thermalKind = 2;
        mesh.faces2D[3].thermalKind = 1;
        mesh.faces2D[3].T = 1.0 / 3.0;
        mesh.faces2D[3].fl = 0.75;
        mesh.faces2D[4].thermalKind = 2;
        mesh.faces2D[4].q = -1e-9;
        mesh.faces2D[4].T = 5.0;
        mesh.faces2D[4].fl = 0.5;
        Boundary_Information_Win window;
        window.show();
        window.start();
        QCOMPARE(list(window, "comboBox")->currentIndex(), 1);
        QCOMPARE(field(window, "lineEdit_T")->text(), QString("0.333333"));
        QCOMPARE(field(window, "lineEdit_fl")->text(), QString("0.75"));
        QVERIFY(showsAll(window, valueRow));
        QVERIFY(showsAll(window, fractionRow));
        click(button(window, "pushButtonnext"));
        QCOMPARE(list(window, "comboBox")->currentIndex(), 2);
        QCOMPARE(field(window, "lineEdit_T")->text(), QString("-1e-09"));
        QCOMPARE(labelText(window, "label_T"), QString("q"));
        QCOMPARE(field(window, "lineEdit_fl")->text(), QString("0.75"));
        click(button(window, "pushButtonnext"));
        QCOMPARE(list(window, "comboBox")->currentIndex(), 0);
        QVERIFY(showsNone(window, valueRow));
    }

    void theRowsMatchAnItemThatDidNotChange() {
        caseSettings.heatOn = true;
        Boundary_Information_Win window;
        window.start();
        QCOMPARE(list(window, "comboBox")->currentIndex(), 0);
        QVERIFY(shows(window, "comboBox"));
        QVERIFY(showsNone(window, valueRow));
    }

    // Deliberate: unlike the 3D wizard this one does not restore the flow choice of a zone.
    void theFlowChoiceOfAnAssignedZoneIsNotRestored() {
        mesh.faces2D[3].flowKind = 2;
        mesh.faces2D[3].u = 1.0;
        Boundary_Information_Win window;
        window.start();
        QCOMPARE(list(window, "comboBox_flow_type")->currentIndex(), 0);
        QCOMPARE(field(window, "lineEdit_ux")->text(), QString());
    }

    void numbersAreReadInTheCLocaleAndTextThatIsNoneAsZero() {
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        Boundary_Information_Win window;
        window.show();
        window.start();
        type(field(window, "lineEdit_ux"), "1e-3");
        type(field(window, "lineEdit_uy"), "half");
        click(button(window, "pushButtonnext"));
        QCOMPARE(mesh.faces2D[2].u, 0.001);
        QCOMPARE(mesh.faces2D[2].v, 0.0);
    }

    void aSinglePressOfEitherKeyGoesOnOnEveryPage_data() {
        QTest::addColumn<int>("key");
        QTest::newRow("Right") << int{Qt::Key_Right};
        QTest::newRow("Return") << int{Qt::Key_Return};
    }
    void aSinglePressOfEitherKeyGoesOnOnEveryPage() {
        QFETCH(int, key);
        Boundary_Information_Win window;
        window.start();
        QVERIFY(showActive(window));
        QSignalSpy ok(&window, &Boundary_Information_Win::ok);
        for (std::size_t zone = 0; zone < 3; ++zone) {
            QCOMPARE(page(window), mesh.zoneNames[zone]);
            QCOMPARE(ok.count(), 0);
            QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key));
            QTest::qWait(150); // longer than an animated click, which would be a second one
        }
        QCOMPARE(ok.count(), 1);
    }

    void aKeyHeldDownGoesOnOnce() {
        Boundary_Information_Win window;
        window.start();
        QVERIFY(showActive(window));
        QWidget* const target = QApplication::focusWidget();
        QTest::simulateEvent(target, true, Qt::Key_Right, Qt::NoModifier, QString(), false);
        QTest::simulateEvent(target, true, Qt::Key_Right, Qt::NoModifier, QString(), true);
        QTest::simulateEvent(target, true, Qt::Key_Right, Qt::NoModifier, QString(), true);
        QCOMPARE(page(window), mesh.zoneNames[1]);
    }

    void leftGoesBackAndEscapeCancels() {
        Boundary_Information_Win window;
        window.start();
        QVERIFY(showActive(window));
        QSignalSpy cancel(&window, &Boundary_Information_Win::cancel);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QCOMPARE(page(window), mesh.zoneNames[2]);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
        QTRY_COMPARE(page(window), mesh.zoneNames[1]);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_COMPARE(cancel.count(), 1);
    }

    void inALineEditTheArrowsMoveTheCursorAndReturnGoesOn() {
        Boundary_Information_Win window;
        window.start();
        QVERIFY(showActive(window));
        QLineEdit* const ux = field(window, "lineEdit_ux");
        ux->setFocus();
        QTest::keyClicks(ux, "12");
        QTest::keyClick(ux, Qt::Key_Left);
        QCOMPARE(ux->cursorPosition(), 1);
        QTest::keyClick(ux, Qt::Key_Right);
        QCOMPARE(ux->cursorPosition(), 2);
        QCOMPARE(page(window), mesh.zoneNames[0]);
        QTest::keyClick(ux, Qt::Key_Return);
        QCOMPARE(page(window), mesh.zoneNames[1]);
        QCOMPARE(mesh.faces2D[2].u, 12.0);
        // The next page opens outside the field, so the arrow keys walk on.
        QVERIFY(!qobject_cast<QLineEdit*>(QApplication::focusWidget()));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QCOMPARE(page(window), mesh.zoneNames[2]);
    }

    void aStepAndAPageWaitForARunningStep() {
        mesh.zoneCount = 1;
        Boundary_Information_Win window;
        window.show();
        window.start();
        QVERIFY(takesGate(window, &Boundary_Information_Win::ok,
                          [&] { click(button(window, "pushButtonnext")); }));
        RunningStep step;
        window.start();
        QVERIFY(step.released);
    }

    void closingByTheTitleBarCancels() {
        Boundary_Information_Win window;
        window.show();
        QSignalSpy cancel(&window, &Boundary_Information_Win::cancel);
        window.close();
        QCOMPARE(cancel.count(), 1);
    }
};

QTEST_MAIN(BoundaryTest)
#include "boundary_test.moc"
