// Long work at the user's request, during which the window still shows itself.
#pragma once

#include <functional>

/// Does `work` on a thread of its own and returns what it returns; false when it throws or when there is no
/// thread to be had, since an exception in a slot would end the program, and a run with it. Meanwhile the
/// window repaints, the terminal goes on and the waiting cursor shows; what the user clicks or types waits
/// until the end. A thread of its own, because a run may occupy the whole pool. GUI thread only.
bool doBesideWindow(const std::function<bool()>& work);
