// Factor of the source or the target in blending.
#pragma once

namespace trellis {

class cBlendFactor {
public:
    enum Enum : int {
        Zero,
        One,
        SrcColor,
        OneMinusSrcColor,
        SrcAlpha,
        OneMinusSrcAlpha,
        DstColor,
        OneMinusDstColor,
        DstAlpha,
        OneMinusDstAlpha,
        Count
    };
};

} // namespace trellis
