// The 3D boundary wizard.
#include "dialogs/boundary_3d.h"

#include "window_checks.h"

using fluvane::caseSettings;
using fluvane::FaceRecord3D;
using fluvane::mesh;

namespace {

/// Two interior faces, then zones of 2, 1 and 3 faces.
void makeMesh() {
    mesh.faces3D = fluvane::HugeArray<FaceRecord3D>(8);
    mesh.interiorFaceCount = 2;
    mesh.zoneCount = 3;
    mesh.zoneLastFace[0] = 4;
    mesh.zoneLastFace[1] = 5;
    mesh.zoneLastFace[2] = 8;
    mesh.zoneNames = {"(45 (3 wall left)())", "(45 (4 wall right)())", "(45 (5 wall top)())"};
}

/// What a face holds that a page assigns.
QString stateOf(std::size_t index) {
    const FaceRecord3D& f = mesh.faces3D[index];
    return QStringLiteral("u %1 v %2 w %3 flow %4 thermal %5 T %6 q %7")
        .arg(QString::number(f.u), QString::number(f.v), QString::number(f.w))
        .arg(f.flowKind)
        .arg(f.thermalKind)
        .arg(QString::number(f.T), QString::number(f.q));
}

const QString untouched = "u 0 v 0 w 0 flow 0 thermal 0 T 0 q 0";
const auto velocityRows = {"label_ux", "lineEdit_ux", "label_uy", "lineEdit_uy", "label_uz", "lineEdit_uz"};
const auto valueRow = {"label_T", "lineEdit_T"};

QString page(const QWidget& window) {
    return labelText(window, "labelBI");
}

} // namespace

class Boundary3dTest : public QObject {
    Q_OBJECT

private slots:
    void init() {
        resetProcessState();
        makeMesh();
        caseSettings.is3D = true;
        caseSettings.flowOn = 1;
        caseSettings.heatOn = true;
    }

    void ownsTheSignalsAndSlotsInOrder() {
        QCOMPARE(ownMethods(Boundary_Information_Win_3D::staticMetaObject),
                 (QStringList{"signal cancel()", "signal ok()", "slot Thermal()", "slot Flow_type()"}));
    }

    void hasTheThirdVelocityAndNoLiquidFraction() {
        const Boundary_Information_Win_3D window;
        QStringList names;
        for (const QWidget* child : window.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
            names << child->objectName();
        QCOMPARE(names,
                 (QStringList{"comboBox_flow_type", "label_ux", "lineEdit_ux", "label_uy", "lineEdit_uy",
                              "label_uz", "lineEdit_uz", "comboBox", "label_T", "lineEdit_T", "labelBI",
                              "labelBI_infor", "pushButtonlast", "pushButtonnext", "pushButtoncancel"}));
    }

    void textsAreInPlaceBeforeTheFirstPage() {
        const Boundary_Information_Win_3D window;
        QCOMPARE(window.windowTitle(), QString("Form"));
        QCOMPARE(window.font().family(), QString("Times New Roman"));
        QCOMPARE(itemsOf(list(window, "comboBox_flow_type")),
                 (QStringList{"No Slip->Translation", "No_Slip->Rotation", "Outflow"}));
        QCOMPARE(itemsOf(list(window, "comboBox")), (QStringList{"Adiabat", "Constant T", "Constant flux"}));
        QCOMPARE(labelText(window, "label_uz"), QString("uz"));
        QCOMPARE(page(window), QString("TextLabel"));
        QCOMPARE(labelText(window, "labelBI_infor"), QString("ux*ux+uy*uy+uz*uz=1"));
        QCOMPARE(button(window, "pushButtonlast")->text(), QString("Last"));
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("Next"));
        QCOMPARE(button(window, "pushButtoncancel")->text(), QString("Cancel"));
    }

    void nextWalksTheZonesAndCompletesAfterTheLast() {
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        QSignalSpy ok(&window, &Boundary_Information_Win_3D::ok);
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

    void aPageIsAssignedToTheFacesOfItsZoneOnly() {
        caseSettings.U0 = 0.5;
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        type(field(window, "lineEdit_ux"), "0.6");
        type(field(window, "lineEdit_uy"), "-0.8");
        type(field(window, "lineEdit_uz"), "0.2");
        list(window, "comboBox_flow_type")->setCurrentIndex(1);
        list(window, "comboBox")->setCurrentIndex(1);
        type(field(window, "lineEdit_T"), "1.5");
        click(button(window, "pushButtonnext"));
        for (const std::size_t i : {2U, 3U})
            QCOMPARE(stateOf(i), QString("u 0.3 v -0.4 w 0.1 flow 1 thermal 1 T 1.5 q 0"));
        for (const std::size_t i : {0U, 1U, 4U, 5U, 6U, 7U})
            QCOMPARE(stateOf(i), untouched);
        list(window, "comboBox")->setCurrentIndex(2);
        type(field(window, "lineEdit_T"), "7");
        click(button(window, "pushButtonnext"));
        QCOMPARE(mesh.faces3D[4].q, 7.0);
        QCOMPARE(mesh.faces3D[4].T, 0.0);
        QCOMPARE(stateOf(5), untouched);
    }

    void aMeshWithOneZoneCompletesWithOneClick() {
        mesh.zoneCount = 1;
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        QSignalSpy ok(&window, &Boundary_Information_Win_3D::ok);
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("ok"));
        type(field(window, "lineEdit_uz"), "1");
        click(button(window, "pushButtonnext"));
        QCOMPARE(ok.count(), 1);
        QCOMPARE(mesh.faces3D[2].w, 1.0);
        QCOMPARE(mesh.faces3D[3].w, 1.0);
        QCOMPARE(mesh.faces3D[4].w, 0.0);
    }

    void anEmptyMeshCompletesAtOnce() {
        mesh.clear();
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        QSignalSpy ok(&window, &Boundary_Information_Win_3D::ok);
        click(button(window, "pushButtonlast"));
        click(button(window, "pushButtonnext"));
        QCOMPARE(ok.count(), 1);
    }

    void aMeshWithoutZonesAssignsNothing() {
        mesh.zoneCount = 0;
        mesh.zoneNames.clear();
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        type(field(window, "lineEdit_ux"), "1");
        click(button(window, "pushButtonnext"));
        for (std::size_t i = 0; i < 8; ++i)
            QCOMPARE(stateOf(i), untouched);
    }

    // Deliberate: the zone index is not reset when the wizard is opened again.
    void theIndexStaysWhereItWasButWithinTheMesh() {
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        for (int i = 0; i < 3; ++i)
            click(button(window, "pushButtonnext"));
        window.start();
        QCOMPARE(page(window), mesh.zoneNames[2]);
        mesh.zoneCount = 1;
        mesh.zoneNames.resize(1);
        window.start();
        QCOMPARE(page(window), mesh.zoneNames[0]);
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("ok"));
    }

    void lastGoesBackWithoutAssigningAndRestoresTheZone() {
        caseSettings.U0 = 0.1;
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        type(field(window, "lineEdit_ux"), "0.6");
        type(field(window, "lineEdit_uy"), "0.8");
        click(button(window, "pushButtonnext"));
        type(field(window, "lineEdit_ux"), "1");
        list(window, "comboBox_flow_type")->setCurrentIndex(2);
        click(button(window, "pushButtonlast"));
        QCOMPARE(page(window), mesh.zoneNames[0]);
        QCOMPARE(stateOf(4), untouched);
        QCOMPARE(list(window, "comboBox_flow_type")->currentIndex(), 0);
        QCOMPARE(field(window, "lineEdit_ux")->text(), QString("0.6"));
        QCOMPARE(field(window, "lineEdit_uy")->text(), QString("0.8"));
        QCOMPARE(button(window, "pushButtonnext")->text(), QString("next"));
    }

    void lastOnTheFirstPageStaysThere() {
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        click(button(window, "pushButtonlast"));
        click(button(window, "pushButtonlast"));
        QCOMPARE(page(window), mesh.zoneNames[0]);
        click(button(window, "pushButtonnext"));
        QCOMPARE(page(window), mesh.zoneNames[1]);
    }

    // Deliberate: what stands in hidden fields is sent as well.
    void withoutHeatTheThermalPartIsHiddenButSent() {
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        list(window, "comboBox")->setCurrentIndex(1);
        type(field(window, "lineEdit_T"), "3");
        caseSettings.heatOn = false;
        window.start();
        QVERIFY(!shows(window, "comboBox"));
        QVERIFY(showsNone(window, valueRow));
        click(button(window, "pushButtonnext"));
        QCOMPARE(stateOf(2), QString("u 0 v 0 w 0 flow 0 thermal 1 T 3 q 0"));
    }

    // Deliberate: what stands in hidden fields is sent as well.
    void withoutFlowTheVelocityPartIsHiddenButSent() {
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        type(field(window, "lineEdit_ux"), "0.6");
        type(field(window, "lineEdit_uz"), "0.8");
        list(window, "comboBox_flow_type")->setCurrentIndex(2);
        caseSettings.flowOn = 0;
        window.start();
        QVERIFY(!shows(window, "comboBox_flow_type"));
        QVERIFY(showsNone(window, velocityRows));
        click(button(window, "pushButtonnext"));
        QCOMPARE(stateOf(2), QString("u 0.6 v 0 w 0.8 flow 2 thermal 0 T 0 q 0"));
        caseSettings.flowOn = 1;
        window.start();
        QVERIFY(shows(window, "comboBox_flow_type"));
        QVERIFY(showsAll(window, velocityRows));
    }

    void theFlowListShowsAndLabelsTheVelocityRows() {
        Boundary_Information_Win_3D window;
        window.start();
        QComboBox* const flow = list(window, "comboBox_flow_type");
        flow->setCurrentIndex(1);
        QVERIFY(showsAll(window, velocityRows));
        QCOMPARE(labelText(window, "label_ux"), QString("x"));
        QCOMPARE(labelText(window, "label_uy"), QString("y"));
        QCOMPARE(labelText(window, "label_uz"), QString("z"));
        flow->setCurrentIndex(2);
        QVERIFY(showsNone(window, velocityRows));
        flow->setCurrentIndex(0);
        QVERIFY(showsAll(window, velocityRows));
        QCOMPARE(labelText(window, "label_ux"), QString("ux"));
        QCOMPARE(labelText(window, "label_uy"), QString("uy"));
        QCOMPARE(labelText(window, "label_uz"), QString("uz"));
    }

    void theThermalListShowsAndLabelsTheValueRow() {
        Boundary_Information_Win_3D window;
        window.start();
        QComboBox* const thermal = list(window, "comboBox");
        QVERIFY(showsNone(window, valueRow));
        thermal->setCurrentIndex(1);
        QVERIFY(showsAll(window, valueRow));
        QCOMPARE(labelText(window, "label_T"), QString("T"));
        thermal->setCurrentIndex(2);
        QCOMPARE(labelText(window, "label_T"), QString("q"));
        thermal->setCurrentIndex(0);
        QVERIFY(showsNone(window, valueRow));
    }

    void theThermalPartIsFilledFromTheLastFaceOfTheZone() {
        mesh.faces3D[2].thermalKind = 2;
        mesh.faces3D[3].thermalKind = 1;
        mesh.faces3D[3].T = 1.0 / 3.0;
        mesh.faces3D[4].thermalKind = 2;
        mesh.faces3D[4].q = -1e-9;
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        QCOMPARE(list(window, "comboBox")->currentIndex(), 1);
        QCOMPARE(field(window, "lineEdit_T")->text(), QString("0.333333"));
        QCOMPARE(labelText(window, "label_T"), QString("T"));
        click(button(window, "pushButtonnext"));
        QCOMPARE(list(window, "comboBox")->currentIndex(), 2);
        QCOMPARE(field(window, "lineEdit_T")->text(), QString("-1e-09"));
        QCOMPARE(labelText(window, "label_T"), QString("q"));
        click(button(window, "pushButtonnext"));
        QCOMPARE(list(window, "comboBox")->currentIndex(), 0);
        QVERIFY(showsNone(window, valueRow));
    }

    // Deliberate: a translating wall fills ux and uy but not uz.
    void aTranslatingWallFillsUxAndUyButNotUz() {
        caseSettings.U0 = 0.5;
        mesh.faces3D[3].u = 0.3;
        mesh.faces3D[3].v = -0.4;
        mesh.faces3D[3].w = 0.25;
        Boundary_Information_Win_3D window;
        field(window, "lineEdit_uz")->setText("9");
        window.start();
        QCOMPARE(field(window, "lineEdit_ux")->text(), QString("0.6"));
        QCOMPARE(field(window, "lineEdit_uy")->text(), QString("-0.8"));
        QCOMPARE(field(window, "lineEdit_uz")->text(), QString("9"));
    }

    void aRotatingWallFillsAllThree() {
        caseSettings.U0 = 0.5;
        mesh.faces3D[3].flowKind = 1;
        mesh.faces3D[3].u = 0.3;
        mesh.faces3D[3].v = -0.4;
        mesh.faces3D[3].w = 0.25;
        Boundary_Information_Win_3D window;
        window.start();
        QCOMPARE(list(window, "comboBox_flow_type")->currentIndex(), 1);
        QCOMPARE(field(window, "lineEdit_ux")->text(), QString("0.6"));
        QCOMPARE(field(window, "lineEdit_uy")->text(), QString("-0.8"));
        QCOMPARE(field(window, "lineEdit_uz")->text(), QString("0.5"));
        QCOMPARE(labelText(window, "label_uz"), QString("z"));
    }

    void anOutflowZoneSetsTheListOnly() {
        mesh.faces3D[3].flowKind = 2;
        mesh.faces3D[3].u = 0.3;
        Boundary_Information_Win_3D window;
        field(window, "lineEdit_ux")->setText("7");
        window.start();
        QCOMPARE(list(window, "comboBox_flow_type")->currentIndex(), 2);
        QCOMPARE(field(window, "lineEdit_ux")->text(), QString("7"));
        QVERIFY(showsNone(window, velocityRows));
        // The item does not change on a page that was left on it; the rows match it all the same.
        window.start();
        QVERIFY(showsNone(window, velocityRows));
    }

    void withoutAReferenceVelocityNoDirectionIsFilled() {
        caseSettings.U0 = 0.0;
        Boundary_Information_Win_3D window;
        field(window, "lineEdit_ux")->setText("1");
        window.start();
        QCOMPARE(field(window, "lineEdit_ux")->text(), QString("1"));
    }

    void aSinglePressOfEitherKeyGoesOnOnEveryPage_data() {
        QTest::addColumn<int>("key");
        QTest::addColumn<bool>("flow");
        QTest::newRow("Right") << int{Qt::Key_Right} << true;
        QTest::newRow("Return") << int{Qt::Key_Return} << true;
        QTest::newRow("Right, nothing but buttons") << int{Qt::Key_Right} << false;
        QTest::newRow("Return, nothing but buttons") << int{Qt::Key_Return} << false;
    }
    void aSinglePressOfEitherKeyGoesOnOnEveryPage() {
        QFETCH(int, key);
        QFETCH(bool, flow);
        caseSettings.flowOn = flow ? 1 : 0;
        caseSettings.heatOn = flow;
        Boundary_Information_Win_3D window;
        window.start();
        QVERIFY(showActive(window));
        QSignalSpy ok(&window, &Boundary_Information_Win_3D::ok);
        for (std::size_t zone = 0; zone < 3; ++zone) {
            QCOMPARE(page(window), mesh.zoneNames[zone]);
            QCOMPARE(ok.count(), 0);
            QTest::keyClick(QApplication::focusWidget(), static_cast<Qt::Key>(key));
            QTest::qWait(150); // longer than an animated click, which would be a second one
        }
        QCOMPARE(ok.count(), 1);
    }

    void leftGoesBackAndEscapeCancels() {
        Boundary_Information_Win_3D window;
        window.start();
        QVERIFY(showActive(window));
        QSignalSpy cancel(&window, &Boundary_Information_Win_3D::cancel);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Right);
        QCOMPARE(page(window), mesh.zoneNames[1]);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Left);
        QTRY_COMPARE(page(window), mesh.zoneNames[0]);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
        QTRY_COMPARE(cancel.count(), 1);
    }

    void inALineEditTheArrowsMoveTheCursorAndReturnGoesOn() {
        Boundary_Information_Win_3D window;
        window.start();
        QVERIFY(showActive(window));
        QLineEdit* const uz = field(window, "lineEdit_uz");
        uz->setFocus();
        QTest::keyClicks(uz, "12");
        QTest::keyClick(uz, Qt::Key_Left);
        QTest::keyClick(uz, Qt::Key_Right);
        QCOMPARE(page(window), mesh.zoneNames[0]);
        QTest::keyClick(uz, Qt::Key_Return);
        QCOMPARE(page(window), mesh.zoneNames[1]);
        QVERIFY(!qobject_cast<QLineEdit*>(QApplication::focusWidget()));
    }

    void aStepAndAPageWaitForARunningStep() {
        mesh.zoneCount = 1;
        Boundary_Information_Win_3D window;
        window.show();
        window.start();
        QVERIFY(takesGate(window, &Boundary_Information_Win_3D::ok,
                          [&] { click(button(window, "pushButtonnext")); }));
        RunningStep step;
        window.start();
        QVERIFY(step.released);
    }

    void cancelAndTheTitleBarCancel() {
        Boundary_Information_Win_3D window;
        window.show();
        QSignalSpy ok(&window, &Boundary_Information_Win_3D::ok);
        QSignalSpy cancel(&window, &Boundary_Information_Win_3D::cancel);
        click(button(window, "pushButtoncancel"));
        QCOMPARE(cancel.count(), 1);
        window.close();
        QCOMPARE(cancel.count(), 2);
        QCOMPARE(ok.count(), 0);
    }
};

QTEST_MAIN(Boundary3dTest)
#include "boundary_3d_test.moc"
