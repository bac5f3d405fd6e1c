// What stands between a run and the window: the step gate and the guard of the one run.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace fluvane {

/// Lets a run and the GUI thread take turns at fields and settings. A run holds the gate for each time step
/// and each check; a visitor (the GUI thread) is let in before the run's next hold, so that it waits for at
/// most one step however soon the run comes back.
class StepGate {
public:
    void enterRun();
    void enterVisitor();
    void leave();

private:
    std::mutex m_mutex;
    std::condition_variable m_freed;
    int m_visitorsWaiting = 0;
    bool m_held = false;
};

/// The gate of the process.
StepGate& stepGate();

/// Holds the gate for a run's step or check.
class RunHold {
public:
    RunHold() { stepGate().enterRun(); }
    ~RunHold() { stepGate().leave(); }
    RunHold(const RunHold&) = delete;
    RunHold& operator=(const RunHold&) = delete;
};

/// Holds the gate for whatever reads or writes fields or settings outside a run. Not to be nested.
class VisitorHold {
public:
    VisitorHold() { stepGate().enterVisitor(); }
    ~VisitorHold() { stepGate().leave(); }
    VisitorHold(const VisitorHold&) = delete;
    VisitorHold& operator=(const VisitorHold&) = delete;
};

/// True from `tryStartRun` to the end of the run: the mesh belongs to it.
bool runActive();

/// Claims the mesh for a run; false when a run has it already or the program is closing. Called when a run is
/// handed to its thread, so that there is no moment in which a second one could slip in.
bool tryStartRun();

/// Gives the mesh back.
void endRun();

/// Asks the active run, and every later one, to end after its current step.
void requestStop();

/// What a driver asks before each step.
bool stopRequested();

/// Withdraws a stop request, for programs that go on after one.
void clearStopRequest();

} // namespace fluvane
