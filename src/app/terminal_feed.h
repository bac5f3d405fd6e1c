// Brings the terminal lines of every thread to the terminal pane, in order.
#pragma once

#include <QObject>
#include <QQueue>
#include <QString>
#include <mutex>

class QTextBrowser;

/// Receives the lines that any thread says for as long as it lives, and shows them in the pane on the pane's
/// thread: a burst of lines costs one event, not one a line. The pane, and what waits for it, keep the last
/// `maxLines` lines: a run without end must not take ever more memory. One feed at a time. Must not outlive
/// the pane.
class TerminalFeed {
public:
    static constexpr int maxLines = 20000;

    explicit TerminalFeed(QTextBrowser* pane);
    ~TerminalFeed();
    TerminalFeed(const TerminalFeed&) = delete;
    TerminalFeed& operator=(const TerminalFeed&) = delete;

    /// Empties the pane. Lines said before are gone with what stood there. Pane's thread only.
    void clear();

private:
    void take(const QString& line);
    void drain();

    QTextBrowser* m_pane;
    QObject m_receiver; ///< of the posted drains: they go with it
    std::mutex m_mutex; ///< guards the two below
    QQueue<QString> m_waiting;
    bool m_drainPosted = false;
};
