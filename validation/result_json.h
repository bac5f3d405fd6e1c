// A case's result as JSON, which run.py makes the report from.
#pragma once

#include "case.h"

#include <QByteArray>

namespace fluvane::validation {

/// The case and all of its result; numbers that are not finite become null.
QByteArray resultJson(const Case& which, const Context& context, const Result& result);

} // namespace fluvane::validation
