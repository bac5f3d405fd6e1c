// What a validation case cannot do without.
#pragma once

#include "output/terminal.h"

#include <QString>

#include <cstdio>
#include <cstdlib>

namespace fluvane::validation {

/// Ends the process with the program's own complaints when something is not `good`.
inline void require(bool good, const QString& what) {
    if (good)
        return;
    std::fprintf(stderr, "fluvane_validation: %s: %s\n", qPrintable(what),
                 qPrintable(takeProblems().join("; ")));
    std::abort();
}

} // namespace fluvane::validation
