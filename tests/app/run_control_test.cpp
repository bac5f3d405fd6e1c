// Tests of the run-control dialog.
#include "app/run_control.h"

#include "dialogs/case_settings.h"
#include "shell_fixture.h"

#include <QDoubleValidator>
#include <QIntValidator>
#include <QMetaMethod>
#include <QSignalSpy>

class RunControlTest : public QObject {
    Q_OBJECT

private:
    struct Dialog : NUM_Process_Win {
        QLineEdit* field(const char* name) const { return findChild<QLineEdit*>(QString::fromLatin1(name)); }
        QLabel* label(const char* name) const { return findChild<QLabel*>(QString::fromLatin1(name)); }
        void press(const char* name) const { findChild<QPushButton*>(QString::fromLatin1(name))->click(); }
        bool showsU() const {
            return label("label_Error_U")->isVisible() && field("lineEdit_Error_U")->isVisible();
        }
        bool showsT() const {
            return label("label_Error_T")->isVisible() && field("lineEdit_Error_T")->isVisible();
        }
        bool hidesU() const {
            return label("label_Error_U")->isHidden() && field("lineEdit_Error_U")->isHidden();
        }
        bool hidesT() const {
            return label("label_Error_T")->isHidden() && field("lineEdit_Error_T")->isHidden();
        }
    };

private slots:
    void init() { resetProcessState(); }
    void cleanup() { resetProcessState(); }

    void hasTwoSignalsAndOneSlot() {
        QCOMPARE(ownMethods(NUM_Process_Win::staticMetaObject),
                 QStringList({"ok(int,double,double,int,int)", "cancel()", "Steady_or_transient()"}));
        const QMetaObject& meta = NUM_Process_Win::staticMetaObject;
        QCOMPARE(meta.method(meta.methodOffset()).parameterNames(),
                 QList<QByteArray>({"Process", "Error_U", "Error_T", "Time_Step", "Terminal"}));
        QCOMPARE(meta.method(meta.methodOffset() + 2).methodType(), QMetaMethod::Slot);
    }

    void placesItsWidgets_data() {
        QTest::addColumn<QRect>("place");
        QTest::addColumn<QString>("text");
        const auto row = [](const char* name, QRect place, const char* text) {
            QTest::newRow(name) << place << QString::fromLatin1(text);
        };
        row("label_Process", {20, 30, 131, 31}, "NUM of Process");
        row("lineEdit_Process", {150, 30, 121, 31}, "40");
        row("label_Time_Step", {20, 110, 131, 31}, "Time Steps");
        row("lineEdit_Time_Step", {100, 110, 101, 31}, "0");
        row("label_Terminal", {210, 110, 61, 31}, "Terminal");
        row("lineEdit_Terminal", {290, 110, 101, 31}, "50000");
        row("label_Error_U", {20, 190, 131, 31}, "Error_U");
        row("lineEdit_Error_U", {80, 190, 121, 31}, "1e-9");
        row("label_Error_T", {210, 190, 51, 31}, "Error_T");
        row("lineEdit_Error_T", {270, 190, 121, 31}, "1e-9");
        row("pushButton_ok", {90, 250, 75, 23}, "Ok");
        row("pushButton_cancel", {220, 250, 75, 23}, "Cancel");
    }
    void placesItsWidgets() {
        QFETCH(QRect, place);
        QFETCH(QString, text);
        const Dialog dialog;
        auto* const widget = dialog.findChild<QWidget*>(QString::fromLatin1(QTest::currentDataTag()));
        QVERIFY(widget);
        QCOMPARE(widget->geometry(), place);
        QCOMPARE(widget->property("text").toString(), text);
        QCOMPARE(widget->font().family(), QString("Times New Roman"));
        if (qobject_cast<QLabel*>(widget))
            QCOMPARE(widget->font().pointSize(), 12);
    }

    void returnStartsAndEscapeCancels() {
        Dialog dialog;
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        QSignalSpy ok(&dialog, &NUM_Process_Win::ok);
        QSignalSpy cancel(&dialog, &NUM_Process_Win::cancel);
        QWidget* const field = dialog.field("lineEdit_Time_Step");
        field->setFocus();
        QTest::keyClick(field, Qt::Key_Return);
        QTRY_COMPARE_WITH_TIMEOUT(ok.count(), 1, patience);
        QTest::keyClick(field, Qt::Key_Escape);
        QTRY_COMPARE_WITH_TIMEOUT(cancel.count(), 1, patience);
    }

    void hasTheSizeAndTitleOfItsForm() {
        const Dialog dialog;
        QCOMPARE(dialog.size(), QSize(400, 300));
        QCOMPARE(dialog.windowTitle(), QString("NUM_Process_Win"));
    }

    void restrictsTyping() {
        const Dialog dialog;
        const auto range = [&dialog](const char* name) {
            const auto* const v = qobject_cast<const QIntValidator*>(dialog.field(name)->validator());
            return v ? QPair<int, int>(v->bottom(), v->top()) : QPair<int, int>(-1, -1);
        };
        QCOMPARE(range("lineEdit_Process"), qMakePair(1, 50));
        QCOMPARE(range("lineEdit_Time_Step"), qMakePair(0, 10000000));
        QCOMPARE(range("lineEdit_Terminal"), qMakePair(1, 100000));
        for (const char* const name : {"lineEdit_Error_U", "lineEdit_Error_T"}) {
            const auto* const v = qobject_cast<const QDoubleValidator*>(dialog.field(name)->validator());
            QVERIFY(v);
            QCOMPARE(v->bottom(), 0.0);
            QCOMPARE(v->top(), 1e-6);
            QCOMPARE(v->decimals(), 6);
            QCOMPARE(v->locale().decimalPoint(), QChar('.'));
        }
    }

    void theDefaultsAreSentAsTheyStand() {
        Dialog dialog;
        QSignalSpy ok(&dialog, &NUM_Process_Win::ok);
        dialog.press("pushButton_ok");
        QCOMPARE(ok.count(), 1);
        QCOMPARE(ok.constFirst(), QVariantList({40, 1e-9, 1e-9, 0, 50000}));
    }

    void noLabelIsCutOffOrHiddenByAField() {
        const Dialog dialog;
        for (const QLabel* const label : dialog.findChildren<QLabel*>()) {
            const int end = label->x() + label->fontMetrics().horizontalAdvance(label->text());
            QVERIFY2(end <= label->geometry().right() + 1, qPrintable(label->objectName()));
            for (const QLineEdit* const field : dialog.findChildren<QLineEdit*>())
                QVERIFY2(field->y() != label->y() || field->x() < label->x() || end <= field->x(),
                         qPrintable(label->objectName()));
        }
    }

    void sendsWhatWasTyped() {
        Dialog dialog;
        dialog.show();
        const auto type = [&dialog](const char* name, const char* text) {
            dialog.field(name)->clear();
            QTest::keyClicks(dialog.field(name), QString::fromLatin1(text));
        };
        type("lineEdit_Process", "2");
        type("lineEdit_Time_Step", "1500");
        type("lineEdit_Terminal", "100");
        type("lineEdit_Error_U", "1e-7");
        type("lineEdit_Error_T", "2e-8");
        QSignalSpy ok(&dialog, &NUM_Process_Win::ok);
        dialog.press("pushButton_ok");
        QCOMPARE(ok.constFirst(), QVariantList({2, 1e-7, 2e-8, 1500, 100}));
    }

    void aCommaCannotBeTyped() {
        const Dialog dialog;
        for (const char* const name : {"lineEdit_Process", "lineEdit_Time_Step", "lineEdit_Terminal"}) {
            dialog.field(name)->clear();
            QTest::keyClicks(dialog.field(name), "1,0");
            QCOMPARE(dialog.field(name)->text(), QString("10"));
        }
        for (const char* const name : {"lineEdit_Error_U", "lineEdit_Error_T"}) {
            dialog.field(name)->clear();
            QTest::keyClicks(dialog.field(name), "1,5e-9");
            QCOMPARE(dialog.field(name)->text(), QString("15e-9"));
        }
    }

    void textThatIsNoNumberCountsAsZero() {
        Dialog dialog;
        for (const char* const name : {"lineEdit_Process", "lineEdit_Time_Step", "lineEdit_Error_U"})
            dialog.field(name)->clear();
        dialog.field("lineEdit_Terminal")->setText("often");
        dialog.field("lineEdit_Error_T")->setText("small");
        QSignalSpy ok(&dialog, &NUM_Process_Win::ok);
        dialog.press("pushButton_ok");
        QCOMPARE(ok.constFirst(), QVariantList({0, 0.0, 0.0, 0, 0}));
    }

    void cancelSaysCancel() {
        Dialog dialog;
        QSignalSpy cancel(&dialog, &NUM_Process_Win::cancel);
        dialog.press("pushButton_cancel");
        QCOMPARE(cancel.count(), 1);
    }

    void closingByTheTitleBarIsCancelling() {
        Dialog dialog;
        dialog.show();
        QSignalSpy cancel(&dialog, &NUM_Process_Win::cancel);
        dialog.close();
        QCOMPARE(cancel.count(), 1);
        QVERIFY(!dialog.isVisible());
    }

    void aTransientCaseHidesBothTolerancesAndSendsThemAllTheSame() {
        Dialog dialog;
        dialog.show();
        fluvane::caseSettings.flowOn = 1;
        fluvane::caseSettings.heatOn = true;
        dialog.Steady_or_transient();
        QVERIFY(dialog.hidesU() && dialog.hidesT());
        QSignalSpy ok(&dialog, &NUM_Process_Win::ok);
        dialog.press("pushButton_ok");
        QCOMPARE(ok.constFirst().at(1).toDouble(), 1e-9);
        QCOMPARE(ok.constFirst().at(2).toDouble(), 1e-9);
    }

    void aSteadyCaseShowsTheTolerancesOfWhatItSolves_data() {
        QTest::addColumn<int>("flow");
        QTest::addColumn<bool>("heat");
        QTest::newRow("flow alone") << 1 << false;
        QTest::newRow("heat alone") << 0 << true;
        QTest::newRow("both") << 1 << true;
        QTest::newRow("nothing") << 0 << false;
    }
    void aSteadyCaseShowsTheTolerancesOfWhatItSolves() {
        QFETCH(int, flow);
        QFETCH(bool, heat);
        Dialog dialog;
        dialog.show();
        dialog.Steady_or_transient();
        fluvane::caseSettings.steadyState = true;
        fluvane::caseSettings.flowOn = static_cast<std::uint8_t>(flow);
        fluvane::caseSettings.heatOn = heat;
        dialog.Steady_or_transient();
        QVERIFY(flow ? dialog.showsU() : dialog.hidesU());
        QVERIFY(heat ? dialog.showsT() : dialog.hidesT());
    }

    void theDimensionDoesNotMatter() {
        Dialog dialog;
        dialog.show();
        fluvane::caseSettings.is3D = true;
        fluvane::caseSettings.flowOn = 1;
        dialog.Steady_or_transient();
        QVERIFY(dialog.hidesU() && dialog.hidesT());
        fluvane::caseSettings.steadyState = true;
        dialog.Steady_or_transient();
        QVERIFY(dialog.showsU() && dialog.hidesT());
    }
};

QTEST_MAIN(RunControlTest)
#include "run_control_test.moc"
