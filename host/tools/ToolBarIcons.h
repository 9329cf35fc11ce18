// The icons of the editor's tool bar, painted from outlines.
#pragma once

#include "image/cImage.h"

/// A sheet of 32 by 32 cells, 8 to a row, in the order of `cTheme::ToolBarIcon`: colour with alpha.
trellis::cImage MakeToolBarIcons();
