// Models in daylight on the software device: a sun, and a sky that is brighter above.
#pragma once

#include "math/cColor.h"
#include "mesh/cModel.h"

namespace trellis {

/// Makes the shader known by its name; before the device is made.
void RegisterDaylight();

/// One mesh of bump vertices under the world matrix, lit by the vertex, in one colour, times a texture, or -1.
void DrawInDaylight(const cModel::Mesh& mesh, const cColor& color, int texture = -1);

/// Of the scenes' materials by their names; a grey for any other.
cColor DaylightColorOf(const char* material);

} // namespace trellis
