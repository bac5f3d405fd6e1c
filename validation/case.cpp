// The list of cases, and how figures are written.
#include "case.h"

#include <algorithm>
#include <cmath>

namespace fluvane::validation {

namespace {

std::vector<Case>& registry() {
    static std::vector<Case> cases;
    return cases;
}

} // namespace

std::vector<Case> allCases() {
    std::vector<Case> cases = registry();
    std::sort(cases.begin(), cases.end(), [](const Case& a, const Case& b) {
        return a.order != b.order ? a.order < b.order : a.name < b.name;
    });
    return cases;
}

Registered::Registered(Case entry) {
    registry().push_back(std::move(entry));
}

QString number(double value, int digits) {
    return QString::number(value, 'g', digits);
}

QString percent(double share, int digits) {
    return QString::number(100.0 * share, 'f', digits) + " %";
}

double observedOrder(double coarseError, double fineError, double refinement) {
    return std::log(std::abs(coarseError) / std::abs(fineError)) / std::log(refinement);
}

} // namespace fluvane::validation
