// Brings the terminal lines of every thread to the terminal pane, in order.
#include "app/terminal_feed.h"

#include "output/terminal.h"

#include <QScrollBar>
#include <QTextBrowser>
#include <QTextCursor>
#include <QThread>
#include <utility>

TerminalFeed::TerminalFeed(QTextBrowser* pane) : m_pane(pane) {
    pane->document()->setMaximumBlockCount(maxLines);
    // A signal without arguments, so that nothing of ours travels in the event from thread to thread.
    connect(this, &TerminalFeed::linesWaiting, this, &TerminalFeed::drain, Qt::QueuedConnection);
    fluvane::setTerminalSink([this](const QString& line) { take(line); });
}

TerminalFeed::~TerminalFeed() {
    fluvane::setTerminalSink({});
}

void TerminalFeed::take(const QString& line) {
    const bool onPaneThread = QThread::currentThread() == m_pane->thread();
    bool post = false;
    {
        const std::lock_guard lock(m_mutex);
        m_waiting.enqueue(line);
        if (m_waiting.size() > maxLines)
            m_waiting.dequeue(); // the pane would drop it at once
        if (!onPaneThread)
            post = !std::exchange(m_drainPosted, true);
    }
    if (onPaneThread)
        drain(); // with what other threads said before it
    else if (post)
        emit linesWaiting();
}

void TerminalFeed::drain() {
    QQueue<QString> lines;
    {
        const std::lock_guard lock(m_mutex);
        lines.swap(m_waiting);
        m_drainPosted = false;
    }
    if (lines.isEmpty())
        return;
    QScrollBar* const bar = m_pane->verticalScrollBar();
    const bool following = bar->value() == bar->maximum();
    QTextCursor cursor(m_pane->document());
    cursor.movePosition(QTextCursor::End);
    cursor.beginEditBlock();
    for (const QString& line : std::as_const(lines)) {
        // As plain text: a file name may look like markup.
        if (!m_pane->document()->isEmpty())
            cursor.insertBlock();
        cursor.insertText(line);
    }
    cursor.endEditBlock();
    if (following)
        bar->setValue(bar->maximum());
}

void TerminalFeed::clear() {
    drain();
    m_pane->clear();
}
