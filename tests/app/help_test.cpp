// Tests of the help window.
#include "app/help.h"

#include <QMetaMethod>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextBrowser>

class HELP_WinTest : public QObject {
    Q_OBJECT

private slots:
    void saysOkAndNothingElse() {
        HELP_Win window;
        const QMetaObject& meta = *window.metaObject();
        QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
        QCOMPARE(meta.method(meta.methodOffset()).methodSignature(), QByteArray("ok()"));
        QSignalSpy ok(&window, &HELP_Win::ok);
        auto* const button = window.findChild<QPushButton*>("pushButton_ok");
        QCOMPARE(button->text(), QString("Ok"));
        button->click();
        QCOMPARE(ok.count(), 1);
    }

    void escapeIsOk() {
        const HELP_Win window;
        QCOMPARE(window.findChild<QPushButton*>("pushButton_ok")->shortcut(), QKeySequence(Qt::Key_Escape));
    }

    void hasTheSizeTitleAndFontOfItsForm() {
        const HELP_Win window;
        QCOMPARE(window.size(), QSize(400, 300));
        QCOMPARE(window.windowTitle(), QString("HELP_Win"));
        QCOMPARE(window.font().family(), QString("Times New Roman"));
    }

    void listsTheFiveStepsInOrderWithTheNamesOnTheScreen() {
        const HELP_Win window;
        const auto* const browser = window.findChild<QTextBrowser*>("textBrowser");
        QVERIFY(browser->isReadOnly());
        QCOMPARE(browser->toHtml().count("<li"), 5);
        const QString text = browser->toPlainText();
        int at = 0;
        for (const char* const word :
             {"ICEM",    ".msh", "File",        "Open",           "2D",           "3D",       "Velocity_file",
              ".2Dv",    ".3Dv", "Num of Cell", "Num of Point",   "Num of Face",  "Initial",  "Lattice",
              "CFL",     "RT",   "Flow type",   "Heat transfer",  "Phase change", "Ma",       "Ra",
              "Re",      "Pr",   "Boundary",    "Adiabat",        "Constant T",   "ux",       "uy",
              "Last",    "Next", "Compute",     "NUM of Process", "Time Steps",   "Terminal", "Error_U",
              "Error_T", "Save", ".dat"}) {
            at = text.indexOf(QLatin1String(word), at);
            QVERIFY2(at >= 0, word);
        }
    }

    void isWrittenInChinese() {
        const HELP_Win window;
        QVERIFY(window.findChild<QTextBrowser*>("textBrowser")->toPlainText().contains("边界条件"));
    }
};

QTEST_MAIN(HELP_WinTest)
#include "help_test.moc"
