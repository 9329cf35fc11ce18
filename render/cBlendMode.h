// How blending joins the weighted source and the weighted target.
#pragma once

namespace trellis {

class cBlendMode {
public:
    enum Enum : int { Add, Subtract, ReverseSubtract, Min, Max, Count };
};

} // namespace trellis
