// How long a window test waits for what must come.
#pragma once

/// Milliseconds; longer than a busy machine or its disk stands still, since files are on the disk before a
/// run ends.
inline constexpr int patience = 60000;
