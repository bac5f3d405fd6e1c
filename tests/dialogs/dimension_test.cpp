// The dimension dialog.
#include "dialogs/dimension.h"

#include "window_checks.h"

#include <QGridLayout>

class DimensionTest : public QObject {
    Q_OBJECT

private slots:
    void init() { resetProcessState(); }

    void ownsTheTwoSignalsAndNoSlot() {
        QCOMPARE(ownMethods(Dimension_Win::staticMetaObject),
                 (QStringList{"signal cancel()", "signal ok()"}));
    }

    void looksAsAgreed() {
        const Dimension_Win window;
        QCOMPARE(window.size(), QSize(400, 217));
        QCOMPARE(window.windowTitle(), QString("Dimension_Win"));
        const auto* const layout = qobject_cast<QGridLayout*>(window.layout());
        QVERIFY(layout);
        QCOMPARE(layout->contentsMargins(), QMargins(11, 11, 11, 11));
        QCOMPARE(layout->spacing(), 6);
        QVERIFY(qobject_cast<QGridLayout*>(layout->itemAt(0)->layout()));
        QCOMPARE(button(window, "pushButton_2D")->text(), QString("2D"));
        QCOMPARE(button(window, "pushButton_3D")->text(), QString("3D"));
        QCOMPARE(button(window, "pushButton_cancel")->text(), QString("Cancel"));
        QCOMPARE(button(window, "pushButton_cancel")->shortcut(), QKeySequence("Esc"));
        for (const char* name : {"pushButton_2D", "pushButton_3D", "pushButton_cancel"}) {
            QCOMPARE(button(window, name)->font().family(), QString("Times New Roman"));
            QCOMPARE(button(window, name)->font().pointSize(), 12);
        }
    }

    void aChoiceIsWrittenBeforeOk() {
        Dimension_Win window;
        window.show();
        QVector<bool> seen;
        connect(&window, &Dimension_Win::ok, &window, [&] { seen << fluvane::caseSettings.is3D; });
        click(button(window, "pushButton_3D"));
        click(button(window, "pushButton_2D"));
        QCOMPARE(seen, (QVector<bool>{true, false}));
    }

    void cancellingKeepsTheDimension_data() {
        QTest::addColumn<bool>("before");
        QTest::newRow("2D") << false;
        QTest::newRow("3D") << true;
    }
    void cancellingKeepsTheDimension() {
        QFETCH(bool, before);
        fluvane::caseSettings.is3D = before;
        Dimension_Win window;
        QVERIFY(showActive(window));
        QSignalSpy ok(&window, &Dimension_Win::ok);
        QSignalSpy cancel(&window, &Dimension_Win::cancel);
        click(button(window, "pushButton_cancel"));
        QTest::keyClick(&window, Qt::Key_Escape);
        QTRY_COMPARE(cancel.count(), 2);
        QCOMPARE(ok.count(), 0);
        QCOMPARE(fluvane::caseSettings.is3D, before);
    }

    void choosing3DAfterA2DMeshClearsNoReadinessFlag() {
        fluvane::caseSettings.meshLoaded = true;
        fluvane::caseSettings.latticeInitialised = true;
        fluvane::caseSettings.boundaryInitialised = true;
        Dimension_Win window;
        window.show();
        click(button(window, "pushButton_3D"));
        QVERIFY(fluvane::caseSettings.is3D);
        QVERIFY(fluvane::caseSettings.meshLoaded);
        QVERIFY(fluvane::caseSettings.latticeInitialised);
        QVERIFY(fluvane::caseSettings.boundaryInitialised);
    }

    void choosingWaitsForARunningStep() {
        Dimension_Win window;
        window.show();
        QVERIFY(takesGate(window, &Dimension_Win::ok, [&] { click(button(window, "pushButton_3D")); }));
    }

    void closingByTheTitleBarCancels() {
        Dimension_Win window;
        window.show();
        QSignalSpy cancel(&window, &Dimension_Win::cancel);
        window.close();
        QCOMPARE(cancel.count(), 1);
        QVERIFY(!window.isVisible());
    }
};

QTEST_MAIN(DimensionTest)
#include "dimension_test.moc"
