// Keeps a label's text inside the room that a fixed layout gives it.
#pragma once

#include <QFontMetrics>
#include <QLabel>

/// Condenses the label's letters, size and family kept, until its text is no wider than `room` pixels: long
/// numbers and stand-in fonts would be cut off. Text that fits is shown as it is.
inline void fitLabel(QLabel* label, int room) {
    QFont font = label->font();
    font.setStretch(QFont::Unstretched);
    for (int stretch = 100; stretch >= 50; --stretch) {
        font.setStretch(stretch);
        if (QFontMetrics(font).horizontalAdvance(label->text()) <= room)
            break;
    }
    label->setFont(font);
}
