// Answers modal boxes and file dialogs the way a user does, and remembers what was asked.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QStringList>
#include <QTest>
#include <QTimer>

/// While it lives, every message box is answered by its button, every file dialog by the next name of
/// `names`, typed in and confirmed, or by cancelling when none is left. `seen` holds "title: body" of each
/// box and "caption [filter]" of each file dialog in the order in which they came.
class ModalAnswers : public QObject {
public:
    QStringList names;
    QStringList seen;
    QStringList folders; ///< where each file dialog started

    ModalAnswers() {
        QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        connect(&m_poll, &QTimer::timeout, this, [this] { answer(); });
        m_poll.start(1);
    }

private:
    void answer() {
        QWidget* const modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible())
            return;
        if (auto* const box = qobject_cast<QMessageBox*>(modal)) {
            seen << box->windowTitle() + ": " + box->text();
            if (box->buttons().size() != 1)
                seen << QStringLiteral("(a box with %1 buttons)").arg(box->buttons().size());
            box->buttons().constFirst()->click();
        } else if (auto* const dialog = qobject_cast<QFileDialog*>(modal)) {
            answerFileDialog(*dialog);
        }
    }

    void answerFileDialog(QFileDialog& dialog) {
        seen << dialog.windowTitle() + " [" + dialog.nameFilters().join(';') + "]";
        folders << dialog.directory().absolutePath();
        if (names.isEmpty()) {
            dialog.reject();
            return;
        }
        const QString name = names.takeFirst();
        if (dialog.acceptMode() == QFileDialog::AcceptOpen && !QFileInfo(name).isFile()) {
            seen << name + " is not there"; // the dialog would say so in a box that nobody answers
            dialog.reject();
            return;
        }
        auto* const edit = dialog.findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        edit->setText(name);
        QTest::keyClick(edit, Qt::Key_Return);
    }

    QTimer m_poll;
};
