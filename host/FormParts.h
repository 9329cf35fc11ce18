// Places in forms by names, for scripts.
#pragma once

#include "math/cVec2.h"

#include <string>

namespace trellis {

/// Where the mouse has to be: the caption of a control, a row of a file list that is in sight, the title of a panel or
/// a form, or that of a form with "/" and one of close, minimize, maximize, grip, left, top, right, bottom, corner (the
/// lower right one), client, up, down, thumb. Open dialogs go first, the front one ahead.
/// @return false when nothing is called so
bool FindInForms(const std::string& name, cVec2* position);

} // namespace trellis
