// Tests of the version window.
#include "app/version.h"

#include <QFile>
#include <QImage>
#include <QMetaMethod>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextBrowser>

class Version_WinTest : public QObject {
    Q_OBJECT

private slots:
    void thePictureIsCompiledInBeforeAnyWindowExists() {
        QVERIFY(QFile::exists(":/Fluvane/Resource.jpg"));
        QCOMPARE(QImage(":/Fluvane/Resource.jpg").size(), QSize(640, 400));
    }

    void saysOkAndNothingElse() {
        Version_Win window;
        const QMetaObject& meta = *window.metaObject();
        QCOMPARE(meta.methodCount() - meta.methodOffset(), 1);
        QCOMPARE(meta.method(meta.methodOffset()).methodSignature(), QByteArray("ok()"));
        QSignalSpy ok(&window, &Version_Win::ok);
        auto* const button = window.findChild<QPushButton*>("pushButton_ok");
        QCOMPARE(button->text(), QString("Ok"));
        button->click();
        QCOMPARE(ok.count(), 1);
    }

    void escapeIsOk() {
        const Version_Win window;
        QCOMPARE(window.findChild<QPushButton*>("pushButton_ok")->shortcut(), QKeySequence(Qt::Key_Escape));
    }

    void hasTheTitleAndFontOfItsForm() {
        const Version_Win window;
        QCOMPARE(window.windowTitle(), QString("Version_Win"));
        QCOMPARE(window.font().family(), QString("Times New Roman"));
    }

    void tellsTheReleaseNotesInOrder() {
        const Version_Win window;
        const auto* const browser = window.findChild<QTextBrowser*>("textBrowser");
        QVERIFY(browser->isReadOnly());
        const QString text = browser->toPlainText();
        int at = 0;
        for (const char* const word :
             {"内部测试版", "Version 0.16", "未经许可", "discrete unified gas kinetic scheme", "DUGK",
              "© 2026 Fluvane developers", "ICEM", "Boltzmann", "无滑移边界", "入口", "出流边界", "二维",
              "界面", "无量纲", "dT", "q", "操作步骤"}) {
            at = text.indexOf(QString::fromUtf8(word), at);
            QVERIFY2(at >= 0, word);
        }
        QCOMPARE(browser->toHtml().count("<li"), 4);
    }

    void showsThePicture() {
        Version_Win window;
        window.show();
        auto* const browser = window.findChild<QTextBrowser*>("textBrowser");
        const QImage shown = browser->grab().toImage();
        const QRgb background = shown.pixel(3, shown.height() - 3);
        const QRgb picture = shown.pixel(shown.width() / 2, 150);
        QVERIFY(picture != background);
        QVERIFY(qBlue(picture) > qRed(picture));
    }
};

QTEST_MAIN(Version_WinTest)
#include "version_test.moc"
