// The signs of the icon buttons, as strokes: they grow with the theme, where the cells of a bitmap would blur.
#pragma once

#include "math/cColor.h"
#include "math/cVec2.h"

namespace trellis {

class cTheme_Fragile_Pen;

/// @param icon  a `cTheme::ToolBarIcon`; draws nothing for what is none
void cTheme_Fragile_DrawIcon(const cTheme_Fragile_Pen& pen, int icon, const cVec2& at, float size, const cColor& color);

} // namespace trellis
