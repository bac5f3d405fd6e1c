// The keys with which both boundary wizards go on.
#pragma once

#include <QAbstractButton>
#include <QLineEdit>
#include <QShortcut>

/// Right alone and Return alone press `next`. They are shortcuts of the window because the button loses its
/// own whenever it is relabelled, and one sequence with both keys would ask for two strokes. A key held down
/// presses once, so that nobody runs through all zones by accident.
inline void bindNextKeys(QWidget* wizard, QAbstractButton* next) {
    for (const Qt::Key key : {Qt::Key_Right, Qt::Key_Return}) {
        auto* const shortcut = new QShortcut(QKeySequence(key), wizard);
        shortcut->setAutoRepeat(false);
        QObject::connect(shortcut, &QShortcut::activated, next, &QAbstractButton::click);
    }
}

/// A line edit with the focus keeps Left and Right for its cursor. A page therefore opens with the focus
/// outside them: the arrow keys walk the pages until the user goes into a field.
inline void leaveLineEdits(QWidget* wizard, QWidget* refuge) {
    const QWidget* const focused = wizard->focusWidget();
    if (!focused || focused->isHidden() || qobject_cast<const QLineEdit*>(focused))
        refuge->setFocus();
}
