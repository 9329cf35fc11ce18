// When a pixel passes the depth test: its depth against the one that is there.
#pragma once

namespace trellis {

class cDepthFunc {
public:
    enum Enum : int { Never, Less, Equal, LessEqual, Greater, NotEqual, GreaterEqual, Always, Count };
};

} // namespace trellis
