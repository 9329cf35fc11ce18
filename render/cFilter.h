// How a texture is read between its pixels.
#pragma once

namespace trellis {

class cFilter {
public:
    enum Enum : int { Nearest, Linear, Bilinear, Trilinear, BilinearAniso, TrilinearAniso, Count };

    static const char* ToString(int filter) { return s_Names[filter]; } ///< The index is trusted.

private:
    static constexpr const char* s_Names[Count] = {"Nearest",   "Linear",         "Bilinear",
                                                   "Trilinear", "Bilinear Aniso", "Trilinear Aniso"};
};

} // namespace trellis
