// What the vertices of a draw call are joined to.
#pragma once

namespace trellis {

class cTopology {
public:
    enum Enum : int { Points, LineList, LineStrip, TriangleList };
};

} // namespace trellis
