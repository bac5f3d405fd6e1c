// What the tests of the main window share: a clean process state and access to the windows.
#pragma once

#include "app/main_window.h"
#include "dialogs/case_settings.h"
#include "mesh/mesh.h"
#include "mesh/run_gate.h"
#include "modal_answers.h"
#include "output/terminal.h"
#include "patience.h"
#include "velocity/velocity_set.h"

#include <QAction>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTextBrowser>
#include <QThreadPool>
#include <memory>

inline void resetProcessState() {
    QThreadPool::globalInstance()->waitForDone();
    fluvane::clearStopRequest();
    fluvane::caseSettings = {};
    fluvane::velocitySet = {};
    fluvane::mesh.clear();
    fluvane::takeProblems();
}

/// A main window with answers to its modal windows, in a temporary working folder.
struct Shell {
    Shell() : oldFolder(QDir::currentPath()), window(std::make_unique<MainWindow>()) {
        resetProcessState();
        QDir::setCurrent(folder.path());
        mainWindow = window.get();
        window->show();
    }
    ~Shell() {
        fluvane::requestStop();
        QThreadPool::globalInstance()->waitForDone();
        window.reset();
        QDir::setCurrent(oldFolder);
        resetProcessState();
    }
    Shell(const Shell&) = delete;
    Shell& operator=(const Shell&) = delete;

    template <class T>
    T* find(const char* name) const {
        return window->findChild<T*>(QString::fromLatin1(name));
    }

    /// A set-up window, by its class.
    static QWidget* dialog(const char* className) {
        const QWidgetList all = QApplication::topLevelWidgets();
        for (QWidget* const widget : all)
            if (qstrcmp(widget->metaObject()->className(), className) == 0)
                return widget;
        return nullptr;
    }

    static void press(QWidget* dialog, const char* button) {
        dialog->findChild<QAbstractButton*>(QString::fromLatin1(button))->click();
    }

    void choose(const char* action) const { find<QAction>(action)->trigger(); }
    QString text(const char* label) const { return find<QLabel>(label)->text(); }
    QStringList terminal() const {
        QCoreApplication::processEvents();
        const QString all = find<QTextBrowser>("textBrowser")->toPlainText();
        return all.isEmpty() ? QStringList() : all.split('\n');
    }
    QString path(const QString& name) const { return folder.filePath(name); }

    QString oldFolder;
    QTemporaryDir folder;
    ModalAnswers answers;
    std::unique_ptr<MainWindow> window;
};

/// The signals and slots that a class declares itself, in order.
inline QStringList ownMethods(const QMetaObject& meta) {
    QStringList names;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        names << QString::fromLatin1(meta.method(i).methodSignature());
    return names;
}

inline const QString velocityLines = QStringLiteral("0 0 4 9 0\n"
                                                    "1 0 1 9 3\n"
                                                    "0 1 1 9 4\n"
                                                    "-1 0 1 9 1\n"
                                                    "0 -1 1 9 2\n"
                                                    "1 1 1 36 7\n"
                                                    "-1 1 1 36 8\n"
                                                    "-1 -1 1 36 5\n"
                                                    "1 -1 1 36 6\n");

inline bool writeText(const QString& path, const QString& text) {
    QFile file(path);
    const QByteArray bytes = text.toUtf8();
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}
