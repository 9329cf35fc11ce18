// Which triangles are not drawn. The front of a triangle is where its corners run counterclockwise on the screen.
#pragma once

namespace trellis {

class cCullMode {
public:
    enum Enum : int { None, Front, Back };
};

} // namespace trellis
