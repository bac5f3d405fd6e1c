// The step gate and the run guard.
#include "mesh/run_gate.h"

namespace fluvane {

void StepGate::enterRun() {
    std::unique_lock lock(m_mutex);
    m_freed.wait(lock, [this] { return !m_held && m_visitorsWaiting == 0; });
    m_held = true;
}

void StepGate::enterVisitor() {
    std::unique_lock lock(m_mutex);
    ++m_visitorsWaiting;
    m_freed.wait(lock, [this] { return !m_held; });
    --m_visitorsWaiting;
    m_held = true;
}

void StepGate::leave() {
    {
        const std::lock_guard lock(m_mutex);
        m_held = false;
    }
    m_freed.notify_all();
}

StepGate& stepGate() {
    static StepGate gate;
    return gate;
}

namespace {
std::atomic<bool> active{false};
std::atomic<bool> stopping{false};
} // namespace

bool runActive() {
    return active.load();
}

bool tryStartRun() {
    bool expected = false;
    return !stopping.load() && active.compare_exchange_strong(expected, true);
}

void endRun() {
    active.store(false);
}

void requestStop() {
    stopping.store(true);
}

bool stopRequested() {
    return stopping.load();
}

void clearStopRequest() {
    stopping.store(false);
}

} // namespace fluvane
