// The velocity set's one instance.
#include "velocity/velocity_set.h"

namespace fluvane {

VelocitySet velocitySet;

} // namespace fluvane
