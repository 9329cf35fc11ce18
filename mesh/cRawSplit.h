// One material's part of a raw mesh, welded into vertices.
#pragma once

#include "foundation/cList.h"
#include "foundation/cStr.h"

namespace trellis {

template <class T> struct cRawSplit {
    cStr MaterialName;
    cList<T> Vertices;
    cList<int> Indices; ///< Three a triangle.
};

} // namespace trellis
