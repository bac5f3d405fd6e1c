// Brings the terminal lines of every thread to the terminal pane, in order.
#pragma once

#include <QObject>
#include <QStringList>
#include <mutex>

class QTextBrowser;

/// Receives the lines that any thread says for as long as it lives, and shows them in the pane on the pane's
/// thread: a burst of lines costs one event, not one a line. One feed at a time. Must not outlive the
/// pane.
class TerminalFeed {
public:
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
    QStringList m_waiting;
    bool m_drainPosted = false;
};
