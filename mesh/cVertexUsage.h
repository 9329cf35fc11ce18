// What a vertex attribute is for.
#pragma once

namespace trellis {

class cVertexUsage {
public:
    enum Enum : int { Custom, Position, Normal, TexCoord, Tangent, BiTangent, BlendIndices, BlendWeights };
};

} // namespace trellis
