// Long work at the user's request, during which the window still shows itself.
#pragma once

#include <functional>

/// Does `work` on a thread of its own and returns what it returns, or throws what it throws. Meanwhile the
/// window repaints, the terminal goes on and the waiting cursor shows; what the user clicks or types waits
/// until the end. A thread of its own, because a run may occupy the whole pool. GUI thread only.
bool doBesideWindow(const std::function<bool()>& work);
