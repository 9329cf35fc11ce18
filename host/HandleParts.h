// Places of the handles in the view by names, for scripts.
#pragma once

#include "math/cVec2.h"

#include <string>

namespace trellis {

/// Where the mouse takes hold of a handle that shows: "move", "rotate" or "scale", a slash, and "x", "y", "z" or
/// "free".
/// @return false when there is none of that name
bool FindHandle(const std::string& name, cVec2* position);

} // namespace trellis
