// Kinds of image by their number of dimensions.
#pragma once

namespace trellis {

class cDimension {
public:
    enum Enum { None = 0, _1D = 1, _2D = 2, _3D = 3, Cube = 4 };

    /// "None", "1D", "2D", "3D" or "Cube"; null for anything else.
    static const char* ToString(int dimension);
};

} // namespace trellis
