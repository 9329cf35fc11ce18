// Number type of a vertex attribute's components.
#pragma once

namespace trellis {

class cVertexType {
public:
    enum Enum : int { Float, Byte };

    /// Bytes of one component; 0 for what is no type.
    static constexpr int SizeOf(int type) { return type == Float ? 4 : type == Byte ? 1 : 0; }
};

} // namespace trellis
