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
class TerminalFeed : public QObject {
    Q_OBJECT

public:
    static constexpr int maxLines = 20000;

    explicit TerminalFeed(QTextBrowser* pane);
    ~TerminalFeed() override;

    /// Empties the pane. Lines said before are gone with what stood there. Pane's thread only.
    void clear();

signals:
    /// Asks the pane's thread to show what waits.
    void linesWaiting();

private:
    void take(const QString& line);
    void drain();

    QTextBrowser* m_pane;
    std::mutex m_mutex; ///< guards the two below
    QQueue<QString> m_waiting;
    bool m_drainPosted = false;
};
